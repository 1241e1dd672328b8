// Decompositions, norms and least squares against numpy/scipy, with the
// invariants (reconstruction, orthonormality, eigen-residuals) where
// decompositions have sign or order freedoms.
#include <cmath>
#include <limits>

#include "jqanlys.h"
#include "support.hpp"
#include "linalg/svd.hpp"
#include "support/checks.hpp"

namespace {
#include "oracle.inc"

using lt::cd;

using lt::mul;

template <class T> T cj(T x) {
  if constexpr (std::is_same_v<T, cd>) return std::conj(x); else return x;
}

template <class T> void check_rect(const RectCase& c) {
  SCOPED_TRACE(c.name);
  constexpr bool cx = std::is_same_v<T, cd>;
  lt::NoBufferLeft guard;
  const int m = c.m, n = c.n, k = std::min(m, n);
  auto a = lt::matrix<T>(c.a, m, n);
  int32_t st = 1;
  jqrt::Array<double> s;
  cx ? CxSVDS_head(a.h(), s.h(), &st) : SVDS_head(a.h(), s.h(), &st);
  EXPECT_EQ(st, 0);
  ASSERT_EQ(s.rows(), k);
  EXPECT_LT(lt::rel_error(s.data(), c.sv, k), 1e-13);
  for (int type = 0; type < 4; ++type) {
    double norm;
    cx ? CxNorm_head(a.h(), type, &norm, &st) : Norm_head(a.h(), type, &norm, &st);
    EXPECT_EQ(st, 0);
    EXPECT_NEAR(norm, c.norms[type], 1e-13 * c.norms[type]) << type;
  }
  int32_t rank;
  cx ? CxRank_head(a.h(), -1, &rank, &st) : Rank_head(a.h(), -1, &rank, &st);
  EXPECT_EQ(rank, c.rank);
  jqrt::Array2<T> p;
  cx ? CxPseudoInverse_head(a.h(), -1, p.h(), &st) : PseudoInverse_head(a.h(), -1, p.h(), &st);
  EXPECT_EQ(st, 0);
  ASSERT_EQ(p.rows(), n);
  EXPECT_LT(lt::rel_error(p.data(), c.pinv, m * n), 1e-10);
  // Least squares: both paths give numpy's minimum-norm solution.
  auto b = lt::vector<T>(c.b, m);
  for (int svd = 0; svd < 2; ++svd) {
    jqrt::Array<T> x;
    if constexpr (cx)
      svd ? CxGenLinEqsbySVD2011_head(a.h(), b.h(), -1, x.h(), &st) : CxGenLinEqs_head(a.h(), b.h(), x.h(), &st);
    else
      svd ? GenLinEqsbySVD2011_head(a.h(), b.h(), -1, x.h(), &st) : GenLinEqs_head(a.h(), b.h(), x.h(), &st);
    EXPECT_EQ(st, svd && c.rank < k ? 20001 : 0) << svd;
    ASSERT_EQ(x.rows(), n);
    EXPECT_LT(lt::rel_error(x.data(), c.lstsq, n), 1e-9) << svd;
  }
  // SVD vectors: A = U S V^H with orthonormal columns.
  jqrt::Array2<T> u, v;
  cx ? CxSVD_head(a.h(), u.h(), s.h(), v.h(), &st) : SVD_head(a.h(), u.h(), s.h(), v.h(), &st);
  ASSERT_EQ(u.rows(), m);
  ASSERT_EQ(v.rows(), n);
  std::vector<T> us(u.values()), vh(k * n);
  for (int i = 0; i < m; ++i)
    for (int j = 0; j < k; ++j) us[i * k + j] *= s.data()[j];
  for (int i = 0; i < k; ++i)
    for (int j = 0; j < n; ++j) vh[i * n + j] = cj(v.data()[j * k + i]);
  EXPECT_LT(lt::rel_error(mul(us.data(), vh.data(), m, k, n).data(), c.a, m * n), 1e-13);
  // QR, plain and pivoted: reconstruction and an upper triangular R.
  for (int piv = 0; piv < 2; ++piv) {
    jqrt::Array2<T> q, r;
    jqrt::Array<int32_t> jp;
    if constexpr (cx)
      piv ? CxQRDecH(a.h(), q.h(), r.h(), jp.h(), &st) : Cxqrd_head(a.h(), q.h(), r.h(), &st);
    else
      piv ? QRDecH(a.h(), q.h(), r.h(), jp.h(), &st) : qrd_head(a.h(), q.h(), r.h(), &st);
    EXPECT_EQ(st, 0);
    ASSERT_EQ(q.rows(), m);
    ASSERT_EQ(r.cols(), n);
    auto qr = mul(q.data(), r.data(), m, k, n);
    std::vector<double> ap(2 * m * n);
    for (int i = 0; i < m; ++i)
      for (int j = 0; j < n; ++j) {
        const int col = piv ? jp.data()[j] : j;
        reinterpret_cast<T*>(ap.data())[i * n + j] = reinterpret_cast<const T*>(c.a)[i * n + col];
      }
    EXPECT_LT(lt::rel_error(qr.data(), ap.data(), m * n), 1e-13) << piv;
    for (int i = 0; i < k; ++i)
      for (int j = 0; j < i; ++j) EXPECT_EQ(std::abs(r.data()[i * n + j]), 0.0);
  }
  if (m == n) {
    auto f = lt::matrix<T>(c.a, m, n);
    jqrt::Array<int32_t> pv;
    int32_t parity;
    cx ? CxLU_head(f.h(), pv.h(), &parity, &st) : LU_head(f.h(), pv.h(), &parity, &st);
    EXPECT_EQ(st, 0);
    EXPECT_LT(lt::rel_error(f.data(), c.lu, n * n), 1e-13);
    int swaps = 0;
    for (int i = 0; i < n; ++i) {
      EXPECT_EQ(pv.data()[i], static_cast<int>(c.piv[i]));
      swaps += pv.data()[i] != i;
    }
    EXPECT_EQ(parity, swaps % 2);
  }
}

TEST(Decompose, RectangularAgreesWithNumpy) {
  for (const RectCase& c : kRect) c.cx ? check_rect<cd>(c) : check_rect<double>(c);
}

template <class T> void check_sym(const SymCase& c) {
  SCOPED_TRACE(c.name);
  constexpr bool cx = std::is_same_v<T, cd>;
  lt::NoBufferLeft guard;
  const int n = c.n;
  auto a = lt::matrix<T>(c.a, n, n);
  int32_t st = 1;
  jqrt::Array<double> w;
  jqrt::Array2<T> v;
  cx ? CxSymEvectorEvalue_head(a.h(), w.h(), v.h(), &st) : SymEvectorEvalue_head(a.h(), w.h(), v.h(), &st);
  EXPECT_EQ(st, 0);
  EXPECT_LT(lt::rel_error(w.data(), c.w, n), 1e-13);
  // A v_j = w_j v_j for each column.
  auto av = mul(a.data(), v.data(), n, n, n);
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < n; ++j) EXPECT_NEAR(std::abs(av[i * n + j] - w.data()[j] * v.data()[i * n + j]), 0, 1e-12 * c.w[n - 1]);
  jqrt::Array2<T> l, inv;
  cx ? CxFullCholesky_head(a.h(), l.h(), &st) : FullCholesky_head(a.h(), l.h(), &st);
  EXPECT_EQ(st, 0);
  EXPECT_LT(lt::rel_error(l.data(), c.l, n * n), 1e-13);
  cx ? CxInvMatrixChoDri_head(a.h(), inv.h(), &st) : InvMatrixChoDri_head(a.h(), inv.h(), &st);
  EXPECT_EQ(st, 0);
  EXPECT_LT(lt::rel_error(inv.data(), c.inv, n * n), 1e-12);
  // The inverse of the Cholesky factor, as a lower triangular matrix.
  jqrt::Array2<T> li;
  cx ? CxInvMatrixTriDri_head(l.h(), 0, li.h(), &st) : InvMatrixTriDri_head(l.h(), 0, li.h(), &st);
  EXPECT_EQ(st, 0);
  auto id = mul(l.data(), li.data(), n, n, n);
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < n; ++j) EXPECT_NEAR(std::abs(id[i * n + j] - T(i == j)), 0, 1e-13);
  // General eigenproblem: values as numpy's (sorted), vectors by residual.
  auto g = lt::matrix<T>(c.g, n, n);
  jqrt::Array<cd> ev;
  jqrt::Array2<cd> vec;
  cx ? CxEigenValueVector_head(g.h(), ev.h(), vec.h(), &st) : EigenValueVector_head(g.h(), ev.h(), vec.h(), &st);
  EXPECT_EQ(st, 0);
  std::vector<cd> got = ev.values();
  std::sort(got.begin(), got.end(), [](cd x, cd y) { return x.real() != y.real() ? x.real() < y.real() : x.imag() < y.imag(); });
  EXPECT_LT(lt::rel_error(got.data(), c.ev, n), 1e-12);
  std::vector<cd> gc(n * n);
  for (int i = 0; i < n * n; ++i) gc[i] = g.data()[i];
  auto gv = mul(gc.data(), vec.data(), n, n, n);
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < n; ++j) EXPECT_NEAR(std::abs(gv[i * n + j] - ev.data()[j] * vec.data()[i * n + j]), 0, 1e-12 * (1 + std::abs(ev.data()[j])));
}

TEST(Decompose, SymmetricAndGeneralEigen) {
  for (const SymCase& c : kSym) c.cx ? check_sym<cd>(c) : check_sym<double>(c);
}

TEST(Decompose, LUShapesAndSingularity) {
  int32_t st, parity;
  // A singular matrix: factors with the warning, parity from the pivots.
  auto s = jqrt::Array2<double>::rows({{1, 2, 3}, {2, 4, 6}, {3, 1, 2}});
  jqrt::Array<int32_t> p;
  LU_head(s.h(), p.h(), &parity, &st);
  EXPECT_EQ(st, 20003);
  ASSERT_EQ(p.rows(), 3);
  EXPECT_EQ(p.data()[0], 2);
  EXPECT_EQ(parity, (p.data()[0] != 0) ^ (p.data()[1] != 1) ^ (p.data()[2] != 2));
  // Wide: 3 pivots; tall: 5, the last two their own index.
  jqrt::Array2<double> wide(3, 5), tall(5, 3);
  for (int i = 0; i < 15; ++i) wide.data()[i] = tall.data()[i] = std::cos(i * 1.3);
  LU_head(wide.h(), p.h(), &parity, &st);
  EXPECT_EQ(p.rows(), 3);
  LU_head(tall.h(), p.h(), &parity, &st);
  ASSERT_EQ(p.rows(), 5);
  EXPECT_EQ(p.data()[3], 3);
  EXPECT_EQ(p.data()[4], 4);
  EXPECT_EQ(wide.rows(), 3);
}

TEST(Decompose, LeastSquaresPaths) {
  int32_t st;
  // 1 x 740 takes the explicit SVD, 1 x 739 LAPACK's solver: both give the
  // minimum-norm solution x = a b / |a|^2.
  for (int n : {739, 740}) {
    jqrt::Array2<double> a(1, n);
    double nn = 0;
    for (int i = 0; i < n; ++i) nn += (a.data()[i] = 1 + i % 7) * a.data()[i];
    jqrt::Array<double> b{3.0}, x;
    GenLinEqs_head(a.h(), b.h(), x.h(), &st);
    EXPECT_EQ(st, 0);
    ASSERT_EQ(x.rows(), n);
    for (int i = 0; i < n; ++i) EXPECT_NEAR(x.data()[i], 3 * a.data()[i] / nn, 1e-15) << n;
  }
  EXPECT_TRUE(jq::linalg::least_squares_by_svd(208, 208));
  EXPECT_TRUE(jq::linalg::least_squares_by_svd(300, 208));
  EXPECT_FALSE(jq::linalg::least_squares_by_svd(207, 207));
  EXPECT_FALSE(jq::linalg::least_squares_by_svd(2, 802));
  EXPECT_TRUE(jq::linalg::least_squares_by_svd(2, 803));
}

TEST(Decompose, SmallMembers) {
  int32_t st;
  double v;
  auto a = jqrt::Array2<double>::rows({{1, 2}, {3, 4}, {5, 6}});
  Trace_head(a.h(), &v, &st);
  EXPECT_EQ(v, 5);
  jqrt::Array2<double> t, k;
  Transpose_head(a.h(), t.h(), &st);
  ASSERT_EQ(t.rows(), 2);
  EXPECT_EQ(t.values(), (std::vector<double>{1, 3, 5, 2, 4, 6}));
  auto b = jqrt::Array2<double>::rows({{0, 1}, {1, 0}});
  KroneckerProd_H(b.h(), a.h(), k.h(), &st);
  ASSERT_EQ(k.rows(), 6);
  ASSERT_EQ(k.cols(), 4);
  EXPECT_EQ(k.data()[0 * 4 + 2], 1);
  EXPECT_EQ(k.data()[5 * 4 + 1], 6);
  EXPECT_EQ(k.data()[5 * 4 + 3], 0);
  jqrt::Array<double> x{1, -2}, y;
  AxVect_head(a.h(), x.h(), y.h(), &st);
  EXPECT_EQ(y.values(), (std::vector<double>{-3, -5, -7}));
  jqrt::Array<double> r{1, 1, 1};
  vectxA_head(r.h(), a.h(), y.h(), &st);
  EXPECT_EQ(y.values(), (std::vector<double>{9, 12}));
  DotProduct_head(x.h(), x.h(), &v, &st);
  EXPECT_EQ(v, 5);
  jqrt::Array<double> w{3, -4, 1};
  const double inf = std::numeric_limits<double>::infinity();
  struct { double p, norm; } norms[] = {{inf, 4}, {-inf, 1}, {1, 8}, {2, std::sqrt(26.0)}, {3, std::cbrt(92.0)}};
  for (auto c : norms) {
    vectorNormH(w.h(), c.p, 0, &v, &st);
    EXPECT_NEAR(v, c.norm, 1e-14) << c.p;
  }
  jqrt::Array<double> rejected{3, -4, 1};
  vectorNormH(rejected.h(), 0, 0, &v, &st);
  EXPECT_EQ(st, -20141);
  EXPECT_TRUE(std::isnan(v));
  EXPECT_EQ(rejected.rows(), 0);  // normalised in place, so emptied on failure
  vectorNormH(w.h(), 1, 1, &v, &st);
  EXPECT_EQ(w.values(), (std::vector<double>{3.0 / 8, -4.0 / 8, 1.0 / 8}));
  // Singular: condition +infinity with status 0; rank of zeros with the default tolerance.
  auto sing = jqrt::Array2<double>::rows({{1, 2}, {2, 4}});
  auto zero_sv = jqrt::Array2<double>::rows({{1, 0}, {0, 0}});
  for (int type : {0, 1}) {
    CondNumber_head(type ? sing.h() : zero_sv.h(), type, &v, &st);
    EXPECT_EQ(st, 0);
    EXPECT_EQ(v, inf);
  }
  jqrt::Array2<double> zero(3, 2);
  int32_t rank;
  Rank_head(zero.h(), -1, &rank, &st);
  EXPECT_EQ(rank, 0);
  CondNumber_head(a.h(), 1, &v, &st);
  EXPECT_EQ(st, -20040);
}

}  // namespace

namespace {

// Each internal allocation of each member fails in turn: -20001 with the
// outputs emptied, or success when the failure fell past the last one; no
// module block survives either way.
TEST(Decompose, EveryAllocationFailure) {
  lt::NoBufferLeft guard;
  auto a = jqrt::Array2<double>::rows({{4, 1, 2}, {1, 3, 0}, {2, 0, 5}, {1, 1, 1}});
  auto sq = jqrt::Array2<double>::rows({{4, 1, 2}, {1, 3, 0}, {2, 0, 5}});
  jqrt::Array<double> b{1, 2, 3, 4};
  using Call = std::function<int32_t(jqrt::Array2<double>&, jqrt::Array<double>&)>;
  const std::pair<const char*, Call> calls[] = {
      {"svd", [&](auto& o, auto& s) { int32_t e; jqrt::Array2<double> v; SVD_head(a.h(), o.h(), s.h(), v.h(), &e); return e; }},
      {"qr", [&](auto& o, auto&) { int32_t e; jqrt::Array2<double> r; jqrt::Array<int32_t> p; QRDecH(a.h(), o.h(), r.h(), p.h(), &e); return e; }},
      {"lq", [&](auto& o, auto&) { int32_t e; jqrt::Array2<double> r; qrd_head(a.h(), o.h(), r.h(), &e); return e; }},
      {"pinv", [&](auto& o, auto&) { int32_t e; PseudoInverse_head(a.h(), -1, o.h(), &e); return e; }},
      {"lstsq", [&](auto&, auto& s) { int32_t e; GenLinEqs_head(a.h(), b.h(), s.h(), &e); return e; }},
      {"eig", [&](auto&, auto&) { int32_t e; jqrt::Array<lt::cd> w; jqrt::Array2<lt::cd> v; EigenValueVector_head(sq.h(), w.h(), v.h(), &e); return e; }},
      {"eigh", [&](auto& o, auto& s) { int32_t e; SymEvectorEvalue_head(sq.h(), s.h(), o.h(), &e); return e; }},
      {"cholesky inverse", [&](auto& o, auto&) { int32_t e; InvMatrixChoDri_head(sq.h(), o.h(), &e); return e; }},
      {"lu", [&](auto& o, auto&) {
         int32_t e, parity;
         auto f = jqrt::Array2<double>::rows({{4, 1}, {1, 3}});
         jqrt::Array<int32_t> p;
         LU_head(f.h(), p.h(), &parity, &e);
         return e == -20001 && (f.rows() || p.rows()) ? 1 : e;
       }},
  };
  for (const auto& [what, call] : calls) {
    SCOPED_TRACE(what);
    int failures = 0;
    for (int nth = 1; nth <= 12; ++nth) {
      jqrt::Array2<double> o(2, 2);
      jqrt::Array<double> s(2);
      jq::fail_scratch_allocation(nth);
      const int32_t e = call(o, s);
      jq::fail_scratch_allocation(0);
      ASSERT_TRUE(e == 0 || e == -20001) << nth << ": " << e;
      failures += e != 0;
    }
    EXPECT_GE(failures, 1);
  }
}

TEST(Decompose, Rejections) {
  auto wide = jqrt::Array2<double>::rows({{1, 2, 3}, {4, 5, 6}});
  auto notpd = jqrt::Array2<double>::rows({{1, 2}, {2, 1}});
  auto nan2 = jqrt::Array2<double>::rows({{1, std::nan("")}, {2, 1}});
  jqrt::Array2<double> empty(0, 3);
  jqrt::Array<double> b3{1, 2, 3}, b2{1, 2};
  int32_t e;
  using jqtest::reported;
  jqtest::expect_rejections<double, 2>({
      {"cholesky, not positive definite", -20071, [&](uint8_t** o) { return reported(FullCholesky_head(notpd.h(), o, &e), e); }},
      {"cholesky, not square", -20040, [&](uint8_t** o) { return reported(FullCholesky_head(wide.h(), o, &e), e); }},
      {"triangular inverse, bad type", -20061, [&](uint8_t** o) { return reported(InvMatrixTriDri_head(notpd.h(), 2, o, &e), e); }},
      {"pinv, NaN", -20068, [&](uint8_t** o) { return reported(PseudoInverse_head(nan2.h(), -1, o, &e), e); }},
      {"pinv, empty", -20003, [&](uint8_t** o) { return reported(PseudoInverse_head(empty.h(), -1, o, &e), e); }},
      {"svd ex resize", -20001, [&](uint8_t** o) { jqrt::Array2<double> s, v; return reported(SVDEx_head(wide.h(), o, s.h(), v.h(), &e), e); }, 2},
      {"eigenvectors, not square", -20040, [&](uint8_t** o) { jqrt::Array<double> w; return reported(SymEvectorEvalue_head(wide.h(), w.h(), o, &e), e); }},
  });
  jqtest::expect_rejections<double, 1>({
      {"lstsq, b length", -20002, [&](uint8_t** o) { return reported(GenLinEqs_head(wide.h(), b3.h(), o, &e), e); }},
      {"lstsq, empty", -20003, [&](uint8_t** o) { return reported(GenLinEqs_head(empty.h(), b2.h(), o, &e), e); }},
      {"cholesky solve, not positive definite", -20071, [&](uint8_t** o) { return reported(EqsByCholeskyDri_head(notpd.h(), b2.h(), o, &e), e); }},
      {"A x, length", -20002, [&](uint8_t** o) { return reported(AxVect_head(wide.h(), b2.h(), o, &e), e); }},
      {"x A, length", -20039, [&](uint8_t** o) { return reported(vectxA_head(b3.h(), wide.h(), o, &e), e); }},
      {"singular values resize", -20001, [&](uint8_t** o) { return reported(SVDS_head(wide.h(), o, &e), e); }, 1},
  });
  jqrt::Array<double> x, s;
  EXPECT_EQ(GenLinEqs2010_head(wide.h(), b3.h(), -1, x.h(), s.h()), -20002);
  EXPECT_EQ(GenLinEqs2010_head(wide.h(), b2.h(), -1, x.h(), s.h()), 0);
  EXPECT_EQ(x.rows(), 3);
  EXPECT_EQ(s.rows(), 2);
  int32_t rank = 5;
  Rank_head(nan2.h(), -1, &rank, &e);
  EXPECT_EQ(e, -20068);
  EXPECT_EQ(rank, -1);
}

}  // namespace

namespace {

// The generalized SVD by its invariants: both reconstructions, unitary U
// and V, and C^T C + S^T S = I, over shapes where [A; B] has full column
// rank with r <= m and r > m, and where it is rank deficient.
struct GsvdCase {
  const char* what;
  int m, p, n, rank;
  bool cx;
  std::vector<double> a, b;  // interleaved parts for complex cases
};

template <class T> void check_gsvd(const GsvdCase& c) {
  SCOPED_TRACE(c.what);
  lt::NoBufferLeft guard;
  auto a = lt::matrix<T>(c.a.data(), c.m, c.n), b = lt::matrix<T>(c.b.data(), c.p, c.n);
  jqrt::Array2<T> u, v, x;
  jqrt::Array2<double> cc, ss;
  int32_t st;
  if constexpr (std::is_same_v<T, cd>)
    CxGSVD_head(a.h(), b.h(), u.h(), v.h(), cc.h(), ss.h(), x.h(), &st);
  else
    GSVD_head(a.h(), b.h(), u.h(), v.h(), cc.h(), ss.h(), x.h(), &st);
  ASSERT_EQ(st, 0);
  const int r = c.rank;
  ASSERT_EQ(x.rows(), r);
  ASSERT_EQ(cc.cols(), r);
  auto conj_t = [](const T* q, int n) {
    std::vector<T> t(n * n);
    for (int i = 0; i < n; ++i)
      for (int j = 0; j < n; ++j) t[j * n + i] = jq::linalg::conj_of(q[i * n + j]);
    return t;
  };
  for (auto [q, d, rows, want] : {std::tuple{&u, &cc, c.m, &a}, std::tuple{&v, &ss, c.p, &b}}) {
    std::vector<T> dt(d->data(), d->data() + rows * r);
    auto dx = mul(dt.data(), x.data(), rows, r, c.n);
    auto rec = mul(q->data(), dx.data(), rows, rows, c.n);
    EXPECT_LT(lt::rel_error(rec.data(), reinterpret_cast<const double*>(want->data()), rows * c.n), 1e-13);
    auto qh = conj_t(q->data(), rows);
    auto id = mul(qh.data(), q->data(), rows, rows, rows);
    for (int i = 0; i < rows * rows; ++i) EXPECT_NEAR(std::abs(id[i] - T(i % (rows + 1) == 0)), 0, 1e-14);
  }
  for (int i = 0; i < r; ++i)
    for (int j = 0; j < r; ++j) {
      double s = 0;
      for (int k = 0; k < c.m; ++k) s += cc.data()[k * r + i] * cc.data()[k * r + j];
      for (int k = 0; k < c.p; ++k) s += ss.data()[k * r + i] * ss.data()[k * r + j];
      EXPECT_NEAR(s, i == j, 1e-14);
    }
}

const std::vector<GsvdCase> kGsvd = {
    {"tall A", 4, 3, 3, 3, false, {1, 2, 0, -3, 1, 4, 2, 0, 1, 0.5, 1, -1}, {2, 0, 1, 1, 3, 0, 0, 1, 4}},
    {"r above m", 2, 3, 4, 4, false, {1, 2, 0, -1, 3, 1, 4, 2}, {2, 0, 1, 1, 1, 3, 0, -2, 0, 1, 4, 1}},
    {"rank deficient", 2, 1, 3, 2, false, {1, 2, 3, 2, 4, 6}, {0, 1, 0}},
    {"complex", 3, 2, 3, 3, true, {1, 1, 2, 0, 0, -1, -3, 0, 1, 2, 4, 0, 2, 1, 0, 0, 1, -1}, {2, 0, 0, 1, 1, 0, 1, 1, 3, 0, 0, 2}},
};

TEST(Decompose, GeneralizedSvd) {
  for (const GsvdCase& c : kGsvd) c.cx ? check_gsvd<cd>(c) : check_gsvd<double>(c);
  jqrt::Array2<double> a(2, 3), b(2, 2), u, v, cc, ss, x;
  int32_t st;
  GSVD_head(a.h(), b.h(), u.h(), v.h(), cc.h(), ss.h(), x.h(), &st);
  EXPECT_EQ(st, -20039);
  EXPECT_EQ(u.rows() + cc.rows() + x.rows(), 0);
}

}  // namespace
