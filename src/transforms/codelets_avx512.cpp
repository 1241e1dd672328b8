// The generated butterflies built with AVX-512 registers but four lanes, so
// that they compute exactly what the AVX2 ones do; chosen at run time only
// on processors that have it.
#define JQ_CODELET_NS avx512
#include "transforms/codelets_body.hpp"
