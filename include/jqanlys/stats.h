/* Statistics: descriptive statistics and histograms. */
#ifndef JQANLYS_STATS_H
#define JQANLYS_STATS_H
#ifdef __cplusplus
extern "C" {
#endif

JQ_API int32_t Mean_head(JQ_IN JQArrF64 x, JQ_OUT double* mean, JQ_OUT int32_t* error);
JQ_API int32_t RMS_head(JQ_IN JQArrF64 x, JQ_OUT double* rms, JQ_OUT int32_t* error);
JQ_API int32_t histgran_head(JQ_IN JQArrF64 x, JQ_IN int32_t* intervals, JQ_OUT JQArrI32 counts, JQ_OUT JQArrF64 centres, JQ_OUT int32_t* error);

#ifdef __cplusplus
}
#endif
#endif
