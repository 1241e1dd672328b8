/* FIR design, FIR and multirate filtering, smoothing and the running median.
 *
 * Design exports take their scalars by pointer, store the code in a trailing
 * error argument and return 0 (or the host's status after a failed resize);
 * on failure the coefficient array comes back empty. The filter exports
 * ending in H return the code; on failure every output array is emptied. */
#ifndef JQANLYS_FIR_H
#define JQANLYS_FIR_H
#ifdef __cplusplus
extern "C" {
#endif

/* Equiripple (Parks-McClellan) design of *taps coefficients. Each row of
 * `bands` is one band: desired amplitude, lower edge, upper edge (in the
 * units of *fs) and weight. Type 0 multiband (the bands must span 0 to
 * fs/2), 1 differentiator (desired value = slope), 2 Hilbert transformer.
 * *iterations below 1 means 100. *deviation receives the achieved weighted
 * deviation, also when the exchange ran out of iterations (-20031); it is
 * NaN otherwise on failure. Returns 2 when the design ran out of memory. */
JQ_API int32_t Parks(JQ_IN int32_t* taps, JQ_IN double* fs, JQ_IN JQMatF64 bands, JQ_IN int32_t* type, JQ_OUT JQArrF64 coefficients, JQ_OUT double* deviation, JQ_IN int32_t* iterations, JQ_OUT int32_t* error);

/* Ideal response truncated to *taps samples, without a taper. Filter type
 * 0 lowpass (cut-off fl), 1 highpass (fl), 2 bandpass, 3 bandstop (fl, fh);
 * the type is clamped into 0..3 and written back. Highpass and bandstop need
 * an odd number of taps. */
JQ_API int32_t FIRCoefs(JQ_IN double* fs, JQ_IN double* fl, JQ_IN double* fh, JQ_IN int32_t* taps, JQ_OUT JQArrF64 coefficients, JQ_INOUT int32_t* type, JQ_OUT int32_t* error);

/* Narrowband interpolated design: a model filter meant to run with its taps
 * *factor samples apart, and an interpolator that removes the model's
 * images; together a lowpass (type 0, passband < stopband) or highpass
 * (type 1, passband > stopband) with the given edges, passband deviation
 * *ripple (linear, in (0, 1)) and stopband attenuation in dB. Both are
 * equiripple designs of odd length. A *factor below 1 is chosen to make the
 * two filters shortest; the factor used is written back. Codes: -20031
 * non-finite input or a filter longer than 4089 taps needed, -20023
 * non-positive fs or edge or edges in the wrong order for the type, -20020
 * an edge at or above fs/2, -20061 unknown type or a factor too large for
 * the edges, -20053 ripple outside (0, 1), -20140 attenuation not positive. */
JQ_API int32_t FIRNarrowCoef_head(JQ_IN double* fs, JQ_IN double* passband, JQ_IN double* stopband, JQ_IN double* ripple, JQ_IN double* attenuation, JQ_IN int32_t* type, JQ_INOUT int32_t* factor, JQ_OUT JQArrF64 model, JQ_OUT JQArrF64 interpolator, JQ_OUT int32_t* error);
/* The signal through that narrowband design, in place, starting from rest
 * (the output has the input's length). The complex form filters both parts. */
JQ_API int32_t FIRnarrowFilter_head(JQ_INOUT JQArrF64 x, JQ_IN double* fs, JQ_IN double* passband, JQ_IN double* stopband, JQ_IN double* ripple, JQ_IN double* attenuation, JQ_IN int32_t* type, JQ_INOUT int32_t* factor, JQ_OUT int32_t* error);
JQ_API int32_t CxSigFIRnarrowFilter_head(JQ_INOUT JQArrC128 x, JQ_IN double* fs, JQ_IN double* passband, JQ_IN double* stopband, JQ_IN double* ripple, JQ_IN double* attenuation, JQ_IN int32_t* type, JQ_INOUT int32_t* factor, JQ_OUT int32_t* error);

/* Running median over rank samples on each side (MedianFilterCIN) or left
 * and right samples (MedianFilter81_H; a negative right rank means the left
 * one), samples outside the signal counting as zeros; in place. An even
 * window takes the mean of its two middle values. Codes: -20003 empty
 * signal, -20004 negative left rank, -20008 signal not longer than the right
 * rank. */
JQ_API int32_t MedianFilterCIN(JQ_INOUT JQArrF64 x, JQ_IN int32_t* rank, JQ_OUT int32_t* error);
JQ_API int32_t MedianFilter81_H(JQ_INOUT JQArrF64 x, int32_t left, int32_t right);

/* Point-by-point multirate FIR filter over a stream given in blocks. Mode 0
 * filters, 1 decimates by `decimation`, 2 interpolates by `interpolation`
 * (zeros inserted, no gain applied), 3 changes the rate by
 * interpolation/decimation; factors a mode does not use are ignored. The
 * stream keeps its last (taps - 1) / interpolation inputs in `state` (oldest
 * first) and the upsampled time of the next block modulo the decimation in
 * *phase. A non-zero reset, a state of another length or a phase out of
 * range start the stream over from zeros. *count receives the number of
 * outputs of this block, which the output array holds; filtering a stream in
 * blocks gives exactly the outputs of filtering it at once, which are the
 * first outputs of upsample-filter-downsample. Coefficients are float64 for
 * every sample type. Codes: -20061 mode outside 0..3, -20021 a used factor
 * below 1, -20010 one above 8388608, -20003 no coefficients or no samples,
 * -20008 output and state given as one array. */
JQ_API int32_t ppMultiRateFIRH_DBL(JQ_IN JQArrF64 x, JQ_OUT JQArrF64 y, JQ_INOUT JQArrF64 state, JQ_IN JQArrF64 coefficients, int32_t mode, int32_t decimation, int32_t interpolation, uint8_t reset, JQ_OUT int32_t* count, JQ_INOUT int32_t* phase);
JQ_API int32_t ppMultiRateFIRH_SGL(JQ_IN JQArrF32 x, JQ_OUT JQArrF32 y, JQ_INOUT JQArrF32 state, JQ_IN JQArrF64 coefficients, int32_t mode, int32_t decimation, int32_t interpolation, uint8_t reset, JQ_OUT int32_t* count, JQ_INOUT int32_t* phase);
JQ_API int32_t ppMultiRateFIRH_CDB(JQ_IN JQArrC128 x, JQ_OUT JQArrC128 y, JQ_INOUT JQArrC128 state, JQ_IN JQArrF64 coefficients, int32_t mode, int32_t decimation, int32_t interpolation, uint8_t reset, JQ_OUT int32_t* count, JQ_INOUT int32_t* phase);
JQ_API int32_t ppMultiRateFIRH_CSG(JQ_IN JQArrC64 x, JQ_OUT JQArrC64 y, JQ_INOUT JQArrC64 state, JQ_IN JQArrF64 coefficients, int32_t mode, int32_t decimation, int32_t interpolation, uint8_t reset, JQ_OUT int32_t* count, JQ_INOUT int32_t* phase);

/* Savitzky-Golay smoothing with polynomials of degree `order` over windows of
 * 2 * side_points + 1 samples (the order must be below the window length).
 * SavitzkyGolayCoefH gives the weights that produce the smoothed centre
 * sample. SavitzkyGolayFiltH smooths the signal in place; its first and last
 * side_points samples are the polynomials fitted to the first and the last
 * window, and the signal must be at least one window long (-20008). Codes:
 * -20004 negative side points or order, -20010 a window above 8388608
 * samples, -20061 an order not below the window, -20003 empty signal. */
JQ_API int32_t SavitzkyGolayCoefH(int32_t side_points, int32_t order, JQ_OUT JQArrF64 coefficients);
JQ_API int32_t SavitzkyGolayFiltH(JQ_INOUT JQArrF64 x, int32_t side_points, int32_t order);

#ifdef __cplusplus
}
#endif
#endif
