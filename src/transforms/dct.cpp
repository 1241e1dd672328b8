#include "transforms/dct.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "frame/errors.hpp"
#include "frame/scratch.hpp"

namespace jq::fft {
namespace {

constexpr double kPi = 3.141592653589793;

// Sample i of a strided input of `count` samples, zero beyond it.
inline double sample(const double* x, ptrdiff_t xs, int32_t count, int32_t i) {
  return i < count ? x[static_cast<ptrdiff_t>(i) * xs] : 0.0;
}

// Shared by both transforms: the table check and the FFT work array (input
// part, then the spectrum), sized 2L for an FFT of length L.
class TrigBase {
 protected:
  int32_t prepare_fft(const FFTTable* t, int32_t m, int64_t fft_length) {
    if (m < 1) return kBadTransformLength;
    if (!t || t->length != fft_length) return kInternal;
    t_ = t;
    m_ = m;
    L_ = static_cast<int32_t>(fft_length);
    return work_.allocate(2 * static_cast<size_t>(L_));
  }
  double* in() const { return work_.data(); }
  double* spectrum() const { return work_.data() + L_; }

  const FFTTable* t_ = nullptr;
  int32_t m_ = 0;
  int32_t L_ = 0;
  Scratch<double> work_;
};

// Orthonormal DCT-II and DCT-III. Even m (Makhoul): the samples are reordered
// (even-indexed ones from the front, odd-indexed ones backwards from the
// back) and transformed with an FFT of length m. Odd m: the samples are
// zero-padded to 2m. Either way sum x[j] cos(pi(2j+1)k/(2m)) is the real part
// of bin k times e^(-i pi k/(2m)).
class Cosine : TrigBase {
 public:
  int32_t prepare(const FFTTable* t, int32_t m) {
    if (int32_t rc = prepare_fft(t, m, trig_table_length(Trig::kCosine, m))) return rc;
    if (twiddle_.allocate(2 * static_cast<size_t>(m)) != kOk) return kNoMemory;
    for (int32_t k = 0; k < m; ++k) {
      const double a = kPi * k / (2.0 * m);
      twiddle_[2 * k] = std::cos(a);
      twiddle_[2 * k + 1] = std::sin(a);
    }
    return kOk;
  }

  int32_t forward(const double* x, ptrdiff_t xs, int32_t n, double* y, ptrdiff_t ys) {
    const int32_t m = m_, L = L_, count = std::min(n, m);
    double* v = in();
    if (L == m) {
      for (int32_t j = 0; j < m / 2; ++j) {
        v[j] = sample(x, xs, count, 2 * j);
        v[m - 1 - j] = sample(x, xs, count, 2 * j + 1);
      }
    } else {
      for (int32_t j = 0; j < L; ++j) v[j] = sample(x, xs, count, j);
    }
    const double* V = spectrum();
    if (int32_t rc = ExecuteRealFFT(t_, v, spectrum(), 1, 1, L)) return rc;
    const double scale = 2.0 / std::sqrt(2.0 * m);
    for (int32_t k = 0; k < m; ++k) {
      // Bin k of the half-complex spectrum; past L/2 it is the conjugate of bin L-k.
      double re, im;
      if (k < L - k) {
        re = V[k];
        im = k == 0 ? 0.0 : V[L - k];
      } else {
        re = V[L - k];
        im = k == L - k ? 0.0 : -V[k];
      }
      y[k * ys] = (re * twiddle_[2 * k] + im * twiddle_[2 * k + 1]) * scale;
    }
    y[0] /= std::sqrt(2.0);
    return kOk;
  }

  // Rebuilds the spectrum from the cosine coefficients and runs the inverse
  // real FFT. Even m: bin k is e^(i pi k/(2m)) (Y[k] - i Y[m-k]) with Y the
  // unscaled coefficients and Y[m] = 0. Odd m: the coefficients times
  // e^(i pi k/(2m)) fill bins 0 .. m-1 of a length 2m spectrum whose real
  // part, transformed back, is the signal; the half-complex layout keeps that
  // real part when the upper bins are taken as zero.
  int32_t inverse(const double* y, ptrdiff_t ys, double* x, ptrdiff_t xs) {
    const int32_t m = m_, L = L_;
    const double g = std::sqrt(2.0 * m);
    double* H = in();
    if (L == m) {
      const double s = g / 2;
      auto Y = [&](int32_t k) { return k == 0 ? y[0] * std::sqrt(2.0) * s : k == m ? 0.0 : y[k * ys] * s; };
      for (int32_t k = 0; k <= m - k; ++k) {
        const double a = Y(k), b = Y(m - k), c = twiddle_[2 * k], sn = twiddle_[2 * k + 1];
        H[k] = c * a + sn * b;
        if (k > 0 && k < m - k) H[m - k] = sn * a - c * b;
      }
    } else {
      H[0] = g * std::sqrt(2.0) * y[0];
      H[m] = 0.0;
      for (int32_t k = 1; k < m; ++k) {
        const double a = g * y[k * ys];
        H[k] = a * twiddle_[2 * k];
        H[L - k] = a * twiddle_[2 * k + 1];
      }
    }
    double* v = spectrum();
    if (int32_t rc = ExecuteInverseRealFFT(t_, H, v, 1, 1, L)) return rc;
    if (L == m) {
      for (int32_t j = 0; j < m / 2; ++j) {
        x[2 * j * xs] = v[j];
        x[(2 * j + 1) * xs] = v[m - 1 - j];
      }
    } else {
      for (int32_t j = 0; j < m; ++j) x[j * xs] = v[j];
    }
    return kOk;
  }

 private:
  Scratch<double> twiddle_;  // cos and sin of pi k/(2m), interleaved
};

// DST-I through the FFT of the odd extension 0, x, 0, -reversed x (length
// 2m+2), whose bin k+1 has imaginary part -2 y[k].
class Sine : TrigBase {
 public:
  int32_t prepare(const FFTTable* t, int32_t m) { return prepare_fft(t, m, trig_table_length(Trig::kSine, m)); }

  int32_t forward(const double* x, ptrdiff_t xs, int32_t n, double* y, ptrdiff_t ys) {
    return run(x, xs, n, y, ys, 1.0);
  }
  int32_t inverse(const double* y, ptrdiff_t ys, double* x, ptrdiff_t xs) {
    return run(y, ys, m_, x, xs, 2.0 / (m_ + 1.0));
  }

 private:
  int32_t run(const double* x, ptrdiff_t xs, int32_t n, double* y, ptrdiff_t ys, double factor) {
    const int32_t m = m_, L = L_, count = std::min(n, m);
    double* u = in();
    u[0] = 0.0;
    u[m + 1] = 0.0;
    for (int32_t j = 0; j < m; ++j) {
      const double v = sample(x, xs, count, j);
      u[1 + j] = v;
      u[L - 1 - j] = -v;
    }
    const double* U = spectrum();
    if (int32_t rc = ExecuteRealFFT(t_, u, spectrum(), 1, 1, L)) return rc;
    for (int32_t k = 0; k < m; ++k) y[k * ys] = -0.5 * U[L - (k + 1)] * factor;
    return kOk;
  }
};

template <class K>
int32_t run_1d(bool inverse, const FFTTable* t, const double* x, int32_t n, int32_t m, double* y) {
  K k;
  if (int32_t rc = k.prepare(t, m)) return rc;
  return inverse ? k.inverse(x, 1, y, 1) : k.forward(x, 1, n, y, 1);
}

template <class K>
int32_t run_2d(bool inverse, const FFTTable* row_table, const FFTTable* col_table, const double* in, int32_t rows,
               int32_t cols, double* out) {
  K across, down;
  if (int32_t rc = across.prepare(row_table, cols)) return rc;
  if (int32_t rc = down.prepare(col_table, rows)) return rc;
  for (int32_t r = 0; r < rows; ++r) {
    const ptrdiff_t at = static_cast<ptrdiff_t>(r) * cols;
    int32_t rc = inverse ? across.inverse(in + at, 1, out + at, 1) : across.forward(in + at, 1, cols, out + at, 1);
    if (rc) return rc;
  }
  for (int32_t c = 0; c < cols; ++c) {
    int32_t rc = inverse ? down.inverse(out + c, cols, out + c, cols) : down.forward(out + c, cols, rows, out + c, cols);
    if (rc) return rc;
  }
  return kOk;
}

}  // namespace

int64_t trig_table_length(Trig kind, int32_t m) {
  if (kind == Trig::kSine) return 2 * static_cast<int64_t>(m) + 2;
  return m % 2 == 0 ? m : 2 * static_cast<int64_t>(m);
}

int32_t trig_1d(Trig kind, bool inverse, const FFTTable* t, const double* x, int32_t n, int32_t m, double* y) {
  return kind == Trig::kCosine ? run_1d<Cosine>(inverse, t, x, n, m, y) : run_1d<Sine>(inverse, t, x, n, m, y);
}

int32_t trig_2d(Trig kind, bool inverse, const FFTTable* row_table, const FFTTable* col_table, const double* in,
                int32_t rows, int32_t cols, double* out) {
  return kind == Trig::kCosine ? run_2d<Cosine>(inverse, row_table, col_table, in, rows, cols, out)
                               : run_2d<Sine>(inverse, row_table, col_table, in, rows, cols, out);
}

}  // namespace jq::fft
