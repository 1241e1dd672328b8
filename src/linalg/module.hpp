// The BLAS/LAPACK module: found and loaded when the library is attached to a
// process, released at detach; its routines are bound by name on first use.
#pragma once
#include <cstddef>
#include <cstdint>

namespace jq::linalg {

// Every routine the library takes from the module, in binding order.
#define JQ_BLAS_ROUTINES(X)                                                                                  \
  X(MKL_malloc) X(MKL_free) X(MKL_Thread_Free_Buffers)                                                       \
  X(cblas_daxpy) X(cblas_dcopy) X(cblas_ddot) X(cblas_dnrm2) X(cblas_dscal) X(cblas_idamax)                  \
  X(cblas_zaxpy) X(cblas_zcopy) X(cblas_zdotc_sub) X(cblas_zdotu_sub) X(cblas_dznrm2) X(cblas_zscal)         \
  X(cblas_dgemv) X(cblas_zgemv) X(cblas_dgemm) X(cblas_zgemm) X(cblas_dsyrk)                                 \
  X(dgesv) X(zgesv) X(dgbsv) X(zgbsv) X(dgttrf) X(zgttrf) X(dgttrs) X(zgttrs) X(dposv) X(zposv) X(dpptrf) X(zpptrf) X(dpptrs)    \
  X(zpptrs) X(dpptri) X(zpptri) X(dtptrs) X(ztptrs) X(dtptri) X(ztptri)                                      \
  X(dgetrf) X(zgetrf) X(dgetri) X(zgetri) X(dpotrf) X(zpotrf) X(dpotri) X(zpotri) X(dtrtri) X(ztrtri)        \
  X(dgeqp3) X(zgeqp3) X(dorgqr) X(zungqr) X(dgelqf) X(zgelqf) X(dorglq) X(zunglq)                            \
  X(dgelsd) X(dgesdd) X(zgesdd) X(dggsvd) X(zggsvd)                                                          \
  X(dgeev) X(zgeev) X(dsyevd) X(zheevd) X(dgees) X(zgees) X(dgebal) X(zgebal) X(dgebak) X(zgebak)            \
  X(dgehrd) X(zgehrd) X(dorghr) X(zunghr) X(dtrexc) X(ztrexc)                                                \
  X(dgges) X(dgghrd) X(zgghrd) X(dhgeqz) X(zhgeqz) X(dtgevc) X(ztgevc) X(dtgexc) X(ztgexc)                   \
  X(dtrsyl) X(ztrsyl) X(dlapy2)

enum class Routine : int {
#define JQ_ENUM(name) name,
  JQ_BLAS_ROUTINES(JQ_ENUM)
#undef JQ_ENUM
      count
};

// The bound routines, all of them, or null when the module is not loaded (the
// search failed) or lacks one of them. Binds on first use; the calling
// thread's module buffers are then released when the thread ends.
void* const* routines();

// Attach: searches for the module and loads it, then runs the warm-up
// product. On failure `searched` describes the places tried. Idempotent.
bool attach(char* searched, size_t capacity);
// Process detach: releases the module.
void detach();
// Thread detach: releases the ending thread's module buffers.
void thread_detach();
// How many times thread_detach reached the module (for tests).
int64_t thread_releases();

}  // namespace jq::linalg
