/* Noise generators and random permutations. Every export draws from the
 * host-owned generator state passed to it; a seed restarts the stream. */
#ifndef JQANLYS_NOISE_H
#define JQANLYS_NOISE_H
#ifdef __cplusplus
extern "C" {
#endif

/* The generator's three state words; seed them before the first draw. */
typedef struct JQRandomState {
  int32_t s1, s2, s3;
} JQRandomState;
/* The second deviate of the last Gaussian pair, unscaled, while flag != 0. */
typedef struct JQGaussSpare {
  int32_t flag;
  double spare;
} JQGaussSpare;
/* Values of the binomial rejection method kept between calls; zero-filled is empty. */
typedef struct JQBinomialCache {
  double p_old, q, ln_p, ln_q, n_old_f, ln_gamma_n1;
  int32_t n_old;
} JQBinomialCache;

JQ_API int32_t white(JQHandle out, int32_t* n, double* amplitude, int32_t* seed, int32_t* error, JQRandomState* state);
JQ_API int32_t Gauss(JQHandle out, int32_t* n, double* sd, int32_t* seed, int32_t* error, JQRandomState* state, JQGaussSpare* spare);
/* The harmonics of the record below Nyquist, each of the given amplitude, with random phases. */
JQ_API int32_t PeriodNoise(int32_t* n, double* amplitude, int32_t* seed, JQHandle out, int32_t* error, JQRandomState* state);
JQ_API int32_t GammaNoiseH(JQHandle out, int32_t n, int32_t order, int32_t seed, JQRandomState* state);
JQ_API int32_t PoissonNoiseH(JQHandle out, int32_t n, double mean, int32_t seed, JQRandomState* state);
JQ_API int32_t BinomialNoiseH(JQHandle out, int32_t n, int32_t trials, double p, int32_t seed, JQRandomState* state, JQBinomialCache* cache);

/* Random permutations: method 0 is the early biased shuffle, any other the unbiased one. */
JQ_API int32_t RiffleIntNum_head(JQHandle out, int32_t n, int32_t seed, JQRandomState* state);
JQ_API int32_t RiffleIntNum2012_head(JQHandle out, int32_t n, int32_t seed, JQRandomState* state, int32_t method);
JQ_API int32_t RiffleArrayDBL_head(JQHandle array, JQHandle index, int32_t seed, JQRandomState* state);
JQ_API int32_t RiffleArrayDBL2012_head(JQHandle array, JQHandle index, int32_t seed, JQRandomState* state, int32_t method);
JQ_API int32_t RiffleArrayCDB_head(JQHandle array, JQHandle index, int32_t seed, JQRandomState* state);
JQ_API int32_t RiffleArrayCDB2012_head(JQHandle array, JQHandle index, int32_t seed, JQRandomState* state, int32_t method);
JQ_API int32_t RiffleArrayInt_head(JQHandle array, JQHandle index, int32_t seed, JQRandomState* state);
JQ_API int32_t RiffleArrayInt2012_head(JQHandle array, JQHandle index, int32_t seed, JQRandomState* state, int32_t method);

#ifdef __cplusplus
}
#endif
#endif
