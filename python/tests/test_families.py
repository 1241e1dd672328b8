"""The scipy-style functions of each family against numpy and scipy."""
import unittest

import numpy as np
import scipy.fft
import scipy.integrate
import scipy.signal
import scipy.signal.windows as sw
import scipy.special as sp
import scipy.stats

import jqanlys
from jqanlys import filters, integrate, linalg, measure, noise, signal, special, stats, waveforms, windows

RNG = np.random.default_rng(7)
# Lengths that take different paths: tiny, odd, prime, power of two, mixed.
LENGTHS = (1, 2, 5, 12, 97, 128, 1000)


def close(a, b, tol=1e-12):
    np.testing.assert_allclose(a, b, rtol=tol, atol=tol * max(1.0, float(np.max(np.abs(b), initial=0))))


class TransformsTest(unittest.TestCase):
    def test_fft_family_matches_numpy(self):
        for n in LENGTHS:
            x = RNG.standard_normal(n)
            z = x + 1j * RNG.standard_normal(n)
            with self.subTest(n=n):
                close(jqanlys.fft(x), np.fft.fft(x))
                close(jqanlys.fft(z), np.fft.fft(z))
                close(jqanlys.fft(x, shift=True), np.fft.fftshift(np.fft.fft(x)))
                close(jqanlys.ifft(z), np.fft.ifft(z))
                close(jqanlys.ifft(np.fft.fftshift(z), shifted=True), np.fft.ifft(z))
                close(jqanlys.rfft(x), np.fft.rfft(x))
                close(jqanlys.irfft(np.fft.rfft(x), n), x)
                close(jqanlys.spectrum(x), np.abs(np.fft.fft(x)) ** 2 / n ** 2)
                close(jqanlys.spectrum(z), np.abs(np.fft.fft(z)) ** 2 / n ** 2)
                y = RNG.standard_normal(n)
                close(jqanlys.cross_spectrum(x, y), np.conj(np.fft.fft(x)) * np.fft.fft(y) / n ** 2)
        x = RNG.standard_normal(10)
        close(jqanlys.fft(x, 16), np.fft.fft(x, 16))  # extended with zeros
        close(jqanlys.fft(x, 6), np.fft.fft(x, 6))    # cut

    def test_2d_matches_numpy(self):
        m = RNG.standard_normal((6, 5)) + 1j * RNG.standard_normal((6, 5))
        close(jqanlys.fft2(m), np.fft.fft2(m))
        close(jqanlys.fft2(m.real, shape=(8, 4)), np.fft.fft2(m.real, s=(8, 4)))
        close(jqanlys.fft2(m, shift=True), np.fft.fftshift(np.fft.fft2(m)))
        close(jqanlys.ifft2(np.fft.fft2(m)), m)
        close(jqanlys.ifft2(np.fft.fft2(m.real), real=True), m.real)

    def test_dct_dst_hilbert_hartley_match_scipy(self):
        for n in LENGTHS:
            x = RNG.standard_normal(n)
            with self.subTest(n=n):
                close(jqanlys.dct(x), scipy.fft.dct(x, norm="ortho"))
                close(jqanlys.idct(jqanlys.dct(x)), x)
                close(jqanlys.dst(x), scipy.fft.dst(x, type=1) / 2)
                close(jqanlys.idst(jqanlys.dst(x)), x)
                if n > 1:
                    close(jqanlys.hilbert(x), np.imag(scipy.signal.hilbert(x)))
                X = np.fft.fft(x)
                close(jqanlys.hartley(x), X.real - X.imag)
                close(jqanlys.ihartley(jqanlys.hartley(x)), x)
        close(jqanlys.dct(np.ones(5), n=8), scipy.fft.dct(np.r_[np.ones(5), np.zeros(3)], norm="ortho"))
        m = RNG.standard_normal((4, 7))
        close(jqanlys.dct(m), scipy.fft.dctn(m, norm="ortho"))
        close(jqanlys.idst(jqanlys.dst(m)), m)


class WindowsTest(unittest.TestCase):
    def test_windows_match_scipy(self):
        pairs = [(windows.hann, sw.hann), (windows.hamming, sw.hamming), (windows.blackman, sw.blackman),
                 (windows.blackmanharris, sw.blackmanharris), (windows.nuttall, sw.nuttall),
                 (windows.bartlett, sw.bartlett), (windows.barthann, sw.barthann), (windows.bohman, sw.bohman),
                 (windows.parzen, sw.parzen), (windows.boxcar, sw.boxcar)]
        for M in (2, 7, 16, 33):
            for sym in (True, False):
                with self.subTest(M=M, sym=sym):
                    for ours, ref in pairs:
                        close(ours(M, sym=sym), ref(M, sym=sym), 1e-13)
                    close(windows.kaiser(M, 5.0, sym=sym), sw.kaiser(M, 5.0, sym=sym), 1e-13)
                    close(windows.chebwin(M, 70, sym=sym), sw.chebwin(M, 70, sym=sym), 1e-12)
                    close(windows.get_window(("kaiser", 2.0), M), sw.get_window(("kaiser", 2.0), M), 1e-13)
        # The flat top's first coefficient is stored to nine places, scipy's to eight.
        close(windows.flattop(16), sw.flattop(16), 1e-8)

    def test_apply_and_constants(self):
        x = RNG.standard_normal(32) + 1j * RNG.standard_normal(32)
        close(windows.apply(x, "hann"), x * sw.hann(32, sym=False))
        self.assertEqual(windows.constants("hamming", 64), (1.362826, 0.54))
        w = sw.kaiser(64, 6.0, sym=False)
        enbw, cg = windows.measure(w)
        close([enbw, cg], [64 * np.sum(w ** 2) / np.sum(w) ** 2, np.mean(w)])
        with self.assertRaises(ValueError):
            windows.get_window("no such window", 8)


class NoiseTest(unittest.TestCase):
    def test_streams_are_reproducible_and_continue(self):
        for draw in ("uniform", "gaussian", "periodic", "poisson"):
            args = (3.0,)
            with self.subTest(draw=draw):
                a = getattr(noise.Generator(99), draw)(40, *args)
                np.testing.assert_array_equal(a, getattr(noise, draw)(40, *args, seed=99))
                g = noise.Generator(99)
                if draw != "periodic":  # periodic noise is one record, not a stream
                    b = np.concatenate([getattr(g, draw)(16, *args), getattr(g, draw)(24, *args)])
                    np.testing.assert_array_equal(a, b)
                self.assertFalse(np.array_equal(a, getattr(noise, draw)(40, *args, seed=100)))

    def test_distributions_look_right(self):
        n = 40000
        u = noise.uniform(n, 2.0, seed=1)
        self.assertTrue(-2.0 <= u.min() and u.max() < 2.0)
        g = noise.gaussian(n, 3.0, seed=2)
        self.assertLess(abs(g.mean()), 0.05)
        self.assertLess(abs(g.std() - 3.0), 0.05)
        self.assertGreater(scipy.stats.normaltest(g).pvalue, 1e-3)
        p = noise.poisson(n, 4.0, seed=3)
        self.assertLess(abs(p.mean() - 4.0), 0.05)
        b = noise.binomial(n, 10, 0.3, seed=4)
        self.assertEqual(b.dtype, np.uint32)
        self.assertLess(abs(b.mean() - 3.0), 0.05)
        ga = noise.gamma(n, 3, seed=5)
        self.assertLess(abs(ga.mean() - 3.0), 0.06)
        # Periodic noise: every bin below Nyquist at the same amplitude.
        s = np.abs(np.fft.rfft(noise.periodic(64, 1.0, seed=6)))[1:32]
        close(s, np.full(31, 32.0), 1e-9)

    def test_permutations(self):
        p = noise.permutation(50, seed=8)
        self.assertEqual(sorted(p.tolist()), list(range(50)))
        a = np.arange(10.0) * 1.5
        shuffled, index = noise.Generator(9).shuffle(a)
        np.testing.assert_array_equal(shuffled, a[index])


class WaveformsTest(unittest.TestCase):
    def test_waves_and_patterns(self):
        n, f = 50, 0.03
        i = np.arange(n)
        close(waveforms.sine(n, f, 2.0, 30.0), 2.0 * np.sin(2 * np.pi * f * i + np.pi / 6), 1e-12)
        close(waveforms.sawtooth(n, f), scipy.signal.sawtooth(2 * np.pi * f * i + np.pi), 1e-12)
        close(waveforms.square(n, f, duty=25.0), scipy.signal.square(2 * np.pi * f * i, 0.25), 1e-12)
        close(waveforms.sine_pattern(n, 3.0), np.sin(2 * np.pi * 3 * i / n), 1e-12)
        close(waveforms.ramp(9, 1.0, 256.0, log=True), np.geomspace(1, 256, 9))
        close(waveforms.ramp(8, 0.0, 1.0, endpoint=False), np.linspace(0, 1, 8, endpoint=False))
        t = np.linspace(-1e-3, 1e-3, 41)
        close(waveforms.gausspulse(t, fc=5000, bw=0.5), scipy.signal.gausspulse(t, fc=5000, bw=0.5), 1e-12)

    def test_oscillator_keeps_its_phase(self):
        osc = waveforms.Oscillator("triangle", 0.07, 1.5)
        joined = np.concatenate([osc(13), osc(29)])
        close(joined, waveforms.triangle(42, 0.07, 1.5), 1e-12)
        self.assertAlmostEqual(osc.phase, (42 * 0.07 * 360) % 360, places=9)


class SpecialAndStatsTest(unittest.TestCase):
    def test_special_functions_match_scipy(self):
        x = np.array([0.1, 0.5, 1.0, 2.5, 7.3, 30.0])
        cases = [(special.gamma, sp.gamma, (x,)), (special.gammaln, sp.gammaln, (x,)),
                 (special.digamma, sp.digamma, (x,)), (special.erf, sp.erf, (x - 3,)),
                 (special.erfc, sp.erfc, (x - 3,)), (special.dawsn, sp.dawsn, (x - 3,)),
                 (special.gammainc, sp.gammainc, (x, x[::-1])), (special.beta, sp.beta, (x[:4], x[1:5])),
                 (special.betainc, sp.betainc, (x[:4], x[1:5], np.array([0.1, 0.3, 0.6, 0.9])))]
        for ours, ref, args in cases:
            with self.subTest(f=ours.__name__):
                close(ours(*args), ref(*args), 1e-12)
        close(special.factorial(np.arange(20)), sp.factorial(np.arange(20)), 1e-15)
        self.assertIsInstance(special.gamma(3.0), float)

    def test_statistics_match_numpy(self):
        x = RNG.standard_normal(1001)
        close(stats.mean(x), np.mean(x), 1e-13)
        close(stats.rms(x), np.sqrt(np.mean(x ** 2)), 1e-13)
        counts, centres = stats.histogram(x, 12)
        ref, edges = np.histogram(x, 12)
        np.testing.assert_array_equal(counts, ref)
        close(centres, (edges[:-1] + edges[1:]) / 2)
        with self.assertRaises(jqanlys.JQError) as e:
            stats.mean([])
        self.assertEqual(e.exception.code, -20003)


class MeasureTest(unittest.TestCase):
    def test_state_levels(self):
        x = np.r_[np.full(40, -1.0), np.full(60, 4.0)] + RNG.uniform(-0.01, 0.01, 100)
        counts, edges = np.histogram(x, 50)
        centres = (edges[:-1] + edges[1:]) / 2
        low, high = centres[np.argmax(counts[:21])], centres[30 + np.argmax(counts[30:])]
        close(measure.state_levels(x, bins=50), (high, low, high - low))
        close(measure.state_levels(x, "peak"), (x.max(), x.min(), x.max() - x.min()))
        spike = np.r_[np.zeros(99), 5.0]
        with self.assertWarns(jqanlys.JQWarning):
            measure.state_levels(spike)
        self.assertEqual(measure.state_levels(spike, "auto")[0], 5.0)  # the weak high state keeps the maximum
        with self.assertRaises(jqanlys.JQError) as e:
            measure.state_levels(np.ones(8))
        self.assertEqual(e.exception.code, -20309)

    def test_threshold_peaks_match_run_starts(self):
        x = RNG.standard_normal(2000)
        for width in (1, 2, 5):
            above = np.r_[False, x >= 0.3, False]
            starts, ends = np.flatnonzero(~above[:-1] & above[1:]), np.flatnonzero(above[:-1] & ~above[1:])
            np.testing.assert_array_equal(measure.threshold_peaks(x, 0.3, width), starts[ends - starts >= width])
        with self.assertRaises(jqanlys.JQError) as e:
            measure.threshold_peaks(x[:3], 0.0, 3)
        self.assertEqual(e.exception.code, -20013)


class FiltersTest(unittest.TestCase):
    def test_fir_design_matches_scipy(self):
        close(filters.firwin(31, 0.3, window="hamming"), scipy.signal.firwin(31, 0.3, window="hamming", scale=False))
        close(filters.firwin(31, [0.2, 0.5], "bandpass", fs=2.0),
              scipy.signal.firwin(31, [0.2, 0.5], window="boxcar", pass_zero=False, scale=False))
        close(filters.remez(31, [0, 0.2, 0.3, 1], [1, 0]), scipy.signal.remez(31, [0, 0.2, 0.3, 1], [1, 0], fs=2), 1e-10)
        close(filters.savgol_coeffs(9, 3), scipy.signal.savgol_coeffs(9, 3))

    def test_fir_filtering_matches_scipy(self):
        x = RNG.standard_normal(200)
        b = scipy.signal.firwin(15, 0.3)
        close(filters.fir_filter(b, x), scipy.signal.lfilter(b, 1, x))
        stream = filters.FIRFilter(b)
        close(np.concatenate([stream(x[:37]), stream(x[37:120]), stream(x[120:])]), scipy.signal.lfilter(b, 1, x))
        close(filters.medfilt(x, 5), scipy.signal.medfilt(x, 5))
        close(filters.savgol_filter(x, 7, 2), scipy.signal.savgol_filter(x, 7, 2, mode="interp"))


class IIRTest(unittest.TestCase):
    def test_designs_and_filtering_match_scipy(self):
        x = RNG.standard_normal(300)
        cases = [(filters.butter(5, 0.3), scipy.signal.butter(5, 0.3, output="sos")),
                 (filters.cheby1(4, 1.0, 0.3), scipy.signal.cheby1(4, 1.0, 0.3, output="sos")),
                 (filters.cheby2(5, 40.0, 0.3), scipy.signal.cheby2(5, 40.0, 0.3, output="sos")),
                 (filters.ellip(5, 1.0, 50.0, 0.3), scipy.signal.ellip(5, 1.0, 50.0, 0.3, output="sos")),
                 (filters.bessel(5, 0.3), scipy.signal.bessel(5, 0.3, output="sos", norm="mag")),
                 (filters.butter(3, [0.2, 0.5], "bandpass"), scipy.signal.butter(3, [0.2, 0.5], "bandpass", output="sos")),
                 (filters.butter(4, 1.5, "high", fs=10.0), scipy.signal.butter(4, 1.5, "high", output="sos", fs=10.0))]
        for ours, ref in cases:
            # Sections may be ordered or paired differently: compare responses.
            close(scipy.signal.sosfreqz(ours, 256)[1], scipy.signal.sosfreqz(ref, 256)[1], 1e-11)
            close(filters.sosfilt(ours, x), scipy.signal.sosfilt(ours, x), 1e-11)
        sos = filters.butter(6, 0.2)
        stream = filters.SOSFilter(sos)
        close(np.concatenate([stream(x[:50]), stream(x[50:])]), scipy.signal.sosfilt(sos, x), 1e-11)


class SignalTest(unittest.TestCase):
    def test_one_dimensional(self):
        x, y = RNG.standard_normal(60), RNG.standard_normal(9)
        for method in ("direct", "fft"):
            close(signal.convolve(x, y, method), np.convolve(x, y))
            close(signal.correlate(x, y, method=method), scipy.signal.correlate(y, x))
        z = x + 1j * RNG.standard_normal(60)
        close(signal.convolve(z, y), np.convolve(z, y))
        close(signal.autocorrelate(x), np.correlate(x, x, "full"))
        d = np.array([2.0, 0.6, -0.3])  # roots well inside the unit circle: long division is stable
        close(signal.deconvolve(np.convolve(x, d), d), scipy.signal.deconvolve(np.convolve(x, d), d)[0])

    def test_two_dimensional(self):
        a, b = RNG.standard_normal((7, 6)), RNG.standard_normal((3, 2))
        for mode in ("full", "same", "valid"):
            with self.subTest(mode=mode):
                close(signal.convolve2d(a, b, mode), scipy.signal.convolve2d(a, b, mode))
                close(signal.correlate2d(a, b, mode), scipy.signal.correlate2d(a, b, mode))
        with self.assertRaises(jqanlys.JQError) as e:
            signal.convolve2d(b, a, "valid")
        self.assertEqual(e.exception.code, -20008)

    def test_integration(self):
        t = np.linspace(0, 1, 21)
        f = np.sin(3 * t)
        close(integrate.integrate(f, t[1]), np.trapz(f, t))
        close(integrate.integrate(f, t[1], "simpson"), scipy.integrate.simpson(f, x=t))
        m = np.outer(f, f)
        close(integrate.integrate2d(m, t[1], t[1]), np.trapz(np.trapz(m, t), t))


class LinalgTest(unittest.TestCase):
    def test_matches_numpy(self):
        a, b, v = RNG.standard_normal((5, 5)), RNG.standard_normal((5, 3)), RNG.standard_normal(5)
        z = a + 1j * RNG.standard_normal((5, 5))
        close(linalg.matmul(a, b), a @ b)
        for m in (a, z):
            close(linalg.det(m), np.linalg.det(m), 1e-10)
            close(linalg.inv(m), np.linalg.inv(m), 1e-10)
        close(linalg.solve(a, v), np.linalg.solve(a, v), 1e-10)
        close(linalg.solve(a, b), np.linalg.solve(a, b), 1e-10)
        close(linalg.pinv(b), np.linalg.pinv(b), 1e-10)
        self.assertEqual(linalg.matrix_rank(b), 3)
        close(linalg.svdvals(a), np.linalg.svd(a, compute_uv=False))
        u, s, w = linalg.svd(a)
        close(u @ np.diag(s) @ w.T, a, 1e-10)
        spd = a @ a.T + 5 * np.eye(5)
        low = linalg.cholesky(spd)
        close(low @ low.T, spd)
        q, r = linalg.qr(b)
        close(q @ r, b)
        values, vectors = linalg.eig(a)
        close(a @ vectors, vectors * values, 1e-10)
        with self.assertRaises(jqanlys.JQError) as e:
            linalg.solve(np.zeros((3, 3)), np.ones(3))
        self.assertEqual(e.exception.code, -20041)


if __name__ == "__main__":
    unittest.main()
