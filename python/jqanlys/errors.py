"""The library's codes as Python exceptions and warnings.

Every export reports an int32 code: 0 for success, a negative code for an
error (the outputs are then empty), a positive code of the same magnitude for
a warning (the outputs are valid). The library itself carries no texts; the
readable messages below are this package's."""

MESSAGES = {
    -20001: "out of memory: an output array could not be resized or working memory could not be allocated",
    -20002: "the two inputs must have the same length",
    -20003: "an input array is empty but must hold data",
    -20004: "a dimension, length or count is negative",
    -20005: "a ramp without its end point needs at least one sample",
    -20006: "at least 2 samples are needed",
    -20007: "at least 3 samples are needed",
    -20008: "arrays processed element by element differ in length, or a requested output size is below 1",
    -20010: "a requested size exceeds 8388608 elements",
    -20011: "the duty cycle must be positive",
    -20012: "a value lies outside (0, n/2] for an input of n samples",
    -20013: "an index or count lies outside [1, n-1]",
    -20014: "the start index and length reach outside the array",
    -20016: "a spacing, interval or scale must be positive",
    -20017: "an index or offset is at or beyond its dimension",
    -20020: "a cut-off or band edge lies above half the sampling rate",
    -20021: "an order, count or number of taps must be 1 or more",
    -20022: "a rank or position k lies outside [1, n]",
    -20023: "a sampling rate, cut-off, band edge, weight or desired value is invalid, or the edges are out of order",
    -20024: "the passband ripple must be positive",
    -20025: "the stopband attenuation must be positive",
    -20027: "a value that must be positive (the argument of a logarithm) is zero or negative",
    -20028: "the stopband attenuation must exceed the passband ripple",
    -20031: "the filter design failed (too few taps, non-finite input, inconsistent bands or no convergence)",
    -20033: "a length or order must be odd",
    -20040: "matrix dimensions do not agree",
    -20041: "the linear system is singular",
    -20052: "the degrees of freedom must be 1 or more",
    -20053: "a value must lie strictly between 0 and 1",
    -20060: "division by a complex zero",
    -20061: "a selector or parameter is outside its allowed set",
    -20063: "the number of points, samples or iterations must be 1 or more",
    -20066: "the coefficient or state lengths do not fit the filter's sections",
    -20068: "a phase or frequency is NaN or infinite",
    -20069: "at least 4 samples are needed",
    -20070: "matrix dimensions do not agree (second pair of dimensions)",
    -20101: "the histogram's minimum lies above its maximum",
    -20104: "the data hold an infinity or NaN",
    -20115: "the transform length must be positive",
    -20140: "a shape parameter (order, width, frequency, bandwidth or attenuation) must be positive",
    -20309: "the signal is constant, so its histogram has no width",
    -20312: "there are no samples to take state levels from",
    -20315: "the sample interval must be positive",
    -20316: "the state-level method must be 0 (histogram), 1 (peak) or 2 (auto histogram)",
    -20317: "the histogram needs at least 1 bin",
    -20999: "internal error: a transform table does not match its length, or its lock could not be made",
}


# Warnings whose meaning is not their error's.
WARNINGS = {
    20004: "the inputs differ in length; only their common part was used",
    20021: "a state holds fewer than 5 % of the samples, so its level is uncertain",
}


def message(code):
    """Readable text for a code; a warning without its own text reads as its
    error's."""
    if code > 0 and code in WARNINGS:
        return f"warning: {WARNINGS[code]}"
    text = MESSAGES.get(-abs(code))
    if text is None:
        return f"library code {code}"
    return text if code < 0 else f"warning: {text}"


class JQError(Exception):
    """An export failed. `code` is the library's code, `export` the C name."""

    def __init__(self, code, export=None):
        self.code, self.export = code, export
        where = f"{export}: " if export else ""
        super().__init__(f"{where}{message(code)} ({code})")


class JQWarning(UserWarning):
    """An export succeeded with a warning; its results are valid."""

    def __init__(self, code, export=None):
        self.code, self.export = code, export
        where = f"{export}: " if export else ""
        super().__init__(f"{where}{message(code)} (+{code})")
