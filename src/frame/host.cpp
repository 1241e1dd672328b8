#include "frame/host.hpp"

#include <atomic>
#include <cstdio>

#include "frame/platform.hpp"

namespace jq::host {
namespace {

// A host function slot: the bound pointer (null until first use) and the
// name it is looked up by. Two threads binding at once store the same
// pointer, so no lock is needed.
struct Slot {
  std::atomic<void*> fn;
  const char* name;
};

Slot g_resize{nullptr, "NumericArrayResize"};
Slot g_cleanup{nullptr, "RTSetCleanupProc"};
std::atomic<void*> g_module{nullptr};

// The module search is repeated for every slot bound; only the slot caches.
platform::Module find_module() {
  if (void* m = g_module.load()) return m;
  if (platform::Module m = platform::host_process_module()) return m;
  if (platform::Module m = platform::loaded_module("jqrt")) return m;
  return platform::loaded_module("jqffrt");
}

void* bind(Slot& slot) {
  if (void* fn = slot.fn.load(std::memory_order_acquire)) return fn;
  platform::Module m = find_module();
  if (!m) platform::fatal("torvane.lib was not called from a Torvane process.");
  void* fn = platform::symbol(m, slot.name);
  if (!fn) {
    char text[256];
    std::snprintf(text, sizeof text, "torvane.lib could not locate \"%s\".", slot.name);
    platform::fatal(text);
  }
  slot.fn.store(fn, std::memory_order_release);
  return fn;
}

}  // namespace

int32_t numeric_array_resize(int32_t type_code, int32_t dims, uint8_t*** handle, size_t count) {
  using Fn = int32_t (*)(int32_t, int32_t, uint8_t***, size_t);
  return reinterpret_cast<Fn>(bind(g_resize))(type_code, dims, handle, count);
}

int32_t set_cleanup_proc(CleanupProc proc, void* instance, int32_t mode) {
  using Fn = int32_t (*)(CleanupProc, void*, int32_t);
  return reinterpret_cast<Fn>(bind(g_cleanup))(proc, instance, mode);
}

void set_module(void* module) { g_module.store(module); }

}  // namespace jq::host
