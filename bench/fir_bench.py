#!/usr/bin/python3
"""FIR filtering, running median, smoothing and design beside scipy.signal.

Handles are made outside the timed region; each timed call includes the
export's own overhead (validation, resizing the output and the state)."""
import ctypes

import numpy as np
from scipy import ndimage, signal

from jqbench import Handle, compare, lib, rt

i32 = ctypes.c_int32
lib.ppMultiRateFIRH_DBL.argtypes = [ctypes.c_void_p] * 4 + [i32, i32, i32, ctypes.c_uint8,
                                                            ctypes.POINTER(i32), ctypes.POINTER(i32)]
lib.ppMultiRateFIRH_SGL.argtypes = lib.ppMultiRateFIRH_DBL.argtypes
lib.MedianFilter81_H.argtypes = [ctypes.c_void_p, i32, i32]
lib.SavitzkyGolayFiltH.argtypes = [ctypes.c_void_p, i32, i32]

rng = np.random.default_rng(1)
count, phase = i32(0), i32(0)


def fir(n, taps, dtype=np.float64, mode=0, down=1, up=1):
    x = rng.normal(size=n).astype(dtype)
    h = signal.firwin(taps, 0.2)
    hx, hy, hs, hh = Handle(x), Handle(dtype=dtype), Handle(dtype=dtype), Handle(h)
    f = lib.ppMultiRateFIRH_DBL if dtype == np.float64 else lib.ppMultiRateFIRH_SGL

    def ours():
        f(hx.h, hy.h, hs.h, hh.h, mode, down, up, 1, ctypes.byref(count), ctypes.byref(phase))

    return ours, x, h


ours, x, h = fir(1_000_000, 101)
compare("FIR 101 taps, 1e6 float64 samples", ours, lambda: signal.lfilter(h, 1.0, x), "lfilter")
ours, x, h = fir(1_000_000, 101, np.float32)
compare("FIR 101 taps, 1e6 float32 samples", ours, lambda: signal.lfilter(h.astype(np.float32), 1.0, x),
        "lfilter f32")
ours, x, h = fir(1_000_000, 8, np.float64)
compare("FIR 8 taps, 1e6 float64 samples", ours, lambda: signal.lfilter(h, 1.0, x), "lfilter")
for mode, down, up in [(1, 4, 1), (2, 1, 3), (3, 3, 2)]:
    ours, x, h = fir(1_000_000, 101, np.float64, mode=mode, down=down, up=up)
    compare(f"rate {up}/{down}, 101 taps, 1e6 samples", ours, lambda: signal.upfirdn(h, x, up, down), "upfirdn")

for n, k in [(100_000, 31), (100_000, 301), (10_000, 3001)]:
    x = rng.normal(size=n)
    hx = Handle(x)
    data = rt.jqrt_data(hx.h, 10, 1)

    def med():
        # The filter works in place: restore the samples first (a memmove,
        # small beside the filter), as the peer gets fresh input every call.
        ctypes.memmove(data, x.ctypes.data, x.nbytes)
        lib.MedianFilter81_H(hx.h, k // 2, k // 2)

    compare(f"median {k} points, {n} samples", med, lambda: signal.medfilt(x, k), "medfilt")
    compare(f"median {k} points, {n} samples", med, lambda: ndimage.median_filter(x, k, mode="constant"),
            "ndimage median_filter")

x = np.cumsum(rng.normal(size=1_000_000))
hx = Handle(x)
compare("Savitzky-Golay 31 points order 3, 1e6", lambda: lib.SavitzkyGolayFiltH(hx.h, 15, 3),
        lambda: signal.savgol_filter(x, 31, 3), "savgol_filter")
