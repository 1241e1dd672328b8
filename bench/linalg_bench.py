"""Linear algebra beside numpy.linalg (LAPACK through OpenBLAS on both sides):
determinant, inverse, solve, SVD and symmetric eigenproblem of n x n matrices,
and the 1000 x 1000 product. Our times include the row-major/column-major
conversions, as numpy's include its own copies."""
import ctypes

import numpy as np

from jqbench import Handle, compare, lib

H = ctypes.c_void_p
st = ctypes.c_int32()
det = ctypes.c_double()


def out2():
    return Handle(np.zeros((0, 0)))


def main():
    rng = np.random.default_rng(1)
    print(f"{'linear algebra':<44} {'ours':>13} {'peer':>13}")
    for n in (500, 1000):
        a = rng.standard_normal((n, n))
        sym = a @ a.T + n * np.eye(n)
        b = rng.standard_normal(n)
        ha, hs, hb = Handle(a), Handle(sym), Handle(b)
        r, v, w = out2(), out2(), Handle()
        u, s = out2(), Handle()
        compare(f"Determinant_head {n}", lambda: lib.Determinant_head(ha.h, 0, ctypes.byref(det), ctypes.byref(st)),
                lambda: np.linalg.det(a), "numpy.linalg.det")
        compare(f"InvMatrixLUDri_head {n}", lambda: lib.InvMatrixLUDri_head(ha.h, r.h, ctypes.byref(st)),
                lambda: np.linalg.inv(a), "numpy.linalg.inv")
        compare(f"EqsByLUDri_head {n}", lambda: lib.EqsByLUDri_head(ha.h, hb.h, w.h, ctypes.byref(st)),
                lambda: np.linalg.solve(a, b), "numpy.linalg.solve")
        compare(f"SVD_head {n}", lambda: lib.SVD_head(ha.h, u.h, s.h, v.h, ctypes.byref(st)),
                lambda: np.linalg.svd(a, full_matrices=False), "numpy.linalg.svd")
        compare(f"SymEvectorEvalue_head {n}", lambda: lib.SymEvectorEvalue_head(hs.h, s.h, v.h, ctypes.byref(st)),
                lambda: np.linalg.eigh(sym), "numpy.linalg.eigh")
    n = 1000
    a, c = rng.standard_normal((n, n)), rng.standard_normal((n, n))
    ha, hc, r = Handle(a), Handle(c), out2()
    compare(f"MatrixMul_head {n}", lambda: lib.MatrixMul_head(ha.h, hc.h, r.h, ctypes.byref(st)),
            lambda: a @ c, "numpy matmul")


main()
