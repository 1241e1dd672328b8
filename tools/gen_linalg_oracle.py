#!/usr/bin/python3
"""Writes tests/linalg/oracle.inc: matrices with their products,
determinants, inverses and solutions from numpy/scipy (LAPACK through
OpenBLAS), for the linear-algebra tests.

    /usr/bin/python3 tools/gen_linalg_oracle.py"""
import os

import numpy as np
import scipy.linalg as sl

rng = np.random.default_rng(20261123)
out = []


def arr(name, a):
    a = np.asarray(a)
    if np.iscomplexobj(a):
        flat = np.column_stack([a.real.ravel(), a.imag.ravel()]).ravel()
    else:
        flat = a.ravel()
    out.append("const double %s[] = {%s};" % (name, ", ".join(repr(float(v)) for v in flat)))


def mat(shape, cx):
    m = rng.standard_normal(shape)
    if cx:
        m = m + 1j * rng.standard_normal(shape)
    return m


cases = []
for tag, cx in (("re", False), ("cx", True)):
    for n, k in ((1, 1), (3, 2), (7, 3), (16, 4)):
        a = mat((n, n), cx)
        b = mat((n, k), cx)
        p = mat((k, n + 1), cx)
        name = "%s%d" % (tag, n)
        arr(name + "_a", a)
        arr(name + "_b", b)
        arr(name + "_p", p)
        arr(name + "_ap", a[:, :k] @ p)  # A's first k columns times P
        arr(name + "_det", [np.linalg.det(a)])
        arr(name + "_inv", np.linalg.inv(a))
        arr(name + "_x", np.linalg.solve(a, b))
        spd = a @ a.conj().T + n * np.eye(n)
        arr(name + "_spd", spd)
        arr(name + "_spddet", [np.linalg.det(spd)])
        cases.append((name, n, k, cx))

out.append("struct DenseCase { const char* name; int n, k; bool cx; const double *a, *b, *p, *ap, *det, *inv, *x, "
           "*spd, *spddet; };")
out.append("const DenseCase kDense[] = {")
for name, n, k, cx in cases:
    f = ", ".join(name + s for s in ("_a", "_b", "_p", "_ap", "_det", "_inv", "_x", "_spd", "_spddet"))
    out.append('  {"%s", %d, %d, %s, %s},' % (name, n, k, "true" if cx else "false", f))
out.append("};")

# Rectangular and rank-deficient matrices: singular values, norms, condition
# numbers, rank, pseudo-inverse, least squares, LU factors; symmetric
# eigenvalues and Cholesky factors of the square ones.
rect = []
for tag, cx in (("re", False), ("cx", True)):
    for m, n, rank in ((4, 4, 4), (5, 3, 3), (3, 5, 3), (6, 4, 2), (1, 6, 1)):
        a = mat((m, rank), cx) @ mat((rank, n), cx)
        b = mat((m,), cx)
        name = "%sr%d%d%d" % (tag, m, n, rank)
        arr(name + "_a", a)
        arr(name + "_b", b)
        arr(name + "_sv", np.linalg.svd(a, compute_uv=False))
        arr(name + "_norms", [np.linalg.norm(a, 2), np.linalg.norm(a, 1), np.linalg.norm(a, "fro"),
                              np.linalg.norm(a, np.inf)])
        arr(name + "_pinv", np.linalg.pinv(a, rcond=max(m, n) * np.finfo(float).eps))
        arr(name + "_lstsq", np.linalg.lstsq(a, b, rcond=None)[0])
        # LAPACK's own LU factors (getrf), square matrices only.
        lu, piv = sl.lu_factor(a) if m == n else ([0.0], [0.0])
        arr(name + "_lu", lu)
        arr(name + "_piv", piv)
        rect.append((name, m, n, np.linalg.matrix_rank(a), cx))
out.append("struct RectCase { const char* name; int m, n, rank; bool cx; const double *a, *b, *sv, *norms, *pinv, "
           "*lstsq, *lu, *piv; };")
out.append("const RectCase kRect[] = {")
for name, m, n, rank, cx in rect:
    f = ", ".join(name + s for s in ("_a", "_b", "_sv", "_norms", "_pinv", "_lstsq", "_lu", "_piv"))
    out.append('  {"%s", %d, %d, %d, %s, %s},' % (name, m, n, rank, "true" if cx else "false", f))
out.append("};")

sym = []
for tag, cx in (("re", False), ("cx", True)):
    for n in (1, 4, 9):
        a = mat((n, n), cx)
        h = a @ a.conj().T + np.eye(n)
        name = "%ss%d" % (tag, n)
        arr(name + "_a", h)
        arr(name + "_w", np.linalg.eigvalsh(h))
        arr(name + "_l", np.linalg.cholesky(h))
        arr(name + "_inv", np.linalg.inv(h))
        arr(name + "_ev", np.sort_complex(np.linalg.eigvals(a)))
        arr(name + "_g", a)
        sym.append((name, n, cx))
out.append("struct SymCase { const char* name; int n; bool cx; const double *a, *w, *l, *inv, *ev, *g; };")
out.append("const SymCase kSym[] = {")
for name, n, cx in sym:
    f = ", ".join(name + s for s in ("_a", "_w", "_l", "_inv", "_ev", "_g"))
    out.append('  {"%s", %d, %s, %s},' % (name, n, "true" if cx else "false", f))
out.append("};")

# Matrix functions: exponential, integer powers, principal square root.
funcs = []
for tag, cx in (("re", False), ("cx", True)):
    for n, scale in ((1, 1.0), (3, 0.5), (6, 4.0)):
        a = mat((n, n), cx) * scale
        name = "%sf%d" % (tag, n)
        arr(name + "_a", a)
        arr(name + "_exp", sl.expm(a))
        arr(name + "_p5", np.linalg.matrix_power(a, 5))
        arr(name + "_pm3", np.linalg.matrix_power(a, -3))
        spd = a @ a.conj().T + np.eye(n)  # a root without branch questions
        arr(name + "_spd", spd)
        arr(name + "_sqrt", sl.sqrtm(spd.astype(complex)))
        arr(name + "_log", sl.logm(spd.astype(complex)))
        funcs.append((name, n, cx))
out.append("struct FuncCase { const char* name; int n; bool cx; const double *a, *exp, *p5, *pm3, *spd, *sqrt, *log; };")
out.append("const FuncCase kFunc[] = {")
for name, n, cx in funcs:
    f = ", ".join(name + s for s in ("_a", "_exp", "_p5", "_pm3", "_spd", "_sqrt", "_log"))
    out.append('  {"%s", %d, %s, %s},' % (name, n, "true" if cx else "false", f))
out.append("};")

# Sylvester A X + X B = C and Lyapunov A X + X A^H = C.
eqs = []
for tag, cx in (("re", False), ("cx", True)):
    for m, n in ((1, 1), (3, 2), (5, 4)):
        a, b, c = mat((m, m), cx) + 3 * np.eye(m), mat((n, n), cx) + 3 * np.eye(n), mat((m, n), cx)
        q = mat((m, m), cx)
        name = "%se%d%d" % (tag, m, n)
        for suffix, v in (("_a", a), ("_b", b), ("_c", c), ("_q", q), ("_x", sl.solve_sylvester(a, b, c)),
                          ("_lx", sl.solve_continuous_lyapunov(a, q))):
            arr(name + suffix, v)
        eqs.append((name, m, n, cx))
out.append("struct EqCase { const char* name; int m, n; bool cx; const double *a, *b, *c, *q, *x, *lx; };")
out.append("const EqCase kEq[] = {")
for name, m, n, cx in eqs:
    f = ", ".join(name + s for s in ("_a", "_b", "_c", "_q", "_x", "_lx"))
    out.append('  {"%s", %d, %d, %s, %s},' % (name, m, n, "true" if cx else "false", f))
out.append("};")


def table(struct, fields, name, rows):
    """A table of cases: fields are (C type and name, formatter) pairs."""
    out.append("struct %s { %s; };" % (struct, "; ".join(f for f in fields)))
    out.append("const %s %s[] = {" % (struct, name))
    for r in rows:
        out.append("  {%s}," % ", ".join(r))
    out.append("};")


def c_bool(b):
    return "true" if b else "false"


# Generated matrices: kind, sizes, vectors and numpy/scipy's matrix.
special = []
for tag, cx in (("re", False), ("cx", True)):
    x, y = mat((5,), cx), mat((4,), cx)
    arr("sm%s_x" % tag, x)
    arr("sm%s_y" % tag, y)
    p = np.array([2.0, -3.0, 0.5, 4.0]) * (1 + 1j if cx else 1)
    arr("sm%s_p" % tag, p)
    kinds = [  # (label, kind, rows, cols, x, y, expected)
        ("identity", 0, 3, 4, None, None, np.eye(3, 4)),
        ("diagonal", 1, 0, 0, "x", None, np.diag(x)),
        ("toeplitz", 2, 0, 0, "x", "y", sl.toeplitz(x, y)),
        ("hermitian toeplitz", 2, 0, 0, "x", None, sl.toeplitz(x)),
        ("hankel", 3, 0, 0, "x", "y", sl.hankel(x, y)),
        ("hankel of one vector", 3, 0, 0, "x", None, sl.hankel(x)),
        ("vandermonde", 4, 0, 3, "x", None, np.vander(x, 3)),
        ("hilbert", 5, 5, 0, None, None, sl.hilbert(5)),
        ("inverse hilbert", 6, 7, 0, None, None, sl.invhilbert(7)),
        ("circulant", 7, 0, 0, "x", None, sl.circulant(x)),
        ("pascal", 8, 6, 0, None, None, sl.pascal(6).astype(float)),
        ("companion", 9, 0, 0, "p", None, sl.companion(p)),
    ]
    for label, kind, rows, cols, xv, yv, want in kinds:
        name = "sm%s_%d%s" % (tag, kind, "_1" if yv is None and kind in (2, 3) else "")
        arr(name, want.astype(complex) if cx else want)
        xs = {"x": (x, "sm%s_x" % tag), "p": (p, "sm%s_p" % tag)}.get(xv, (np.zeros(0), "nullptr"))
        ys = (y, "sm%s_y" % tag) if yv else (np.zeros(0), "nullptr")
        special.append(['"%s %s"' % (tag, label), str(kind), str(rows), str(cols), str(len(xs[0])), str(len(ys[0])),
                        c_bool(cx), xs[1], ys[1], str(want.shape[0]), str(want.shape[1]), name])
table("SpecialCase", ["const char* name", "int kind, rows, cols, nx, ny", "bool cx", "const double *x, *y",
                      "int wr, wc", "const double* want"], "kSpecial", special)

# Autocorrelation matrices: numpy's biased autocorrelation, as a Toeplitz
# matrix, for orders below and beyond the length.
auto = []
for tag, cx in (("re", False), ("cx", True)):
    x = mat((7,), cx)
    arr("ac%s_x" % tag, x)
    r = np.correlate(x, x, "full")[len(x) - 1:] / len(x)
    for order in (1, 4, 9):
        rr = np.concatenate([r, np.zeros(max(order - len(r), 0))])[:order]
        arr("ac%s_%d" % (tag, order), sl.toeplitz(rr))
        auto.append(['"%s %d"' % (tag, order), "7", str(order), c_bool(cx), "ac%s_x" % tag, "ac%s_%d" % (tag, order)])
table("AutoCase", ["const char* name", "int n, order", "bool cx", "const double *x, *want"], "kAuto", auto)

# The Lyapunov equations in both conventions, continuous and discrete, and
# the Sylvester equation with each transposition and sign.
lyap = []
syl = []
for tag, cx in (("re", False), ("cx", True)):
    for n in (1, 4):
        a, q = mat((n, n), cx), mat((n, n), cx)
        a = a / (1.5 * max(abs(np.linalg.eigvals(a))))  # discrete: inside the unit circle
        ah = a.conj().T
        name = "ly%s%d" % (tag, n)
        # Continuous: shifted into the left half-plane.
        ac = a - 2 * np.eye(n)
        arr(name + "_a", a)
        arr(name + "_ac", ac)
        arr(name + "_q", q)
        sols = [(ac, "_ac", sl.solve_continuous_lyapunov(ac, q)),
                (ac, "_ac", sl.solve_continuous_lyapunov(ac.conj().T, q)),
                (a, "_a", sl.solve_discrete_lyapunov(a, q)), (a, "_a", sl.solve_discrete_lyapunov(ah, q))]
        for t, (_, which, x) in enumerate(sols):
            arr("%s_x%d" % (name, t), x)
            lyap.append(['"%s type %d"' % (name, t), str(n), str(t), c_bool(cx), name + which, name + "_q",
                         "%s_x%d" % (name, t)])
    m, n = 3, 2
    a, b, c = mat((m, m), cx) + 3 * np.eye(m), mat((n, n), cx) - 3 * np.eye(n), mat((m, n), cx)
    name = "sy%s" % tag
    for suffix, v in (("_a", a), ("_b", b), ("_c", c)):
        arr(name + suffix, v)
    for ta in (0, 1):
        for tb in (0, 1):
            for sign in (1, -1):
                opa = a.conj().T if ta else a
                opb = b.conj().T if tb else b
                x = sl.solve_sylvester(opa, sign * opb, c)
                xn = "%s_%d%d%s" % (name, ta, tb, "p" if sign > 0 else "m")
                arr(xn, x)
                syl.append(['"%s"' % xn, str(ta), str(tb), str(sign), c_bool(cx), name + "_a", name + "_b",
                            name + "_c", xn])
table("LyapCase", ["const char* name", "int n, type", "bool cx", "const double *a, *q, *x"], "kLyap", lyap)
table("SylCase", ["const char* name", "int ta, tb, sign", "bool cx", "const double *a, *b, *c, *x"], "kSyl", syl)

# Real principal square roots (no eigenvalue on the negative real axis,
# complex pairs included) and a complex one.
roots = []
for tag, cx in (("re", False), ("cx", True)):
    n = 5
    a = mat((n, n), cx) + 3 * np.eye(n)
    assert all(abs(w.imag) > 1e-3 or w.real > 0 for w in np.linalg.eigvals(a))
    r = sl.sqrtm(a)
    if not cx:
        assert np.abs(r.imag).max() < 1e-12 if np.iscomplexobj(r) else True
        r = np.real(r)
    arr("sq%s_a" % tag, a)
    arr("sq%s_x" % tag, r)
    roots.append(['"%s"' % tag, str(n), c_bool(cx), "sq%s_a" % tag, "sq%s_x" % tag])
table("SqrtCase", ["const char* name", "int n", "bool cx", "const double *a, *x"], "kSqrt", roots)

# Sorted generalized Schur forms: scipy.linalg.ordqz's count and eigenvalues
# for each sort, on pencils with complex pairs and one with an infinite
# eigenvalue (B singular).
sorts = []
for tag, cx in (("re", False), ("cx", True)):
    for label, n, singular in (("a", 5, False), ("b", 4, True)):
        a, b = mat((n, n), cx), mat((n, n), cx)
        if singular:
            b[:, 0] = b[:, 1]
        name = "oq%s%s" % (tag, label)
        arr(name + "_a", a)
        arr(name + "_b", b)
        for sort, key in ((1, "lhp"), (2, "rhp"), (3, "iuc"), (4, "ouc")):
            res = sl.ordqz(a, b, sort=key, output="complex" if cx else "real")
            alpha, beta = res[2], res[3]
            sel = {"lhp": sl._decomp_qz._lhp, "rhp": sl._decomp_qz._rhp, "iuc": sl._decomp_qz._iuc,
                   "ouc": sl._decomp_qz._ouc}[key](alpha.astype(complex), beta.astype(complex))
            k = int(sel.sum())
            assert sel[:k].all()
            # Finite eigenvalues of each group: the infinite one (beta 0, or
            # so small that the quotient is beyond 1e8) stays out.
            first = [complex(x / y) for x, y in zip(alpha[:k], beta[:k]) if abs(x) < 1e8 * abs(y)]
            rest = [complex(x / y) for x, y in zip(alpha[k:], beta[k:]) if abs(x) < 1e8 * abs(y)]
            arr("%s_%d_first" % (name, sort), np.array(first + [0]))
            arr("%s_%d_rest" % (name, sort), np.array(rest + [0]))
            sorts.append(['"%s sort %d"' % (name, sort), str(n), str(sort), str(k), c_bool(cx), name + "_a",
                          name + "_b", str(len(first)), "%s_%d_first" % (name, sort), str(len(rest)),
                          "%s_%d_rest" % (name, sort)])
table("SortCase", ["const char* name", "int n, sort, selected", "bool cx", "const double *a, *b", "int nfirst",
                   "const double* first", "int nrest", "const double* rest"], "kSort", sorts)

# LAPACK's own complex tridiagonal LU (zgttrf through scipy).
n = 6
dl, d, du = mat((n - 1,), True), mat((n,), True), mat((n - 1,), True)
fl, fd, fu, fu2, ipiv, info = sl.lapack.zgttrf(dl, d, du)
for suffix, v in (("dl", dl), ("d", d), ("du", du), ("l", fl), ("m", fd), ("u", fu), ("u2", fu2[:n - 2]),
                  ("piv", (ipiv - 1).astype(float))):
    arr("tdcx_" + suffix, v)

path = os.path.join(os.path.dirname(__file__), "..", "tests", "linalg", "oracle.inc")
open(path, "w").write("// Generated by tools/gen_linalg_oracle.py (numpy %s, scipy); do not edit.\n" % np.__version__
                      + "\n".join(out) + "\n")
