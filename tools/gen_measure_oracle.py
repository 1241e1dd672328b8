#!/usr/bin/python3
"""Writes tests/measure/measure_oracle.inc: state levels and threshold runs of
fixed signals, computed by a plain re-implementation of the documented rules
(histogram bins, region modes, the 5 % test, run scanning), with numpy and
scipy as cross-checks where they compute the same thing:

- numpy.histogram must give the same counts on the noisy signals, whose
  samples sit away from bin edges;
- the run starts must equal a numpy run-length formulation on every signal,
  and scipy.signal.find_peaks' plateau left edges on flat, isolated pulses.

Run with the system python (numpy and scipy from Debian):
/usr/bin/python3 tools/gen_measure_oracle.py
"""
import math
import os

import numpy as np
from scipy.signal import find_peaks

OUT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "tests", "measure", "measure_oracle.inc")

WARN = 20021
CONSTANT = -20309


# ---- state levels, written from the rules ----

def extremes(x):
    """Max and min by strict comparisons from x[0]."""
    mx = mn = x[0]
    for v in x:
        if v > mx:
            mx = v
        if v < mn:
            mn = v
    return mx, mn


def histogram(x, bins):
    mx, mn = extremes(x)
    w = (mx - mn) / bins
    inv = 1.0 / w
    counts = [0] * bins
    for v in x:
        t = (v - mn) * inv
        k = 0 if math.isnan(t) else int(t)  # int() truncates toward zero
        k = min(max(k, 0), bins - 1)
        counts[k] += 1
    return counts, mn, mx, w


def modes(counts):
    b = len(counts)
    lo_top = int(0.4 * b)
    hi_bottom = int(0.6 * b)
    lo = (0, 0)
    for i in range(lo_top, -1, -1):  # downward, ties move down
        if counts[i] >= lo[1]:
            lo = (i, counts[i])
    hi = (0, 0)
    for i in range(hi_bottom, b):  # upward, ties move up
        if counts[i] >= hi[1]:
            hi = (i, counts[i])
    return lo, hi


def levels(x, bins, method, flag):
    """(code, high, low, amplitude)."""
    mx, mn = extremes(x)
    if method == 1:
        return 0, mx, mn, mx - mn
    if not (mx - mn > 0):
        return CONSTANT, 0.0, 0.0, 0.0
    counts, mn, mx, w = histogram(x, bins)
    (lb, lc), (hb, hc) = modes(counts)
    centre = lambda k: mn + w / 2 + k * w
    lo_ok = not (0.05 * len(x) > lc)
    hi_ok = not (0.05 * len(x) > hc)
    code, high, low = 0, mx, mn
    if method == 0:
        low, high = centre(lb), centre(hb)
        if not (lo_ok and hi_ok):
            code = WARN
    elif flag == 0:
        if lo_ok:
            low = centre(lb)
        if hi_ok:
            high = centre(hb)
    elif lo_ok and hi_ok:
        low, high = centre(lb), centre(hb)
    return code, high, low, high - low


# ---- threshold runs, written from the rules ----

def runs(x, threshold, width):
    out, i, n = [], 0, len(x)
    while i < n:
        while i < n and threshold > x[i]:
            i += 1
        if i >= n:
            break
        start = i
        while i < n and not (threshold > x[i]):
            i += 1
        if i - start >= width:
            out.append(start)
        i += 1
    return out


def runs_numpy(x, threshold, width):
    up = ~(threshold > np.asarray(x))  # NaN compares false: not below
    edges = np.diff(np.concatenate(([0], up.astype(np.int8), [0])))
    starts, ends = np.flatnonzero(edges == 1), np.flatnonzero(edges == -1)
    return [int(s) for s, e in zip(starts, ends) if e - s >= width]


# ---- signals ----

def level_signals():
    rng = np.random.default_rng(7071)
    s = {}
    t = np.arange(400)
    s["pulse"] = np.round(np.where((t % 50) < 15, 5.0, 0.0) + rng.normal(0, 0.05, 400), 6)
    s["square"] = np.where((np.arange(100) // 10) % 2 == 1, 5.0, 0.0)
    spike = np.round(rng.normal(0, 0.01, 200), 6)
    spike[77] = 10.0
    s["spike"] = spike
    s["ramp"] = np.round(np.linspace(-1, 1, 101), 12)
    # Integer data, one value per bin at 10 bins: the low region ties bins 0,
    # 2 and 4 at 3 samples; the high region ties bins 6 and 9 at 4.
    tie_counts = [3, 1, 3, 2, 3, 0, 4, 1, 1, 4]
    s["ties"] = np.array(sum(([float(k)] * c for k, c in enumerate(tie_counts)), []))[rng.permutation(22)]
    # A 0.1 grid over [0, 3]: many samples sit on bin edges at 30 bins, so
    # the multiply-by-reciprocal rounding decides their bins.
    s["grid"] = np.round(rng.integers(0, 31, 300) * 0.1, 1)
    s["grid"][0], s["grid"][1] = 0.0, 3.0
    nan = s["pulse"][:120].copy()
    nan[[5, 60, 61]] = np.nan
    s["nan_inside"] = nan
    s["three_level"] = np.round(np.repeat([0.0, 2.0, 1.0, 2.0, 0.0, 1.0], 20) + rng.normal(0, 0.02, 120), 6)
    return s


LEVEL_BINS = [1, 2, 3, 4, 5, 7, 10, 30, 100, 256, 1000, 1025, 4096]


def peak_signals():
    rng = np.random.default_rng(1402)
    s = {}
    pulses = [0.0, 0.0]
    for length in list(range(1, 13)) + [3, 1, 9, 2]:
        pulses += [float(rng.integers(1, 4))] * length + [0.0] * int(rng.integers(1, 4))
    s["pulses"] = np.array(pulses)
    s["noisy"] = np.round(rng.normal(0, 1, 1000), 1)
    nans = np.round(rng.normal(0, 1, 300), 1)
    nans[rng.choice(300, 30, replace=False)] = np.nan
    s["nans"] = nans
    s["edge_runs"] = np.array([2, 2, 2, 0, 1, 0, 2, 2, 0, 0, 3, 3, 3, 3], float)
    return s


PEAK_CASES = {
    "pulses": [(0.5, w) for w in (1, 2, 3, 5, 8, 12)] + [(1.5, 2), (2.5, 4)],
    "noisy": [(t, w) for t in (-0.5, 0.0, 0.5, 1.5) for w in (1, 2, 3, 4, 7)],
    "nans": [(t, w) for t in (0.0, 1.0) for w in (1, 2, 3)] + [(float("nan"), 1), (float("inf"), 1)],
    "edge_runs": [(1.0, w) for w in (1, 2, 3, 4)] + [(2.0, 3), (-1.0, 13)],
}


def num(v):
    v = float(v)
    if math.isnan(v):
        return "kNaN"
    if math.isinf(v):
        return "kInf" if v > 0 else "-kInf"
    return repr(v)


def array(name, ctype, values):
    return "const %s %s[] = {%s};\n" % (ctype, name, ", ".join(num(v) for v in values))


def main():
    out = ["// Generated by tools/gen_measure_oracle.py; do not edit.\n"]
    rows = []
    for name, x in level_signals().items():
        out.append(array("levels_" + name, "double", x))
        finite = bool(np.all(np.isfinite(x)))
        for bins in LEVEL_BINS:
            if finite and name in ("pulse", "spike", "three_level"):
                c, mn, mx, _ = histogram(list(x), bins)
                np_counts, _ = np.histogram(x, bins, (mn, mx))
                assert list(np_counts) == c, (name, bins)
            for method in (0, 1, 2):
                for flag in ((0, 1) if method == 2 else (0,)):
                    code, high, low, amp = levels(list(x), bins, method, flag)
                    rows.append('  {"%s", levels_%s, %d, %d, %d, %d, %d, %s, %s, %s},\n' % (
                        name, name, len(x), bins, method, flag, code, num(high), num(low), num(amp)))
    out.append("const LevelCase kLevelCases[] = {\n" + "".join(rows) + "};\n")

    rows = []
    for name, x in peak_signals().items():
        out.append(array("peaks_" + name, "double", x))
        for threshold, width in PEAK_CASES[name]:
            got = runs(list(x), threshold, width)
            assert got == runs_numpy(x, threshold, width), (name, threshold, width)
            if name == "pulses":
                _, props = find_peaks(x, height=threshold, plateau_size=width)
                assert got == list(props["left_edges"]), (threshold, width)
            rows.append('  {"%s", peaks_%s, %d, %s, %d, {%s}},\n' % (
                name, name, len(x), num(threshold), width, ", ".join(map(str, got))))
    out.append("const PeakCase kPeakCases[] = {\n" + "".join(rows) + "};\n")
    with open(OUT, "w") as f:
        f.writelines(out)


if __name__ == "__main__":
    main()
