/* Transforms built on the FFT: cosine and sine transforms (1-D and 2-D),
 * Hilbert and Hartley transforms. The _IDP forms keep their tables in one
 * instance released by TransformUnreserveProc. */
#ifndef JQANLYS_DCT_H
#define JQANLYS_DCT_H
#ifdef __cplusplus
extern "C" {
#endif

JQ_API int32_t DCT_1DH(JQHandle x, JQHandle y, int32_t length, JQSlot instance);
JQ_API int32_t DCT_1DH_IDP(JQHandle x, JQHandle y, int32_t length, JQSlot instance);
JQ_API int32_t InvDCT_1DH(JQHandle y, JQHandle x, JQSlot instance);
JQ_API int32_t InvDCT_1DH_IDP(JQHandle y, JQHandle x, JQSlot instance);
JQ_API int32_t DST_1DH(JQHandle x, JQHandle y, int32_t length, JQSlot instance);
JQ_API int32_t DST_1DH_IDP(JQHandle x, JQHandle y, int32_t length, JQSlot instance);
JQ_API int32_t InvDST_1DH(JQHandle y, JQHandle x, JQSlot instance);
JQ_API int32_t InvDST_1DH_IDP(JQHandle y, JQHandle x, JQSlot instance);

JQ_API int32_t DCT_2DH(JQHandle x, JQHandle y, JQSlot row_instance, JQSlot col_instance);
JQ_API int32_t DCT_2DH_IDP(JQHandle x, JQHandle y, JQSlot instance);
JQ_API int32_t InvDCT_2DH(JQHandle y, JQHandle x, JQSlot row_instance, JQSlot col_instance);
JQ_API int32_t InvDCT_2DH_IDP(JQHandle y, JQHandle x, JQSlot instance);
JQ_API int32_t DST_2DH(JQHandle x, JQHandle y, JQSlot row_instance, JQSlot col_instance);
JQ_API int32_t DST_2DH_IDP(JQHandle x, JQHandle y, JQSlot instance);
JQ_API int32_t InvDST_2DH(JQHandle y, JQHandle x, JQSlot row_instance, JQSlot col_instance);
JQ_API int32_t InvDST_2DH_IDP(JQHandle y, JQHandle x, JQSlot instance);

JQ_API int32_t FastHilbertTransformH(JQHandle x, JQSlot instance);
JQ_API int32_t FastHilbertTransformH_IDP(JQHandle x, JQSlot instance);
JQ_API int32_t InvFastHilbertTransformH(JQHandle x, JQSlot instance);
JQ_API int32_t InvFastHilbertTransformH_IDP(JQHandle x, JQSlot instance);
JQ_API int32_t FHTH(JQHandle x, JQSlot instance);
JQ_API int32_t FHTH_IDP(JQHandle x, JQSlot instance);
JQ_API int32_t InvFHTH(JQHandle x, JQSlot instance);
JQ_API int32_t InvFHTH_IDP(JQHandle x, JQSlot instance);

#ifdef __cplusplus
}
#endif
#endif
