// Polynomial evaluation by Horner's rule, highest power first.
#pragma once
#include <cstddef>

namespace jq::special {

template <class T, size_t N> inline T horner(const double (&c)[N], T x) {
  T r = c[0];
  for (size_t i = 1; i < N; ++i) r = r * x + c[i];
  return r;
}

}  // namespace jq::special
