// Descriptive statistics and the histogram through their exports: generated
// data sets (tools/gen_stats_oracle.py) whose sums and bins replay the fixed
// arithmetic exactly, the documented special cases, and the failures.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <functional>
#include <tuple>
#include <vector>

#include "frame/scratch.hpp"
#include "jqanlys.h"
#include "jqrt.hpp"
#include "support/checks.hpp"

namespace {

#include "oracle.inc"

using jqtest::nan;
using V = std::vector<double>;

// A scalar export's result and code for one array.
template <class F> std::pair<double, int32_t> scalar(F f, const V& x) {
  jqrt::Array<double> a(x);
  double r = 0;
  int32_t err = 9;
  EXPECT_EQ(f(a.h(), &r, &err), 0);
  return {r, err};
}

double moment(const V& x, int32_t k, int32_t* err) {
  jqrt::Array<double> a(x);
  double r = 0;
  EXPECT_EQ(Moment_head(a.h(), &k, &r, err), 0);
  return r;
}

V modes(const V& x, int32_t intervals) {
  jqrt::Array<double> a(x), m;
  EXPECT_EQ(ModeH(a.h(), intervals, m.h()), 0);
  return m.values();
}

}  // namespace

TEST(Descriptive, DataSetsMatchTheirReferences) {
  for (const DataSet& d : kDataSets) {
    SCOPED_TRACE(d.name);
    EXPECT_EQ(scalar(Mean_head, d.x), std::pair(d.mean, 0));
    EXPECT_EQ(scalar(RMS_head, d.x), std::pair(d.rms, 0));
    EXPECT_EQ(scalar(Median_head, d.x), std::pair(d.median, 0));
    jqrt::Array<double> x(d.x), y(d.y), centres;
    double r;
    int32_t err, k = 7;
    EXPECT_EQ(MSE_head(x.h(), y.h(), &r, &err), 0);
    EXPECT_EQ(r, d.mse);
    for (int32_t order = 2; order <= 4; ++order) {
      const double ref = d.moments[order - 2], scale = std::pow(d.moments[0], order / 2.0);
      EXPECT_NEAR(moment(d.x, order, &err), ref, 1e-12 * scale) << "order " << order;
    }
    jqrt::Array<int32_t> counts;
    EXPECT_EQ(histgran_head(x.h(), &k, counts.h(), centres.h(), &err), 0);
    EXPECT_EQ(err, 0);
    EXPECT_EQ(counts.values(), d.counts);
    EXPECT_EQ(centres.values(), d.centres);
    EXPECT_EQ(modes(d.x, 0), d.modes);
    jqrt::Array<double> edges(d.edges);
    EXPECT_EQ(GenHistH(x.h(), edges.h(), counts.h()), 0);
    EXPECT_EQ(counts.values(), d.edge_counts);
  }
}

TEST(Descriptive, FixedArithmeticAndSpecialCases) {
  // Left to right: (1e16 + 1) - 1e16 loses the 1.
  EXPECT_EQ(scalar(Mean_head, {1e16, 1, -1e16}).first, 0.0);
  EXPECT_EQ(scalar(Median_head, {-7}), std::pair(-7.0, 0));
  // Lengths 3 and 5: the first three pairs, a warning and a valid result.
  jqrt::Array<double> a{1, 2, 3}, b{2, 2, 5, 100, 100};
  double r;
  int32_t err;
  EXPECT_EQ(MSE_head(a.h(), b.h(), &r, &err), 0);
  EXPECT_EQ(err, 20004);
  EXPECT_EQ(r, 5.0 / 3);
  // Complex RMS returns its code.
  jqrt::Array<std::complex<double>> z{{3, 4}, {0, 0}};
  EXPECT_EQ(CxRMS_head(z.h(), &r), 0);
  EXPECT_EQ(r, std::sqrt(12.5));
  // Powers by repeated multiplication: deviations of +-1 and +-2 carried
  // through a huge order keep the sign each step gives them.
  EXPECT_EQ(moment({-1, 1}, 2147483647, &err), 0.0);
  EXPECT_EQ(moment({-1, 1}, 2147483646, &err), 1.0);
  EXPECT_EQ(moment({0, 4}, 2000, &err), INFINITY);
  EXPECT_TRUE(std::isnan(moment({0, 4}, 2001, &err)));
  EXPECT_EQ(moment({1, 2, 6}, 1, &err), 0.0);
}

TEST(Descriptive, LargeMediansAgreeWithASort) {
  // Large inputs are bracketed from a sample first; patterns that make the
  // sample misleading (ties, order, spikes at the sampled places) must give
  // the same answer as sorting.
  std::vector<V> cases;
  uint64_t s = 12345;
  auto next = [&] { return (s = s * 6364136223846793005ULL + 1442695040888963407ULL) >> 11; };
  for (int32_t n : {65536, 100001, 100000}) {
    V random(n), ties(n), sorted(n), spikes(n);
    for (int32_t i = 0; i < n; ++i) {
      random[i] = static_cast<double>(next()) * 0x1p-53 - 0.5;
      ties[i] = i % 2;
      sorted[i] = i;
      spikes[i] = (i * 4096LL / n) % 2 ? 1e300 : -i;
    }
    cases.insert(cases.end(), {random, ties, sorted, spikes});
  }
  for (V& x : cases) {
    const auto [got, err] = scalar(Median_head, x);
    std::sort(x.begin(), x.end());
    const size_t h = x.size() / 2;
    EXPECT_EQ(got, x.size() % 2 ? x[h] : (x[h - 1] + x[h]) * 0.5) << x.size();
    EXPECT_EQ(err, 0);
  }
  cases[0].back() = INFINITY;
  EXPECT_EQ(scalar(Median_head, cases[0]).second, -20104);
}

TEST(Descriptive, ExactAndBinnedModes) {
  for (auto [x, intervals, want] : std::vector<std::tuple<V, int32_t, V>>{
           {{1, 2, 2, 3, 3}, 0, {2, 3}},
           {{1, 2, 3}, 0, {}},
           {{7}, 0, {}},
           {{5, 5, 5}, 0, {5}},
           {{1, 1 + 1e-16, 2, 2}, 0, {1, 2}},  // equal within one epsilon of the run's first value
           {{nan(), 4, 1, 4}, 0, {4}},
           {{0, 0.1, 0.2, 0.9, 1}, 2, {0.25}},
           {{0, 1}, 2, {0.25, 0.75}},
           {{3, 3}, 4, {3}},
           {{7}, 3, {7}},
           {{-INFINITY, INFINITY}, 0, {}},
           {{0, 1, 1}, 2147483647, {1 - 0.5 / 2147483647}},  // memory follows the data, not the bins
       }) {
    EXPECT_EQ(modes(x, intervals), want) << x.size() << " values, " << intervals << " intervals";
  }
}

TEST(Descriptive, HistogramEdges) {
  jqrt::Array<double> x{0, 1, 2, 3, 4, 4}, flat{2, 2, 2}, centres;
  jqrt::Array<int32_t> counts;
  int32_t k = 4, err = 9;
  EXPECT_EQ(histgran_head(x.h(), &k, counts.h(), centres.h(), &err), 0);
  EXPECT_EQ(counts.values(), (std::vector<int32_t>{1, 1, 1, 3}));  // the maximum lands in the last bin
  EXPECT_EQ(centres.values(), (V{0.5, 1.5, 2.5, 3.5}));
  k = 3;
  EXPECT_EQ(histgran_head(flat.h(), &k, counts.h(), centres.h(), &err), 0);
  EXPECT_EQ(counts.values(), (std::vector<int32_t>{0, 0, 3}));
  EXPECT_EQ(centres.values(), (V{2, 2, 2}));
  // A range too wide for (x - min) k still bins every value.
  jqrt::Array<double> wide{-0.5e308, 0.5e308, 1e308};
  k = 2;
  EXPECT_EQ(histgran_head(wide.h(), &k, counts.h(), centres.h(), &err), 0);
  EXPECT_EQ(counts.values(), (std::vector<int32_t>{1, 2}));
}

TEST(Descriptive, FailuresGiveNaNAndTheirCodes) {
  int32_t err;
  auto with = [&](double r) { return std::pair(r, err); };
  jqrt::Array<std::complex<double>> none;
  double r = 0;
  const std::vector<std::tuple<const char*, std::function<std::pair<double, int32_t>()>, int32_t>> cases = {
      {"mean of nothing", [] { return scalar(Mean_head, {}); }, -20003},
      {"RMS of nothing", [] { return scalar(RMS_head, {}); }, -20003},
      {"median of nothing", [] { return scalar(Median_head, {}); }, -20003},
      {"median of a NaN", [] { return scalar(Median_head, {1, nan(), 3}); }, -20104},
      {"median of an infinity", [] { return scalar(Median_head, {INFINITY, 2}); }, -20104},
      {"median without scratch",
       [] {
         jq::fail_scratch_allocation(1);
         return scalar(Median_head, {1, 2});
       },
       -20001},
      {"moment of nothing", [&] { return with(moment({}, 2, &err)); }, -20003},
      {"moment of order 0", [&] { return with(moment({1, 2}, 0, &err)); }, -20021},
      {"MSE against nothing",
       [&] {
         jqrt::Array<double> x{1, 2}, e;
         MSE_head(x.h(), e.h(), &r, &err);
         return with(r);
       },
       -20003},
      {"complex RMS of nothing", [&] { return std::pair(r, CxRMS_head(none.h(), &r)); }, -20003},
  };
  for (const auto& [what, call, code] : cases) {
    const auto [result, got] = call();
    jq::fail_scratch_allocation(0);
    EXPECT_EQ(got, code) << what;
    EXPECT_TRUE(std::isnan(result)) << what;
  }
  // A negative count reads as empty.
  jqrt::Array<double> corrupt(1);
  corrupt.set_dims(-4);
  EXPECT_EQ(Mean_head(corrupt.h(), &r, &err), 0);
  EXPECT_EQ(err, -20003);
}

TEST(Descriptive, ArrayOutputsAreEmptiedOnFailure) {
  jqrt::Array<double> x{0, 1, 1}, e, edges{0, 1}, down{0, 2, 1};
  auto hist = [](jqrt::Array<double>& data, int32_t k) {
    return [&data, k](uint8_t** centres) {
      jqrt::Array<int32_t> counts(2);
      int32_t kk = k, err = 9;
      const int32_t rc = histgran_head(data.h(), &kk, counts.h(), centres, &err);
      EXPECT_EQ(counts.size(), 0);
      return jqtest::reported(rc, err);
    };
  };
  auto mode = [](jqrt::Array<double>& data, int32_t k, int64_t scratch = 0) {
    return [&data, k, scratch](uint8_t** m) {
      jq::fail_scratch_allocation(scratch);
      const int32_t code = ModeH(data.h(), k, m);
      jq::fail_scratch_allocation(0);
      return code;
    };
  };
  jqtest::expect_rejections<double>({
      {"histogram of nothing", -20003, hist(e, 2)},
      {"histogram without bins", -20003, hist(x, 0)},
      {"histogram, counts not sized", -20001, hist(x, 2), 1},
      {"histogram, centres not sized", -20001, hist(x, 2), 2},
      {"mode of nothing", -20003, mode(e, 0)},
      {"mode, output not sized", -20001, mode(x, 0), 1},
      {"mode, sort copy not allocated", -20001, mode(x, 0, 1)},
      {"binned mode, bins not allocated", -20001, mode(x, 3, 1)},
  });
  jqtest::expect_rejections<int32_t>({
      {"edges: none", -20006, [&](uint8_t** c) { return GenHistH(x.h(), e.h(), c); }},
      {"edges: decreasing", -20016, [&](uint8_t** c) { return GenHistH(x.h(), down.h(), c); }},
      {"edges: no data", -20003, [&](uint8_t** c) { return GenHistH(e.h(), x.h(), c); }},
      {"edges: counts not sized", -20001, [&](uint8_t** c) { return GenHistH(x.h(), edges.h(), c); }, 1},
  });
}

TEST(Descriptive, ContingencyTables) {
  double r;
  int32_t err;
  for (const Table& t : kTables) {
    std::vector<std::vector<double>> rows(t.rows);
    for (int32_t i = 0; i < t.rows; ++i) rows[i].assign(&t.counts[i * t.cols], &t.counts[(i + 1) * t.cols]);
    jqrt::Array2<double> m = jqrt::Array2<double>::rows(rows);
    EXPECT_EQ(Contingency_head(m.h(), &r, &err), 0);
    EXPECT_EQ(err, 0);
    EXPECT_NEAR(r, t.chi2, 1e-12 * t.chi2) << t.rows << "x" << t.cols;
  }
  for (auto [rows, code] : std::vector<std::pair<std::vector<V>, int32_t>>{
           {{}, -20003}, {{{1, 2}, {3, nan()}}, -20104}, {{{1, -2}, {3, 4}}, -20004}, {{{1, 0}, {3, 0}}, -20061}}) {
    jqrt::Array2<double> m = jqrt::Array2<double>::rows(rows);
    EXPECT_EQ(Contingency_head(m.h(), &r, &err), 0);
    EXPECT_EQ(err, code);
    EXPECT_TRUE(std::isnan(r));
  }
}
