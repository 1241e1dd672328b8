/* Transforms: the FFT engine's tables, the FFT exports and the _IDP
 * instance release. */
#ifndef JQANLYS_TRANSFORMS_H
#define JQANLYS_TRANSFORMS_H
#ifdef __cplusplus
extern "C" {
#endif

/* A shared FFT table of one length; opaque to callers. */
typedef struct JQFFTTable JQFFTTable;

JQ_API JQFFTTable* create_kwfft_table(uint32_t n);
JQ_API void destroy_kwfft_table(JQ_IN JQFFTTable* table);
JQ_API int32_t TransformUnreserveProc(JQ_INOUT JQSlot instance);

JQ_API int32_t ReKWFFTH(JQ_IN JQArrF64 x, JQ_OUT JQArrC128 spectrum, JQ_INOUT JQSlot instance);
JQ_API int32_t ReKWFFTH80(JQ_IN JQArrF64 x, JQ_OUT JQArrC128 spectrum, JQ_INOUT JQSlot instance, int32_t start, int32_t fft_size, uint8_t shift);
JQ_API int32_t ReKWFFTH80_IDP(JQ_IN JQArrF64 x, JQ_OUT JQArrC128 spectrum, JQ_INOUT JQSlot instance, int32_t start, int32_t fft_size, uint8_t shift);
JQ_API int32_t CxKWFFTH(JQ_IN JQArrC128 x, JQ_OUT JQArrC128 spectrum, JQ_INOUT JQSlot instance);
JQ_API int32_t CxKWFFTH80(JQ_IN JQArrC128 x, JQ_OUT JQArrC128 spectrum, JQ_INOUT JQSlot instance, int32_t start, int32_t fft_size, uint8_t shift);
JQ_API int32_t CxKWFFTH80_IDP(JQ_IN JQArrC128 x, JQ_OUT JQArrC128 spectrum, JQ_INOUT JQSlot instance, int32_t start, int32_t fft_size, uint8_t shift);
JQ_API int32_t InvCxKWFFTH(JQ_IN JQArrC128 spectrum, JQ_OUT JQArrC128 x, JQ_INOUT JQSlot instance);
JQ_API int32_t InvCxKWFFTH80(JQ_IN JQArrC128 spectrum, JQ_OUT JQArrC128 x, JQ_INOUT JQSlot instance, uint8_t shifted);
JQ_API int32_t InvCxKWFFTH80_IDP(JQ_IN JQArrC128 spectrum, JQ_OUT JQArrC128 x, JQ_INOUT JQSlot instance, uint8_t shifted);
JQ_API int32_t InvReKWFFTH(JQ_IN JQArrC128 spectrum, JQ_OUT JQArrF64 x, JQ_INOUT JQSlot instance);
JQ_API int32_t InvReKWFFTH80(JQ_IN JQArrC128 spectrum, JQ_OUT JQArrF64 x, JQ_INOUT JQSlot instance, uint8_t shifted);
JQ_API int32_t InvReKWFFTH80_IDP(JQ_IN JQArrC128 spectrum, JQ_OUT JQArrF64 x, JQ_INOUT JQSlot instance, uint8_t shifted);
JQ_API int32_t ReKWFFTHCH(JQ_IN JQArrF64 x, JQ_OUT JQArrF64 spectrum, JQ_INOUT JQSlot instance);
JQ_API int32_t ReKWFFTHCH_IDP(JQ_IN JQArrF64 x, JQ_OUT JQArrF64 spectrum, JQ_INOUT JQSlot instance);
JQ_API int32_t InvReKWFFTHCH(JQ_IN JQArrF64 spectrum, JQ_OUT JQArrF64 x, JQ_INOUT JQSlot instance);
JQ_API int32_t InvReKWFFTHCH_IDP(JQ_IN JQArrF64 spectrum, JQ_OUT JQArrF64 x, JQ_INOUT JQSlot instance);

JQ_API int32_t CxFFT2D_H(JQ_IN JQMatC128 x, int32_t row_offset, int32_t col_offset, int32_t rows, int32_t cols, uint8_t shift, JQ_OUT JQMatC128 spectrum, JQ_INOUT JQSlot row_instance, JQ_INOUT JQSlot col_instance);
JQ_API int32_t CxFFT2D_H_IDP(JQ_IN JQMatC128 x, int32_t row_offset, int32_t col_offset, int32_t rows, int32_t cols, uint8_t shift, JQ_OUT JQMatC128 spectrum, JQ_INOUT JQSlot instance);
JQ_API int32_t ReFFT2D_H(JQ_IN JQMatF64 x, int32_t row_offset, int32_t col_offset, int32_t rows, int32_t cols, uint8_t shift, JQ_OUT JQMatC128 spectrum, JQ_INOUT JQSlot row_instance, JQ_INOUT JQSlot col_instance);
JQ_API int32_t ReFFT2D_H_IDP(JQ_IN JQMatF64 x, int32_t row_offset, int32_t col_offset, int32_t rows, int32_t cols, uint8_t shift, JQ_OUT JQMatC128 spectrum, JQ_INOUT JQSlot instance);
JQ_API int32_t CxInvFFT2D_H(JQ_IN JQMatC128 spectrum, uint8_t shifted, JQ_OUT JQMatC128 x, JQ_INOUT JQSlot row_instance, JQ_INOUT JQSlot col_instance);
JQ_API int32_t CxInvFFT2D_H_IDP(JQ_IN JQMatC128 spectrum, uint8_t shifted, JQ_OUT JQMatC128 x, JQ_INOUT JQSlot instance);
JQ_API int32_t ReInvFFT2D_H(JQ_IN JQMatC128 spectrum, uint8_t shifted, JQ_OUT JQMatF64 x, JQ_INOUT JQSlot row_instance, JQ_INOUT JQSlot col_instance);
JQ_API int32_t ReInvFFT2D_H_IDP(JQ_IN JQMatC128 spectrum, uint8_t shifted, JQ_OUT JQMatF64 x, JQ_INOUT JQSlot instance);

#ifdef __cplusplus
}
#endif
#endif
