"""Convolution, correlation and deconvolution, 1-D and 2-D."""
import numpy as np

from . import exports as _x

_METHODS = {"direct": 0, "fft": 1}
_MODES = {"full": 0, "same": 1, "valid": 2}
_NORMS = {None: 0, "unbiased": 1, "biased": 2}


def convolve(x, y, method="direct"):
    """Full convolution of two sequences (numpy.convolve); method 'direct'
    or 'fft' (the same values up to rounding)."""
    x, y = np.asarray(x), np.asarray(y)
    if x.dtype.kind == "c" or y.dtype.kind == "c":
        return _x.CxConvolution(x, y, _METHODS[method], 0)
    return _x.Convolution(x, y, _METHODS[method])


def correlate(x, y, normalisation=None, method="direct"):
    """Cross-correlation of all 2n - 1 lags, the first pairing the last
    sample of x with the first of y (scipy.signal.correlate(y, x));
    normalisation None, 'unbiased' or 'biased'."""
    return _x.Rxy80(x, y, _METHODS[method], _NORMS[normalisation])


def autocorrelate(x, normalisation=None):
    """Autocorrelation of all 2n - 1 lags."""
    return _x.AutoCorrelation80(x, _NORMS[normalisation])


def deconvolve(y, x):
    """The quotient q of y = q * x by long division (the first result of
    scipy.signal.deconvolve)."""
    return _x.Deconvolution(y, x)


def convolve2d(x, y, mode="full", method="direct"):
    """2-D convolution with scipy.signal.convolve2d's modes."""
    x, y = np.asarray(x), np.asarray(y)
    f = _x.CxConvolve_2DH if x.dtype.kind == "c" or y.dtype.kind == "c" else _x.Convolve_2DH
    return f(x, y, _MODES[mode], _METHODS[method])


def correlate2d(x, y, mode="full", method="direct"):
    """2-D correlation, y slid over x (conjugated for complex data)."""
    x, y = np.asarray(x), np.asarray(y)
    f = _x.CxCorrelation_2DH if x.dtype.kind == "c" or y.dtype.kind == "c" else _x.Correlation_2DH
    return f(x, y, _MODES[mode], _METHODS[method])
