// Typed access to the module's routines, and one name per operation for real
// and complex data (Blas<double>::getrf is dgetrf, Blas<cdouble>::getrf is
// zgetrf), so that the computing routines are written once for both.
//
// LAPACK takes every argument by pointer and column-major matrices; the CBLAS
// calls here are all row-major (101) without transposition (111) unless
// their caller says otherwise. Callers check ready() before the first call.
#pragma once
#include <complex>
#include <cstdint>

#include "linalg/module.hpp"

namespace jq::linalg {

using cdouble = std::complex<double>;
using I = int32_t;

constexpr int kRowMajor = 101, kColMajor = 102, kNoTrans = 111, kTrans = 112, kConjTrans = 113;
constexpr int kUpper = 121, kLower = 122;

template <class F> F* bound(Routine r) { return reinterpret_cast<F*>(routines()[static_cast<int>(r)]); }

#define JQ_CALL(name, ...) bound<decltype(sig_##name)>(Routine::name)(__VA_ARGS__)

// Prototypes, only to give each routine its type.
void sig_MKL_free(void*);
void* sig_MKL_malloc(size_t, int);
void sig_cblas_dcopy(I, const double*, I, double*, I);
void sig_cblas_zcopy(I, const void*, I, void*, I);
double sig_cblas_ddot(I, const double*, I, const double*, I);
void sig_cblas_zdotu_sub(I, const void*, I, const void*, I, void*);
void sig_cblas_zdotc_sub(I, const void*, I, const void*, I, void*);
double sig_cblas_dnrm2(I, const double*, I);
double sig_cblas_dznrm2(I, const void*, I);
void sig_cblas_dscal(I, double, double*, I);
void sig_cblas_zscal(I, const void*, void*, I);
void sig_cblas_daxpy(I, double, const double*, I, double*, I);
void sig_cblas_zaxpy(I, const void*, const void*, I, void*, I);
size_t sig_cblas_idamax(I, const double*, I);
void sig_cblas_dgemm(int, int, int, I, I, I, double, const double*, I, const double*, I, double, double*, I);
void sig_cblas_zgemm(int, int, int, I, I, I, const void*, const void*, I, const void*, I, const void*, void*, I);
void sig_cblas_dgemv(int, int, I, I, double, const double*, I, const double*, I, double, double*, I);
void sig_cblas_zgemv(int, int, I, I, const void*, const void*, I, const void*, I, const void*, void*, I);
void sig_dgetrf(const I*, const I*, double*, const I*, I*, I*);
void sig_zgetrf(const I*, const I*, cdouble*, const I*, I*, I*);
void sig_dgetri(const I*, double*, const I*, const I*, double*, const I*, I*);
void sig_zgetri(const I*, cdouble*, const I*, const I*, cdouble*, const I*, I*);
void sig_dpotrf(const char*, const I*, double*, const I*, I*);
void sig_zpotrf(const char*, const I*, cdouble*, const I*, I*);
void sig_dpotri(const char*, const I*, double*, const I*, I*);
void sig_zpotri(const char*, const I*, cdouble*, const I*, I*);
void sig_dgesv(const I*, const I*, double*, const I*, I*, double*, const I*, I*);
void sig_zgesv(const I*, const I*, cdouble*, const I*, I*, cdouble*, const I*, I*);
void sig_dposv(const char*, const I*, const I*, double*, const I*, double*, const I*, I*);
void sig_zposv(const char*, const I*, const I*, cdouble*, const I*, cdouble*, const I*, I*);
void sig_dtrtri(const char*, const char*, const I*, double*, const I*, I*);
void sig_ztrtri(const char*, const char*, const I*, cdouble*, const I*, I*);
void sig_dgesdd(const char*, const I*, const I*, double*, const I*, double*, double*, const I*, double*, const I*,
                double*, const I*, I*, I*);
void sig_zgesdd(const char*, const I*, const I*, cdouble*, const I*, double*, cdouble*, const I*, cdouble*, const I*,
                cdouble*, const I*, double*, I*, I*);
void sig_dsyevd(const char*, const char*, const I*, double*, const I*, double*, double*, const I*, I*, const I*, I*);
void sig_zheevd(const char*, const char*, const I*, cdouble*, const I*, double*, cdouble*, const I*, double*,
                const I*, I*, const I*, I*);
void sig_dgeev(const char*, const char*, const I*, double*, const I*, double*, double*, double*, const I*, double*,
               const I*, double*, const I*, I*);
void sig_zgeev(const char*, const char*, const I*, cdouble*, const I*, cdouble*, cdouble*, const I*, cdouble*,
               const I*, cdouble*, const I*, double*, I*);
void sig_dgelsd(const I*, const I*, const I*, double*, const I*, double*, const I*, double*, const double*, I*,
                double*, const I*, I*, I*);

void sig_dgeqp3(const I*, const I*, double*, const I*, I*, double*, double*, const I*, I*);
void sig_zgeqp3(const I*, const I*, cdouble*, const I*, I*, cdouble*, cdouble*, const I*, double*, I*);
void sig_dorgqr(const I*, const I*, const I*, double*, const I*, const double*, double*, const I*, I*);
void sig_zungqr(const I*, const I*, const I*, cdouble*, const I*, const cdouble*, cdouble*, const I*, I*);
void sig_dgelqf(const I*, const I*, double*, const I*, double*, double*, const I*, I*);
void sig_zgelqf(const I*, const I*, cdouble*, const I*, cdouble*, cdouble*, const I*, I*);
void sig_dorglq(const I*, const I*, const I*, double*, const I*, const double*, double*, const I*, I*);
void sig_zunglq(const I*, const I*, const I*, cdouble*, const I*, const cdouble*, cdouble*, const I*, I*);
void sig_dgttrf(const I*, double*, double*, double*, double*, I*, I*);
void sig_zgttrf(const I*, cdouble*, cdouble*, cdouble*, cdouble*, I*, I*);
void sig_dgttrs(const char*, const I*, const I*, const double*, const double*, const double*, const double*, const I*,
                double*, const I*, I*);
void sig_zgttrs(const char*, const I*, const I*, const cdouble*, const cdouble*, const cdouble*, const cdouble*,
                const I*, cdouble*, const I*, I*);
void sig_dgehrd(const I*, const I*, const I*, double*, const I*, double*, double*, const I*, I*);
void sig_zgehrd(const I*, const I*, const I*, cdouble*, const I*, cdouble*, cdouble*, const I*, I*);
void sig_dorghr(const I*, const I*, const I*, double*, const I*, const double*, double*, const I*, I*);
void sig_zunghr(const I*, const I*, const I*, cdouble*, const I*, const cdouble*, cdouble*, const I*, I*);
void sig_dgees(const char*, const char*, void*, const I*, double*, const I*, I*, double*, double*, double*, const I*,
               double*, const I*, I*, I*);
void sig_zgees(const char*, const char*, void*, const I*, cdouble*, const I*, I*, cdouble*, cdouble*, const I*,
               cdouble*, const I*, double*, I*, I*);
void sig_dpptrf(const char*, const I*, double*, I*);
void sig_zpptrf(const char*, const I*, cdouble*, I*);
void sig_dpptrs(const char*, const I*, const I*, const double*, double*, const I*, I*);
void sig_zpptrs(const char*, const I*, const I*, const cdouble*, cdouble*, const I*, I*);
void sig_dpptri(const char*, const I*, double*, I*);
void sig_zpptri(const char*, const I*, cdouble*, I*);
void sig_dtptrs(const char*, const char*, const char*, const I*, const I*, const double*, double*, const I*, I*);
void sig_ztptrs(const char*, const char*, const char*, const I*, const I*, const cdouble*, cdouble*, const I*, I*);
void sig_dtptri(const char*, const char*, const I*, double*, I*);
void sig_ztptri(const char*, const char*, const I*, cdouble*, I*);
void sig_dtrsyl(const char*, const char*, const I*, const I*, const I*, const double*, const I*, const double*,
                const I*, double*, const I*, double*, I*);
void sig_ztrsyl(const char*, const char*, const I*, const I*, const I*, const cdouble*, const I*, const cdouble*,
                const I*, cdouble*, const I*, double*, I*);
void sig_dgbsv(const I*, const I*, const I*, const I*, double*, const I*, I*, double*, const I*, I*);
void sig_zgbsv(const I*, const I*, const I*, const I*, cdouble*, const I*, I*, cdouble*, const I*, I*);
void sig_dgebal(const char*, const I*, double*, const I*, I*, I*, double*, I*);
void sig_zgebal(const char*, const I*, cdouble*, const I*, I*, I*, double*, I*);
void sig_dgebak(const char*, const char*, const I*, const I*, const I*, const double*, const I*, double*, const I*, I*);
void sig_zgebak(const char*, const char*, const I*, const I*, const I*, const double*, const I*, cdouble*, const I*, I*);
void sig_dgges(const char*, const char*, const char*, void*, const I*, double*, const I*, double*, const I*, I*,
               double*, double*, double*, double*, const I*, double*, const I*, double*, const I*, I*, I*);

void sig_dtrexc(const char*, const I*, double*, const I*, double*, const I*, I*, I*, double*, I*);
void sig_ztrexc(const char*, const I*, cdouble*, const I*, cdouble*, const I*, const I*, const I*, I*);

void sig_dggsvd(const char*, const char*, const char*, const I*, const I*, const I*, I*, I*, double*, const I*,
                double*, const I*, double*, double*, double*, const I*, double*, const I*, double*, const I*, double*,
                I*, I*);
void sig_zggsvd(const char*, const char*, const char*, const I*, const I*, const I*, I*, I*, cdouble*, const I*,
                cdouble*, const I*, double*, double*, cdouble*, const I*, cdouble*, const I*, cdouble*, const I*,
                cdouble*, double*, I*, I*);

void sig_dtgevc(const char*, const char*, const I*, const I*, const double*, const I*, const double*, const I*,
                double*, const I*, double*, const I*, const I*, I*, double*, I*);

void sig_dtgexc(const I*, const I*, const I*, double*, const I*, double*, const I*, double*, const I*, double*,
                const I*, I*, I*, double*, const I*, I*);

void sig_dgghrd(const char*, const char*, const I*, const I*, const I*, double*, const I*, double*, const I*,
                double*, const I*, double*, const I*, I*);
void sig_dhgeqz(const char*, const char*, const char*, const I*, const I*, const I*, double*, const I*, double*,
                const I*, double*, double*, double*, double*, const I*, double*, const I*, double*, const I*, I*);
void sig_ztgexc(const I*, const I*, const I*, cdouble*, const I*, cdouble*, const I*, cdouble*, const I*, cdouble*,
                const I*, const I*, I*, I*);
void sig_zgghrd(const char*, const char*, const I*, const I*, const I*, cdouble*, const I*, cdouble*, const I*,
                cdouble*, const I*, cdouble*, const I*, I*);
void sig_zhgeqz(const char*, const char*, const char*, const I*, const I*, const I*, cdouble*, const I*, cdouble*,
                const I*, cdouble*, cdouble*, cdouble*, const I*, cdouble*, const I*, cdouble*, const I*, double*, I*);
void sig_ztgevc(const char*, const char*, const I*, const I*, const cdouble*, const I*, const cdouble*, const I*,
                cdouble*, const I*, cdouble*, const I*, const I*, I*, cdouble*, double*, I*);

// Per-type names of the operations written once for real and complex data.
template <class T> struct Blas;

template <> struct Blas<double> {
  static void copy(I n, const double* x, I incx, double* y, I incy) { JQ_CALL(cblas_dcopy, n, x, incx, y, incy); }
  static void gemm(I m, I n, I k, const double* a, I lda, const double* b, I ldb, double* c, I ldc) {
    JQ_CALL(cblas_dgemm, kRowMajor, kNoTrans, kNoTrans, m, n, k, 1.0, a, lda, b, ldb, 0.0, c, ldc);
  }
  static void gemv(I m, I n, const double* a, const double* x, double* y) {
    JQ_CALL(cblas_dgemv, kRowMajor, kNoTrans, m, n, 1.0, a, n, x, 1, 0.0, y, 1);
  }
  static void getrf(I m, I n, double* a, I lda, I* ipiv, I* info) { JQ_CALL(dgetrf, &m, &n, a, &lda, ipiv, info); }
  static void getri(I n, double* a, I lda, const I* ipiv, double* work, I lwork, I* info) {
    JQ_CALL(dgetri, &n, a, &lda, ipiv, work, &lwork, info);
  }
  static void potrf(char uplo, I n, double* a, I lda, I* info) { JQ_CALL(dpotrf, &uplo, &n, a, &lda, info); }
  static void gesv(I n, I nrhs, double* a, I lda, I* ipiv, double* b, I ldb, I* info) {
    JQ_CALL(dgesv, &n, &nrhs, a, &lda, ipiv, b, &ldb, info);
  }
  static void gemm_t(int ta, int tb, I m, I n, I k, const double* a, I lda, const double* b, I ldb, double* c, I ldc) {
    JQ_CALL(cblas_dgemm, kRowMajor, ta, tb, m, n, k, 1.0, a, lda, b, ldb, 0.0, c, ldc);
  }
  // Column-major product, for work that stays in LAPACK's layout.
  static void gemm_cm(int ta, int tb, I m, I n, I k, const double* a, I lda, const double* b, I ldb, double* c,
                      I ldc) {
    JQ_CALL(cblas_dgemm, kColMajor, ta, tb, m, n, k, 1.0, a, lda, b, ldb, 0.0, c, ldc);
  }
  static double nrm2(I n, const double* x) { return JQ_CALL(cblas_dnrm2, n, x, 1); }
  static double dot(I n, const double* x, const double* y) { return JQ_CALL(cblas_ddot, n, x, 1, y, 1); }
  static double dotc(I n, const double* x, const double* y) { return JQ_CALL(cblas_ddot, n, x, 1, y, 1); }
  static void axpy(I n, double a, const double* x, double* y) { JQ_CALL(cblas_daxpy, n, a, x, 1, y, 1); }
  static void scal(I n, double a, double* x, I inc) { JQ_CALL(cblas_dscal, n, a, x, inc); }
  // Singular value decomposition; rwork is unused for real data.
  static void gesdd(char job, I m, I n, double* a, I lda, double* s, double* u, I ldu, double* vt, I ldvt,
                    double* work, I lwork, double*, I* iwork, I* info) {
    JQ_CALL(dgesdd, &job, &m, &n, a, &lda, s, u, &ldu, vt, &ldvt, work, &lwork, iwork, info);
  }
  static void potri(char uplo, I n, double* a, I lda, I* info) { JQ_CALL(dpotri, &uplo, &n, a, &lda, info); }
  static void posv(char uplo, I n, I nrhs, double* a, I lda, double* b, I ldb, I* info) {
    JQ_CALL(dposv, &uplo, &n, &nrhs, a, &lda, b, &ldb, info);
  }
  static void trtri(char uplo, char diag, I n, double* a, I lda, I* info) {
    JQ_CALL(dtrtri, &uplo, &diag, &n, a, &lda, info);
  }
  static void geqp3(I m, I n, double* a, I lda, I* jpvt, double* tau, double* work, I lwork, double*, I* info) {
    JQ_CALL(dgeqp3, &m, &n, a, &lda, jpvt, tau, work, &lwork, info);
  }
  static void orgqr(I m, I n, I k, double* a, I lda, const double* tau, double* work, I lwork, I* info) {
    JQ_CALL(dorgqr, &m, &n, &k, a, &lda, tau, work, &lwork, info);
  }
  static void gelqf(I m, I n, double* a, I lda, double* tau, double* work, I lwork, I* info) {
    JQ_CALL(dgelqf, &m, &n, a, &lda, tau, work, &lwork, info);
  }
  static void orglq(I m, I n, I k, double* a, I lda, const double* tau, double* work, I lwork, I* info) {
    JQ_CALL(dorglq, &m, &n, &k, a, &lda, tau, work, &lwork, info);
  }
  // Symmetric eigenproblem; rwork is unused for real data.
  static void trsyl(I m, I n, const double* a, const double* b, double* c, double* scale, I* info) {
    const I one = 1;
    JQ_CALL(dtrsyl, "N", "N", &one, &m, &n, a, &m, b, &n, c, &m, scale, info);
  }
  static void gbsv(I n, I kl, I ku, I k, double* ab, I ldab, I* ipiv, double* b, I* info) {
    JQ_CALL(dgbsv, &n, &kl, &ku, &k, ab, &ldab, ipiv, b, &n, info);
  }
  static void gebal(char job, I n, double* a, I* ilo, I* ihi, double* scale, I* info) {
    JQ_CALL(dgebal, &job, &n, a, &n, ilo, ihi, scale, info);
  }
  static void gebak(char job, char side, I n, I ilo, I ihi, const double* scale, I m, double* v, I* info) {
    JQ_CALL(dgebak, &job, &side, &n, &ilo, &ihi, scale, &m, v, &n, info);
  }
  static void pptrf(I n, double* ap, I* info) { JQ_CALL(dpptrf, "U", &n, ap, info); }
  static void pptrs(I n, I k, const double* ap, double* b, I* info) { JQ_CALL(dpptrs, "U", &n, &k, ap, b, &n, info); }
  static void pptri(I n, double* ap, I* info) { JQ_CALL(dpptri, "U", &n, ap, info); }
  static void tptrs(I n, I k, const double* ap, double* b, I* info) {
    JQ_CALL(dtptrs, "U", "T", "N", &n, &k, ap, b, &n, info);
  }
  static void tptri(I n, double* ap, I* info) { JQ_CALL(dtptri, "U", "N", &n, ap, info); }
  static void gehrd(I n, double* a, double* tau, double* work, I lwork, I* info) {
    const I one = 1;
    JQ_CALL(dgehrd, &n, &one, &n, a, &n, tau, work, &lwork, info);
  }
  static void orghr(I n, double* a, const double* tau, double* work, I lwork, I* info) {
    const I one = 1;
    JQ_CALL(dorghr, &n, &one, &n, a, &n, tau, work, &lwork, info);
  }
  static void syevd(I n, double* a, double* w, double* work, I lwork, double*, I, I* iwork, I liwork, I* info) {
    JQ_CALL(dsyevd, "V", "L", &n, a, &n, w, work, &lwork, iwork, &liwork, info);
  }
};

template <> struct Blas<cdouble> {
  static void copy(I n, const cdouble* x, I incx, cdouble* y, I incy) { JQ_CALL(cblas_zcopy, n, x, incx, y, incy); }
  static void gemm(I m, I n, I k, const cdouble* a, I lda, const cdouble* b, I ldb, cdouble* c, I ldc) {
    const cdouble one = 1.0, zero = 0.0;
    JQ_CALL(cblas_zgemm, kRowMajor, kNoTrans, kNoTrans, m, n, k, &one, a, lda, b, ldb, &zero, c, ldc);
  }
  static void gemv(I m, I n, const cdouble* a, const cdouble* x, cdouble* y) {
    const cdouble one = 1.0, zero = 0.0;
    JQ_CALL(cblas_zgemv, kRowMajor, kNoTrans, m, n, &one, a, n, x, 1, &zero, y, 1);
  }
  static void getrf(I m, I n, cdouble* a, I lda, I* ipiv, I* info) { JQ_CALL(zgetrf, &m, &n, a, &lda, ipiv, info); }
  static void getri(I n, cdouble* a, I lda, const I* ipiv, cdouble* work, I lwork, I* info) {
    JQ_CALL(zgetri, &n, a, &lda, ipiv, work, &lwork, info);
  }
  static void potrf(char uplo, I n, cdouble* a, I lda, I* info) { JQ_CALL(zpotrf, &uplo, &n, a, &lda, info); }
  static void gesv(I n, I nrhs, cdouble* a, I lda, I* ipiv, cdouble* b, I ldb, I* info) {
    JQ_CALL(zgesv, &n, &nrhs, a, &lda, ipiv, b, &ldb, info);
  }
  static void gemm_t(int ta, int tb, I m, I n, I k, const cdouble* a, I lda, const cdouble* b, I ldb, cdouble* c,
                     I ldc) {
    const cdouble one = 1.0, zero = 0.0;
    JQ_CALL(cblas_zgemm, kRowMajor, ta, tb, m, n, k, &one, a, lda, b, ldb, &zero, c, ldc);
  }
  static void gemm_cm(int ta, int tb, I m, I n, I k, const cdouble* a, I lda, const cdouble* b, I ldb, cdouble* c,
                      I ldc) {
    const cdouble one = 1.0, zero = 0.0;
    JQ_CALL(cblas_zgemm, kColMajor, ta, tb, m, n, k, &one, a, lda, b, ldb, &zero, c, ldc);
  }
  static double nrm2(I n, const cdouble* x) { return JQ_CALL(cblas_dznrm2, n, x, 1); }
  // Unconjugated, as x^T y.
  static cdouble dot(I n, const cdouble* x, const cdouble* y) {
    cdouble r;
    JQ_CALL(cblas_zdotu_sub, n, x, 1, y, 1, &r);
    return r;
  }
  // Conjugated, as x^H y.
  static cdouble dotc(I n, const cdouble* x, const cdouble* y) {
    cdouble r;
    JQ_CALL(cblas_zdotc_sub, n, x, 1, y, 1, &r);
    return r;
  }
  static void axpy(I n, cdouble a, const cdouble* x, cdouble* y) { JQ_CALL(cblas_zaxpy, n, &a, x, 1, y, 1); }
  static void scal(I n, cdouble a, cdouble* x, I inc) { JQ_CALL(cblas_zscal, n, &a, x, inc); }
  static void gesdd(char job, I m, I n, cdouble* a, I lda, double* s, cdouble* u, I ldu, cdouble* vt, I ldvt,
                    cdouble* work, I lwork, double* rwork, I* iwork, I* info) {
    JQ_CALL(zgesdd, &job, &m, &n, a, &lda, s, u, &ldu, vt, &ldvt, work, &lwork, rwork, iwork, info);
  }
  static void potri(char uplo, I n, cdouble* a, I lda, I* info) { JQ_CALL(zpotri, &uplo, &n, a, &lda, info); }
  static void posv(char uplo, I n, I nrhs, cdouble* a, I lda, cdouble* b, I ldb, I* info) {
    JQ_CALL(zposv, &uplo, &n, &nrhs, a, &lda, b, &ldb, info);
  }
  static void trtri(char uplo, char diag, I n, cdouble* a, I lda, I* info) {
    JQ_CALL(ztrtri, &uplo, &diag, &n, a, &lda, info);
  }
  static void geqp3(I m, I n, cdouble* a, I lda, I* jpvt, cdouble* tau, cdouble* work, I lwork, double* rwork,
                    I* info) {
    JQ_CALL(zgeqp3, &m, &n, a, &lda, jpvt, tau, work, &lwork, rwork, info);
  }
  static void orgqr(I m, I n, I k, cdouble* a, I lda, const cdouble* tau, cdouble* work, I lwork, I* info) {
    JQ_CALL(zungqr, &m, &n, &k, a, &lda, tau, work, &lwork, info);
  }
  static void gelqf(I m, I n, cdouble* a, I lda, cdouble* tau, cdouble* work, I lwork, I* info) {
    JQ_CALL(zgelqf, &m, &n, a, &lda, tau, work, &lwork, info);
  }
  static void orglq(I m, I n, I k, cdouble* a, I lda, const cdouble* tau, cdouble* work, I lwork, I* info) {
    JQ_CALL(zunglq, &m, &n, &k, a, &lda, tau, work, &lwork, info);
  }
  static void trsyl(I m, I n, const cdouble* a, const cdouble* b, cdouble* c, double* scale, I* info) {
    const I one = 1;
    JQ_CALL(ztrsyl, "N", "N", &one, &m, &n, a, &m, b, &n, c, &m, scale, info);
  }
  static void gbsv(I n, I kl, I ku, I k, cdouble* ab, I ldab, I* ipiv, cdouble* b, I* info) {
    JQ_CALL(zgbsv, &n, &kl, &ku, &k, ab, &ldab, ipiv, b, &n, info);
  }
  static void gebal(char job, I n, cdouble* a, I* ilo, I* ihi, double* scale, I* info) {
    JQ_CALL(zgebal, &job, &n, a, &n, ilo, ihi, scale, info);
  }
  static void gebak(char job, char side, I n, I ilo, I ihi, const double* scale, I m, cdouble* v, I* info) {
    JQ_CALL(zgebak, &job, &side, &n, &ilo, &ihi, scale, &m, v, &n, info);
  }
  static void pptrf(I n, cdouble* ap, I* info) { JQ_CALL(zpptrf, "U", &n, ap, info); }
  static void pptrs(I n, I k, const cdouble* ap, cdouble* b, I* info) { JQ_CALL(zpptrs, "U", &n, &k, ap, b, &n, info); }
  static void pptri(I n, cdouble* ap, I* info) { JQ_CALL(zpptri, "U", &n, ap, info); }
  static void tptrs(I n, I k, const cdouble* ap, cdouble* b, I* info) {
    JQ_CALL(ztptrs, "U", "T", "N", &n, &k, ap, b, &n, info);
  }
  static void tptri(I n, cdouble* ap, I* info) { JQ_CALL(ztptri, "U", "N", &n, ap, info); }
  static void gehrd(I n, cdouble* a, cdouble* tau, cdouble* work, I lwork, I* info) {
    const I one = 1;
    JQ_CALL(zgehrd, &n, &one, &n, a, &n, tau, work, &lwork, info);
  }
  static void orghr(I n, cdouble* a, const cdouble* tau, cdouble* work, I lwork, I* info) {
    const I one = 1;
    JQ_CALL(zunghr, &n, &one, &n, a, &n, tau, work, &lwork, info);
  }
  static void syevd(I n, cdouble* a, double* w, cdouble* work, I lwork, double* rwork, I lrwork, I* iwork, I liwork,
                    I* info) {
    JQ_CALL(zheevd, "V", "L", &n, a, &n, w, work, &lwork, rwork, &lrwork, iwork, &liwork, info);
  }
};

}  // namespace jq::linalg
