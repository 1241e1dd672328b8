/* A host module that has RTSetCleanupProc but lacks NumericArrayResize. */
#include <stdint.h>
#include "load.h"

PROBE_EXPORT int32_t RTSetCleanupProc(int32_t (*proc)(void*), void* instance, int32_t mode) {
  (void)proc; (void)instance; (void)mode;
  return 0;
}
