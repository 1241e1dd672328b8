/* Spectra: two-sided power and cross spectra of one or two signals, all n
 * bins scaled by 1/n^2. */
#ifndef JQANLYS_SPECTRA_H
#define JQANLYS_SPECTRA_H
#ifdef __cplusplus
extern "C" {
#endif

JQ_API int32_t SpectrumH(JQHandle x, JQSlot instance);
JQ_API int32_t SpectrumH_IDP(JQHandle x, JQSlot instance);
JQ_API int32_t CxSpectrumH(JQHandle x, JQHandle spectrum, JQSlot instance);
JQ_API int32_t CxSpectrumH_IDP(JQHandle x, JQHandle spectrum, JQSlot instance);
JQ_API int32_t CrossSpectrumH(JQHandle x, JQHandle y, JQHandle spectrum, JQSlot instance);
JQ_API int32_t CrossSpectrumH_IDP(JQHandle x, JQHandle y, JQHandle spectrum, JQSlot instance);
JQ_API int32_t CxCrossSpectrumH(JQHandle x, JQHandle y, JQHandle spectrum, JQSlot instance);
JQ_API int32_t CxCrossSpectrumH_IDP(JQHandle x, JQHandle y, JQHandle spectrum, JQSlot instance);

#ifdef __cplusplus
}
#endif
#endif
