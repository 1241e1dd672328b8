/* Special functions: the gamma family, beta and the error functions. Each
 * writes its result through the last argument; a domain error gives NaN and
 * an overflow +infinity. */
#ifndef JQANLYS_SPECIAL_H
#define JQANLYS_SPECIAL_H
#ifdef __cplusplus
extern "C" {
#endif

JQ_API void JQ_Fact(int32_t n, JQ_OUT double* result);
JQ_API void JQ_LnFact(int32_t n, JQ_OUT double* result);
JQ_API void JQ_Gamma(double x, JQ_OUT double* result);
JQ_API void JQ_Gamma_85(double x, JQ_OUT double* result);
JQ_API void JQ_LnGamma(double x, JQ_OUT double* result);
JQ_API void JQ_Stirling(double x, JQ_OUT double* result);
JQ_API void JQ_Psi(double x, JQ_OUT double* result);
/* Regularized lower incomplete gamma P(a, x). */
JQ_API void JQ_GammaC(double a, double x, JQ_OUT double* result);
/* B(a, b) when x is NaN, otherwise the regularized incomplete beta I(x; a, b). */
JQ_API void JQ_Beta(double a, double b, double x, JQ_OUT double* result);
/* B(a, b) when selector is 1, otherwise I(x; a, b). */
JQ_API void JQ_Beta_85(double a, double b, double x, int32_t selector, JQ_OUT double* result);
JQ_API void JQ_Erf(double x, JQ_OUT double* result);
JQ_API void JQ_ErfC(double x, JQ_OUT double* result);
JQ_API void JQ_Dawson(double x, JQ_OUT double* result);
/* amplitude * exp(-((x - centre) / sigma)^2 / 2); NaN unless sigma > 0. */
JQ_API void JQ_Gauss(double x, double amplitude, double centre, double sigma, JQ_OUT double* result);
/* As JQ_Gauss, with sigma taken by magnitude; NaN for sigma = 0. */
JQ_API void JQ_Gauss_2011(double x, double amplitude, double centre, double sigma, JQ_OUT double* result);

#ifdef __cplusplus
}
#endif
#endif
