// Matrix products, determinants, inverses and linear solves. Callers have
// validated shapes and finiteness; sizes are at least 1 unless said otherwise.
// Matrices are row-major; T is double or cdouble throughout.
#pragma once
#include <cstdint>

#include "linalg/frame.hpp"

namespace jq::linalg {

// Matrix types of a determinant.
enum MatrixType : int32_t { kGeneral = 0, kPositiveDefinite = 1, kLowerTriangular = 2, kUpperTriangular = 3 };

// Determinant of an n x n matrix of the given type (0..3). A positive
// definite matrix that is not gives 0 and kNotPosDef; a singular general one
// gives 0 and kOk.
template <class T> int32_t determinant(const T* a, int32_t n, int32_t type, T* det);

// R (m x n) = A (m x k) * B (k x n). k = 0 fills R with NaN. With aligned the
// operands and the result go through aligned copies.
template <class T> int32_t matrix_product(const T* a, int32_t m, int32_t k, const T* b, int32_t n, T* r, bool aligned);

// y (m) = A (m x n) * x (n); with aligned through aligned copies.
template <class T> int32_t matrix_vector(const T* a, int32_t m, int32_t n, const T* x, T* y, bool aligned);

// Inverse of an n x n matrix through LU; kSingular for a singular matrix.
template <class T> int32_t inverse_lu(const T* a, int32_t n, T* inv);

// X (n x k) solving A X = B for square A (n x n) through LU; kSingular for a
// singular matrix.
template <class T> int32_t solve_lu(const T* a, int32_t n, const T* b, int32_t k, T* x);

// Column-major copy of a row-major rows x cols matrix, leading dimension ld.
template <class T> int32_t to_column_major(const T* a, int32_t rows, int32_t cols, Buffer<T>& out, int32_t ld);
// Scatters the first rows of a column-major buffer back into row-major form.
template <class T> void from_column_major(const T* buf, int32_t ld, int32_t rows, int32_t cols, T* a);

}  // namespace jq::linalg
