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
fastest (entry (k, j) at k + (j-1)m, k = 0 .. m-1), so that the loop over k
reads them as contiguous vectors.

Each DFT is expanded symbolically (Cooley-Tukey for composite radices, the
symmetric pair form for primes), constants are folded, zero terms and
unused values are dropped and common subexpressions are shared. Each body is
written over a lane type, so that codelets_body.hpp runs it on vectors of
independent butterflies (and singly on what is left); the large radices are
split into two stages through a local buffer to keep register pressure low.
The bodies are not inlined into their loops: inlined, the compiler hoists
their address arithmetic out of the loop and spills it.

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
        self.slots = 0  # local buffer entries used by staged DFTs
        self.stage = 0
        self.pending = []  # buffer stores of the open stage
        self.barriers = {}  # stage -> barrier node

    def spill(self, a):
        """Stores a into the local buffer; returns the value read back after
        the stage's barrier."""
        if a is None:
            return None
        slot = self.slots
        self.slots += 1
        self.pending.append(self._mk("bst", a, slot))
        return self._mk("bld", slot, self.stage)

    def barrier(self):
        self.barriers[self.stage] = self._mk("barrier", self.stage, *self.pending)
        self.pending = []
        self.stage += 1

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

    def emit(self, roots, indent, typ):
        live = set()
        stack = [r for r in roots if r is not None]
        while stack:
            x = stack.pop()
            if x in live:
                continue
            live.add(x)
            name, op, args = self._find(x)[0]
            if op == "bld":
                stack.append(self.barriers[args[1]])
            for a in args:
                if isinstance(a, str) and a.startswith("t") and a[1:].isdigit():
                    stack.append(a)
        # Values read back from the stage buffer are emitted just before
        # their first use, everything else in the order it was built.
        index = {name: i for i, (name, _, _) in enumerate(self.nodes)}
        out = []
        if self.slots:
            out.append("%s%s tmp[%d];" % (indent, typ, self.slots))
        done = set()

        def put(x):
            if x in done:
                return
            done.add(x)
            name, op, args = self.nodes[index[x]]
            if op == "bld":
                put(self.barriers[args[1]])
            for a in args:
                if isinstance(a, str) and a in index:
                    put(a)
            if op == "bst":
                out.append("%stmp[%d] = %s;" % (indent, args[1], args[0]))
                return
            if op == "barrier":
                out.append("%sstage_barrier(tmp);" % indent)
                return
            if op == "load":
                e = args[0]
            elif op == "bld":
                e = "tmp[%d]" % args[0]
            elif op == "neg":
                e = "-" + args[0]
            elif op == "add":
                e = "%s + %s" % args
            elif op == "sub":
                e = "%s - %s" % args
            else:
                e = "%s * %s" % args
            out.append("%sconst %s %s = %s;" % (indent, typ, name, e))

        for name, op, args in self.nodes:
            if name in live and op != "bld":
                put(name)
        for r in roots:
            put(r)
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
    tables. The inputs are returned unevaluated, so that each is loaded
    where the DFT first needs it."""
    def one(t):
        a, b = load(t)
        if t == 0:
            return (a, b)
        wr = g.load("ld<T>(wc + %d * wm)" % (t - 1))
        wi = g.load("ld<T>(ws + %d * wm)" % (t - 1))
        return (g.sub(g.mul(a, wr), g.mul(b, wi)), g.add(g.mul(a, wi), g.mul(b, wr)))

    return [lambda t=t: one(t) for t in range(r)]


def STAGED(r):
    return r >= 16 and smallest_factor(r) != r


def force(x):
    return x() if callable(x) else x


def dft(g, xs, staged=False):
    """Forward DFT (e^-) of a list of complex values (or of functions
    giving them). Staged: the sub-DFTs of the first split pass through a
    local buffer, so that the register allocator sees two small problems
    instead of one large one."""
    n = len(xs)
    if n == 1:
        return [force(xs[0])]
    if n == 2:
        x0, x1 = force(xs[0]), force(xs[1])
        return [cadd(g, x0, x1), csub(g, x0, x1)]
    p = smallest_factor(n)
    if p == n:
        return dft_prime(g, [force(x) for x in xs])
    a = 4 if n % 4 == 0 and n > 4 else p
    b = n // a
    z = []
    for n1 in range(a):
        zs = dft(g, xs[n1::a])
        if staged:
            zs = [(g.spill(re), g.spill(im)) for re, im in zs]
        z.append(zs)
    if staged:
        g.barrier()
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


def body(g, loads_and_stores, indent, typ):
    """Straight-line code for the live part of the graph, then the stores.
    Each store is (callable producing the statement from value names)."""
    roots = []
    for st in loads_and_stores:
        roots += [v for v in st[1] if v is not None]
    lines = g.emit(roots, indent, typ)
    for fmt, vals in loads_and_stores:
        lines.append(indent + fmt % tuple(v if v is not None else "%s{}" % typ for v in vals))
    return lines


def grouped_stores(ptr, stride, vals):
    """Stores of vals[q] to ptr[q * stride], in groups of four consecutive
    positions (transposed by the leaf accessor) and single stores for the
    rest."""
    out = []
    r = len(vals)
    q = 0
    while q + 4 <= r:
        out.append(("a.st4(%s + %d * %s, %%s, %%s, %%s, %%s);" % (ptr, q, stride), vals[q:q + 4]))
        q += 4
    while q < r:
        out.append(("a.st1(%s + %d * %s, %%s);" % (ptr, q, stride), [vals[q]]))
        q += 1
    return out


def grouped_complex_stores(X):
    """Stores of the complex outputs X[q] to yr/yi[q * os], in groups of four
    as above; real and imaginary parts are stored together, so that
    interleaved outputs can be written whole."""
    out = []
    r = len(X)
    q = 0
    while q + 4 <= r:
        out.append(("a.stc4(yr + %d * os, yi + %d * os, %%s, %%s, %%s, %%s, %%s, %%s, %%s, %%s);" % (q, q),
                    [x[0] for x in X[q:q + 4]] + [x[1] for x in X[q:q + 4]]))
        q += 4
    while q < r:
        out.append(("a.stc1(yr + %d * os, yi + %d * os, %%s, %%s);" % (q, q), [X[q][0], X[q][1]]))
        q += 1
    return out


def half_complex(X, r):
    """Positions 0 .. r-1 of the half-complex layout of a real DFT."""
    vals = [None] * r
    for k in range(r // 2 + 1):
        vals[k] = X[k][0]
    for k in range(1, (r + 1) // 2):
        vals[r - k] = X[k][1]
    return vals


def hc_leaf(r):
    g = Dag()
    xs = [lambda j=j: (g.load("a.ld(x + %d * is)" % j), None) for j in range(r)]
    X = dft(g, xs, staged=STAGED(r))
    st = grouped_stores("y", "os", half_complex(X, r))
    lines = [
        "template <class A> [[gnu::noinline]] static void hc_leaf_%d_(const A& a, const double* __restrict x,"
        " double* __restrict y, ptrdiff_t is, ptrdiff_t os) {" % r,
        "  using T = typename A::T;",
    ]
    lines += body(g, st, "  ", "T")
    lines += ["}"]
    lines += ["static void hc_leaf_%d(const double* in, double* out, ptrdiff_t is, ptrdiff_t os, ptrdiff_t idist,"
              " ptrdiff_t odist, int count) {" % r,
              "  leaf_loop(in, out, is, os, idist, odist, count, false, false,",
              "            [&](const auto& a, const double* x, double* y, ptrdiff_t is_, ptrdiff_t os_) {",
              "              hc_leaf_%d_(a, x, y, is_, os_);" % r,
              "            });",
              "}"]
    return lines


def hc_twiddle(r):
    # k = 0: a real DFT of the r sub-spectra's DC terms.
    g0 = Dag()
    X = dft(g0, [(g0.load("d[%d * ms]" % t), None) for t in range(r)])
    st0 = [("d[%d * ms] = %%s;" % q, [v]) for q, v in enumerate(half_complex(X, r))]
    # 0 < k < m/2: sub-spectrum pairs (k, m-k), twiddled, full complex DFT.
    # f points at bin k of block 0, b at bin m-k; the vector form runs k
    # upward in f and downward in b.
    g1 = Dag()
    X = dft(g1, staged=STAGED(r), xs=twiddled(g1, r, lambda t: (g1.load("ld<T>(f + %d * ms)" % t),
                                           g1.load("ldr<T>(b + %d * ms)" % t))))
    st1 = []
    for q in range(r):
        lo = "f + %d * ms" % q
        hi = "b + %d * ms" % (r - 1 - q)
        if q <= (r - 1) // 2:
            st1 += [("st<T>(%s, %%s);" % lo, [X[q][0]]), ("str<T>(%s, %%s);" % hi, [X[q][1]])]
        else:
            st1 += [("str<T>(%s, %%s);" % hi, [X[q][0]]), ("st<T>(%s, %%s);" % lo, [g1.neg(X[q][1])])]
    # k = m/2 for even m: real values, twiddled by e^(-i pi t/r).
    g2 = Dag()
    ys = [cmulc(g2, (g2.load("d[%d * ms + h]" % t), None), unit_root(t, 2 * r)) for t in range(r)]
    X = dft(g2, ys)
    st2 = []
    for q in range(r):
        if 2 * q + 1 < r:
            st2 += [("d[%d * ms + h] = %%s;" % q, [X[q][0]]), ("d[%d * ms + h] = %%s;" % (r - 1 - q), [X[q][1]])]
        elif 2 * q + 1 == r:
            st2 += [("d[%d * ms + h] = %%s;" % q, [X[q][0]])]
    lines = [
        "template <class T> [[gnu::noinline]] static void hc_twiddle_%d_(double* __restrict f, double* __restrict b,"
        " const double* __restrict wc, const double* __restrict ws, ptrdiff_t ms, ptrdiff_t wm) {" % r,
    ]
    lines += body(g1, st1, "  ", "T")
    lines += ["}"]
    lines += [
        "static void hc_twiddle_%d(double* d, const double* twc, const double* tws, ptrdiff_t s, int m) {" % r,
        "  const ptrdiff_t ms = m * s;",
        "  {",
    ]
    lines += body(g0, st0, "    ", "double")
    lines += [
        "  }",
        "  hc_twiddle_loop(d, twc, tws, s, m, %d, [](auto lanes, double* f, double* b, const double* wc,"
        " const double* ws, ptrdiff_t ms_, ptrdiff_t wm) {" % r,
        "    hc_twiddle_%d_<decltype(lanes)>(f, b, wc, ws, ms_, wm);" % r,
        "  });",
        "  if (m % 2 == 0) {",
        "    const ptrdiff_t h = (m / 2) * s;",
    ]
    lines += body(g2, st2, "    ", "double")
    lines += ["  }", "}"]
    return lines


def cx_leaf(r):
    g = Dag()
    xs = [lambda j=j: (g.load("a.ld(xr + %d * is)" % j), g.load("a.ldi(xi + %d * is)" % j)) for j in range(r)]
    X = dft(g, xs, staged=STAGED(r))
    st = grouped_complex_stores(X)
    lines = [
        "template <class A> [[gnu::noinline]] static void cx_leaf_%d_(const A& a, const double* __restrict xr,"
        " const double* __restrict xi, double* __restrict yr, double* __restrict yi, ptrdiff_t is,"
        " ptrdiff_t os) {" % r,
        "  using T = typename A::T;",
    ]
    lines += body(g, st, "  ", "T")
    lines += ["}"]
    lines += [
        "static void cx_leaf_%d(const double* ir, const double* ii, double* or_, double* oi, ptrdiff_t is,"
        " ptrdiff_t os, ptrdiff_t idist, ptrdiff_t odist, int count) {" % r,
        "  leaf_loop(ir, or_, is, os, idist, odist, count, ii == ir + 1, oi == or_ + 1,",
        "            [&](const auto& a, const double* xr, double* yr, ptrdiff_t is_, ptrdiff_t os_) {",
        "              cx_leaf_%d_(a, xr, ii + (xr - ir), yr, oi + (yr - or_), is_, os_);" % r,
        "            });",
        "}",
    ]
    return lines


def cx_twiddle(r):
    g1 = Dag()
    X = dft(g1, staged=STAGED(r), xs=twiddled(g1, r, lambda t: (g1.load("M::ld(re + %d * ms)" % t),
                                           g1.load("M::ldi(im + %d * ms)" % t))))
    st1 = [("M::stc(re + %d * ms, im + %d * ms, %%s, %%s);" % (q, q), [X[q][0], X[q][1]]) for q in range(r)]
    lines = [
        "template <class M> [[gnu::noinline]] static void cx_twiddle_%d_(double* re, double* im,"
        " const double* __restrict wc, const double* __restrict ws, ptrdiff_t ms, ptrdiff_t wm) {" % r,
        "  using T = typename M::T;",
    ]
    lines += body(g1, st1, "  ", "T")
    lines += ["}"]
    lines += [
        "static void cx_twiddle_%d(double* re, double* im, const double* twc, const double* tws, ptrdiff_t s,"
        " int m) {" % r,
        "  cx_twiddle_loop(re, im, twc, tws, s, m, %d, [](auto mem, double* r, double* i, const double* wc,"
        " const double* ws, ptrdiff_t ms, ptrdiff_t wm) {" % r,
        "    cx_twiddle_%d_<decltype(mem)>(r, i, wc, ws, ms, wm);" % r,
        "  });",
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
