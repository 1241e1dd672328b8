/* Measurements: state levels of two-state waveforms and the threshold peak
 * detector. */
#ifndef JQANLYS_MEASURE_H
#define JQANLYS_MEASURE_H
#ifdef __cplusplus
extern "C" {
#endif

/* High and low state levels and their difference. method: 0 histogram, 1 the
 * extremes, 2 histogram levels where a state holds at least 5 % of the
 * samples, else the extremes (both_peaks = 1: only when both states do).
 * The histogram buffer is kept in the instance slot; the plain form registers
 * its clean-up with the host, the _IDP form leaves it to
 * MeasurementUnreserveProc. Returns the code; +20021 warns of a weak state. */
JQ_API int32_t StateLevels(JQ_IN JQArrF64 waveform, double t0, double dt, int32_t method, int32_t bins, JQ_INOUT JQSlot instance, JQ_OUT double* high, JQ_OUT double* low, JQ_OUT double* amplitude, int32_t both_peaks);
JQ_API int32_t StateLevels_IDP(JQ_IN JQArrF64 waveform, double t0, double dt, int32_t method, int32_t bins, JQ_INOUT JQSlot instance, JQ_OUT double* high, JQ_OUT double* low, JQ_OUT double* amplitude, int32_t both_peaks);

/* The first index of every run of at least width samples not below the
 * threshold (NaN samples count as not below). width must lie in [1, n - 1]:
 * otherwise -20013 is both the result and the error. */
JQ_API int32_t PeakDetector(JQ_IN JQArrF64 x, JQ_IN double* threshold, JQ_IN int32_t* width, JQ_OUT JQArrI32 indices, JQ_OUT int32_t* count, JQ_OUT int32_t* error);

#ifdef __cplusplus
}
#endif
#endif
