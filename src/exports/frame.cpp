// Host binding, measurement instance release and the analysis workspace.
#include "frame/export.hpp"
#include "frame/host.hpp"
#include "frame/instance.hpp"
#include "jqanlys.h"

JQ_EXPORT void SetJQRTModule(void* module) { jq::host::set_module(module); }

JQ_EXPORT int32_t MeasurementUnreserveProc(JQSlot instance) { return jq::release_measurement_instance(instance); }

// The measurement objects keep no global state, so there is nothing to clear.
JQ_EXPORT int32_t measurements_clear(void) { return 0; }

// The workspace exports only pass an incoming error through and otherwise
// clear the code.
static int32_t workspace(JQErrorCluster* error) {
  if (error->status) return 0;
  error->code = measurements_clear();
  if (error->code < 0) error->status = 1;
  return 0;
}

JQ_EXPORT int32_t InitializeAnalysisWorkspaceH(void*, JQErrorCluster* error) { return workspace(error); }
JQ_EXPORT int32_t EnableAnalysisWorkspaceH(JQErrorCluster* error) { return workspace(error); }
JQ_EXPORT int32_t DisableAnalysisWorkspaceH(JQErrorCluster* error) { return workspace(error); }
JQ_EXPORT int32_t UninitializeAnalysisWorkspaceH(JQErrorCluster* error) { return workspace(error); }
