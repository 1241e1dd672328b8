#include "frame/outputs.hpp"

#include "frame/host.hpp"

namespace jq {

int32_t host_resize(int32_t type_code, int32_t dims, Handle* h, int32_t rows, int32_t cols) {
  if (rows < 0) rows = 0;
  if (cols < 0) cols = 0;
  const size_t count = dims == 2 ? static_cast<size_t>(rows) * static_cast<size_t>(cols) : static_cast<size_t>(rows);
  int32_t status = host::numeric_array_resize(type_code, dims, h, count);
  if (status != 0) return status;
  if (uint8_t* b = block_of(*h)) {
    auto* sizes = reinterpret_cast<int32_t*>(b);
    sizes[0] = rows;
    if (dims == 2) sizes[1] = cols;
  }
  return 0;
}

bool Outputs::resize(int32_t type, int32_t dims, Handle* h, int32_t rows, int32_t cols) {
  // The host passed the handle by value: a block made for a null handle
  // would reach nobody and never be freed, so there is no memory to be had.
  if (!*h) return false;
  int32_t status = host_resize(type, dims, h, rows, cols);
  if (status != 0) host_status_ = status;
  return status == 0;
}

int32_t Outputs::fail(int32_t code) {
  for (int i = 0; i < count_; ++i) {
    const Entry& e = entries_[i];
    // A null handle has nothing to empty; resizing it would make a block
    // that nobody could see or free.
    if (!*e.handle) continue;
    int32_t status = host_resize(e.type, e.dims, e.handle, 0, 0);
    // A host that cannot even shrink leaves the block as it was; the sizes
    // still read as empty so that nothing stale is taken for a result.
    if (status != 0) {
      if (uint8_t* b = block_of(*e.handle)) {
        auto* sizes = reinterpret_cast<int32_t*>(b);
        sizes[0] = 0;
        if (e.dims == 2) sizes[1] = 0;
      }
    }
  }
  return code;
}

}  // namespace jq
