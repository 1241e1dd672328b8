"""Shared pieces of the Python benchmarks: load the library and the host
runtime from the bench build, move numpy arrays in and out of host handles,
and time a call beside its scipy/numpy peer.

A benchmark script (bench/<name>_bench.py) imports this module, builds its
handles outside the timed region and calls `compare` for each case; the
printed ratio is the export's time over the peer's (below 1: faster)."""
import ctypes
import os
import sys
import time

import numpy as np

HERE = os.path.dirname(os.path.abspath(__file__))
BIN = os.environ.get("JQ_BENCH_BIN", os.path.join(HERE, "..", "build", "bench", "bin"))

# The runtime goes first and global, so the library finds the host's
# functions among the loaded modules.
rt = ctypes.CDLL(os.path.join(BIN, "libjqrt.so"), mode=ctypes.RTLD_GLOBAL)
lib = ctypes.CDLL(os.path.join(BIN, "libjqanlys.so"))

H = ctypes.POINTER(ctypes.POINTER(ctypes.c_uint8))
rt.jqrt_make.restype = H
rt.jqrt_make.argtypes = [ctypes.c_int32] * 4
rt.jqrt_free.argtypes = [H]
rt.jqrt_dim.restype = ctypes.c_int32
rt.jqrt_dim.argtypes = [H, ctypes.c_int32]
rt.jqrt_data.restype = ctypes.c_void_p
rt.jqrt_data.argtypes = [H, ctypes.c_int32, ctypes.c_int32]

CODES = {np.dtype(np.float64): 10, np.dtype(np.complex128): 13, np.dtype(np.float32): 9,
         np.dtype(np.complex64): 12, np.dtype(np.int32): 3, np.dtype(np.uint32): 7, np.dtype(np.uint8): 5}
DTYPES = {v: k for k, v in CODES.items()}


class Handle:
    """A host handle owned by the runtime; freed with the object."""

    def __init__(self, a=None, dtype=np.float64, dims=1):
        a = np.empty(0, dtype) if a is None else np.ascontiguousarray(a)
        self.code = CODES[a.dtype]
        self.dims = a.ndim if a.ndim == 2 else dims
        rows, cols = (a.shape if a.ndim == 2 else (a.size, 0))
        self.h = rt.jqrt_make(self.code, self.dims, rows, cols)
        if a.size:
            ctypes.memmove(rt.jqrt_data(self.h, self.code, self.dims), a.ctypes.data, a.nbytes)

    def array(self):
        rows = rt.jqrt_dim(self.h, 0)
        shape = (rows, rt.jqrt_dim(self.h, 1)) if self.dims == 2 else (rows,)
        n = int(np.prod(shape))
        out = np.empty(shape, DTYPES[self.code])
        if n:
            ctypes.memmove(out.ctypes.data, rt.jqrt_data(self.h, self.code, self.dims), out.nbytes)
        return out

    def __del__(self):
        rt.jqrt_free(self.h)


def best_time(f, repeat=7, min_time=0.05):
    """Best per-call time over `repeat` rounds of enough calls to last min_time."""
    n = 1
    while True:
        t = time.perf_counter()
        for _ in range(n):
            f()
        t = time.perf_counter() - t
        if t >= min_time or n >= 1 << 20:
            break
        n *= 2
    best = t / n
    for _ in range(repeat - 1):
        t = time.perf_counter()
        for _ in range(n):
            f()
        best = min(best, (time.perf_counter() - t) / n)
    return best


def compare(name, ours, peer, peer_name):
    """Times both and prints one row: name, our time, the peer's, the ratio."""
    a, b = best_time(ours), best_time(peer)
    print(f"{name:<44} {a * 1e3:10.3f} ms {b * 1e3:10.3f} ms ({peer_name})  ratio {a / b:5.2f}")
    sys.stdout.flush()
    return a / b
