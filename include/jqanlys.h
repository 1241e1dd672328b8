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
#include "jqanlys/special.h"
#include "jqanlys/noise.h"
#include "jqanlys/transforms.h"
#include "jqanlys/waveforms.h"
#include "jqanlys/windows.h"
#include "jqanlys/dct.h"

#endif
