/* Numeric integration of equally spaced samples by a Newton-Cotes rule:
 * 0 trapezoidal, 1 Simpson's, 2 Simpson's 3/8, 3 Bode. Whole panels run
 * from the start; the intervals left over take the next smaller rule. The
 * absolute value of each spacing is used.
 *
 * Each export returns the code (-20061 unknown rule, -20008 fewer samples
 * in a dimension than the rule's panel; the 2017 forms reject empty samples
 * with -20003 first) and stores the integral in result, NaN on failure.
 * 2-D samples are a matrix: dx between columns, dy between rows. 3-D samples
 * are planes of equal size stacked as the matrix's rows (rows divisible by
 * planes, else -20008), dz apart. */
#ifndef JQANLYS_INTEGRATION_H
#define JQANLYS_INTEGRATION_H
#ifdef __cplusplus
extern "C" {
#endif

JQ_API int32_t NumerIntegration_head(JQ_IN JQArrF64 samples, double spacing, int32_t method, JQ_OUT double* result);
JQ_API int32_t NumerIntegration_2017_head(JQ_IN JQArrF64 samples, double spacing, int32_t method, JQ_OUT double* result);
JQ_API int32_t NumerIntegration2D_head(JQ_IN JQMatF64 samples, double dx, double dy, int32_t method, JQ_OUT double* result);
JQ_API int32_t NumerIntegration2D_2017_head(JQ_IN JQMatF64 samples, double dx, double dy, int32_t method, JQ_OUT double* result);
JQ_API int32_t NumerIntegration3D_head(JQ_IN JQMatF64 samples, int32_t planes, double dx, double dy, double dz, int32_t method, JQ_OUT double* result);
JQ_API int32_t NumerIntegration3D_2017_head(JQ_IN JQMatF64 samples, int32_t planes, double dx, double dy, double dz, int32_t method, JQ_OUT double* result);

#ifdef __cplusplus
}
#endif
#endif
