/* Transforms built on the FFT: cosine and sine transforms (1-D and 2-D),
 * Hilbert and Hartley transforms. The _IDP forms keep their tables in one
 * instance released by TransformUnreserveProc. */
#ifndef JQANLYS_DCT_H
#define JQANLYS_DCT_H
#ifdef __cplusplus
extern "C" {
#endif

JQ_API int32_t DCT_1DH(JQ_IN JQArrF64 x, JQ_OUT JQArrF64 y, int32_t length, JQ_INOUT JQSlot instance);
JQ_API int32_t DCT_1DH_IDP(JQ_IN JQArrF64 x, JQ_OUT JQArrF64 y, int32_t length, JQ_INOUT JQSlot instance);
JQ_API int32_t InvDCT_1DH(JQ_IN JQArrF64 y, JQ_OUT JQArrF64 x, JQ_INOUT JQSlot instance);
JQ_API int32_t InvDCT_1DH_IDP(JQ_IN JQArrF64 y, JQ_OUT JQArrF64 x, JQ_INOUT JQSlot instance);
JQ_API int32_t DST_1DH(JQ_IN JQArrF64 x, JQ_OUT JQArrF64 y, int32_t length, JQ_INOUT JQSlot instance);
JQ_API int32_t DST_1DH_IDP(JQ_IN JQArrF64 x, JQ_OUT JQArrF64 y, int32_t length, JQ_INOUT JQSlot instance);
JQ_API int32_t InvDST_1DH(JQ_IN JQArrF64 y, JQ_OUT JQArrF64 x, JQ_INOUT JQSlot instance);
JQ_API int32_t InvDST_1DH_IDP(JQ_IN JQArrF64 y, JQ_OUT JQArrF64 x, JQ_INOUT JQSlot instance);

JQ_API int32_t DCT_2DH(JQ_IN JQMatF64 x, JQ_OUT JQMatF64 y, JQ_INOUT JQSlot row_instance, JQ_INOUT JQSlot col_instance);
JQ_API int32_t DCT_2DH_IDP(JQ_IN JQMatF64 x, JQ_OUT JQMatF64 y, JQ_INOUT JQSlot instance);
JQ_API int32_t InvDCT_2DH(JQ_IN JQMatF64 y, JQ_OUT JQMatF64 x, JQ_INOUT JQSlot row_instance, JQ_INOUT JQSlot col_instance);
JQ_API int32_t InvDCT_2DH_IDP(JQ_IN JQMatF64 y, JQ_OUT JQMatF64 x, JQ_INOUT JQSlot instance);
JQ_API int32_t DST_2DH(JQ_IN JQMatF64 x, JQ_OUT JQMatF64 y, JQ_INOUT JQSlot row_instance, JQ_INOUT JQSlot col_instance);
JQ_API int32_t DST_2DH_IDP(JQ_IN JQMatF64 x, JQ_OUT JQMatF64 y, JQ_INOUT JQSlot instance);
JQ_API int32_t InvDST_2DH(JQ_IN JQMatF64 y, JQ_OUT JQMatF64 x, JQ_INOUT JQSlot row_instance, JQ_INOUT JQSlot col_instance);
JQ_API int32_t InvDST_2DH_IDP(JQ_IN JQMatF64 y, JQ_OUT JQMatF64 x, JQ_INOUT JQSlot instance);

JQ_API int32_t FastHilbertTransformH(JQ_INOUT JQArrF64 x, JQ_INOUT JQSlot instance);
JQ_API int32_t FastHilbertTransformH_IDP(JQ_INOUT JQArrF64 x, JQ_INOUT JQSlot instance);
JQ_API int32_t InvFastHilbertTransformH(JQ_INOUT JQArrF64 x, JQ_INOUT JQSlot instance);
JQ_API int32_t InvFastHilbertTransformH_IDP(JQ_INOUT JQArrF64 x, JQ_INOUT JQSlot instance);
JQ_API int32_t FHTH(JQ_INOUT JQArrF64 x, JQ_INOUT JQSlot instance);
JQ_API int32_t FHTH_IDP(JQ_INOUT JQArrF64 x, JQ_INOUT JQSlot instance);
JQ_API int32_t InvFHTH(JQ_INOUT JQArrF64 x, JQ_INOUT JQSlot instance);
JQ_API int32_t InvFHTH_IDP(JQ_INOUT JQArrF64 x, JQ_INOUT JQSlot instance);

#ifdef __cplusplus
}
#endif
#endif
