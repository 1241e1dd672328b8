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

JQ_API int32_t white(JQ_OUT JQArrF64 out, JQ_IN int32_t* n, JQ_IN double* amplitude, JQ_IN int32_t* seed, JQ_OUT int32_t* error, JQ_INOUT JQRandomState* state);
JQ_API int32_t Gauss(JQ_OUT JQArrF64 out, JQ_IN int32_t* n, JQ_IN double* sd, JQ_IN int32_t* seed, JQ_OUT int32_t* error, JQ_INOUT JQRandomState* state, JQ_INOUT JQGaussSpare* spare);
/* The harmonics of the record below Nyquist, each of the given amplitude, with random phases. */
JQ_API int32_t PeriodNoise(JQ_IN int32_t* n, JQ_IN double* amplitude, JQ_IN int32_t* seed, JQ_OUT JQArrF64 out, JQ_OUT int32_t* error, JQ_INOUT JQRandomState* state);
JQ_API int32_t GammaNoiseH(JQ_OUT JQArrF64 out, int32_t n, int32_t order, int32_t seed, JQ_INOUT JQRandomState* state);
JQ_API int32_t PoissonNoiseH(JQ_OUT JQArrF64 out, int32_t n, double mean, int32_t seed, JQ_INOUT JQRandomState* state);
JQ_API int32_t BinomialNoiseH(JQ_OUT JQArrU32 out, int32_t n, int32_t trials, double p, int32_t seed, JQ_INOUT JQRandomState* state, JQ_INOUT JQBinomialCache* cache);

/* Random permutations: method 0 is the early biased shuffle, any other the unbiased one. */
JQ_API int32_t RiffleIntNum_head(JQ_OUT JQArrI32 out, int32_t n, int32_t seed, JQ_INOUT JQRandomState* state);
JQ_API int32_t RiffleIntNum2012_head(JQ_OUT JQArrI32 out, int32_t n, int32_t seed, JQ_INOUT JQRandomState* state, int32_t method);
JQ_API int32_t RiffleArrayDBL_head(JQ_INOUT JQArrF64 array, JQ_OUT JQArrI32 index, int32_t seed, JQ_INOUT JQRandomState* state);
JQ_API int32_t RiffleArrayDBL2012_head(JQ_INOUT JQArrF64 array, JQ_OUT JQArrI32 index, int32_t seed, JQ_INOUT JQRandomState* state, int32_t method);
JQ_API int32_t RiffleArrayCDB_head(JQ_INOUT JQArrC128 array, JQ_OUT JQArrI32 index, int32_t seed, JQ_INOUT JQRandomState* state);
JQ_API int32_t RiffleArrayCDB2012_head(JQ_INOUT JQArrC128 array, JQ_OUT JQArrI32 index, int32_t seed, JQ_INOUT JQRandomState* state, int32_t method);
JQ_API int32_t RiffleArrayInt_head(JQ_INOUT JQArrI32 array, JQ_OUT JQArrI32 index, int32_t seed, JQ_INOUT JQRandomState* state);
JQ_API int32_t RiffleArrayInt2012_head(JQ_INOUT JQArrI32 array, JQ_OUT JQArrI32 index, int32_t seed, JQ_INOUT JQRandomState* state, int32_t method);

#ifdef __cplusplus
}
#endif
#endif
