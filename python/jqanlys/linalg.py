"""Dense linear algebra in the style of numpy.linalg: products, solvers,
inverses and decompositions over the library's BLAS/LAPACK module. Real and
complex matrices alike; complex ones go to the complex exports."""
import numpy as np

from . import exports as _x


def _complex(*arrays):
    return any(np.iscomplexobj(a) for a in arrays)


def _pick(real, cx, *arrays):
    return cx if _complex(*arrays) else real


def _scalar(v):
    # Complex scalars come back as a struct of real and imaginary parts.
    return complex(v.re, v.im) if hasattr(v, "re") else v


def matmul(a, b):
    return _pick(_x.MatrixMul_head, _x.AxBCxCIN, a, b)(a, b)


def det(a):
    return _scalar(_pick(_x.Determinant_head, _x.CxDeterminant_head, a)(a, 0))


def inv(a):
    return _pick(_x.InvMatrixLUDri_head, _x.CxInvMatrixLUDri_head, a)(a)


def solve(a, b):
    """x with a x = b, for a vector or a matrix of right-hand sides."""
    if np.ndim(b) == 1:
        return _pick(_x.EqsByLUDri_head, _x.CxEqsByLUDri_head, a, b)(a, b)
    return _pick(_x.EqsSetByLUDri_head, _x.CxEqsSetByLUDri_head, a, b)(a, b)


def pinv(a, tol=-1.0):
    """Pseudo-inverse; a negative tolerance takes the default from the data."""
    return _pick(_x.PseudoInverse_head, _x.CxPseudoInverse_head, a)(a, tol)


def matrix_rank(a, tol=-1.0):
    return _pick(_x.Rank_head, _x.CxRank_head, a)(a, tol)


def trace(a):
    return _scalar(_pick(_x.Trace_head, _x.CxTrace_head, a)(a))


def svdvals(a):
    return _pick(_x.SVDS_head, _x.CxSVDS_head, a)(a)


def svd(a):
    """(u, s, v) with a = u diag(s) v^H."""
    return _pick(_x.SVD_head, _x.CxSVD_head, a)(a)


def cholesky(a):
    """Lower triangular l with a = l l^H."""
    return _pick(_x.FullCholesky_head, _x.CxFullCholesky_head, a)(a)


def qr(a):
    """(q, r) with a = q r."""
    return _pick(_x.qrd_head, _x.Cxqrd_head, a)(a)


def eig(a):
    """(eigenvalues, eigenvectors as columns), complex."""
    return _pick(_x.EigenValueVector_head, _x.CxEigenValueVector_head, a)(a)
