/* Waveforms and patterns: continuous waves with a kept phase, record
 * patterns and analytic pulse shapes. Every output is a float64 array.
 *
 * The CIN exports and the older patterns take their scalars by pointer, clear
 * the trailing error argument on entry, store the code there and return 0
 * (or the host's status when resizing the output failed). The phase of the
 * continuous (WaveCIN) exports is in degrees and is advanced, reduced to
 * [0, 360), only when the call succeeds; frequencies are in cycles per sample.
 *
 * The pulse-shape exports (PeriodicSincH, GaussPulseH, AperiodTriangleH,
 * GaussMonopulseH) take their times from the handle when it holds any
 * (replacing them by the results), else generate n samples at i*dt - delay;
 * they return the code. */
#ifndef JQANLYS_WAVEFORMS_H
#define JQANLYS_WAVEFORMS_H
#ifdef __cplusplus
extern "C" {
#endif

JQ_API int32_t SineWaveCIN(JQHandle out, int32_t* n, double* amplitude, double* frequency, double* phase, int32_t* error);
JQ_API int32_t SquareWaveCIN(JQHandle out, int32_t* n, double* amplitude, double* frequency, double* phase, double* duty_percent, int32_t* error);
JQ_API int32_t TriangleWaveCIN(JQHandle out, int32_t* n, double* amplitude, double* frequency, double* phase, int32_t* error);
JQ_API int32_t SawtoothWaveCIN(JQHandle out, int32_t* n, double* amplitude, double* frequency, double* phase, int32_t* error);
JQ_API int32_t ArbitraryWaveCIN(JQHandle out, int32_t* n, double* amplitude, double* frequency, double* phase, JQHandle table, int32_t* interpolation, int32_t* error);

JQ_API int32_t SinePtrn(JQHandle out, int32_t* n, double* amplitude, double* phase, double* cycles, int32_t* error);
JQ_API int32_t Square(JQHandle out, int32_t* n, double* amplitude, double* duty_percent, double* cycles, int32_t* error);
JQ_API int32_t RampPtrn(JQHandle out, int32_t* n, double* start, double* end, int32_t* error);
JQ_API int32_t RampPtrn80(JQHandle out, int32_t n, double start, double end);
/* exclude_end: 0 includes the end point; spacing: 0 linear, 1 logarithmic. */
JQ_API int32_t RampPtrn85(JQHandle out, int32_t n, double start, double end, int32_t exclude_end, int32_t spacing);
JQ_API int32_t PulsePtrn(JQHandle out, int32_t* n, double* amplitude, int32_t* delay, int32_t* width, int32_t* error);
JQ_API int32_t ImpulsePtrn(JQHandle out, int32_t* n, double* amplitude, int32_t* delay, int32_t* error);
JQ_API int32_t ChirpCIN(JQHandle out, int32_t* n, double* amplitude, double* f1, double* f2, int32_t* error);
JQ_API int32_t SincWave(JQHandle out, int32_t* n, double* amplitude, double* delay, double* dt, int32_t* error);

JQ_API int32_t PeriodicSincH(JQHandle times_or_out, int32_t n, double amplitude, int32_t order, double dt, double delay);
JQ_API int32_t GaussPulseH(JQHandle times_or_out, int32_t n, double amplitude, double delay, double dt, double centre_frequency, double bandwidth, double attenuation_db);
JQ_API int32_t AperiodTriangleH(JQHandle times_or_out, int32_t n, double amplitude, double delay, double dt, double width, double skew);
JQ_API int32_t GaussMonopulseH(JQHandle times_or_out, int32_t n, double amplitude, double delay, double dt, double centre_frequency);

#ifdef __cplusplus
}
#endif
#endif
