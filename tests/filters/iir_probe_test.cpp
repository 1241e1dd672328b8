// Hostile arguments for every IIR export: null inputs and pointers, corrupt
// negative counts, NaN and huge values. Nothing may crash or leak, and every
// refused design leaves its arrays empty. (A null output or state handle
// makes the host allocate a block only the call can see, so outputs here are
// always real handles.)
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>

#include "jqanlys.h"
#include "jqrt.hpp"

namespace {
using Arr = jqrt::Array<double>;
using CArr = jqrt::Array<std::complex<double>>;
}  // namespace

TEST(IirProbe, HostileDesignArgumentsAreRefusedOrDesigned) {
  const double nan = std::numeric_limits<double>::quiet_NaN(), inf = HUGE_VAL;
  const double values[] = {nan, inf, -inf, 1e308, -1.0, 0.0, 1e-300, 30.0};
  const int32_t orders[] = {INT32_MIN, -1, 0, 1, 7, 60, INT32_MAX};
  const int32_t types[] = {-1, 0, 2, 3, 4};
  const int64_t live = jqrt_live_blocks();
  int designed = 0;
  for (double v : values)
    for (int32_t n : orders)
      for (int32_t t : types)
        for (int32_t family = 0; family < 5; ++family) {
          double fs = 100, fl = 10, fh = 20, r = v, a = 2 * v;
          // The varied value takes each role in turn.
          double* roles[] = {&fs, &fl, &fh};
          double& target = *roles[(n & 3) % 3];
          target = v;
          Arr rev, fwd;
          int32_t err = 0;
          int32_t rc;
          switch (family) {
            case 0: rc = BWCoefs90(&fs, &fl, &fh, &n, &t, t & 1, rev.h(), fwd.h(), &err); break;
            case 1: rc = ChebyshevCoefs(&fs, &fl, &fh, &r, &n, &t, rev.h(), fwd.h(), &err); break;
            case 2: rc = InvChebyshevCoefs90(&fs, &fl, &fh, &a, &n, &t, 1 - (t & 1), rev.h(), fwd.h(), &err); break;
            case 3: rc = EllipticCoefs(&fs, &fl, &fh, &r, &a, &n, &t, rev.h(), fwd.h(), &err); break;
            default: rc = BesselCoefs(&fs, &fl, &fh, &n, &t, rev.h(), fwd.h(), &err); break;
          }
          if (err < 0) {
            EXPECT_EQ(rev.size(), 0);
            EXPECT_EQ(fwd.size(), 0);
          } else {
            EXPECT_EQ(rc, 0);
            ++designed;
          }
        }
  EXPECT_GT(designed, 0);
  {
    // Null scalar pointers read as missing values.
    Arr rev, fwd;
    int32_t err = 0;
    EXPECT_EQ(BWCoefs(nullptr, nullptr, nullptr, nullptr, nullptr, rev.h(), fwd.h(), &err), 0);
    EXPECT_EQ(err, -20021);
  }
  EXPECT_EQ(jqrt_live_blocks(), live);
}

TEST(IirProbe, HostileFilterArgumentsNeverCrash) {
  const int64_t live = jqrt_live_blocks();
  const double nan = std::numeric_limits<double>::quiet_NaN();
  {
    Arr good_a{1.0, -0.5, 0.1, 0.2}, good_b{1.0, 2.0, 1.0, 0.5, 0.25, 0.1};
    Arr neg_a{1.0, 2.0}, neg_b{1.0}, nans{nan, nan, nan};
    neg_a.set_dims(-3), neg_b.set_dims(-1);
    uint8_t** coefs[] = {nullptr, good_a.h(), good_b.h(), neg_a.h(), neg_b.h(), nans.h()};
    int32_t err;
    for (uint8_t** a : coefs)
      for (uint8_t** b : coefs)
        for (int32_t top : {-1, 0, 1, 2}) {
          Arr x{1.0, 2.0, 3.0}, s1(2), s2;
          CArr cx{{1.0, 2.0}}, cs;
          s1.set_dims(-7);
          IIR_Filter(x.h(), a, b, s1.h(), s2.h(), 1, &err);
          IIR_Filter2(x.h(), &top, a, b, s1.h(), 1, &err);
          IIR_Filter_OneState(x.h(), a, b, s2.h(), 1);
          CxSigIIR_Filter2(cx.h(), &top, a, b, cs.h(), 0, &err);
          double v = 1;
          IIR_Filter_PtbyPt(&v, top + 1, a, b, s2.h(), 0);
          IIR_Filter_PtbyPt(nullptr, top + 1, a, b, s2.h(), 0);
          zeroPhaseCascadeFiltH(x.h(), top, a, b, s1.h(), s2.h(), 0);
          zeroPhaseFiltH(x.h(), a, b, s1.h(), s2.h(), s1.h(), s2.h(), 0);
          IIR_Filter2(nullptr, nullptr, a, b, s1.h(), 1, nullptr);
        }
    // Complex coefficients, with nothing at all to filter.
    CArr rs, cx2{{1.0, 1.0}};
    EXPECT_EQ(CxIIR_Filter_H(cx2.h(), nullptr, nullptr, rs.h(), rs.h(), 0), 0);
  }
  EXPECT_EQ(jqrt_live_blocks(), live);
}
