// Sine and cosine that give the same bits on every platform.
//
// The waveform generators promise sequences identical to the last bit, and
// the sine wave's recurrence carries its seeds into every sample, so the seeds
// cannot depend on the C library (the Windows runtime's sin and cos differ
// from glibc's in the last bit, most of all near multiples of pi/2). These
// are correctly rounded instead: the argument is reduced by pi/2 held to 212
// bits, and the Taylor series is summed in double-double arithmetic (about
// 104 bits), so the rounded result is the nearest double except in cases of
// probability around 1e-15. Only IEEE double operations are used, without
// fused multiply-add. Arguments of magnitude 2^30 and above fall back to the
// C library.
#pragma once

namespace jq::gen {

double sine(double x);
double cosine(double x);

}  // namespace jq::gen
