/* Host frame: host binding, instance release and the analysis workspace. */
#ifndef JQANLYS_FRAME_H
#define JQANLYS_FRAME_H
#ifdef __cplusplus
extern "C" {
#endif

/* Names the host runtime's module (HMODULE, or the handle from dlopen). */
JQ_API void SetJQRTModule(void* module);

JQ_API int32_t MeasurementUnreserveProc(JQSlot instance);

JQ_API int32_t InitializeAnalysisWorkspaceH(void* ignored, JQErrorCluster* error);
JQ_API int32_t EnableAnalysisWorkspaceH(JQErrorCluster* error);
JQ_API int32_t DisableAnalysisWorkspaceH(JQErrorCluster* error);
JQ_API int32_t UninitializeAnalysisWorkspaceH(JQErrorCluster* error);
JQ_API int32_t measurements_clear(void);

#ifdef __cplusplus
}
#endif
#endif
