#include "frame/scratch.hpp"

#include <atomic>

namespace jq {
namespace {
std::atomic<int64_t> g_allocations{0};
std::atomic<int64_t> g_fail_at{0};
std::atomic<size_t> g_limit{0};

// Counts the allocation; false when it is to fail.
bool may_allocate(size_t bytes) {
  const int64_t call = ++g_allocations;
  const size_t limit = g_limit.load(std::memory_order_relaxed);
  return call != g_fail_at.load(std::memory_order_relaxed) && (limit == 0 || bytes <= limit);
}
}  // namespace

bool scratch_injected_failure() { return !may_allocate(0); }

int32_t scratch_alloc(void** p, size_t bytes) {
  *p = may_allocate(bytes) ? std::malloc(bytes) : nullptr;
  return *p ? kOk : kNoMemory;
}

int32_t scratch_zeroed(void** p, size_t count, size_t size) {
  const bool fits = size == 0 || count <= SIZE_MAX / size;
  *p = may_allocate(fits ? count * size : SIZE_MAX) && fits ? std::calloc(count, size) : nullptr;
  return *p ? kOk : kNoMemory;
}

void fail_scratch_allocation(int64_t nth) { g_fail_at.store(nth > 0 ? g_allocations.load() + nth : 0); }

int64_t scratch_allocations() { return g_allocations.load(); }

void limit_scratch_bytes(size_t bytes) { g_limit.store(bytes); }

int32_t scratch_free(void* p) {
  std::free(p);
  return kOk;
}

}  // namespace jq
