/* Spectra: two-sided power and cross spectra of one or two signals, all n
 * bins scaled by 1/n^2. */
#ifndef JQANLYS_SPECTRA_H
#define JQANLYS_SPECTRA_H
#ifdef __cplusplus
extern "C" {
#endif

JQ_API int32_t SpectrumH(JQ_INOUT JQArrF64 x, JQ_INOUT JQSlot instance);
JQ_API int32_t SpectrumH_IDP(JQ_INOUT JQArrF64 x, JQ_INOUT JQSlot instance);
JQ_API int32_t CxSpectrumH(JQ_IN JQArrC128 x, JQ_OUT JQArrF64 spectrum, JQ_INOUT JQSlot instance);
JQ_API int32_t CxSpectrumH_IDP(JQ_IN JQArrC128 x, JQ_OUT JQArrF64 spectrum, JQ_INOUT JQSlot instance);
JQ_API int32_t CrossSpectrumH(JQ_IN JQArrF64 x, JQ_IN JQArrF64 y, JQ_OUT JQArrC128 spectrum, JQ_INOUT JQSlot instance);
JQ_API int32_t CrossSpectrumH_IDP(JQ_IN JQArrF64 x, JQ_IN JQArrF64 y, JQ_OUT JQArrC128 spectrum, JQ_INOUT JQSlot instance);
JQ_API int32_t CxCrossSpectrumH(JQ_IN JQArrC128 x, JQ_IN JQArrC128 y, JQ_OUT JQArrC128 spectrum, JQ_INOUT JQSlot instance);
JQ_API int32_t CxCrossSpectrumH_IDP(JQ_IN JQArrC128 x, JQ_IN JQArrC128 y, JQ_OUT JQArrC128 spectrum, JQ_INOUT JQSlot instance);

#ifdef __cplusplus
}
#endif
#endif
