/* jqanlys: numeric analysis library. Every export, grouped by family.
 *
 * Arrays cross the boundary as host array handles (JQHandle). Outputs are
 * resized through the host's NumericArrayResize, which a program provides
 * itself or takes from the host runtime (jqrt.h). */
#ifndef JQANLYS_H
#define JQANLYS_H

#include <stddef.h>
#include <stdint.h>

#if defined(_WIN32)
#  if defined(JQANLYS_BUILD)
#    define JQ_API __declspec(dllexport)
#  else
#    define JQ_API __declspec(dllimport)
#  endif
#else
#  define JQ_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* Pointer to the host's master pointer, which points at the array block. */
typedef uint8_t** JQHandle;

/* The same handle, named by the element type and rank an export expects.
 * Programs (and the tools that bind or exercise every export from this
 * header) read the parameter's type to know what block to pass. */
typedef JQHandle JQArrF64;  /* 1-D float64, type code 10 */
typedef JQHandle JQArrC128; /* 1-D complex float64, type code 13 */
typedef JQHandle JQArrF32;  /* 1-D float32, type code 9 */
typedef JQHandle JQArrC64;  /* 1-D complex float32, type code 12 */
typedef JQHandle JQArrI32;  /* 1-D int32, type code 3 */
typedef JQHandle JQArrU32;  /* 1-D uint32, type code 7 */
typedef JQHandle JQArrU8;   /* 1-D uint8, type code 5 */
typedef JQHandle JQMatF64;  /* 2-D float64 (rows, then columns, row-major) */
typedef JQHandle JQMatC128; /* 2-D complex float64 */
typedef JQHandle JQMatI32;  /* 2-D int32 */

/* Direction marks, empty to the compiler, on every pointer or handle
 * parameter: JQ_IN is only read, JQ_OUT is written (an output array is
 * resized by the library), JQ_INOUT is read and written. A parameter that
 * points at several elements says how many: `JQ_INOUT double coef[5]`. */
#define JQ_IN
#define JQ_OUT
#define JQ_INOUT
/* The host's per-call-site instance slot; null before first use. */
typedef void** JQSlot;
/* The host's error cluster: status flag, then the code at byte 4. */
typedef struct JQErrorCluster {
  uint8_t status;
  int32_t code;
} JQErrorCluster;

#ifdef __cplusplus
}
#endif

#include "jqanlys/frame.h"
#include "jqanlys/spectra.h"
#include "jqanlys/stats.h"
#include "jqanlys/distributions.h"
#include "jqanlys/special.h"
#include "jqanlys/noise.h"
#include "jqanlys/transforms.h"
#include "jqanlys/waveforms.h"
#include "jqanlys/windows.h"
#include "jqanlys/dct.h"
#include "jqanlys/linalg.h"
#include "jqanlys/iir.h"
#include "jqanlys/measure.h"
#include "jqanlys/fir.h"
#include "jqanlys/sigops.h"
#include "jqanlys/integration.h"
#include "jqanlys/fitting.h"
#include "jqanlys/geometry.h"

#endif
