#include "loader.hpp"

#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#include <unistd.h>

#include <climits>
#endif

namespace demo {
namespace {

std::string program_dir() {
#if defined(_WIN32)
  char path[MAX_PATH];
  DWORD n = GetModuleFileNameA(nullptr, path, MAX_PATH);
  std::string s(path, n);
#else
  char path[PATH_MAX];
  ssize_t n = readlink("/proc/self/exe", path, sizeof path - 1);
  std::string s(path, n > 0 ? static_cast<size_t>(n) : 0);
#endif
  size_t cut = s.find_last_of("/\\");
  return cut == std::string::npos ? std::string(".") : s.substr(0, cut);
}

}  // namespace

void* open_library(std::string& why) {
#if defined(_WIN32)
  const std::string lib = program_dir() + "\\jqanlys.dll";
  HMODULE m = LoadLibraryA(lib.c_str());
  HMODULE host = GetModuleHandleA("jqrt.dll");
#else
  const std::string lib = program_dir() + "/libjqanlys.so";
  void* m = dlopen(lib.c_str(), RTLD_NOW | RTLD_LOCAL);
  void* host = dlopen("libjqrt.so", RTLD_LAZY | RTLD_NOLOAD);
#endif
  if (!m) {
    why = "cannot load " + lib;
    return nullptr;
  }
  auto set_module = reinterpret_cast<void (*)(void*)>(find_export(reinterpret_cast<void*>(m), "SetJQRTModule"));
  if (!set_module || !host) {
    why = "the library or the host runtime is incomplete";
    return nullptr;
  }
  set_module(reinterpret_cast<void*>(host));
  return reinterpret_cast<void*>(m);
}

void* find_export(void* library, const char* name) {
#if defined(_WIN32)
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name));
#else
  return dlsym(library, name);
#endif
}

}  // namespace demo
