#!/usr/bin/python3
"""Writes src/transforms/codelets.inc: the straight-line FFT butterflies.

Run from the repository root (see also tools/fft_generators.md):

    /usr/bin/python3 tools/gen_codelets.py > src/transforms/codelets.inc

For every radix the engine factors by, four functions are written:

  hc_leaf_R     `count` real DFTs of length R, written in the half-complex layout
  hc_twiddle_R  the combination of R half-complex sub-spectra of length m,
                with twiddles, in place
  cx_leaf_R     `count` split-complex DFTs of length R
  cx_twiddle_R  the split-complex combination with twiddles, in place

The twiddle forms read their twiddles with the butterfly index k running
fastest (entry (k, j) at (k-1) + (j-1)(m-1)), so that the loop over k reads
them as contiguous vectors.

Each DFT is expanded symbolically (Cooley-Tukey for composite radices, the
symmetric pair form for primes), constants are folded, zero terms and
unused values are dropped and common subexpressions are shared. The loops
over independent butterflies carry `#pragma GCC ivdep` and are instantiated
for unit stride so that the compiler vectorises across them.

The output is generated; never edit it by hand.
"""
import math
import sys
from fractions import Fraction

RADICES = [10, 43, 41, 37, 32, 31, 29, 19, 18, 17, 16, 14, 13, 11, 9, 8, 7, 5, 4, 3, 2]


def unit_root(k, n):
    """(cos, -sin) of 2*pi*k/n, i.e. e^(-2 pi i k/n), exactly symmetric."""
    f = Fraction(k, n) % 1
    # Reduce to the first octant and rebuild by symmetry, so that values
    # that must be 0, 1 or equal in magnitude come out exactly so.
    sc, ss = 1, 1
    if f > Fraction(1, 2):
        f = 1 - f
        ss = -1
    if f > Fraction(1, 4):
        f = Fraction(1, 2) - f
        sc = -sc
    swap = f > Fraction(1, 8)
    if swap:
        f = Fraction(1, 4) - f
    if f == 0:
        c, s = 1.0, 0.0
    elif f == Fraction(1, 8):
        c = s = math.sqrt(0.5)
    else:
        a = 2 * math.pi * f.numerator / f.denominator
        c, s = math.cos(a), math.sin(a)
    if swap:
        c, s = s, c
    return sc * c, -ss * s


class Dag:
    """Expression graph with folding and sharing; None stands for exact zero."""

    def __init__(self):
        self.memo = {}
        self.nodes = []  # (name, op, args)

    def _mk(self, op, *args):
        key = (op,) + args
        if key in self.memo:
            return self.memo[key]
        name = "t%d" % len(self.nodes)
        self.nodes.append((name, op, args))
        self.memo[key] = name
        return name

    def load(self, expr):
        return self._mk("load", expr)

    def neg(self, a):
        if a is None:
            return None
        for name, op, args in self._find(a):
            if op == "neg":
                return args[0]
        return self._mk("neg", a)

    def _find(self, a):
        idx = int(a[1:])
        return [self.nodes[idx]]

    def _is_neg(self, a):
        name, op, args = self._find(a)[0]
        return args[0] if op == "neg" else None

    def add(self, a, b):
        if a is None:
            return b
        if b is None:
            return a
        nb = self._is_neg(b)
        if nb is not None:
            return self.sub(a, nb)
        na = self._is_neg(a)
        if na is not None:
            return self.sub(b, na)
        if a > b:
            a, b = b, a
        return self._mk("add", a, b)

    def sub(self, a, b):
        if b is None:
            return a
        if a is None:
            return self.neg(b)
        nb = self._is_neg(b)
        if nb is not None:
            return self.add(a, nb)
        na = self._is_neg(a)
        if na is not None:
            return self.neg(self.add(na, b))
        return self._mk("sub", a, b)

    def cmul(self, c, a):
        if a is None or c == 0.0:
            return None
        if c == 1.0:
            return a
        if c == -1.0:
            return self.neg(a)
        na = self._is_neg(a)
        if na is not None:
            return self._mk("cmul", repr(-c), na)
        return self._mk("cmul", repr(c), a)

    def mul(self, a, b):
        if a is None or b is None:
            return None
        return self._mk("mul", a, b)

    def emit(self, roots, indent):
        live = set()
        stack = [r for r in roots if r is not None]
        while stack:
            x = stack.pop()
            if x in live:
                continue
            live.add(x)
            name, op, args = self._find(x)[0]
            for a in args:
                if isinstance(a, str) and a.startswith("t") and a[1:].isdigit():
                    stack.append(a)
        out = []
        for name, op, args in self.nodes:
            if name not in live:
                continue
            if op == "load":
                e = args[0]
            elif op == "neg":
                e = "-" + args[0]
            elif op == "add":
                e = "%s + %s" % args
            elif op == "sub":
                e = "%s - %s" % args
            elif op == "cmul":
                e = "%s * %s" % args
            else:
                e = "%s * %s" % args
            out.append("%sconst double %s = %s;" % (indent, name, e))
        return out


def cadd(g, x, y):
    return (g.add(x[0], y[0]), g.add(x[1], y[1]))


def csub(g, x, y):
    return (g.sub(x[0], y[0]), g.sub(x[1], y[1]))


def cmulc(g, x, w):
    c, s = w
    re = g.sub(g.cmul(c, x[0]), g.cmul(s, x[1]))
    im = g.add(g.cmul(s, x[0]), g.cmul(c, x[1]))
    return (re, im)


def smallest_factor(n):
    for p in range(2, n + 1):
        if n % p == 0:
            return p
    return n


def twiddled(g, r, load):
    """The r inputs of a twiddle butterfly, load(t) giving input t as a
    (re, im) pair, each input t >= 1 multiplied by its twiddle from the
    tables. Loads are issued in input order, twiddles right after their input."""
    ys = []
    for t in range(r):
        a, b = load(t)
        if t == 0:
            ys.append((a, b))
        else:
            wr = g.load("wc[%d * mm]" % (t - 1))
            wi = g.load("ws[%d * mm]" % (t - 1))
            ys.append((g.sub(g.mul(a, wr), g.mul(b, wi)), g.add(g.mul(a, wi), g.mul(b, wr))))
    return ys


def dft(g, xs):
    """Forward DFT (e^-) of a list of complex values."""
    n = len(xs)
    if n == 1:
        return list(xs)
    if n == 2:
        return [cadd(g, xs[0], xs[1]), csub(g, xs[0], xs[1])]
    p = smallest_factor(n)
    if p == n:
        return dft_prime(g, xs)
    a = 4 if n % 4 == 0 and n > 4 else p
    b = n // a
    z = [dft(g, xs[n1::a]) for n1 in range(a)]
    out = [None] * n
    for k1 in range(b):
        ys = [cmulc(g, z[n1][k1], unit_root(n1 * k1, n)) for n1 in range(a)]
        yk = dft(g, ys)
        for k2 in range(a):
            out[k1 + b * k2] = yk[k2]
    return out


def dft_prime(g, xs):
    n = len(xs)
    h = (n - 1) // 2
    sums = [cadd(g, xs[t], xs[n - t]) for t in range(1, h + 1)]
    difs = [csub(g, xs[t], xs[n - t]) for t in range(1, h + 1)]
    out = [None] * n
    r0, i0 = xs[0]
    for s in sums:
        r0, i0 = g.add(r0, s[0]), g.add(i0, s[1])
    out[0] = (r0, i0)
    for q in range(1, h + 1):
        ra, ia, rb, ib = xs[0][0], xs[0][1], None, None
        for t in range(1, h + 1):
            c, ms = unit_root(t * q, n)
            s = -ms
            ra = g.add(ra, g.cmul(c, sums[t - 1][0]))
            ia = g.add(ia, g.cmul(c, sums[t - 1][1]))
            rb = g.add(rb, g.cmul(s, difs[t - 1][1]))
            ib = g.add(ib, g.cmul(s, difs[t - 1][0]))
        out[q] = (g.add(ra, rb), g.sub(ia, ib))
        out[n - q] = (g.sub(ra, rb), g.add(ia, ib))
    return out


def store(dest, val):
    return "%s = %s;" % (dest, val if val is not None else "0.0")


def body(g, roots_and_stores, indent):
    lines = g.emit([v for _, v in roots_and_stores], indent)
    for dest, v in roots_and_stores:
        lines.append(indent + store(dest, v))
    return lines


def hc_leaf(r):
    g = Dag()
    xs = [(g.load("x[%d * is]" % j), None) for j in range(r)]
    X = dft(g, xs)
    st = [("y[%d * os]" % k, X[k][0]) for k in range(r // 2 + 1)]
    st += [("y[%d * os]" % (r - k), X[k][1]) for k in range(1, (r + 1) // 2)]
    ind = "      "
    lines = [
        "template <int U> static inline void hc_leaf_%d_(const double* __restrict in, double* __restrict out,"
        " ptrdiff_t is_, ptrdiff_t os, ptrdiff_t idist, ptrdiff_t odist, int count) {" % r,
        "  const ptrdiff_t is = U ? 1 : is_;",
        "  JQ_IVDEP",
        "  for (int c = 0; c < count; ++c) {",
        "    const double* __restrict x = in + c * idist;",
        "    double* __restrict y = out + c * odist;",
        "    {",
    ]
    lines += body(g, st, ind)
    lines += ["    }", "  }", "}"]
    lines += [
        "static void hc_leaf_%d(const double* in, double* out, ptrdiff_t is, ptrdiff_t os, ptrdiff_t idist,"
        " ptrdiff_t odist, int count) {" % r,
        "  if (is == 1) hc_leaf_%d_<1>(in, out, 1, os, idist, odist, count);" % r,
        "  else hc_leaf_%d_<0>(in, out, is, os, idist, odist, count);" % r,
        "}",
    ]
    return lines


def hc_twiddle(r):
    ind = "      "
    # k = 0: a real DFT of the r sub-spectra's DC terms.
    g0 = Dag()
    X = dft(g0, [(g0.load("d[%d * ms]" % t), None) for t in range(r)])
    st0 = [("d[%d * ms]" % q, X[q][0]) for q in range(r // 2 + 1)]
    st0 += [("d[%d * ms]" % (r - q), X[q][1]) for q in range(1, (r + 1) // 2)]
    # 0 < k < m/2: sub-spectrum pairs (k, m-k), twiddled, full complex DFT.
    g1 = Dag()
    X = dft(g1, twiddled(g1, r, lambda t: (g1.load("d[%d * ms + k * s]" % t),
                                           g1.load("d[%d * ms + (m - k) * s]" % t))))
    st1 = []
    for q in range(r):
        lo = "d[%d * ms + k * s]" % q
        hi = "d[%d * ms + (m - k) * s]" % (r - 1 - q)
        if q <= (r - 1) // 2:
            st1 += [(lo, X[q][0]), (hi, X[q][1])]
        else:
            st1 += [(hi, X[q][0]), (lo, g1.neg(X[q][1]))]
    # k = m/2 for even m: real values, twiddled by e^(-i pi t/r).
    g2 = Dag()
    ys = [cmulc(g2, (g2.load("d[%d * ms + h]" % t), None), unit_root(t, 2 * r)) for t in range(r)]
    X = dft(g2, ys)
    st2 = []
    for q in range(r):
        if 2 * q + 1 < r:
            st2 += [("d[%d * ms + h]" % q, X[q][0]), ("d[%d * ms + h]" % (r - 1 - q), X[q][1])]
        elif 2 * q + 1 == r:
            st2 += [("d[%d * ms + h]" % q, X[q][0])]
    lines = [
        "template <int U> static inline void hc_twiddle_%d_(double* __restrict d, const double* __restrict twc,"
        " const double* __restrict tws, ptrdiff_t s_, int m) {" % r,
        "  const ptrdiff_t s = U ? 1 : s_;",
        "  const ptrdiff_t ms = m * s;",
        "  const ptrdiff_t mm = m - 1;",
        "  {",
    ]
    lines += body(g0, st0, "    ")
    lines += [
        "  }",
        "  JQ_IVDEP",
        "  for (int k = 1, half = (m - 1) / 2; k <= half; ++k) {",
        "    const double* __restrict wc = twc + (k - 1);",
        "    const double* __restrict ws = tws + (k - 1);",
        "    {",
    ]
    lines += body(g1, st1, ind)
    lines += [
        "    }",
        "  }",
        "  if (m % 2 == 0) {",
        "    const ptrdiff_t h = (m / 2) * s;",
    ]
    lines += body(g2, st2, "    ")
    lines += ["  }", "}"]
    lines += [
        "static void hc_twiddle_%d(double* d, const double* twc, const double* tws, ptrdiff_t s, int m) {" % r,
        "  if (s == 1) hc_twiddle_%d_<1>(d, twc, tws, 1, m);" % r,
        "  else hc_twiddle_%d_<0>(d, twc, tws, s, m);" % r,
        "}",
    ]
    return lines


def cx_leaf(r):
    g = Dag()
    xs = [(g.load("xr[%d * is]" % j), g.load("xi[%d * is]" % j)) for j in range(r)]
    X = dft(g, xs)
    st = []
    for q in range(r):
        st += [("yr[%d * os]" % q, X[q][0]), ("yi[%d * os]" % q, X[q][1])]
    lines = [
        "template <int U> static inline void cx_leaf_%d_(const double* __restrict ir, const double* __restrict ii,"
        " double* __restrict or_, double* __restrict oi, ptrdiff_t is_, ptrdiff_t os, ptrdiff_t idist,"
        " ptrdiff_t odist, int count) {" % r,
        "  const ptrdiff_t is = U ? 1 : is_;",
        "  JQ_IVDEP",
        "  for (int c = 0; c < count; ++c) {",
        "    const double* __restrict xr = ir + c * idist;",
        "    const double* __restrict xi = ii + c * idist;",
        "    double* __restrict yr = or_ + c * odist;",
        "    double* __restrict yi = oi + c * odist;",
        "    {",
    ]
    lines += body(g, st, "      ")
    lines += ["    }", "  }", "}"]
    lines += [
        "static void cx_leaf_%d(const double* ir, const double* ii, double* or_, double* oi, ptrdiff_t is,"
        " ptrdiff_t os, ptrdiff_t idist, ptrdiff_t odist, int count) {" % r,
        "  if (is == 1) cx_leaf_%d_<1>(ir, ii, or_, oi, 1, os, idist, odist, count);" % r,
        "  else cx_leaf_%d_<0>(ir, ii, or_, oi, is, os, idist, odist, count);" % r,
        "}",
    ]
    return lines


def cx_twiddle(r):
    g0 = Dag()
    X = dft(g0, [(g0.load("re[%d * ms]" % t), g0.load("im[%d * ms]" % t)) for t in range(r)])
    st0 = []
    for q in range(r):
        st0 += [("re[%d * ms]" % q, X[q][0]), ("im[%d * ms]" % q, X[q][1])]
    g1 = Dag()
    X = dft(g1, twiddled(g1, r, lambda t: (g1.load("re[%d * ms + k * s]" % t),
                                           g1.load("im[%d * ms + k * s]" % t))))
    st1 = []
    for q in range(r):
        st1 += [("re[%d * ms + k * s]" % q, X[q][0]), ("im[%d * ms + k * s]" % q, X[q][1])]
    lines = [
        "template <int U> static inline void cx_twiddle_%d_(double* __restrict re, double* __restrict im,"
        " const double* __restrict twc, const double* __restrict tws, ptrdiff_t s_, int m) {" % r,
        "  const ptrdiff_t s = U ? 1 : s_;",
        "  const ptrdiff_t ms = m * s;",
        "  const ptrdiff_t mm = m - 1;",
        "  {",
    ]
    lines += body(g0, st0, "    ")
    lines += [
        "  }",
        "  JQ_IVDEP",
        "  for (int k = 1; k < m; ++k) {",
        "    const double* __restrict wc = twc + (k - 1);",
        "    const double* __restrict ws = tws + (k - 1);",
        "    {",
    ]
    lines += body(g1, st1, "      ")
    lines += ["    }", "  }", "}"]
    lines += [
        "static void cx_twiddle_%d(double* re, double* im, const double* twc, const double* tws, ptrdiff_t s,"
        " int m) {" % r,
        "  if (s == 1) cx_twiddle_%d_<1>(re, im, twc, tws, 1, m);" % r,
        "  else cx_twiddle_%d_<0>(re, im, twc, tws, s, m);" % r,
        "}",
    ]
    return lines


def main():
    out = [
        "// Straight-line FFT butterflies for the codelet radices.",
        "//",
        "// GENERATED by tools/gen_codelets.py; do not edit. Regenerate with",
        "//   /usr/bin/python3 tools/gen_codelets.py > src/transforms/codelets.inc",
        "// This file is included by codelets.cpp inside the namespace of one",
        "// instruction-set variant.",
        "",
    ]
    for r in sorted(RADICES):
        out.append("// ---- radix %d " % r + "-" * 60)
        out += hc_leaf(r)
        out += hc_twiddle(r)
        out += cx_leaf(r)
        out += cx_twiddle(r)
        out.append("")
    out.append("static const CodeletSet kCodeletSets[] = {")
    for r in RADICES:
        out.append("    {%d, hc_leaf_%d, hc_twiddle_%d, cx_leaf_%d, cx_twiddle_%d}," % (r, r, r, r, r))
    out.append("};")
    sys.stdout.write("\n".join(out) + "\n")


if __name__ == "__main__":
    main()
