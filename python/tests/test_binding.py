"""The automatic binding: how declarations are read, how calls move data
through host handles, how codes become exceptions, and that slots, states
and handles are released."""
import os
import tempfile
import threading
import unittest
import warnings

import numpy as np

import jqanlys
from jqanlys import _binding, _header

HEADER = """
#include "jqanlys/fam.h"
"""
FAMILY = """
typedef struct JQPair { double a, b; int32_t n; } JQPair;
typedef struct JQOpaque JQOpaque;
JQ_API int32_t Filt(JQ_IN JQArrF64 x, JQ_OUT JQMatC128 y, JQ_INOUT double state[4], int32_t order,
                    JQ_INOUT JQSlot instance);
JQ_API int32_t Old(JQ_INOUT JQArrI32 a, JQ_IN int32_t* n, JQ_OUT int32_t* error, JQ_INOUT JQPair* p);
JQ_API void Fn(double x, JQ_OUT double* result);
JQ_API int32_t Lin(JQ_IN JQMatF64 a, JQ_OUT int32_t* rank, JQ_OUT int32_t* status);
JQ_API JQOpaque* Make(uint32_t n);
JQ_API int32_t Unmarked(double* x);
JQ_API int32_t Names(JQ_IN JQArrF64 np, JQ_OUT double lambda[2], int32_t _fn, double type, JQ_INOUT JQPair* p);
"""


def parse_sample():
    with tempfile.TemporaryDirectory() as d:
        os.mkdir(os.path.join(d, "jqanlys"))
        for name, text in (("jqanlys.h", HEADER), (os.path.join("jqanlys", "fam.h"), FAMILY)):
            with open(os.path.join(d, name), "w") as f:
                f.write(text)
        return _header.parse(d)


class DeclarationTest(unittest.TestCase):
    def test_reads_kinds_types_and_directions(self):
        structs, exports, skipped = parse_sample()
        self.assertEqual(structs["JQPair"].fields, [("a", "double", None), ("b", "double", None), ("n", "int32_t", None)])
        self.assertTrue(structs["JQOpaque"].opaque)
        by = {e.name: e for e in exports}
        got = [(p.kind, p.direction, p.dtype, p.rank, p.count) for p in by["Filt"].params]
        self.assertEqual(got, [("array", "in", "float64", 1, None), ("array", "out", "complex128", 2, None),
                               ("vector", "inout", "float64", None, 4), ("value", "in", "int32", None, None),
                               ("slot", "inout", None, None, None)])
        self.assertEqual([p.kind for p in by["Old"].params], ["array", "ref", "error", "struct"])
        self.assertEqual(by["Make"].result, "JQOpaque*")
        self.assertEqual(by["Fn"].params[1].kind, "ref")
        self.assertEqual([p.kind for p in by["Lin"].params], ["array", "ref", "error"])
        # A parameter without its mark is reported, and the others still bind.
        self.assertIn("Unmarked", skipped)
        self.assertNotIn("Unmarked", by)

    def test_generated_functions_survive_awkward_names(self):
        # Names of numpy, of Python keywords and builtins and of the generated
        # code's own variables, bound to a stand-in for the C function.
        structs, exports, _ = parse_sample()
        calls = []

        class Stand_in:
            def __call__(self, *args):
                calls.append(args)
                return 0
        lib = type("Lib", (), {"Names": Stand_in()})()
        names = _binding.Binding(lib, jqanlys._rt, structs, [e for e in exports if e.name == "Names"]).functions["Names"]
        lam = names(np.ones(3), 7, 2.5)
        np.testing.assert_array_equal(lam, [0.0, 0.0])
        self.assertEqual(calls[0][2], 7)

    def test_every_export_of_the_real_header_is_bound(self):
        self.assertEqual(jqanlys.unbound, {})
        names = set(vars(jqanlys.exports))
        self.assertTrue({"SpectrumH", "white", "JQ_Gamma", "histgran_head", "CxFFT2D_H_IDP"} <= names)


class CallTest(unittest.TestCase):
    x = jqanlys.exports

    def test_outputs_in_parameter_order_and_inputs_untouched(self):
        data = np.array([1.0, 2.0, 3.0, 4.0, 5.0, 6.0])
        counts, centres = self.x.histgran_head(data, 3)
        np.testing.assert_array_equal(counts, [2, 2, 2])
        self.assertEqual(counts.dtype, np.int32)
        np.testing.assert_allclose(centres, [1 + 5 / 6, 3.5, 6 - 5 / 6])
        signal = np.ones(4)
        self.assertEqual(self.x.SpectrumH(signal).tolist(), [1, 0, 0, 0])
        self.assertEqual(signal.tolist(), [1, 1, 1, 1])  # in-out arrays come back as new arrays

    def test_codes_become_exceptions_with_readable_messages(self):
        cases = [(lambda: self.x.SpectrumH_IDP([]), -20003),                      # code as result
                 (lambda: self.x.Mean_head(np.empty(0)), -20003),                 # code in the error argument
                 (lambda: self.x.CrossSpectrumH_IDP([1, 2], [1, 2, 3]), -20002),
                 (lambda: self.x.AllWinH(np.ones(4), 10, 0.0, 0, 0), -20061),
                 (lambda: self.x.ReKWFFTH80_IDP([1.0], 0, 0, 0), -20115)]
        for call, code in cases:
            with self.assertRaises(jqanlys.JQError) as e:
                call()
            self.assertEqual(e.exception.code, code)
            self.assertIn(jqanlys.MESSAGES[code], str(e.exception))
        self.assertIn("-20777", jqanlys.message(-20777))
        self.assertTrue(jqanlys.message(20004).startswith("warning: "))

    def test_failed_host_resize_is_out_of_memory(self):
        rt = jqanlys.runtime
        for call in (lambda: self.x.white(8, 1.0, 1), lambda: self.x.CxSpectrumH_IDP(np.ones(8, complex))):
            call()  # the input's block is then kept, so the next resize is the export's
            rt.jqrt_fail_resize(1)
            try:
                with self.assertRaises(jqanlys.JQError) as e:
                    call()
            finally:
                rt.jqrt_fail_resize(0)
            self.assertEqual(e.exception.code, -20001)
        self.assertEqual(len(self.x.white(8, 1.0, 1)), 8)

    def test_warnings_keep_results(self):
        with warnings.catch_warnings(record=True) as w:
            warnings.simplefilter("always")
            _binding._report(20004, "X")
        self.assertIsInstance(w[0].message, jqanlys.JQWarning)
        self.assertEqual(w[0].message.code, 20004)

    def test_arguments_are_checked_before_the_call(self):
        cases = [(lambda: self.x.SpectrumH_IDP(np.ones(4, complex)), TypeError),  # complex into a real array
                 (lambda: self.x.SpectrumH_IDP(np.ones((2, 2))), ValueError),     # wrong rank
                 (lambda: self.x.RampPtrn80(2**31, 0.0, 1.0), OverflowError),
                 (lambda: self.x.RampPtrn80(2.5, 0.0, 1.0), TypeError),
                 (lambda: self.x.white(4, 1.0, 1, state=jqanlys.structs.JQGaussSpare()), TypeError)]
        for call, exc in cases:
            with self.assertRaises(exc):
                call()

    def test_scalars_structs_and_matrices(self):
        self.assertEqual(self.x.JQ_Gamma(5.0), 24.0)
        c = self.x.WinConstByNameH(16, 2, 0.0)
        self.assertEqual((c.enbw, c.cg), (1.362826, 0.54))
        self.assertEqual(c._asdict(), {"enbw": 1.362826, "cg": 0.54})
        m = np.arange(12.0).reshape(3, 4)
        np.testing.assert_allclose(self.x.ReFFT2D_H_IDP(m, 0, 0, 3, 4, 0), np.fft.fft2(m), atol=1e-12)
        np.testing.assert_allclose(self.x.ReFFT2D_H_IDP(m, 1, 2, 2, 2, 0), np.fft.fft2(m[1:, 2:]), atol=1e-12)

    def test_blocks_are_reused_not_leaked(self):
        rt = jqanlys.runtime
        x = np.random.default_rng(1).random(300)
        for _ in range(3):  # fill every pool first
            jqanlys.spectrum(x), jqanlys.noise.uniform(50, seed=3), self.assertRaises(jqanlys.JQError, jqanlys.spectrum, [])
        before = rt.jqrt_live_blocks()
        for n in (300, 5, 1000, 300):
            jqanlys.spectrum(x[:n]), jqanlys.noise.uniform(n, seed=3)
            self.assertRaises(jqanlys.JQError, jqanlys.spectrum, [])
        self.assertEqual(rt.jqrt_live_blocks(), before)


    def test_threads_do_not_share_handles_or_slots(self):
        # ctypes lets go of the interpreter lock during a call, so calls from
        # several threads overlap inside the library.
        signals = [np.random.default_rng(i).random(256 + 64 * i) for i in range(4)]
        expected = [np.abs(np.fft.fft(s)) ** 2 / s.size ** 2 for s in signals]
        bad = []

        def work(i):
            for _ in range(200):
                if not np.allclose(jqanlys.spectrum(signals[i]), expected[i], rtol=1e-12, atol=1e-15):
                    bad.append(i)
                    return
        threads = [threading.Thread(target=work, args=(i,)) for i in range(4)]
        for t in threads:
            t.start()
        for t in threads:
            t.join()
        self.assertEqual(bad, [])


class SlotTest(unittest.TestCase):
    def test_idp_slot_released_by_with(self):
        with jqanlys.Slot() as s:
            a = jqanlys.spectrum(np.arange(8.0), slot=s)
            self.assertTrue(s.held)
            np.testing.assert_array_equal(jqanlys.spectrum(np.arange(8.0), slot=s), a)
        self.assertFalse(s.held)

    def test_plain_export_slot_unregisters_its_clean_up(self):
        rt = jqanlys.runtime
        before = rt.jqrt_cleanup_count()
        s = jqanlys.Slot()
        jqanlys.exports.SpectrumH(np.arange(8.0), instance=s)
        jqanlys.exports.SpectrumH(np.arange(8.0), instance=s)
        self.assertEqual(rt.jqrt_cleanup_count(), before + 1)
        s.release()
        self.assertFalse(s.held)
        self.assertEqual(rt.jqrt_cleanup_count(), before)

    def test_default_slots_released_on_request(self):
        jqanlys.exports.DCT_1DH_IDP(np.ones(6), 0)
        jqanlys.release_defaults()
        np.testing.assert_allclose(jqanlys.exports.DCT_1DH_IDP(np.ones(4), 0), [2, 0, 0, 0], atol=1e-15)


if __name__ == "__main__":
    unittest.main()
