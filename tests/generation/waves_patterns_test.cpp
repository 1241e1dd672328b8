// Record patterns and pulse shapes through their exports.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "jqanlys.h"
#include "jqrt.hpp"

namespace {
constexpr double kPi = 3.141592653589793;
}  // namespace

TEST(SquarePattern, PeriodsDutyAndChecks) {
  jqrt::Array<double> y;
  int32_t n = 10, err = 0;
  double a = 3, duty = 50, cycles = 2.5;
  ASSERT_EQ(Square(y.h(), &n, &a, &duty, &cycles, &err), 0);
  EXPECT_EQ(err, 0);
  EXPECT_EQ(y.values(), (std::vector<double>{3, 3, 0, 0, 3, 3, 0, 0, 3, 3}));
  // n / cycles = 3.33 gives a period of trunc(3.83) = 3 with trunc(2) = 2 high.
  cycles = 3;
  ASSERT_EQ(Square(y.h(), &n, &a, &duty, &cycles, &err), 0);
  EXPECT_EQ(y.values(), (std::vector<double>{3, 3, 0, 3, 3, 0, 3, 3, 0, 3}));
  duty = 100;
  ASSERT_EQ(Square(y.h(), &n, &a, &duty, &cycles, &err), 0);
  EXPECT_EQ(y.values(), std::vector<double>(10, 3.0));
  duty = 1e300;  // not rejected: every sample is high
  ASSERT_EQ(Square(y.h(), &n, &a, &duty, &cycles, &err), 0);
  EXPECT_EQ(y.values(), std::vector<double>(10, 3.0));
  // Duty is checked first, cycles second; the later failure wins.
  const struct {
    double duty, cycles;
    int32_t code;
  } bad[] = {{0, 3, -20011}, {-1, 3, -20011}, {50, 0, -20012}, {50, 5.5, -20012}, {0, 6, -20012}};
  for (const auto& b : bad) {
    jqrt::Array<double> z(4);
    duty = b.duty;
    cycles = b.cycles;
    ASSERT_EQ(Square(z.h(), &n, &a, &duty, &cycles, &err), 0);
    EXPECT_EQ(err, b.code) << b.duty << " " << b.cycles;
    EXPECT_EQ(z.size(), 0);
  }
}

TEST(Ramps, LinearLogarithmicAndTheirChecks) {
  jqrt::Array<double> y;
  ASSERT_EQ(RampPtrn85(y.h(), 5, 0, 1, 1, 0), 0);
  EXPECT_EQ(y.values(), (std::vector<double>{0, 0.2, 0.4, 0.6, 0.8}));
  ASSERT_EQ(RampPtrn80(y.h(), 5, 0, 1), 0);
  EXPECT_EQ(y.values(), (std::vector<double>{0, 0.25, 0.5, 0.75, 1}));
  ASSERT_EQ(RampPtrn85(y.h(), 4, 1, 1000, 0, 1), 0);
  EXPECT_EQ(y[0], 1.0);
  EXPECT_NEAR(y[1], 10, 1e-13);
  EXPECT_NEAR(y[2], 100, 1e-12);
  EXPECT_EQ(y[3], 1000.0);  // set exactly
  ASSERT_EQ(RampPtrn80(y.h(), 1, 2, 2), 0);
  EXPECT_EQ(y.values(), std::vector<double>{2});
  // An end that cannot be reached by i * (end - start) / D + start still lands exactly.
  ASSERT_EQ(RampPtrn80(y.h(), 3, 0.1, 0.7), 0);
  EXPECT_EQ(y[2], 0.7);

  const struct {
    int32_t n, exclude, spacing;
    double start, end;
    int32_t code;
  } bad[] = {{0, 1, 0, 0, 1, -20005},  {1, 0, 0, 0, 1, -20006},   {0, 0, 0, 1, 1, -20006}, {5, 0, 2, 0, 1, -20061},
             {5, 0, -1, 0, 1, -20061}, {5, 0, 1, 0, 1, -20140},   {5, 1, 1, 1, -2, -20140}};
  for (const auto& b : bad) {
    jqrt::Array<double> z(3);
    EXPECT_EQ(RampPtrn85(z.h(), b.n, b.start, b.end, b.exclude, b.spacing), b.code) << b.n << " " << b.spacing;
    EXPECT_EQ(z.size(), 0);
  }
  jqrt::Array<double> z(3);
  int32_t n = 1, err = 0;
  double s = 0, e = 1;
  ASSERT_EQ(RampPtrn(z.h(), &n, &s, &e, &err), 0);
  EXPECT_EQ(err, -20006);
  EXPECT_EQ(z.size(), 0);
  {
    jqrt::FailResize fail(1);
    EXPECT_NE(RampPtrn85(z.h(), 5, 0, 1, 0, 0), 0);
  }
  EXPECT_EQ(z.size(), 0);
}

TEST(PulsePatterns, PulseImpulseAndTheirSpans) {
  jqrt::Array<double> y;
  int32_t n = 6, delay = 2, width = 3, err = 0;
  double a = 4;
  ASSERT_EQ(PulsePtrn(y.h(), &n, &a, &delay, &width, &err), 0);
  EXPECT_EQ(y.values(), (std::vector<double>{0, 0, 4, 4, 4, 0}));
  for (auto [d, w] : {std::pair{-1, 1}, {1, -1}, {4, 3}, {7, 0}, {0, 7}, {2147483647, 2147483647}}) {
    jqrt::Array<double> z(2);
    delay = d;
    width = w;
    ASSERT_EQ(PulsePtrn(z.h(), &n, &a, &delay, &width, &err), 0);
    EXPECT_EQ(err, -20014) << d << " " << w;
    EXPECT_EQ(z.size(), 0);
  }
  delay = 5;
  ASSERT_EQ(ImpulsePtrn(y.h(), &n, &a, &delay, &err), 0);
  EXPECT_EQ(y.values(), (std::vector<double>{0, 0, 0, 0, 0, 4}));
  for (int32_t d : {-1, 6}) {
    delay = d;
    ASSERT_EQ(ImpulsePtrn(y.h(), &n, &a, &delay, &err), 0);
    EXPECT_EQ(err, -20017);
    EXPECT_EQ(y.size(), 0);
  }
}

TEST(SincWave, PeakAndSpacing) {
  jqrt::Array<double> y;
  int32_t n = 5, err = 0;
  double a = 2, delay = 1, dt = 0.5;
  ASSERT_EQ(SincWave(y.h(), &n, &a, &delay, &dt, &err), 0);
  EXPECT_EQ(y[2], 2.0);
  EXPECT_NEAR(y[0], 0, 1e-15);  // sin(-pi) / -pi
  EXPECT_NEAR(y[1], 2 * std::sin(-kPi / 2) / (-kPi / 2), 1e-15);
  dt = 0;
  ASSERT_EQ(SincWave(y.h(), &n, &a, &delay, &dt, &err), 0);
  EXPECT_EQ(err, -20016);
  EXPECT_EQ(y.size(), 0);
}

TEST(PulseShapes, GeneratedTimeBaseAndGivenTimes) {
  // Periodic sinc: 1 at every singular point, even where the limit is -1.
  jqrt::Array<double> t{2 * kPi, 0.0, kPi};
  ASSERT_EQ(PeriodicSincH(t.h(), 99, 3, 2, -1, 0), 0);
  EXPECT_EQ(t[0], 3.0);
  EXPECT_EQ(t[1], 3.0);
  EXPECT_NEAR(t[2], 3 * std::sin(kPi) / (2 * std::sin(kPi / 2)), 1e-15);

  jqrt::Array<double> y;
  ASSERT_EQ(GaussMonopulseH(y.h(), 3, 2, 1, 1, 0.5), 0);
  // tau = -1, 0, 1 and u = pi * 0.5 * tau.
  for (int i = 0; i < 3; ++i) {
    const double u = kPi * 0.5 * (i - 1);
    EXPECT_NEAR(y[i], 2 * std::sqrt(std::exp(1.0)) * 2 * u * std::exp(-2 * u * u), 1e-15);
  }
  // Its extremes are +-a, at u = +-1/2.
  jqrt::Array<double> ext{-0.5 / kPi, 0.5 / kPi};
  ASSERT_EQ(GaussMonopulseH(ext.h(), 0, 1.5, 0, 0, 1), 0);
  EXPECT_NEAR(ext[0], -1.5, 1e-15);
  EXPECT_NEAR(ext[1], 1.5, 1e-15);

  // Gaussian pulse: the envelope has fallen by the attenuation at tau = bw/(2 fc).
  // Gaussian pulse: the generated base is i * dt - delay.
  jqrt::Array<double> g;
  ASSERT_EQ(GaussPulseH(g.h(), 3, 2, 0.1, 0.1, 2, 0.5, 6), 0);
  for (int i = 0; i < 3; ++i) {
    const double u = kPi * 2 * (i * 0.1 - 0.1);
    EXPECT_NEAR(g[i], 2 * std::exp(-5 * 0.25 / (std::log(10.0) * 6) * u * u) * std::cos(2 * u), 1e-15);
  }
  EXPECT_EQ(g[1], 2.0);

  // Aperiodic triangle: starts at 0 on the generated base, centred on 0 for given times.
  jqrt::Array<double> tri;
  ASSERT_EQ(AperiodTriangleH(tri.h(), 6, 2, 0, 1, 4, 0.25), 0);
  EXPECT_EQ(tri.values(), (std::vector<double>{0, 2, 2 * 2 / 3.0, 2 * 1 / 3.0, 0, 0}));
  jqrt::Array<double> times{-2, -1, 0, 2, 2.5};
  ASSERT_EQ(AperiodTriangleH(times.h(), 0, 1, 0, 0, 4, 0.5), 0);
  EXPECT_EQ(times.values(), (std::vector<double>{0, 0.5, 1, 0, 0}));
  jqrt::Array<double> edges{0.0, 0.5};
  ASSERT_EQ(AperiodTriangleH(edges.h(), 0, 1, 0, 0, 1, 0), 0);  // skew 0: falls from a at the start
  EXPECT_EQ(edges.values(), (std::vector<double>{0.5, 0}));
  jqrt::Array<double> rise{0.0, 0.5};
  ASSERT_EQ(AperiodTriangleH(rise.h(), 0, 1, 0, 0, 1, 1), 0);  // skew 1: rises to a at the end
  EXPECT_EQ(rise.values(), (std::vector<double>{0.5, 1.0}));
}

TEST(PulseShapes, ChecksInTheirOrderAndEmptiedOutputs) {
  using Fn = int32_t (*)(JQHandle, int32_t n, double dt, double shape);
  const struct {
    Fn f;
    int32_t shape_code;
  } shapes[] = {
      {[](JQHandle h, int32_t n, double dt, double s) { return PeriodicSincH(h, n, 1, s > 0 ? 3 : 0, dt, 0); },
       -20140},
      {[](JQHandle h, int32_t n, double dt, double s) { return GaussPulseH(h, n, 1, 0, dt, 1, s, 6); }, -20140},
      {[](JQHandle h, int32_t n, double dt, double s) { return GaussMonopulseH(h, n, 1, 0, dt, s); }, -20140},
  };
  for (const auto& s : shapes) {
    jqrt::Array<double> y;
    EXPECT_EQ(s.f(y.h(), 0, 0, 0), s.shape_code);  // the shape parameter is checked first
    EXPECT_EQ(y.size(), 0);
    EXPECT_EQ(s.f(y.h(), 0, 0, 1), -20003);
    EXPECT_EQ(s.f(y.h(), 3, 0, 1), -20016);
    EXPECT_EQ(y.size(), 0);
    jqrt::Array<double> t{1.0};  // given times ignore n and dt
    EXPECT_EQ(s.f(t.h(), -1, -1, 1), 0);
    EXPECT_EQ(t.size(), 1);
    {
      jqrt::FailResize fail(1);
      EXPECT_EQ(s.f(y.h(), 3, 1, 1), -20001);
    }
    EXPECT_EQ(y.size(), 0);
  }
  // The triangle checks n first, then width, dt and skew.
  jqrt::Array<double> y;
  EXPECT_EQ(AperiodTriangleH(y.h(), 0, 1, 0, 0, 0, 2), -20003);
  EXPECT_EQ(AperiodTriangleH(y.h(), 3, 1, 0, 0, 0, 2), -20140);
  EXPECT_EQ(AperiodTriangleH(y.h(), 3, 1, 0, 0, 1, 2), -20016);
  EXPECT_EQ(AperiodTriangleH(y.h(), 3, 1, 0, 1, 1, 2), -20053);
  EXPECT_EQ(AperiodTriangleH(y.h(), 3, 1, 0, 1, 1, std::nan("")), -20053);
  jqrt::Array<double> t{0.5, 1.0};
  EXPECT_EQ(AperiodTriangleH(t.h(), 0, 1, 0, 0, 1, -0.5), -20053);
  EXPECT_EQ(t.size(), 0);
}

TEST(Patterns, CommonFrameAndNoBlocksLeft) {
  const int64_t before = jqrt_live_blocks();
  {
    jqrt::Array<double> y;
    int32_t n = 16, err = 5;
    double a = 1, p = 0, c = 2, f1 = 0, f2 = 0.5;
    ASSERT_EQ(SinePtrn(y.h(), &n, &a, &p, &c, &err), 0);
    ASSERT_EQ(ChirpCIN(y.h(), &n, &a, &f1, &f2, &err), 0);
    n = 0;
    ASSERT_EQ(ChirpCIN(y.h(), &n, &a, &f1, &f2, &err), 0);
    EXPECT_EQ(err, -20003);
    n = 8;
    jqrt::Array<double> z(1);
    int32_t rc;
    {
      jqrt::FailResize fail(1);
      rc = SinePtrn(z.h(), &n, &a, &p, &c, &err);
    }
    EXPECT_NE(rc, 0);
    EXPECT_EQ(err, -20001);
    EXPECT_EQ(z.size(), 0);
  }
  EXPECT_EQ(jqrt_live_blocks(), before);
}
