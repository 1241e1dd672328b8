// State levels of a two-state waveform: the low and high levels of a pulse
// train and their difference, from the extremes or from a histogram.
#pragma once
#include <cstdint>

namespace jq::measure {

enum LevelMethod : int32_t { kHistogram = 0, kPeak = 1, kAutoHistogram = 2 };

struct Levels {
  double high = 0, low = 0, amplitude = 0;
  double range = 0;           // max - min
  int32_t method_used = 0;    // the auto method reports which levels it kept
};

// Levels of x[0 .. n-1]. `counts` holds `bins` int32 values of scratch for the
// histogram. `both` = 1 makes the auto method take the histogram levels only
// when both states pass. Returns 0, the warning kWarnWeakState (histogram
// method, a state under 5 % of the samples) or an error, on which every
// level is 0.
int32_t state_levels(const double* x, int32_t n, double dt, int32_t method, int32_t bins, int32_t* counts,
                     int32_t both, Levels* out);

}  // namespace jq::measure
