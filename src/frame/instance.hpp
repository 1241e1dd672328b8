// Per-call-site instance blocks that measurement exports keep between calls.
#pragma once
#include <cstdint>

namespace jq {

// {count, values}: a measurement instance, held in a host slot and released
// by MeasurementUnreserveProc (or by the registered clean-up procedure).
struct MeasurementInstance {
  int32_t count;
  int32_t* values;
};

// Gets the slot's instance, creating a zeroed one on first use and
// registering its clean-up with the host. 0 or kNoMemory.
int32_t acquire_measurement_instance(void** slot, MeasurementInstance** out);
// Creates the instance without registering it (the _IDP forms).
int32_t acquire_measurement_instance_idp(void** slot, MeasurementInstance** out);
// Gets the slot's instance holding exactly `count` (>= 1) values, whose
// contents are left to the caller. A registered block of another count is
// replaced by a new, newly registered block; an _IDP block keeps its place
// and only its values are reallocated. On kNoMemory the slot is null or holds
// a valid block.
int32_t reserve_measurement_values(void** slot, int32_t count, bool idp, MeasurementInstance** out);
// Frees the values and the block and nulls the slot; never fails.
int32_t release_measurement_instance(void** slot);

}  // namespace jq
