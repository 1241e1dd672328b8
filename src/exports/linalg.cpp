// Linear-algebra exports: read the matrices, check them in the family's
// order, size the outputs, compute through the module, report the status.
#include <cmath>
#include <limits>

#include "frame/export.hpp"
#include "jqanlys.h"

#include "linalg/basic.hpp"
#include "linalg/decompose.hpp"
#include "linalg/dense.hpp"
#include "linalg/functions.hpp"
#include "linalg/generated.hpp"
#include "linalg/packed.hpp"
#include "linalg/pencil.hpp"
#include "linalg/structured.hpp"
#include "linalg/svd.hpp"

using namespace jq;
using namespace jq::linalg;

namespace {

template <class T> using Mat = Array2<const T>;

int64_t count(int32_t rows, int32_t cols) { return int64_t{rows} * cols; }
template <class T> bool non_finite(const Mat<T>& a) { return has_non_finite(a.data(), count(a.rows(), a.cols())); }
template <class T> bool non_finite(const Array1<const T>& v) { return has_non_finite(v.data(), v.size()); }

// A scalar output the caller did not provide is written to a local instead.
#define JQ_SCALAR_OUT(p) \
  std::remove_pointer_t<decltype(p)> p##_local{}; \
  if (!p) p = &p##_local

// The status argument is cleared on entry.
void clear(int32_t* status) {
  if (status) *status = kOk;
}

// Scalar results: NaN on an error, except where the routine's own value
// stands (a determinant of 0 for a matrix that is not positive definite).
template <class S> int32_t report_value(int32_t code, S* value, int32_t* status, bool keep = false) {
  return report_scalar(code, keep ? nullptr : value, status);
}

// The element type of an export's scalar result.
template <class T> struct Scalar;
template <> struct Scalar<double> { using type = double; };
template <> struct Scalar<cdouble> { using type = JQComplex; };

// Square-matrix inputs: empty, then not square, then the selectors (given
// the order), then non-finite.
template <class T> int32_t square_checks(const Mat<T>& a, bool selectors_valid(int32_t, int32_t, int32_t) = nullptr,
                                         int32_t s1 = 0, int32_t s2 = 0) {
  if (a.empty()) return kEmptyInput;
  if (a.rows() != a.cols()) return kDimMismatch;
  if (selectors_valid && !selectors_valid(a.rows(), s1, s2)) return kBadSelector;
  return non_finite(a) ? kNonFiniteMatrix : kOk;
}

template <class T> int32_t determinant_export(Handle m, int32_t type, typename Scalar<T>::type* det, int32_t* status) {
  JQ_SCALAR_OUT(det);
  clear(status);
  Mat<T> a(m);
  int32_t code = a.empty() ? kEmptyInput : a.rows() != a.cols() ? kDimMismatch : kOk;
  if (!code && (type < 0 || type > 3)) code = kBadSelector;
  if (!code && non_finite(a)) code = kNonFiniteMatrix;
  T value = 0.0;
  if (!code) code = determinant(a.data(), a.rows(), type, &value);
  if (code >= 0 || code == kNotPosDef) *reinterpret_cast<T*>(det) = value;
  return report_value(code, det, status, code == kNotPosDef);
}

template <class T> int32_t product_export(Handle a, Handle b, Handle r, int32_t aligned, int32_t* status) {
  clear(status);
  Mat<T> x(a), y(b);
  Out2<T> res(r);
  Outputs out(res);
  if (x.cols() != y.rows()) return out.report(kIncompatibleDims, status);
  if (x.rows() < 0 || x.cols() < 0 || y.cols() < 0) return out.report(kEmptyInput, status);
  if (!out.size(res, x.rows(), y.cols())) return out.report(kNoMemory, status);
  if (x.rows() == 0 || y.cols() == 0) return out.report(kOk, status);
  return out.report(matrix_product(x.data(), x.rows(), x.cols(), y.data(), y.cols(), res.data(), aligned != 0),
                    status);
}

template <class T> int32_t inverse_export(Handle m, Handle inv, int32_t* status) {
  clear(status);
  Mat<T> a(m);
  Out2<T> res(inv);
  Outputs out(res);
  if (int32_t code = square_checks(a)) return out.report(code, status);
  if (!out.size(res, a.rows(), a.rows())) return out.report(kNoMemory, status);
  return out.report(inverse_lu(a.data(), a.rows(), res.data()), status);
}

// Right-hand sides of a solver: a vector (Dims 1) or a matrix (Dims 2).
template <class T, int Dims> struct Rhs {
  int32_t rows, k;
  const T* data;
  explicit Rhs(Handle h) {
    if constexpr (Dims == 1) {
      Array1<const T> v(h);
      rows = v.size(), k = 1, data = v.data();
    } else {
      Mat<T> v(h);
      rows = v.rows(), k = v.cols(), data = v.data();
    }
  }
};

template <class T, int Dims> bool size_solution(Outputs& out, Out<T, Dims>& x, int32_t rows, int32_t k) {
  if constexpr (Dims == 1)
    return out.size(x, rows);
  else
    return out.size(x, rows, k);
}

// Solvers of A X = B with B a vector (Dims 1) or a matrix of right-hand
// sides (Dims 2): empty, A not square (where it must be), B's rows, then
// finiteness; the solution has columns(A) rows.
template <class T, int Dims, class F>
int32_t solver_export(Handle m, Handle rhs, Handle x, bool square, int32_t* status, F compute) {
  clear(status);
  Mat<T> a(m);
  Rhs<T, Dims> b(rhs);
  Out<T, Dims> res(x);
  Outputs out(res);
  if (a.empty() || b.rows < 1 || b.k < 1) return out.report(kEmptyInput, status);
  if (square && a.rows() != a.cols()) return out.report(kDimMismatch, status);
  if (b.rows != a.rows()) return out.report(Dims == 1 ? kLengthMismatch : kIncompatibleDims, status);
  if (non_finite(a) || has_non_finite(b.data, count(b.rows, b.k))) return out.report(kNonFiniteMatrix, status);
  if (!size_solution(out, res, a.cols(), b.k)) return out.report(kNoMemory, status);
  return out.report(compute(a, b, res.data()), status);
}

template <class T, int Dims> int32_t solve_export(Handle m, Handle rhs, Handle x, int32_t* status) {
  return solver_export<T, Dims>(m, rhs, x, true, status, [](const Mat<T>& a, const Rhs<T, Dims>& b, T* res) {
    return solve_lu(a.data(), b.rows, b.data, b.k, res);
  });
}

}  // namespace

JQ_EXPORT int32_t MatrixMul_head(JQMatF64 a, JQMatF64 b, JQMatF64 r, int32_t* status) {
  return product_export<double>(a, b, r, 0, status);
}
JQ_EXPORT int32_t MatrixMulAligned_head(JQMatF64 a, JQMatF64 b, JQMatF64 r, int32_t aligned, int32_t* status) {
  return product_export<double>(a, b, r, aligned, status);
}
JQ_EXPORT int32_t AxBCxCIN(JQMatC128 a, JQMatC128 b, JQMatC128 r, int32_t* status) {
  return product_export<cdouble>(a, b, r, 0, status);
}
JQ_EXPORT int32_t AxBCxAlignedCIN(JQMatC128 a, JQMatC128 b, JQMatC128 r, int32_t aligned, int32_t* status) {
  return product_export<cdouble>(a, b, r, aligned, status);
}

JQ_EXPORT int32_t Determinant_head(JQMatF64 a, int32_t type, double* det, int32_t* status) {
  return determinant_export<double>(a, type, det, status);
}
JQ_EXPORT int32_t CxDeterminant_head(JQMatC128 a, int32_t type, JQComplex* det, int32_t* status) {
  return determinant_export<cdouble>(a, type, det, status);
}

JQ_EXPORT int32_t InvMatrixLUDri_head(JQMatF64 a, JQMatF64 inverse, int32_t* status) {
  return inverse_export<double>(a, inverse, status);
}
JQ_EXPORT int32_t CxInvMatrixLUDri_head(JQMatC128 a, JQMatC128 inverse, int32_t* status) {
  return inverse_export<cdouble>(a, inverse, status);
}

JQ_EXPORT int32_t EqsByLUDri_head(JQMatF64 a, JQArrF64 b, JQArrF64 x, int32_t* status) {
  return solve_export<double, 1>(a, b, x, status);
}
JQ_EXPORT int32_t CxEqsByLUDri_head(JQMatC128 a, JQArrC128 b, JQArrC128 x, int32_t* status) {
  return solve_export<cdouble, 1>(a, b, x, status);
}
JQ_EXPORT int32_t EqsSetByLUDri_head(JQMatF64 a, JQMatF64 b, JQMatF64 x, int32_t* status) {
  return solve_export<double, 2>(a, b, x, status);
}
JQ_EXPORT int32_t CxEqsSetByLUDri_head(JQMatC128 a, JQMatC128 b, JQMatC128 x, int32_t* status) {
  return solve_export<cdouble, 2>(a, b, x, status);
}

// ---- simple members -----------------------------------------------------------------------

namespace {

// Scalar-valued members of one matrix: empty, (square), selector, finiteness.
template <class T, class S, class F>
int32_t scalar_of_matrix(Handle m, bool square, bool selector_ok, S* result, int32_t* status, F compute) {
  clear(status);
  Mat<T> a(m);
  int32_t code = a.empty() ? kEmptyInput : square && a.rows() != a.cols() ? kDimMismatch : kOk;
  if (!code && !selector_ok) code = kBadSelector;
  if (!code && non_finite(a)) code = kNonFiniteMatrix;
  if (!code) code = compute(a);
  return report_value(code, result, status);
}

template <class T> int32_t transpose_export(Handle m, Handle t, int32_t* status) {
  clear(status);
  Mat<T> a(m);
  Out2<T> res(t);
  Outputs out(res);
  if (a.empty()) return out.report(kEmptyInput, status);
  if (!out.size(res, a.cols(), a.rows())) return out.report(kNoMemory, status);
  return out.report(transpose_matrix(a.data(), a.rows(), a.cols(), res.data()), status);
}

template <class T> int32_t trace_export(Handle m, typename Scalar<T>::type* tr, int32_t* status) {
  JQ_SCALAR_OUT(tr);
  clear(status);
  Mat<T> a(m);
  if (a.empty()) return report_value(kEmptyInput, tr, status);
  *reinterpret_cast<T*>(tr) = trace(a.data(), a.rows(), a.cols());
  return report_value(kOk, tr, status);
}

template <class T> int32_t norm_export(Handle m, int32_t type, double* norm, int32_t* status, bool cond) {
  JQ_SCALAR_OUT(norm);
  return scalar_of_matrix<T>(m, false, type >= 0 && type <= 3, norm, status, [&](const Mat<T>& a) -> int32_t {
    if (!cond) return matrix_norm(a.data(), a.rows(), a.cols(), type, norm);
    if (type != 0 && a.rows() != a.cols()) return kDimMismatch;
    return condition_number(a.data(), a.rows(), a.cols(), type, norm);
  });
}

template <class T> int32_t rank_export(Handle m, double tol, int32_t* rank, int32_t* status) {
  JQ_SCALAR_OUT(rank);
  clear(status);
  *rank = -1;
  Mat<T> a(m);
  int32_t code = a.empty() ? kEmptyInput : non_finite(a) ? kNonFiniteMatrix : kOk;
  if (!code) code = matrix_rank(a.data(), a.rows(), a.cols(), tol, rank);
  if (code < 0) *rank = -1;
  if (status) *status = code;
  return 0;
}

template <class T> int32_t pinv_export(Handle m, double tol, Handle p, int32_t* status) {
  clear(status);
  Mat<T> a(m);
  Out2<T> res(p);
  Outputs out(res);
  if (a.empty()) return out.report(kEmptyInput, status);
  if (non_finite(a)) return out.report(kNonFiniteMatrix, status);
  if (!out.size(res, a.cols(), a.rows())) return out.report(kNoMemory, status);
  return out.report(pseudo_inverse(a.data(), a.rows(), a.cols(), tol, res.data()), status);
}

template <class T> int32_t dot_export(Handle x, Handle y, typename Scalar<T>::type* dot, int32_t* status) {
  JQ_SCALAR_OUT(dot);
  clear(status);
  Array1<const T> u(x), v(y);
  int32_t code = u.empty() || v.empty() ? kEmptyInput : u.size() != v.size() ? kLengthMismatch : ready();
  if (!code) *reinterpret_cast<T*>(dot) = Blas<T>::dot(u.size(), u.data(), v.data());
  return report_value(code, dot, status);
}

template <class T> int32_t outer_export(Handle x, Handle y, Handle r, int32_t* status) {
  clear(status);
  Array1<const T> u(x), v(y);
  Out2<T> res(r);
  Outputs out(res);
  if (u.empty() || v.empty()) return out.report(kEmptyInput, status);
  if (!out.size(res, u.size(), v.size())) return out.report(kNoMemory, status);
  return out.report(outer_product(u.data(), u.size(), v.data(), v.size(), res.data()), status);
}

template <class T> int32_t kron_export(Handle a, Handle b, Handle r, int32_t* status) {
  clear(status);
  Mat<T> x(a), y(b);
  Out2<T> res(r);
  Outputs out(res);
  if (x.empty() || y.empty()) return out.report(kEmptyInput, status);
  const int64_t rows = int64_t{x.rows()} * y.rows(), cols = int64_t{x.cols()} * y.cols();
  if (rows > INT32_MAX || cols > INT32_MAX || rows * cols > INT32_MAX) return out.report(kNoMemory, status);
  if (!out.size(res, static_cast<int32_t>(rows), static_cast<int32_t>(cols))) return out.report(kNoMemory, status);
  return out.report(kronecker(x.data(), x.rows(), x.cols(), y.data(), y.rows(), y.cols(), res.data()), status);
}

template <class T> int32_t axvect_export(Handle m, Handle x, Handle y, int32_t aligned, int32_t* status) {
  clear(status);
  Mat<T> a(m);
  Array1<const T> v(x);
  Out<T> res(y);
  Outputs out(res);
  if (a.rows() < 0 || a.cols() < 0 || v.size() < 0) return out.report(kNegativeSize, status);
  if (a.empty() || v.empty()) return out.report(kEmptyInput, status);
  if (a.cols() != v.size()) return out.report(kLengthMismatch, status);
  if (!out.size(res, a.rows())) return out.report(kNoMemory, status);
  return out.report(matrix_vector(a.data(), a.rows(), a.cols(), v.data(), res.data(), aligned != 0), status);
}

// A row vector times a matrix: the product routine with one row.
template <class T> int32_t vectxa_export(Handle x, Handle m, Handle y, int32_t aligned, int32_t* status) {
  clear(status);
  Array1<const T> v(x);
  Mat<T> a(m);
  Out<T> res(y);
  Outputs out(res);
  if (v.empty() || a.empty()) return out.report(kEmptyInput, status);
  if (v.size() != a.rows()) return out.report(kIncompatibleDims, status);
  if (!out.size(res, a.cols())) return out.report(kNoMemory, status);
  return out.report(matrix_product(v.data(), 1, v.size(), a.data(), a.cols(), res.data(), aligned != 0), status);
}

template <class T> int32_t vector_norm_export(Handle x, double p, int32_t normalize, double* norm, int32_t* status) {
  JQ_SCALAR_OUT(norm);
  clear(status);
  Array1<T> v(x);
  int32_t code = v.empty() ? kEmptyInput : std::isnan(p) ? kNonFiniteMatrix : p == 0 ? kZeroNormOrder : kOk;
  if (!code) code = vector_norm(v.data(), v.size(), p, normalize != 0, norm);
  // The vector is an in-place output too: a failed call empties it.
  Out<T> vo(x);
  Outputs out(vo);
  if (code < 0) out.fail(code);
  return report_value(code, norm, status);
}

}  // namespace

JQ_EXPORT int32_t Transpose_head(JQMatF64 a, JQMatF64 t, int32_t* status) { return transpose_export<double>(a, t, status); }
JQ_EXPORT int32_t CxTranspose_head(JQMatC128 a, JQMatC128 t, int32_t* status) { return transpose_export<cdouble>(a, t, status); }
JQ_EXPORT int32_t Trace_head(JQMatF64 a, double* trace, int32_t* status) { return trace_export<double>(a, trace, status); }
JQ_EXPORT int32_t CxTrace_head(JQMatC128 a, JQComplex* trace, int32_t* status) { return trace_export<cdouble>(a, trace, status); }
JQ_EXPORT int32_t Norm_head(JQMatF64 a, int32_t type, double* norm, int32_t* status) {
  return norm_export<double>(a, type, norm, status, false);
}
JQ_EXPORT int32_t CxNorm_head(JQMatC128 a, int32_t type, double* norm, int32_t* status) {
  return norm_export<cdouble>(a, type, norm, status, false);
}
JQ_EXPORT int32_t CondNumber_head(JQMatF64 a, int32_t type, double* cond, int32_t* status) {
  return norm_export<double>(a, type, cond, status, true);
}
JQ_EXPORT int32_t CxCondNumber_head(JQMatC128 a, int32_t type, double* cond, int32_t* status) {
  return norm_export<cdouble>(a, type, cond, status, true);
}
JQ_EXPORT int32_t Rank_head(JQMatF64 a, double tolerance, int32_t* rank, int32_t* status) {
  return rank_export<double>(a, tolerance, rank, status);
}
JQ_EXPORT int32_t CxRank_head(JQMatC128 a, double tolerance, int32_t* rank, int32_t* status) {
  return rank_export<cdouble>(a, tolerance, rank, status);
}
JQ_EXPORT int32_t PseudoInverse_head(JQMatF64 a, double tolerance, JQMatF64 pinv, int32_t* status) {
  return pinv_export<double>(a, tolerance, pinv, status);
}
JQ_EXPORT int32_t CxPseudoInverse_head(JQMatC128 a, double tolerance, JQMatC128 pinv, int32_t* status) {
  return pinv_export<cdouble>(a, tolerance, pinv, status);
}
JQ_EXPORT int32_t DotProduct_head(JQArrF64 x, JQArrF64 y, double* dot, int32_t* status) { return dot_export<double>(x, y, dot, status); }
JQ_EXPORT int32_t DotprodCx(JQArrC128 x, JQArrC128 y, JQComplex* dot, int32_t* status) { return dot_export<cdouble>(x, y, dot, status); }
JQ_EXPORT int32_t OuterProd_head(JQArrF64 x, JQArrF64 y, JQMatF64 r, int32_t* status) { return outer_export<double>(x, y, r, status); }
JQ_EXPORT int32_t OuterProdCx_head(JQArrC128 x, JQArrC128 y, JQMatC128 r, int32_t* status) {
  return outer_export<cdouble>(x, y, r, status);
}
JQ_EXPORT int32_t KroneckerProd_H(JQMatF64 a, JQMatF64 b, JQMatF64 r, int32_t* status) { return kron_export<double>(a, b, r, status); }
JQ_EXPORT int32_t CxKroneckerProd_H(JQMatC128 a, JQMatC128 b, JQMatC128 r, int32_t* status) {
  return kron_export<cdouble>(a, b, r, status);
}
JQ_EXPORT int32_t AxVect_head(JQMatF64 a, JQArrF64 x, JQArrF64 y, int32_t* status) { return axvect_export<double>(a, x, y, 0, status); }
JQ_EXPORT int32_t AxVectAligned_head(JQMatF64 a, JQArrF64 x, JQArrF64 y, int32_t aligned, int32_t* status) {
  return axvect_export<double>(a, x, y, aligned, status);
}
JQ_EXPORT int32_t AxVectorCx(JQMatC128 a, JQArrC128 x, JQArrC128 y, int32_t* status) { return axvect_export<cdouble>(a, x, y, 0, status); }
JQ_EXPORT int32_t AxVectorCxAligned(JQMatC128 a, JQArrC128 x, JQArrC128 y, int32_t aligned, int32_t* status) {
  return axvect_export<cdouble>(a, x, y, aligned, status);
}
JQ_EXPORT int32_t vectxA_head(JQArrF64 x, JQMatF64 a, JQArrF64 y, int32_t* status) { return vectxa_export<double>(x, a, y, 0, status); }
JQ_EXPORT int32_t vectxAAligned_head(JQArrF64 x, JQMatF64 a, JQArrF64 y, int32_t aligned, int32_t* status) {
  return vectxa_export<double>(x, a, y, aligned, status);
}
JQ_EXPORT int32_t CxVectxA_head(JQArrC128 x, JQMatC128 a, JQArrC128 y, int32_t* status) {
  return vectxa_export<cdouble>(x, a, y, 0, status);
}
JQ_EXPORT int32_t CxVectxAAligned_head(JQArrC128 x, JQMatC128 a, JQArrC128 y, int32_t aligned, int32_t* status) {
  return vectxa_export<cdouble>(x, a, y, aligned, status);
}
JQ_EXPORT int32_t vectorNormH(JQArrF64 x, double p, int32_t normalize, double* norm, int32_t* status) {
  return vector_norm_export<double>(x, p, normalize, norm, status);
}
JQ_EXPORT int32_t CxVectorNormH(JQArrC128 x, double p, int32_t normalize, double* norm, int32_t* status) {
  return vector_norm_export<cdouble>(x, p, normalize, norm, status);
}

// ---- decompositions and solvers -----------------------------------------------------------

namespace {

template <class T> int32_t lu_export(Handle m, Handle piv, int32_t* parity, int32_t* status) {
  clear(status);
  if (parity) *parity = 0;
  Mat<T> a(m);
  Out2<T> mat(m);
  Out<int32_t> p(piv);
  Outputs out(mat, p);
  if (a.empty()) return out.report(kEmptyInput, status);
  if (non_finite(a)) return out.report(kNonFiniteMatrix, status);
  if (!out.size(p, a.rows())) return out.report(kNoMemory, status);
  int32_t par = 0;
  const int32_t code = lu(const_cast<T*>(a.data()), a.rows(), a.cols(), p.data(), &par);
  if (code >= 0 && parity) *parity = par;
  return out.report(code, status);
}

// One square matrix in, one square matrix out (factor or inverse).
template <class T, class F> int32_t square_to_square(Handle m, Handle r, int32_t* status, F compute) {
  clear(status);
  Mat<T> a(m);
  Out2<T> res(r);
  Outputs out(res);
  if (int32_t code = square_checks(a)) return out.report(code, status);
  if (!out.size(res, a.rows(), a.rows())) return out.report(kNoMemory, status);
  return out.report(compute(a.data(), a.rows(), res.data()), status);
}

// The caller's output already holds n x n elements and is written in place;
// any other shape is resized as usual.
template <class T> int32_t prealloc_inverse_export(Handle m, Handle inv, int32_t* status) {
  clear(status);
  Mat<T> a(m), given(inv);
  Out2<T> res(inv);
  Outputs out(res);
  if (int32_t code = square_checks(a)) return out.report(code, status);
  const int32_t n = a.rows();
  if ((given.rows() != n || given.cols() != n) && !out.size(res, n, n)) return out.report(kNoMemory, status);
  return out.report(inverse_cholesky(a.data(), n, res.data()), status);
}

template <class T> int32_t triangular_inverse_export(Handle m, int32_t type, Handle r, int32_t* status) {
  clear(status);
  Mat<T> a(m);
  Out2<T> res(r);
  Outputs out(res);
  int32_t code = a.empty() ? kEmptyInput : a.rows() != a.cols() ? kDimMismatch : type < 0 || type > 1 ? kBadSelector : kOk;
  if (!code && non_finite(a)) code = kNonFiniteMatrix;
  if (code) return out.report(code, status);
  if (!out.size(res, a.rows(), a.rows())) return out.report(kNoMemory, status);
  return out.report(inverse_triangular(a.data(), a.rows(), type == 0, res.data()), status);
}

template <class T> int32_t qr_export(Handle m, Handle q, Handle r, Handle piv, int32_t* status) {
  clear(status);
  Mat<T> a(m);
  Out2<T> qo(q), ro(r);
  Out<int32_t> po(piv);
  Outputs out(qo, ro, po);
  if (a.empty()) return out.report(kEmptyInput, status);
  if (non_finite(a)) return out.report(kNonFiniteMatrix, status);
  const int32_t k = std::min(a.rows(), a.cols());
  if (!out.size(qo, a.rows(), k) || !out.size(ro, k, a.cols()) || (piv && !out.size(po, a.cols())))
    return out.report(kNoMemory, status);
  return out.report(qr(a.data(), a.rows(), a.cols(), qo.data(), ro.data(), piv ? po.data() : nullptr), status);
}

// V from V^H (conjugate transpose), in place of a k x n block into n x k.
template <class T> int32_t adjoint(const T* vh, int32_t k, int32_t n, T* v) {
  if (int32_t rc = transpose_matrix(vh, k, n, v)) return rc;
  if constexpr (!std::is_same_v<T, double>)
    for (int64_t i = 0; i < int64_t{k} * n; ++i) v[i] = std::conj(v[i]);
  return kOk;
}

// Economy (full = false: U m x k, S k, V n x k) or full (U m x m, S as an
// m x n matrix, V n x n) decompositions A = U S V^H.
template <class T> int32_t svd_export(Handle m, Handle u, Handle s, Handle v, bool full, int32_t* status) {
  clear(status);
  Mat<T> a(m);
  Out2<T> uo(u), vo(v);
  Out<double> so(s);
  Out2<double> smat(s);
  const int32_t rows = a.rows(), cols = a.cols(), k = std::min(rows, cols);
  auto run = [&](Outputs& out, bool sized) {
    if (!sized) return out.report(kNoMemory, status);
    double* sdata = full ? smat.data() : so.data();
    Buffer<double> sv;
    Buffer<T> vh;
    const int32_t vr = full ? cols : k;
    if (sv.allocate(k) || vh.allocate(int64_t{vr} * cols)) return out.report(kNoMemory, status);
    int32_t code = svd(a.data(), rows, cols, full ? 'A' : 'S', sv.data(), uo.data(), vh.data());
    if (!code) code = adjoint(vh.data(), vr, cols, vo.data());
    if (!code) {
      for (int32_t i = 0; i < k; ++i) sdata[full ? static_cast<size_t>(i) * cols + i : i] = sv[i];
    }
    return out.report(code, status);
  };
  if (full) {
    Outputs out(uo, smat, vo);
    if (a.empty()) return out.report(kEmptyInput, status);
    if (non_finite(a)) return out.report(kNonFiniteMatrix, status);
    const bool sized = out.size(uo, rows, rows) && out.size(smat, rows, cols) && out.size(vo, cols, cols);
    if (sized) std::fill(smat.data(), smat.data() + int64_t{rows} * cols, 0.0);
    return run(out, sized);
  }
  Outputs out(uo, so, vo);
  if (a.empty()) return out.report(kEmptyInput, status);
  if (non_finite(a)) return out.report(kNonFiniteMatrix, status);
  return run(out, out.size(uo, rows, k) && out.size(so, k) && out.size(vo, cols, k));
}

template <class T> int32_t singular_values_export(Handle m, Handle s, int32_t* status) {
  clear(status);
  Mat<T> a(m);
  Out<double> so(s);
  Outputs out(so);
  if (a.empty()) return out.report(kEmptyInput, status);
  if (non_finite(a)) return out.report(kNonFiniteMatrix, status);
  if (!out.size(so, std::min(a.rows(), a.cols()))) return out.report(kNoMemory, status);
  return out.report(singular_values(a.data(), a.rows(), a.cols(), so.data()), status);
}

// Eigenvalues (V) and eigenvectors (X) of a square matrix.
template <class T, class V, class X, class F>
int32_t eigen_export(Handle m, Handle values, Handle vectors, int32_t* status, F compute) {
  clear(status);
  Mat<T> a(m);
  Out<V> vo(values);
  Out2<X> xo(vectors);
  Outputs out(vo, xo);
  if (int32_t code = square_checks(a)) return out.report(code, status);
  if (!out.size(vo, a.rows()) || !out.size(xo, a.rows(), a.rows())) return out.report(kNoMemory, status);
  return out.report(compute(a.data(), a.rows(), vo.data(), xo.data()), status);
}

// General (possibly non-square) least squares. warn_ok turns the
// rank-deficiency warning into success.
template <class T, int Dims>
int32_t least_squares_export(Handle m, Handle rhs, double tol, bool force_svd, bool warn_ok, Handle x, int32_t* status) {
  return solver_export<T, Dims>(m, rhs, x, false, status, [&](const Mat<T>& a, const Rhs<T, Dims>& b, T* res) {
    const int32_t code = least_squares(a.data(), a.rows(), a.cols(), b.data, b.k, tol, force_svd, res);
    return warn_ok && code == kWarnRankDeficient ? kOk : code;
  });
}

template <class T, int Dims> int32_t cholesky_solve_export(Handle m, Handle rhs, Handle x, int32_t* status) {
  return solver_export<T, Dims>(m, rhs, x, true, status, [](const Mat<T>& a, const Rhs<T, Dims>& b, T* res) {
    return solve_cholesky(a.data(), b.rows, b.data, b.k, res);
  });
}

// Reporting shape (a) with the singular values as the second output: the
// first pass learns their count, the second fills both outputs.
template <class T> int32_t gen_lin_eqs_2010(Handle m, Handle rhs, double tol, Handle x, Handle s) {
  Mat<T> a(m);
  Rhs<T, 1> b(rhs);
  Out<T> xo(x);
  Out<double> so(s);
  Outputs out(xo, so);
  if (a.empty() || b.rows < 1) return out.finish(kEmptyInput);
  if (b.rows != a.rows()) return out.finish(kLengthMismatch);
  if (non_finite(a) || has_non_finite(b.data, b.rows)) return out.finish(kNonFiniteMatrix);
  const int32_t k = std::min(a.rows(), a.cols());
  if (!out.size(xo, a.cols()) || !out.size(so, k)) return out.finish(kNoMemory);
  int32_t code = least_squares(a.data(), a.rows(), a.cols(), b.data, 1, tol, false, xo.data());
  if (code >= 0) code = singular_values(a.data(), a.rows(), a.cols(), so.data());
  return out.finish(code == kWarnRankDeficient ? kOk : code);
}

}  // namespace

JQ_EXPORT int32_t LU_head(JQMatF64 a, JQArrI32 pivots, int32_t* parity, int32_t* status) {
  return lu_export<double>(a, pivots, parity, status);
}
JQ_EXPORT int32_t CxLU_head(JQMatC128 a, JQArrI32 pivots, int32_t* parity, int32_t* status) {
  return lu_export<cdouble>(a, pivots, parity, status);
}
JQ_EXPORT int32_t FullCholesky_head(JQMatF64 a, JQMatF64 l, int32_t* status) {
  return square_to_square<double>(a, l, status, cholesky<double>);
}
JQ_EXPORT int32_t CxFullCholesky_head(JQMatC128 a, JQMatC128 l, int32_t* status) {
  return square_to_square<cdouble>(a, l, status, cholesky<cdouble>);
}
JQ_EXPORT int32_t InvMatrixChoDri_head(JQMatF64 a, JQMatF64 inverse, int32_t* status) {
  return square_to_square<double>(a, inverse, status, inverse_cholesky<double>);
}
JQ_EXPORT int32_t CxInvMatrixChoDri_head(JQMatC128 a, JQMatC128 inverse, int32_t* status) {
  return square_to_square<cdouble>(a, inverse, status, inverse_cholesky<cdouble>);
}
JQ_EXPORT int32_t PreallocInvMatrixChoDri_H(JQMatF64 a, JQMatF64 inverse, int32_t* status) {
  return prealloc_inverse_export<double>(a, inverse, status);
}
JQ_EXPORT int32_t CxPreallocInvMatrixChoDri_H(JQMatC128 a, JQMatC128 inverse, int32_t* status) {
  return prealloc_inverse_export<cdouble>(a, inverse, status);
}
JQ_EXPORT int32_t InvMatrixTriDri_head(JQMatF64 a, int32_t type, JQMatF64 inverse, int32_t* status) {
  return triangular_inverse_export<double>(a, type, inverse, status);
}
JQ_EXPORT int32_t CxInvMatrixTriDri_head(JQMatC128 a, int32_t type, JQMatC128 inverse, int32_t* status) {
  return triangular_inverse_export<cdouble>(a, type, inverse, status);
}
JQ_EXPORT int32_t qrd_head(JQMatF64 a, JQMatF64 q, JQMatF64 r, int32_t* status) { return qr_export<double>(a, q, r, nullptr, status); }
JQ_EXPORT int32_t Cxqrd_head(JQMatC128 a, JQMatC128 q, JQMatC128 r, int32_t* status) {
  return qr_export<cdouble>(a, q, r, nullptr, status);
}
JQ_EXPORT int32_t QRDecH(JQMatF64 a, JQMatF64 q, JQMatF64 r, JQArrI32 pivots, int32_t* status) {
  return qr_export<double>(a, q, r, pivots, status);
}
JQ_EXPORT int32_t CxQRDecH(JQMatC128 a, JQMatC128 q, JQMatC128 r, JQArrI32 pivots, int32_t* status) {
  return qr_export<cdouble>(a, q, r, pivots, status);
}
JQ_EXPORT int32_t SVD_head(JQMatF64 a, JQMatF64 u, JQArrF64 s, JQMatF64 v, int32_t* status) {
  return svd_export<double>(a, u, s, v, false, status);
}
JQ_EXPORT int32_t CxSVD_head(JQMatC128 a, JQMatC128 u, JQArrF64 s, JQMatC128 v, int32_t* status) {
  return svd_export<cdouble>(a, u, s, v, false, status);
}
JQ_EXPORT int32_t SVDEx_head(JQMatF64 a, JQMatF64 u, JQMatF64 s, JQMatF64 v, int32_t* status) {
  return svd_export<double>(a, u, s, v, true, status);
}
JQ_EXPORT int32_t CxSVDEx_head(JQMatC128 a, JQMatC128 u, JQMatF64 s, JQMatC128 v, int32_t* status) {
  return svd_export<cdouble>(a, u, s, v, true, status);
}
JQ_EXPORT int32_t SVDS_head(JQMatF64 a, JQArrF64 s, int32_t* status) { return singular_values_export<double>(a, s, status); }
JQ_EXPORT int32_t CxSVDS_head(JQMatC128 a, JQArrF64 s, int32_t* status) { return singular_values_export<cdouble>(a, s, status); }
JQ_EXPORT int32_t EigenValueVector_head(JQMatF64 a, JQArrC128 values, JQMatC128 vectors, int32_t* status) {
  return eigen_export<double, cdouble, cdouble>(a, values, vectors, status, eigen<double>);
}
JQ_EXPORT int32_t CxEigenValueVector_head(JQMatC128 a, JQArrC128 values, JQMatC128 vectors, int32_t* status) {
  return eigen_export<cdouble, cdouble, cdouble>(a, values, vectors, status, eigen<cdouble>);
}
JQ_EXPORT int32_t SymEvectorEvalue_head(JQMatF64 a, JQArrF64 values, JQMatF64 vectors, int32_t* status) {
  return eigen_export<double, double, double>(a, values, vectors, status, eigen_symmetric<double>);
}
JQ_EXPORT int32_t CxSymEvectorEvalue_head(JQMatC128 a, JQArrF64 values, JQMatC128 vectors, int32_t* status) {
  return eigen_export<cdouble, double, cdouble>(a, values, vectors, status, eigen_symmetric<cdouble>);
}
JQ_EXPORT int32_t EqsByCholeskyDri_head(JQMatF64 a, JQArrF64 b, JQArrF64 x, int32_t* status) {
  return cholesky_solve_export<double, 1>(a, b, x, status);
}
JQ_EXPORT int32_t CxEqsByCholeskyDri_head(JQMatC128 a, JQArrC128 b, JQArrC128 x, int32_t* status) {
  return cholesky_solve_export<cdouble, 1>(a, b, x, status);
}
JQ_EXPORT int32_t EqsSetByCholeskyDri_head(JQMatF64 a, JQMatF64 b, JQMatF64 x, int32_t* status) {
  return cholesky_solve_export<double, 2>(a, b, x, status);
}
JQ_EXPORT int32_t CxEqsSetByCholeskyDri_head(JQMatC128 a, JQMatC128 b, JQMatC128 x, int32_t* status) {
  return cholesky_solve_export<cdouble, 2>(a, b, x, status);
}
JQ_EXPORT int32_t GenLinEqs_head(JQMatF64 a, JQArrF64 b, JQArrF64 x, int32_t* status) {
  return least_squares_export<double, 1>(a, b, -1.0, false, true, x, status);
}
JQ_EXPORT int32_t CxGenLinEqs_head(JQMatC128 a, JQArrC128 b, JQArrC128 x, int32_t* status) {
  return least_squares_export<cdouble, 1>(a, b, -1.0, false, true, x, status);
}
JQ_EXPORT int32_t GenLinEqs82_head(JQMatF64 a, JQArrF64 b, double tolerance, JQArrF64 x, int32_t* status) {
  return least_squares_export<double, 1>(a, b, tolerance, false, true, x, status);
}
JQ_EXPORT int32_t CxGenLinEqs82_head(JQMatC128 a, JQArrC128 b, double tolerance, JQArrC128 x, int32_t* status) {
  return least_squares_export<cdouble, 1>(a, b, tolerance, false, true, x, status);
}
JQ_EXPORT int32_t GenLinEqsbySVD2011_head(JQMatF64 a, JQArrF64 b, double tolerance, JQArrF64 x, int32_t* status) {
  return least_squares_export<double, 1>(a, b, tolerance, true, false, x, status);
}
JQ_EXPORT int32_t CxGenLinEqsbySVD2011_head(JQMatC128 a, JQArrC128 b, double tolerance, JQArrC128 x, int32_t* status) {
  return least_squares_export<cdouble, 1>(a, b, tolerance, true, false, x, status);
}
JQ_EXPORT int32_t GenLinEqs2010_head(JQMatF64 a, JQArrF64 b, double tolerance, JQArrF64 x, JQArrF64 singular_values) {
  return gen_lin_eqs_2010<double>(a, b, tolerance, x, singular_values);
}
JQ_EXPORT int32_t CxGenLinEqs2010_head(JQMatC128 a, JQArrC128 b, double tolerance, JQArrC128 x, JQArrF64 singular_values) {
  return gen_lin_eqs_2010<cdouble>(a, b, tolerance, x, singular_values);
}
JQ_EXPORT int32_t EqsSetBySVDDri_head(JQMatF64 a, JQMatF64 b, JQMatF64 x, int32_t* status) {
  return least_squares_export<double, 2>(a, b, -1.0, false, false, x, status);
}
JQ_EXPORT int32_t CxEqsSetBySVDDri_head(JQMatC128 a, JQMatC128 b, JQMatC128 x, int32_t* status) {
  return least_squares_export<cdouble, 2>(a, b, -1.0, false, false, x, status);
}
JQ_EXPORT int32_t EqsSetBySVDDri82_head(JQMatF64 a, JQMatF64 b, double tolerance, JQMatF64 x, int32_t* status) {
  return least_squares_export<double, 2>(a, b, tolerance, false, false, x, status);
}
JQ_EXPORT int32_t CxEqsSetBySVDDri82_head(JQMatC128 a, JQMatC128 b, double tolerance, JQMatC128 x, int32_t* status) {
  return least_squares_export<cdouble, 2>(a, b, tolerance, false, false, x, status);
}

// ---- given factors, structures, properties and forms ---------------------------------------

namespace {

// LU factors and pivots as LU_head returns them.
template <class T, class F> int32_t from_lu_export(Handle lu, Handle piv, Handle out_h, int dims, int32_t* status, F compute) {
  clear(status);
  Mat<T> f(lu);
  Array1<const int32_t> p(piv);
  Out<T> vec(out_h);
  Out2<T> mat(out_h);
  Outputs out1(vec), out2(mat);
  Outputs& out = dims == 1 ? out1 : out2;
  const int32_t n = f.rows();
  int32_t code = f.empty() || p.empty() ? kEmptyInput : f.rows() != f.cols() ? kDimMismatch
                 : p.size() != n ? kLengthMismatch : non_finite(f) ? kNonFiniteMatrix : kOk;
  for (int32_t i = 0; !code && i < n; ++i)
    if (p[i] < i || p[i] >= n) code = kBadSelector;
  if (code) return out.report(code, status);
  return compute(f, p, out, vec, mat);
}

template <class T> int32_t lu_solve_export(Handle lu, Handle piv, Handle b, Handle x, int32_t* status) {
  Array1<const T> v(b);
  if (v.empty() || Mat<T>(lu).empty()) {
    Out<T> o(x);
    Outputs out(o);
    clear(status);
    return out.report(kEmptyInput, status);
  }
  return from_lu_export<T>(lu, piv, x, 1, status, [&](const Mat<T>& f, const Array1<const int32_t>& p, Outputs& out, Out<T>& vec, Out2<T>&) {
    if (v.size() != f.rows()) return out.report(kLengthMismatch, status);
    if (non_finite(v)) return out.report(kNonFiniteMatrix, status);
    if (!out.size(vec, f.rows())) return out.report(kNoMemory, status);
    return out.report(lu_solve(f.data(), p.data(), f.rows(), v.data(), vec.data()), status);
  });
}

template <class T> int32_t lu_inverse_export(Handle lu, Handle piv, Handle inv, int32_t* status) {
  return from_lu_export<T>(lu, piv, inv, 2, status, [&](const Mat<T>& f, const Array1<const int32_t>& p, Outputs& out, Out<T>&, Out2<T>& mat) {
    if (!out.size(mat, f.rows(), f.rows())) return out.report(kNoMemory, status);
    return out.report(lu_inverse(f.data(), p.data(), f.rows(), mat.data()), status);
  });
}

// The three diagonals, with the right-hand sides where there are some (b
// null: none): empty, then lengths, then finiteness.
template <class T> struct Tridiagonal {
  Array1<const T> dl, d, du;
  int32_t n;
  Tridiagonal(Handle sub, Handle diag, Handle super) : dl(sub), d(diag), du(super), n(d.size()) {}
  int32_t checks(const T* b, int32_t rows, int32_t k) const {
    if (d.empty() || rows < 1 || k < 1 || (n > 1 && (dl.empty() || du.empty()))) return kEmptyInput;
    if ((n > 1 && (dl.size() != n - 1 || du.size() != n - 1)) || rows != n) return kLengthMismatch;
    if (has_non_finite(d.data(), n) || (n > 1 && (non_finite(dl) || non_finite(du))) || (b && has_non_finite(b, count(n, k))))
      return kNonFiniteMatrix;
    return kOk;
  }
};

template <class T, int Dims>
int32_t tridiagonal_export(Handle sub, Handle diag, Handle super, Handle rhs, Handle x, int32_t* status) {
  clear(status);
  Tridiagonal<T> t(sub, diag, super);
  Rhs<T, Dims> b(rhs);
  Out<T, Dims> res(x);
  Outputs out(res);
  const int32_t n = t.n;
  if (int32_t code = t.checks(b.data, b.rows, b.k)) return out.report(code, status);
  if (!size_solution(out, res, n, b.k)) return out.report(kNoMemory, status);
  return out.report(tridiagonal_solve(t.dl.data(), t.d.data(), t.du.data(), n, b.data, b.k, res.data()), status);
}

template <class T>
int32_t tridiagonal_lu_export(Handle sub, Handle diag, Handle super, Handle l, Handle d, Handle u, Handle u2,
                              Handle pivots, int32_t* status) {
  clear(status);
  Tridiagonal<T> t(sub, diag, super);
  Out<T> lo(l), mo(d), uo(u), u2o(u2);
  Out<int32_t> po(pivots);
  Outputs out(lo, mo, uo, u2o, po);
  const int32_t n = t.n;
  if (int32_t code = t.checks(nullptr, n, 1)) return out.report(code, status);
  if (!out.size(lo, std::max(n - 1, 0)) || !out.size(mo, n) || !out.size(uo, std::max(n - 1, 0)) ||
      !out.size(u2o, std::max(n - 2, 0)) || !out.size(po, n))
    return out.report(kNoMemory, status);
  return out.report(
      tridiagonal_lu(t.dl.data(), t.d.data(), t.du.data(), n, lo.data(), mo.data(), uo.data(), u2o.data(), po.data()),
      status);
}

// Property tests: 1 or 0 in the result, -1 on an error.
template <class T> int32_t property_export(Handle m, int kind, int32_t* result, int32_t* status) {
  JQ_SCALAR_OUT(result);
  clear(status);
  *result = -1;
  Mat<T> a(m);
  int32_t code = square_checks(a);
  if (!code && kind == 0) *result = is_symmetric(a.data(), a.rows());
  if (!code && kind != 0) code = is_positive_definite(a.data(), a.rows(), kind == 2, result);
  if (code < 0) *result = -1;
  if (status) *status = code;
  return 0;
}

// Two square outputs of one square matrix (Hessenberg, Schur).
template <class T, class F>
int32_t two_forms_export(Handle m, Handle f1, Handle f2, int32_t* status, F compute,
                         bool selectors_valid(int32_t, int32_t, int32_t) = nullptr, int32_t s1 = 0, int32_t s2 = 0) {
  clear(status);
  Mat<T> a(m);
  Out2<T> o1(f1), o2(f2);
  Outputs out(o1, o2);
  if (int32_t code = square_checks(a, selectors_valid, s1, s2)) return out.report(code, status);
  const int32_t n = a.rows();
  if (!out.size(o1, n, n) || !out.size(o2, n, n)) return out.report(kNoMemory, status);
  return out.report(compute(a.data(), n, o1.data(), o2.data()), status);
}

template <class T> int32_t char_poly_export(Handle m, Handle coef, int32_t* status) {
  clear(status);
  Mat<T> a(m);
  Out<T> c(coef);
  Outputs out(c);
  if (int32_t code = square_checks(a)) return out.report(code, status);
  if (!out.size(c, a.rows() + 1)) return out.report(kNoMemory, status);
  return out.report(characteristic_polynomial(a.data(), a.rows(), c.data()), status);
}

}  // namespace

JQ_EXPORT int32_t LULinEqs_head(JQMatF64 lu, JQArrI32 pivots, JQArrF64 b, JQArrF64 x, int32_t* status) {
  return lu_solve_export<double>(lu, pivots, b, x, status);
}
JQ_EXPORT int32_t CxLULinEqs_head(JQMatC128 lu, JQArrI32 pivots, JQArrC128 b, JQArrC128 x, int32_t* status) {
  return lu_solve_export<cdouble>(lu, pivots, b, x, status);
}
JQ_EXPORT int32_t LUInvMatrix_head(JQMatF64 lu, JQArrI32 pivots, JQMatF64 inverse, int32_t* status) {
  return lu_inverse_export<double>(lu, pivots, inverse, status);
}
JQ_EXPORT int32_t CxLUInvMatrix_head(JQMatC128 lu, JQArrI32 pivots, JQMatC128 inverse, int32_t* status) {
  return lu_inverse_export<cdouble>(lu, pivots, inverse, status);
}
JQ_EXPORT int32_t TriDiagEqsByLU_head(JQArrF64 sub, JQArrF64 diag, JQArrF64 super, JQArrF64 b, JQArrF64 x, int32_t* status) {
  return tridiagonal_export<double, 1>(sub, diag, super, b, x, status);
}
JQ_EXPORT int32_t CxTriDiagEqsByLU_head(JQArrC128 sub, JQArrC128 diag, JQArrC128 super, JQArrC128 b, JQArrC128 x,
                                        int32_t* status) {
  return tridiagonal_export<cdouble, 1>(sub, diag, super, b, x, status);
}
JQ_EXPORT int32_t TriDiagLU_head(JQArrF64 sub, JQArrF64 diag, JQArrF64 super, JQArrF64 l, JQArrF64 d, JQArrF64 u,
                                 JQArrF64 u2, JQArrI32 pivots, int32_t* status) {
  return tridiagonal_lu_export<double>(sub, diag, super, l, d, u, u2, pivots, status);
}
JQ_EXPORT int32_t CxTriDiagLU_head(JQArrC128 sub, JQArrC128 diag, JQArrC128 super, JQArrC128 l, JQArrC128 d,
                                   JQArrC128 u, JQArrC128 u2, JQArrI32 pivots, int32_t* status) {
  return tridiagonal_lu_export<cdouble>(sub, diag, super, l, d, u, u2, pivots, status);
}
JQ_EXPORT int32_t TriDiagEqsSetByLU_head(JQArrF64 sub, JQArrF64 diag, JQArrF64 super, JQMatF64 b, JQMatF64 x, int32_t* status) {
  return tridiagonal_export<double, 2>(sub, diag, super, b, x, status);
}
JQ_EXPORT int32_t CxTriDiagEqsSetByLU_head(JQArrC128 sub, JQArrC128 diag, JQArrC128 super, JQMatC128 b, JQMatC128 x,
                                           int32_t* status) {
  return tridiagonal_export<cdouble, 2>(sub, diag, super, b, x, status);
}
JQ_EXPORT int32_t CheckSym_head(JQMatF64 a, int32_t* result, int32_t* status) { return property_export<double>(a, 0, result, status); }
JQ_EXPORT int32_t CxCheckSym_head(JQMatC128 a, int32_t* result, int32_t* status) { return property_export<cdouble>(a, 0, result, status); }
JQ_EXPORT int32_t CheckPosdef_head(JQMatF64 a, int32_t* result, int32_t* status) { return property_export<double>(a, 1, result, status); }
JQ_EXPORT int32_t CxCheckPosdef_head(JQMatC128 a, int32_t* result, int32_t* status) {
  return property_export<cdouble>(a, 1, result, status);
}
JQ_EXPORT int32_t CheckPosSemiDef_head(JQMatF64 a, int32_t* result, int32_t* status) {
  return property_export<double>(a, 2, result, status);
}
JQ_EXPORT int32_t CxCheckPosSemiDef_head(JQMatC128 a, int32_t* result, int32_t* status) {
  return property_export<cdouble>(a, 2, result, status);
}
JQ_EXPORT int32_t Hessenberg_head(JQMatF64 a, JQMatF64 h, JQMatF64 q, int32_t* status) {
  return two_forms_export<double>(a, h, q, status, hessenberg<double>);
}
JQ_EXPORT int32_t CxHessenberg_head(JQMatC128 a, JQMatC128 h, JQMatC128 q, int32_t* status) {
  return two_forms_export<cdouble>(a, h, q, status, hessenberg<cdouble>);
}
JQ_EXPORT int32_t Schur_head(JQMatF64 a, JQMatF64 s, JQMatF64 z, int32_t* status) {
  return two_forms_export<double>(a, s, z, status, schur<double>);
}
JQ_EXPORT int32_t CxSchur_head(JQMatC128 a, JQMatC128 s, JQMatC128 z, int32_t* status) {
  return two_forms_export<cdouble>(a, s, z, status, schur<cdouble>);
}
namespace {
// Both block positions lie on the diagonal.
bool positions_valid(int32_t n, int32_t from, int32_t to) { return from >= 0 && from < n && to >= 0 && to < n; }
}  // namespace
JQ_EXPORT int32_t Schur80_head(JQMatF64 a, int32_t from, int32_t to, JQMatF64 s, JQMatF64 z, int32_t* status) {
  return two_forms_export<double>(
      a, s, z, status, [=](const double* x, int32_t n, double* so, double* zo) { return schur_moved(x, n, from, to, so, zo); },
      positions_valid, from, to);
}
JQ_EXPORT int32_t CxSchur80_head(JQMatC128 a, int32_t from, int32_t to, JQMatC128 s, JQMatC128 z, int32_t* status) {
  return two_forms_export<cdouble>(
      a, s, z, status,
      [=](const cdouble* x, int32_t n, cdouble* so, cdouble* zo) { return schur_moved(x, n, from, to, so, zo); },
      positions_valid, from, to);
}
JQ_EXPORT int32_t MatrixCharacteristicPoly_head(JQMatF64 a, JQArrF64 coefficients, int32_t* status) {
  return char_poly_export<double>(a, coefficients, status);
}
JQ_EXPORT int32_t CxMatrixCharacteristicPoly_head(JQMatC128 a, JQArrC128 coefficients, int32_t* status) {
  return char_poly_export<cdouble>(a, coefficients, status);
}

// ---- matrix functions ----------------------------------------------------------------------

namespace {

// Functions whose value is complex for real matrices too (root, logarithm).
template <class T, class F> int32_t complex_function_export(Handle m, Handle x, int32_t* status, F compute) {
  clear(status);
  Mat<T> a(m);
  Out2<cdouble> res(x);
  Outputs out(res);
  if (int32_t code = square_checks(a)) return out.report(code, status);
  if (!out.size(res, a.rows(), a.rows())) return out.report(kNoMemory, status);
  return out.report(compute(a.data(), a.rows(), res.data()), status);
}

template <class T> int32_t from_eigen_export(Handle values, Handle vectors, Handle r, int32_t* status) {
  clear(status);
  Array1<const T> w(values);
  Mat<T> v(vectors);
  Out2<T> res(r);
  Outputs out(res);
  if (w.empty() || v.empty()) return out.report(kEmptyInput, status);
  if (v.rows() != v.cols()) return out.report(kDimMismatch, status);
  if (w.size() != v.rows()) return out.report(kLengthMismatch, status);
  if (non_finite(w) || non_finite(v)) return out.report(kNonFiniteMatrix, status);
  if (!out.size(res, v.rows(), v.rows())) return out.report(kNoMemory, status);
  return out.report(from_eigen(w.data(), v.data(), v.rows(), res.data()), status);
}

}  // namespace

JQ_EXPORT int32_t MatrixExp_head(JQMatF64 a, JQMatF64 e, int32_t* status) {
  return square_to_square<double>(a, e, status, matrix_exp<double>);
}
JQ_EXPORT int32_t CxMatrixExp_head(JQMatC128 a, JQMatC128 e, int32_t* status) {
  return square_to_square<cdouble>(a, e, status, matrix_exp<cdouble>);
}
JQ_EXPORT int32_t MatrixPower_head(JQMatF64 a, int32_t p, JQMatF64 r, int32_t* status) {
  return square_to_square<double>(a, r, status, [p](const double* x, int32_t n, double* y) { return matrix_power(x, n, p, y); });
}
JQ_EXPORT int32_t CxMatrixPower_head(JQMatC128 a, int32_t p, JQMatC128 r, int32_t* status) {
  return square_to_square<cdouble>(a, r, status, [p](const cdouble* x, int32_t n, cdouble* y) { return matrix_power(x, n, p, y); });
}
JQ_EXPORT int32_t MatrixSqrt_head(JQMatF64 a, JQMatC128 x, int32_t* status) {
  return complex_function_export<double>(a, x, status, matrix_sqrt<double>);
}
JQ_EXPORT int32_t CxMatrixSqrt_head(JQMatC128 a, JQMatC128 x, int32_t* status) {
  return complex_function_export<cdouble>(a, x, status, matrix_sqrt<cdouble>);
}
// The status as the result.
JQ_EXPORT int32_t MatrixSqrtH(JQMatF64 a, JQMatF64 x) {
  int32_t status;
  square_to_square<double>(a, x, &status, matrix_sqrt_real);
  return status;
}
JQ_EXPORT int32_t CxMatrixSqrtH(JQMatC128 a, JQMatC128 x) {
  int32_t status;
  complex_function_export<cdouble>(a, x, &status, matrix_sqrt<cdouble>);
  return status;
}
JQ_EXPORT int32_t MatrixLn_head(JQMatF64 a, JQMatC128 l, int32_t* status) {
  return complex_function_export<double>(a, l, status, matrix_log<double>);
}
JQ_EXPORT int32_t CxMatrixLn_head(JQMatC128 a, JQMatC128 l, int32_t* status) {
  return complex_function_export<cdouble>(a, l, status, matrix_log<cdouble>);
}
JQ_EXPORT int32_t CreateMatrixFromEVs_head(JQArrF64 values, JQMatF64 vectors, JQMatF64 a, int32_t* status) {
  return from_eigen_export<double>(values, vectors, a, status);
}
JQ_EXPORT int32_t CxCreateMatrixFromEVs_head(JQArrC128 values, JQMatC128 vectors, JQMatC128 a, int32_t* status) {
  return from_eigen_export<cdouble>(values, vectors, a, status);
}

// ---- packed storage ------------------------------------------------------------------------

namespace {

// A packed triangle (1-D) and its order; -20002 when the length is not a
// triangular number.
template <class T> struct Packed {
  Array1<const T> v;
  int32_t n;
  explicit Packed(Handle h) : v(h), n(packed_order(v.size())) {}
  int32_t check() const { return v.empty() ? kEmptyInput : n < 0 ? kLengthMismatch : has_non_finite(v.data(), v.size()) ? kNonFiniteMatrix : kOk; }
};

template <class T> int32_t to_packed_export(Handle m, Handle p, int32_t* status, bool factor) {
  clear(status);
  Mat<T> a(m);
  Out<T> res(p);
  Outputs out(res);
  if (int32_t code = square_checks(a)) return out.report(code, status);
  const int32_t n = a.rows();
  if (int64_t{n} * (n + 1) / 2 > INT32_MAX) return out.report(kNoMemory, status);
  if (!out.size(res, n * (n + 1) / 2)) return out.report(kNoMemory, status);
  if (!factor) {
    pack_lower(a.data(), n, res.data());
    return out.report(kOk, status);
  }
  return out.report(cholesky_packed(a.data(), n, res.data()), status);
}

// A packed triangle in, a full matrix (unpack, inverse) or a packed one out.
template <class T, class F> int32_t from_packed_export(Handle p, Handle r, bool packed_out, int32_t* status, F compute) {
  clear(status);
  Packed<T> f(p);
  Out<T> vec(r);
  Out2<T> mat(r);
  Outputs out1(vec), out2(mat);
  Outputs& out = packed_out ? out1 : out2;
  if (int32_t code = f.check()) return out.report(code, status);
  const bool sized = packed_out ? out.size(vec, f.v.size()) : out.size(mat, f.n, f.n);
  if (!sized) return out.report(kNoMemory, status);
  return out.report(compute(f.v.data(), f.n, packed_out ? vec.data() : mat.data()), status);
}

template <class T, int Dims, class F> int32_t packed_solve_export(Handle p, Handle rhs, Handle x, int32_t* status, F compute) {
  clear(status);
  Packed<T> f(p);
  Rhs<T, Dims> b(rhs);
  Out<T, Dims> res(x);
  Outputs out(res);
  if (f.v.empty() || b.rows < 1 || b.k < 1) return out.report(kEmptyInput, status);
  if (f.n < 0 || b.rows != f.n) return out.report(Dims == 1 || f.n < 0 ? kLengthMismatch : kIncompatibleDims, status);
  if (int32_t code = f.check()) return out.report(code, status);
  if (has_non_finite(b.data, count(b.rows, b.k))) return out.report(kNonFiniteMatrix, status);
  if (!size_solution(out, res, f.n, b.k)) return out.report(kNoMemory, status);
  return out.report(compute(f.v.data(), f.n, b.data, b.k, res.data()), status);
}

template <class T> int32_t unpack(const T* p, int32_t n, T* a) {
  unpack_hermitian(p, n, a);
  return kOk;
}

}  // namespace

JQ_EXPORT int32_t Matrix_to_Compact_head(JQMatF64 a, JQArrF64 packed, int32_t* status) {
  return to_packed_export<double>(a, packed, status, false);
}
JQ_EXPORT int32_t CxMatrix_to_Compact_head(JQMatC128 a, JQArrC128 packed, int32_t* status) {
  return to_packed_export<cdouble>(a, packed, status, false);
}
JQ_EXPORT int32_t Compact_to_Matrix_head(JQArrF64 packed, JQMatF64 a, int32_t* status) {
  return from_packed_export<double>(packed, a, false, status, unpack<double>);
}
JQ_EXPORT int32_t CxCompact_to_Matrix_head(JQArrC128 packed, JQMatC128 a, int32_t* status) {
  return from_packed_export<cdouble>(packed, a, false, status, unpack<cdouble>);
}
JQ_EXPORT int32_t MatrixToCompact_H(JQMatF64 a, JQArrF64 packed) {
  int32_t status;
  to_packed_export<double>(a, packed, &status, false);
  return status;
}
JQ_EXPORT int32_t CxMatrixToCompact_H(JQMatC128 a, JQArrC128 packed) {
  int32_t status;
  to_packed_export<cdouble>(a, packed, &status, false);
  return status;
}
JQ_EXPORT int32_t CompactToMatrix_H(JQArrF64 packed, JQMatF64 a) {
  int32_t status;
  from_packed_export<double>(packed, a, false, &status, unpack<double>);
  return status;
}
JQ_EXPORT int32_t CxCompactToMatrix_H(JQArrC128 packed, JQMatC128 a) {
  int32_t status;
  from_packed_export<cdouble>(packed, a, false, &status, unpack<cdouble>);
  return status;
}
JQ_EXPORT int32_t Cholesky_head(JQMatF64 a, JQArrF64 factor, int32_t* status) {
  return to_packed_export<double>(a, factor, status, true);
}
JQ_EXPORT int32_t CxCholesky_head(JQMatC128 a, JQArrC128 factor, int32_t* status) {
  return to_packed_export<cdouble>(a, factor, status, true);
}
JQ_EXPORT int32_t CholeskyLinEqs_head(JQArrF64 factor, JQArrF64 b, JQArrF64 x, int32_t* status) {
  return packed_solve_export<double, 1>(factor, b, x, status, cholesky_packed_solve<double>);
}
JQ_EXPORT int32_t CxCholeskyLinEqs_head(JQArrC128 factor, JQArrC128 b, JQArrC128 x, int32_t* status) {
  return packed_solve_export<cdouble, 1>(factor, b, x, status, cholesky_packed_solve<cdouble>);
}
JQ_EXPORT int32_t Cholesky_InvMatrix_head(JQArrF64 factor, JQMatF64 inverse, int32_t* status) {
  return from_packed_export<double>(factor, inverse, false, status, cholesky_packed_inverse<double>);
}
JQ_EXPORT int32_t CxCholesky_InvMatrix_head(JQArrC128 factor, JQMatC128 inverse, int32_t* status) {
  return from_packed_export<cdouble>(factor, inverse, false, status, cholesky_packed_inverse<cdouble>);
}
JQ_EXPORT int32_t TriLinEqs_head(JQArrF64 l, JQArrF64 b, JQArrF64 x, int32_t* status) {
  return packed_solve_export<double, 1>(l, b, x, status, triangular_packed_solve<double>);
}
JQ_EXPORT int32_t CxTriLinEqs_head(JQArrC128 l, JQArrC128 b, JQArrC128 x, int32_t* status) {
  return packed_solve_export<cdouble, 1>(l, b, x, status, triangular_packed_solve<cdouble>);
}
JQ_EXPORT int32_t TriEqsSetDri_head(JQArrF64 l, JQMatF64 b, JQMatF64 x, int32_t* status) {
  return packed_solve_export<double, 2>(l, b, x, status, triangular_packed_solve<double>);
}
JQ_EXPORT int32_t CxTriEqsSetDri_head(JQArrC128 l, JQMatC128 b, JQMatC128 x, int32_t* status) {
  return packed_solve_export<cdouble, 2>(l, b, x, status, triangular_packed_solve<cdouble>);
}
JQ_EXPORT int32_t Tri_InvMatrix_head(JQArrF64 l, JQArrF64 inverse, int32_t* status) {
  return from_packed_export<double>(l, inverse, true, status, triangular_packed_inverse<double>);
}
JQ_EXPORT int32_t CxTri_InvMatrix_head(JQArrC128 l, JQArrC128 inverse, int32_t* status) {
  return from_packed_export<cdouble>(l, inverse, true, status, triangular_packed_inverse<cdouble>);
}

// ---- Sylvester and Lyapunov equations, banded systems ---------------------------------------

namespace {

// Sylvester and Lyapunov equations: A and B (the Lyapunov forms: A again,
// B's handle unused) square, C of their sizes, the selectors, finiteness.
template <class T, class F>
int32_t equation_export(Handle ha, Handle hb, Handle hc, Handle x, bool lyapunov, bool selectors_ok, int32_t* status,
                        F compute) {
  clear(status);
  Mat<T> a(ha), b(lyapunov ? ha : hb), c(hc);
  Out2<T> res(x);
  Outputs out(res);
  if (a.empty() || b.empty() || c.empty()) return out.report(kEmptyInput, status);
  if (a.rows() != a.cols() || b.rows() != b.cols()) return out.report(kDimMismatch, status);
  if (c.rows() != a.rows() || c.cols() != b.rows()) return out.report(kIncompatibleDims, status);
  if (!selectors_ok) return out.report(kBadSelector, status);
  if (non_finite(a) || non_finite(b) || non_finite(c)) return out.report(kNonFiniteMatrix, status);
  if (!out.size(res, c.rows(), c.cols())) return out.report(kNoMemory, status);
  return out.report(compute(a.data(), a.rows(), b.data(), b.rows(), c.data(), res.data()), status);
}

// A X + X B = C (lyapunov: B = A^H).
template <class T> int32_t sylvester_export(Handle ha, Handle hb, Handle hc, Handle x, bool lyapunov, int32_t* status) {
  return equation_export<T>(ha, hb, hc, x, lyapunov, true, status,
                            [&](const T* a, int32_t m, const T* b, int32_t n, const T* c, T* r) {
                              return sylvester(a, m, b, n, lyapunov, c, r);
                            });
}

template <class T>
int32_t sylvester81_export(Handle ha, Handle hb, Handle hc, int32_t trans_a, int32_t trans_b, int32_t sign, Handle x,
                           int32_t* status) {
  const bool ok = (trans_a == 0 || trans_a == 1) && (trans_b == 0 || trans_b == 1) && (sign == 1 || sign == -1);
  return equation_export<T>(ha, hb, hc, x, false, ok, status,
                            [&](const T* a, int32_t m, const T* b, int32_t n, const T* c, T* r) {
                              return sylvester_general(a, m, b, n, trans_a == 1, trans_b == 1, sign < 0, c, r);
                            });
}

template <class T> int32_t lyapunov85_export(Handle ha, Handle hq, int32_t type, Handle x, int32_t* status) {
  return equation_export<T>(ha, nullptr, hq, x, true, type >= 0 && type <= 3, status,
                            [&](const T* a, int32_t n, const T*, int32_t, const T* q, T* r) {
                              return lyapunov(a, n, type, q, r);
                            });
}

template <class T, int Dims> int32_t band_export(Handle m, int32_t kl, int32_t ku, Handle rhs, Handle x, int32_t* status) {
  if (kl < 0 || ku < 0) {
    clear(status);
    Out<T, Dims> res(x);
    Outputs out(res);
    return out.report(kNegativeSize, status);
  }
  return solver_export<T, Dims>(m, rhs, x, true, status, [&](const Mat<T>& a, const Rhs<T, Dims>& b, T* res) {
    const int32_t n = a.rows();
    return band_solve(a.data(), n, std::min(kl, n - 1), std::min(ku, n - 1), b.data, b.k, res);
  });
}

}  // namespace

JQ_EXPORT int32_t Sylvester_head(JQMatF64 a, JQMatF64 b, JQMatF64 c, JQMatF64 x, int32_t* status) {
  return sylvester_export<double>(a, b, c, x, false, status);
}
JQ_EXPORT int32_t CxSylvester_head(JQMatC128 a, JQMatC128 b, JQMatC128 c, JQMatC128 x, int32_t* status) {
  return sylvester_export<cdouble>(a, b, c, x, false, status);
}
JQ_EXPORT int32_t Lyapunov_head(JQMatF64 a, JQMatF64 c, JQMatF64 x, int32_t* status) {
  return sylvester_export<double>(a, nullptr, c, x, true, status);
}
JQ_EXPORT int32_t CxLyapunov_head(JQMatC128 a, JQMatC128 c, JQMatC128 x, int32_t* status) {
  return sylvester_export<cdouble>(a, nullptr, c, x, true, status);
}
JQ_EXPORT int32_t Sylvester81_head(JQMatF64 a, JQMatF64 b, JQMatF64 c, int32_t trans_a, int32_t trans_b, int32_t sign,
                                   JQMatF64 x, int32_t* status) {
  return sylvester81_export<double>(a, b, c, trans_a, trans_b, sign, x, status);
}
JQ_EXPORT int32_t CxSylvester81_head(JQMatC128 a, JQMatC128 b, JQMatC128 c, int32_t trans_a, int32_t trans_b,
                                     int32_t sign, JQMatC128 x, int32_t* status) {
  return sylvester81_export<cdouble>(a, b, c, trans_a, trans_b, sign, x, status);
}
JQ_EXPORT int32_t Lyapunov85_head(JQMatF64 a, JQMatF64 q, int32_t type, JQMatF64 x, int32_t* status) {
  return lyapunov85_export<double>(a, q, type, x, status);
}
JQ_EXPORT int32_t CxLyapunov85_head(JQMatC128 a, JQMatC128 q, int32_t type, JQMatC128 x, int32_t* status) {
  return lyapunov85_export<cdouble>(a, q, type, x, status);
}
JQ_EXPORT int32_t BandEqsDriH(JQMatF64 a, int32_t kl, int32_t ku, JQArrF64 b, JQArrF64 x, int32_t* status) {
  return band_export<double, 1>(a, kl, ku, b, x, status);
}
JQ_EXPORT int32_t CxBandEqsDriH(JQMatC128 a, int32_t kl, int32_t ku, JQArrC128 b, JQArrC128 x, int32_t* status) {
  return band_export<cdouble, 1>(a, kl, ku, b, x, status);
}
JQ_EXPORT int32_t BandEqsSetDriH(JQMatF64 a, int32_t kl, int32_t ku, JQMatF64 b, JQMatF64 x, int32_t* status) {
  return band_export<double, 2>(a, kl, ku, b, x, status);
}
JQ_EXPORT int32_t CxBandEqsSetDriH(JQMatC128 a, int32_t kl, int32_t ku, JQMatC128 b, JQMatC128 x, int32_t* status) {
  return band_export<cdouble, 2>(a, kl, ku, b, x, status);
}

// ---- generalized singular values ----------------------------------------------------------

namespace {

template <class T>
int32_t gsvd_export(Handle ha, Handle hb, Handle u, Handle v, Handle c, Handle s, Handle x, int32_t* status) {
  clear(status);
  Mat<T> a(ha), b(hb);
  Out2<T> uo(u), vo(v), xo(x);
  Out2<double> co(c), so(s);
  Outputs out(uo, vo, co, so, xo);
  if (a.empty() || b.empty()) return out.report(kEmptyInput, status);
  if (a.cols() != b.cols()) return out.report(kIncompatibleDims, status);
  if (non_finite(a) || non_finite(b)) return out.report(kNonFiniteMatrix, status);
  const int32_t m = a.rows(), p = b.rows(), n = a.cols();
  Gsvd<T> g;
  if (int32_t code = g.factor(a.data(), m, b.data(), p, n)) return out.report(code, status);
  const int32_t r = g.rank();
  if (!out.size(uo, m, m) || !out.size(vo, p, p) || !out.size(co, m, r) || !out.size(so, p, r) || !out.size(xo, r, n))
    return out.report(kNoMemory, status);
  return out.report(g.write(uo.data(), vo.data(), co.data(), so.data(), xo.data()), status);
}

}  // namespace

JQ_EXPORT int32_t GSVD_head(JQMatF64 a, JQMatF64 b, JQMatF64 u, JQMatF64 v, JQMatF64 c, JQMatF64 s, JQMatF64 x,
                            int32_t* status) {
  return gsvd_export<double>(a, b, u, v, c, s, x, status);
}
JQ_EXPORT int32_t CxGSVD_head(JQMatC128 a, JQMatC128 b, JQMatC128 u, JQMatC128 v, JQMatF64 c, JQMatF64 s, JQMatC128 x,
                              int32_t* status) {
  return gsvd_export<cdouble>(a, b, u, v, c, s, x, status);
}

// ---- balancing -----------------------------------------------------------------------------

namespace {

template <class T>
int32_t balance_export(Handle m, int32_t job, Handle b, Handle scale, int32_t* ilo, int32_t* ihi, int32_t* status) {
  clear(status);
  JQ_SCALAR_OUT(ilo);
  JQ_SCALAR_OUT(ihi);
  *ilo = *ihi = -1;
  Mat<T> a(m);
  Out2<T> bo(b);
  Out<double> so(scale);
  Outputs out(bo, so);
  int32_t code = a.empty() ? kEmptyInput : a.rows() != a.cols() ? kDimMismatch : job < 0 || job > 3 ? kBadSelector : kOk;
  if (!code && non_finite(a)) code = kNonFiniteMatrix;
  if (code) return out.report(code, status);
  const int32_t n = a.rows();
  if (!out.size(bo, n, n) || !out.size(so, n)) return out.report(kNoMemory, status);
  int32_t lo, hi;
  code = balance(a.data(), n, job, bo.data(), so.data(), &lo, &hi);
  if (!code) *ilo = lo, *ihi = hi;
  return out.report(code, status);
}

// Outside ilo..ihi the scale holds the rows the permutation exchanged
// (1-based, as LAPACK records them). LAPACK swaps rows by those values
// unchecked, so anything but a row number would address memory outside the
// matrix.
bool permutations_valid(const double* scale, int32_t n, int32_t ilo, int32_t ihi, int32_t job) {
  if (job != 1 && job != 3) return true;
  for (int32_t i = 0; i < n; ++i)
    if ((i < ilo || i > ihi) && !(scale[i] >= 1 && scale[i] <= n && scale[i] == std::trunc(scale[i]))) return false;
  return true;
}

template <class T>
int32_t balance_back_export(Handle vectors, Handle scale, int32_t ilo, int32_t ihi, int32_t job, int32_t side, int32_t* status) {
  clear(status);
  Mat<T> v(vectors);
  Array1<const double> s(scale);
  Out2<T> vo(vectors);
  Outputs out(vo);
  const int32_t n = v.rows();
  int32_t code = v.empty() || s.empty() ? kEmptyInput : s.size() != n ? kLengthMismatch : kOk;
  if (!code && (job < 0 || job > 3 || side < 0 || side > 1 || ilo < 0 || ihi < ilo || ihi >= n)) code = kBadSelector;
  if (!code && (non_finite(v) || non_finite(s))) code = kNonFiniteMatrix;
  if (!code && !permutations_valid(s.data(), n, ilo, ihi, job)) code = kBadSelector;
  if (code) return out.report(code, status);
  return out.report(balance_back(const_cast<T*>(v.data()), n, v.cols(), s.data(), ilo, ihi, job, side), status);
}

}  // namespace

JQ_EXPORT int32_t MatrixBalance_head(JQMatF64 a, int32_t job, JQMatF64 b, JQArrF64 scale, int32_t* ilo, int32_t* ihi,
                                     int32_t* status) {
  return balance_export<double>(a, job, b, scale, ilo, ihi, status);
}
JQ_EXPORT int32_t CxMatrixBalance_head(JQMatC128 a, int32_t job, JQMatC128 b, JQArrF64 scale, int32_t* ilo, int32_t* ihi,
                                       int32_t* status) {
  return balance_export<cdouble>(a, job, b, scale, ilo, ihi, status);
}
JQ_EXPORT int32_t EigenVBack_head(JQMatF64 vectors, JQArrF64 scale, int32_t ilo, int32_t ihi, int32_t job, int32_t side,
                                  int32_t* status) {
  return balance_back_export<double>(vectors, scale, ilo, ihi, job, side, status);
}
JQ_EXPORT int32_t CxEigenVBack_head(JQMatC128 vectors, JQArrF64 scale, int32_t ilo, int32_t ihi, int32_t job, int32_t side,
                                    int32_t* status) {
  return balance_back_export<cdouble>(vectors, scale, ilo, ihi, job, side, status);
}

namespace {
// A square pencil: A square, then B of A's shape, then the selectors (block
// positions, a sort), then finiteness.
template <class T> int32_t pencil_checks(const Mat<T>& x, const Mat<T>& y, bool selectors_ok = true) {
  if (x.empty() || y.empty()) return kEmptyInput;
  if (x.rows() != x.cols()) return kDimMismatch;
  if (y.rows() != y.cols() || y.rows() != x.rows()) return kDimMismatch2;
  if (!selectors_ok) return kBadSelector;
  return non_finite(x) || non_finite(y) ? kNonFiniteMatrix : kOk;
}

// The generalized Schur forms: by LAPACK's driver (real data), step by step
// with a block moved, or sorted (selected: how many eigenvalues it put
// first, -1 on an error).
enum class QzForm { kDriver, kMove, kSort };

template <class T>
int32_t qz_export(Handle a, Handle b, QzForm form, PencilOrder order, Handle s, Handle t, Handle q, Handle z,
                  Handle alpha, Handle beta, int32_t* selected, int32_t* status) {
  clear(status);
  if (selected) *selected = -1;
  Mat<T> x(a), y(b);
  Out2<T> so(s), to_(t), qo(q), zo(z);
  Out<cdouble> ao(alpha);
  Out<double> bo(beta);
  Outputs out(so, to_, qo, zo, ao, bo);
  const int32_t n = x.rows();
  const bool ok = form == QzForm::kMove   ? positions_valid(n, order.from, order.to)
                  : form == QzForm::kSort ? order.sort >= kSortNone && order.sort <= kSortOutside
                                          : true;
  if (int32_t code = pencil_checks(x, y, ok)) return out.report(code, status);
  if (!out.size(so, n, n) || !out.size(to_, n, n) || !out.size(qo, n, n) || !out.size(zo, n, n) || !out.size(ao, n) ||
      !out.size(bo, n))
    return out.report(kNoMemory, status);
  int32_t code, chosen = 0;
  if constexpr (std::is_same_v<T, double>)
    if (form == QzForm::kDriver)
      return out.report(qz(x.data(), y.data(), n, so.data(), to_.data(), qo.data(), zo.data(), ao.data(), bo.data()),
                        status);
  code = pencil_schur(x.data(), y.data(), n, order, so.data(), to_.data(), qo.data(), zo.data(), ao.data(), bo.data(),
                      &chosen);
  if (code >= 0 && selected) *selected = chosen;
  return out.report(code, status);
}

template <class T> int32_t generalized_eigen_export(Handle a, Handle b, Handle alpha, Handle beta, Handle vectors, int32_t* status) {
  clear(status);
  Mat<T> x(a), y(b);
  Out<cdouble> ao(alpha);
  Out<double> bo(beta);
  Out2<cdouble> vo(vectors);
  Outputs out(ao, bo, vo);
  if (int32_t code = pencil_checks(x, y)) return out.report(code, status);
  const int32_t n = x.rows();
  if (!out.size(ao, n) || !out.size(bo, n) || !out.size(vo, n, n)) return out.report(kNoMemory, status);
  return out.report(generalized_eigen(x.data(), y.data(), n, ao.data(), bo.data(), vo.data()), status);
}
}  // namespace

JQ_EXPORT int32_t GenEigenEx_head(JQMatF64 a, JQMatF64 b, JQArrC128 alpha, JQArrF64 beta, JQMatC128 vectors,
                                  int32_t* status) {
  return generalized_eigen_export<double>(a, b, alpha, beta, vectors, status);
}
JQ_EXPORT int32_t CxGenEigenEx_head(JQMatC128 a, JQMatC128 b, JQArrC128 alpha, JQArrF64 beta, JQMatC128 vectors,
                                    int32_t* status) {
  return generalized_eigen_export<cdouble>(a, b, alpha, beta, vectors, status);
}

JQ_EXPORT int32_t QZ_head(JQMatF64 a, JQMatF64 b, JQMatF64 s, JQMatF64 t, JQMatF64 q, JQMatF64 z, JQArrC128 alpha,
                          JQArrF64 beta, int32_t* status) {
  return qz_export<double>(a, b, QzForm::kDriver, {}, s, t, q, z, alpha, beta, nullptr, status);
}
JQ_EXPORT int32_t CxQZ_head(JQMatC128 a, JQMatC128 b, JQMatC128 s, JQMatC128 t, JQMatC128 q, JQMatC128 z,
                            JQArrC128 alpha, JQArrF64 beta, int32_t* status) {
  return qz_export<cdouble>(a, b, QzForm::kDriver, {}, s, t, q, z, alpha, beta, nullptr, status);
}
JQ_EXPORT int32_t QZ80_head(JQMatF64 a, JQMatF64 b, int32_t from, int32_t to, JQMatF64 s, JQMatF64 t, JQMatF64 q,
                            JQMatF64 z, JQArrC128 alpha, JQArrF64 beta, int32_t* status) {
  return qz_export<double>(a, b, QzForm::kMove, {from, to, kSortNone}, s, t, q, z, alpha, beta, nullptr, status);
}
JQ_EXPORT int32_t CxQZ80_head(JQMatC128 a, JQMatC128 b, int32_t from, int32_t to, JQMatC128 s, JQMatC128 t,
                              JQMatC128 q, JQMatC128 z, JQArrC128 alpha, JQArrF64 beta, int32_t* status) {
  return qz_export<cdouble>(a, b, QzForm::kMove, {from, to, kSortNone}, s, t, q, z, alpha, beta, nullptr, status);
}
JQ_EXPORT int32_t TmiQZ_head(JQMatF64 a, JQMatF64 b, int32_t sort, JQMatF64 s, JQMatF64 t, JQMatF64 q, JQMatF64 z,
                             JQArrC128 alpha, JQArrF64 beta, int32_t* selected, int32_t* status) {
  return qz_export<double>(a, b, QzForm::kSort, {-1, -1, sort}, s, t, q, z, alpha, beta, selected, status);
}
JQ_EXPORT int32_t CxTmiQZ_head(JQMatC128 a, JQMatC128 b, int32_t sort, JQMatC128 s, JQMatC128 t, JQMatC128 q,
                               JQMatC128 z, JQArrC128 alpha, JQArrF64 beta, int32_t* selected, int32_t* status) {
  return qz_export<cdouble>(a, b, QzForm::kSort, {-1, -1, sort}, s, t, q, z, alpha, beta, selected, status);
}

// ---- generated matrices --------------------------------------------------------------------

namespace {

template <class T>
int32_t special_export(int32_t kind, int32_t rows, int32_t cols, Handle hx, Handle hy, Handle m, int32_t* status) {
  clear(status);
  Array1<const T> x(hx), y(hy);
  Out2<T> res(m);
  Outputs out(res);
  int32_t r, c;
  if (int32_t code = special_shape(kind, rows, cols, std::max(x.size(), 0), std::max(y.size(), 0), &r, &c))
    return out.report(code, status);
  const bool uses_x = kind != kIdentity && kind != kHilbert && kind != kInvHilbert && kind != kPascal;
  const bool uses_y = kind == kToeplitz || kind == kHankel;
  if ((uses_x && non_finite(x)) || (uses_y && non_finite(y))) return out.report(kNonFiniteMatrix, status);
  if (count(r, c) > INT32_MAX || !out.size(res, r, c)) return out.report(kNoMemory, status);
  return out.report(special_matrix(kind, x.data(), x.size(), y.data(), std::max(y.size(), 0), r, c, res.data()), status);
}

template <class T> int32_t fill_export(int32_t rows, int32_t cols, T value, Handle m, int32_t* status) {
  clear(status);
  Out2<T> res(m);
  Outputs out(res);
  if (rows < 1 || cols < 1) return out.report(kEmptyInput, status);
  if (count(rows, cols) > INT32_MAX || !out.size(res, rows, cols)) return out.report(kNoMemory, status);
  std::fill(res.data(), res.data() + count(rows, cols), value);
  return out.report(kOk, status);
}

template <class T> int32_t autocorrelation_export(Handle hx, int32_t order, Handle m, int32_t* status) {
  clear(status);
  Array1<const T> x(hx);
  Out2<T> res(m);
  Outputs out(res);
  if (x.empty() || order < 1) return out.report(kEmptyInput, status);
  if (non_finite(x)) return out.report(kNonFiniteMatrix, status);
  if (count(order, order) > INT32_MAX || !out.size(res, order, order)) return out.report(kNoMemory, status);
  return out.report(autocorrelation_matrix(x.data(), x.size(), order, res.data()), status);
}

}  // namespace

JQ_EXPORT int32_t SpecialMatrix_head(int32_t kind, int32_t rows, int32_t cols, JQArrF64 x, JQArrF64 y, JQMatF64 m,
                                     int32_t* status) {
  return special_export<double>(kind, rows, cols, x, y, m, status);
}
JQ_EXPORT int32_t CxSpecialMatrix_head(int32_t kind, int32_t rows, int32_t cols, JQArrC128 x, JQArrC128 y, JQMatC128 m,
                                       int32_t* status) {
  return special_export<cdouble>(kind, rows, cols, x, y, m, status);
}
JQ_EXPORT int32_t InitialMatrixH(int32_t rows, int32_t cols, double value, JQMatF64 m, int32_t* status) {
  return fill_export<double>(rows, cols, value, m, status);
}
JQ_EXPORT int32_t CxInitialMatrixH(int32_t rows, int32_t cols, double re, double im, JQMatC128 m, int32_t* status) {
  return fill_export<cdouble>(rows, cols, cdouble(re, im), m, status);
}
JQ_EXPORT int32_t AutoCorrMtrxH(JQArrF64 x, int32_t order, JQMatF64 r, int32_t* status) {
  return autocorrelation_export<double>(x, order, r, status);
}
JQ_EXPORT int32_t CxAutoCorrMtrxH(JQArrC128 x, int32_t order, JQMatC128 r, int32_t* status) {
  return autocorrelation_export<cdouble>(x, order, r, status);
}
