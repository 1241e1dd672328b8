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
JQ_API int32_t AllWinH(JQHandle x, int32_t code, double parameter, int32_t symmetric, int32_t unit_gain);
JQ_API int32_t CxAllWinH(JQHandle x, int32_t code, double parameter, int32_t symmetric, int32_t unit_gain);
JQ_API int32_t SymmWinH(JQHandle x, int32_t code, double parameter);
JQ_API int32_t CxSymmWinH(JQHandle x, int32_t code, double parameter);
/* Applies the window of the code divided by its mean (unit coherent gain, so
 * a tone keeps its amplitude) and reports the window's own constants: stored
 * ones for the coefficient windows, measured ones otherwise. The parameter
 * passes through the default step of AllWinH. */
JQ_API int32_t ScaledWinH(JQHandle x, int32_t code, double parameter, JQWindowConstants* constants);
JQ_API int32_t CxScaledWinH(JQHandle x, int32_t code, double parameter, JQWindowConstants* constants);

/* Generalised cosine windows: by code (0-9, 11) or by coefficients a_0, a_1, ... */
JQ_API int32_t AllCosWinH(JQHandle x, int32_t code);
JQ_API int32_t CxAllCosWinH(JQHandle x, int32_t code);
JQ_API int32_t GenCosWinH(JQHandle x, JQHandle coefficients);
JQ_API int32_t CxGenCosWinH(JQHandle x, JQHandle coefficients);
JQ_API int32_t ScaledGenCosWinH(JQHandle x, JQHandle coefficients, JQWindowConstants* constants);
JQ_API int32_t ScaledCxGenCosWinH(JQHandle x, JQHandle coefficients, JQWindowConstants* constants);

/* Windows with their own parameters. */
JQ_API int32_t KaiserH(JQHandle x, double beta);
JQ_API int32_t CxKaiserH(JQHandle x, double beta);
JQ_API int32_t Kaiser_Bessel(JQHandle x, double* beta, int32_t* error);
JQ_API int32_t GaussWinH(JQHandle x, double sigma);
JQ_API int32_t CxGaussWinH(JQHandle x, double sigma);
JQ_API int32_t DolChebyWinH(JQHandle x, double sidelobe_db);
JQ_API int32_t CxDolChebyWinH(JQHandle x, double sidelobe_db);
JQ_API int32_t TriangleWinH(JQHandle x);
JQ_API int32_t CxTriangleWinH(JQHandle x);
JQ_API int32_t TriangleWin(JQHandle x, int32_t* error);
JQ_API int32_t BartHannWinH(JQHandle x);
JQ_API int32_t CxBartHannWinH(JQHandle x);
JQ_API int32_t BohmanWinH(JQHandle x);
JQ_API int32_t CxBohmanWinH(JQHandle x);
JQ_API int32_t ParzenWinH(JQHandle x);
JQ_API int32_t CxParzenWinH(JQHandle x);
JQ_API int32_t WelchWinH(JQHandle x);
JQ_API int32_t CxWelchWinH(JQHandle x);
JQ_API int32_t CosTaperedH(JQHandle x, double ratio);
JQ_API int32_t CxCosTaperedH(JQHandle x, double ratio);
JQ_API int32_t CosTapered(JQHandle x, double* ratio, int32_t* error);
JQ_API int32_t ExpWinH(JQHandle x, double final_value);
JQ_API int32_t CxExpWinH(JQHandle x, double final_value);
JQ_API int32_t ExpWindCIN(JQHandle x, double* final_value, int32_t* error);
JQ_API int32_t ForceWinH(JQHandle x, double duty_percent);
JQ_API int32_t CxForceWinH(JQHandle x, double duty_percent);
JQ_API int32_t ForceWindCIN(JQHandle x, double* duty_percent, int32_t* error);

/* Window constants by code for a window of n samples (_2016 with the default
 * step of AllWinH), and measured from window samples. */
JQ_API int32_t WinConstByNameH(int32_t n, int32_t code, double parameter, JQWindowConstants* constants);
JQ_API int32_t WinConstByNameH_2016(int32_t n, int32_t code, double parameter, JQWindowConstants* constants);
JQ_API int32_t NumWinConstH(JQHandle window, JQWindowConstants* constants);

#ifdef __cplusplus
}
#endif
#endif
