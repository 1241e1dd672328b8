"""IIR filtering beside scipy.signal: Butterworth cascades over a million
samples through IIR_Filter2 (handles, state and all) against sosfilt, and the
direct form through IIR_Filter against lfilter. Each case is timed in several
rounds and the median ratio printed, since the machine is shared."""
import ctypes
import statistics

import numpy as np
import scipy.signal as sg

import jqbench as jb

lib = jb.lib
n = 1_000_000
x = np.random.default_rng(1).standard_normal(n)
ROUNDS = 3


def rounds(name, ours, peer, peer_name):
    r = statistics.median(jb.compare(name, ours, peer, peer_name) for _ in range(ROUNDS))
    print(f"{'':<44} median ratio {r:5.2f}")


for order, btype, wn in [(8, "lowpass", 0.1), (4, "bandpass", [0.1, 0.3]), (12, "highpass", 0.2)]:
    sos = sg.butter(order, wn, btype, output="sos")
    a, b = jb.Handle(sos[:, 4:6].ravel()), jb.Handle(sos[:, 0:3].ravel())
    sig, state = jb.Handle(x), jb.Handle(np.zeros(2 * len(sos)))
    top, err = ctypes.c_int32(0), ctypes.c_int32(0)
    # In place, carrying the state on: the same work on every call.
    ours = lambda: lib.IIR_Filter2(sig.h, ctypes.byref(top), a.h, b.h, state.h, ctypes.c_uint8(1), ctypes.byref(err))
    rounds(f"IIR_Filter2 {order}th {btype}, {len(sos)} sections, 1e6", ours, lambda: sg.sosfilt(sos, x), "sosfilt")

bb, aa = sg.butter(4, 0.1)
a, b = jb.Handle(aa), jb.Handle(bb)
sig, fs, rs = jb.Handle(x), jb.Handle(np.zeros(len(bb) - 1)), jb.Handle(np.zeros(len(aa) - 1))
err = ctypes.c_int32(0)
ours = lambda: lib.IIR_Filter(sig.h, a.h, b.h, fs.h, rs.h, ctypes.c_uint8(1), ctypes.byref(err))
rounds("IIR_Filter direct form, order 4, 1e6", ours, lambda: sg.lfilter(bb, aa, x), "lfilter")
