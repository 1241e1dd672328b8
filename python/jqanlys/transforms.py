"""Fourier and related transforms, in the style of numpy.fft / scipy.fft.

Each function keeps the transform tables of its call between calls (in a
slot of its own per thread); pass `slot=Slot()` to keep them in an object
whose lifetime you control."""
import numpy as np

from . import exports as _x


def _is_complex(x):
    return x.dtype.kind == "c"


def fft(x, n=None, shift=False, slot=None):
    """Discrete Fourier transform of a real or complex signal, cut or
    extended with zeros to n points; shift=True puts the zero frequency at
    index n // 2 (as numpy.fft.fftshift)."""
    x = np.asarray(x)
    n = x.size if n is None else n
    f = _x.CxKWFFTH80_IDP if _is_complex(x) else _x.ReKWFFTH80_IDP
    return f(x, 0, n, shift, instance=slot)


def ifft(X, n=None, shifted=False, slot=None):
    """Inverse of fft (scaled by 1/n); shifted=True takes a shifted spectrum.
    With n the spectrum is first cut or extended with zeros to n points."""
    X = _fit(np.asarray(X, np.complex128), n)
    return _x.InvCxKWFFTH80_IDP(X, shifted, instance=slot)


def rfft(x, n=None, slot=None):
    """The n // 2 + 1 non-negative frequencies of the transform of a real
    signal, as numpy.fft.rfft."""
    x = np.asarray(x, np.float64)
    n = x.size if n is None else n
    return _x.ReKWFFTH80_IDP(x, 0, n, False, instance=slot)[: n // 2 + 1]


def irfft(X, n=None, slot=None):
    """Real signal of n points (default 2 (m - 1)) from the m non-negative
    frequencies of its spectrum, as numpy.fft.irfft."""
    X = np.asarray(X, np.complex128)
    n = 2 * (X.size - 1) if n is None else n
    full = np.zeros(max(n, 0), np.complex128)
    k = min(X.size, n // 2 + 1)
    full[:k] = X[:k]
    return _x.InvReKWFFTH80_IDP(full, False, instance=slot)


def fft2(x, shape=None, shift=False, slot=None):
    """2-D transform of a real or complex matrix, cut or extended with zeros
    to shape (rows, columns)."""
    x = np.asarray(x)
    rows, cols = x.shape if shape is None else shape
    f = _x.CxFFT2D_H_IDP if _is_complex(x) else _x.ReFFT2D_H_IDP
    return f(x, 0, 0, rows, cols, shift, instance=slot)


def ifft2(X, shifted=False, real=False, slot=None):
    """Inverse of fft2; real=True returns the real part only, for spectra of
    real data."""
    f = _x.ReInvFFT2D_H_IDP if real else _x.CxInvFFT2D_H_IDP
    return f(X, shifted, instance=slot)


def spectrum(x, slot=None):
    """Two-sided power spectrum |X[k]|^2 / n^2 of all n bins."""
    x = np.asarray(x)
    if _is_complex(x):
        return _x.CxSpectrumH_IDP(x, instance=slot)
    return _x.SpectrumH_IDP(x, instance=slot)


def cross_spectrum(x, y, slot=None):
    """Cross spectrum conj(X[k]) Y[k] / n^2 of two signals of equal length."""
    x, y = np.asarray(x), np.asarray(y)
    if _is_complex(x) or _is_complex(y):
        return _x.CxCrossSpectrumH_IDP(x, y, instance=slot)
    return _x.CrossSpectrumH_IDP(x, y, instance=slot)


def _by_rank(x, one, two, *args, slot=None):
    # 1-D and 2-D forms of one transform; the 2-D form takes no length.
    x = np.asarray(x, np.float64)
    if x.ndim == 2:
        return two(x, instance=slot)
    return one(x, *args, instance=slot)


def dct(x, n=None, slot=None):
    """Orthonormal DCT-II (scipy.fft.dct(x, norm='ortho')); a 2-D input is
    transformed along both axes (n is then ignored)."""
    return _by_rank(x, _x.DCT_1DH_IDP, _x.DCT_2DH_IDP, n or 0, slot=slot)


def idct(y, slot=None):
    """Inverse of dct (orthonormal DCT-III)."""
    return _by_rank(y, _x.InvDCT_1DH_IDP, _x.InvDCT_2DH_IDP, slot=slot)


def dst(x, n=None, slot=None):
    """Unnormalised DST-I: y[k] = sum x[j] sin(pi (j+1)(k+1) / (m+1)), half
    of scipy.fft.dst(x, type=1); a 2-D input is transformed along both axes."""
    return _by_rank(x, _x.DST_1DH_IDP, _x.DST_2DH_IDP, n or 0, slot=slot)


def idst(y, slot=None):
    """Inverse of dst."""
    return _by_rank(y, _x.InvDST_1DH_IDP, _x.InvDST_2DH_IDP, slot=slot)


def hilbert(x, slot=None):
    """Discrete Hilbert transform (the imaginary part of
    scipy.signal.hilbert's analytic signal): a cosine becomes a sine."""
    return _x.FastHilbertTransformH_IDP(x, instance=slot)


def ihilbert(x, slot=None):
    """Inverse Hilbert transform (the negated forward one)."""
    return _x.InvFastHilbertTransformH_IDP(x, instance=slot)


def hartley(x, slot=None):
    """Unscaled discrete Hartley transform, Re X[k] - Im X[k]."""
    return _x.FHTH_IDP(x, instance=slot)


def ihartley(x, slot=None):
    """Inverse Hartley transform (the forward one scaled by 1/n)."""
    return _x.InvFHTH_IDP(x, instance=slot)


def _fit(X, n):
    if n is None or n == X.size:
        return X
    out = np.zeros(max(n, 0), X.dtype)
    out[: min(n, X.size)] = X[: max(n, 0)]
    return out
