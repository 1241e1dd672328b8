// The module's life in the process: loaded before main, and a thread that
// used it hands its buffers back when it ends.
#include <thread>

#include "jqanlys.h"
#include "linalg/module.hpp"
#include "support.hpp"

namespace {

TEST(Module, LoadedAtStartAndBound) { EXPECT_NE(jq::linalg::routines(), nullptr); }

TEST(Module, ThreadEndReleasesItsBuffers) {
#if defined(_WIN32)
  GTEST_SKIP() << "linked into a program, the library gets no thread notifications on Windows";
#endif
  const int64_t before = jq::linalg::thread_releases();
  std::thread([] {
    auto a = jqrt::Array2<double>::rows({{2, 1, 0}, {1, 2, 0}, {0, 0, 1}});
    double det;
    int32_t st;
    Determinant_head(a.h(), 0, &det, &st);
    EXPECT_EQ(st, 0);
  }).join();
  EXPECT_EQ(jq::linalg::thread_releases(), before + 1);
  // A thread that never touched the module has nothing to hand back.
  std::thread([] {}).join();
  EXPECT_EQ(jq::linalg::thread_releases(), before + 1);
}

}  // namespace
