// Loads the library the way a host does: by path at run time.
#pragma once
#include <string>

namespace demo {

// Opens the analysis library that sits beside this program and names the
// host runtime to it through SetJQRTModule. Null on failure, with a reason.
void* open_library(std::string& why);
// An export of the opened library, or null.
void* find_export(void* library, const char* name);

}  // namespace demo
