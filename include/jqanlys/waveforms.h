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

JQ_API int32_t SineWaveCIN(JQ_OUT JQArrF64 out, JQ_IN int32_t* n, JQ_IN double* amplitude, JQ_IN double* frequency, JQ_INOUT double* phase, JQ_OUT int32_t* error);
JQ_API int32_t SquareWaveCIN(JQ_OUT JQArrF64 out, JQ_IN int32_t* n, JQ_IN double* amplitude, JQ_IN double* frequency, JQ_INOUT double* phase, JQ_IN double* duty_percent, JQ_OUT int32_t* error);
JQ_API int32_t TriangleWaveCIN(JQ_OUT JQArrF64 out, JQ_IN int32_t* n, JQ_IN double* amplitude, JQ_IN double* frequency, JQ_INOUT double* phase, JQ_OUT int32_t* error);
JQ_API int32_t SawtoothWaveCIN(JQ_OUT JQArrF64 out, JQ_IN int32_t* n, JQ_IN double* amplitude, JQ_IN double* frequency, JQ_INOUT double* phase, JQ_OUT int32_t* error);
JQ_API int32_t ArbitraryWaveCIN(JQ_OUT JQArrF64 out, JQ_IN int32_t* n, JQ_IN double* amplitude, JQ_IN double* frequency, JQ_INOUT double* phase, JQ_IN JQArrF64 table, JQ_IN int32_t* interpolation, JQ_OUT int32_t* error);

JQ_API int32_t SinePtrn(JQ_OUT JQArrF64 out, JQ_IN int32_t* n, JQ_IN double* amplitude, JQ_IN double* phase, JQ_IN double* cycles, JQ_OUT int32_t* error);
JQ_API int32_t Square(JQ_OUT JQArrF64 out, JQ_IN int32_t* n, JQ_IN double* amplitude, JQ_IN double* duty_percent, JQ_IN double* cycles, JQ_OUT int32_t* error);
JQ_API int32_t RampPtrn(JQ_OUT JQArrF64 out, JQ_IN int32_t* n, JQ_IN double* start, JQ_IN double* end, JQ_OUT int32_t* error);
JQ_API int32_t RampPtrn80(JQ_OUT JQArrF64 out, int32_t n, double start, double end);
/* exclude_end: 0 includes the end point; spacing: 0 linear, 1 logarithmic. */
JQ_API int32_t RampPtrn85(JQ_OUT JQArrF64 out, int32_t n, double start, double end, int32_t exclude_end, int32_t spacing);
JQ_API int32_t PulsePtrn(JQ_OUT JQArrF64 out, JQ_IN int32_t* n, JQ_IN double* amplitude, JQ_IN int32_t* delay, JQ_IN int32_t* width, JQ_OUT int32_t* error);
JQ_API int32_t ImpulsePtrn(JQ_OUT JQArrF64 out, JQ_IN int32_t* n, JQ_IN double* amplitude, JQ_IN int32_t* delay, JQ_OUT int32_t* error);
JQ_API int32_t ChirpCIN(JQ_OUT JQArrF64 out, JQ_IN int32_t* n, JQ_IN double* amplitude, JQ_IN double* f1, JQ_IN double* f2, JQ_OUT int32_t* error);
JQ_API int32_t SincWave(JQ_OUT JQArrF64 out, JQ_IN int32_t* n, JQ_IN double* amplitude, JQ_IN double* delay, JQ_IN double* dt, JQ_OUT int32_t* error);

JQ_API int32_t PeriodicSincH(JQ_INOUT JQArrF64 times_or_out, int32_t n, double amplitude, int32_t order, double dt, double delay);
JQ_API int32_t GaussPulseH(JQ_INOUT JQArrF64 times_or_out, int32_t n, double amplitude, double delay, double dt, double centre_frequency, double bandwidth, double attenuation_db);
JQ_API int32_t AperiodTriangleH(JQ_INOUT JQArrF64 times_or_out, int32_t n, double amplitude, double delay, double dt, double width, double skew);
JQ_API int32_t GaussMonopulseH(JQ_INOUT JQArrF64 times_or_out, int32_t n, double amplitude, double delay, double dt, double centre_frequency);

#ifdef __cplusplus
}
#endif
#endif
