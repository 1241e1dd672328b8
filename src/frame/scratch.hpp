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

// Test hook: makes the nth scratch allocation from now fail, as an exhausted
// heap would (1 = the next one); 0 disables. Later allocations succeed again.
void fail_scratch_allocation(int64_t nth);

// An owned scratch array of T, released on scope exit.
template <class T> class Scratch {
 public:
  Scratch() = default;
  ~Scratch() { scratch_free(p_); }
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
