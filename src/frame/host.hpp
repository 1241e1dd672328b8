// The host's own functions, bound by name on first use.
//
// The library links against no host library. Each host function sits in a
// process-wide slot that is filled the first time it is called; if the host
// cannot be found the process ends with a message, because no export can
// work without it.
#pragma once
#include <cstddef>
#include <cstdint>

namespace jq::host {

using CleanupProc = int32_t (*)(void* instance);
constexpr int32_t kRegister = 2;
constexpr int32_t kUnregister = 0;

// The host's NumericArrayResize and RTSetCleanupProc, bound lazily.
int32_t numeric_array_resize(int32_t type_code, int32_t dims, uint8_t*** handle, size_t count);
int32_t set_cleanup_proc(CleanupProc proc, void* instance, int32_t mode);

// The module named by SetJQRTModule (null when none was given).
void set_module(void* module);

}  // namespace jq::host
