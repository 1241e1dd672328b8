"""Fitting beside numpy.polyfit: a degree-5 polynomial over 10^6 points (our
QR and SVD methods) and a straight line over 10^7 points. Our times include
building the design matrix and the best-fit curve, as polyfit's include its
Vandermonde matrix; polyfit returns no curve, so the peer also evaluates
its polynomial at every point."""
import ctypes

import numpy as np

from jqbench import Handle, compare, lib

mse = ctypes.c_double()
slope = ctypes.c_double()
intercept = ctypes.c_double()
status = ctypes.c_int32()


def main():
    rng = np.random.default_rng(1)
    print(f"{'fitting':<44} {'ours':>13} {'peer':>13}")
    n = 10 ** 6
    x = np.linspace(-1.0, 1.0, n)
    y = np.polyval(rng.standard_normal(6), x) + 0.01 * rng.standard_normal(n)
    hx, hy, fit, coef = Handle(x), Handle(y), Handle(), Handle()
    for method, name in ((1, "QR"), (0, "SVD")):
        compare(f"PolyFit_head order 5, 1e6 points, {name}",
                lambda: lib.PolyFit_head(hx.h, hy.h, 5, method, fit.h, coef.h, ctypes.byref(mse)),
                lambda: np.polyval(np.polyfit(x, y, 5), x), "numpy.polyfit+polyval")
    got = coef.array()[::-1]
    want = np.polyfit(x, y, 5)
    print(f"  largest coefficient difference from polyfit: {np.max(np.abs(got - want)):.2e}")
    n = 10 ** 7
    x = rng.uniform(0.0, 10.0, n)
    y = 3.0 * x - 1.0 + rng.standard_normal(n)
    hx, hy, fit, none = Handle(x), Handle(y), Handle(), Handle()
    compare("LinFit_head 1e7 points",
            lambda: lib.LinFit_head(hy.h, hx.h, none.h, fit.h, ctypes.byref(slope), ctypes.byref(intercept),
                                    ctypes.byref(mse)),
            lambda: np.polyval(np.polyfit(x, y, 1), x), "numpy.polyfit+polyval")
    compare("LinFitCoef_head 1e7 points (coefficients only)",
            lambda: lib.LinFitCoef_head(hy.h, hx.h, ctypes.byref(slope), ctypes.byref(intercept), ctypes.byref(status)),
            lambda: np.polyfit(x, y, 1), "numpy.polyfit")


lib.PolyFit_head.argtypes = [ctypes.c_void_p, ctypes.c_void_p, ctypes.c_int32, ctypes.c_int32, ctypes.c_void_p,
                             ctypes.c_void_p, ctypes.c_void_p]
main()
