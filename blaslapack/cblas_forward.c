/* The CBLAS routines the library binds, forwarded to the BLAS this module is
 * linked against. They carry the same names as the BLAS's own, so each one
 * finds the original as the next definition after this module. */
#define _GNU_SOURCE
#include <dlfcn.h>

#include "blaslapack.h"

#define ORIGINAL(name) \
  static __typeof__(name)* real; \
  if (!real) real = (__typeof__(name)*)dlsym(RTLD_NEXT, #name)

typedef int I;  /* CBLAS enums and sizes are plain ints */

JQBL_EXPORT void cblas_daxpy(I n, double a, const double* x, I incx, double* y, I incy) {
  ORIGINAL(cblas_daxpy);
  real(n, a, x, incx, y, incy);
}
JQBL_EXPORT void cblas_dcopy(I n, const double* x, I incx, double* y, I incy) {
  ORIGINAL(cblas_dcopy);
  real(n, x, incx, y, incy);
}
JQBL_EXPORT double cblas_ddot(I n, const double* x, I incx, const double* y, I incy) {
  ORIGINAL(cblas_ddot);
  return real(n, x, incx, y, incy);
}
JQBL_EXPORT double cblas_dnrm2(I n, const double* x, I incx) {
  ORIGINAL(cblas_dnrm2);
  return real(n, x, incx);
}
JQBL_EXPORT void cblas_dscal(I n, double a, double* x, I incx) {
  ORIGINAL(cblas_dscal);
  real(n, a, x, incx);
}
JQBL_EXPORT size_t cblas_idamax(I n, const double* x, I incx) {
  ORIGINAL(cblas_idamax);
  return real(n, x, incx);
}
JQBL_EXPORT void cblas_zaxpy(I n, const void* a, const void* x, I incx, void* y, I incy) {
  ORIGINAL(cblas_zaxpy);
  real(n, a, x, incx, y, incy);
}
JQBL_EXPORT void cblas_zcopy(I n, const void* x, I incx, void* y, I incy) {
  ORIGINAL(cblas_zcopy);
  real(n, x, incx, y, incy);
}
JQBL_EXPORT void cblas_zdotc_sub(I n, const void* x, I incx, const void* y, I incy, void* dot) {
  ORIGINAL(cblas_zdotc_sub);
  real(n, x, incx, y, incy, dot);
}
JQBL_EXPORT void cblas_zdotu_sub(I n, const void* x, I incx, const void* y, I incy, void* dot) {
  ORIGINAL(cblas_zdotu_sub);
  real(n, x, incx, y, incy, dot);
}
JQBL_EXPORT double cblas_dznrm2(I n, const void* x, I incx) {
  ORIGINAL(cblas_dznrm2);
  return real(n, x, incx);
}
JQBL_EXPORT void cblas_zscal(I n, const void* a, void* x, I incx) {
  ORIGINAL(cblas_zscal);
  real(n, a, x, incx);
}
JQBL_EXPORT void cblas_dgemv(I order, I trans, I m, I n, double alpha, const double* a, I lda, const double* x,
                             I incx, double beta, double* y, I incy) {
  ORIGINAL(cblas_dgemv);
  real(order, trans, m, n, alpha, a, lda, x, incx, beta, y, incy);
}
JQBL_EXPORT void cblas_zgemv(I order, I trans, I m, I n, const void* alpha, const void* a, I lda, const void* x,
                             I incx, const void* beta, void* y, I incy) {
  ORIGINAL(cblas_zgemv);
  real(order, trans, m, n, alpha, a, lda, x, incx, beta, y, incy);
}
JQBL_EXPORT void cblas_dgemm(I order, I ta, I tb, I m, I n, I k, double alpha, const double* a, I lda,
                             const double* b, I ldb, double beta, double* c, I ldc) {
  ORIGINAL(cblas_dgemm);
  real(order, ta, tb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
}
JQBL_EXPORT void cblas_zgemm(I order, I ta, I tb, I m, I n, I k, const void* alpha, const void* a, I lda,
                             const void* b, I ldb, const void* beta, void* c, I ldc) {
  ORIGINAL(cblas_zgemm);
  real(order, ta, tb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
}
JQBL_EXPORT void cblas_dsyrk(I order, I uplo, I trans, I n, I k, double alpha, const double* a, I lda, double beta,
                             double* c, I ldc) {
  ORIGINAL(cblas_dsyrk);
  real(order, uplo, trans, n, k, alpha, a, lda, beta, c, ldc);
}
