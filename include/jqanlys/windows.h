/* Windows: time-domain windows applied in place, and window constants.
 *
 * Every window is periodic of the signal's length unless the export says
 * otherwise; a Cx export applies the same real window to both parts of each
 * complex sample. Exports ending in H (and the constants exports) return the
 * error code; the older forms (TriangleWin, Kaiser_Bessel, CosTapered and the
 * CIN forms) take their parameters by pointer, store the code in a trailing
 * error argument and return 0. On failure the signal is emptied and a
 * constants record reads NaN in both fields.
 *
 * Window codes: 0 rectangle, 1 Hann, 2 Hamming, 3 Blackman-Harris (3-term),
 * 4 exact Blackman, 5 Blackman, 6 flat top, 7 Blackman-Harris (4-term),
 * 8 Blackman-Harris (7-term), 9 low side lobe, 11 Blackman-Nuttall,
 * 30 triangle, 31 Bartlett-Hann, 32 Bohman, 33 Parzen, 34 Welch,
 * 60 Kaiser (parameter beta), 61 Dolph-Chebyshev (parameter: side-lobe level
 * in dB below the main lobe), 62 Gaussian (parameter: sigma as a fraction of
 * the length). */
#ifndef JQANLYS_WINDOWS_H
#define JQANLYS_WINDOWS_H
#ifdef __cplusplus
extern "C" {
#endif

/* Equivalent noise bandwidth (bins), then coherent gain. */
typedef struct JQWindowConstants {
  double enbw;
  double cg;
} JQWindowConstants;

/* Window by code. AllWinH first replaces a NaN or out-of-domain parameter by
 * the code's default (Kaiser 0.5, Dolph-Chebyshev 60 dB, Gaussian 0.2);
 * symmetric != 0 applies the symmetric form (as SymmWinH), unit_gain != 0
 * divides the window by its mean (as ScaledWinH). */
JQ_API int32_t AllWinH(JQ_INOUT JQArrF64 x, int32_t code, double parameter, int32_t symmetric, int32_t unit_gain);
JQ_API int32_t CxAllWinH(JQ_INOUT JQArrC128 x, int32_t code, double parameter, int32_t symmetric, int32_t unit_gain);
JQ_API int32_t SymmWinH(JQ_INOUT JQArrF64 x, int32_t code, double parameter);
JQ_API int32_t CxSymmWinH(JQ_INOUT JQArrC128 x, int32_t code, double parameter);
/* Applies the window of the code divided by its mean (unit coherent gain, so
 * a tone keeps its amplitude) and reports the window's own constants: stored
 * ones for the coefficient windows, measured ones otherwise. The parameter
 * passes through the default step of AllWinH. */
JQ_API int32_t ScaledWinH(JQ_INOUT JQArrF64 x, int32_t code, double parameter, JQ_OUT JQWindowConstants* constants);
JQ_API int32_t CxScaledWinH(JQ_INOUT JQArrC128 x, int32_t code, double parameter, JQ_OUT JQWindowConstants* constants);

/* Generalised cosine windows: by code (0-9, 11) or by coefficients a_0, a_1, ... */
JQ_API int32_t AllCosWinH(JQ_INOUT JQArrF64 x, int32_t code);
JQ_API int32_t CxAllCosWinH(JQ_INOUT JQArrC128 x, int32_t code);
JQ_API int32_t GenCosWinH(JQ_INOUT JQArrF64 x, JQ_IN JQArrF64 coefficients);
JQ_API int32_t CxGenCosWinH(JQ_INOUT JQArrC128 x, JQ_IN JQArrF64 coefficients);
JQ_API int32_t ScaledGenCosWinH(JQ_INOUT JQArrF64 x, JQ_IN JQArrF64 coefficients, JQ_OUT JQWindowConstants* constants);
JQ_API int32_t ScaledCxGenCosWinH(JQ_INOUT JQArrC128 x, JQ_IN JQArrF64 coefficients, JQ_OUT JQWindowConstants* constants);

/* Windows with their own parameters. */
JQ_API int32_t KaiserH(JQ_INOUT JQArrF64 x, double beta);
JQ_API int32_t CxKaiserH(JQ_INOUT JQArrC128 x, double beta);
JQ_API int32_t Kaiser_Bessel(JQ_INOUT JQArrF64 x, JQ_IN double* beta, JQ_OUT int32_t* error);
JQ_API int32_t GaussWinH(JQ_INOUT JQArrF64 x, double sigma);
JQ_API int32_t CxGaussWinH(JQ_INOUT JQArrC128 x, double sigma);
JQ_API int32_t DolChebyWinH(JQ_INOUT JQArrF64 x, double sidelobe_db);
JQ_API int32_t CxDolChebyWinH(JQ_INOUT JQArrC128 x, double sidelobe_db);
JQ_API int32_t TriangleWinH(JQ_INOUT JQArrF64 x);
JQ_API int32_t CxTriangleWinH(JQ_INOUT JQArrC128 x);
JQ_API int32_t TriangleWin(JQ_INOUT JQArrF64 x, JQ_OUT int32_t* error);
JQ_API int32_t BartHannWinH(JQ_INOUT JQArrF64 x);
JQ_API int32_t CxBartHannWinH(JQ_INOUT JQArrC128 x);
JQ_API int32_t BohmanWinH(JQ_INOUT JQArrF64 x);
JQ_API int32_t CxBohmanWinH(JQ_INOUT JQArrC128 x);
JQ_API int32_t ParzenWinH(JQ_INOUT JQArrF64 x);
JQ_API int32_t CxParzenWinH(JQ_INOUT JQArrC128 x);
JQ_API int32_t WelchWinH(JQ_INOUT JQArrF64 x);
JQ_API int32_t CxWelchWinH(JQ_INOUT JQArrC128 x);
JQ_API int32_t CosTaperedH(JQ_INOUT JQArrF64 x, double ratio);
JQ_API int32_t CxCosTaperedH(JQ_INOUT JQArrC128 x, double ratio);
JQ_API int32_t CosTapered(JQ_INOUT JQArrF64 x, JQ_IN double* ratio, JQ_OUT int32_t* error);
JQ_API int32_t ExpWinH(JQ_INOUT JQArrF64 x, double final_value);
JQ_API int32_t CxExpWinH(JQ_INOUT JQArrC128 x, double final_value);
JQ_API int32_t ExpWindCIN(JQ_INOUT JQArrF64 x, JQ_IN double* final_value, JQ_OUT int32_t* error);
JQ_API int32_t ForceWinH(JQ_INOUT JQArrF64 x, double duty_percent);
JQ_API int32_t CxForceWinH(JQ_INOUT JQArrC128 x, double duty_percent);
JQ_API int32_t ForceWindCIN(JQ_INOUT JQArrF64 x, JQ_IN double* duty_percent, JQ_OUT int32_t* error);

/* Window constants by code for a window of n samples (_2016 with the default
 * step of AllWinH), and measured from window samples. */
JQ_API int32_t WinConstByNameH(int32_t n, int32_t code, double parameter, JQ_OUT JQWindowConstants* constants);
JQ_API int32_t WinConstByNameH_2016(int32_t n, int32_t code, double parameter, JQ_OUT JQWindowConstants* constants);
JQ_API int32_t NumWinConstH(JQ_IN JQArrF64 window, JQ_OUT JQWindowConstants* constants);

#ifdef __cplusplus
}
#endif
#endif
