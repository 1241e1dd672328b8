// Forms with freedoms (Hessenberg, Schur) by their invariants; solves from
// given factors and tridiagonal systems against the dense solver; property
// tests and the characteristic polynomial on matrices whose answers are known.
#include <cmath>

#include "jqanlys.h"
#include "support.hpp"

namespace {

using lt::cd;
using lt::mul;

template <class T> double residual(const jqrt::Array2<T>& a, const jqrt::Array2<T>& q, const jqrt::Array2<T>& h) {
  // |A - Q H Q^H| / |A| and |Q^H Q - I|.
  const int n = a.rows();
  double err = 0, scale = 0;
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < n; ++j) {
      T s = 0.0, o = 0.0;
      for (int k = 0; k < n; ++k)
        for (int l = 0; l < n; ++l) {
          T qc = q.data()[j * n + l];
          if constexpr (std::is_same_v<T, cd>) qc = std::conj(qc);
          s += q.data()[i * n + k] * h.data()[k * n + l] * qc;
        }
      for (int k = 0; k < n; ++k) {
        T qc = q.data()[k * n + i];
        if constexpr (std::is_same_v<T, cd>) qc = std::conj(qc);
        o += qc * q.data()[k * n + j];
      }
      err = std::max({err, std::abs(s - a.data()[i * n + j]), std::abs(o - T(i == j))});
      scale = std::max(scale, std::abs(a.data()[i * n + j]));
    }
  return err / scale;
}

template <class T> void check_forms() {
  lt::NoBufferLeft guard;
  const int n = 6;
  jqrt::Array2<T> a(n, n);
  for (int i = 0; i < n * n; ++i) {
    a.data()[i] = std::sin(1.7 * i + 0.3);
    if constexpr (std::is_same_v<T, cd>) a.data()[i] += cd(0, std::cos(0.9 * i));
  }
  jqrt::Array2<T> h, q, s, z;
  int32_t st;
  std::is_same_v<T, cd> ? CxHessenberg_head(a.h(), h.h(), q.h(), &st) : Hessenberg_head(a.h(), h.h(), q.h(), &st);
  EXPECT_EQ(st, 0);
  EXPECT_LT(residual(a, q, h), 1e-13);
  for (int i = 2; i < n; ++i)
    for (int j = 0; j < i - 1; ++j) EXPECT_EQ(std::abs(h.data()[i * n + j]), 0.0);
  std::is_same_v<T, cd> ? CxSchur_head(a.h(), s.h(), z.h(), &st) : Schur_head(a.h(), s.h(), z.h(), &st);
  EXPECT_EQ(st, 0);
  EXPECT_LT(residual(a, z, s), 1e-13);
  // Below the first sub-diagonal S is zero (complex data: below the diagonal).
  for (int i = 1; i < n; ++i)
    for (int j = 0; j < i - (std::is_same_v<T, cd> ? 0 : 1); ++j) EXPECT_EQ(std::abs(s.data()[i * n + j]), 0.0);
}

TEST(Structured, HessenbergAndSchurInvariants) {
  check_forms<double>();
  check_forms<cd>();
}

TEST(Structured, SolvesFromFactorsMatchTheDenseSolver) {
  auto a = jqrt::Array2<double>::rows({{2, 1, 0, 4}, {1, 5, 2, 0}, {0, 3, 1, 1}, {6, 0, 1, 2}});
  jqrt::Array<double> b{1, -2, 3, 0.5}, x, x2;
  int32_t st, parity;
  EqsByLUDri_head(a.h(), b.h(), x.h(), &st);
  auto f = jqrt::Array2<double>::rows({{2, 1, 0, 4}, {1, 5, 2, 0}, {0, 3, 1, 1}, {6, 0, 1, 2}});
  jqrt::Array<int32_t> p;
  LU_head(f.h(), p.h(), &parity, &st);
  LULinEqs_head(f.h(), p.h(), b.h(), x2.h(), &st);
  EXPECT_EQ(st, 0);
  for (int i = 0; i < 4; ++i) EXPECT_NEAR(x2.data()[i], x.data()[i], 1e-14);
  jqrt::Array2<double> inv, inv2;
  InvMatrixLUDri_head(a.h(), inv.h(), &st);
  LUInvMatrix_head(f.h(), p.h(), inv2.h(), &st);
  EXPECT_EQ(st, 0);
  for (int i = 0; i < 16; ++i) EXPECT_NEAR(inv2.data()[i], inv.data()[i], 1e-14);
  // A tridiagonal system as a dense one.
  jqrt::Array<double> dl{1, 2, 3}, d{4, 5, 6, 7}, du{-1, 0.5, 2};
  auto t = jqrt::Array2<double>::rows({{4, -1, 0, 0}, {1, 5, 0.5, 0}, {0, 2, 6, 2}, {0, 0, 3, 7}});
  TriDiagEqsByLU_head(dl.h(), d.h(), du.h(), b.h(), x2.h(), &st);
  EXPECT_EQ(st, 0);
  EqsByLUDri_head(t.h(), b.h(), x.h(), &st);
  for (int i = 0; i < 4; ++i) EXPECT_NEAR(x2.data()[i], x.data()[i], 1e-14);
  jqrt::Array<double> shortdl{1, 2};
  TriDiagEqsByLU_head(shortdl.h(), d.h(), du.h(), b.h(), x2.h(), &st);
  EXPECT_EQ(st, -20002);
  EXPECT_EQ(x2.rows(), 0);
}

TEST(Structured, PropertiesAndPolynomial) {
  struct Case {
    std::vector<std::vector<double>> m;
    int sym, pd, psd;
  } cases[] = {
      {{{2, 1}, {1, 2}}, 1, 1, 1},
      {{{1, 1}, {1, 1}}, 1, 0, 1},
      {{{1, 2}, {2, 1}}, 1, 0, 0},
      {{{1, 2}, {0, 1}}, 0, 0, 0},
  };
  for (const Case& c : cases) {
    auto a = jqrt::Array2<double>::rows(c.m);
    int32_t r, st;
    CheckSym_head(a.h(), &r, &st);
    EXPECT_EQ(r, c.sym);
    CheckPosdef_head(a.h(), &r, &st);
    EXPECT_EQ(r, c.pd);
    CheckPosSemiDef_head(a.h(), &r, &st);
    EXPECT_EQ(r, c.psd);
  }
  // diag(1, 2, 3): (x - 1)(x - 2)(x - 3) = -6 + 11x - 6x^2 + x^3.
  auto d = jqrt::Array2<double>::rows({{1, 0, 0}, {0, 2, 0}, {0, 0, 3}});
  jqrt::Array<double> c;
  int32_t st;
  MatrixCharacteristicPoly_head(d.h(), c.h(), &st);
  ASSERT_EQ(c.rows(), 4);
  const double want[] = {-6, 11, -6, 1};
  for (int i = 0; i < 4; ++i) EXPECT_NEAR(c.data()[i], want[i], 1e-13);
  // A rotation: x^2 + 1, from a complex pair.
  auto rot = jqrt::Array2<double>::rows({{0, -1}, {1, 0}});
  MatrixCharacteristicPoly_head(rot.h(), c.h(), &st);
  ASSERT_EQ(c.rows(), 3);
  EXPECT_NEAR(c.data()[0], 1, 1e-15);
  EXPECT_NEAR(c.data()[1], 0, 1e-15);
}

}  // namespace

namespace {
#include "oracle.inc"

template <class T> void check_functions(const FuncCase& c) {
  SCOPED_TRACE(c.name);
  constexpr bool cx = std::is_same_v<T, cd>;
  lt::NoBufferLeft guard;
  const int n = c.n;
  auto a = lt::matrix<T>(c.a, n, n);
  jqrt::Array2<T> r;
  int32_t st;
  cx ? CxMatrixExp_head(a.h(), r.h(), &st) : MatrixExp_head(a.h(), r.h(), &st);
  EXPECT_EQ(st, 0);
  EXPECT_LT(lt::rel_error(r.data(), c.exp, n * n), 1e-12);
  for (int p : {5, -3}) {
    cx ? CxMatrixPower_head(a.h(), p, r.h(), &st) : MatrixPower_head(a.h(), p, r.h(), &st);
    EXPECT_EQ(st, 0);
    EXPECT_LT(lt::rel_error(r.data(), p > 0 ? c.p5 : c.pm3, n * n), 1e-11) << p;
  }
  auto spd = lt::matrix<T>(c.spd, n, n);
  jqrt::Array2<cd> x;
  cx ? CxMatrixSqrt_head(spd.h(), x.h(), &st) : MatrixSqrt_head(spd.h(), x.h(), &st);
  EXPECT_EQ(st, 0);
  EXPECT_LT(lt::rel_error(x.data(), c.sqrt, n * n), 1e-12);
  cx ? CxMatrixLn_head(spd.h(), x.h(), &st) : MatrixLn_head(spd.h(), x.h(), &st);
  EXPECT_EQ(st, 0);
  EXPECT_LT(lt::rel_error(x.data(), c.log, n * n), 1e-11);
  // Rebuilt from its own eigendecomposition, A is A again.
  jqrt::Array<cd> w;
  jqrt::Array2<cd> v, back;
  cx ? CxEigenValueVector_head(a.h(), w.h(), v.h(), &st) : EigenValueVector_head(a.h(), w.h(), v.h(), &st);
  CxCreateMatrixFromEVs_head(w.h(), v.h(), back.h(), &st);
  EXPECT_EQ(st, 0);
  for (int i = 0; i < n * n; ++i) EXPECT_NEAR(std::abs(back.data()[i] - cd(a.data()[i])), 0, 1e-11);
}

TEST(Structured, MatrixFunctionsAgreeWithScipy) {
  for (const FuncCase& c : kFunc) c.cx ? check_functions<cd>(c) : check_functions<double>(c);
  // A^0 = I whatever A is; the inverse of a singular matrix does not exist.
  auto s = jqrt::Array2<double>::rows({{1, 2}, {2, 4}});
  jqrt::Array2<double> r;
  int32_t st;
  MatrixPower_head(s.h(), 0, r.h(), &st);
  EXPECT_EQ(r.values(), (std::vector<double>{1, 0, 0, 1}));
  MatrixPower_head(s.h(), -1, r.h(), &st);
  EXPECT_EQ(st, -20041);
  EXPECT_EQ(r.rows(), 0);
}

}  // namespace

namespace {

// The packed members agree with their full-storage counterparts.
template <class T> void check_packed(const SymCase& c) {
  SCOPED_TRACE(c.name);
  constexpr bool cx = std::is_same_v<T, cd>;
  lt::NoBufferLeft guard;
  const int n = c.n, len = n * (n + 1) / 2;
  auto a = lt::matrix<T>(c.a, n, n);
  int32_t st;
  jqrt::Array<T> p, f, x1, x2, ti;
  jqrt::Array2<T> full, l, inv1, inv2, li;
  if constexpr (cx) {
    CxMatrix_to_Compact_head(a.h(), p.h(), &st);
    CxCompact_to_Matrix_head(p.h(), full.h(), &st);
  } else {
    Matrix_to_Compact_head(a.h(), p.h(), &st);
    Compact_to_Matrix_head(p.h(), full.h(), &st);
  }
  ASSERT_EQ(p.rows(), len);
  EXPECT_LT(lt::rel_error(full.data(), c.a, n * n), 1e-15);
  cx ? CxCholesky_head(a.h(), f.h(), &st) : Cholesky_head(a.h(), f.h(), &st);
  EXPECT_EQ(st, 0);
  cx ? CxFullCholesky_head(a.h(), l.h(), &st) : FullCholesky_head(a.h(), l.h(), &st);
  for (int i = 0, k = 0; i < n; ++i)
    for (int j = 0; j <= i; ++j, ++k) EXPECT_NEAR(std::abs(f.data()[k] - l.data()[i * n + j]), 0, 1e-13);
  jqrt::Array<T> b(n);
  for (int i = 0; i < n; ++i) b.data()[i] = T(std::cos(i + 0.5));
  if constexpr (cx) {
    CxCholeskyLinEqs_head(f.h(), b.h(), x1.h(), &st);
    CxEqsByCholeskyDri_head(a.h(), b.h(), x2.h(), &st);
    CxCholesky_InvMatrix_head(f.h(), inv1.h(), &st);
  } else {
    CholeskyLinEqs_head(f.h(), b.h(), x1.h(), &st);
    EqsByCholeskyDri_head(a.h(), b.h(), x2.h(), &st);
    Cholesky_InvMatrix_head(f.h(), inv1.h(), &st);
  }
  EXPECT_EQ(st, 0);
  ASSERT_EQ(x1.rows(), n);
  for (int i = 0; i < n; ++i) EXPECT_NEAR(std::abs(x1.data()[i] - x2.data()[i]), 0, 1e-12);
  EXPECT_LT(lt::rel_error(inv1.data(), c.inv, n * n), 1e-12);
  // L x = b and L's packed inverse, against the full triangular inverse.
  cx ? CxTriLinEqs_head(f.h(), b.h(), x1.h(), &st) : TriLinEqs_head(f.h(), b.h(), x1.h(), &st);
  EXPECT_EQ(st, 0);
  auto lx = mul(l.data(), x1.data(), n, n, 1);
  for (int i = 0; i < n; ++i) EXPECT_NEAR(std::abs(lx[i] - b.data()[i]), 0, 1e-12);
  cx ? CxTri_InvMatrix_head(f.h(), ti.h(), &st) : Tri_InvMatrix_head(f.h(), ti.h(), &st);
  cx ? CxInvMatrixTriDri_head(l.h(), 0, li.h(), &st) : InvMatrixTriDri_head(l.h(), 0, li.h(), &st);
  for (int i = 0, k = 0; i < n; ++i)
    for (int j = 0; j <= i; ++j, ++k) EXPECT_NEAR(std::abs(ti.data()[k] - li.data()[i * n + j]), 0, 1e-12);
}

TEST(Structured, PackedMembersMatchFullStorage) {
  for (const SymCase& c : kSym) c.cx ? check_packed<cd>(c) : check_packed<double>(c);
  jqrt::Array<double> bad{1, 2, 3, 4}, b{1, 2}, x;
  int32_t st;
  CholeskyLinEqs_head(bad.h(), b.h(), x.h(), &st);
  EXPECT_EQ(st, -20002);
  jqrt::Array<double> notpd{1, 2, 1};  // [[1, 2], [2, 1]]
  jqrt::Array2<double> full;
  Compact_to_Matrix_head(notpd.h(), full.h(), &st);
  Cholesky_head(full.h(), x.h(), &st);
  EXPECT_EQ(st, -20071);
  EXPECT_EQ(x.rows(), 0);
}

}  // namespace

namespace {

template <class T> void check_equations(const EqCase& c) {
  SCOPED_TRACE(c.name);
  constexpr bool cx = std::is_same_v<T, cd>;
  lt::NoBufferLeft guard;
  auto a = lt::matrix<T>(c.a, c.m, c.m), b = lt::matrix<T>(c.b, c.n, c.n), cc = lt::matrix<T>(c.c, c.m, c.n),
       q = lt::matrix<T>(c.q, c.m, c.m);
  jqrt::Array2<T> x;
  int32_t st;
  cx ? CxSylvester_head(a.h(), b.h(), cc.h(), x.h(), &st) : Sylvester_head(a.h(), b.h(), cc.h(), x.h(), &st);
  EXPECT_EQ(st, 0);
  EXPECT_LT(lt::rel_error(x.data(), c.x, c.m * c.n), 1e-12);
  cx ? CxLyapunov_head(a.h(), q.h(), x.h(), &st) : Lyapunov_head(a.h(), q.h(), x.h(), &st);
  EXPECT_EQ(st, 0);
  EXPECT_LT(lt::rel_error(x.data(), c.lx, c.m * c.m), 1e-12);
}

TEST(Structured, SylvesterLyapunovAndBands) {
  for (const EqCase& c : kEq) c.cx ? check_equations<cd>(c) : check_equations<double>(c);
  // A banded system equals the dense one with the outside of the band zeroed.
  auto full = jqrt::Array2<double>::rows({{4, 1, 9, 9}, {2, 5, 1, 9}, {9, 2, 6, 1}, {9, 9, 2, 7}});
  auto band = jqrt::Array2<double>::rows({{4, 1, 0, 0}, {2, 5, 1, 0}, {0, 2, 6, 1}, {0, 0, 2, 7}});
  jqrt::Array<double> b{1, 2, 3, 4}, x1, x2;
  int32_t st;
  BandEqsDriH(full.h(), 1, 1, b.h(), x1.h(), &st);
  EXPECT_EQ(st, 0);
  EqsByLUDri_head(band.h(), b.h(), x2.h(), &st);
  for (int i = 0; i < 4; ++i) EXPECT_NEAR(x1.data()[i], x2.data()[i], 1e-14);
  BandEqsDriH(full.h(), -1, 1, b.h(), x1.h(), &st);
  EXPECT_EQ(st, -20004);
  EXPECT_EQ(x1.rows(), 0);
  // Bands wider than the matrix are the whole matrix.
  BandEqsDriH(full.h(), INT32_MAX, INT32_MAX, b.h(), x1.h(), &st);
  EqsByLUDri_head(full.h(), b.h(), x2.h(), &st);
  for (int i = 0; i < 4; ++i) EXPECT_NEAR(x1.data()[i], x2.data()[i], 1e-13);
}

}  // namespace

namespace {

// Eigenvectors of the balanced matrix, carried back, are eigenvectors of A.
TEST(Structured, BalanceAndBack) {
  auto a = jqrt::Array2<double>::rows({{1, 100, 1e4}, {0.01, 2, 100}, {1e-4, 0.01, 3}});
  jqrt::Array2<double> b;
  jqrt::Array<double> scale;
  int32_t lo, hi, st;
  MatrixBalance_head(a.h(), 3, b.h(), scale.h(), &lo, &hi, &st);
  EXPECT_EQ(st, 0);
  ASSERT_EQ(b.rows(), 3);
  EXPECT_EQ(lo, 0);
  EXPECT_EQ(hi, 2);
  double na = 0, nb = 0;
  for (int i = 0; i < 9; ++i) na = std::max(na, std::abs(a.data()[i])), nb = std::max(nb, std::abs(b.data()[i]));
  EXPECT_LT(nb, na / 10);
  // B's spectrum is real, so its eigenvectors are too.
  jqrt::Array<cd> w;
  jqrt::Array2<cd> vc;
  EigenValueVector_head(b.h(), w.h(), vc.h(), &st);
  jqrt::Array2<double> v(3, 3);
  for (int i = 0; i < 9; ++i) v.data()[i] = vc.data()[i].real();
  EigenVBack_head(v.h(), scale.h(), lo, hi, 3, 0, &st);
  EXPECT_EQ(st, 0);
  auto av = mul(a.data(), v.data(), 3, 3, 3);
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) EXPECT_NEAR(av[i * 3 + j], w.data()[j].real() * v.data()[i * 3 + j], 1e-9 * na);
  EigenVBack_head(v.h(), scale.h(), lo, 3, 3, 0, &st);
  EXPECT_EQ(st, -20061);
  EXPECT_EQ(v.rows(), 0);
}

}  // namespace

namespace {

using M2 = jqrt::Array2<double>;

// A = Q S Z^T and B = Q T Z^T.
void expect_pencil(const M2& a, const M2& b, const M2& s, const M2& t, const M2& q, const M2& z) {
  const int n = a.rows();
  for (auto [m, f] : {std::pair{&a, &s}, std::pair{&b, &t}}) {
    auto qf = mul(q.data(), f->data(), n, n, n);
    std::vector<double> zt(n * n);
    for (int i = 0; i < n; ++i)
      for (int j = 0; j < n; ++j) zt[i * n + j] = z.data()[j * n + i];
    auto r = mul(qf.data(), zt.data(), n, n, n);
    for (int i = 0; i < n * n; ++i) EXPECT_NEAR(r[i], m->data()[i], 1e-13);
  }
}

// The pencil's Schur form; alpha / beta are the eigenvalues of B^-1 A.
TEST(Structured, GeneralizedSchur) {
  auto a = jqrt::Array2<double>::rows({{1, 2, 0}, {-3, 1, 4}, {2, 0, 1}});
  auto b = jqrt::Array2<double>::rows({{2, 0, 1}, {1, 3, 0}, {0, 1, 4}});
  jqrt::Array2<double> s, t, q, z;
  jqrt::Array<cd> alpha;
  jqrt::Array<double> beta;
  int32_t st;
  QZ_head(a.h(), b.h(), s.h(), t.h(), q.h(), z.h(), alpha.h(), beta.h(), &st);
  EXPECT_EQ(st, 0);
  ASSERT_EQ(beta.rows(), 3);
  expect_pencil(a, b, s, t, q, z);
  for (int i = 1; i < 3; ++i) EXPECT_EQ(t.data()[i * 3 + i - 1], 0.0);
  // det(A - lambda B) = 0 for each generalized eigenvalue.
  for (int k = 0; k < 3; ++k) {
    const cd l = alpha.data()[k] / beta.data()[k];
    cd m[9];
    for (int i = 0; i < 9; ++i) m[i] = a.data()[i] - l * b.data()[i];
    const cd det = m[0] * (m[4] * m[8] - m[5] * m[7]) - m[1] * (m[3] * m[8] - m[5] * m[6]) + m[2] * (m[3] * m[7] - m[4] * m[6]);
    EXPECT_NEAR(std::abs(det), 0, 1e-12 * (1 + std::norm(l)));
  }
  jqrt::Array2<double> small(2, 2);
  QZ_head(a.h(), small.h(), s.h(), t.h(), q.h(), z.h(), alpha.h(), beta.h(), &st);
  EXPECT_EQ(st, -20070);
  EXPECT_EQ(alpha.rows(), 0);
}

}  // namespace

namespace {

// P L U rebuilt from the tridiagonal factors is the matrix; the pivots are
// those LAPACK's own driver picks on this matrix (0-based).
TEST(Structured, TridiagonalLUFactors) {
  lt::NoBufferLeft guard;
  jqrt::Array<double> dl{5, 2, 3, 1}, d{1, 5, 0.5, 7, 2}, du{-1, 0.5, 2, 4}, l, m, u, u2;
  jqrt::Array<int32_t> p;
  int32_t st;
  TriDiagLU_head(dl.h(), d.h(), du.h(), l.h(), m.h(), u.h(), u2.h(), p.h(), &st);
  EXPECT_EQ(st, 0);
  ASSERT_EQ(u2.rows(), 3);
  const int n = 5;
  EXPECT_EQ(std::vector<int32_t>(p.data(), p.data() + n), (std::vector<int32_t>{1, 1, 3, 3, 4}));
  double r[n][n] = {};
  for (int i = 0; i < n; ++i) {
    r[i][i] = m.data()[i];
    if (i + 1 < n) r[i][i + 1] = u.data()[i];
    if (i + 2 < n) r[i][i + 2] = u2.data()[i];
  }
  for (int i = n - 2; i >= 0; --i) {
    for (int j = 0; j < n; ++j) r[i + 1][j] += l.data()[i] * r[i][j];
    if (p.data()[i] == i + 1)
      for (int j = 0; j < n; ++j) std::swap(r[i][j], r[i + 1][j]);
  }
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < n; ++j) {
      const double want = j == i ? d.data()[i] : j == i + 1 ? du.data()[i] : j == i - 1 ? dl.data()[j] : 0.0;
      EXPECT_NEAR(r[i][j], want, 1e-14) << i << "," << j;
    }
  // A zero first column: the warning, with the factors.
  jqrt::Array<double> z1{0}, z2{0, 3}, one{1};
  TriDiagLU_head(z1.h(), z2.h(), one.h(), l.h(), m.h(), u.h(), u2.h(), p.h(), &st);
  EXPECT_EQ(st, 20003);
  EXPECT_EQ(m.rows(), 2);
  EXPECT_EQ(u2.rows(), 0);
  jqrt::Array<double> bad{1, std::nan("")};
  TriDiagLU_head(dl.h(), d.h(), bad.h(), l.h(), m.h(), u.h(), u2.h(), p.h(), &st);
  EXPECT_EQ(st, -20002);
  EXPECT_EQ(p.rows(), 0);
}

// Moving a diagonal block keeps A = Z S Z^H and carries its eigenvalue along.
template <class T> void check_moved() {
  lt::NoBufferLeft guard;
  const int n = 6;
  jqrt::Array2<T> a(n, n), s0, z0, s, z;
  for (int i = 0; i < n * n; ++i) {
    a.data()[i] = std::sin(1.7 * i + 0.3) + (i % (n + 1) == 0 ? 0.5 * i : 0.0);
    if constexpr (std::is_same_v<T, cd>) a.data()[i] += cd(0, std::cos(0.9 * i));
  }
  constexpr bool cx = std::is_same_v<T, cd>;
  int32_t st;
  cx ? CxSchur_head(a.h(), s0.h(), z0.h(), &st) : Schur_head(a.h(), s0.h(), z0.h(), &st);
  // The last diagonal element is a 1 x 1 block for this matrix in both forms.
  ASSERT_EQ(s0.data()[(n - 1) * n + n - 2], T(0.0));
  cx ? CxSchur80_head(a.h(), n - 1, 0, s.h(), z.h(), &st) : Schur80_head(a.h(), n - 1, 0, s.h(), z.h(), &st);
  EXPECT_EQ(st, 0);
  EXPECT_LT(residual(a, z, s), 1e-13);
  EXPECT_NEAR(std::abs(s.data()[0] - s0.data()[n * n - 1]), 0.0, 1e-12);
  EXPECT_EQ(s.data()[n], T(0.0));
  for (int32_t from : {-1, n}) {
    cx ? CxSchur80_head(a.h(), from, 0, s.h(), z.h(), &st) : Schur80_head(a.h(), from, 0, s.h(), z.h(), &st);
    EXPECT_EQ(st, -20061);
    EXPECT_EQ(s.rows() + z.rows(), 0);
  }
}

TEST(Structured, ReorderedSchur) {
  check_moved<double>();
  check_moved<cd>();
  // Positions are checked before the values.
  auto a = jqrt::Array2<double>::rows({{1, std::nan("")}, {0, 1}});
  jqrt::Array2<double> s, z;
  int32_t st;
  Schur80_head(a.h(), 0, 2, s.h(), z.h(), &st);
  EXPECT_EQ(st, -20061);
  Schur80_head(a.h(), 0, 1, s.h(), z.h(), &st);
  EXPECT_EQ(st, -20068);
}

// A preallocated inverse is written without a resize: the call succeeds even
// when every resize would fail. Another shape is resized.
TEST(Structured, PreallocatedCholeskyInverse) {
  auto a = jqrt::Array2<double>::rows({{4, 1, 0}, {1, 3, 1}, {0, 1, 2}});
  jqrt::Array2<double> want, got(3, 3), other(2, 5);
  int32_t st;
  InvMatrixChoDri_head(a.h(), want.h(), &st);
  {
    jqrt::FailResize fail(1);
    EXPECT_EQ(PreallocInvMatrixChoDri_H(a.h(), got.h(), &st), 0);
  }
  EXPECT_EQ(st, 0);
  for (int i = 0; i < 9; ++i) EXPECT_EQ(got.data()[i], want.data()[i]);
  PreallocInvMatrixChoDri_H(a.h(), other.h(), &st);
  EXPECT_EQ(st, 0);
  ASSERT_EQ(other.rows(), 3);
  EXPECT_EQ(other.cols(), 3);
  auto c = jqrt::Array2<cd>::rows({{cd(2, 0), cd(0, 1)}, {cd(0, -1), cd(-2, 0)}});
  jqrt::Array2<cd> ci(2, 2);
  CxPreallocInvMatrixChoDri_H(c.h(), ci.h(), &st);
  EXPECT_EQ(st, -20071);
  EXPECT_EQ(ci.rows(), 0);
}

}  // namespace

namespace {

// beta A v = alpha B v for unit columns v, beta not negative.
template <class T> std::vector<cd> check_pencil(const jqrt::Array2<T>& a, const jqrt::Array2<T>& b) {
  lt::NoBufferLeft guard;
  const int n = a.rows();
  jqrt::Array<cd> alpha;
  jqrt::Array<double> beta;
  jqrt::Array2<cd> v;
  int32_t st;
  if constexpr (std::is_same_v<T, cd>)
    CxGenEigenEx_head(a.h(), b.h(), alpha.h(), beta.h(), v.h(), &st);
  else
    GenEigenEx_head(a.h(), b.h(), alpha.h(), beta.h(), v.h(), &st);
  EXPECT_EQ(st, 0);
  std::vector<cd> got;
  if (v.rows() != n) return got;
  for (int j = 0; j < n; ++j) {
    got.push_back(alpha.data()[j] / beta.data()[j]);
    EXPECT_GE(beta.data()[j], 0.0);
    double norm = 0;
    for (int i = 0; i < n; ++i) {
      cd av = 0, bv = 0;
      for (int k = 0; k < n; ++k) av += a.data()[i * n + k] * v.data()[k * n + j], bv += b.data()[i * n + k] * v.data()[k * n + j];
      EXPECT_NEAR(std::abs(beta.data()[j] * av - alpha.data()[j] * bv), 0, 1e-13) << j;
      norm += std::norm(v.data()[i * n + j]);
    }
    EXPECT_NEAR(norm, 1, 1e-14);
  }
  return got;
}

// Real and complex pencils, one with a singular B (an infinite eigenvalue);
// the real one's eigenvalues are scipy's (scipy.linalg.eig(a, b)).
TEST(Structured, GeneralizedEigenvectors) {
  auto a = jqrt::Array2<double>::rows({{1, 2, 0}, {-3, 1, 4}, {2, 0, 1}});
  auto b = jqrt::Array2<double>::rows({{2, 0, 1}, {1, 3, 0}, {0, 1, 4}});
  std::vector<cd> got = check_pencil(a, b);
  auto ca = jqrt::Array2<cd>::rows({{cd(1, 1), cd(2, 0), cd(0, -1)}, {cd(-3, 0), cd(1, 2), cd(4, 0)}, {cd(2, 1), cd(0, 0), cd(1, -1)}});
  auto cb = jqrt::Array2<cd>::rows({{cd(2, 0), cd(0, 1), cd(1, 0)}, {cd(0, 0), cd(0, 0), cd(0, 0)}, {cd(0, 1), cd(3, 0), cd(0, 2)}});
  check_pencil(ca, cb);
  cb.data()[4] = cd(1, -1);
  check_pencil(ca, cb);
  // Each of scipy's eigenvalues is among ours (the pair's real parts may
  // differ in the last bit, so no sort decides the order).
  const cd want[] = {{-0.30775711028452696, -1.1440121877037885}, {-0.30775711028452696, 1.1440121877037885}, {0.6555142205690538, 0}};
  for (cd w : want) {
    double nearest = INFINITY;
    for (cd g : got) nearest = std::min(nearest, std::abs(g - w));
    EXPECT_LT(nearest, 1e-14) << w;
  }
  // B of another shape is the second dimension check.
  jqrt::Array2<double> small(2, 2);
  jqrt::Array<cd> alpha;
  jqrt::Array<double> beta;
  jqrt::Array2<cd> v;
  int32_t st;
  GenEigenEx_head(a.h(), small.h(), alpha.h(), beta.h(), v.h(), &st);
  EXPECT_EQ(st, -20070);
  EXPECT_EQ(alpha.rows() + beta.rows() + v.rows(), 0);
}

}  // namespace

namespace {

// Moving a block of the generalized Schur form keeps A = Q S Z^T and
// B = Q T Z^T and carries its eigenvalue; 1 x 1 blocks agree with the
// reported alpha / beta wherever they end up.
TEST(Structured, ReorderedGeneralizedSchur) {
  lt::NoBufferLeft guard;
  auto a = jqrt::Array2<double>::rows({{4, 1, 0, 2}, {1, -3, 1, 0}, {0, 2, 1, 1}, {1, 0, 1, 6}});
  auto b = jqrt::Array2<double>::rows({{2, 0, 1, 0}, {1, 3, 0, 0}, {0, 1, 4, 1}, {0, 0, 1, 2}});
  jqrt::Array2<double> s0, t0, q0, z0, s, t, q, z;
  jqrt::Array<cd> alpha0, alpha;
  jqrt::Array<double> beta0, beta;
  int32_t st;
  const int n = 4;
  QZ_head(a.h(), b.h(), s0.h(), t0.h(), q0.h(), z0.h(), alpha0.h(), beta0.h(), &st);
  ASSERT_EQ(st, 0);
  QZ80_head(a.h(), b.h(), n - 1, 0, s.h(), t.h(), q.h(), z.h(), alpha.h(), beta.h(), &st);
  ASSERT_EQ(st, 0);
  expect_pencil(a, b, s, t, q, z);
  ASSERT_EQ(alpha0.data()[n - 1].imag(), 0.0) << "the last block should be 1 x 1";
  EXPECT_NEAR(s.data()[0] / t.data()[0], alpha0.data()[n - 1].real() / beta0.data()[n - 1], 1e-12);
  for (int j = 0; j < n; ++j)
    if (alpha.data()[j].imag() == 0 && (j + 1 == n || s.data()[(j + 1) * n + j] == 0) && (j == 0 || s.data()[j * n + j - 1] == 0))
      EXPECT_NEAR(alpha.data()[j].real() / beta.data()[j], s.data()[j * n + j] / t.data()[j * n + j], 1e-12) << j;
  QZ80_head(a.h(), b.h(), 0, n, s.h(), t.h(), q.h(), z.h(), alpha.h(), beta.h(), &st);
  EXPECT_EQ(st, -20061);
  EXPECT_EQ(s.rows() + alpha.rows(), 0);
}

}  // namespace
