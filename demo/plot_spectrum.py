"""Plots, through the Python package, the power spectrum of a noisy
two-tone signal and the frequency response of a windowed-sinc lowpass
filter, into one PNG.

    /usr/bin/python3 demo/plot_spectrum.py [out.png]

Needs Debian's python3-numpy and python3-matplotlib and a build of the
library (./dev demo makes one), or an installed tree on PYTHONPATH."""
import os
import sys

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as plt  # noqa: E402
import numpy as np  # noqa: E402

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "python"))
import jqanlys  # noqa: E402
from jqanlys import noise, waveforms, windows  # noqa: E402

out = sys.argv[1] if len(sys.argv) > 1 else os.path.join(HERE, "..", "docs", "python_demo.png")
fs, n = 48000.0, 4096

# Two tones 60 dB apart in Gaussian noise, windowed, then the one-sided power
# spectrum corrected for the window's coherent gain.
x = (waveforms.sine(n, 1000.0 / fs) + 1e-3 * waveforms.sine(n, 7300.0 / fs, phase=45.0)
     + noise.gaussian(n, 1e-5, seed=2024))
w = windows.blackmanharris(n, sym=False)
_, cg = windows.constants("blackmanharris", n)
s = jqanlys.spectrum(x * w)[: n // 2 + 1] / cg ** 2
s[1:-1] *= 2
f = np.arange(n // 2 + 1) * fs / n

# A 63-tap lowpass at 6 kHz: the ideal impulse response, Kaiser-windowed; its
# response is the zero-padded transform of the taps.
taps, cutoff = 63, 6000.0 / fs
k = np.arange(taps) - (taps - 1) / 2
h = 2 * cutoff * np.sinc(2 * cutoff * k) * windows.kaiser(taps, 8.0)
H = jqanlys.rfft(h, 8192)
fh = np.arange(H.size) * fs / 8192

fig, (a, b) = plt.subplots(2, 1, figsize=(8, 6.5))
a.plot(f / 1000, 10 * np.log10(np.maximum(s, 1e-20)), lw=0.8)
a.set(title="Power spectrum (jqanlys.spectrum, Blackman-Harris window)", xlabel="frequency (kHz)",
      ylabel="power (dB)", ylim=(-180, 10), xlim=(0, fs / 2000))
a.grid(alpha=0.3)
b.plot(fh / 1000, 20 * np.log10(np.maximum(np.abs(H), 1e-12)), lw=0.9, color="C1")
b.set(title="63-tap windowed-sinc lowpass, Kaiser beta 8 (jqanlys.rfft)", xlabel="frequency (kHz)",
      ylabel="gain (dB)", ylim=(-120, 5), xlim=(0, fs / 2000))
b.grid(alpha=0.3)
fig.tight_layout()
fig.savefig(out, dpi=90)
print(f"wrote {os.path.normpath(out)}")
