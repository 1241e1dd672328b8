// The project's host runtime: the host side of the handle protocol.
//
// Handles are a master pointer cell pointing at a block {sizes, elements}.
// Resizing reallocates the block behind the cell, so the caller's handle
// stays valid. Every block is tracked so tests can check for leaks.
#include "jqrt.h"

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <set>
#include <utility>
#include <vector>

extern "C" JQRT_API const int32_t gJQRTVersion = 0x01000000;

namespace {

std::mutex g_lock;
std::set<uint8_t**>* g_handles = new std::set<uint8_t**>;  // never freed: outlives static destructors
std::vector<std::pair<int32_t (*)(void*), void*>>* g_cleanups = new std::vector<std::pair<int32_t (*)(void*), void*>>;
std::atomic<int64_t> g_resize_calls{0};
std::atomic<int64_t> g_fail_at{0};
std::atomic<size_t> g_block_limit{0};

int32_t offset_of(int32_t type, int32_t dims) {
  switch (type) {
    case JQRT_F64: case JQRT_CF64: return 8;
    case JQRT_I32: case JQRT_U8: case JQRT_U32: case JQRT_F32: case JQRT_CF32: return dims >= 2 ? 8 : 4;
    default: return -1;
  }
}

size_t size_of(int32_t type) {
  switch (type) {
    case JQRT_U8: return 1;
    case JQRT_I32: case JQRT_U32: case JQRT_F32: return 4;
    case JQRT_F64: case JQRT_CF32: return 8;
    case JQRT_CF64: return 16;
    default: return 0;
  }
}

// Reallocates the block behind a handle, keeping its contents up to the new
// size and zeroing what is new. Returns false when out of memory.
bool reallocate(uint8_t** h, int32_t type, int32_t dims, size_t count) {
  const size_t header = static_cast<size_t>(offset_of(type, dims));
  const size_t elem = size_of(type);
  size_t bytes;
  if (__builtin_mul_overflow(count, elem, &bytes) || __builtin_add_overflow(bytes, header, &bytes)) return false;
  const size_t limit = g_block_limit.load();
  if (limit != 0 && bytes > limit) return false;
  uint8_t* old = *h;
  size_t old_bytes = 0;
  if (old) {
    const int32_t* s = reinterpret_cast<const int32_t*>(old);
    size_t old_count = s[0] < 0 ? 0 : static_cast<size_t>(s[0]);
    if (dims == 2) old_count *= s[1] < 0 ? 0 : static_cast<size_t>(s[1]);
    old_bytes = header + old_count * elem;
  }
  // A block that already has the size is kept, as the host's memory manager does.
  if (old && bytes == old_bytes) return true;
  auto* b = static_cast<uint8_t*>(std::realloc(old, bytes));
  if (!b) return false;
  if (bytes > old_bytes) std::memset(b + old_bytes, 0, bytes - old_bytes);
  if (!old) std::memset(b, 0, header);
  *h = b;
  return true;
}

}  // namespace

extern "C" {

int32_t NumericArrayResize(int32_t typeCode, int32_t numDims, uint8_t*** handlePtr, size_t count) {
  // Counting and failing on request serve tests that run one thread; a plain
  // load and store keep the count cheap where a locked increment would not.
  const int64_t call = g_resize_calls.load(std::memory_order_relaxed) + 1;
  g_resize_calls.store(call, std::memory_order_relaxed);
  if (g_fail_at.load(std::memory_order_relaxed) == call) return 2;  // the host's own "out of memory" status
  if (!handlePtr || offset_of(typeCode, numDims) < 0 || numDims < 1 || numDims > 2) return 1;
  uint8_t** h = *handlePtr;
  // Resizing an existing handle touches only its own block; the lock guards
  // the set of handles, which changes only when a handle is made.
  if (h) return reallocate(h, typeCode, numDims, count) ? 0 : 2;
  h = static_cast<uint8_t**>(std::calloc(1, sizeof(uint8_t*)));
  if (!h) return 2;
  if (!reallocate(h, typeCode, numDims, count)) {
    std::free(h);
    return 2;
  }
  std::lock_guard<std::mutex> lock(g_lock);
  g_handles->insert(h);
  *handlePtr = h;
  return 0;
}

int32_t RTSetCleanupProc(int32_t (*proc)(void*), void* instance, int32_t mode) {
  std::lock_guard<std::mutex> lock(g_lock);
  auto& v = *g_cleanups;
  for (auto it = v.begin(); it != v.end(); ++it) {
    if (it->first == proc && it->second == instance) {
      if (mode == 0) v.erase(it);
      return 0;
    }
  }
  if (mode == 2) v.emplace_back(proc, instance);
  return 0;
}

uint8_t** jqrt_make(int32_t typeCode, int32_t numDims, int32_t rows, int32_t cols) {
  if (rows < 0 || cols < 0) return nullptr;
  const size_t count = numDims == 2 ? static_cast<size_t>(rows) * static_cast<size_t>(cols) : static_cast<size_t>(rows);
  auto* h = static_cast<uint8_t**>(std::calloc(1, sizeof(uint8_t*)));
  if (!h) return nullptr;
  if (offset_of(typeCode, numDims) < 0 || !reallocate(h, typeCode, numDims, count)) {
    std::free(h);
    return nullptr;
  }
  auto* s = reinterpret_cast<int32_t*>(*h);
  s[0] = rows;
  if (numDims == 2) s[1] = cols;
  std::lock_guard<std::mutex> lock(g_lock);
  g_handles->insert(h);
  return h;
}

void jqrt_free(uint8_t** handle) {
  if (!handle) return;
  std::lock_guard<std::mutex> lock(g_lock);
  if (g_handles->erase(handle) == 0) return;  // not ours, or freed twice
  std::free(*handle);
  std::free(handle);
}

int32_t jqrt_dim(uint8_t** handle, int32_t i) {
  if (!handle || !*handle || i < 0 || i > 1) return 0;
  return reinterpret_cast<const int32_t*>(*handle)[i];
}

void* jqrt_data(uint8_t** handle, int32_t typeCode, int32_t numDims) {
  if (!handle || !*handle) return nullptr;
  return *handle + offset_of(typeCode, numDims);
}

int32_t jqrt_dispose_context(void) {
  std::vector<std::pair<int32_t (*)(void*), void*>> run;
  {
    std::lock_guard<std::mutex> lock(g_lock);
    run.swap(*g_cleanups);
  }
  for (auto& c : run) c.first(c.second);
  return static_cast<int32_t>(run.size());
}

int32_t jqrt_dispose_instance(void* instance) {
  std::vector<std::pair<int32_t (*)(void*), void*>> run;
  {
    std::lock_guard<std::mutex> lock(g_lock);
    auto& v = *g_cleanups;
    for (auto it = v.begin(); it != v.end();) {
      if (it->second == instance) {
        run.push_back(*it);
        it = v.erase(it);
      } else {
        ++it;
      }
    }
  }
  for (auto& c : run) c.first(c.second);
  return static_cast<int32_t>(run.size());
}

int32_t jqrt_cleanup_count(void) {
  std::lock_guard<std::mutex> lock(g_lock);
  return static_cast<int32_t>(g_cleanups->size());
}

void jqrt_fail_resize(int32_t nth) { g_fail_at.store(nth > 0 ? g_resize_calls.load() + nth : 0); }

void jqrt_limit_block(size_t bytes) { g_block_limit.store(bytes); }

int64_t jqrt_resize_calls(void) { return g_resize_calls.load(); }

int64_t jqrt_live_blocks(void) {
  std::lock_guard<std::mutex> lock(g_lock);
  return static_cast<int64_t>(g_handles->size());
}

}  // extern "C"
