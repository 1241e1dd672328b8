#include "frame/instance.hpp"

#include "frame/errors.hpp"
#include "frame/host.hpp"
#include "frame/scratch.hpp"

namespace jq {
namespace {

int32_t cleanup_measurement(void* instance) {
  auto* m = static_cast<MeasurementInstance*>(instance);
  scratch_free(m->values);
  m->values = nullptr;
  m->count = 0;
  scratch_free(m);
  return 0;
}

int32_t acquire(void** slot, MeasurementInstance** out, bool register_cleanup) {
  if (!*slot) {
    auto* m = scratch_zeroed<MeasurementInstance>(1);
    if (!m) return kNoMemory;
    *slot = m;
    if (register_cleanup) host::set_cleanup_proc(cleanup_measurement, m, host::kRegister);
  }
  *out = static_cast<MeasurementInstance*>(*slot);
  return kOk;
}

// Frees a registered block and withdraws its registration, so that the host
// never runs the clean-up on a block that is gone.
void drop_registered(void** slot) {
  host::set_cleanup_proc(cleanup_measurement, *slot, host::kUnregister);
  cleanup_measurement(*slot);
  *slot = nullptr;
}

}  // namespace

int32_t acquire_measurement_instance(void** slot, MeasurementInstance** out) { return acquire(slot, out, true); }
int32_t acquire_measurement_instance_idp(void** slot, MeasurementInstance** out) { return acquire(slot, out, false); }

int32_t reserve_measurement_values(void** slot, int32_t count, bool idp, MeasurementInstance** out) {
  if (count < 1) return kNoMemory;
  auto* held = static_cast<MeasurementInstance*>(*slot);
  if (held && held->count == count && held->values) {
    *out = held;
    return kOk;
  }
  if (held && !idp) drop_registered(slot);
  MeasurementInstance* m = nullptr;
  if (acquire(slot, &m, !idp) != kOk) return kNoMemory;
  scratch_free(m->values);
  m->values = nullptr;
  m->count = 0;
  void* values = nullptr;
  if (scratch_alloc(&values, static_cast<size_t>(count) * sizeof(int32_t)) != kOk) {
    // A registered block is never left half-built; an _IDP holder stays, empty.
    if (!idp) drop_registered(slot);
    return kNoMemory;
  }
  m->values = static_cast<int32_t*>(values);
  m->count = count;
  *out = m;
  return kOk;
}

int32_t release_measurement_instance(void** slot) {
  if (!slot || !*slot) return 0;
  cleanup_measurement(*slot);
  *slot = nullptr;
  return 0;
}

}  // namespace jq
