/* IIR filters: classical designs into cascade sections, and filtering with
 * state arrays kept by the caller.
 *
 * Design. fs is the sampling rate, fl and fh the cut-offs (fh only for
 * bandpass and bandstop; lowpass and highpass use fl). type: 0 lowpass,
 * 1 highpass, 2 bandpass, 3 bandstop. topology (the 90 forms): 0 second-order
 * sections, 1 fourth-order sections; the other forms use second-order sections
 * for lowpass/highpass and fourth-order ones for bands. The reverse array gets
 * {a1..am} per section (the leading 1 not stored), the forward array {b0..bm};
 * each section is (b0 + b1/z + ...)/(1 + a1/z + ...). An odd order's first
 * section is of half the section order, padded with zeros. The cut-off is the
 * -3 dB point for Butterworth and Bessel, the passband edge for Chebyshev and
 * elliptic, the stopband edge for inverse Chebyshev. Ripple and attenuation
 * are in dB. Errors go to the error argument (the result is 0, or the host's
 * status after a failed resize) and leave both arrays empty.
 *
 * Filtering. Direct form takes the full polynomials b (forward) and a
 * (reverse, a0 stored and dividing the output; empty for FIR); its histories
 * are oldest first, one array holding the forward history then the reverse
 * one. Cascades take the design layout; their state holds m values per
 * section, newest first. A state of the wrong length is resized and starts
 * from zeros. flag == 1 carries the state on in the block exports; the
 * point-by-point exports carry on with flag == 0 and start afresh otherwise.
 * structure (point by point): 0/1 cascade of second/fourth-order sections,
 * 2 direct form, 3 direct form taken as FIR whenever b is non-empty. On
 * failure the signal is emptied (a single sample set to 0). */
#ifndef JQANLYS_IIR_H
#define JQANLYS_IIR_H
#ifdef __cplusplus
extern "C" {
#endif

JQ_API int32_t BWCoefs(JQ_IN double* fs, JQ_IN double* fl, JQ_IN double* fh, JQ_IN int32_t* order, JQ_IN int32_t* type, JQ_OUT JQArrF64 reverse, JQ_OUT JQArrF64 forward, JQ_OUT int32_t* error);
JQ_API int32_t BWCoefs90(JQ_IN double* fs, JQ_IN double* fl, JQ_IN double* fh, JQ_IN int32_t* order, JQ_IN int32_t* type, int32_t topology, JQ_OUT JQArrF64 reverse, JQ_OUT JQArrF64 forward, JQ_OUT int32_t* error);
JQ_API int32_t ChebyshevCoefs(JQ_IN double* fs, JQ_IN double* fl, JQ_IN double* fh, JQ_IN double* ripple_db, JQ_IN int32_t* order, JQ_IN int32_t* type, JQ_OUT JQArrF64 reverse, JQ_OUT JQArrF64 forward, JQ_OUT int32_t* error);
JQ_API int32_t ChebyshevCoefs90(JQ_IN double* fs, JQ_IN double* fl, JQ_IN double* fh, JQ_IN double* ripple_db, JQ_IN int32_t* order, JQ_IN int32_t* type, int32_t topology, JQ_OUT JQArrF64 reverse, JQ_OUT JQArrF64 forward, JQ_OUT int32_t* error);
JQ_API int32_t InvChebyshevCoefs(JQ_IN double* fs, JQ_IN double* fl, JQ_IN double* fh, JQ_IN double* attenuation_db, JQ_IN int32_t* order, JQ_IN int32_t* type, JQ_OUT JQArrF64 reverse, JQ_OUT JQArrF64 forward, JQ_OUT int32_t* error);
JQ_API int32_t InvChebyshevCoefs90(JQ_IN double* fs, JQ_IN double* fl, JQ_IN double* fh, JQ_IN double* attenuation_db, JQ_IN int32_t* order, JQ_IN int32_t* type, int32_t topology, JQ_OUT JQArrF64 reverse, JQ_OUT JQArrF64 forward, JQ_OUT int32_t* error);
JQ_API int32_t EllipticCoefs(JQ_IN double* fs, JQ_IN double* fl, JQ_IN double* fh, JQ_IN double* ripple_db, JQ_IN double* attenuation_db, JQ_IN int32_t* order, JQ_IN int32_t* type, JQ_OUT JQArrF64 reverse, JQ_OUT JQArrF64 forward, JQ_OUT int32_t* error);
JQ_API int32_t EllipticCoefs90(JQ_IN double* fs, JQ_IN double* fl, JQ_IN double* fh, JQ_IN double* ripple_db, JQ_IN double* attenuation_db, JQ_IN int32_t* order, JQ_IN int32_t* type, int32_t topology, JQ_OUT JQArrF64 reverse, JQ_OUT JQArrF64 forward, JQ_OUT int32_t* error);
JQ_API int32_t BesselCoefs(JQ_IN double* fs, JQ_IN double* fl, JQ_IN double* fh, JQ_IN int32_t* order, JQ_IN int32_t* type, JQ_OUT JQArrF64 reverse, JQ_OUT JQArrF64 forward, JQ_OUT int32_t* error);
JQ_API int32_t BesselCoefs90(JQ_IN double* fs, JQ_IN double* fl, JQ_IN double* fh, JQ_IN int32_t* order, JQ_IN int32_t* type, int32_t topology, JQ_OUT JQArrF64 reverse, JQ_OUT JQArrF64 forward, JQ_OUT int32_t* error);

/* Direct form, separate forward and reverse histories. */
JQ_API int32_t IIR_Filter(JQ_INOUT JQArrF64 x, JQ_IN JQArrF64 reverse, JQ_IN JQArrF64 forward, JQ_INOUT JQArrF64 fstate, JQ_INOUT JQArrF64 rstate, uint8_t flag, JQ_OUT int32_t* error);
JQ_API int32_t CxSigIIR_Filter(JQ_INOUT JQArrC128 x, JQ_IN JQArrF64 reverse, JQ_IN JQArrF64 forward, JQ_INOUT JQArrC128 fstate, JQ_INOUT JQArrC128 rstate, uint8_t flag, JQ_OUT int32_t* error);
/* Direct form, one history array; the code is the result. */
JQ_API int32_t IIR_Filter_OneState(JQ_INOUT JQArrF64 x, JQ_IN JQArrF64 reverse, JQ_IN JQArrF64 forward, JQ_INOUT JQArrF64 state, uint8_t flag);
JQ_API int32_t CxSigIIR_Filter_OneState(JQ_INOUT JQArrC128 x, JQ_IN JQArrF64 reverse, JQ_IN JQArrF64 forward, JQ_INOUT JQArrC128 state, uint8_t flag);
/* Cascade of sections (topology 0 or 1). */
JQ_API int32_t IIR_Filter2(JQ_INOUT JQArrF64 x, JQ_IN int32_t* topology, JQ_IN JQArrF64 reverse, JQ_IN JQArrF64 forward, JQ_INOUT JQArrF64 state, uint8_t flag, JQ_OUT int32_t* error);
JQ_API int32_t CxSigIIR_Filter2(JQ_INOUT JQArrC128 x, JQ_IN int32_t* topology, JQ_IN JQArrF64 reverse, JQ_IN JQArrF64 forward, JQ_INOUT JQArrC128 state, uint8_t flag, JQ_OUT int32_t* error);
/* One sample (a complex one as real, imaginary), filtered in place; the code is the result. */
JQ_API int32_t IIR_Filter_PtbyPt(JQ_INOUT double* sample, int32_t structure, JQ_IN JQArrF64 reverse, JQ_IN JQArrF64 forward, JQ_INOUT JQArrF64 state, uint8_t flag);
JQ_API int32_t CxSigIIR_Filter_PtbyPt(JQ_INOUT double sample[2], int32_t structure, JQ_IN JQArrF64 reverse, JQ_IN JQArrF64 forward, JQ_INOUT JQArrC128 state, uint8_t flag);
/* Complex coefficients, direct form; the code is the result. A real signal
 * gives a complex output y; its forward history holds real inputs. */
JQ_API int32_t CxIIR_Filter_H(JQ_INOUT JQArrC128 x, JQ_IN JQArrC128 reverse, JQ_IN JQArrC128 forward, JQ_INOUT JQArrC128 fstate, JQ_INOUT JQArrC128 rstate, uint8_t flag);
JQ_API int32_t CxIIRReSig_Filter_H(JQ_IN JQArrF64 x, JQ_IN JQArrC128 reverse, JQ_IN JQArrC128 forward, JQ_INOUT JQArrF64 fstate, JQ_INOUT JQArrC128 rstate, uint8_t flag, JQ_OUT JQArrC128 y);
/* Zero phase: forward over the signal padded with zeros on both sides, then
 * backward; state 1 serves the forward run, state 2 the backward one. */
JQ_API int32_t zeroPhaseFiltH(JQ_INOUT JQArrF64 x, JQ_IN JQArrF64 reverse, JQ_IN JQArrF64 forward, JQ_INOUT JQArrF64 fstate1, JQ_INOUT JQArrF64 rstate1, JQ_INOUT JQArrF64 fstate2, JQ_INOUT JQArrF64 rstate2, uint8_t flag);
JQ_API int32_t zeroPhaseCascadeFiltH(JQ_INOUT JQArrF64 x, int32_t topology, JQ_IN JQArrF64 reverse, JQ_IN JQArrF64 forward, JQ_INOUT JQArrF64 state1, JQ_INOUT JQArrF64 state2, uint8_t flag);

#ifdef __cplusplus
}
#endif
#endif
