#include "frame/instance.hpp"

#include <cstdlib>

#include "frame/errors.hpp"
#include "frame/host.hpp"
#include "frame/scratch.hpp"

namespace jq {
namespace {

int32_t cleanup_measurement(void* instance) {
  auto* m = static_cast<MeasurementInstance*>(instance);
  std::free(m->values);
  m->values = nullptr;
  m->count = 0;
  std::free(m);
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

}  // namespace

int32_t acquire_measurement_instance(void** slot, MeasurementInstance** out) { return acquire(slot, out, true); }
int32_t acquire_measurement_instance_idp(void** slot, MeasurementInstance** out) { return acquire(slot, out, false); }

int32_t release_measurement_instance(void** slot) {
  if (!slot || !*slot) return 0;
  cleanup_measurement(*slot);
  *slot = nullptr;
  return 0;
}

}  // namespace jq
