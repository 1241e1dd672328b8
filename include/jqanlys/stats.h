/* Statistics: descriptive statistics and histograms. */
#ifndef JQANLYS_STATS_H
#define JQANLYS_STATS_H
#ifdef __cplusplus
extern "C" {
#endif

JQ_API int32_t Mean_head(JQHandle x, double* mean, int32_t* error);
JQ_API int32_t RMS_head(JQHandle x, double* rms, int32_t* error);
JQ_API int32_t histgran_head(JQHandle x, int32_t* intervals, JQHandle counts, JQHandle centres,
                             int32_t* error);

#ifdef __cplusplus
}
#endif
#endif
