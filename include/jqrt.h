/* jqrt: the project's own implementation of the host side, so that programs
 * and tests can use jqanlys outside the host. It provides the two host
 * functions the library binds by name, plus a small API to make, read and
 * free handles, dispose a context, inject resize failures and count blocks. */
#ifndef JQRT_H
#define JQRT_H

#include <stddef.h>
#include <stdint.h>

#if defined(_WIN32)
#  if defined(JQRT_BUILD)
#    define JQRT_API __declspec(dllexport)
#  else
#    define JQRT_API __declspec(dllimport)
#  endif
#else
#  define JQRT_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* Host type codes. */
enum {
  JQRT_I32 = 3, JQRT_U8 = 5, JQRT_U32 = 7, JQRT_F32 = 9, JQRT_F64 = 10, JQRT_CF32 = 12, JQRT_CF64 = 13
};

/* The host functions, with the host's exact prototypes. */
JQRT_API int32_t NumericArrayResize(int32_t typeCode, int32_t numDims, uint8_t*** handlePtr, size_t count);
JQRT_API int32_t RTSetCleanupProc(int32_t (*proc)(void* instance), void* instance, int32_t mode);
/* Marks the module as a host runtime. */
JQRT_API extern const int32_t gJQRTVersion;

/* A new handle of rows x cols elements (cols = 0 or 1 and dims 1 for 1-D),
 * zero-filled, with its sizes written; null when out of memory. */
JQRT_API uint8_t** jqrt_make(int32_t typeCode, int32_t numDims, int32_t rows, int32_t cols);
/* Frees a handle made here or by NumericArrayResize; null is ignored. */
JQRT_API void jqrt_free(uint8_t** handle);
/* Dimension size i (0 or 1) of a handle; 0 for a null handle. */
JQRT_API int32_t jqrt_dim(uint8_t** handle, int32_t i);
/* The first element of a handle holding a block of that type and rank. */
JQRT_API void* jqrt_data(uint8_t** handle, int32_t typeCode, int32_t numDims);

/* Calls every registered clean-up procedure, as the host does when a
 * calling context goes away, and forgets them. Returns how many ran. */
JQRT_API int32_t jqrt_dispose_context(void);
/* Calls and forgets the clean-up procedures registered for one instance,
 * as the host does when a single call site goes away. Returns how many ran. */
JQRT_API int32_t jqrt_dispose_instance(void* instance);
/* Number of clean-up procedures currently registered. */
JQRT_API int32_t jqrt_cleanup_count(void);

/* Makes the nth NumericArrayResize call from now fail (1 = the next one);
 * 0 disables injection. Later calls succeed again. */
JQRT_API void jqrt_fail_resize(int32_t nth);
/* Makes NumericArrayResize fail, as a host out of memory does, for any block
 * larger than this many bytes; 0 lifts the limit. Lets a program pass huge
 * counts without the host actually allocating gigabytes. */
JQRT_API void jqrt_limit_block(size_t bytes);
/* Number of NumericArrayResize calls so far. */
JQRT_API int64_t jqrt_resize_calls(void);
/* Number of blocks the runtime currently holds (handles not freed). */
JQRT_API int64_t jqrt_live_blocks(void);

#ifdef __cplusplus
}
#endif
#endif
