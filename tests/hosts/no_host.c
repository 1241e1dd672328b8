/* Calls an export that needs the host from a process without one. With an
 * argument naming a module, that module is given to SetJQRTModule first. The
 * library is expected to end the process with status 1. */
#include <stdint.h>
#include <stdio.h>

#include "load.h"

#ifdef PROBE_IS_HOST
/* This variant is itself a host: the process module exports the marker and
 * NumericArrayResize, so only a module named by SetJQRTModule can make the
 * binding fail. */
PROBE_EXPORT const int32_t gJQRTVersion = 1;
PROBE_EXPORT int32_t NumericArrayResize(int32_t type, int32_t dims, uint8_t*** handle, size_t count) {
  (void)type; (void)dims; (void)handle; (void)count;
  return 2;
}
#endif

typedef void (*SetModuleFn)(void*);
typedef int32_t (*HistFn)(uint8_t**, int32_t*, uint8_t**, uint8_t**, int32_t*);

int main(int argc, char** argv) {
  if (argc < 2) return 2;
  void* lib = load_module(argv[1]);
  if (!lib) { fprintf(stderr, "cannot load %s\n", argv[1]); return 2; }
  if (argc > 2) {
    void* host = load_module(argv[2]);
    if (!host) { fprintf(stderr, "cannot load %s\n", argv[2]); return 2; }
    ((SetModuleFn)find_symbol(lib, "SetJQRTModule"))(host);
  }
  HistFn hist = (HistFn)find_symbol(lib, "histgran_head");
  union { int32_t n; double d[3]; } block = {2};
  block.d[1] = 1;
  block.d[2] = 2;
  uint8_t* p = (uint8_t*)&block;
  uint8_t* out_block = NULL;
  int32_t k = 2, err = 0;
  hist(&p, &k, &out_block, &out_block, &err);
  fprintf(stderr, "the library returned instead of ending the process\n");
  return 0;
}
