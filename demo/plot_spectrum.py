"""Plots, through the Python package, the power spectrum of a noisy
two-tone signal and the frequency responses of an FIR and an IIR lowpass
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
from jqanlys import filters, noise, waveforms, windows  # noqa: E402

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

# Two lowpass designs at 6 kHz: 63 Kaiser-windowed taps, and a 6th-order
# elliptic cascade; each response is the zero-padded transform of its impulse
# response.
fir = filters.firwin(63, 6000.0, fs=fs, window=("kaiser", 8.0))
impulse = np.r_[1.0, np.zeros(8191)]
iir = filters.sosfilt(filters.ellip(6, 0.5, 80.0, 6000.0, fs=fs), impulse)
responses = [(jqanlys.rfft(fir, 8192), "63-tap FIR, Kaiser window (filters.firwin)"),
             (jqanlys.rfft(iir), "6th-order elliptic IIR (filters.ellip, sosfilt)")]
fh = np.arange(8192 // 2 + 1) * fs / 8192

fig, (a, b) = plt.subplots(2, 1, figsize=(8, 6.5))
a.plot(f / 1000, 10 * np.log10(np.maximum(s, 1e-20)), lw=0.8)
a.set(title="Power spectrum (jqanlys.spectrum, Blackman-Harris window)", xlabel="frequency (kHz)",
      ylabel="power (dB)", ylim=(-180, 10), xlim=(0, fs / 2000))
a.grid(alpha=0.3)
for H, label in responses:
    b.plot(fh / 1000, 20 * np.log10(np.maximum(np.abs(H), 1e-12)), lw=0.9, label=label)
b.set(title="Lowpass filters at 6 kHz", xlabel="frequency (kHz)", ylabel="gain (dB)", ylim=(-120, 5),
      xlim=(0, fs / 2000))
b.legend(loc="upper right", fontsize=8)
b.grid(alpha=0.3)
fig.tight_layout()
fig.savefig(out, dpi=90)
print(f"wrote {os.path.normpath(out)}")
