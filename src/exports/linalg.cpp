// Linear-algebra exports: read the matrices, check them in the family's
// order, size the outputs, compute through the module, report the status.
#include <limits>

#include "frame/export.hpp"
#include "jqanlys.h"
#include "linalg/dense.hpp"

using namespace jq;
using namespace jq::linalg;

namespace {

template <class T> using Mat = Array2<const T>;

int64_t count(int32_t rows, int32_t cols) { return int64_t{rows} * cols; }
template <class T> bool non_finite(const Mat<T>& a) { return has_non_finite(a.data(), count(a.rows(), a.cols())); }
template <class T> bool non_finite(const Array1<const T>& v) { return has_non_finite(v.data(), v.size()); }

// The status argument is cleared on entry.
void clear(int32_t* status) {
  if (status) *status = kOk;
}

// Scalar results: NaN on an error, except where the routine's own value
// stands (a determinant of 0 for a matrix that is not positive definite).
double* parts(double* x) { return x; }
double* parts(JQComplex* x) { return &x->re; }
template <class S> int32_t report_value(int32_t code, S* value, int32_t* status, bool keep = false) {
  if (status) *status = code;
  if (code < 0 && value && !keep) {
    double* p = parts(value);
    for (size_t i = 0; i < sizeof(S) / sizeof(double); ++i) p[i] = std::numeric_limits<double>::quiet_NaN();
  }
  return 0;
}

// The element type of an export's scalar result.
template <class T> struct Scalar;
template <> struct Scalar<double> { using type = double; };
template <> struct Scalar<cdouble> { using type = JQComplex; };

// Square-matrix inputs: empty, then not square, then non-finite.
template <class T> int32_t square_checks(const Mat<T>& a) {
  if (a.empty()) return kEmptyInput;
  if (a.rows() != a.cols()) return kDimMismatch;
  return non_finite(a) ? kNonFiniteMatrix : kOk;
}

template <class T> int32_t determinant_export(Handle m, int32_t type, typename Scalar<T>::type* det, int32_t* status) {
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

// A x = b with b a vector (Dims 1) or a matrix of right-hand sides (Dims 2).
template <class T, int Dims> int32_t solve_export(Handle m, Handle rhs, Handle x, int32_t* status) {
  clear(status);
  Mat<T> a(m);
  Out<T, Dims> res(x);
  Outputs out(res);
  int32_t rows, k;
  const T* b;
  if constexpr (Dims == 1) {
    Array1<const T> v(rhs);
    rows = v.size(), k = 1, b = v.data();
  } else {
    Mat<T> v(rhs);
    rows = v.rows(), k = v.cols(), b = v.data();
  }
  if (a.empty() || rows < 1 || k < 1) return out.report(kEmptyInput, status);
  if (a.rows() != a.cols()) return out.report(kDimMismatch, status);
  if (rows != a.rows()) return out.report(Dims == 1 ? kLengthMismatch : kIncompatibleDims, status);
  if (non_finite(a) || has_non_finite(b, count(rows, k))) return out.report(kNonFiniteMatrix, status);
  bool sized;
  if constexpr (Dims == 1)
    sized = out.size(res, rows);
  else
    sized = out.size(res, rows, k);
  if (!sized) return out.report(kNoMemory, status);
  return out.report(solve_lu(a.data(), rows, b, k, res.data()), status);
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
