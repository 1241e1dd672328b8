#!/usr/bin/python3
"""Writes tests/stats/oracle.inc: data sets with their statistics, and points
of the distribution functions with their values at 40 digits (mpmath) beside
scipy's, and scipy's quantiles for the inverses.

Where the library's arithmetic is fixed (a left-to-right sum, the histogram's
bin rule, the centres built by repeated addition) the expected value is that
arithmetic replayed here in double precision, and numpy's own result is
checked against it before it is written. Elsewhere numpy/scipy are the
reference. Run with the system python:
    /usr/bin/python3 tools/gen_stats_oracle.py
"""
import collections
import math
import os

import mpmath as mp
import numpy as np
import scipy.stats as st
from scipy import special as sc

rng = np.random.default_rng(20261123)
mp.mp.dps = 40
OUT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "tests", "stats", "oracle.inc")


def lit(v):
    if math.isnan(v):
        return "NAN"
    if math.isinf(v):
        return "INFINITY" if v > 0 else "-INFINITY"
    return float(v).hex()


def arr(vals):
    return "{" + ", ".join(lit(float(v)) for v in vals) + "}"


def iarr(vals):
    return "{" + ", ".join(str(int(v)) for v in vals) + "}"


def left_to_right(vals):
    s = 0.0
    for v in vals:
        s += v
    return s


def histogram_model(x, k):
    lo, hi = x[0], x[0]
    for v in x[1:]:
        if v < lo:
            lo = v
        elif v > hi:
            hi = v
    counts = [0] * k
    w = (hi - lo) / k
    c, centres = lo + w / 2, []
    for _ in range(k):
        centres.append(c)
        c += w
    for v in x:
        i = math.floor((v - lo) * k / (hi - lo))
        if 0 <= i < k:
            counts[i] += 1
        elif v == hi:
            counts[k - 1] += 1
    return counts, centres


def exact_modes(x):
    c = collections.Counter(x)
    best = max(c.values())
    return [] if best == 1 else sorted(v for v, n in c.items() if n == best)


def data_sets():
    yield "normal 1000", list(rng.normal(3, 2, 1000))
    yield "uniform 1001", list(rng.uniform(-1e6, 1e6, 1001))
    yield "rounded ties 500", list(np.round(rng.normal(0, 3, 500)))
    yield "wide scale 64", list(rng.normal(0, 1, 64) * 10.0 ** rng.integers(-30, 30, 64))


def descriptive():
    rows = []
    for name, x in data_sets():
        x = [float(v) for v in x]
        y = [float(v) for v in rng.normal(0, 1, len(x))]
        n = len(x)
        a = np.array(x)
        mean = left_to_right(x) / n
        rms = math.sqrt(left_to_right(v * v for v in x) / n)
        mse = left_to_right((u - 2 * v) * u + v * v for u, v in zip(x, y)) / n
        assert abs(mean - np.mean(a)) <= 1e-12 * np.mean(np.abs(a))
        assert abs(mse - np.mean((a - np.array(y)) ** 2)) <= 1e-12 * mse
        moments = [float(st.moment(a, k)) for k in (2, 3, 4)]
        k = 7
        counts, centres = histogram_model(x, k)
        np_counts, np_edges = np.histogram(a, k)
        assert list(np_counts) == counts, name
        assert np.allclose((np_edges[:-1] + np_edges[1:]) / 2, centres, rtol=0, atol=1e-12 * (max(x) - min(x)))
        modes = exact_modes(x)
        # Uneven edges that leave the lowest values out and end at the maximum.
        edges = [float(e) for e in np.percentile(a, [5, 20, 21, 50, 90])] + [max(x)]
        edge_counts = [int(c) for c in np.histogram(a, bins=edges)[0]]
        rows.append(f'  {{"{name}", {arr(x)},\n   {arr(y)},\n   {lit(mean)}, {lit(rms)}, {lit(mse)}, '
                    f'{lit(float(np.median(a)))}, {arr(moments)},\n   {iarr(counts)}, {arr(centres)}, {arr(modes)},\n   {arr(edges)}, {iarr(edge_counts)}}},')
    return ("struct DataSet {\n  const char* name;\n  std::vector<double> x, y;\n  double mean, rms, mse, median;\n"
            "  std::vector<double> moments;  // orders 2, 3, 4\n  std::vector<int32_t> counts;  // 7 intervals\n"
            "  std::vector<double> centres, modes, edges;\n  std::vector<int32_t> edge_counts;\n};\n\nconst DataSet kDataSets[] = {\n" + "\n".join(rows) + "\n};\n")


def ibeta(a, b, x):
    """I(x; a, b) at the working precision: the continued fraction, on the
    side of (a + 1) / (a + b + 2) where it converges."""
    a, b, x = mp.mpf(a), mp.mpf(b), mp.mpf(x)
    if x == 0:
        return mp.mpf(0)
    if x * (a + b + 2) > a + 1:
        return 1 - ibeta(b, a, 1 - x)
    tiny = mp.mpf(10) ** -300
    c, d = mp.mpf(1), 1 - (a + b) * x / (a + 1)
    d = 1 / (d if abs(d) > tiny else tiny)
    h = d
    for m in range(1, 10**6):
        for num in (m * (b - m) * x / ((a + 2 * m - 1) * (a + 2 * m)),
                    -(a + m) * (a + b + m) * x / ((a + 2 * m) * (a + 2 * m + 1))):
            d = 1 + num * d
            d = 1 / (d if abs(d) > tiny else tiny)
            c = 1 + num / c
            c = c if abs(c) > tiny else tiny
            h *= d * c
        if abs(d * c - 1) < mp.mpf(10) ** -38:
            break
    front = mp.exp(a * mp.log(x) + b * mp.log1p(-x) - mp.log(mp.beta(a, b)))
    return front * h / a


def t_mp(t, nu):
    t, nu = mp.mpf(t), mp.mpf(nu)
    q = ibeta(nu / 2, mp.mpf(1) / 2, nu / (nu + t * t)) / 2
    return float(q if t < 0 else 1 - q)


def f_mp(f, n1, n2):
    if math.isinf(f):
        return 1.0
    w = mp.mpf(n1) * mp.mpf(f)
    return float(ibeta(mp.mpf(n1) / 2, mp.mpf(n2) / 2, w / (w + n2)))


def chi_mp(x, nu):
    return float(mp.gammainc(mp.mpf(nu) / 2, 0, mp.mpf(x) / 2, regularized=True))


def contingency():
    rows = []
    for shape in [(2, 2), (3, 5), (6, 2), (1, 4)]:
        t = rng.integers(1, 60, shape).astype(float)
        stat = float(st.chi2_contingency(t, correction=False)[0]) if min(shape) > 1 else 0.0
        rows.append(f"  {{{shape[0]}, {shape[1]}, {arr(t.ravel())}, {lit(stat)}}},")
    return ("struct Table {\n  int32_t rows, cols;\n  std::vector<double> counts;\n  double chi2;\n};\n\n"
            "const Table kTables[] = {\n" + "\n".join(rows) + "\n};\n")


def dof():
    return [1, 2, 3, 5, 10, 30, 100, 1000, 100000]


def distributions():
    t_rows, f_rows, c_rows, it_rows, if_rows, ic_rows = [], [], [], [], [], []
    for nu in dof():
        for t in [-1e200, -1e10, -300.0, -40.0, -7.5, -2.0, -0.7, -1e-3, -1e-9, 1e-9, 0.25, 1.0, 3.0, 12.0, 150.0, 1e6]:
            t_rows.append((t, nu, t_mp(t, nu), float(st.t.cdf(t, nu))))
        for x in [1e-8, 0.01, 0.5, 1.0, nu * 0.3, float(nu), nu * 2.5, nu + 20 * math.sqrt(nu), 5000.0]:
            c_rows.append((x, nu, chi_mp(x, nu), float(st.chi2.cdf(x, nu))))
        for p in [1e-6, 0.01, 0.3, 0.5, 0.77, 0.99, 0.999999]:
            q = float(st.t.ppf(p, nu))
            if abs(q) < 9999:
                it_rows.append((p, nu, q))
            ic_rows.append((p, nu, float(st.chi2.ppf(p, nu))))
    for n1, n2 in [(1, 1), (1, 30), (3, 7), (10, 2), (40, 40), (200, 150), (1000, 5)]:
        for f in [1e-300, 1e-7, 0.01, 0.2, 0.9, 1.0, 1.7, 4.0, 30.0, 1e4, 1e12, math.inf]:
            f_rows.append((f, n1, n2, f_mp(f, n1, n2), float(st.f.cdf(f, n1, n2))))
        for p in [1e-4, 0.05, 0.5, 0.95, 0.999]:
            q = float(st.f.ppf(p, n1, n2))
            if 1e-6 < q < 9999:
                if_rows.append((p, n1, n2, q))
    norm = [(x, float(sc.ndtr(x))) for x in np.linspace(-9, 9, 73)]
    inorm = [(p, float(sc.ndtri(p))) for p in [1e-300, 1e-20, 1e-6, 0.01, 0.2, 0.4999, 0.5, 0.6, 0.9, 0.999, 1 - 1e-12]]

    def table(name, fields, rows):
        body = ",\n".join("  {" + ", ".join(lit(v) if isinstance(v, float) else str(v) for v in r) + "}" for r in rows)
        return f"struct {name}Point {{ {fields}; }};\nconst {name}Point k{name}[] = {{\n{body}\n}};\n"

    return "\n".join([
        table("TCdf", "double t; int32_t nu; double p, scipy", t_rows),
        table("FCdf", "double f; int32_t nu1, nu2; double p, scipy", f_rows),
        table("ChiCdf", "double x; int32_t nu; double p, scipy", c_rows),
        table("TInv", "double p; int32_t nu; double t", it_rows),
        table("FInv", "double p; int32_t nu1, nu2; double f", if_rows),
        table("ChiInv", "double p; int32_t nu; double x", ic_rows),
        table("NormCdf", "double x, p", norm),
        table("NormInv", "double p, x", inorm),
    ])


with open(OUT, "w") as f:
    f.write("// Generated by tools/gen_stats_oracle.py; do not edit.\n\n")
    f.write(descriptive())
    f.write("\n")
    f.write(contingency())
    f.write("\n")
    f.write(distributions())
