/* Host frame: host binding, instance release and the analysis workspace. */
#ifndef JQANLYS_FRAME_H
#define JQANLYS_FRAME_H
#ifdef __cplusplus
extern "C" {
#endif

/* Names the host runtime's module (HMODULE, or the handle from dlopen). */
JQ_API void SetJQRTModule(JQ_IN void* module);

JQ_API int32_t MeasurementUnreserveProc(JQ_INOUT JQSlot instance);

JQ_API int32_t InitializeAnalysisWorkspaceH(JQ_IN void* ignored, JQ_INOUT JQErrorCluster* error);
JQ_API int32_t EnableAnalysisWorkspaceH(JQ_INOUT JQErrorCluster* error);
JQ_API int32_t DisableAnalysisWorkspaceH(JQ_INOUT JQErrorCluster* error);
JQ_API int32_t UninitializeAnalysisWorkspaceH(JQ_INOUT JQErrorCluster* error);
JQ_API int32_t measurements_clear(void);

#ifdef __cplusplus
}
#endif
#endif
