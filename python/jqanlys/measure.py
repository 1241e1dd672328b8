"""Measurements: state levels of two-state waveforms and the threshold peak
detector."""
import numpy as np

from . import exports as _x

METHODS = {"histogram": 0, "peak": 1, "auto": 2}


def state_levels(x, method="histogram", bins=100, dt=1.0, both_peaks=False, slot=None):
    """(high, low, amplitude) of a two-state waveform. method: 'histogram'
    (modes of the lower and upper 40 % of a histogram of `bins` bins), 'peak'
    (the extremes) or 'auto' (histogram modes where a state holds at least
    5 % of the samples, else the extremes; both_peaks: only when both do).
    A weak state under 'histogram' warns with JQWarning +20021."""
    return _x.StateLevels_IDP(x, 0.0, dt, METHODS.get(method, method), bins, int(bool(both_peaks)), instance=slot)


def threshold_peaks(x, threshold, width=1):
    """Indices where runs of at least `width` samples not below `threshold`
    begin (NaN counts as not below)."""
    indices, count = _x.PeakDetector(np.asarray(x, np.float64), threshold, width)
    return indices[:count]
