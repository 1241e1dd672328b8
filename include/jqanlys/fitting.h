/* Curve fitting: least squares with method codes, straight lines,
 * polynomials with fixed coefficients, general linear models, exponential,
 * power and logarithmic curves, robust fits, goodness of fit and bounds.
 *
 * Exports return their status (0, a negative error, or a positive warning
 * whose outputs are valid: 20001 rank-deficient solution, 20031 constrained
 * polynomial of order above 25), except the Coef members, which store it in
 * the trailing `status` and return 0. On an error every array output is
 * emptied and every scalar output is NaN.
 *
 * Method codes: 0 SVD, 1-3 QR (identical), 4 normal equations by LU,
 * 5 normal equations by Cholesky, 6 SVD dropping singular values at or
 * below rows * sigma_max * 2.220446049250313e-16; others -20061.
 * Weights (count 0 for none, or n) are used by absolute value: the fit
 * minimises sum |w_i| (y_i - f_i)^2 and the MSE is that sum over n.
 *
 * Codes: -20001 memory; -20002 lengths differ; -20003 empty input; -20006
 * fewer than 2 points; -20021 no columns; -20027 data outside a logarithm's
 * domain; -20037 fewer points than free coefficients; -20041 singular
 * system (QR, LU); -20052 bad degrees of freedom; -20053 confidence level
 * outside (0, 1); -20061 bad method; -20062 SVD did not converge; -20068 NaN
 * or infinite input; -20071 normal matrix not positive definite (Cholesky);
 * -20103 negative order; -20104 NaN residual in a robust fit; -20116 robust
 * fit failed; -20141 exactly n - 1 zero weights (straight line). */
#ifndef JQANLYS_FITTING_H
#define JQANLYS_FITTING_H
#ifdef __cplusplus
extern "C" {
#endif

/* y = slope x + intercept by weighted sums. */
JQ_API int32_t LinFit_head(JQ_IN JQArrF64 y, JQ_IN JQArrF64 x, JQ_IN JQArrF64 weights, JQ_OUT JQArrF64 best_fit, JQ_OUT double* slope, JQ_OUT double* intercept, JQ_OUT double* mse);
JQ_API int32_t LinFitCoef_head(JQ_IN JQArrF64 y, JQ_IN JQArrF64 x, JQ_OUT double* slope, JQ_OUT double* intercept, JQ_OUT int32_t* status);
JQ_API int32_t LinFitCoef80_head(JQ_IN JQArrF64 y, JQ_IN JQArrF64 x, JQ_IN JQArrF64 weights, JQ_OUT double* slope, JQ_OUT double* intercept, JQ_OUT int32_t* status);

/* Polynomial of the given order; coefficient k multiplies x^k. Fixed
 * coefficients: powers (indices outside 0..order ignored) and their values. */
JQ_API int32_t PolyFit_head(JQ_IN JQArrF64 x, JQ_IN JQArrF64 y, int32_t order, int32_t method, JQ_OUT JQArrF64 best_fit, JQ_OUT JQArrF64 coefficients, JQ_OUT double* mse);
JQ_API int32_t PolyFit80_head(JQ_IN JQArrF64 x, JQ_IN JQArrF64 y, int32_t order, int32_t method, JQ_IN JQArrI32 fixed_powers, JQ_IN JQArrF64 fixed_values, JQ_OUT JQArrF64 best_fit, JQ_OUT JQArrF64 coefficients, JQ_OUT double* mse);
JQ_API int32_t PolyFit81_head(JQ_IN JQArrF64 x, JQ_IN JQArrF64 y, int32_t order, JQ_IN JQArrF64 weights, int32_t method, JQ_IN JQArrI32 fixed_powers, JQ_IN JQArrF64 fixed_values, JQ_OUT JQArrF64 best_fit, JQ_OUT JQArrF64 coefficients, JQ_OUT double* mse);

/* General linear model: design is n x m, row i the m basis functions at
 * point i. covariance (m x m) is the unscaled (A^T W A)^-1. */
JQ_API int32_t GenLSFit_head(JQ_IN JQMatF64 design, JQ_IN JQArrF64 y, int32_t method, JQ_OUT JQArrF64 best_fit, JQ_OUT JQArrF64 coefficients, JQ_OUT double* mse, JQ_OUT JQMatF64 covariance);
JQ_API int32_t GenLSFit80_head(JQ_IN JQMatF64 design, JQ_IN JQArrF64 y, JQ_IN JQArrF64 weights, int32_t method, JQ_OUT JQArrF64 best_fit, JQ_OUT JQArrF64 coefficients, JQ_OUT double* mse, JQ_OUT JQMatF64 covariance);

/* y = a e^(b x); std_dev (count 0 or n) weighs point i by 1/sd_i^2 (a zero
 * deviation by 1). Start from the fit of ln|y|, refined to the least-squares
 * optimum. All y of one sign and non-zero, else -20027. */
JQ_API int32_t ExpFit_head(JQ_IN JQArrF64 y, JQ_IN JQArrF64 x, JQ_OUT JQArrF64 best_fit, JQ_OUT double* a, JQ_OUT double* b, JQ_OUT double* mse);
JQ_API int32_t ExpFit80_head(JQ_IN JQArrF64 y, JQ_IN JQArrF64 x, JQ_IN JQArrF64 std_dev, JQ_OUT JQArrF64 best_fit, JQ_OUT double* a, JQ_OUT double* b, JQ_OUT double* mse);
JQ_API int32_t ExpFitCoef_head(JQ_IN JQArrF64 y, JQ_IN JQArrF64 x, JQ_OUT double* a, JQ_OUT double* b, JQ_OUT int32_t* status);
JQ_API int32_t ExpFitCoef80_head(JQ_IN JQArrF64 y, JQ_IN JQArrF64 x, JQ_IN JQArrF64 std_dev, JQ_OUT double* a, JQ_OUT double* b, JQ_OUT int32_t* status);
/* y = a x^b; x > 0 and y of one sign, else -20027. */
JQ_API int32_t PowerFit_head(JQ_IN JQArrF64 y, JQ_IN JQArrF64 x, JQ_OUT JQArrF64 best_fit, JQ_OUT double* a, JQ_OUT double* b, JQ_OUT double* mse);
JQ_API int32_t PowerFitCoef_head(JQ_IN JQArrF64 y, JQ_IN JQArrF64 x, JQ_OUT double* a, JQ_OUT double* b, JQ_OUT int32_t* status);
/* y = a + b ln x; x > 0, else -20027. */
JQ_API int32_t LogFit_head(JQ_IN JQArrF64 y, JQ_IN JQArrF64 x, JQ_OUT JQArrF64 best_fit, JQ_OUT double* a, JQ_OUT double* b, JQ_OUT double* mse);
JQ_API int32_t LogFitCoef_head(JQ_IN JQArrF64 y, JQ_IN JQArrF64 x, JQ_OUT double* a, JQ_OUT double* b, JQ_OUT int32_t* status);

/* SSE = sum w (y - f)^2, R^2 = 1 - SSE/SST (SST about the plain mean of y;
 * constant y: 1 when fitted exactly, else +infinity), RMSE = sqrt(SSE/dof).
 * Weights are used with their sign. dof below 1 means n - 2; dof >= n:
 * -20052. */
JQ_API int32_t GoodnessOfFit_head(JQ_IN JQArrF64 y, JQ_IN JQArrF64 best_fit, JQ_IN JQArrF64 weights, int32_t dof, JQ_OUT double* sse, JQ_OUT double* r_squared, JQ_OUT double* rmse);

/* Bounds at a confidence level in (0, 1): f -+ t s sqrt(h) for the curve
 * (ConfBnd), f -+ t s sqrt(1/|w| + h) for a new observation (PredBnd), with
 * s^2 = SSE/(n - m), h_i = a_i (A^T W A)^+ a_i^T and t the Student t quantile
 * at 1 - (1 - level)/2 with n - m degrees of freedom (to 0.0001). The
 * exponential, power and logarithmic members fit the curve first (weights
 * as in the fits) and return its two coefficients (a, b); their design is
 * the model's Jacobian at the optimum. */
JQ_API int32_t ConfBndPoly_head(JQ_IN JQArrF64 x, JQ_IN JQArrF64 y, JQ_IN JQArrF64 weights, JQ_IN JQArrF64 coefficients, double level, JQ_OUT JQArrF64 lower, JQ_OUT JQArrF64 upper);
JQ_API int32_t PredBndPoly_head(JQ_IN JQArrF64 x, JQ_IN JQArrF64 y, JQ_IN JQArrF64 weights, JQ_IN JQArrF64 coefficients, double level, JQ_OUT JQArrF64 lower, JQ_OUT JQArrF64 upper);
JQ_API int32_t ConfBndLinear_head(JQ_IN JQArrF64 x, JQ_IN JQArrF64 y, JQ_IN JQArrF64 weights, double slope, double intercept, double level, JQ_OUT JQArrF64 lower, JQ_OUT JQArrF64 upper);
JQ_API int32_t PredBndLinear_head(JQ_IN JQArrF64 x, JQ_IN JQArrF64 y, JQ_IN JQArrF64 weights, double slope, double intercept, double level, JQ_OUT JQArrF64 lower, JQ_OUT JQArrF64 upper);
JQ_API int32_t ConfBndExp_head(JQ_IN JQArrF64 x, JQ_IN JQArrF64 y, JQ_IN JQArrF64 weights, double level, JQ_OUT JQArrF64 coefficients, JQ_OUT JQArrF64 lower, JQ_OUT JQArrF64 upper);
JQ_API int32_t PredBndExp_head(JQ_IN JQArrF64 x, JQ_IN JQArrF64 y, JQ_IN JQArrF64 weights, double level, JQ_OUT JQArrF64 coefficients, JQ_OUT JQArrF64 lower, JQ_OUT JQArrF64 upper);
JQ_API int32_t ConfBndPower_head(JQ_IN JQArrF64 x, JQ_IN JQArrF64 y, JQ_IN JQArrF64 weights, double level, JQ_OUT JQArrF64 coefficients, JQ_OUT JQArrF64 lower, JQ_OUT JQArrF64 upper);
JQ_API int32_t PredBndPower_head(JQ_IN JQArrF64 x, JQ_IN JQArrF64 y, JQ_IN JQArrF64 weights, double level, JQ_OUT JQArrF64 coefficients, JQ_OUT JQArrF64 lower, JQ_OUT JQArrF64 upper);
JQ_API int32_t ConfBndLog_head(JQ_IN JQArrF64 x, JQ_IN JQArrF64 y, JQ_IN JQArrF64 weights, double level, JQ_OUT JQArrF64 coefficients, JQ_OUT JQArrF64 lower, JQ_OUT JQArrF64 upper);
JQ_API int32_t PredBndLog_head(JQ_IN JQArrF64 x, JQ_IN JQArrF64 y, JQ_IN JQArrF64 weights, double level, JQ_OUT JQArrF64 coefficients, JQ_OUT JQArrF64 lower, JQ_OUT JQArrF64 upper);

/* Robust fits by iteratively reweighted least squares around the method
 * code. tolerance <= 0 means 0.0001; max_iter bounds the reweighting.
 * LAR (least absolute residual): weights 1/max(0.01 median|r|, |r_i|)
 * (times the caller's), stopping when the measure sum |(f - y) w| changes by
 * at most tolerance relative; the best of the first, previous and last fits
 * is returned. Bisquare: Tukey's weights of leverage-adjusted residuals
 * scaled by their MAD (4.685, 0.6745); -20116 when too many points are
 * weighted to zero. The MSE and covariance are those of the final weighted
 * solve. The exponential and power members refit the curve at every step. */
JQ_API int32_t GenLARFit_head(JQ_IN JQMatF64 design, JQ_IN JQArrF64 y, JQ_IN JQArrF64 weights, int32_t method, double tolerance, int32_t max_iter, JQ_OUT JQArrF64 best_fit, JQ_OUT JQArrF64 coefficients, JQ_OUT double* mse, JQ_OUT JQMatF64 covariance);
JQ_API int32_t GenBisquareFit_head(JQ_IN JQMatF64 design, JQ_IN JQArrF64 y, int32_t method, double tolerance, int32_t max_iter, JQ_OUT JQArrF64 best_fit, JQ_OUT JQArrF64 coefficients, JQ_OUT double* mse, JQ_OUT JQMatF64 covariance);
JQ_API int32_t GenBisquareFit_Weight_head(JQ_IN JQMatF64 design, JQ_IN JQArrF64 y, JQ_IN JQArrF64 weights, int32_t method, double tolerance, int32_t max_iter, JQ_OUT JQArrF64 best_fit, JQ_OUT JQArrF64 coefficients, JQ_OUT double* mse, JQ_OUT JQMatF64 covariance);
JQ_API int32_t LARPolyFit_head(JQ_IN JQArrF64 x, JQ_IN JQArrF64 y, int32_t order, JQ_IN JQArrF64 weights, int32_t method, JQ_IN JQArrI32 fixed_powers, JQ_IN JQArrF64 fixed_values, double tolerance, int32_t max_iter, JQ_OUT JQArrF64 best_fit, JQ_OUT JQArrF64 coefficients, JQ_OUT double* mse);
JQ_API int32_t BiPolyFit_head(JQ_IN JQArrF64 x, JQ_IN JQArrF64 y, int32_t order, JQ_IN JQArrF64 weights, int32_t method, JQ_IN JQArrI32 fixed_powers, JQ_IN JQArrF64 fixed_values, double tolerance, int32_t max_iter, JQ_OUT JQArrF64 best_fit, JQ_OUT JQArrF64 coefficients, JQ_OUT double* mse);
JQ_API int32_t LARLinearFit_head(JQ_IN JQArrF64 y, JQ_IN JQArrF64 x, JQ_IN JQArrF64 weights, double tolerance, int32_t max_iter, JQ_OUT JQArrF64 best_fit, JQ_OUT double* slope, JQ_OUT double* intercept, JQ_OUT double* mse);
JQ_API int32_t BiLinearFit_head(JQ_IN JQArrF64 y, JQ_IN JQArrF64 x, JQ_IN JQArrF64 weights, double tolerance, int32_t max_iter, JQ_OUT JQArrF64 best_fit, JQ_OUT double* slope, JQ_OUT double* intercept, JQ_OUT double* mse);
JQ_API int32_t LARExpFit_head(JQ_IN JQArrF64 y, JQ_IN JQArrF64 x, JQ_IN JQArrF64 weights, double tolerance, int32_t max_iter, JQ_OUT JQArrF64 best_fit, JQ_OUT double* a, JQ_OUT double* b, JQ_OUT double* mse);
JQ_API int32_t BiExpFit_head(JQ_IN JQArrF64 y, JQ_IN JQArrF64 x, JQ_IN JQArrF64 weights, double tolerance, int32_t max_iter, JQ_OUT JQArrF64 best_fit, JQ_OUT double* a, JQ_OUT double* b, JQ_OUT double* mse);
JQ_API int32_t LARPowerFit_head(JQ_IN JQArrF64 y, JQ_IN JQArrF64 x, JQ_IN JQArrF64 weights, double tolerance, int32_t max_iter, JQ_OUT JQArrF64 best_fit, JQ_OUT double* a, JQ_OUT double* b, JQ_OUT double* mse);
JQ_API int32_t BiPowerFit_head(JQ_IN JQArrF64 y, JQ_IN JQArrF64 x, JQ_IN JQArrF64 weights, double tolerance, int32_t max_iter, JQ_OUT JQArrF64 best_fit, JQ_OUT double* a, JQ_OUT double* b, JQ_OUT double* mse);
JQ_API int32_t LARLogFit_head(JQ_IN JQArrF64 y, JQ_IN JQArrF64 x, JQ_IN JQArrF64 weights, double tolerance, int32_t max_iter, JQ_OUT JQArrF64 best_fit, JQ_OUT double* a, JQ_OUT double* b, JQ_OUT double* mse);
JQ_API int32_t BiLogFit_head(JQ_IN JQArrF64 y, JQ_IN JQArrF64 x, JQ_IN JQArrF64 weights, double tolerance, int32_t max_iter, JQ_OUT JQArrF64 best_fit, JQ_OUT double* a, JQ_OUT double* b, JQ_OUT double* mse);

/* Gaussian peak y = amplitude exp(-((x - centre)/sigma)^2 / 2), sigma >= 0;
 * weights as in the other fits; at least 4 points (-20069). Started from a
 * parabola through ln|y| near the peak and refined by Levenberg-Marquardt. */
JQ_API int32_t GaussianPeakFit_head(JQ_IN JQArrF64 y, JQ_IN JQArrF64 x, JQ_IN JQArrF64 weights, JQ_OUT JQArrF64 best_fit, JQ_OUT double* amplitude, JQ_OUT double* centre, JQ_OUT double* sigma, JQ_OUT double* mse);
JQ_API int32_t GaussianPeakFitCoef_head(JQ_IN JQArrF64 y, JQ_IN JQArrF64 x, JQ_IN JQArrF64 weights, JQ_OUT double* amplitude, JQ_OUT double* centre, JQ_OUT double* sigma, JQ_OUT int32_t* status);
JQ_API int32_t LARGaussFit_head(JQ_IN JQArrF64 y, JQ_IN JQArrF64 x, JQ_IN JQArrF64 weights, double tolerance, int32_t max_iter, JQ_OUT JQArrF64 best_fit, JQ_OUT double* amplitude, JQ_OUT double* centre, JQ_OUT double* sigma, JQ_OUT double* mse);
JQ_API int32_t BiGaussFit_head(JQ_IN JQArrF64 y, JQ_IN JQArrF64 x, JQ_IN JQArrF64 weights, double tolerance, int32_t max_iter, JQ_OUT JQArrF64 best_fit, JQ_OUT double* amplitude, JQ_OUT double* centre, JQ_OUT double* sigma, JQ_OUT double* mse);
/* Bounds of the Gaussian peak fit; coefficients receives amplitude, centre, sigma. */
JQ_API int32_t ConfBndGauss_head(JQ_IN JQArrF64 x, JQ_IN JQArrF64 y, JQ_IN JQArrF64 weights, double level, JQ_OUT JQArrF64 coefficients, JQ_OUT JQArrF64 lower, JQ_OUT JQArrF64 upper);
JQ_API int32_t PredBndGauss_head(JQ_IN JQArrF64 x, JQ_IN JQArrF64 y, JQ_IN JQArrF64 weights, double level, JQ_OUT JQArrF64 coefficients, JQ_OUT JQArrF64 lower, JQ_OUT JQArrF64 upper);

/* Bounded fits: each coefficient held in [lower_k, upper_k] (infinite ends
 * allowed); lower and upper hold one value per coefficient, in the order of
 * the outputs (slope, intercept; a, b; amplitude, centre, sigma), else
 * -20002; a NaN bound -20068; a lower bound above its upper -20061. The
 * straight line is solved exactly over the box; the curves refine their
 * unbounded fit, clipped into the box, by projected Levenberg-Marquardt.
 * The LAR and bisquare members reweight around the bounded line. */
JQ_API int32_t BoundLinearFit_head(JQ_IN JQArrF64 y, JQ_IN JQArrF64 x, JQ_IN JQArrF64 weights, JQ_IN JQArrF64 lower, JQ_IN JQArrF64 upper, JQ_OUT JQArrF64 best_fit, JQ_OUT double* slope, JQ_OUT double* intercept, JQ_OUT double* mse);
JQ_API int32_t BoundLinearFitLAR_head(JQ_IN JQArrF64 y, JQ_IN JQArrF64 x, JQ_IN JQArrF64 weights, JQ_IN JQArrF64 lower, JQ_IN JQArrF64 upper, double tolerance, int32_t max_iter, JQ_OUT JQArrF64 best_fit, JQ_OUT double* slope, JQ_OUT double* intercept, JQ_OUT double* mse);
JQ_API int32_t BoundLinearFitBi_head(JQ_IN JQArrF64 y, JQ_IN JQArrF64 x, JQ_IN JQArrF64 weights, JQ_IN JQArrF64 lower, JQ_IN JQArrF64 upper, double tolerance, int32_t max_iter, JQ_OUT JQArrF64 best_fit, JQ_OUT double* slope, JQ_OUT double* intercept, JQ_OUT double* mse);
JQ_API int32_t BoundExpFit_head(JQ_IN JQArrF64 y, JQ_IN JQArrF64 x, JQ_IN JQArrF64 weights, JQ_IN JQArrF64 lower, JQ_IN JQArrF64 upper, JQ_OUT JQArrF64 best_fit, JQ_OUT double* a, JQ_OUT double* b, JQ_OUT double* mse);
JQ_API int32_t BoundPowerFit_head(JQ_IN JQArrF64 y, JQ_IN JQArrF64 x, JQ_IN JQArrF64 weights, JQ_IN JQArrF64 lower, JQ_IN JQArrF64 upper, JQ_OUT JQArrF64 best_fit, JQ_OUT double* a, JQ_OUT double* b, JQ_OUT double* mse);
JQ_API int32_t BoundLogFit_head(JQ_IN JQArrF64 y, JQ_IN JQArrF64 x, JQ_IN JQArrF64 weights, JQ_IN JQArrF64 lower, JQ_IN JQArrF64 upper, JQ_OUT JQArrF64 best_fit, JQ_OUT double* a, JQ_OUT double* b, JQ_OUT double* mse);
JQ_API int32_t BoundGaussianFit_head(JQ_IN JQArrF64 y, JQ_IN JQArrF64 x, JQ_IN JQArrF64 weights, JQ_IN JQArrF64 lower, JQ_IN JQArrF64 upper, JQ_OUT JQArrF64 best_fit, JQ_OUT double* amplitude, JQ_OUT double* centre, JQ_OUT double* sigma, JQ_OUT double* mse);

/* Outlier removal: the points kept go to x_out and y_out in their order;
 * removed (uint8, n) marks each dropped point with 1. RmvOutlierRng drops
 * the points whose y lies outside [low, high] (NaN bound -20068, low above
 * high -20061; a NaN y is dropped); RmvOutlierIndx drops the points at the
 * given indices (indices outside 0..n-1 are ignored). */
JQ_API int32_t RmvOutlierRng_head(JQ_IN JQArrF64 x, JQ_IN JQArrF64 y, double low, double high, JQ_OUT JQArrF64 x_out, JQ_OUT JQArrF64 y_out, JQ_OUT JQArrU8 removed);
JQ_API int32_t RmvOutlierIndx_head(JQ_IN JQArrF64 x, JQ_IN JQArrF64 y, JQ_IN JQArrI32 indices, JQ_OUT JQArrF64 x_out, JQ_OUT JQArrF64 y_out, JQ_OUT JQArrU8 removed);

#ifdef __cplusplus
}
#endif
#endif
