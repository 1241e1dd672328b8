"""Noise and random permutations.

A `Generator` holds the library's generator state (and the Gaussian spare
and binomial cache), so successive draws continue one stream; the same seed
gives the same stream. The module functions take `seed=` for a fresh,
reproducible stream, or continue a module-wide generator otherwise."""
import os

import numpy as np

from . import exports as _x, structs as _s

_CONTINUE = -1  # a negative seed continues the stream from the state


class Generator:
    """One random stream. seed: a positive int32; None draws one from the
    operating system."""

    def __init__(self, seed=None):
        if seed is None:
            seed = int.from_bytes(os.urandom(4), "little") % 0x7FFFFFFF + 1
        if not 0 < seed <= 0x7FFFFFFF:
            raise ValueError("seed must be in [1, 2**31 - 1]")
        self.state, self.spare, self.cache = _s.JQRandomState(), _s.JQGaussSpare(), _s.JQBinomialCache()
        self._seed = seed

    def _take_seed(self):
        # The seed goes to the first draw, which restarts the stream with it;
        # later draws continue.
        seed, self._seed = self._seed, _CONTINUE
        return seed

    def uniform(self, n, amplitude=1.0):
        """n samples uniform in [-amplitude, amplitude)."""
        return _x.white(n, amplitude, self._take_seed(), state=self.state)

    def gaussian(self, n, sd=1.0):
        """n normal samples of standard deviation sd."""
        return _x.Gauss(n, sd, self._take_seed(), state=self.state, spare=self.spare)

    def periodic(self, n, amplitude=1.0):
        """Every harmonic of the record below Nyquist, each of the given
        amplitude, with random phases."""
        return _x.PeriodNoise(n, amplitude, self._take_seed(), state=self.state)

    def gamma(self, n, order):
        """Gamma-distributed samples of integer order (unit scale)."""
        return _x.GammaNoiseH(n, order, self._take_seed(), state=self.state)

    def poisson(self, n, mean):
        return _x.PoissonNoiseH(n, mean, self._take_seed(), state=self.state)

    def binomial(self, n, trials, p):
        return _x.BinomialNoiseH(n, trials, p, self._take_seed(), state=self.state, cache=self.cache)

    def permutation(self, n):
        """A random permutation of 0 ... n-1."""
        return _x.RiffleIntNum2012_head(n, self._take_seed(), 1, state=self.state)

    def shuffle(self, a):
        """(a shuffled copy of a, the index each element came from), for
        float64, complex or int32 arrays."""
        a = np.asarray(a)
        if np.iscomplexobj(a):
            f = _x.RiffleArrayCDB2012_head
        elif a.dtype.kind in "iub":
            f = _x.RiffleArrayInt2012_head
        else:
            f = _x.RiffleArrayDBL2012_head
        return f(a, self._take_seed(), 1, state=self.state)


_default = None


def _gen(seed):
    global _default
    if seed is not None:
        return Generator(seed)
    if _default is None:
        _default = Generator()
    return _default


def uniform(n, amplitude=1.0, seed=None):
    return _gen(seed).uniform(n, amplitude)


def gaussian(n, sd=1.0, seed=None):
    return _gen(seed).gaussian(n, sd)


def periodic(n, amplitude=1.0, seed=None):
    return _gen(seed).periodic(n, amplitude)


def gamma(n, order, seed=None):
    return _gen(seed).gamma(n, order)


def poisson(n, mean, seed=None):
    return _gen(seed).poisson(n, mean)


def binomial(n, trials, p, seed=None):
    return _gen(seed).binomial(n, trials, p)


def permutation(n, seed=None):
    return _gen(seed).permutation(n)
