"""What a call through the Python package costs: jqanlys.spectrum (SpectrumH
with its table kept) at n = 1024 beside numpy.fft.rfft alone and beside
rfft followed by |X|^2 (the same amount of work), plus the bare export called
on a prepared handle, which shows the binding's own share."""
import ctypes
import os
import sys
import time

import numpy as np

import jqbench

# The package loads the same libraries as jqbench: the bench build's.
os.environ.setdefault("JQANLYS_LIBDIR", jqbench.BIN)
sys.path.insert(0, os.path.join(jqbench.HERE, "..", "python"))
import jqanlys  # noqa: E402

n = 1024
x = np.random.default_rng(1).standard_normal(n)


def rfft_power():
    X = np.fft.rfft(x)
    return X.real ** 2 + X.imag ** 2


h = jqbench.Handle(x)
slot = ctypes.c_void_p()
bare = jqbench.lib.SpectrumH_IDP
bare.argtypes = [jqbench.H, ctypes.c_void_p]


def export_only():
    bare(h.h, ctypes.byref(slot))


def interleaved_best(ours, peer, rounds=60, calls=200):
    """Best per-call times of both, measured in alternating short rounds so
    that both see the same quiet moments of a loaded machine."""
    best = [float("inf"), float("inf")]
    for _ in range(rounds):
        for k, f in enumerate((ours, peer)):
            t = time.perf_counter()
            for _ in range(calls):
                f()
            best[k] = min(best[k], (time.perf_counter() - t) / calls)
    return best


def row(name, ours, peer, peer_name):
    # Microseconds here: the calls are too short for jqbench.compare's milliseconds.
    a, b = interleaved_best(ours, peer)
    print(f"{name:<36} {a * 1e6:8.2f} us {b * 1e6:8.2f} us ({peer_name:<16})  ratio {a / b:5.2f}")
    sys.stdout.flush()
    return a / b


print(f"Python call overhead at n = {n} (best of 60 alternating rounds; the machine may be loaded)")
ratio = row("jqanlys.spectrum(x)", lambda: jqanlys.spectrum(x), lambda: np.fft.rfft(x), "numpy.fft.rfft")
row("jqanlys.spectrum(x)", lambda: jqanlys.spectrum(x), rfft_power, "rfft + |X|^2")
row("SpectrumH_IDP on a prepared handle", export_only, lambda: np.fft.rfft(x), "numpy.fft.rfft")
row("jqanlys.fft(x)", lambda: jqanlys.fft(x), lambda: np.fft.fft(x), "numpy.fft.fft")
print(f"target: jqanlys.spectrum / numpy.fft.rfft <= 1.5: {'met' if ratio <= 1.5 else 'NOT met'}")
