// The newer forms beside the older members: generated matrices against
// numpy/scipy's, the equations in both conventions against scipy's solvers,
// the real principal root, the sorted and complex generalized Schur forms by
// their invariants and scipy.linalg.ordqz's eigenvalue groups, and the
// complex tridiagonal LU against LAPACK's own factors and the dense solver.
#include <cmath>

#include "jqanlys.h"
#include "support.hpp"

namespace {

#include "oracle.inc"

using lt::cd;

template <class T> constexpr bool kCx = std::is_same_v<T, cd>;

template <class T> void check_special(const SpecialCase& c) {
  SCOPED_TRACE(c.name);
  // Absent vectors are empty handles.
  auto x = c.nx ? lt::vector<T>(c.x, c.nx) : jqrt::Array<T>(), y = c.ny ? lt::vector<T>(c.y, c.ny) : jqrt::Array<T>();
  jqrt::Array2<T> m;
  int32_t st;
  if constexpr (kCx<T>)
    CxSpecialMatrix_head(c.kind, c.rows, c.cols, x.h(), y.h(), m.h(), &st);
  else
    SpecialMatrix_head(c.kind, c.rows, c.cols, x.h(), y.h(), m.h(), &st);
  EXPECT_EQ(st, 0);
  ASSERT_EQ(m.rows(), c.wr);
  ASSERT_EQ(m.cols(), c.wc);
  EXPECT_LT(lt::rel_error(m.data(), c.want, c.wr * c.wc), 1e-15);
}

TEST(Variants, GeneratedMatricesMatchNumpy) {
  for (const SpecialCase& c : kSpecial) c.cx ? check_special<cd>(c) : check_special<double>(c);
  struct Bad {
    const char* what;
    int kind, rows, cols;
    std::vector<double> x;
    int code;
  } bad[] = {
      {"unknown kind", 10, 3, 3, {}, -20061},
      {"negative kind before sizes", -1, 0, 0, {}, -20061},
      {"identity without rows", 0, 0, 3, {}, -20003},
      {"identity with negative columns", 0, 3, -2, {}, -20003},
      {"diagonal of nothing", 1, 3, 3, {}, -20003},
      {"vandermonde without columns", 4, 0, 0, {1, 2}, -20003},
      {"hilbert without rows", 5, 0, 4, {}, -20003},
      {"companion of one coefficient", 9, 0, 0, {2}, -20006},
      {"companion with a leading zero", 9, 0, 0, {0, 1, 2}, -20061},
      {"toeplitz of a NaN", 2, 0, 0, {1, std::nan("")}, -20068},
      {"hilbert ignores x", 5, 2, 0, {std::nan("")}, 0},
  };
  for (const Bad& b : bad) {
    jqrt::Array<double> x(b.x), y;
    jqrt::Array2<double> m(2, 2);
    int32_t st;
    SpecialMatrix_head(b.kind, b.rows, b.cols, x.h(), y.h(), m.h(), &st);
    EXPECT_EQ(st, b.code) << b.what;
    if (b.code < 0) EXPECT_EQ(m.rows() + m.cols(), 0) << b.what;
  }
}

TEST(Variants, FilledAndAutocorrelationMatrices) {
  jqrt::Array2<double> m;
  int32_t st;
  InitialMatrixH(2, 3, -1.5, m.h(), &st);
  EXPECT_EQ(m.values(), std::vector<double>(6, -1.5));
  jqrt::Array2<cd> mc;
  CxInitialMatrixH(3, 1, 2, -1, mc.h(), &st);
  EXPECT_EQ(mc.values(), std::vector<cd>(3, cd(2, -1)));
  InitialMatrixH(2, 0, 1, m.h(), &st);
  EXPECT_EQ(st, -20003);
  EXPECT_EQ(m.rows(), 0);
  for (const AutoCase& c : kAuto) {
    SCOPED_TRACE(c.name);
    if (c.cx) {
      auto x = lt::vector<cd>(c.x, c.n);
      CxAutoCorrMtrxH(x.h(), c.order, mc.h(), &st);
      ASSERT_EQ(mc.rows(), c.order);
      EXPECT_LT(lt::rel_error(mc.data(), c.want, c.order * c.order), 1e-15);
    } else {
      auto x = lt::vector<double>(c.x, c.n);
      AutoCorrMtrxH(x.h(), c.order, m.h(), &st);
      ASSERT_EQ(m.rows(), c.order);
      EXPECT_LT(lt::rel_error(m.data(), c.want, c.order * c.order), 1e-15);
    }
    EXPECT_EQ(st, 0);
  }
  jqrt::Array<double> x{1, 2, 3}, nan{1, std::nan("")};
  AutoCorrMtrxH(x.h(), 0, m.h(), &st);
  EXPECT_EQ(st, -20003);
  AutoCorrMtrxH(nan.h(), 2, m.h(), &st);
  EXPECT_EQ(st, -20068);
  EXPECT_EQ(m.rows(), 0);
}

template <class T> void check_lyapunov(const LyapCase& c) {
  SCOPED_TRACE(c.name);
  lt::NoBufferLeft guard;
  auto a = lt::matrix<T>(c.a, c.n, c.n), q = lt::matrix<T>(c.q, c.n, c.n);
  jqrt::Array2<T> x;
  int32_t st;
  kCx<T> ? CxLyapunov85_head(a.h(), q.h(), c.type, x.h(), &st) : Lyapunov85_head(a.h(), q.h(), c.type, x.h(), &st);
  EXPECT_EQ(st, 0);
  EXPECT_LT(lt::rel_error(x.data(), c.x, c.n * c.n), 1e-12);
}

template <class T> void check_sylvester(const SylCase& c) {
  SCOPED_TRACE(c.name);
  lt::NoBufferLeft guard;
  auto a = lt::matrix<T>(c.a, 3, 3), b = lt::matrix<T>(c.b, 2, 2), cc = lt::matrix<T>(c.c, 3, 2);
  jqrt::Array2<T> x;
  int32_t st;
  if constexpr (kCx<T>)
    CxSylvester81_head(a.h(), b.h(), cc.h(), c.ta, c.tb, c.sign, x.h(), &st);
  else
    Sylvester81_head(a.h(), b.h(), cc.h(), c.ta, c.tb, c.sign, x.h(), &st);
  EXPECT_EQ(st, 0);
  EXPECT_LT(lt::rel_error(x.data(), c.x, 6), 1e-12);
}

TEST(Variants, EquationsInBothConventionsMatchScipy) {
  for (const LyapCase& c : kLyap) c.cx ? check_lyapunov<cd>(c) : check_lyapunov<double>(c);
  for (const SylCase& c : kSyl) c.cx ? check_sylvester<cd>(c) : check_sylvester<double>(c);
  // Selectors, then singular equations: A = I has the eigenvalue 1 (discrete
  // l conj(l) = 1), A = 0 the eigenvalue 0 (continuous l + conj(l) = 0); in
  // A X - X A every eigenvalue is shared.
  auto i2 = jqrt::Array2<double>::rows({{1, 0}, {0, 1}}), z2 = jqrt::Array2<double>::rows({{0, 0}, {0, 0}});
  struct Bad {
    const char* what;
    const jqrt::Array2<double>* a;
    int type, trans, sign, code;  // type -1: the Sylvester form
  } bad[] = {
      {"lyapunov type 4", &i2, 4, 0, 1, -20061},  {"discrete with l = 1", &i2, 2, 0, 1, -20041},
      {"continuous with l = 0", &z2, 1, 0, 1, -20041}, {"sylvester sign 0", &i2, -1, 0, 0, -20061},
      {"sylvester trans 2", &i2, -1, 2, 1, -20061}, {"A X - X A", &i2, -1, 0, -1, -20041},
  };
  for (const Bad& b : bad) {
    jqrt::Array2<double> x(2, 2);
    int32_t st;
    if (b.type >= 0)
      Lyapunov85_head(b.a->h(), i2.h(), b.type, x.h(), &st);
    else
      Sylvester81_head(b.a->h(), b.a->h(), i2.h(), b.trans, 0, b.sign, x.h(), &st);
    EXPECT_EQ(st, b.code) << b.what;
    EXPECT_EQ(x.rows(), 0) << b.what;
  }
}

TEST(Variants, PrincipalSquareRootWithStatusResult) {
  for (const SqrtCase& c : kSqrt) {
    SCOPED_TRACE(c.name);
    if (c.cx) {
      auto a = lt::matrix<cd>(c.a, c.n, c.n);
      jqrt::Array2<cd> x;
      EXPECT_EQ(CxMatrixSqrtH(a.h(), x.h()), 0);
      EXPECT_LT(lt::rel_error(x.data(), c.x, c.n * c.n), 1e-12);
    } else {
      auto a = lt::matrix<double>(c.a, c.n, c.n);
      jqrt::Array2<double> x;
      EXPECT_EQ(MatrixSqrtH(a.h(), x.h()), 0);
      EXPECT_LT(lt::rel_error(x.data(), c.x, c.n * c.n), 1e-12);
    }
  }
  // A quarter turn's root is the eighth turn; no real root with -1 in the
  // spectrum.
  auto rot = jqrt::Array2<double>::rows({{0, -1}, {1, 0}}), neg = jqrt::Array2<double>::rows({{4, 1}, {0, -1}});
  jqrt::Array2<double> x;
  EXPECT_EQ(MatrixSqrtH(rot.h(), x.h()), 0);
  const double h = std::sqrt(0.5), want[] = {h, -h, h, h};
  for (int i = 0; i < 4; ++i) EXPECT_NEAR(x.data()[i], want[i], 1e-15);
  EXPECT_EQ(MatrixSqrtH(neg.h(), x.h()), -20027);
  EXPECT_EQ(x.rows(), 0);
  jqrt::Array2<double> rect(2, 3);
  EXPECT_EQ(MatrixSqrtH(rect.h(), x.h()), -20040);
}

// A = Q S Z^H, B = Q T Z^H, Q and Z unitary, S and T triangular (S quasi
// triangular for real data) and T's diagonal real, not negative, where S's
// block is 1 x 1.
template <class T>
void expect_schur_pair(const jqrt::Array2<T>& a, const jqrt::Array2<T>& b, const jqrt::Array2<T>& s,
                       const jqrt::Array2<T>& t, const jqrt::Array2<T>& q, const jqrt::Array2<T>& z) {
  const int n = a.rows();
  ASSERT_EQ(s.rows(), n);
  auto adj = [n](const T* m) {
    std::vector<T> r(n * n);
    for (int i = 0; i < n; ++i)
      for (int j = 0; j < n; ++j) {
        r[i * n + j] = m[j * n + i];
        if constexpr (kCx<T>) r[i * n + j] = std::conj(r[i * n + j]);
      }
    return r;
  };
  const auto zh = adj(z.data()), qh = adj(q.data());
  for (auto [m, f] : {std::pair{&a, &s}, std::pair{&b, &t}}) {
    auto qf = lt::mul(q.data(), f->data(), n, n, n);
    auto r = lt::mul(qf.data(), zh.data(), n, n, n);
    for (int i = 0; i < n * n; ++i) EXPECT_NEAR(std::abs(r[i] - m->data()[i]), 0, 1e-13);
  }
  for (auto [u, uh] : {std::pair{q.data(), qh.data()}, std::pair{z.data(), zh.data()}}) {
    auto p = lt::mul(uh, u, n, n, n);
    for (int i = 0; i < n; ++i)
      for (int j = 0; j < n; ++j) EXPECT_NEAR(std::abs(p[i * n + j] - T(i == j)), 0, 1e-14);
  }
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < i; ++j) {
      EXPECT_EQ(t.data()[i * n + j], T(0.0));
      if (kCx<T> || j < i - 1) EXPECT_EQ(s.data()[i * n + j], T(0.0));
    }
  for (int k = 0; k < n; ++k) {
    const bool alone = (k == 0 || s.data()[k * n + k - 1] == T(0.0)) && (k == n - 1 || s.data()[(k + 1) * n + k] == T(0.0));
    if (alone) {
      EXPECT_GE(std::real(t.data()[k * n + k]), 0.0) << k;
      EXPECT_EQ(std::imag(t.data()[k * n + k]), 0.0) << k;
    }
  }
}

// Each expected eigenvalue is among the got ones.
void expect_among(const std::vector<cd>& got, const double* want, int count) {
  for (int i = 0; i < count; ++i) {
    const cd w(want[2 * i], want[2 * i + 1]);
    double nearest = INFINITY;
    for (cd g : got) nearest = std::min(nearest, std::abs(g - w));
    EXPECT_LT(nearest, 1e-10 * (1 + std::abs(w))) << w;
  }
}

template <class T> void check_sorted(const SortCase& c) {
  SCOPED_TRACE(c.name);
  lt::NoBufferLeft guard;
  const int n = c.n;
  auto a = lt::matrix<T>(c.a, n, n), b = lt::matrix<T>(c.b, n, n);
  jqrt::Array2<T> s, t, q, z;
  jqrt::Array<cd> alpha;
  jqrt::Array<double> beta;
  int32_t st, selected;
  if constexpr (kCx<T>)
    CxTmiQZ_head(a.h(), b.h(), c.sort, s.h(), t.h(), q.h(), z.h(), alpha.h(), beta.h(), &selected, &st);
  else
    TmiQZ_head(a.h(), b.h(), c.sort, s.h(), t.h(), q.h(), z.h(), alpha.h(), beta.h(), &selected, &st);
  ASSERT_EQ(st, 0);
  EXPECT_EQ(selected, c.selected);
  expect_schur_pair(a, b, s, t, q, z);
  std::vector<cd> first, rest;
  for (int j = 0; j < n; ++j) {
    EXPECT_GE(beta.data()[j], 0.0);
    // The infinite eigenvalue of a singular B may come out as beta 0 or as
    // a beta of rounding size.
    if (std::abs(alpha.data()[j]) < 1e8 * beta.data()[j])
      (j < selected ? first : rest).push_back(alpha.data()[j] / beta.data()[j]);
  }
  EXPECT_EQ(static_cast<int>(first.size()), c.nfirst);
  EXPECT_EQ(static_cast<int>(rest.size()), c.nrest);
  expect_among(first, c.first, c.nfirst);
  expect_among(rest, c.rest, c.nrest);
}

TEST(Variants, SortedGeneralizedSchurMatchesOrdqz) {
  for (const SortCase& c : kSort) c.cx ? check_sorted<cd>(c) : check_sorted<double>(c);
  const SortCase& c = kSort[0];
  auto a = lt::matrix<double>(c.a, c.n, c.n), b = lt::matrix<double>(c.b, c.n, c.n);
  jqrt::Array2<double> s, t, q, z;
  jqrt::Array<cd> alpha;
  jqrt::Array<double> beta;
  int32_t st, selected = 7;
  TmiQZ_head(a.h(), b.h(), 5, s.h(), t.h(), q.h(), z.h(), alpha.h(), beta.h(), &selected, &st);
  EXPECT_EQ(st, -20061);
  EXPECT_EQ(selected, -1);
  EXPECT_EQ(s.rows() + alpha.rows() + beta.rows(), 0);
}

// The complex form by the driverless steps, and a block moved from the
// bottom to the top carrying its eigenvalue.
TEST(Variants, ComplexGeneralizedSchurAndMove) {
  lt::NoBufferLeft guard;
  const SortCase& c = kSort[std::size(kSort) - 8];  // the first complex pencil
  ASSERT_TRUE(c.cx);
  const int n = c.n;
  auto a = lt::matrix<cd>(c.a, n, n), b = lt::matrix<cd>(c.b, n, n);
  jqrt::Array2<cd> s0, t0, q0, z0, s, t, q, z;
  jqrt::Array<cd> alpha0, alpha;
  jqrt::Array<double> beta0, beta;
  int32_t st;
  CxQZ_head(a.h(), b.h(), s0.h(), t0.h(), q0.h(), z0.h(), alpha0.h(), beta0.h(), &st);
  ASSERT_EQ(st, 0);
  expect_schur_pair(a, b, s0, t0, q0, z0);
  std::vector<cd> all;
  for (int j = 0; j < n; ++j) {
    all.push_back(alpha0.data()[j] / beta0.data()[j]);
    EXPECT_EQ(alpha0.data()[j], s0.data()[j * n + j]);
    EXPECT_EQ(beta0.data()[j], t0.data()[j * n + j].real());
  }
  expect_among(all, c.first, c.nfirst);
  expect_among(all, c.rest, c.nrest);
  CxQZ80_head(a.h(), b.h(), n - 1, 0, s.h(), t.h(), q.h(), z.h(), alpha.h(), beta.h(), &st);
  ASSERT_EQ(st, 0);
  expect_schur_pair(a, b, s, t, q, z);
  EXPECT_NEAR(std::abs(alpha.data()[0] / beta.data()[0] - all[n - 1]), 0, 1e-12);
  CxQZ80_head(a.h(), b.h(), 0, n, s.h(), t.h(), q.h(), z.h(), alpha.h(), beta.h(), &st);
  EXPECT_EQ(st, -20061);
  EXPECT_EQ(s.rows() + alpha.rows(), 0);
}

TEST(Variants, ComplexTridiagonalLUIsLapacksAndSolves) {
  lt::NoBufferLeft guard;
  const int n = 6;
  auto dl = lt::vector<cd>(tdcx_dl, n - 1), d = lt::vector<cd>(tdcx_d, n), du = lt::vector<cd>(tdcx_du, n - 1);
  jqrt::Array<cd> l, m, u, u2;
  jqrt::Array<int32_t> p;
  int32_t st;
  CxTriDiagLU_head(dl.h(), d.h(), du.h(), l.h(), m.h(), u.h(), u2.h(), p.h(), &st);
  EXPECT_EQ(st, 0);
  ASSERT_EQ(u2.rows(), n - 2);
  EXPECT_LT(lt::rel_error(l.data(), tdcx_l, n - 1), 1e-15);
  EXPECT_LT(lt::rel_error(m.data(), tdcx_m, n), 1e-15);
  EXPECT_LT(lt::rel_error(u.data(), tdcx_u, n - 1), 1e-15);
  EXPECT_LT(lt::rel_error(u2.data(), tdcx_u2, n - 2), 1e-15);
  for (int i = 0; i < n; ++i) EXPECT_EQ(p.data()[i], tdcx_piv[i]);
  // Solves agree with the dense solver on the same matrix.
  jqrt::Array2<cd> full(n, n), b(n, 2), x2, xs;
  for (int i = 0; i < n; ++i) {
    full.data()[i * n + i] = d.data()[i];
    if (i + 1 < n) full.data()[i * n + i + 1] = du.data()[i], full.data()[(i + 1) * n + i] = dl.data()[i];
    b.data()[2 * i] = cd(std::cos(i), 1), b.data()[2 * i + 1] = cd(0.5, std::sin(i));
  }
  CxTriDiagEqsSetByLU_head(dl.h(), d.h(), du.h(), b.h(), xs.h(), &st);
  EXPECT_EQ(st, 0);
  CxEqsSetByLUDri_head(full.h(), b.h(), x2.h(), &st);
  ASSERT_EQ(xs.rows(), n);
  for (int i = 0; i < 2 * n; ++i) EXPECT_NEAR(std::abs(xs.data()[i] - x2.data()[i]), 0, 1e-13);
  jqrt::Array<cd> bv(n), xv;
  for (int i = 0; i < n; ++i) bv.data()[i] = b.data()[2 * i];
  CxTriDiagEqsByLU_head(dl.h(), d.h(), du.h(), bv.h(), xv.h(), &st);
  ASSERT_EQ(xv.rows(), n);
  for (int i = 0; i < n; ++i) EXPECT_NEAR(std::abs(xv.data()[i] - x2.data()[2 * i]), 0, 1e-13);
  jqrt::Array<cd> shortdl(n - 2);
  CxTriDiagLU_head(shortdl.h(), d.h(), du.h(), l.h(), m.h(), u.h(), u2.h(), p.h(), &st);
  EXPECT_EQ(st, -20002);
  EXPECT_EQ(m.rows() + p.rows(), 0);
}

}  // namespace
