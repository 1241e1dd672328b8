/* A host written from the binary interface alone: its own NumericArrayResize
 * and RTSetCleanupProc, exported from the program, with no part of the
 * project's runtime. It loads the library by path, names itself with
 * SetJQRTModule and checks results, codes and NaNs of the first exports,
 * including an injected resize failure. */
#include <math.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "load.h"

static int g_fail_at = 0; /* the call number that fails, 0 for none */
static int g_calls = 0;

PROBE_EXPORT const int32_t gJQRTVersion = 1;

PROBE_EXPORT int32_t NumericArrayResize(int32_t type, int32_t dims, uint8_t*** handle, size_t count) {
  size_t elem = type == 10 ? 8 : type == 13 ? 16 : type == 5 ? 1 : 4;
  size_t head = (type == 10 || type == 13 || dims == 2) ? 8 : 4;
  if (++g_calls == g_fail_at) return 2;
  if (!*handle) {
    *handle = (uint8_t**)calloc(1, sizeof(uint8_t*));
    if (!*handle) return 2;
  }
  uint8_t* b = (uint8_t*)realloc(**handle, head + count * elem + 1);
  if (!b) return 2;
  **handle = b;
  return 0;
}

PROBE_EXPORT int32_t RTSetCleanupProc(int32_t (*proc)(void*), void* instance, int32_t mode) {
  (void)proc; (void)instance; (void)mode;
  return 0;
}

static uint8_t** make_f64(const double* v, int32_t n) {
  uint8_t** h = (uint8_t**)calloc(1, sizeof(uint8_t*));
  *h = (uint8_t*)calloc(1, 8 + (size_t)n * 8 + 1);
  memcpy(*h, &n, 4);
  if (n) memcpy(*h + 8, v, (size_t)n * 8);
  return h;
}
static void free_handle(uint8_t** h) {
  if (h) { free(*h); free(h); }
}
static int32_t count_of(uint8_t** h) { int32_t n = 0; if (h && *h) memcpy(&n, *h, 4); return n; }

static int failures = 0, passes = 0;
#define CHECK(cond) do { if (cond) ++passes; else { ++failures; fprintf(stderr, "failed: %s (line %d)\n", #cond, __LINE__); } } while (0)

typedef void (*SetModuleFn)(void*);
typedef int32_t (*ScalarFn)(uint8_t**, double*, int32_t*);
typedef int32_t (*HistFn)(uint8_t**, int32_t*, uint8_t**, uint8_t**, int32_t*);
typedef struct { uint8_t status; int32_t code; } Cluster;
typedef int32_t (*WorkspaceFn)(Cluster*);

int main(int argc, char** argv) {
  if (argc < 2) { fprintf(stderr, "usage: independent_host LIBRARY\n"); return 2; }
  void* lib = load_module(argv[1]);
  if (!lib) { fprintf(stderr, "cannot load %s\n", argv[1]); return 2; }
  SetModuleFn set_module = (SetModuleFn)find_symbol(lib, "SetJQRTModule");
  ScalarFn mean = (ScalarFn)find_symbol(lib, "Mean_head");
  ScalarFn rms = (ScalarFn)find_symbol(lib, "RMS_head");
  HistFn hist = (HistFn)find_symbol(lib, "histgran_head");
  WorkspaceFn enable = (WorkspaceFn)find_symbol(lib, "EnableAnalysisWorkspaceH");
  if (!set_module || !mean || !rms || !hist || !enable) { fprintf(stderr, "missing exports\n"); return 2; }
  set_module(self_module());

  double v[4] = {1, 2, 3, 6};
  uint8_t** x = make_f64(v, 4);
  uint8_t** empty = make_f64(NULL, 0);
  double r = 0;
  int32_t err = 7;
  CHECK(mean(x, &r, &err) == 0 && err == 0 && r == 3.0);
  CHECK(rms(x, &r, &err) == 0 && err == 0 && fabs(r - sqrt(50.0 / 4)) < 1e-15);
  CHECK(mean(empty, &r, &err) == 0 && err == -20003 && isnan(r));
  CHECK(rms(empty, &r, &err) == 0 && err == -20003 && isnan(r));

  /* A histogram: two outputs, resized by this host. */
  int32_t k = 2;
  uint8_t** counts = make_f64(NULL, 0);
  uint8_t** centres = make_f64(NULL, 0);
  CHECK(hist(x, &k, counts, centres, &err) == 0 && err == 0);
  CHECK(count_of(counts) == 2 && count_of(centres) == 2);
  int32_t c0, c1;
  memcpy(&c0, *counts + 4, 4);
  memcpy(&c1, *counts + 8, 4);
  CHECK(c0 == 3 && c1 == 1);

  /* The second resize fails: the host's status is the result, the code is
   * -20001, and both outputs come back empty. */
  g_fail_at = g_calls + 2;
  CHECK(hist(x, &k, counts, centres, &err) == 2 && err == -20001);
  CHECK(count_of(counts) == 0 && count_of(centres) == 0);
  CHECK(hist(empty, &k, counts, centres, &err) == 0 && err == -20003);

  Cluster cl = {0, 55};
  CHECK(enable(&cl) == 0 && cl.status == 0 && cl.code == 0);
  cl.status = 1;
  cl.code = -7;
  CHECK(enable(&cl) == 0 && cl.status == 1 && cl.code == -7);

  free_handle(x);
  free_handle(empty);
  free_handle(counts);
  free_handle(centres);
  printf("independent host: %d passed, %d failed\n", passes, failures);
  return failures ? 1 : 0;
}
