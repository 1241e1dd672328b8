"""Waveforms and patterns. Frequencies are in cycles per sample and phases
in degrees. An `Oscillator` continues its phase from one block of samples
to the next; the functions make one record."""
import numpy as np

from . import exports as _x


class Oscillator:
    """A continuous wave: kind 'sine', 'square', 'triangle' or 'sawtooth'.
    Each call returns the next n samples and advances the phase."""

    def __init__(self, kind, frequency, amplitude=1.0, phase=0.0, duty=50.0):
        self.kind, self.frequency, self.amplitude, self.phase, self.duty = kind, frequency, amplitude, phase, duty
        self._f = {"sine": _x.SineWaveCIN, "square": _x.SquareWaveCIN, "triangle": _x.TriangleWaveCIN,
                   "sawtooth": _x.SawtoothWaveCIN}[kind]

    def __call__(self, n):
        if self.kind == "square":
            out, self.phase = self._f(n, self.amplitude, self.frequency, self.phase, self.duty)
        else:
            out, self.phase = self._f(n, self.amplitude, self.frequency, self.phase)
        return out


def _wave(kind):
    def wave(n, frequency, amplitude=1.0, phase=0.0, **kw):
        return Oscillator(kind, frequency, amplitude, phase, **kw)(n)
    wave.__name__ = wave.__qualname__ = kind
    wave.__doc__ = f"n samples of a {kind} wave starting at `phase` degrees."
    return wave


sine = _wave("sine")
square = _wave("square")
triangle = _wave("triangle")
sawtooth = _wave("sawtooth")


def sine_pattern(n, cycles, amplitude=1.0, phase=0.0):
    """`cycles` periods of a sine over n samples."""
    return _x.SinePtrn(n, amplitude, phase, cycles)


def ramp(n, start, end, endpoint=True, log=False):
    """n values from start to end, linearly or logarithmically spaced (as
    numpy.linspace / numpy.geomspace)."""
    return _x.RampPtrn85(n, start, end, 0 if endpoint else 1, 1 if log else 0)


def pulse(n, delay, width, amplitude=1.0):
    """A rectangular pulse of `width` samples starting at sample `delay`."""
    return _x.PulsePtrn(n, amplitude, delay, width)


def impulse(n, delay, amplitude=1.0):
    return _x.ImpulsePtrn(n, amplitude, delay)


def chirp(n, f1, f2, amplitude=1.0):
    """A linear chirp from f1 to f2 cycles per sample."""
    return _x.ChirpCIN(n, amplitude, f1, f2)


def sinc(n, dt, delay=0.0, amplitude=1.0):
    return _x.SincWave(n, amplitude, delay, dt)


def _times(t):
    return None if t is None else np.asarray(t, np.float64)


def gausspulse(t=None, fc=1000.0, bw=0.5, bwr=-6.0, amplitude=1.0, n=0, dt=1.0, delay=0.0):
    """Gaussian-modulated cosine at the times t (as scipy.signal.gausspulse)
    or at n times i dt - delay."""
    return _x.GaussPulseH(_times(t), n, amplitude, delay, dt, fc, bw, -bwr)


def periodic_sinc(t=None, order=1, amplitude=1.0, n=0, dt=1.0, delay=0.0):
    """Dirichlet kernel of the given order."""
    return _x.PeriodicSincH(_times(t), n, amplitude, order, dt, delay)


def triangle_pulse(t=None, width=1.0, skew=0.0, amplitude=1.0, n=0, dt=1.0, delay=0.0):
    return _x.AperiodTriangleH(_times(t), n, amplitude, delay, dt, width, skew)


def gauss_monopulse(t=None, fc=1.0, amplitude=1.0, n=0, dt=1.0, delay=0.0):
    return _x.GaussMonopulseH(_times(t), n, amplitude, delay, dt, fc)
