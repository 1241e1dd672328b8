/* Export marker of the BLAS/LAPACK module. */
#ifndef JQ_BLASLAPACK_H
#define JQ_BLASLAPACK_H
#include <stddef.h>
#if defined(_WIN32)
#define JQBL_EXPORT __declspec(dllexport)
#else
#define JQBL_EXPORT __attribute__((visibility("default")))
#endif
#endif
