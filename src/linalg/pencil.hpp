// The generalized Schur form of a square pencil (A, B) taken step by step,
// so that its blocks can be reordered: B triangularised by an LQ of its
// row-major data, the pencil to Hessenberg-triangular form, QZ iteration,
// then the requested moves. Row-major data, T double or cdouble; inputs
// already validated.
#pragma once
#include <cstdint>

#include "linalg/frame.hpp"

namespace jq::linalg {

// Which eigenvalues a sorted form puts first (the selected ones keep their
// relative order, and so do the others): those with real part below 0,
// above 0, modulus below 1, modulus above 1. An infinite eigenvalue (beta 0)
// counts only as outside the unit circle; 0 / 0 never counts.
enum PencilSort : int32_t { kSortNone = 0, kSortLeft = 1, kSortRight = 2, kSortInside = 3, kSortOutside = 4 };

// What to do with the form once computed: nothing, move the block at row
// `from` to row `to` (0-based), or sort by `sort`.
struct PencilOrder {
  int32_t from = -1, to = -1;
  int32_t sort = kSortNone;
};

// A = Q S Z^H and B = Q T Z^H with Q, Z unitary, T upper triangular and S
// upper triangular (real data: quasi upper triangular, 2 x 2 blocks for
// complex pairs). The generalized eigenvalues are alpha[j] / beta[j] with
// beta real and not negative; T's diagonal is made so too where S's block
// is 1 x 1, and there alpha and beta are S's and T's diagonal elements.
// selected (may be null) receives how many eigenvalues the sort put first.
// kNoConvergence when QZ fails or a move is refused as too ill-conditioned.
template <class T>
int32_t pencil_schur(const T* a, const T* b, int32_t n, const PencilOrder& order, T* s, T* t, T* q, T* z,
                     cdouble* alpha, double* beta, int32_t* selected);

}  // namespace jq::linalg
