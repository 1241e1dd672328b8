// Helpers shared by the tests: the rules every export follows on bad input,
// checked over a table of cases.
#pragma once
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <limits>
#include <vector>

#include "jqrt.hpp"

namespace jqtest {

inline double nan() { return std::numeric_limits<double>::quiet_NaN(); }

// The code an export with an error out-parameter reports, provided its
// result follows the rule: 0, or the host's own status after a failed
// resize. Any other result becomes 1, which no export reports. The error is
// taken by reference so that it is read after the call in reported(f(&e), e).
inline int32_t reported(int32_t result, const int32_t& error) {
  return (error == -20001 ? result != 0 : result == 0) ? error : 1;
}

// Overwrites the count of a 1-D block without reallocating it: 0 to present
// an empty array, a negative value as a corrupt host block would hold.
inline uint8_t** with_count(uint8_t** h, int32_t n) {
  reinterpret_cast<int32_t*>(*h)[0] = n;
  return h;
}

// One rejected call: `call` gets a fresh, non-empty output handle and returns
// the code the export reported; `fail` makes that resize (1 = the first) fail.
struct Rejection {
  const char* what;
  int32_t code;
  std::function<int32_t(uint8_t** out)> call;
  int32_t fail = 0;
};

// Runs every case on a fresh output of T: the code must match, the output
// must end empty, and no host block may be left behind.
template <class T, int Dims = 1>
void expect_rejections(const std::vector<Rejection>& cases) {
  for (const Rejection& c : cases) {
    SCOPED_TRACE(c.what);
    const int64_t live = jqrt_live_blocks();
    {
      jqrt::Array<T, Dims> out(3, 2);
      int32_t code;
      {
        jqrt::FailResize fail(c.fail);
        code = c.call(out.h());
      }
      EXPECT_EQ(code, c.code);
      EXPECT_EQ(out.rows(), 0);
      if (Dims == 2) {
        EXPECT_EQ(out.cols(), 0);
      }
    }
    EXPECT_EQ(jqrt_live_blocks(), live) << "a host block was left behind";
  }
}

}  // namespace jqtest
