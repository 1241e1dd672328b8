// Scratch memory for computing routines: the process heap, never the host's
// memory manager, which only ever holds host array handles.
#pragma once
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "frame/errors.hpp"

namespace jq {

// Stores a new block (or null) in *p; 0 or kNoMemory.
int32_t scratch_alloc(void** p, size_t bytes);
int32_t scratch_free(void* p);

// Counts one allocation made elsewhere (the linear-algebra module's aligned
// blocks) and tells whether the test hook below wants it to fail.
bool scratch_injected_failure();

// Zero-filled, like calloc; counted and failed like scratch_alloc. Tables
// and instance blocks come from here, so that every internal allocation can
// be made to fail.
int32_t scratch_zeroed(void** p, size_t count, size_t size);
template <class T> T* scratch_zeroed(size_t count) {
  void* v = nullptr;
  return scratch_zeroed(&v, count ? count : 1, sizeof(T)) == kOk ? static_cast<T*>(v) : nullptr;
}

// Test hooks: makes the nth scratch allocation from now fail, as an exhausted
// heap would (1 = the next one); 0 disables. Later allocations succeed again.
void fail_scratch_allocation(int64_t nth);
// Allocations made so far.
int64_t scratch_allocations();
// Allocations above this many bytes fail as if the heap were exhausted; 0
// lifts the limit. Lets tests pass huge counts without huge allocations.
void limit_scratch_bytes(size_t bytes);

// An owned scratch array of T, released on scope exit.
template <class T> class Scratch {
 public:
  Scratch() = default;
  ~Scratch() {
    if (p_) scratch_free(p_);
  }
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;
  // 0 or kNoMemory; n = 0 yields a valid empty array.
  int32_t allocate(size_t n) {
    scratch_free(p_);
    p_ = nullptr;
    n_ = 0;
    if (n > SIZE_MAX / sizeof(T)) return kNoMemory;
    void* v = nullptr;
    if (scratch_alloc(&v, n ? n * sizeof(T) : 1) != kOk) return kNoMemory;
    p_ = static_cast<T*>(v);
    n_ = n;
    return kOk;
  }
  T* data() const { return p_; }
  size_t size() const { return n_; }
  T& operator[](size_t i) const { return p_[i]; }

 private:
  T* p_ = nullptr;
  size_t n_ = 0;
};

}  // namespace jq
