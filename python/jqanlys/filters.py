"""FIR filters in the style of scipy.signal: design (`firwin`, `remez`,
`savgol_coeffs`), filtering (`fir_filter`, a streaming `FIRFilter`,
`medfilt`, `savgol_filter`). Frequencies are in the units of fs; the
default fs = 2 makes them fractions of the Nyquist frequency, as in scipy."""
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
