// Per-call-site table holders: the plain form registers a clean-up with the
// host, the _IDP form lives in a TransformInstance that the host releases.
#include <cstdlib>
#include <initializer_list>

#include "frame/errors.hpp"
#include "frame/host.hpp"
#include "frame/scratch.hpp"
#include "transforms/fft.hpp"

namespace jq::fft {
namespace {

int32_t cleanup_holder(void* holder) {
  auto* h = static_cast<TransformTableHolder*>(holder);
  destroy_table(h->table);
  std::free(h);
  return 0;
}

// The common steps; `registered` says whether the host knows the holder.
int32_t acquire(TransformTableHolder** field, uint32_t n, bool registered) {
  if (!*field) {
    auto* h = scratch_zeroed<TransformTableHolder>(1);
    if (!h) return kNoMemory;
    h->table = nullptr;
    *field = h;
  }
  TransformTableHolder* h = *field;
  if (h->table && static_cast<uint32_t>(h->table->length) == n) return kOk;
  const bool rebuilt = h->table != nullptr;
  destroy_table(h->table);
  h->table = create_table(n);
  if (h->table) {
    if (registered && !rebuilt) host::set_cleanup_proc(cleanup_holder, h, host::kRegister);
    return kOk;
  }
  if (registered && rebuilt) host::set_cleanup_proc(cleanup_holder, h, host::kUnregister);
  std::free(h);
  *field = nullptr;
  return kNoMemory;
}

}  // namespace

int32_t AcquireTransformTable(void** slot, uint32_t n) {
  return acquire(reinterpret_cast<TransformTableHolder**>(slot), n, true);
}

int32_t AcquireTransformTableIDP(TransformTableHolder** field, uint32_t n) { return acquire(field, n, false); }

int32_t AcquireTransformInstance(void** slot, TransformInstance** out) {
  if (!*slot) {
    *slot = scratch_zeroed<TransformInstance>(1);
    if (!*slot) return kNoMemory;
  }
  *out = static_cast<TransformInstance*>(*slot);
  return kOk;
}

int32_t ReleaseTransformInstance(void** slot) {
  if (!slot || !*slot) return 0;
  auto* inst = static_cast<TransformInstance*>(*slot);
  for (TransformTableHolder** h : {&inst->first, &inst->second}) {
    if (!*h) continue;
    destroy_table((*h)->table);
    std::free(*h);
    *h = nullptr;
  }
  std::free(inst);
  *slot = nullptr;
  return 0;
}

}  // namespace jq::fft

#include "transforms/lease.hpp"

namespace jq::fft {

int32_t TableSource::acquire(int which, uint32_t n, FFTTable** table) {
  void** slot = idp_ ? slots_[0] : slots_[which];
  if (!slot) {
    destroy_table(temporary_[which]);
    temporary_[which] = create_table(n);
    *table = temporary_[which];
    return *table ? kOk : kNoMemory;
  }
  int32_t rc;
  if (idp_) {
    TransformInstance* inst = nullptr;
    rc = AcquireTransformInstance(slot, &inst);
    if (rc != kOk) return rc;
    TransformTableHolder** field = which == 0 ? &inst->first : &inst->second;
    rc = AcquireTransformTableIDP(field, n);
    if (rc == kOk) *table = (*field)->table;
  } else {
    rc = AcquireTransformTable(slot, n);
    if (rc == kOk) *table = held_table(*slot);
  }
  return rc;
}

}  // namespace jq::fft
