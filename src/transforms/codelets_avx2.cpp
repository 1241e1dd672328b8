// The generated butterflies built for AVX2 (see CMakeLists.txt); chosen at
// run time only on processors that have it.
#define JQ_CODELET_NS avx2
#include "transforms/codelets_body.hpp"
