// Products, determinants, inverses and LU solves against numpy/scipy, and
// the family's rejections.
#include <cmath>
#include <limits>

#include "jqanlys.h"
#include "support.hpp"
#include "support/checks.hpp"

namespace {
#include "oracle.inc"

using lt::cd;
using jqtest::Rejection;
using jqtest::reported;

template <class T> void check_case(const DenseCase& c) {
  SCOPED_TRACE(c.name);
  constexpr bool cx = std::is_same_v<T, cd>;
  lt::NoBufferLeft guard;
  const int n = c.n, k = c.k;
  auto a = lt::matrix<T>(c.a, n, n);
  int32_t st = 1;
  for (int aligned = 0; aligned < 2; ++aligned) {
    // A's first k columns times P, through a k-column copy of A.
    jqrt::Array2<T> ak(n, k), r;
    for (int i = 0; i < n; ++i)
      for (int j = 0; j < k; ++j) ak.data()[i * k + j] = a.data()[i * n + j];
    auto p = lt::matrix<T>(c.p, k, n + 1);
    if constexpr (cx)
      EXPECT_EQ(AxBCxAlignedCIN(ak.h(), p.h(), r.h(), aligned, &st), 0);
    else
      EXPECT_EQ(MatrixMulAligned_head(ak.h(), p.h(), r.h(), aligned, &st), 0);
    EXPECT_EQ(st, 0);
    ASSERT_EQ(r.rows(), n);
    ASSERT_EQ(r.cols(), n + 1);
    EXPECT_LT(lt::rel_error(r.data(), c.ap, n * (n + 1)), 1e-14);
  }
  T det;
  if constexpr (cx)
    CxDeterminant_head(a.h(), 0, reinterpret_cast<JQComplex*>(&det), &st);
  else
    Determinant_head(a.h(), 0, &det, &st);
  EXPECT_EQ(st, 0);
  EXPECT_LT(lt::rel_error(&det, c.det, 1), 1e-12);
  auto spd = lt::matrix<T>(c.spd, n, n);
  if constexpr (cx)
    CxDeterminant_head(spd.h(), 1, reinterpret_cast<JQComplex*>(&det), &st);
  else
    Determinant_head(spd.h(), 1, &det, &st);
  EXPECT_EQ(st, 0);
  EXPECT_LT(lt::rel_error(&det, c.spddet, 1), 1e-12);

  jqrt::Array2<T> inv;
  if constexpr (cx)
    CxInvMatrixLUDri_head(a.h(), inv.h(), &st);
  else
    InvMatrixLUDri_head(a.h(), inv.h(), &st);
  EXPECT_EQ(st, 0);
  EXPECT_LT(lt::rel_error(inv.data(), c.inv, n * n), 1e-12);

  auto b = lt::matrix<T>(c.b, n, k);
  jqrt::Array2<T> x;
  if constexpr (cx)
    CxEqsSetByLUDri_head(a.h(), b.h(), x.h(), &st);
  else
    EqsSetByLUDri_head(a.h(), b.h(), x.h(), &st);
  EXPECT_EQ(st, 0);
  ASSERT_EQ(x.rows(), n);
  ASSERT_EQ(x.cols(), k);
  EXPECT_LT(lt::rel_error(x.data(), c.x, n * k), 1e-12);
  // The first right-hand side alone, as a vector.
  jqrt::Array<T> b1(n), x1;
  for (int i = 0; i < n; ++i) b1.data()[i] = b.data()[i * k];
  if constexpr (cx)
    CxEqsByLUDri_head(a.h(), b1.h(), x1.h(), &st);
  else
    EqsByLUDri_head(a.h(), b1.h(), x1.h(), &st);
  EXPECT_EQ(st, 0);
  ASSERT_EQ(x1.rows(), n);
  for (int i = 0; i < n; ++i) EXPECT_NEAR(std::abs(x1.data()[i] - x.data()[i * k]), 0.0, 1e-12 * (1 + std::abs(x.data()[i * k])));
}

TEST(Dense, AgreesWithNumpy) {
  for (const DenseCase& c : kDense) c.cx ? check_case<cd>(c) : check_case<double>(c);
}

TEST(Dense, DeterminantRules) {
  struct Case {
    const char* what;
    std::vector<std::vector<double>> m;
    int32_t type;
    double det;
    int32_t status;
  } cases[] = {
      {"2x2 ignores the triangular type", {{2, 3}, {5, 7}}, 3, -1, 0},
      {"upper triangular ignores the lower triangle", {{2, 3, 4}, {9, 5, 6}, {9, 9, 7}}, 3, 70, 0},
      {"lower triangular ignores the upper triangle", {{2, 9, 9}, {3, 5, 9}, {4, 6, 7}}, 2, 70, 0},
      {"exactly singular general matrix", {{1, 2, 3}, {2, 4, 6}, {1, 1, 1}}, 0, 0, 0},
      {"pivoting flips the sign", {{0, 1, 0}, {1, 0, 0}, {0, 0, 1}}, 0, -1, 0},
      {"not positive definite", {{1, 2, 0}, {2, 1, 0}, {0, 0, 1}}, 1, 0, -20071},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    auto a = jqrt::Array2<double>::rows(c.m);
    double det = 99;
    int32_t st = 1;
    EXPECT_EQ(Determinant_head(a.h(), c.type, &det, &st), 0);
    EXPECT_EQ(st, c.status);
    EXPECT_NEAR(det, c.det, 1e-12);
  }
}

TEST(Dense, ProductEdges) {
  int32_t st = 1;
  // Inner dimension 0: rows(A) x columns(B) NaNs.
  jqrt::Array2<double> a(3, 0), b(0, 2), r;
  EXPECT_EQ(MatrixMul_head(a.h(), b.h(), r.h(), &st), 0);
  EXPECT_EQ(st, 0);
  ASSERT_EQ(r.rows(), 3);
  ASSERT_EQ(r.cols(), 2);
  for (double v : r.values()) EXPECT_TRUE(std::isnan(v));
  // An empty outer dimension: an empty result and success.
  jqrt::Array2<double> e(0, 4), f(4, 2);
  EXPECT_EQ(MatrixMul_head(e.h(), f.h(), r.h(), &st), 0);
  EXPECT_EQ(st, 0);
  EXPECT_EQ(r.rows(), 0);
  // Banded above 1530 rows: each band must land on its own rows.
  const int m = 3100, k = 257, n = 3;
  jqrt::Array2<double> big(m, k), g(k, n), rb;
  for (int i = 0; i < m * k; ++i) big.data()[i] = std::sin(0.001 * i);
  for (int i = 0; i < k * n; ++i) g.data()[i] = std::cos(0.01 * i);
  EXPECT_EQ(MatrixMul_head(big.h(), g.h(), rb.h(), &st), 0);
  EXPECT_EQ(st, 0);
  ASSERT_EQ(rb.rows(), m);
  for (int i : {0, 1529, 1530, 3059, 3060, 3099})
    for (int j = 0; j < n; ++j) {
      long double s = 0;
      for (int t = 0; t < k; ++t) s += (long double)big.data()[i * k + t] * g.data()[t * n + j];
      EXPECT_NEAR(rb.data()[i * n + j], (double)s, 1e-12) << i << "," << j;
    }
}

TEST(Dense, NonFiniteBounds) {
  using jq::linalg::has_non_finite;
  const double big = std::numeric_limits<double>::max();
  const double inside = -1.7976931348623e308;
  for (double v : {big, -big, inside, std::nan(""), HUGE_VAL, -HUGE_VAL}) EXPECT_TRUE(has_non_finite(&v, 1)) << v;
  for (double v : {std::nextafter(big, 0.0), std::nextafter(inside, 0.0), 0.0, -1e308}) EXPECT_FALSE(has_non_finite(&v, 1)) << v;
  const cd z{0, -big};
  EXPECT_TRUE(jq::linalg::has_non_finite(&z, 1));
  EXPECT_FALSE(has_non_finite(&big, 0));
}

TEST(Dense, Rejections) {
  auto sq = jqrt::Array2<double>::rows({{4, 1}, {1, 3}});
  auto sq3 = jqrt::Array2<double>::rows({{4, 1, 0}, {1, 3, 0}, {0, 0, 1}});
  auto wide = jqrt::Array2<double>::rows({{1, 2, 3}, {4, 5, 6}});
  auto sing = jqrt::Array2<double>::rows({{1, 2}, {2, 4}});
  auto bad = jqrt::Array2<double>::rows({{1, 2}, {3, -std::numeric_limits<double>::max()}});
  jqrt::Array2<double> empty(0, 0);
  jqrt::Array<double> b2{1, 2}, b3{1, 2, 3}, bnan{1, std::nan("")};
  auto B3 = jqrt::Array2<double>::rows({{1}, {2}, {3}});
  int32_t e;
  auto mul = [&](jqrt::Array2<double>& x, jqrt::Array2<double>& y) {
    return [&](uint8_t** o) { return reported(MatrixMul_head(x.h(), y.h(), o, &e), e); };
  };
  auto inv = [&](jqrt::Array2<double>& x) { return [&](uint8_t** o) { return reported(InvMatrixLUDri_head(x.h(), o, &e), e); }; };
  auto set = [&](jqrt::Array2<double>& x, jqrt::Array2<double>& y) {
    return [&](uint8_t** o) { return reported(EqsSetByLUDri_head(x.h(), y.h(), o, &e), e); };
  };
  jqtest::expect_rejections<double, 2>({
      {"product inner dimensions", -20039, mul(wide, wide)},
      {"product resize fails", -20001, mul(sq, wide), 1},
      {"inverse of nothing", -20003, inv(empty)},
      {"inverse of a wide matrix", -20040, inv(wide)},
      {"inverse with -max", -20068, inv(bad)},
      {"inverse of a singular matrix", -20041, inv(sing)},
      {"inverse resize fails", -20001, inv(sq), 1},
      {"solve set, rows of B", -20039, set(sq, B3)},
      {"solve set, singular", -20041, set(sing, sing)},
      {"solve set, A not square", -20040, set(wide, B3)},
  });
  auto solve = [&](jqrt::Array2<double>& x, jqrt::Array<double>& y) {
    return [&](uint8_t** o) { return reported(EqsByLUDri_head(x.h(), y.h(), o, &e), e); };
  };
  jqtest::expect_rejections<double, 1>({
      {"solve, b too long", -20002, solve(sq, b3)},
      {"solve, NaN in b", -20068, solve(sq, bnan)},
      {"solve, empty A", -20003, solve(empty, b2)},
      {"solve resize fails", -20001, solve(sq3, b3), 1},
  });
  double det = 0;
  EXPECT_EQ(Determinant_head(sq.h(), 4, &det, &e), 0);
  EXPECT_EQ(e, -20061);
  EXPECT_TRUE(std::isnan(det));
  EXPECT_EQ(Determinant_head(wide.h(), 0, &det, &e), 0);
  EXPECT_EQ(e, -20040);
  EXPECT_EQ(Determinant_head(nullptr, 0, &det, &e), 0);
  EXPECT_EQ(e, -20003);
  // Scalar outputs and statuses the caller left out are not written.
  jqrt::Array<double> v{1, 2};
  EXPECT_EQ(Determinant_head(sq3.h(), 0, nullptr, nullptr), 0);
  EXPECT_EQ(Norm_head(sq3.h(), 0, nullptr, nullptr), 0);
  EXPECT_EQ(Rank_head(sq3.h(), -1, nullptr, nullptr), 0);
  EXPECT_EQ(DotProduct_head(v.h(), v.h(), nullptr, nullptr), 0);
  EXPECT_EQ(vectorNormH(v.h(), 2, 0, nullptr, nullptr), 0);
  EXPECT_EQ(CheckSym_head(sq3.h(), nullptr, nullptr), 0);
  EXPECT_EQ(Trace_head(sq3.h(), nullptr, nullptr), 0);
}

// Every failed internal allocation is -20001, and no module block survives.
TEST(Dense, AllocationFailures) {
  lt::NoBufferLeft guard;
  auto a = jqrt::Array2<double>::rows({{4, 1, 2}, {1, 3, 0}, {2, 0, 5}});
  auto b = jqrt::Array2<double>::rows({{1, 2}, {3, 4}, {5, 6}});
  int32_t e;
  for (int nth = 1; nth <= 4; ++nth) {
    SCOPED_TRACE(nth);
    jqrt::Array2<double> out;
    double det;
    jq::fail_scratch_allocation(nth);
    InvMatrixLUDri_head(a.h(), out.h(), &e);
    jq::fail_scratch_allocation(0);
    EXPECT_TRUE(e == 0 || (e == -20001 && out.rows() == 0));
    jq::fail_scratch_allocation(nth);
    EqsSetByLUDri_head(a.h(), b.h(), out.h(), &e);
    jq::fail_scratch_allocation(0);
    EXPECT_TRUE(e == 0 || (e == -20001 && out.rows() == 0));
    jq::fail_scratch_allocation(nth);
    MatrixMulAligned_head(a.h(), b.h(), out.h(), 1, &e);
    jq::fail_scratch_allocation(0);
    EXPECT_TRUE(e == 0 || (e == -20001 && out.rows() == 0));
    jq::fail_scratch_allocation(nth);
    Determinant_head(a.h(), 0, &det, &e);
    jq::fail_scratch_allocation(0);
    EXPECT_TRUE(e == 0 || (e == -20001 && std::isnan(det)));
  }
  // The first allocation failing must be seen by every one of them.
  jqrt::Array2<double> out;
  jq::fail_scratch_allocation(1);
  InvMatrixLUDri_head(a.h(), out.h(), &e);
  jq::fail_scratch_allocation(0);
  EXPECT_EQ(e, -20001);
}

}  // namespace
