/* Loads the library from the path given and computes one determinant that
 * needs the BLAS/LAPACK module; prints "refused" when the library does not
 * load, else the status and the determinant. */
#include <stdint.h>
#include <stdio.h>

#include "load.h"

typedef int32_t (*Determinant)(uint8_t**, int32_t, double*, int32_t*);

int main(int argc, char** argv) {
  if (argc < 2) return 2;
  void* lib = load_module(argv[1]);
  if (!lib) {
    printf("refused\n");
    return 0;
  }
  Determinant det = (Determinant)find_symbol(lib, "Determinant_head");
  if (!det) return 3;
  /* A 3 x 3 host matrix: rows, columns, then diag(1, 2, 3) row by row. */
  union {
    int32_t dims[2];
    double align;
  } head;
  double block[1 + 9] = {0, 1, 0, 0, 0, 2, 0, 0, 0, 3};
  head.dims[0] = 3;
  head.dims[1] = 3;
  block[0] = head.align;
  uint8_t* master = (uint8_t*)block;
  double d = 0;
  int32_t status = 1;
  det(&master, 0, &d, &status);
  printf("status %d determinant %g\n", (int)status, d);
  return 0;
}
