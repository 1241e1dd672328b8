// Cosine, sine, Hilbert and Hartley exports against scipy/numpy values
// (tools/gen_dct_hilbert_oracle.py), and their inverses against the inputs.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "jqanlys.h"
#include "jqrt.hpp"

namespace {

#include "dct_hilbert_oracle.inc"

using Vec = std::vector<double>;

// Worst errors over all cases: absolute, and relative to the case's largest
// reference magnitude.
struct Worst {
  double abs = 0, rel = 0;
  void check(const Vec& got, const double* want, size_t count, const std::string& what) {
    ASSERT_EQ(got.size(), count) << what;
    double peak = 0, err = 0;
    for (size_t i = 0; i < count; ++i) {
      peak = std::max(peak, std::abs(want[i]));
      err = std::max(err, std::abs(got[i] - want[i]));
    }
    abs = std::max(abs, err);
    if (peak > 0) rel = std::max(rel, err / peak);
    EXPECT_LE(err, 1e-14 * std::max(1.0, peak)) << what;
  }
};

Vec head(const double* x, int n, int m) {
  Vec v(m, 0.0);
  std::copy(x, x + std::min(n, m), v.begin());
  return v;
}

using OneD = int32_t (*)(JQHandle, JQHandle, int32_t, JQSlot);
using Inverse = int32_t (*)(JQHandle, JQHandle, JQSlot);
using InPlace = int32_t (*)(JQHandle, JQSlot);
using TwoD = int32_t (*)(JQHandle, JQHandle, JQSlot);

Vec run(OneD f, const Vec& x, int32_t m, bool idp) {
  jqrt::Array<double> in(x), out;
  jqrt::Slot slot;
  EXPECT_EQ(f(in.h(), out.h(), m, slot.get()), 0);
  if (idp) TransformUnreserveProc(slot.get());
  return out.values();
}
Vec run(Inverse f, const Vec& x) {
  jqrt::Array<double> in(x), out;
  jqrt::Slot slot;
  EXPECT_EQ(f(in.h(), out.h(), slot.get()), 0);
  return out.values();
}
Vec run(InPlace f, const Vec& x, bool idp) {
  jqrt::Array<double> a(x);
  jqrt::Slot slot;
  EXPECT_EQ(f(a.h(), slot.get()), 0);
  if (idp) TransformUnreserveProc(slot.get());
  return a.values();
}
Vec run(TwoD f, const Vec& x, int rows, int cols) {
  auto in = jqrt::Array2<double>(rows, cols);
  std::copy(x.begin(), x.end(), in.data());
  jqrt::Array2<double> out;
  jqrt::Slot slot;
  EXPECT_EQ(f(in.h(), out.h(), slot.get()), 0);
  EXPECT_EQ(out.rows(), rows);
  EXPECT_EQ(out.cols(), cols);
  TransformUnreserveProc(slot.get());
  return out.values();
}

TEST(TransformOracle, AllFormsMatchTheReferences) {
  Worst forward, inverse;
  for (const OracleCase& c : kOracle) {
    const std::string kind = c.kind, what = kind + " n=" + std::to_string(c.n) + " m=" + std::to_string(c.m);
    const bool two_d = kind == "dct2d" || kind == "dst2d";
    const size_t count = two_d ? size_t(c.n) * c.m : size_t(c.m);
    const Vec x(c.x, c.x + (two_d ? count : size_t(c.n)));
    const Vec y(c.y, c.y + count);
    if (kind == "dct" || kind == "dst") {
      const bool cosine = kind == "dct";
      // The length argument is exercised as given and, when it equals the
      // count, as the "use the input's count" default.
      forward.check(run(cosine ? DCT_1DH : DST_1DH, x, c.m, false), c.y, count, what);
      forward.check(run(cosine ? DCT_1DH_IDP : DST_1DH_IDP, x, c.m == c.n ? 0 : c.m, true), c.y, count, what);
      const Vec xm = head(c.x, c.n, c.m);
      inverse.check(run(cosine ? InvDCT_1DH : InvDST_1DH, y), xm.data(), count, what + " inverse");
    } else if (kind == "hilbert") {
      forward.check(run(FastHilbertTransformH, x, false), c.y, count, what);
      Vec neg(y);
      for (double& v : neg) v = -v;
      forward.check(run(InvFastHilbertTransformH_IDP, x, true), neg.data(), count, what + " inverse");
    } else if (kind == "hartley") {
      forward.check(run(FHTH_IDP, x, true), c.y, count, what);
      inverse.check(run(InvFHTH, y, false), c.x, count, what + " inverse");
    } else {
      const bool cosine = kind == "dct2d";
      forward.check(run(cosine ? DCT_2DH_IDP : DST_2DH_IDP, x, c.n, c.m), c.y, count, what);
      inverse.check(run(cosine ? InvDCT_2DH_IDP : InvDST_2DH_IDP, y, c.n, c.m), c.x, count, what + " inverse");
    }
  }
  std::printf("[ oracle   ] forward: max abs %.3g, max rel %.3g; inverse: max abs %.3g, max rel %.3g\n",
              forward.abs, forward.rel, inverse.abs, inverse.rel);
  jqrt_dispose_context();
}

}  // namespace
