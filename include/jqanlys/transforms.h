/* Transforms: the FFT engine's tables, the FFT exports, power and cross
 * spectra, and the _IDP instance release. */
#ifndef JQANLYS_TRANSFORMS_H
#define JQANLYS_TRANSFORMS_H
#ifdef __cplusplus
extern "C" {
#endif

/* A shared FFT table of one length; opaque to callers. */
typedef struct JQFFTTable JQFFTTable;

JQ_API JQFFTTable* create_kwfft_table(uint32_t n);
JQ_API void destroy_kwfft_table(JQFFTTable* table);
JQ_API int32_t TransformUnreserveProc(JQSlot instance);

JQ_API int32_t ReKWFFTH(JQHandle x, JQHandle spectrum, JQSlot instance);
JQ_API int32_t ReKWFFTH80(JQHandle x, JQHandle spectrum, JQSlot instance, int32_t start, int32_t fft_size, uint8_t shift);
JQ_API int32_t ReKWFFTH80_IDP(JQHandle x, JQHandle spectrum, JQSlot instance, int32_t start, int32_t fft_size, uint8_t shift);
JQ_API int32_t CxKWFFTH(JQHandle x, JQHandle spectrum, JQSlot instance);
JQ_API int32_t CxKWFFTH80(JQHandle x, JQHandle spectrum, JQSlot instance, int32_t start, int32_t fft_size, uint8_t shift);
JQ_API int32_t CxKWFFTH80_IDP(JQHandle x, JQHandle spectrum, JQSlot instance, int32_t start, int32_t fft_size, uint8_t shift);
JQ_API int32_t InvCxKWFFTH(JQHandle spectrum, JQHandle x, JQSlot instance);
JQ_API int32_t InvCxKWFFTH80(JQHandle spectrum, JQHandle x, JQSlot instance, uint8_t shifted);
JQ_API int32_t InvCxKWFFTH80_IDP(JQHandle spectrum, JQHandle x, JQSlot instance, uint8_t shifted);
JQ_API int32_t InvReKWFFTH(JQHandle spectrum, JQHandle x, JQSlot instance);
JQ_API int32_t InvReKWFFTH80(JQHandle spectrum, JQHandle x, JQSlot instance, uint8_t shifted);
JQ_API int32_t InvReKWFFTH80_IDP(JQHandle spectrum, JQHandle x, JQSlot instance, uint8_t shifted);
JQ_API int32_t ReKWFFTHCH(JQHandle x, JQHandle spectrum, JQSlot instance);
JQ_API int32_t ReKWFFTHCH_IDP(JQHandle x, JQHandle spectrum, JQSlot instance);
JQ_API int32_t InvReKWFFTHCH(JQHandle spectrum, JQHandle x, JQSlot instance);
JQ_API int32_t InvReKWFFTHCH_IDP(JQHandle spectrum, JQHandle x, JQSlot instance);

JQ_API int32_t CxFFT2D_H(JQHandle x, int32_t row_offset, int32_t col_offset, int32_t rows, int32_t cols, uint8_t shift, JQHandle spectrum, JQSlot row_instance, JQSlot col_instance);
JQ_API int32_t CxFFT2D_H_IDP(JQHandle x, int32_t row_offset, int32_t col_offset, int32_t rows, int32_t cols, uint8_t shift, JQHandle spectrum, JQSlot instance);
JQ_API int32_t ReFFT2D_H(JQHandle x, int32_t row_offset, int32_t col_offset, int32_t rows, int32_t cols, uint8_t shift, JQHandle spectrum, JQSlot row_instance, JQSlot col_instance);
JQ_API int32_t ReFFT2D_H_IDP(JQHandle x, int32_t row_offset, int32_t col_offset, int32_t rows, int32_t cols, uint8_t shift, JQHandle spectrum, JQSlot instance);
JQ_API int32_t CxInvFFT2D_H(JQHandle spectrum, uint8_t shifted, JQHandle x, JQSlot row_instance, JQSlot col_instance);
JQ_API int32_t CxInvFFT2D_H_IDP(JQHandle spectrum, uint8_t shifted, JQHandle x, JQSlot instance);
JQ_API int32_t ReInvFFT2D_H(JQHandle spectrum, uint8_t shifted, JQHandle x, JQSlot row_instance, JQSlot col_instance);
JQ_API int32_t ReInvFFT2D_H_IDP(JQHandle spectrum, uint8_t shifted, JQHandle x, JQSlot instance);

JQ_API int32_t SpectrumH(JQHandle signal, JQSlot instance);
JQ_API int32_t SpectrumH_IDP(JQHandle signal, JQSlot instance);
JQ_API int32_t CxSpectrumH(JQHandle signal, JQHandle power, JQSlot instance);
JQ_API int32_t CxSpectrumH_IDP(JQHandle signal, JQHandle power, JQSlot instance);
JQ_API int32_t CrossSpectrumH(JQHandle x, JQHandle y, JQHandle spectrum, JQSlot instance);
JQ_API int32_t CrossSpectrumH_IDP(JQHandle x, JQHandle y, JQHandle spectrum, JQSlot instance);
JQ_API int32_t CxCrossSpectrumH(JQHandle x, JQHandle y, JQHandle spectrum, JQSlot instance);
JQ_API int32_t CxCrossSpectrumH_IDP(JQHandle x, JQHandle y, JQHandle spectrum, JQSlot instance);

#ifdef __cplusplus
}
#endif
#endif
