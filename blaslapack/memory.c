/* The three memory functions of the module: aligned blocks for work arrays,
 * and the per-thread buffer release the library calls when a thread ends. */
#include <stdlib.h>

#include "blaslapack.h"

#if defined(_WIN32)
#include <malloc.h>
#endif

JQBL_EXPORT void* MKL_malloc(size_t size, int align) {
  /* Alignment must be a power of two and at least a pointer's size. */
  size_t a = align > 0 ? (size_t)align : sizeof(void*);
  if (a < sizeof(void*)) a = sizeof(void*);
  if (a & (a - 1)) return NULL;
#if defined(_WIN32)
  return _aligned_malloc(size ? size : 1, a);
#else
  void* p = NULL;
  return posix_memalign(&p, a, size ? size : 1) == 0 ? p : NULL;
#endif
}

JQBL_EXPORT void MKL_free(void* p) {
#if defined(_WIN32)
  _aligned_free(p);
#else
  free(p);
#endif
}

/* The BLAS underneath keeps no buffers per thread that a thread could hand
 * back (OpenBLAS pools its buffers process-wide; the reference BLAS has none),
 * so there is nothing to release. */
JQBL_EXPORT void MKL_Thread_Free_Buffers(void) {}
