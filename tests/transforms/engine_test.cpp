// The FFT engine against long-double DFT sums, its factoring, its shared
// tables and its use from several threads.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <thread>
#include <tuple>

#include "frame/errors.hpp"
#include "reference.hpp"
#include "transforms/codelets.hpp"
#include "transforms/fft.hpp"

using namespace jq;
using namespace jq::fft;
using namespace jqtest;

namespace {

struct Table {
  explicit Table(uint32_t n) : t(create_table(n)) {}
  ~Table() { destroy_table(t); }
  FFTTable* t;
};

struct Errors {
  double forward_complex, forward_real, inverse_complex, inverse_real;
};

// Relative rms errors of the four executors on random data, against the
// long-double sums at `bins` (all bins when empty), the inverses by round
// trip. The forward complex transform runs on interleaved data, as the
// exports pass it (single-factor lengths take their own path there).
Errors measure(int32_t n, const std::vector<int32_t>& bins = {}) {
  Table tab(n);
  EXPECT_NE(tab.t, nullptr);
  const auto xr = random_values(n, 7 + n), xi = random_values(n, 11 + n);
  std::vector<double> yr(n), yi(n), h(n), zr(n), zi(n), inter(2 * n), y2(2 * n);
  for (int32_t j = 0; j < n; ++j) inter[2 * j] = xr[j], inter[2 * j + 1] = xi[j];
  EXPECT_EQ(ExecuteComplexFFT(tab.t, inter.data(), inter.data() + 1, y2.data(), y2.data() + 1, 2, 2, n), 0);
  for (int32_t k = 0; k < n; ++k) yr[k] = y2[2 * k], yi[k] = y2[2 * k + 1];
  EXPECT_EQ(ExecuteRealFFT(tab.t, xr.data(), h.data(), 1, 1, n), 0);
  std::vector<int32_t> ks = bins;
  if (ks.empty())
    for (int32_t k = 0; k < n; ++k) ks.push_back(k);
  const auto w = roots(n);
  long double ec = 0, er = 0, nc = 0, nr = 0;
  for (int32_t k : ks) {
    const cld c = dft_bin(w, xr.data(), xi.data(), n, k), r = dft_bin(w, xr.data(), nullptr, n, k);
    ec += std::norm(cld(yr[k], yi[k]) - c);
    nc += std::norm(c);
    const auto got = hc_bin(h.data(), n, k);
    er += std::norm(cld(got.real(), got.imag()) - r);
    nr += std::norm(r);
  }
  Errors e{};
  e.forward_complex = std::sqrt(static_cast<double>(ec / nc));
  e.forward_real = std::sqrt(static_cast<double>(er / nr));
  EXPECT_EQ(ExecuteInverseComplexFFT(tab.t, yr.data(), yi.data(), zr.data(), zi.data(), 1, 1, n), 0);
  long double d = 0, s = 0;
  for (int32_t j = 0; j < n; ++j) {
    d += std::norm(cld(zr[j] - xr[j], zi[j] - xi[j]));
    s += std::norm(cld(xr[j], xi[j]));
  }
  e.inverse_complex = std::sqrt(static_cast<double>(d / s));
  EXPECT_EQ(ExecuteInverseRealFFT(tab.t, h.data(), zr.data(), 1, 1, n), 0);
  d = s = 0;
  for (int32_t j = 0; j < n; ++j) {
    d += (zr[j] - xr[j]) * static_cast<long double>(zr[j] - xr[j]);
    s += xr[j] * static_cast<long double>(xr[j]);
  }
  e.inverse_real = std::sqrt(static_cast<double>(d / s));
  return e;
}

void expect_accurate(int32_t n, const std::vector<int32_t>& bins = {}, double slack = 1) {
  const Errors e = measure(n, bins);
  Table tab(n);
  const double b = bound(tab.t) * slack;
  EXPECT_LT(e.forward_complex, b) << "n = " << n;
  EXPECT_LT(e.forward_real, b) << "n = " << n;
  EXPECT_LT(e.inverse_complex, 2 * b) << "n = " << n;
  EXPECT_LT(e.inverse_real, 2 * b) << "n = " << n;
}

std::vector<int32_t> factors_of(const FFTTable* t) { return {t->factors, t->factors + t->factor_count}; }
std::vector<int32_t> kinds_of(const FFTTable* t) { return {t->kinds, t->kinds + t->factor_count}; }

}  // namespace

TEST(FftEngine, EveryLengthUpTo300MatchesLongDoubleSums) {
  for (int32_t n = 1; n <= 300; ++n) expect_accurate(n);
}

TEST(FftEngine, LargeAndAwkwardLengthsMatchOnSampledBins) {
  for (int32_t n : {1000, 1024, 2048, 4096, 1081, 30030, 1009, 4099, 7919, 10007, 2 * 10007, 1 << 20}) {
    std::vector<int32_t> bins = {0, 1, 2, n / 2, n - 1, n / 3, n / 7};
    std::mt19937 g(n);
    for (int i = 0; i < 8; ++i) bins.push_back(static_cast<int32_t>(g() % n));
    // The rotation recurrence of the twiddles costs a little at 2^20.
    expect_accurate(n, bins, n >= (1 << 20) ? 4 : 1);
  }
}

// Every length to 10,000, real and complex, forward and inverse: the round
// trip for all samples and two random bins against the long-double sum.
TEST(FftEngine, EveryLengthUpTo10000RoundTripsAndHitsRandomBins) {
  const auto start = std::chrono::steady_clock::now();
  std::mt19937 g(2024);
  int failures = 0;
  for (int32_t n = 1; n <= 10000 && failures < 10; ++n) {
    Table tab(n);
    ASSERT_NE(tab.t, nullptr);
    const auto xr = random_values(n, n), xi = random_values(n, 3 * n + 1);
    std::vector<double> yr(n), yi(n), h(n), zr(n), zi(n);
    ExecuteComplexFFT(tab.t, xr.data(), xi.data(), yr.data(), yi.data(), 1, 1, n);
    ExecuteRealFFT(tab.t, xr.data(), h.data(), 1, 1, n);
    double worst = 0;
    for (int i = 0; i < 2; ++i) {
      const int32_t k = static_cast<int32_t>(g() % n);
      long double cr = 0, ci = 0, rr = 0, ri = 0, norm_c = 0, norm_r = 0;
      for_each_root(n, k, [&](int32_t j, long double wc, long double ws) {
        const long double a = xr[j], b = xi[j];
        cr += a * wc - b * ws;
        ci += a * ws + b * wc;
        rr += a * wc;
        ri += a * ws;
        norm_c += a * a + b * b;
        norm_r += a * a;
      });
      const cld c(cr, ci), r(rr, ri);
      // Relative to the rms size of a bin.
      worst = std::max(worst, static_cast<double>(std::abs(cld(yr[k], yi[k]) - c) / std::sqrt(norm_c)));
      const auto hb = hc_bin(h.data(), n, k);
      worst = std::max(worst, static_cast<double>(std::abs(cld(hb.real(), hb.imag()) - r) / std::sqrt(norm_r)));
    }
    ExecuteInverseComplexFFT(tab.t, yr.data(), yi.data(), zr.data(), zi.data(), 1, 1, n);
    ExecuteInverseRealFFT(tab.t, h.data(), yr.data(), 1, 1, n);
    for (int32_t j = 0; j < n; ++j) {
      worst = std::max(worst, std::abs(zr[j] - xr[j]) + std::abs(zi[j] - xi[j]));
      worst = std::max(worst, std::abs(yr[j] - xr[j]));
    }
    if (!(worst < 20 * bound(tab.t))) {
      ++failures;
      ADD_FAILURE() << "n = " << n << ": error " << worst;
    }
  }
  const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  RecordProperty("seconds", std::to_string(seconds));
  std::printf("lengths 1..10000 checked in %.1f s\n", seconds);
}

TEST(FftEngine, FactorsInTheFixedOrderAndSortsThem) {
  struct Case {
    uint32_t n;
    std::vector<int32_t> factors, kinds;
  };
  const Case cases[] = {
      {1, {}, {}},
      {1000, {10, 10, 10}, {0, 0, 0}},
      {1024, {32, 32}, {0, 0}},
      {4096, {4, 32, 32}, {0, 0, 0}},
      {2048, {2, 32, 32}, {0, 0, 0}},
      {46, {2, 23}, {0, 1}},
      {53, {53}, {2}},
      {1081, {23, 47}, {1, 1}},
      {30030, {3, 7, 10, 11, 13}, {0, 0, 0, 0, 0}},
      {120, {3, 4, 10}, {0, 0, 0}},
      {2 * 53 * 53, {2, 53, 53}, {0, 2, 2}},
  };
  for (const Case& c : cases) {
    Table tab(c.n);
    ASSERT_NE(tab.t, nullptr);
    EXPECT_EQ(tab.t->length, static_cast<int32_t>(c.n));
    EXPECT_EQ(factors_of(tab.t), c.factors) << c.n;
    EXPECT_EQ(kinds_of(tab.t), c.kinds) << c.n;
  }
  Table t53(53);
  ASSERT_NE(t53.t->stages[0]->sub, nullptr);
  EXPECT_EQ(factors_of(t53.t->stages[0]->sub), (std::vector<int32_t>{4, 13}));
  // The leading fields are laid out as the host and older callers expect.
  EXPECT_EQ(offsetof(FFTTable, length), 0u);
  EXPECT_EQ(offsetof(FFTTable, references), 4u);
  EXPECT_EQ(offsetof(FFTTable, factors), 8u);
  EXPECT_EQ(offsetof(FFTTable, kinds), 88u);
  EXPECT_EQ(offsetof(FFTTable, factor_count), 168u);
}

TEST(FftEngine, TablesAreSharedAndCountedPerLength) {
  EXPECT_EQ(create_table(0), nullptr);
  FFTTable* a = create_table(360);
  FFTTable* b = create_table(360);
  ASSERT_NE(a, nullptr);
  EXPECT_EQ(a, b);
  EXPECT_EQ(a->references, 2);
  destroy_table(b);
  EXPECT_EQ(a->references, 1);
  std::vector<double> x(360, 1.0), y(360);
  EXPECT_EQ(ExecuteRealFFT(a, x.data(), y.data(), 1, 1, 360), 0);
  EXPECT_DOUBLE_EQ(y[0], 360);
  destroy_table(a);
  destroy_table(nullptr);

  // A Rader factor's sub-table is an ordinary shared table.
  FFTTable* p = create_table(59);
  FFTTable* sub = create_table(58);
  EXPECT_EQ(p->stages[0]->sub, sub);
  EXPECT_EQ(sub->references, 2);
  destroy_table(p);
  EXPECT_EQ(sub->references, 1);
  destroy_table(sub);

  // 107: p-1 = 2*53 would nest Rader, so the convolution runs zero-padded
  // at 216 = 2^3 3^3 (the least such length >= 2*106-1), again shared.
  FFTTable* q = create_table(107);
  FFTTable* padded = create_table(216);
  EXPECT_EQ(q->stages[0]->padded_length, 216);
  EXPECT_EQ(q->stages[0]->padded, padded);
  EXPECT_EQ(padded->references, 2);
  destroy_table(q);
  EXPECT_EQ(padded->references, 1);
  destroy_table(padded);
}

TEST(FftEngine, ExecutorsRejectAnotherLengthWithTheirOwnCodes) {
  Table tab(8);
  std::vector<double> a(16), b(16), c(16), d(16);
  EXPECT_EQ(ExecuteRealFFT(tab.t, a.data(), b.data(), 1, 1, 9), kInternal);
  EXPECT_EQ(ExecuteInverseRealFFT(tab.t, a.data(), b.data(), 1, 1, 7), kInternal);
  EXPECT_EQ(ExecuteComplexFFT(tab.t, a.data(), b.data(), c.data(), d.data(), 1, 1, 16), -1);
  EXPECT_EQ(ExecuteInverseComplexFFT(tab.t, a.data(), b.data(), c.data(), d.data(), 1, 1, 4), -1);
}

TEST(FftEngine, StridedInterleavedDataMatchesSplitData) {
  for (int32_t n : {12, 30, 46, 53, 64, 97, 210, 1000, 1024, 4096, 100000}) {
    Table tab(n);
    const auto xr = random_values(n, 5), xi = random_values(n, 6);
    std::vector<double> inter(2 * n), out(2 * n), yr(n), yi(n), h(2 * n);
    for (int32_t j = 0; j < n; ++j) inter[2 * j] = xr[j], inter[2 * j + 1] = xi[j];
    ExecuteComplexFFT(tab.t, inter.data(), inter.data() + 1, out.data(), out.data() + 1, 2, 2, n);
    ExecuteComplexFFT(tab.t, xr.data(), xi.data(), yr.data(), yi.data(), 1, 1, n);
    ExecuteRealFFT(tab.t, inter.data(), h.data(), 2, 2, n);
    std::vector<double> hr(n);
    ExecuteRealFFT(tab.t, xr.data(), hr.data(), 1, 1, n);
    // Small leaves of interleaved complex data may run as real transforms
    // side by side, so the complex results agree to rounding; the real ones
    // take the same path and agree exactly.
    long double d = 0, norm = 0;
    for (int32_t k = 0; k < n; ++k) {
      d += std::norm(std::complex<long double>(out[2 * k] - yr[k], out[2 * k + 1] - yi[k]));
      norm += std::norm(std::complex<long double>(yr[k], yi[k]));
      EXPECT_EQ(h[2 * k], hr[k]);
    }
    EXPECT_LT(std::sqrt(static_cast<double>(d / norm)), bound(tab.t)) << "n = " << n;
  }
}

// Eight threads creating, using and destroying tables of overlapping lengths.
TEST(FftEngine, ThreadsShareTablesSafely) {
  const std::vector<int32_t> lengths = {64, 100, 53, 1024, 46, 360, 127, 2048};
  std::vector<std::vector<double>> want(lengths.size());
  const auto x = random_values(4096, 99);
  for (size_t i = 0; i < lengths.size(); ++i) {
    Table tab(lengths[i]);
    want[i].resize(lengths[i]);
    ExecuteRealFFT(tab.t, x.data(), want[i].data(), 1, 1, lengths[i]);
  }
  std::atomic<int> mismatches{0};
  std::vector<std::thread> threads;
  for (int id = 0; id < 8; ++id) {
    threads.emplace_back([&, id] {
      std::vector<double> y(4096);
      for (int round = 0; round < 200; ++round) {
        const size_t i = (id + round) % lengths.size();
        FFTTable* t = create_table(lengths[i]);
        if (!t || ExecuteRealFFT(t, x.data(), y.data(), 1, 1, lengths[i]) != 0) ++mismatches;
        for (int32_t k = 0; k < lengths[i]; ++k)
          if (y[k] != want[i][k]) {
            ++mismatches;
            break;
          }
        destroy_table(t);
      }
    });
  }
  for (auto& t : threads) t.join();
  EXPECT_EQ(mismatches.load(), 0);
}

namespace jq::fft {
namespace baseline {
const CodeletSet* find(int radix);
PrimeBatch prime_batch_kernel();
}
namespace avx2 {
const CodeletSet* find(int radix);
PrimeBatch prime_batch_kernel();
ComplexSingle complex_single(int radix);
}
namespace avx512 {
const CodeletSet* find(int radix);
PrimeBatch prime_batch_kernel();
ComplexSingle complex_single(int radix);
}
namespace baseline {
ComplexSingle complex_single(int radix);
}
}  // namespace jq::fft

namespace {
struct Variant {
  const char* name;
  bool usable;
  const jq::fft::CodeletSet* (*find)(int);
  jq::fft::PrimeBatch (*prime)();
  jq::fft::ComplexSingle (*single)(int);
};
}  // namespace

// The AVX2 and AVX-512 butterflies run four at a time, the baseline ones two
// at a time or singly; all must give bit-identical results, on full vectors
// and on the tails, for the strides the executors pass.
class FftVariants : public ::testing::TestWithParam<Variant> {};

INSTANTIATE_TEST_SUITE_P(
    Engine, FftVariants,
    ::testing::Values(Variant{"avx2", __builtin_cpu_supports("avx2") != 0, fft::avx2::find, fft::avx2::prime_batch_kernel,
                              fft::avx2::complex_single},
                      Variant{"avx512",
                              __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512vl"),
                              fft::avx512::find, fft::avx512::prime_batch_kernel, fft::avx512::complex_single}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_P(FftVariants, AgreeWithTheBaselineBitForBit) {
  const Variant& v = GetParam();
  if (!v.usable) GTEST_SKIP() << "no " << v.name << " here";
  struct LeafCase {
    ptrdiff_t is_per_count, os, odist_per_r;
    int count, idist;
    bool interleaved;  // imaginary parts right after the real ones
  };
  const LeafCase leaves[] = {{1, 1, 1, 1, 0, false}, {7, 1, 1, 7, 1, false}, {6, 2, 2, 6, 3, false},
                             {5, 1, 1, 10, 2, false}, {9, 2, 2, 9, 2, true},  {3, 1, 1, 3, 1, false},
                             {2, 2, 2, 2, 4, false}, {3, 2, 2, 7, 6, true}};
  for (int r : kCodeletRadices) {
    const CodeletSet *a = v.find(r), *b = baseline::find(r);
    ASSERT_TRUE(a && b);
    for (const LeafCase& c : leaves) {
      const ptrdiff_t is = c.is_per_count * c.idist + (c.idist == 0), odist = c.odist_per_r * r;
      const size_t in_n = static_cast<size_t>(c.count * c.idist + r * is), out_n = c.count * odist + r * c.os;
      const auto xr = random_values(static_cast<int32_t>(in_n), r), xi = random_values(static_cast<int32_t>(in_n), r + 1);
      std::vector<double> ar(out_n + 1), ai(out_n + 1), br(out_n + 1), bi(out_n + 1);
      const double* xip = c.interleaved ? xr.data() + 1 : xi.data();
      double* aip = c.interleaved ? ar.data() + 1 : ai.data();
      double* bip = c.interleaved ? br.data() + 1 : bi.data();
      a->complex_leaf(xr.data(), xip, ar.data(), aip, is, c.os, c.idist, odist, c.count);
      b->complex_leaf(xr.data(), xip, br.data(), bip, is, c.os, c.idist, odist, c.count);
      EXPECT_EQ(ar, br) << "complex leaf " << r << " count " << c.count;
      EXPECT_EQ(ai, bi) << "complex leaf " << r << " count " << c.count;
      a->real_leaf(xr.data(), ar.data(), is, c.os, c.idist, odist, c.count);
      b->real_leaf(xr.data(), br.data(), is, c.os, c.idist, odist, c.count);
      EXPECT_EQ(ar, br) << "real leaf " << r << " count " << c.count;
    }
    // Interleaved complex DFTs as real ones side by side: one at strides of
    // 2 and 6, three 2 values apart (a pair and a single).
    for (auto [st, dist, count] : {std::tuple<ptrdiff_t, ptrdiff_t, int>{2, 0, 1}, {6, 0, 1}, {6, 2, 3}}) {
      const size_t len = static_cast<size_t>(st * r + dist * count);
      const auto x = random_values(static_cast<int32_t>(len), r + 3);
      std::vector<double> ya(len), yb(len);
      v.single(r)(x.data(), ya.data(), st, st, dist, dist, count);
      baseline::complex_single(r)(x.data(), yb.data(), st, st, dist, dist, count);
      EXPECT_EQ(ya, yb) << "complex via real " << r << " stride " << st << " count " << count;
    }
    for (int m : {1, 2, 3, 5, 8, 9, 13, 32, 256}) {
      for (ptrdiff_t s : {1, 2}) {
        const size_t n = static_cast<size_t>(r * m * s);
        const auto wc = random_values((r - 1) * m, 3 * m), ws = random_values((r - 1) * m, 5 * m);
        auto ar = random_values(static_cast<int32_t>(n), m), ai = random_values(static_cast<int32_t>(n), m + 1);
        auto br = ar, bi = ai;
        a->complex_twiddle(ar.data(), ai.data(), wc.data(), ws.data(), s, m);
        b->complex_twiddle(br.data(), bi.data(), wc.data(), ws.data(), s, m);
        EXPECT_EQ(ar, br) << "complex twiddle " << r << " m " << m << " s " << s;
        EXPECT_EQ(ai, bi) << "complex twiddle " << r << " m " << m << " s " << s;
        a->real_twiddle(ar.data(), wc.data(), ws.data(), s, m);
        b->real_twiddle(br.data(), wc.data(), ws.data(), s, m);
        EXPECT_EQ(ar, br) << "real twiddle " << r << " m " << m << " s " << s;
      }
      // Interleaved complex data.
      const auto wc = random_values((r - 1) * m, 7 * m), ws = random_values((r - 1) * m, 9 * m);
      auto ap = random_values(2 * r * m, m + 2), bp = ap;
      a->complex_twiddle(ap.data(), ap.data() + 1, wc.data(), ws.data(), 2, m);
      b->complex_twiddle(bp.data(), bp.data() + 1, wc.data(), ws.data(), 2, m);
      EXPECT_EQ(ap, bp) << "interleaved complex twiddle " << r << " m " << m;
    }
  }
  // The generic prime butterfly, on whole vectors and tails.
  for (int p : {23, 47})
    for (int B : {1, 3, 8}) {
      std::vector<double> cs(p), sn(p);
      for (int k = 0; k < p; ++k) {
        cs[k] = std::cos(6.283185307179586 * k / p);
        sn[k] = std::sin(6.283185307179586 * k / p);
      }
      const auto xr = random_values(p * B, p + B), xi = random_values(p * B, p - B);
      std::vector<double> ar(p * B), ai(p * B), br(p * B), bi(p * B);
      v.prime()(cs.data(), sn.data(), p, xr.data(), xi.data(), ar.data(), ai.data(), B);
      baseline::prime_batch_kernel()(cs.data(), sn.data(), p, xr.data(), xi.data(), br.data(), bi.data(), B);
      EXPECT_EQ(ar, br) << "generic prime " << p << " batch " << B;
      EXPECT_EQ(ai, bi) << "generic prime " << p << " batch " << B;
    }
}
