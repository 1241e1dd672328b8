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

path = os.path.join(os.path.dirname(__file__), "..", "tests", "linalg", "oracle.inc")
open(path, "w").write("// Generated by tools/gen_linalg_oracle.py (numpy %s, scipy); do not edit.\n" % np.__version__
                      + "\n".join(out) + "\n")
