// Integration of equally spaced samples by the Newton-Cotes rules, in one,
// two and three dimensions.
#pragma once
#include <cstddef>
#include <cstdint>

namespace jq::integ {

enum Rule : int32_t { kTrapezoid = 0, kSimpson = 1, kSimpson38 = 2, kBode = 3 };

// -20061 for an unknown rule, -20008 when a dimension has fewer samples than
// the rule's panel (2, 3, 4 or 5). The absolute spacing is used.
int32_t check_rule(int32_t rule, int32_t points);

// The integral of n samples y[0], y[stride], ... spaced h apart. The rule and
// n must have passed check_rule.
double integrate(const double* y, int32_t n, ptrdiff_t stride, double h, int32_t rule);

// rows x cols samples, row-major: h_col between neighbours in a row, h_row
// between rows. planes x rows x cols for three dimensions.
int32_t integrate_2d(const double* y, int32_t rows, int32_t cols, double h_row, double h_col, int32_t rule,
                     double* result);
int32_t integrate_3d(const double* y, int32_t planes, int32_t rows, int32_t cols, double h_plane, double h_row,
                     double h_col, int32_t rule, double* result);

}  // namespace jq::integ
