#include "linalg/pencil.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <type_traits>

#include "linalg/dense.hpp"

namespace jq::linalg {
namespace {

// The selections of a sorted form, as scipy.linalg.ordqz makes them.
bool chosen(int32_t sort, cdouble alpha, double beta) {
  switch (sort) {
    case kSortLeft: return beta != 0 && alpha.real() / beta < 0;
    case kSortRight: return beta != 0 && alpha.real() / beta > 0;
    case kSortInside: return beta != 0 && std::abs(alpha / beta) < 1;
    case kSortOutside: return beta == 0 ? alpha != 0.0 : std::abs(alpha / beta) > 1;
    default: return false;
  }
}

}  // namespace

template <class T>
int32_t pencil_schur(const T* a, const T* b, int32_t n, const PencilOrder& order, T* s, T* t, T* q, T* z,
                     cdouble* alpha, double* beta, int32_t* selected) {
  constexpr bool real = std::is_same_v<T, double>;
  if (selected) *selected = 0;
  if (int32_t rc = ready()) return rc;
  const int64_t nn = int64_t{n} * n;
  Buffer<T> ac, h, r, lq, qm, qc, zc, tau, work, ea, eb;
  Buffer<double> wr, wi, wb, rwork;
  if (to_column_major(a, n, n, ac, n) || h.allocate(nn) || r.allocate(nn) || lq.allocate(nn + kStrideSlack * n) ||
      qm.allocate(nn + kStrideSlack * n) ||
      qc.allocate(nn) || zc.allocate(nn) || tau.allocate(n) || ea.allocate(n) || eb.allocate(n) || wr.allocate(n) ||
      wi.allocate(n) || wb.allocate(n) || rwork.allocate(n))
    return kNoMemory;
  I info = 0, lwork = 4 * n + 16;
  T query = 0.0;
  Blas<T>::gelqf(n, n, lq.data(), n, tau.data(), &query, -1, &info);
  lwork = std::max(lwork, workspace(query));
  Blas<T>::orglq(n, n, n, qm.data(), n, tau.data(), &query, -1, &info);
  lwork = std::max(lwork, workspace(query));
  if (work.allocate(lwork)) return kNoMemory;

  // B's row-major data is, column-major, B^T = L Qm: so B = Q1 R with
  // Q1 = Qm^T and R = L^T upper triangular, the QR step the
  // Hessenberg-triangular reduction needs, with no transposition of B.
  std::memcpy(static_cast<void*>(lq.data()), b, sizeof(T) * nn);
  Blas<T>::gelqf(n, n, lq.data(), n, tau.data(), work.data(), lwork, &info);
  std::memcpy(static_cast<void*>(qm.data()), lq.data(), sizeof(T) * nn);
  Blas<T>::orglq(n, n, n, qm.data(), n, tau.data(), work.data(), lwork, &info);
  if (int32_t rc = transpose_matrix(qm.data(), n, n, qc.data())) return rc;
  for (int32_t j = 0; j < n; ++j)
    for (int32_t i = 0; i < n; ++i) r[static_cast<size_t>(j) * n + i] = i <= j ? lq[static_cast<size_t>(i) * n + j] : T(0.0);
  Blas<T>::gemm_cm(kConjTrans, kNoTrans, n, n, n, qc.data(), n, ac.data(), n, h.data(), n);

  const I one = 1;
  auto iterate = [&](T* wk, I lw) {
    if constexpr (real) {
      JQ_CALL(dhgeqz, "S", "V", "V", &n, &one, &n, h.data(), &n, r.data(), &n, wr.data(), wi.data(), wb.data(),
              qc.data(), &n, zc.data(), &n, wk, &lw, &info);
    } else {
      JQ_CALL(zhgeqz, "S", "V", "V", &n, &one, &n, h.data(), &n, r.data(), &n, ea.data(), eb.data(), qc.data(), &n,
              zc.data(), &n, wk, &lw, rwork.data(), &info);
    }
  };
  if constexpr (real)
    JQ_CALL(dgghrd, "V", "I", &n, &one, &n, h.data(), &n, r.data(), &n, qc.data(), &n, zc.data(), &n, &info);
  else
    JQ_CALL(zgghrd, "V", "I", &n, &one, &n, h.data(), &n, r.data(), &n, qc.data(), &n, zc.data(), &n, &info);
  iterate(&query, -1);
  if (workspace(query) > lwork) {
    lwork = workspace(query);
    if (work.allocate(lwork)) return kNoMemory;
  }
  iterate(work.data(), lwork);
  if (info != 0) return kNoConvergence;
  for (int32_t j = 0; j < n; ++j) {
    if constexpr (real) {
      alpha[j] = {wr[j], wi[j]};
      beta[j] = wb[j];
    } else {
      const double m = std::abs(eb[j]);
      alpha[j] = m > 0 ? ea[j] * std::conj(eb[j]) / m : ea[j];
      beta[j] = m;
    }
  }

  // A complex pair of real data is one 2 x 2 block, moved whole.
  auto size_at = [&](int32_t j) { return real && alpha[j].imag() != 0 ? 2 : 1; };
  // LAPACK reports both positions as block starts; the block's eigenvalues
  // travel with it.
  auto move = [&](I first, I last) -> int32_t {
    const I yes = 1;
    if constexpr (real)
      JQ_CALL(dtgexc, &yes, &yes, &n, h.data(), &n, r.data(), &n, qc.data(), &n, zc.data(), &n, &first, &last,
              work.data(), &lwork, &info);
    else
      JQ_CALL(ztgexc, &yes, &yes, &n, h.data(), &n, r.data(), &n, qc.data(), &n, zc.data(), &n, &first, &last, &info);
    if (info != 0) return kNoConvergence;
    const int32_t f = first - 1, l = last - 1, size = size_at(f);
    if (f < l) {
      std::rotate(alpha + f, alpha + f + size, alpha + l + size);
      std::rotate(beta + f, beta + f + size, beta + l + size);
    } else if (f > l) {
      std::rotate(alpha + l, alpha + f, alpha + f + size);
      std::rotate(beta + l, beta + f, beta + f + size);
    }
    return kOk;
  };
  if (order.sort != kSortNone) {
    // Each chosen block goes up to just below the ones chosen before it.
    int32_t next = 0;
    for (int32_t k = 0; k < n;) {
      const int32_t size = size_at(k);
      if (chosen(order.sort, alpha[k], beta[k])) {
        if (k != next)
          if (int32_t rc = move(k + 1, next + 1)) return rc;
        next += size;
      }
      k += size;
    }
    if (selected) *selected = next;
  } else if (order.from >= 0 && order.from != order.to) {
    if (int32_t rc = move(order.from + 1, order.to + 1)) return rc;
  }

  // Moves leave T's diagonal of any sign (phase): a 1 x 1 block gets a real
  // non-negative one by scaling its row of S and T and Q's column.
  for (int32_t k = 0; k < n;) {
    const int32_t size = size_at(k);
    if (size == 1) {
      T& tkk = r[static_cast<size_t>(k) * n + k];
      const double m = std::abs(tkk);
      if (m > 0 && tkk != T(m)) {
        const T phase = tkk / m;
        Blas<T>::scal(n, conj_of(phase), h.data() + k, n);
        Blas<T>::scal(n, conj_of(phase), r.data() + k, n);
        Blas<T>::scal(n, phase, qc.data() + static_cast<size_t>(k) * n, 1);
        tkk = m;
      }
      alpha[k] = h[static_cast<size_t>(k) * n + k];
      beta[k] = m;
    }
    k += size;
  }
  from_column_major(h.data(), n, n, n, s);
  from_column_major(r.data(), n, n, n, t);
  from_column_major(qc.data(), n, n, n, q);
  from_column_major(zc.data(), n, n, n, z);
  return kOk;
}

template int32_t pencil_schur(const double*, const double*, int32_t, const PencilOrder&, double*, double*, double*,
                              double*, cdouble*, double*, int32_t*);
template int32_t pencil_schur(const cdouble*, const cdouble*, int32_t, const PencilOrder&, cdouble*, cdouble*,
                              cdouble*, cdouble*, cdouble*, double*, int32_t*);

}  // namespace jq::linalg
