"""Integration of equally spaced samples by Newton-Cotes rules; whole
panels from the start, the intervals left over by the next smaller rule."""
from . import exports as _x

RULES = {"trapezoid": 0, "simpson": 1, "simpson38": 2, "bode": 3}


def integrate(y, dx=1.0, rule="trapezoid"):
    """Integral of the samples y, dx apart."""
    return _x.NumerIntegration_2017_head(y, dx, RULES[rule])


def integrate2d(z, dx=1.0, dy=1.0, rule="trapezoid"):
    """Integral of a matrix of samples: dx between columns, dy between rows."""
    return _x.NumerIntegration2D_2017_head(z, dx, dy, RULES[rule])
