"""Descriptive statistics."""
from . import exports as _x


def mean(x):
    return _x.Mean_head(x)


def rms(x):
    """Root mean square."""
    return _x.RMS_head(x)


def histogram(x, bins=10):
    """(counts, bin centres) of `bins` equal-width bins over the data's range."""
    return _x.histgran_head(x, bins)
