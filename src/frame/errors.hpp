// Error codes of the library. 0 is success, negative values are errors,
// positive values of the same magnitude are warnings whose outputs are valid.
#pragma once
#include <cstdint>

namespace jq {

enum Code : int32_t {
  kOk = 0,
  kNoMemory = -20001,           // a host resize or an internal allocation failed
  kLengthMismatch = -20002,     // two inputs that must have the same length do not
  kEmptyInput = -20003,         // an input that must hold data is empty
  kNegativeSize = -20004,       // a dimension, length or count is negative
  kFewerThan2 = -20006,
  kFewerThan3 = -20007,
  kSizeMismatch = -20008,       // element-wise inputs differ, or an output size below 1
  kTooLarge = -20010,           // a requested size exceeds 0x800000
  kNotInHalfRange = -20012,     // a value outside (0, n/2]
  kIndexOutsideRange = -20013,  // an index or count outside [1, n-1]
  kSpanOutside = -20014,        // a start and a length lie outside the array
  kNonPositiveSpacing = -20016,
  kIndexBeyond = -20017,        // an index or offset at or beyond its dimension
  kBadOrder = -20021,           // an order, count or number of taps below 1
  kRankOutside = -20022,        // a rank k outside [1, n]
  kNonPositiveLog = -20027,     // a logarithm's argument is zero or negative
  kMustBeOdd = -20033,
  kDimMismatch = -20040,        // first pair of matrix dimensions compared
  kSingular = -20041,
  kNotInUnitInterval = -20053,  // a value must lie strictly between 0 and 1
  kComplexDivByZero = -20060,
  kBadSelector = -20061,        // a selector or parameter outside its allowed set
  kTooFewPoints = -20063,       // points, samples or iterations below 1
  kDimMismatch2 = -20070,       // second pair of matrix dimensions compared
  kFewerThan4 = -20069,
  kHistogramRange = -20101,     // histogram minimum above maximum
  kNonFiniteData = -20104,      // data holding an infinity or NaN
  kBadTransformLength = -20115,
  kBadShape = -20140,           // a shape parameter that must be positive is not
  kInternal = -20999,           // FFT table length mismatch, or the table lock failed

  kWarnLengthMismatch = 20004,  // warning: lengths differ, result still valid

  // Codes raised by particular routines are added below, grouped by subsystem.

  // Statistics: probability distributions.
  kDegreesOfFreedom = -20052,   // degrees of freedom below 1 (below 0 for the chi-square CDF)

  // Signal generation: waveforms and patterns.
  kRampExcludedEmpty = -20005,  // a ramp without its end point needs at least one sample
  kNonPositiveDuty = -20011,    // a square pattern's duty cycle is zero or negative
  kNonFinitePhase = -20068,     // a wave's phase or frequency is NaN or infinite

  // Linear algebra.
  kIncompatibleDims = -20039,   // inner dimensions of a product or the rows of right-hand sides differ
  kNoConvergence = -20062,      // the SVD did not converge
  kNonFiniteMatrix = -20068,    // NaN, an infinity or the largest magnitude in a matrix or vector
  kNotPosDef = -20071,          // the matrix is not positive definite
  kZeroNormOrder = -20141,      // p = 0 in a vector norm
  kWarnRankDeficient = 20001,   // warning: least-squares solution of a rank-deficient system
  kWarnSingularLU = 20003,      // warning: an exactly zero pivot in an LU factor

  // Filters: IIR and FIR design and filtering.
  kCutoffAboveNyquist = -20020,      // a cut-off or band edge above half the sampling rate
  kBadCutoff = -20023,               // fs, a cut-off, band edge, weight or desired value bad, or edges out of order
  kBadRipple = -20024,               // a passband ripple not positive
  kBadAttenuation = -20025,          // a stopband attenuation not positive
  kAttenuationBelowRipple = -20028,  // an elliptic attenuation not above its ripple
  kCoefficientLength = -20066,       // coefficient or state lengths that do not fit the sections

  // Measurements: state levels.
  kConstantSignal = -20309,     // every sample equal: a histogram has no width
  kNoLevelSamples = -20312,     // no samples to take levels from
  kBadSampleInterval = -20315,  // the sample interval is not above 0
  kBadLevelMethod = -20316,     // a level method other than 0, 1 or 2
  kBadBinCount = -20317,        // fewer than 1 histogram bin
  kWarnWeakState = 20021,       // warning: a state's mode holds under 5 % of the samples

  // FIR design.
  kDesignFailed = -20031,       // too few taps, non-finite input, inconsistent bands, no convergence

  // Curve fitting.
  kFewerPointsThanCoefs = -20037,  // fewer points than free coefficients
  kBadDegreesOfFreedom = -20052,   // degrees of freedom at or above the point count, or below 1
  kNegativeOrder = -20103,         // a polynomial order below 0
  kRobustFailed = -20116,          // too many points weighted to zero, or a non-finite MSE
  kAllButOneWeightZero = -20141,   // exactly n - 1 zero weights in a straight-line fit
  kWarnHighOrder = 20031,          // warning: constrained polynomial of order above 25
};

}  // namespace jq
