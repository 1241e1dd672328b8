#!/usr/bin/python3
"""Writes tests/special/oracle.inc: reference values of the special functions.

Each point carries two references: scipy.special's value and the value
computed at 50 digits with mpmath (the Gaussian, which scipy lacks, has only
the latter). Grids are dense and include the points where the routines
switch between formulas. Run with the system python:
    /usr/bin/python3 tools/special_oracle.py
"""
import math
import os

import mpmath as mp
import numpy as np
import scipy.special as sc

mp.mp.dps = 50
rng = np.random.default_rng(20261121)


def nbr(x, k=2):
    """x and its k neighbours on each side."""
    out = [x]
    lo = hi = x
    for _ in range(k):
        lo = math.nextafter(lo, -math.inf)
        hi = math.nextafter(hi, math.inf)
        out += [lo, hi]
    return out


def logspace(a, b, n):
    return list(np.exp(np.linspace(math.log(a), math.log(b), n)))


def grid_gamma():
    xs = list(np.linspace(0.01, 171.6, 700)) + logspace(1e-300, 1, 60) + [0.5, 1.5, 2.5, 1, 2, 3, 10, 33, 170.5]
    xs += nbr(2.0) + nbr(3.0) + nbr(171.6)
    xs += [x for x in np.linspace(-169.9, -0.01, 500) if x != math.floor(x)]
    xs += [-0.5, -1.5, -1e-10, -2.000001, -1.999999]
    return [(x,) for x in xs]


def grid_lgamma():
    xs = list(np.linspace(0.0, 60, 600)) + logspace(1e-300, 1e300, 300) + [1000.0, 999.5, 1000.5, 2.0, 3.0]
    xs += nbr(33.0) + nbr(1000.0) + nbr(2.0) + nbr(3.0) + nbr(1.0)
    return [(x,) for x in xs if x > 0]


def grid_psi():
    x0 = 1.4616321449683622
    xs = list(np.linspace(0.01, 30, 500)) + logspace(1e-300, 1e300, 200) + list(np.linspace(x0 - 0.2, x0 + 0.2, 200))
    xs += nbr(x0, 4) + nbr(10.0) + [x0 - 0.1, x0 + 0.1]
    xs += [x for x in np.linspace(-30.3, -0.01, 400) if x != math.floor(x)]
    return [(x,) for x in xs]


def grid_gammainc():
    pts = []
    for a in [0.01, 0.1, 0.5, 1.0, 1.5, 2.5, 5.0, 10.0, 20.5, 50.0, 100.0, 300.0, 1000.0, 2500.0, 1e4]:
        for x in logspace(1e-3 * a, 20 * a + 20, 60) + [a, a + 1, math.nextafter(a + 1, 0), a - 1]:
            if x > 0:
                pts.append((a, x))
    return pts


def grid_gammaincc():
    pts = []
    for a in [1e-20, 1e-8, 0.01, 0.3, 0.9, 1.0, 3.0, 30.0, 300.0, 5000.0]:
        for x in logspace(1e-6, 20 * a + 30, 50) + [a, a + 1, math.nextafter(a + 1, 0)]:
            pts.append((a, x))
    return pts


def grid_beta():
    v = logspace(0.01, 600, 25) + [2000.0, 1e4]
    return [(a, b) for a in v for b in v]


def grid_betainc():
    pts = []
    # a = 1 takes the fixed closed form 1 - (1 - x)^b, which is tested by itself.
    for a in [0.05, 0.5, 1.5, 2.0, 3.5, 10.0, 40.0, 200.0, 3000.0]:
        for b in [0.05, 0.5, 1.0, 1.5, 5.0, 30.0, 150.0, 2500.0]:
            split = (a + 1) / (a + b + 2)
            xs = list(np.linspace(0.001, 0.999, 40)) + logspace(1e-12, 0.5, 10) + nbr(split) + [0.5]
            pts += [(a, b, x) for x in xs if 0 < x < 1]
    return pts


def grid_erf():
    xs = list(np.linspace(-6, 6, 801)) + nbr(1.0) + nbr(-1.0) + logspace(1e-300, 1e-3, 40)
    return [(x,) for x in xs]


def grid_erfc():
    xs = list(np.linspace(-6, 27, 900)) + nbr(1.0) + nbr(-1.0) + nbr(8.0) + [26.6, 26.64, -26.6]
    # Beyond x^2 = 709.78 the result is fixed at 0 (or 2), tested by itself.
    xs = [x for x in xs if x * x <= 709.782712893384]
    return [(x,) for x in xs]


def grid_dawson():
    xs = list(np.linspace(-12, 12, 801)) + nbr(8.0) + nbr(-8.0) + logspace(1e-300, 1e300, 100)
    return [(x,) for x in xs]


def grid_gauss():
    pts = []
    for _ in range(400):
        x, c = rng.uniform(-50, 50, 2)
        s = float(np.exp(rng.uniform(-3, 3)))
        amp = float(rng.uniform(-5, 5))
        pts.append((float(x), amp, float(c), s))
    return pts


def mp_gamma_p(a, x):
    # Where mpmath's series for P does not converge, P is near 1 and the
    # complement is safe.
    try:
        return mp.gammainc(a, 0, x, regularized=True)
    except mp.libmp.NoConvergence:
        return 1 - mp.gammainc(a, x, mp.inf, regularized=True)


def mp_beta_inc(a, b, x):
    try:
        return mp.betainc(a, b, 0, x, regularized=True)
    except (ValueError, mp.libmp.NoConvergence):
        # The complement, with digits to spare for the subtraction.
        with mp.workdps(150):
            return 1 - mp.betainc(b, a, 0, 1 - mp.mpf(x), regularized=True)


def mp_gauss(x, amp, c, s):
    t = (mp.mpf(x) - mp.mpf(c)) / mp.mpf(s)
    return float(mp.mpf(amp) * mp.exp(-t * t / 2))


FUNCTIONS = [
    # name, grid, scipy oracle, mpmath oracle
    ("gamma", grid_gamma, sc.gamma, lambda x: mp.gamma(x)),
    ("ln_gamma", grid_lgamma, sc.gammaln, lambda x: mp.loggamma(x)),
    ("digamma", grid_psi, sc.psi, lambda x: mp.digamma(x)),
    ("gamma_p", grid_gammainc, sc.gammainc, mp_gamma_p),
    ("gamma_q", grid_gammaincc, sc.gammaincc, lambda a, x: mp.gammainc(a, x, mp.inf, regularized=True)),
    ("beta", grid_beta, sc.beta, lambda a, b: mp.beta(a, b)),
    ("beta_inc", grid_betainc, sc.betainc, mp_beta_inc),
    ("erf", grid_erf, sc.erf, lambda x: mp.erf(x)),
    ("erfc", grid_erfc, sc.erfc, lambda x: mp.erfc(x)),
    ("dawson", grid_dawson, sc.dawsn, lambda x: mp.sqrt(mp.pi) / 2 * mp.exp(-mp.mpf(x) ** 2) * mp.erfi(x)),
    ("gauss", grid_gauss, None, None),
]


def main():
    here = os.path.dirname(os.path.abspath(__file__))
    out = os.path.join(here, "..", "tests", "special", "oracle.inc")
    lines = ["// Generated by tools/special_oracle.py; do not edit.", "// {function, {args...}, scipy, mpmath}"]
    for name, grid, sci, mpf in FUNCTIONS:
        for args in grid():
            args = tuple(float(a) for a in args)
            if name == "gauss":
                ref = mp_gauss(*args)
                sref = ref
            else:
                sref = float(sci(*args))
                ref = float(mpf(*[mp.mpf(a) for a in args]))
            if not (math.isfinite(ref) and math.isfinite(sref)):
                continue
            a = list(args) + [0.0] * (4 - len(args))
            lines.append("{Fn::%s, {%s}, %s, %s}," % (name, ", ".join(x.hex() for x in a), sref.hex(), ref.hex()))
    with open(out, "w") as f:
        f.write("\n".join(lines) + "\n")
    print("wrote", out, len(lines) - 2, "points")


if __name__ == "__main__":
    main()
