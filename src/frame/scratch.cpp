#include "frame/scratch.hpp"

namespace jq {

int32_t scratch_alloc(void** p, size_t bytes) {
  *p = std::malloc(bytes);
  return *p ? kOk : kNoMemory;
}

int32_t scratch_free(void* p) {
  std::free(p);
  return kOk;
}

}  // namespace jq
