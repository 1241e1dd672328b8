"""Filters in the style of scipy.signal.

FIR: design (`firwin`, `remez`, `savgol_coeffs`), filtering (`fir_filter`,
a streaming `FIRFilter`, `medfilt`, `savgol_filter`).
IIR, in scipy's second-order-sections layout: design (`butter`, `cheby1`,
`cheby2`, `ellip`, `bessel`) and filtering (`sosfilt`, and `SOSFilter`,
which keeps its state from block to block).

Frequencies are in the units of fs; the default fs = 2 makes them fractions
of the Nyquist frequency, as in scipy."""
import numpy as np

from . import exports as _x
from . import windows as _windows

_BTYPES = {"lowpass": 0, "low": 0, "highpass": 1, "high": 1, "bandpass": 2, "band": 2, "bandstop": 3, "stop": 3}


def firwin(numtaps, cutoff, btype="lowpass", fs=2.0, window=None):
    """Truncated ideal response of `numtaps` taps, multiplied by the
    symmetric window given by name or (name, parameter) if any; unscaled
    (scipy's firwin with scale=False)."""
    c = np.atleast_1d(np.asarray(cutoff, np.float64))
    h, _ = _x.FIRCoefs(fs, c[0], c[1] if c.size > 1 else 0.0, numtaps, _BTYPES[btype])
    if window is not None:
        h = h * _windows.get_window(window, numtaps, sym=True)
    return h


def remez(numtaps, bands, desired, weight=None, fs=2.0, maxiter=100):
    """Equiripple (Parks-McClellan) design; bands as scipy's flat list of
    edges, one desired amplitude and weight per band. Returns the taps."""
    edges = np.asarray(bands, np.float64).reshape(-1, 2)
    weight = np.ones(len(edges)) if weight is None else np.asarray(weight, np.float64)
    table = np.column_stack([np.asarray(desired, np.float64), edges, weight])
    taps, _deviation = _x.Parks(numtaps, fs, table, 0, maxiter)
    return taps


class FIRFilter:
    """Filters a stream block by block with taps b, keeping its history, so
    that the blocks together give the output of filtering all at once."""

    def __init__(self, b):
        self.b = np.asarray(b, np.float64)
        self.reset()

    def reset(self):
        self._state, self._phase, self._fresh = None, 0, True

    def __call__(self, x):
        y, self._state, count, self._phase = _x.ppMultiRateFIRH_DBL(
            x, self._state, self.b, 0, 1, 1, self._fresh, self._phase)
        self._fresh = False
        return y[:count]


def fir_filter(b, x):
    """x filtered by the taps b from rest (scipy's lfilter(b, 1, x))."""
    return FIRFilter(b)(x)


def medfilt(x, kernel_size=3):
    """Median over windows of kernel_size samples (odd), samples outside the
    signal counting as zeros, as scipy.signal.medfilt."""
    return _x.MedianFilter81_H(np.asarray(x, np.float64), kernel_size // 2, kernel_size // 2)


def savgol_coeffs(window_length, polyorder):
    """Weights that give the smoothed centre sample of an odd window."""
    return _x.SavitzkyGolayCoefH(window_length // 2, polyorder)


def savgol_filter(x, window_length, polyorder):
    """Savitzky-Golay smoothing; the edges take the polynomials fitted to the
    first and last windows (scipy's mode='interp')."""
    return _x.SavitzkyGolayFiltH(np.asarray(x, np.float64), window_length // 2, polyorder)


# ---- IIR ----

def _design(export, N, Wn, btype, fs, *extra):
    w = np.atleast_1d(np.asarray(Wn, np.float64))
    fl, fh = w[0], (w[1] if w.size > 1 else 0.0)
    reverse, forward = export(fs, fl, fh, *extra, N, _BTYPES[btype], 0)
    k = forward.size // 3
    return np.hstack([forward.reshape(k, 3), np.ones((k, 1)), reverse.reshape(k, 2)])


def butter(N, Wn, btype="low", fs=2.0):
    """Butterworth design as second-order sections (cut-off at -3 dB)."""
    return _design(_x.BWCoefs90, N, Wn, btype, fs)


def cheby1(N, rp, Wn, btype="low", fs=2.0):
    """Chebyshev type I: rp dB passband ripple, Wn the passband edge."""
    return _design(_x.ChebyshevCoefs90, N, Wn, btype, fs, rp)


def cheby2(N, rs, Wn, btype="low", fs=2.0):
    """Chebyshev type II: rs dB stopband attenuation, Wn the stopband edge."""
    return _design(_x.InvChebyshevCoefs90, N, Wn, btype, fs, rs)


def ellip(N, rp, rs, Wn, btype="low", fs=2.0):
    """Elliptic: rp dB passband ripple, rs dB stopband attenuation."""
    return _design(_x.EllipticCoefs90, N, Wn, btype, fs, rp, rs)


def bessel(N, Wn, btype="low", fs=2.0):
    """Bessel design, cut-off at -3 dB (scipy's norm='mag')."""
    return _design(_x.BesselCoefs90, N, Wn, btype, fs)


def _cascade(sos):
    sos = np.asarray(sos, np.float64)
    if sos.ndim != 2 or sos.shape[1] != 6:
        raise ValueError("sos must have shape (sections, 6)")
    sos = sos / sos[:, 3:4]
    return np.ascontiguousarray(sos[:, 4:]).reshape(-1), np.ascontiguousarray(sos[:, :3]).reshape(-1)


class SOSFilter:
    """A cascade of second-order sections that keeps its state, so that
    filtering a signal in blocks gives the same output as all at once."""

    def __init__(self, sos):
        self.reverse, self.forward = _cascade(sos)
        self.state = None

    def __call__(self, x):
        x = np.asarray(x)
        f = _x.CxSigIIR_Filter2 if x.dtype.kind == "c" else _x.IIR_Filter2
        y, self.state = f(x, 0, self.reverse, self.forward, self.state, self.state is not None)
        return y

    def reset(self):
        self.state = None


def sosfilt(sos, x):
    """x filtered by the cascade, starting from rest."""
    return SOSFilter(sos)(x)
