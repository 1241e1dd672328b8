"""Windows in the style of scipy.signal.windows: each function returns the
window of M points (symmetric by default, periodic with sym=False, as
scipy); `apply` windows a signal; `constants` and `measure` give the
equivalent noise bandwidth (bins) and coherent gain."""
import math

import numpy as np

from . import exports as _x

# Window codes by name.
CODES = {
    "boxcar": 0, "rectangular": 0, "hann": 1, "hamming": 2, "blackmanharris3": 3, "exactblackman": 4,
    "blackman": 5, "flattop": 6, "blackmanharris": 7, "blackmanharris7": 8, "lowsidelobe": 9, "nuttall": 11,
    "triangle": 30, "bartlett": 30, "barthann": 31, "bohman": 32, "parzen": 33, "welch": 34,
    "kaiser": 60, "chebwin": 61, "gaussian": 62,
}


def _code(window):
    if isinstance(window, str):
        try:
            return CODES[window.lower()]
        except KeyError:
            raise ValueError(f"unknown window {window!r}") from None
    return int(window)


def apply(x, window, parameter=math.nan, sym=False):
    """x (real or complex) multiplied by the window given by name or code;
    a NaN parameter takes the window's default."""
    x = np.asarray(x)
    f = _x.CxAllWinH if np.iscomplexobj(x) else _x.AllWinH
    return f(x, _code(window), parameter, int(bool(sym)), 0)


def get_window(window, M, sym=False):
    """Window of M points by name or code, or (name, parameter); periodic by
    default, as scipy.signal.get_window."""
    parameter = math.nan
    if isinstance(window, tuple):
        window, parameter = window
    return _window(_code(window), M, parameter, sym)


def _window(code, M, parameter, sym):
    ones = np.ones(M)
    if sym:
        return _x.SymmWinH(ones, code, parameter)
    return _x.AllWinH(ones, code, parameter, 0, 0)


def _named(name, doc):
    code = CODES[name]

    def window(M, sym=True):
        return _window(code, M, math.nan, sym)
    window.__name__ = window.__qualname__ = name
    window.__doc__ = doc
    return window


boxcar = _named("boxcar", "Rectangular window.")
hann = _named("hann", "Hann window.")
hamming = _named("hamming", "Hamming window (0.54, 0.46).")
blackman = _named("blackman", "Blackman window (0.42, 0.5, 0.08).")
exactblackman = _named("exactblackman", "Exact Blackman window.")
blackmanharris = _named("blackmanharris", "4-term Blackman-Harris window.")
nuttall = _named("nuttall", "Blackman-Nuttall window.")
flattop = _named("flattop", "Flat top window.")
bartlett = _named("bartlett", "Triangle (Bartlett) window, zero at its ends.")
barthann = _named("barthann", "Bartlett-Hann window.")
bohman = _named("bohman", "Bohman window.")
parzen = _named("parzen", "Parzen window.")
welch = _named("welch", "Welch window.")


def kaiser(M, beta, sym=True):
    """Kaiser window of shape parameter beta."""
    if sym:
        return _x.SymmWinH(np.ones(M), 60, beta)
    return _x.KaiserH(np.ones(M), beta)


def chebwin(M, at, sym=True):
    """Dolph-Chebyshev window, side lobes `at` dB below the main lobe."""
    if sym:
        return _x.SymmWinH(np.ones(M), 61, at)
    return _x.DolChebyWinH(np.ones(M), at)


def gaussian(M, sigma, sym=True):
    """Gaussian window; sigma is a fraction of the length (not in samples as
    scipy's std)."""
    if sym:
        return _x.SymmWinH(np.ones(M), 62, sigma)
    return _x.GaussWinH(np.ones(M), sigma)


def cosine_tapered(M, ratio=0.5):
    """Cosine-tapered window: a fraction `ratio` of the length tapered (its
    taper length is rounded to whole samples, so it is not scipy's tukey)."""
    return _x.CosTaperedH(np.ones(M), ratio)


def exponential(M, final):
    """Exponential window from 1 down to `final` at the last sample."""
    return _x.ExpWinH(np.ones(M), final)


def general_cosine(M, a):
    """Generalised cosine window of coefficients a_0, a_1, ... (periodic)."""
    return _x.GenCosWinH(np.ones(M), np.asarray(a, np.float64))


def constants(window, M, parameter=math.nan):
    """(equivalent noise bandwidth in bins, coherent gain) of the window of
    M points given by name or code."""
    c = _x.WinConstByNameH_2016(M, _code(window), parameter)
    return c.enbw, c.cg


def measure(w):
    """(equivalent noise bandwidth, coherent gain) measured from samples."""
    c = _x.NumWinConstH(w)
    return c.enbw, c.cg
