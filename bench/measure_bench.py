"""State levels and the threshold peak detector on 10^6 samples, beside
numpy/scipy formulations of the same measurements.

PeakDetector's peers: a numpy run-length formulation (the same result), and
scipy.signal.find_peaks with the threshold as height and the width as
plateau size (the same result on flat pulses; shown because it is what
people reach for). StateLevels' peer: numpy min/max and numpy.histogram with
the region modes taken by argmax.

Run with the system python: /usr/bin/python3 bench/measure_bench.py
"""
import ctypes

import numpy as np
from scipy.signal import find_peaks

import jqbench as jb

N = 1_000_000
I32 = ctypes.c_int32
D = ctypes.c_double

jb.lib.PeakDetector.argtypes = [jb.H, ctypes.POINTER(D), ctypes.POINTER(I32), jb.H, ctypes.POINTER(I32),
                                ctypes.POINTER(I32)]
jb.lib.StateLevels.argtypes = [jb.H, D, D, I32, I32, ctypes.POINTER(ctypes.c_void_p), ctypes.POINTER(D),
                               ctypes.POINTER(D), ctypes.POINTER(D), I32]


def pulses(rng, noise):
    """A pulse train of random lengths between 0 and 1, with noise."""
    lengths = rng.integers(1, 40, N // 10)
    levels = np.resize([0.0, 1.0], lengths.size)
    x = np.repeat(levels, lengths)[:N]
    return x + rng.normal(0, noise, N) if noise else x


def runs_numpy(x, threshold, width, interior=False):
    up = ~(threshold > x)
    edges = np.diff(np.concatenate(([0], up.view(np.int8), [0])))
    starts, ends = np.flatnonzero(edges == 1), np.flatnonzero(edges == -1)
    keep = ends - starts >= width
    if interior:  # find_peaks sees no plateau that touches either end
        keep &= (starts > 0) & (ends < x.size)
    return starts[keep]


def levels_numpy(x, bins):
    mn, mx = x.min(), x.max()
    counts, _ = np.histogram(x, bins, (mn, mx))
    w = (mx - mn) / bins
    lo_top, hi_bottom = int(0.4 * bins), int(0.6 * bins)
    lo = np.argmax(counts[:lo_top + 1])
    hi = bins - 1 - np.argmax(counts[hi_bottom:][::-1])
    return mn + w / 2 + hi * w, mn + w / 2 + lo * w


def main():
    rng = np.random.default_rng(3)
    # glibc serves the runtime's first multi-megabyte blocks by mmap until a
    # large block has been freed; free one first so that every case sees the
    # allocator in its steady state (PeakDetector sizes its output to the
    # n / width + 1 upper bound on every call).
    jb.Handle(np.empty(4 * N, np.int32))
    print(f"measurements on {N} samples (ratio = ours / peer; machine shared with other builds)")
    for label, noise in (("flat pulses", 0.0), ("noisy pulses", 0.05)):
        x = pulses(rng, noise)
        xh = jb.Handle(x)
        out = jb.Handle(np.empty(0, np.int32))
        thr, count, err = D(0.5), I32(), I32()
        for width in (1, 5):
            w = I32(width)
            call = lambda: jb.lib.PeakDetector(xh.h, ctypes.byref(thr), ctypes.byref(w), out.h, ctypes.byref(count),
                                               ctypes.byref(err))
            call()
            ours = out.array()
            assert np.array_equal(ours, runs_numpy(x, 0.5, width))
            jb.compare(f"PeakDetector {label} w={width}", call, lambda: runs_numpy(x, 0.5, width), "numpy runs")
            if noise == 0.0:
                _, props = find_peaks(x, height=0.5, plateau_size=width)
                assert np.array_equal(props["left_edges"], runs_numpy(x, 0.5, width, interior=True))
                jb.compare(f"PeakDetector {label} w={width}", call,
                           lambda: find_peaks(x, height=0.5, plateau_size=width), "find_peaks plateau")
            else:
                jb.compare(f"PeakDetector {label} w={width}", call,
                           lambda: find_peaks(x, height=0.5, width=width), "find_peaks width")
        slot = ctypes.c_void_p()
        hi, lo, amp = D(), D(), D()
        for bins in (100, 4096):
            call = lambda: jb.lib.StateLevels(xh.h, 0.0, 1.0, 0, bins, ctypes.byref(slot), ctypes.byref(hi),
                                              ctypes.byref(lo), ctypes.byref(amp), 0)
            call()
            peer_hi, peer_lo = levels_numpy(x, bins)
            assert abs(hi.value - peer_hi) < 1e-12 and abs(lo.value - peer_lo) < 1e-12, (hi, lo, peer_hi, peer_lo)
            jb.compare(f"StateLevels {label} bins={bins}", call, lambda: levels_numpy(x, bins), "numpy histogram")
        jb.lib.MeasurementUnreserveProc(ctypes.byref(slot))


if __name__ == "__main__":
    main()
