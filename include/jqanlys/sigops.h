/* Convolution, correlation and deconvolution of float64 sequences, 1-D and
 * 2-D.
 *
 * Method: 0 direct sum, 1 frequency domain (same values up to rounding).
 * Correlation normalisation: 0 none, 1 unbiased (each lag divided by its
 * number of overlapping pairs), 2 biased (every lag divided by the longer
 * length). Lag 0 of Rxy pairs the last sample of x with the first of y.
 * Size mode (2-D exports and CxConvolution): 0 the full result, 1 the size
 * of x, centred on the full result, 2 only where y lies wholly inside x
 * (needs x at least as large as y in every dimension, else -20008). A 2-D
 * correlation slides y over x, conjugated for complex data.
 *
 * Convolution, Rxy, Rxy80, AutoCorrelation and AutoCorrelation80 return 0
 * (or the host's status after a failed resize) and store the code in error;
 * Convolution with a method other than 0 or 1 sizes its output, leaves it
 * unwritten and reports 0, where the other exports reject it with -20061.
 * Deconvolution and CxConvolution store the code
 * and also return it; the 2-D exports return it. Failures empty the output. */
#ifndef JQANLYS_SIGOPS_H
#define JQANLYS_SIGOPS_H
#ifdef __cplusplus
extern "C" {
#endif

JQ_API int32_t Convolution(JQ_IN JQArrF64 x, JQ_IN JQArrF64 y, JQ_OUT JQArrF64 out, JQ_IN int32_t* method, JQ_OUT int32_t* error);
JQ_API int32_t Rxy(JQ_IN JQArrF64 x, JQ_IN JQArrF64 y, JQ_OUT JQArrF64 out, JQ_IN int32_t* method, JQ_OUT int32_t* error);
JQ_API int32_t Rxy80(JQ_IN JQArrF64 x, JQ_IN JQArrF64 y, JQ_OUT JQArrF64 out, JQ_IN int32_t* method, int32_t normalisation, JQ_OUT int32_t* error);
/* x is replaced by its 2n - 1 lags, computed in the frequency domain. */
JQ_API int32_t AutoCorrelation(JQ_INOUT JQArrF64 x, JQ_OUT int32_t* error);
JQ_API int32_t AutoCorrelation80(JQ_INOUT JQArrF64 x, int32_t normalisation, JQ_OUT int32_t* error);
/* y (n samples) is replaced by the n - m + 1 samples q with y = q * x, by long
 * division from the first sample (leading zeros of x are skipped); x of only
 * zeros gives non-finite values. */
JQ_API int32_t Deconvolution(JQ_INOUT JQArrF64 y, JQ_IN JQArrF64 x, JQ_OUT int32_t* error);
JQ_API int32_t CxConvolution(JQ_IN JQArrC128 x, JQ_IN JQArrC128 y, JQ_OUT JQArrC128 out, int32_t method, int32_t size_mode, JQ_OUT int32_t* error);

JQ_API int32_t Convolve_2DH(JQ_IN JQMatF64 x, JQ_IN JQMatF64 y, JQ_OUT JQMatF64 out, int32_t size_mode, int32_t method);
JQ_API int32_t CxConvolve_2DH(JQ_IN JQMatC128 x, JQ_IN JQMatC128 y, JQ_OUT JQMatC128 out, int32_t size_mode, int32_t method);
JQ_API int32_t Correlation_2DH(JQ_IN JQMatF64 x, JQ_IN JQMatF64 y, JQ_OUT JQMatF64 out, int32_t size_mode, int32_t method);
JQ_API int32_t CxCorrelation_2DH(JQ_IN JQMatC128 x, JQ_IN JQMatC128 y, JQ_OUT JQMatC128 out, int32_t size_mode, int32_t method);

#ifdef __cplusplus
}
#endif
#endif
