"""Special functions over numpy arrays (element by element), named as in
scipy.special."""
import math

import numpy as np

from . import exports as _x


def _ufunc(f, nin, name, doc):
    u = np.frompyfunc(f, nin, 1)

    def g(*args):
        r = u(*args)
        return r.astype(np.float64) if isinstance(r, np.ndarray) else float(r)
    g.__name__ = g.__qualname__ = name
    g.__doc__ = doc
    return g


gamma = _ufunc(_x.JQ_Gamma, 1, "gamma", "Gamma function.")
gammaln = _ufunc(_x.JQ_LnGamma, 1, "gammaln", "Logarithm of the gamma function.")
digamma = psi = _ufunc(_x.JQ_Psi, 1, "digamma", "Digamma function.")
gammainc = _ufunc(_x.JQ_GammaC, 2, "gammainc", "Regularised lower incomplete gamma P(a, x).")
stirling = _ufunc(_x.JQ_Stirling, 1, "stirling", "Stirling's approximation of the gamma function.")
beta = _ufunc(lambda a, b: _x.JQ_Beta(a, b, math.nan), 2, "beta", "Beta function B(a, b).")
betainc = _ufunc(_x.JQ_Beta, 3, "betainc", "Regularised incomplete beta I(x; a, b), arguments (a, b, x).")
erf = _ufunc(_x.JQ_Erf, 1, "erf", "Error function.")
erfc = _ufunc(_x.JQ_ErfC, 1, "erfc", "Complementary error function.")
dawsn = _ufunc(_x.JQ_Dawson, 1, "dawsn", "Dawson's integral.")
factorial = _ufunc(_x.JQ_Fact, 1, "factorial", "n! of an integer n (+inf beyond float64).")
lnfactorial = _ufunc(_x.JQ_LnFact, 1, "lnfactorial", "ln(n!) of an integer n.")
