// Helpers shared by the tests.
#pragma once
#include <cmath>
#include <limits>

namespace jqtest {

inline double nan() { return std::numeric_limits<double>::quiet_NaN(); }

}  // namespace jqtest
