// FIR design, multirate filtering and the running median through their
// exports, against scipy (fir_oracle.inc) and the definitions.
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <random>
#include <vector>

#include "fir_oracle.inc"
#include "frame/scratch.hpp"
#include "jqanlys.h"
#include "jqrt.hpp"
#include "support/checks.hpp"

namespace {

using cd = std::complex<double>;
using cf = std::complex<float>;
using jqtest::nan;
using jqtest::Rejection;

constexpr double kPi = 3.141592653589793;

template <class S> S sample(const double* p, bool complex, int i) {
  if constexpr (std::is_same_v<S, cd> || std::is_same_v<S, cf>) {
    return complex ? S(p[2 * i], p[2 * i + 1]) : S(p[i], 0);
  } else {
    return static_cast<S>(p[i]);
  }
}

template <class S>
int32_t multirate(JQHandle x, JQHandle y, JQHandle state, JQHandle h, int32_t mode, int32_t down, int32_t up,
                  uint8_t reset, int32_t* count, int32_t* phase) {
  if constexpr (std::is_same_v<S, double>) return ppMultiRateFIRH_DBL(x, y, state, h, mode, down, up, reset, count, phase);
  if constexpr (std::is_same_v<S, float>) return ppMultiRateFIRH_SGL(x, y, state, h, mode, down, up, reset, count, phase);
  if constexpr (std::is_same_v<S, cd>) return ppMultiRateFIRH_CDB(x, y, state, h, mode, down, up, reset, count, phase);
  if constexpr (std::is_same_v<S, cf>) return ppMultiRateFIRH_CSG(x, y, state, h, mode, down, up, reset, count, phase);
}

// One stream through the filter in blocks of the given sizes; the outputs
// of all blocks, joined.
template <class S>
std::vector<S> stream(const std::vector<S>& x, const std::vector<double>& h, int32_t mode, int32_t down, int32_t up,
                      const std::vector<int>& blocks) {
  jqrt::Array<double> coef(h);
  jqrt::Array<S> state;
  int32_t phase = 0;
  std::vector<S> all;
  size_t at = 0;
  for (size_t b = 0; b < blocks.size(); ++b) {
    jqrt::Array<S> in(std::vector<S>(x.begin() + at, x.begin() + at + blocks[b])), out;
    at += blocks[b];
    int32_t count = -1;
    EXPECT_EQ(multirate<S>(in.h(), out.h(), state.h(), coef.h(), mode, down, up, b == 0, &count, &phase), 0);
    EXPECT_EQ(count, out.size());
    for (S v : out.values()) all.push_back(v);
  }
  return all;
}

template <class S> void check_multirate_oracle(double tolerance) {
  for (const fir_oracle::MultirateCase& c : fir_oracle::kMultirate) {
    SCOPED_TRACE(testing::Message() << "mode " << c.mode << " up " << c.up << " down " << c.down << " taps " << c.k);
    if (c.complex && !(std::is_same_v<S, cd> || std::is_same_v<S, cf>)) continue;
    std::vector<S> x;
    for (int i = 0; i < c.n; ++i) x.push_back(sample<S>(c.x, c.complex, i));
    const std::vector<double> h(c.h, c.h + c.k);
    const std::vector<S> y = stream<S>(x, h, c.mode, c.down, c.up, {c.n});
    ASSERT_EQ(static_cast<int>(y.size()), c.count);
    for (int i = 0; i < c.count; ++i) {
      const S want = sample<S>(c.y, c.complex, i);
      EXPECT_NEAR(std::abs(y[i] - want), 0.0, tolerance * (1 + std::abs(want))) << "output " << i;
    }
    // The same stream cut into uneven blocks, single samples included,
    // gives the same outputs bit for bit.
    std::vector<int> blocks;
    for (int left = c.n, b = 1; left > 0; b = b % 7 + 1) {
      blocks.push_back(std::min(left, b == 5 ? 37 : b));
      left -= blocks.back();
    }
    EXPECT_EQ(stream<S>(x, h, c.mode, c.down, c.up, blocks), y);
  }
}

}  // namespace

// Calls Parks with band rows; returns the code and fills h and the deviation.
int32_t parks(int32_t n, double fs, const std::vector<std::vector<double>>& bands, int32_t type, int32_t limit,
              jqrt::Array<double>& h, double* deviation) {
  jqrt::Array2<double> b = jqrt::Array2<double>::rows(bands);
  int32_t error = 1;
  const int32_t r = Parks(&n, &fs, b.h(), &type, h.h(), deviation, &limit, &error);
  return jqtest::reported(r, error);
}

TEST(FirRemez, ConvergesOnScipysDesigns) {
  for (const fir_oracle::RemezCase& c : fir_oracle::kRemez) {
    SCOPED_TRACE(testing::Message() << "taps " << c.n << " type " << c.type << " bands " << c.bands);
    std::vector<std::vector<double>> bands;
    for (int i = 0; i < c.bands; ++i) bands.emplace_back(c.band + 4 * i, c.band + 4 * i + 4);
    jqrt::Array<double> h;
    double dev = 0;
    ASSERT_EQ(parks(c.n, c.fs, bands, c.type, 0, h, &dev), 0);
    ASSERT_EQ(h.size(), c.n);
    for (int i = 0; i < c.n; ++i) EXPECT_NEAR(h[i], c.h[i], 1e-14) << "tap " << i;
    // Equiripple: the largest weighted error over the bands is the reported
    // deviation (up to the grid's resolution).
    double worst = 0;
    for (const auto& b : bands)
      for (int g = 0; g <= 400; ++g) {
        const double f = (b[1] + (b[2] - b[1]) * g / 400) / c.fs;
        std::complex<double> resp = 0;
        for (int i = 0; i < c.n; ++i) resp += h[i] * std::polar(1.0, -2 * kPi * f * (i - (c.n - 1) / 2.0));
        // Antisymmetric designs are judged by magnitude; their phase is a quarter turn.
        const double amp = c.type == 0 ? resp.real() : std::abs(resp);
        const double want = c.type == 1 ? b[0] * f : b[0];
        const double weight = c.type == 1 && b[0] >= 1e-4 ? b[3] / f : b[3];
        // The grid of the antisymmetric designs starts above 0, and the Hilbert
        // band edges are not part of the ripple.
        if ((c.type == 1 && f < 0.01) || (c.type == 2 && (f < 0.06 || f > 0.44))) continue;
        worst = std::max(worst, std::fabs(amp - want) * weight);
      }
    EXPECT_NEAR(worst, dev, 0.05 * dev);
  }
}

TEST(FirRemez, ValidationOrderAndCodes) {
  using B = std::vector<std::vector<double>>;
  const B lowpass{{1, 0, 100, 1}, {0, 150, 500, 1}};
  struct Bad {
    const char* what;
    int32_t n;
    double fs;
    B bands;
    int32_t type, code, fail = 0;
  };
  const double inf = INFINITY;
  std::vector<Bad> bad = {
      {"infinite fs before the tap count", 0, inf, lowpass, 0, -20031},
      {"infinite band value", 31, 1000, {{1, 0, 100, 1}, {0, 150, 500, inf}}, 0, -20031},
      {"no taps", 0, 1000, lowpass, 0, -20021},
      {"no bands", 31, 1000, {}, 0, -20023},
      {"two taps", 2, 1000, lowpass, 0, -20031},
      {"NaN fs", 31, nan(), lowpass, 0, -20031},
      {"zero fs", 31, 0, lowpass, 0, -20023},
      {"NaN edge", 31, 1000, {{1, 0, nan(), 1}, {0, 150, 500, 1}}, 0, -20031},
      {"negative edge", 31, 1000, {{1, -1, 100, 1}, {0, 150, 500, 1}}, 0, -20023},
      {"zero weight", 31, 1000, {{1, 0, 100, 0}, {0, 150, 500, 1}}, 0, -20023},
      {"NaN desired", 31, 1000, {{nan(), 0, 100, 1}, {0, 150, 500, 1}}, 0, -20031},
      {"negative desired", 31, 1000, {{-1, 0, 100, 1}, {0, 150, 500, 1}}, 0, -20023},
      {"above Nyquist", 31, 1000, {{1, 0, 100, 1}, {0, 150, 501, 1}}, 0, -20020},
      {"edges not increasing", 31, 1000, {{1, 0, 200, 1}, {0, 150, 500, 1}}, 0, -20023},
      {"band of zero width", 31, 1000, {{1, 0, 100, 1}, {0, 100, 500, 1}}, 0, -20023},
      {"multiband not from 0", 31, 1000, {{1, 10, 100, 1}, {0, 150, 500, 1}}, 0, -20031},
      {"multiband 0.002 short of Nyquist", 31, 1000, {{1, 0, 100, 1}, {0, 150, 499.998, 1}}, 0, -20031},
      {"even multiband, last band passes", 30, 1000, {{0, 0, 100, 1}, {1, 150, 500, 1}}, 0, -20033},
      {"differentiator not from 0", 31, 1000, {{1, 5, 400, 1}}, 1, -20031},
      {"even differentiator short of Nyquist", 30, 1000, {{1, 0, 400, 1}}, 1, -20031},
      {"odd differentiator near Nyquist", 31, 1000, {{1, 0, 499.995, 1}}, 1, -20031},
      {"Hilbert from 0", 31, 1000, {{1, 0, 400, 1}}, 2, -20031},
      {"even Hilbert short of Nyquist", 30, 1000, {{1, 10, 400, 1}}, 2, -20031},
      {"odd Hilbert at Nyquist", 31, 1000, {{1, 10, 499.9995, 1}}, 2, -20031},
      {"unknown type", 31, 1000, lowpass, 3, -20061},
      {"too many functions", 4092, 1000, lowpass, 0, -20001},
      {"resize fails", 31, 1000, lowpass, 0, -20001, 1},
  };
  std::vector<Rejection> cases;
  for (const Bad& b : bad)
    cases.push_back({b.what, b.code, [b](uint8_t** out) {
                       jqrt::Array2<double> bands = jqrt::Array2<double>::rows(b.bands);
                       int32_t n = b.n, type = b.type, limit = 0, error = 0;
                       double fs = b.fs, dev = 0;
                       const int32_t r = Parks(&n, &fs, bands.h(), &type, out, &dev, &limit, &error);
                       if (!std::isnan(dev)) return 1;
                       // Only a design that ran out of memory makes the result 2.
                       return b.code == -20001 && !b.fail ? (r == 2 ? error : 1) : jqtest::reported(r, error);
                     },
                     b.fail});
  jqtest::expect_rejections<double>(cases);

  // Half a millihertz short of Nyquist counts as reaching it.
  jqrt::Array<double> h;
  double dev = 0;
  EXPECT_EQ(parks(31, 1000, {{1, 0, 100, 1}, {0, 150, 499.9995, 1}}, 0, 0, h, &dev), 0);
  // An iteration limit that runs out reports -20031 with the deviation reached.
  EXPECT_EQ(parks(101, 1000, {{1, 0, 100, 1}, {0, 110, 500, 1}}, 0, 1, h, &dev), -20031);
  EXPECT_EQ(h.size(), 0);
  EXPECT_GT(dev, 0);
}

TEST(FirIdeal, MatchesTheTruncatedIdealResponse) {
  for (const fir_oracle::IdealCase& c : fir_oracle::kIdeal) {
    SCOPED_TRACE(testing::Message() << "type " << c.type << " n " << c.n << " fl " << c.fl);
    double fs = c.fs, fl = c.fl, fh = c.fh;
    int32_t n = c.n, type = c.type, error = 1;
    jqrt::Array<double> h;
    ASSERT_EQ(FIRCoefs(&fs, &fl, &fh, &n, h.h(), &type, &error), 0);
    ASSERT_EQ(error, 0);
    ASSERT_EQ(h.size(), c.n);
    for (int i = 0; i < c.n; ++i) EXPECT_NEAR(h[i], c.h[i], 1e-15) << "tap " << i;
  }
  // An out-of-range type is clamped and written back: 7 designs a bandstop.
  double fs = 1000, fl = 100, fh = 300;
  int32_t n = 51, type = 7, error = 0;
  jqrt::Array<double> h, bs;
  ASSERT_EQ(FIRCoefs(&fs, &fl, &fh, &n, h.h(), &type, &error), 0);
  EXPECT_EQ(type, 3);
  type = 3;
  FIRCoefs(&fs, &fl, &fh, &n, bs.h(), &type, &error);
  EXPECT_EQ(h.values(), bs.values());
  type = -4;
  FIRCoefs(&fs, &fl, &fh, &n, h.h(), &type, &error);
  EXPECT_EQ(type, 0);
}

TEST(FirIdeal, RejectionsEmptyTheCoefficients) {
  struct Bad {
    const char* what;
    double fs, fl, fh;
    int32_t n, type, code, fail = 0;
  };
  std::vector<Rejection> cases;
  for (Bad b : {Bad{"no taps", 1000, 100, 0, 0, 0, -20021}, Bad{"negative taps", 1000, 100, 0, -5, 0, -20021},
                Bad{"fl above Nyquist", 1000, 501, 0, 11, 0, -20020},
                Bad{"fh above Nyquist", 1000, 100, 501, 11, 2, -20020},
                Bad{"zero fs", 0, 100, 0, 11, 0, -20020}, Bad{"negative fs", -1000, -600, 0, 11, 0, -20023},
                Bad{"zero fl", 1000, 0, 0, 11, 0, -20023}, Bad{"NaN fl", 1000, nan(), 0, 11, 1, -20023},
                Bad{"NaN fs", nan(), 100, 0, 11, 0, -20023}, Bad{"fh not above fl", 1000, 200, 200, 11, 2, -20023},
                Bad{"fh zero", 1000, 200, 0, 11, 3, -20023}, Bad{"highpass, even taps", 1000, 100, 0, 20, 1, -20033},
                Bad{"bandstop, even taps", 1000, 100, 200, 20, 3, -20033},
                Bad{"resize fails", 1000, 100, 0, 11, 0, -20001, 1}})
    cases.push_back({b.what, b.code,
                     [b](uint8_t** out) {
                       double fs = b.fs, fl = b.fl, fh = b.fh;
                       int32_t n = b.n, type = b.type, error = 0;
                       return jqtest::reported(FIRCoefs(&fs, &fl, &fh, &n, out, &type, &error), error);
                     },
                     b.fail});
  jqtest::expect_rejections<double>(cases);
}

TEST(FirMedian, MatchesMedfiltAndTheZeroPaddedDefinition) {
  for (const fir_oracle::MedianCase& c : fir_oracle::kMedian) {
    SCOPED_TRACE(testing::Message() << "n " << c.n << " left " << c.left << " right " << c.right);
    jqrt::Array<double> x(std::vector<double>(c.x, c.x + c.n));
    ASSERT_EQ(MedianFilter81_H(x.h(), c.left, c.right), 0);
    EXPECT_EQ(x.values(), std::vector<double>(c.y, c.y + c.n));
    if (c.left == c.right) {
      jqrt::Array<double> z(std::vector<double>(c.x, c.x + c.n));
      int32_t rank = c.left, error = 1;
      ASSERT_EQ(MedianFilterCIN(z.h(), &rank, &error), 0);
      EXPECT_EQ(error, 0);
      EXPECT_EQ(z.values(), x.values());
    }
  }
  jqrt::Array<double> x{1, 9, 2, 8, 3};
  ASSERT_EQ(MedianFilter81_H(x.h(), 1, -1), 0);
  EXPECT_EQ(x.values(), (std::vector<double>{1, 2, 8, 3, 3}));
  // A window far longer than the signal is mostly padding: all zeros.
  jqrt::Array<double> big{5, 6, 7};
  ASSERT_EQ(MedianFilter81_H(big.h(), 2147483647, 2), 0);
  EXPECT_EQ(big.values(), (std::vector<double>{0, 0, 0}));
  jqrt::Array<double> edge{5, 6, 7};  // w = 2n: the samples still reach a middle place
  ASSERT_EQ(MedianFilter81_H(edge.h(), 3, 2), 0);
  EXPECT_EQ(edge.values(), (std::vector<double>{2.5, 2.5, 2.5}));
  // NaNs sort above every number and leave the window again.
  jqrt::Array<double> withnan{1, nan(), 3, 4, 5, 6, 7};
  ASSERT_EQ(MedianFilter81_H(withnan.h(), 1, 1), 0);
  EXPECT_EQ(withnan[0], 1);
  EXPECT_EQ(withnan[4], 5);
  EXPECT_EQ(withnan[5], 6);
}

TEST(FirMedian, LongKernelsAgreeWithSortingEveryWindow) {
  std::mt19937 gen(7);
  std::uniform_int_distribution<int> d(-50, 50);
  std::vector<double> x(3000);
  for (double& v : x) v = d(gen) * 0.5;
  for (auto [l, r] : {std::pair{200, 200}, {500, 37}, {0, 999}, {1200, 1}}) {
    jqrt::Array<double> y(x);
    ASSERT_EQ(MedianFilter81_H(y.h(), l, r), 0);
    std::vector<double> w(l + 1 + r);
    for (size_t k = 0; k < x.size(); k += 97) {
      for (int i = 0; i < l + 1 + r; ++i) {
        const long j = static_cast<long>(k) - l + i;
        w[i] = j < 0 || j >= static_cast<long>(x.size()) ? 0.0 : x[j];
      }
      std::sort(w.begin(), w.end());
      const size_t m = w.size();
      EXPECT_EQ(y[k], m % 2 ? w[m / 2] : (w[m / 2 - 1] + w[m / 2]) / 2) << "l " << l << " r " << r << " k " << k;
    }
  }
}

TEST(FirMedian, Rejections) {
  std::vector<Rejection> cases = {
      {"right rank equal to the length", -20008, [](uint8_t** x) { return MedianFilter81_H(x, 1, 3); }},
      {"empty", -20003, [](uint8_t** x) { return MedianFilter81_H(jqtest::with_count(x, 0), 1, 1); }},
      {"negative count", -20003, [](uint8_t** x) { return MedianFilter81_H(jqtest::with_count(x, -7), 1, 1); }},
      {"negative left rank", -20004, [](uint8_t** x) { return MedianFilter81_H(x, -2, 1); }},
      {"in/out form, rank too long", -20008,
       [](uint8_t** x) {
         int32_t rank = 3, error = 0;
         return jqtest::reported(MedianFilterCIN(x, &rank, &error), error);
       }},
      {"in/out form, negative rank", -20004,
       [](uint8_t** x) {
         int32_t rank = -1, error = 0;
         return jqtest::reported(MedianFilterCIN(x, &rank, &error), error);
       }},
      {"failed scratch", -20001, [](uint8_t** x) {
         jq::fail_scratch_allocation(1);
         const int32_t r = MedianFilter81_H(x, 1, 1);
         jq::fail_scratch_allocation(0);
         return r;
       }}};
  jqtest::expect_rejections<double>(cases);
}

TEST(FirMultirate, MatchesLfilterAndUpfirdnInBlocksOrWhole) {
  check_multirate_oracle<double>(1e-13);
  check_multirate_oracle<cd>(1e-13);
  check_multirate_oracle<float>(1e-5);
  check_multirate_oracle<cf>(1e-5);
}

TEST(FirMultirate, StateAndPhaseCarryOnAndResetStartsOver) {
  jqrt::Array<double> x{1, 2, 3, 4, 5}, h{1, 1, 1}, y, state{9, 9};
  int32_t count = 0, phase = 0;
  // Without reset the given history is used: y[0] = 9 + 9 + 1.
  ASSERT_EQ(ppMultiRateFIRH_DBL(x.h(), y.h(), state.h(), h.h(), 0, 0, 0, 0, &count, &phase), 0);
  EXPECT_EQ(y.values(), (std::vector<double>{19, 12, 6, 9, 12}));
  EXPECT_EQ(state.values(), (std::vector<double>{4, 5}));
  EXPECT_EQ(phase, 0);
  ASSERT_EQ(ppMultiRateFIRH_DBL(x.h(), y.h(), state.h(), h.h(), 0, 0, 0, 1, &count, &phase), 0);
  EXPECT_EQ(y.values(), (std::vector<double>{1, 3, 6, 9, 12}));
  // Decimating by 2 from phase 1 skips the first input; the phase carries.
  jqrt::Array<double> one{1}, no_history;
  phase = 1;
  ASSERT_EQ(ppMultiRateFIRH_DBL(x.h(), y.h(), no_history.h(), one.h(), 1, 2, 0, 0, &count, &phase), 0);
  EXPECT_EQ(y.values(), (std::vector<double>{2, 4}));
  EXPECT_EQ(phase, 0);
  // Inputs that share a block with an output are read before it is resized.
  ASSERT_EQ(ppMultiRateFIRH_DBL(x.h(), x.h(), state.h(), h.h(), 0, 0, 0, 1, &count, &phase), 0);
  EXPECT_EQ(x.values(), (std::vector<double>{1, 3, 6, 9, 12}));
  ASSERT_EQ(ppMultiRateFIRH_DBL(x.h(), y.h(), h.h(), h.h(), 0, 0, 0, 1, &count, &phase), 0);
  EXPECT_EQ(y.values(), (std::vector<double>{1, 4, 10, 18, 27}));
  EXPECT_EQ(ppMultiRateFIRH_DBL(x.h(), y.h(), y.h(), h.h(), 0, 0, 0, 1, &count, &phase), -20008);
}

TEST(FirMultirate, RejectionsEmptyOutputStateAndCounts) {
  jqrt::Array<double> h{1, 2, 3}, none, x{1, 2, 3, 4};
  struct Bad {
    const char* what;
    int32_t code, mode, down, up;
    bool no_taps, no_input;
    int32_t fail;
  };
  std::vector<Rejection> cases;
  for (Bad b : {Bad{"mode", -20061, 4, 1, 1, false, false, 0}, Bad{"negative mode", -20061, -1, 1, 1, false, false, 0},
                Bad{"decimation 0", -20021, 1, 0, 5, false, false, 0},
                Bad{"interpolation negative", -20021, 3, 2, -1, false, false, 0},
                Bad{"huge factor", -20010, 2, 0, 2147483647, false, false, 0},
                Bad{"no taps", -20003, 0, 1, 1, true, false, 0}, Bad{"no input", -20003, 0, 1, 1, false, true, 0},
                Bad{"state resize fails", -20001, 0, 1, 1, false, false, 1},
                Bad{"output resize fails", -20001, 0, 1, 1, false, false, 2}})
    cases.push_back({b.what, b.code, [&, b](uint8_t** state) {
                       jqrt::Array<double> y(5);
                       int32_t count = 7, phase = 1;
                       const int32_t r = ppMultiRateFIRH_DBL(b.no_input ? none.h() : x.h(), y.h(), state,
                                                             b.no_taps ? none.h() : h.h(), b.mode, b.down, b.up, 0,
                                                             &count, &phase);
                       // Every output is cleared, not just the state checked by the table.
                       return y.size() == 0 && count == 0 && phase == 0 ? r : 1;
                     },
                     b.fail});
  jqtest::expect_rejections<double>(cases);
}

TEST(FirSavgol, MatchesSavgolCoeffsAndFilter) {
  for (const fir_oracle::SavgolCase& c : fir_oracle::kSavgol) {
    SCOPED_TRACE(testing::Message() << "m " << c.m << " p " << c.p << " n " << c.n);
    jqrt::Array<double> w;
    ASSERT_EQ(SavitzkyGolayCoefH(c.m, c.p, w.h()), 0);
    ASSERT_EQ(w.size(), 2 * c.m + 1);
    for (int i = 0; i < w.size(); ++i) EXPECT_NEAR(w[i], c.c[i], 1e-13) << "weight " << i;
    jqrt::Array<double> x(std::vector<double>(c.x, c.x + c.n));
    ASSERT_EQ(SavitzkyGolayFiltH(x.h(), c.m, c.p), 0);
    ASSERT_EQ(x.size(), c.n);
    for (int i = 0; i < c.n; ++i) EXPECT_NEAR(x[i], c.y[i], 1e-11 * (1 + std::fabs(c.y[i]))) << "sample " << i;
  }
}

TEST(FirSavgol, KeepsPolynomialsOfItsOrderEdgesIncluded) {
  // A long window of high order: the fit must reproduce the cubic exactly.
  std::vector<double> cubic(400);
  for (int i = 0; i < 400; ++i) {
    const double t = i / 100.0 - 2;
    cubic[i] = 0.5 * t * t * t - t + 3;
  }
  for (auto [m, p] : {std::pair{50, 3}, {150, 12}, {7, 5}}) {
    jqrt::Array<double> x(cubic);
    ASSERT_EQ(SavitzkyGolayFiltH(x.h(), m, p), 0);
    for (int i = 0; i < 400; ++i) EXPECT_NEAR(x[i], cubic[i], 1e-10) << "m " << m << " p " << p << " i " << i;
  }
  // Window 1 is the identity.
  jqrt::Array<double> x{1, 5, -2};
  ASSERT_EQ(SavitzkyGolayFiltH(x.h(), 0, 0), 0);
  EXPECT_EQ(x.values(), (std::vector<double>{1, 5, -2}));
}

TEST(FirSavgol, Rejections) {
  auto scratch_fails = [](int nth, int32_t order) {
    return [=](uint8_t** x) {
      jq::fail_scratch_allocation(nth);
      const int32_t r = SavitzkyGolayFiltH(x, 1, order);
      jq::fail_scratch_allocation(0);
      return r;
    };
  };
  std::vector<Rejection> cases = {
      {"negative side points", -20004, [](uint8_t** c) { return SavitzkyGolayCoefH(-1, 0, c); }},
      {"window too long", -20010, [](uint8_t** c) { return SavitzkyGolayCoefH(2147483647, 2, c); }},
      {"negative order", -20004, [](uint8_t** c) { return SavitzkyGolayCoefH(3, -1, c); }},
      {"order not below the window", -20061, [](uint8_t** c) { return SavitzkyGolayCoefH(3, 7, c); }},
      {"coefficient resize fails", -20001, [](uint8_t** c) { return SavitzkyGolayCoefH(3, 2, c); }, 1},
      {"empty signal", -20003, [](uint8_t** x) { return SavitzkyGolayFiltH(jqtest::with_count(x, 0), 1, 1); }},
      {"signal shorter than the window", -20008, [](uint8_t** x) { return SavitzkyGolayFiltH(x, 2, 1); }},
      {"filter, bad order", -20061, [](uint8_t** x) { return SavitzkyGolayFiltH(x, 1, 3); }},
      {"failed scratch", -20001, scratch_fails(2, 1)},
      {"bad order decides before any allocation", -20061, scratch_fails(1, 3)}};
  jqtest::expect_rejections<double>(cases);
}

namespace {

// The cascade's impulse response: the model with its taps l apart,
// convolved with the interpolator.
std::vector<double> cascade(const std::vector<double>& g, const std::vector<double>& i, int l) {
  std::vector<double> h((g.size() - 1) * l + i.size(), 0.0);
  for (size_t a = 0; a < g.size(); ++a)
    for (size_t b = 0; b < i.size(); ++b) h[a * l + b] += g[a] * i[b];
  return h;
}

double gain(const std::vector<double>& h, double f) {
  std::complex<double> s = 0;
  for (size_t k = 0; k < h.size(); ++k) s += h[k] * std::polar(1.0, -2 * kPi * f * k);
  return std::abs(s);
}

}  // namespace

TEST(FirNarrow, DesignMeetsItsBandsAndFilteringIsTheCascade) {
  struct Narrow {
    double fs, fp, fst, ripple, att;
    int32_t type, factor;
  };
  for (Narrow sp : {Narrow{1000, 20, 25, 0.01, 60, 0, 0}, Narrow{48000, 1000, 1200, 0.02, 50, 0, 0},
                  Narrow{1000, 480, 475, 0.01, 60, 1, 0}, Narrow{1000, 470, 460, 0.05, 40, 1, 3},
                  Narrow{1000, 50, 80, 0.01, 40, 0, 1}}) {
    SCOPED_TRACE(testing::Message() << "fp " << sp.fp << " fst " << sp.fst << " type " << sp.type);
    jqrt::Array<double> g, i;
    int32_t type = sp.type, factor = sp.factor, error = 1;
    ASSERT_EQ(FIRNarrowCoef_head(&sp.fs, &sp.fp, &sp.fst, &sp.ripple, &sp.att, &type, &factor, g.h(), i.h(), &error),
              0);
    ASSERT_EQ(error, 0);
    if (sp.factor > 0) {
      EXPECT_EQ(factor, sp.factor);
    } else if (std::fabs(sp.fst - sp.fp) < 10) {
      EXPECT_GT(factor, 2) << "a narrow band is worth interpolating";
    }
    const std::vector<double> h = cascade(g.values(), i.values(), factor);
    const double stop = std::pow(10.0, -sp.att / 20);
    for (int k = 0; k <= 2000; ++k) {
      const double f = sp.fs / 2 * k / 2000;
      const bool pass = sp.type == 0 ? f <= sp.fp : f >= sp.fp;
      const bool reject = sp.type == 0 ? f >= sp.fst : f <= sp.fst;
      const double a = gain(h, f / sp.fs);
      if (pass) {
        EXPECT_NEAR(a, 1.0, sp.ripple) << "f " << f;
      } else if (reject) {
        EXPECT_LE(a, stop) << "f " << f;
      }
    }
    // Filtering runs that cascade from rest, both parts of a complex signal alike.
    std::mt19937 gen(3);
    std::normal_distribution<double> nd;
    std::vector<double> x(700);
    std::vector<cd> z(700);
    for (int k = 0; k < 700; ++k) {
      x[k] = nd(gen);
      z[k] = cd(x[k], 0.5 * x[k]);
    }
    jqrt::Array<double> y(x);
    jqrt::Array<cd> yz(z);
    int32_t f2 = factor;
    ASSERT_EQ(FIRnarrowFilter_head(y.h(), &sp.fs, &sp.fp, &sp.fst, &sp.ripple, &sp.att, &type, &f2, &error), 0);
    ASSERT_EQ(CxSigFIRnarrowFilter_head(yz.h(), &sp.fs, &sp.fp, &sp.fst, &sp.ripple, &sp.att, &type, &f2, &error), 0);
    ASSERT_EQ(y.size(), 700);
    for (int t = 0; t < 700; t += 7) {
      double want = 0;
      for (size_t k = 0; k < h.size() && k <= static_cast<size_t>(t); ++k) want += h[k] * x[t - k];
      EXPECT_NEAR(y[t], want, 1e-12) << "t " << t;
      EXPECT_EQ(yz[t].real(), y[t]);
    }
  }
}

TEST(FirNarrow, Rejections) {
  struct Bad {
    const char* what;
    double fs, fp, fst, ripple, att;
    int32_t type, factor, code, fail = 0;
  };
  std::vector<Rejection> cases;
  for (Bad b : {Bad{"infinite fs", INFINITY, 20, 25, 0.01, 60, 0, 0, -20031},
                Bad{"NaN edge", 1000, nan(), 25, 0.01, 60, 0, 0, -20031},
                Bad{"zero passband", 1000, 0, 25, 0.01, 60, 0, 0, -20023},
                Bad{"stopband at Nyquist", 1000, 20, 500, 0.01, 60, 0, 0, -20020},
                Bad{"type", 1000, 20, 25, 0.01, 60, 2, 0, -20061},
                Bad{"lowpass edges reversed", 1000, 25, 20, 0.01, 60, 0, 0, -20023},
                Bad{"highpass edges reversed", 1000, 20, 25, 0.01, 60, 1, 0, -20023},
                Bad{"ripple 1", 1000, 20, 25, 1, 60, 0, 0, -20053},
                Bad{"no attenuation", 1000, 20, 25, 0.01, 0, 0, 0, -20140},
                Bad{"factor too large", 1000, 20, 25, 0.01, 60, 0, 50, -20061},
                Bad{"beyond the longest design", 1000, 100, 100.01, 0.001, 120, 0, 1, -20031},
                Bad{"model resize fails", 1000, 20, 25, 0.01, 60, 0, 0, -20001, 1}}) {
    cases.push_back({b.what, b.code,
                     [b](uint8_t** out) {
                       jqrt::Array<double> other(4);
                       Bad c = b;
                       int32_t error = 0;
                       const int32_t r = FIRNarrowCoef_head(&c.fs, &c.fp, &c.fst, &c.ripple, &c.att, &c.type,
                                                            &c.factor, out, other.h(), &error);
                       return other.size() == 0 ? jqtest::reported(r, error) : 1;
                     },
                     b.fail});
    // One 4089-tap attempt is enough; the filter resizes nothing on success.
    if (b.fail || (b.code == -20031 && b.factor == 1)) continue;
    cases.push_back({b.what, b.code, [b](uint8_t** x) {
                       Bad c = b;
                       int32_t error = 0;
                       return jqtest::reported(FIRnarrowFilter_head(x, &c.fs, &c.fp, &c.fst, &c.ripple, &c.att,
                                                                    &c.type, &c.factor, &error),
                                               error);
                     }});
  }
  cases.push_back({"empty signal", -20003, [](uint8_t** x) {
                     double fs = 1000, fp = 20, fst = 25, rp = 0.01, att = 60;
                     int32_t type = 0, factor = 0, error = 0;
                     return jqtest::reported(FIRnarrowFilter_head(jqtest::with_count(x, 0), &fs, &fp, &fst, &rp, &att,
                                                                  &type, &factor, &error),
                                             error);
                   }});
  jqtest::expect_rejections<double>(cases);
}
