/* Probability distributions: cumulative distribution functions of the
 * normal, Student t, F and chi-square distributions and their inverses.
 * Arguments come by pointer. Every export but NormDist_head clears its error
 * parameter, stores the code there (-20052 degrees of freedom below 1, or
 * below 0 for ChiSquare_head; -20053 probability outside [0, 1]; -20104 a NaN
 * argument to the t or F distribution) and returns 0; on an error the result
 * is NaN. The normal pair are rational approximations (absolute error about
 * 1e-5 for the CDF, 4.5e-4 for the inverse); the other inverses bisect to a
 * bracket of width 1e-4 and return its lower end. */
#ifndef JQANLYS_DISTRIBUTIONS_H
#define JQANLYS_DISTRIBUTIONS_H
#ifdef __cplusplus
extern "C" {
#endif

JQ_API int32_t NormDist_head(JQ_IN const double* x, JQ_OUT double* p);
JQ_API int32_t TDist_head(JQ_IN const double* t, JQ_IN const int32_t* nu, JQ_OUT double* p, JQ_OUT int32_t* error);
JQ_API int32_t FDist_head(JQ_IN const double* f, JQ_IN const int32_t* nu1, JQ_IN const int32_t* nu2, JQ_OUT double* p, JQ_OUT int32_t* error);
JQ_API int32_t ChiSquare_head(JQ_IN const double* x, JQ_IN const int32_t* nu, JQ_OUT double* p, JQ_OUT int32_t* error);
JQ_API int32_t InvNdist_head(JQ_IN const double* p, JQ_OUT double* x, JQ_OUT int32_t* error);
JQ_API int32_t InvTdist_head(JQ_IN const double* p, JQ_IN const int32_t* nu, JQ_OUT double* t, JQ_OUT int32_t* error);
JQ_API int32_t InvFDist_head(JQ_IN const double* p, JQ_IN const int32_t* nu1, JQ_IN const int32_t* nu2, JQ_OUT double* f, JQ_OUT int32_t* error);
JQ_API int32_t InvChiSquare_head(JQ_IN const double* p, JQ_IN const int32_t* nu, JQ_OUT double* x, JQ_OUT int32_t* error);

#ifdef __cplusplus
}
#endif
#endif
