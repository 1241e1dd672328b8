/* Statistics: descriptive statistics and histograms. Population statistics
 * (sums divided by n); every sum runs left to right. The _head exports clear
 * their error parameter, store the code there and return 0; on an error the
 * scalar result is NaN and array outputs are emptied. MSE_head reports +20004
 * with a valid result when the two lengths differ. */
#ifndef JQANLYS_STATS_H
#define JQANLYS_STATS_H
#ifdef __cplusplus
extern "C" {
#endif

JQ_API int32_t Mean_head(JQ_IN JQArrF64 x, JQ_OUT double* mean, JQ_OUT int32_t* error);
JQ_API int32_t RMS_head(JQ_IN JQArrF64 x, JQ_OUT double* rms, JQ_OUT int32_t* error);
/* sqrt(sum(re^2 + im^2) / n); returns the code. */
JQ_API int32_t CxRMS_head(JQ_IN JQArrC128 x, JQ_OUT double* rms);
/* Mean of (x - y)^2 over the first min(nx, ny) pairs. */
JQ_API int32_t MSE_head(JQ_IN JQArrF64 x, JQ_IN JQArrF64 y, JQ_OUT double* mse, JQ_OUT int32_t* error);
/* Central moment sum((x - mean)^k) / n, k >= 1. */
JQ_API int32_t Moment_head(JQ_IN JQArrF64 x, JQ_IN int32_t* order, JQ_OUT double* moment, JQ_OUT int32_t* error);
/* -20104 when the data hold an infinity or NaN. */
JQ_API int32_t Median_head(JQ_IN JQArrF64 x, JQ_OUT double* median, JQ_OUT int32_t* error);
/* Modes in ascending order: exact modes for intervals < 1, otherwise the
 * centres of the fullest bins of an equal-width histogram; returns the code. */
JQ_API int32_t ModeH(JQ_IN JQArrF64 x, int32_t intervals, JQ_OUT JQArrF64 modes);
/* Equal-width histogram between the data's extremes; the maximum always
 * lands in the last bin. */
JQ_API int32_t histgran_head(JQ_IN JQArrF64 x, JQ_IN int32_t* intervals, JQ_OUT JQArrI32 counts, JQ_OUT JQArrF64 centres, JQ_OUT int32_t* error);
/* Histogram over given bin edges (at least 2, non-decreasing, else -20006
 * or -20016): interval i is [edges[i], edges[i+1]), the last one
 * closed; values outside the edges and NaNs are not counted. Returns the code. */
JQ_API int32_t GenHistH(JQ_IN JQArrF64 x, JQ_IN JQArrF64 edges, JQ_OUT JQArrI32 counts);
/* Pearson's chi-square statistic of a table of counts, sum((O - E)^2 / E)
 * with E = row total * column total / total: -20003 for an empty table,
 * -20104 for an infinite or NaN count, -20004 for a negative one, -20061 for
 * a row or column summing to 0. */
JQ_API int32_t Contingency_head(JQ_IN JQMatF64 table, JQ_OUT double* statistic, JQ_OUT int32_t* error);

#ifdef __cplusplus
}
#endif
#endif
