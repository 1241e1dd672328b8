#include "frame/scratch.hpp"

#include <atomic>

namespace jq {
namespace {
std::atomic<int64_t> g_allocations{0};
std::atomic<int64_t> g_fail_at{0};
}  // namespace

bool scratch_injected_failure() { return ++g_allocations == g_fail_at.load(std::memory_order_relaxed); }

int32_t scratch_alloc(void** p, size_t bytes) {
  *p = scratch_injected_failure() ? nullptr : std::malloc(bytes);
  return *p ? kOk : kNoMemory;
}

void fail_scratch_allocation(int64_t nth) { g_fail_at.store(nth > 0 ? g_allocations.load() + nth : 0); }

int32_t scratch_free(void* p) {
  std::free(p);
  return kOk;
}

}  // namespace jq
