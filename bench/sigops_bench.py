"""Convolution and correlation in the frequency domain beside scipy.signal's
FFT convolution, handle overhead included (inputs are built once, the output
handle is resized on every call as a host would see it)."""
import ctypes

import numpy as np
import scipy.signal as ss

from jqbench import Handle, compare, lib

I = ctypes.c_int32


def case(name, export, n, m, peer, peer_name):
    rng = np.random.default_rng(n + m)
    x, y = rng.standard_normal(n), rng.standard_normal(m)
    hx, hy, out = Handle(x), Handle(y), Handle()
    method, error = I(1), I(0)
    f = getattr(lib, export)

    def ours():
        f(hx.h, hy.h, out.h, ctypes.byref(method), ctypes.byref(error))

    ours()
    want = peer(x, y)
    got = out.array()
    assert error.value == 0 and got.shape == want.shape
    assert np.max(np.abs(got - want)) <= 1e-9 * np.max(np.abs(want)), name
    compare(name, ours, lambda: peer(x, y), peer_name)


def case_2d(name, rows, cols, krows, kcols):
    rng = np.random.default_rng(rows + krows)
    x, y = rng.standard_normal((rows, cols)), rng.standard_normal((krows, kcols))
    hx, hy, out = Handle(x), Handle(y), Handle(np.zeros((1, 1)))

    def ours():
        lib.Convolve_2DH(hx.h, hy.h, out.h, I(0), I(1))

    ours()
    want = ss.fftconvolve(x, y)
    assert np.max(np.abs(out.array() - want)) <= 1e-9 * np.max(np.abs(want)), name
    compare(name, ours, lambda: ss.fftconvolve(x, y), "fftconvolve")


def main():
    print("convolution and correlation, frequency domain (ratio = ours / peer)")
    case("Convolution 1e5 x 1e3", "Convolution", 100_000, 1_000, ss.fftconvolve, "fftconvolve")
    case("Convolution 1e6 x 1e6", "Convolution", 1_000_000, 1_000_000, ss.fftconvolve, "fftconvolve")
    # Rxy(x, y) puts lag 0 at x's last sample: scipy's correlate(y, x).
    case("Rxy 1e5 x 1e5", "Rxy", 100_000, 100_000, lambda x, y: ss.correlate(y, x, method="fft"),
         "correlate fft")
    case_2d("Convolve_2DH 1000x1000 by 50x50", 1000, 1000, 50, 50)


if __name__ == "__main__":
    main()
