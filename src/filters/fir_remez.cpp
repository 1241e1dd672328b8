// Equiripple linear-phase FIR design by the Parks-McClellan Remez exchange.
//
// The exchange keeps the bookkeeping of the published program (McClellan,
// Parks and Rabiner): its dense grid, its search for new extrema with the
// 1.00001 comparison factor, its handling of surplus extrema at both ends and
// its inverse-DFT recovery of the cosine series. The arrays are 1-based, as
// there, so that the index arithmetic can be checked against it line by line.
#include <algorithm>
#include <cmath>

#include "filters/fir.hpp"
#include "frame/errors.hpp"
#include "frame/scratch.hpp"

namespace jq::fir {

namespace {

constexpr int32_t kGridDensity = 16;
constexpr int32_t kDefaultIterations = 100;
constexpr int32_t kMaxFunctions = 2047;  // r + 2 may not exceed it

// The approximation problem on the dense grid, arrays from index 1.
struct Problem {
  double* grid;
  double* des;
  double* wt;
  int32_t ngrid;
  int32_t nfcns;
};

// Working arrays of the exchange, from index 1.
struct Exchange {
  double *x, *y, *ad, *a, *p, *q, *alpha;
  int32_t* iext;
};

// Barycentric weight of node k over nodes 1..n, the product taken in jet
// interleaved passes (as published) to keep it in range.
bool lagrange_weight(int32_t k, int32_t n, int32_t jet, const double* x, double* out) {
  double d = 1.0;
  const double q = x[k];
  for (int32_t l = 1; l <= jet; ++l)
    for (int32_t j = l; j <= n; j += jet)
      if (j != k) d *= 2.0 * (q - x[j]);
  if (d == 0.0 || !std::isfinite(d)) return false;
  *out = 1.0 / d;
  return true;
}

// The interpolating cosine polynomial at frequency f (barycentric form).
double response_at(double f, int32_t n, const Exchange& e) {
  const double xf = std::cos(kTwoPi * f);
  double num = 0.0, den = 0.0;
  for (int32_t j = 1; j <= n; ++j) {
    const double diff = xf - e.x[j];
    if (diff == 0.0) return e.y[j];  // at a node the polynomial is its value there
    const double c = e.ad[j] / diff;
    den += c;
    num += c * e.y[j];
  }
  return num / den;
}

// Weighted error at grid point l.
inline double error_at(int32_t l, int32_t nz, const Problem& pr, const Exchange& e) {
  return (response_at(pr.grid[l], nz, e) - pr.des[l]) * pr.wt[l];
}

// The exchange itself. Returns kOk, kDesignFailed for a degenerate
// interpolation, or kDesignFailed with *converged false when the limit ran
// out or the deviation fell; the coefficients are then still computed.
int32_t exchange(const Problem& pr, int32_t itrmax, Exchange& e, double* deviation, bool* converged) {
  const int32_t nfcns = pr.nfcns, ngrid = pr.ngrid;
  const int32_t nz = nfcns + 1, nzz = nfcns + 2;
  int32_t* iext = e.iext;
  double* x = e.x;
  double* y = e.y;
  double* ad = e.ad;
  double dev = 0.0, devl = -1.0, previous = -1.0;
  double comp = 0.0, y1 = 0.0, ynz = 0.0, err;
  int32_t niter = 0, j, k, l, k1, knz, klow, kup, nu, nut, nut1 = 0, jchnge, luck = 0;
  *converged = false;

L100:
  iext[nzz] = ngrid + 1;
  ++niter;
  if (niter > itrmax) goto done;
  for (j = 1; j <= nz; ++j) x[j] = std::cos(kTwoPi * pr.grid[iext[j]]);
  {
    const int32_t jet = (nfcns - 1) / 15 + 1;
    for (j = 1; j <= nz; ++j)
      if (!lagrange_weight(j, nz, jet, x, &ad[j])) return kDesignFailed;
    double dnum = 0.0, dden = 0.0;
    k = 1;
    for (j = 1; j <= nz; ++j) {
      l = iext[j];
      dnum += ad[j] * pr.des[l];
      dden += k * ad[j] / pr.wt[l];
      k = -k;
    }
    if (dden == 0.0) return kDesignFailed;
    dev = dnum / dden;
    if (!std::isfinite(dev)) return kDesignFailed;
  }
  nu = dev > 0.0 ? -1 : 1;
  dev = -nu * dev;
  *deviation = dev;
  k = nu;
  for (j = 1; j <= nz; ++j) {
    l = iext[j];
    y[j] = pr.des[l] + k * dev / pr.wt[l];
    k = -k;
  }
  if (dev < devl) goto done;  // the deviation fell: rounding has taken over
  previous = devl;
  devl = dev;
  jchnge = 0;
  k1 = iext[1];
  knz = iext[nz];
  klow = 0;
  nut = -nu;
  j = 1;

  // Search for the extrema of the weighted error between the current ones.
L200:
  if (j == nzz) ynz = comp;
  if (j >= nzz) goto L300;
  kup = iext[j + 1];
  l = iext[j] + 1;
  nut = -nut;
  if (j == 2) y1 = comp;
  comp = dev;
  if (l >= kup) goto L220;
  err = error_at(l, nz, pr, e);
  if (nut * err - comp <= 0.0) goto L220;
  comp = nut * err;
L210:
  if (++l >= kup) goto L215;
  err = error_at(l, nz, pr, e);
  if (nut * err - comp <= 0.0) goto L215;
  comp = nut * err;
  goto L210;
L215:
  iext[j++] = l - 1;
  klow = l - 1;
  ++jchnge;
  goto L200;
L220:
  --l;
L225:
  if (--l <= klow) goto L250;
  err = error_at(l, nz, pr, e);
  if (nut * err - comp > 0.0) goto L230;
  if (jchnge <= 0) goto L225;
  goto L260;
L230:
  comp = nut * err;
L235:
  if (--l <= klow) goto L240;
  err = error_at(l, nz, pr, e);
  if (nut * err - comp <= 0.0) goto L240;
  comp = nut * err;
  goto L235;
L240:
  klow = iext[j];
  iext[j] = l + 1;
  ++j;
  ++jchnge;
  goto L200;
L250:
  l = iext[j] + 1;
  if (jchnge > 0) goto L215;
L255:
  if (++l >= kup) goto L260;
  err = error_at(l, nz, pr, e);
  if (nut * err - comp <= 0.0) goto L255;
  comp = nut * err;
  goto L210;
L260:
  klow = iext[j++];
  goto L200;

  // Extrema beyond the first and the last one.
L300:
  if (j > nzz) goto L320;
  if (k1 > iext[1]) k1 = iext[1];
  if (knz < iext[nz]) knz = iext[nz];
  nut1 = nut;
  nut = -nu;
  l = 0;
  kup = k1;
  comp = ynz * 1.00001;
  luck = 1;
L310:
  if (++l >= kup) goto L315;
  err = error_at(l, nz, pr, e);
  if (nut * err - comp <= 0.0) goto L310;
  comp = nut * err;
  j = nzz;
  goto L210;
L315:
  luck = 6;
  goto L325;
L320:
  if (luck > 9) goto L350;
  if (comp > y1) y1 = comp;
  k1 = iext[nzz];
L325:
  l = ngrid + 1;
  klow = knz;
  nut = -nut1;
  comp = y1 * 1.00001;
L330:
  if (--l <= klow) goto L340;
  err = error_at(l, nz, pr, e);
  if (nut * err - comp <= 0.0) goto L330;
  j = nzz;
  comp = nut * err;
  luck += 10;
  goto L235;
L340:
  if (luck == 6) goto L370;
  for (j = 1; j <= nfcns; ++j) iext[nzz - j] = iext[nz - j];
  iext[1] = k1;
  goto L100;
L350: {
  const int32_t kn = iext[nzz];
  for (j = 1; j <= nfcns; ++j) iext[j] = iext[j + 1];
  iext[nz] = kn;
  goto L100;
}
L370:
  // Converged: no extremum moved and the deviation has settled.
  if (jchnge > 0 || std::fabs(dev - previous) >= 1e-9) goto L100;
  *converged = true;

done:
  return kOk;
}

// The cosine-series coefficients alpha[1..nfcns] of the best approximation,
// by the inverse DFT of its values at equally spaced points (mapped onto the
// grid's range when the grid does not span the whole axis).
void recover_series(const Problem& pr, Exchange& e) {
  const int32_t nfcns = pr.nfcns, ngrid = pr.ngrid;
  const int32_t nz = nfcns + 1, nzz = nfcns + 2, nm1 = nfcns - 1;
  double* a = e.a;
  double* p = e.p;
  double* q = e.q;
  double* alpha = e.alpha;
  const double fsh = 1.0e-06;
  e.x[nzz] = -2.0;
  const int32_t cn = 2 * nfcns - 1;
  const double delf = 1.0 / cn;
  const bool whole = (pr.grid[1] < 0.01 && pr.grid[ngrid] > 0.49) || nfcns <= 3;
  double aa = 0.0, bb = 0.0;
  if (!whole) {
    const double lo = std::cos(kTwoPi * pr.grid[1]);
    const double hi = std::cos(kTwoPi * pr.grid[ngrid]);
    aa = 2.0 / (lo - hi);
    bb = -(lo + hi) / (lo - hi);
  }
  int32_t l = 1;
  for (int32_t j = 1; j <= nfcns; ++j) {
    double ft = (j - 1) * delf;
    double xt = std::cos(kTwoPi * ft);
    if (!whole) {
      xt = (xt - bb) / aa;
      ft = std::acos(xt) / kTwoPi;
    }
    for (;;) {
      const double xe = e.x[l];
      if (xt > xe) {
        a[j] = xe - xt > -fsh ? e.y[l] : response_at(ft, nz, e);
        break;
      }
      if (xe - xt < fsh) {
        a[j] = e.y[l];
        break;
      }
      ++l;
    }
    if (l > 1) --l;
  }
  const double dden = kTwoPi / cn;
  for (int32_t j = 1; j <= nfcns; ++j) {
    double dtemp = 0.0;
    const double dnum = (j - 1) * dden;
    for (int32_t k = 1; k <= nm1; ++k) dtemp += a[k + 1] * std::cos(dnum * k);
    alpha[j] = 2.0 * dtemp + a[1];
  }
  for (int32_t j = 2; j <= nfcns; ++j) alpha[j] = 2.0 * alpha[j] / cn;
  alpha[1] = alpha[1] / cn;

  if (!whole) {
    // Undo the change of variable: the series in the mapped variable back
    // into a series in cos(2 pi f).
    p[1] = 2.0 * alpha[nfcns] * bb + alpha[nm1];
    p[2] = 2.0 * aa * alpha[nfcns];
    q[1] = alpha[nfcns - 2] - alpha[nfcns];
    for (int32_t j = 2; j <= nm1; ++j) {
      if (j >= nm1) {
        aa *= 0.5;
        bb *= 0.5;
      }
      p[j + 1] = 0.0;
      for (int32_t k = 1; k <= j; ++k) {
        a[k] = p[k];
        p[k] = 2.0 * bb * a[k];
      }
      p[2] += a[1] * 2.0 * aa;
      for (int32_t k = 1; k <= j - 1; ++k) p[k] += q[k] + aa * a[k + 1];
      for (int32_t k = 3; k <= j + 1; ++k) p[k] += aa * a[k - 1];
      if (j != nm1) {
        for (int32_t k = 1; k <= j; ++k) q[k] = -a[k];
        q[1] += alpha[nfcns - 1 - j];
      }
    }
    for (int32_t j = 1; j <= nfcns; ++j) alpha[j] = p[j];
  }
  if (nfcns <= 3) alpha[nfcns + 1] = alpha[nfcns + 2] = 0.0;
}

bool finite(double v) { return std::isfinite(v); }

// Checks of the request, in the order that decides the code.
int32_t validate(int32_t n, double fs, const Band* b, int32_t nb, int32_t type) {
  if (n < 3) return kDesignFailed;
  if (nb < 1) return kEmptyInput;
  if (!finite(fs)) return kDesignFailed;
  if (fs <= 0) return kBadCutoff;
  for (int32_t i = 0; i < nb; ++i)
    for (double edge : {b[i].lower, b[i].upper}) {
      if (!finite(edge)) return kDesignFailed;
      if (edge < 0) return kBadCutoff;
    }
  for (int32_t i = 0; i < nb; ++i) {
    if (!finite(b[i].weight)) return kDesignFailed;
    if (b[i].weight <= 0) return kBadCutoff;
  }
  for (int32_t i = 0; i < nb; ++i) {
    if (!finite(b[i].desired)) return kDesignFailed;
    if (b[i].desired < 0) return kBadCutoff;
  }
  const double last = b[nb - 1].upper;
  if (last / fs > 0.5) return kCutoffAboveNyquist;
  double before = -1;
  for (int32_t i = 0; i < nb; ++i)
    for (double edge : {b[i].lower, b[i].upper}) {
      if (!(edge > before)) return kBadCutoff;
      before = edge;
    }
  const double gap = std::fabs(last - fs / 2);
  const bool at_nyquist = gap <= 0.001;
  const bool odd = n % 2 == 1;
  const double first = b[0].lower;
  switch (type) {
    case kMultiband:
      if (first != 0 || !at_nyquist) return kDesignFailed;
      if (!odd && b[nb - 1].desired != 0) return kMustBeOdd;
      break;
    case kDifferentiator:
      if (first != 0) return kDesignFailed;
      if (!odd && !at_nyquist) return kDesignFailed;
      if (odd && !(gap >= 0.01)) return kDesignFailed;
      break;
    case kHilbert:
      if (first == 0) return kDesignFailed;
      if (!odd && !at_nyquist) return kDesignFailed;
      if (odd && at_nyquist) return kDesignFailed;
      break;
    default:
      return kBadSelector;
  }
  const int32_t r = n / 2 + (type == kMultiband && odd ? 1 : 0);
  if (r + 2 > kMaxFunctions) return kNoMemory;
  return kOk;
}

}  // namespace

int32_t remez(int32_t n, double fs, const Band* bands, int32_t nbands, int32_t type, int32_t limit, double* h,
              double* deviation) {
  if (int32_t code = validate(n, fs, bands, nbands, type)) return code;
  const bool neg = type != kMultiband;
  const bool odd = n % 2 == 1;
  const int32_t nfcns = n / 2 + (!neg && odd ? 1 : 0);
  const double delf = 0.5 / (static_cast<double>(kGridDensity) * nfcns);

  // Grid capacity: each band holds at most (width / delf) + 2 points.
  size_t capacity = 2;
  for (int32_t i = 0; i < nbands; ++i)
    capacity += static_cast<size_t>((bands[i].upper - bands[i].lower) / fs / delf) + 3;
  Scratch<double> grid_s, des_s, wt_s, work;
  Scratch<int32_t> iext_s;
  const size_t m = static_cast<size_t>(nfcns) + 4;
  if (grid_s.allocate(capacity + 1) != kOk || des_s.allocate(capacity + 1) != kOk ||
      wt_s.allocate(capacity + 1) != kOk || work.allocate(7 * m + static_cast<size_t>(n) + 1) != kOk ||
      iext_s.allocate(m) != kOk)
    return kNoMemory;
  std::fill(work.data(), work.data() + work.size(), 0.0);
  std::fill(iext_s.data(), iext_s.data() + m, 0);
  double* grid = grid_s.data();
  double* des = des_s.data();
  double* wt = wt_s.data();

  // The dense grid, band by band, with the desired response and weight.
  auto desired = [&](double f, const Band& b) { return type == kDifferentiator ? b.desired * f : b.desired; };
  auto weight = [&](double f, const Band& b) {
    return type == kDifferentiator && b.desired >= 0.0001 ? b.weight / f : b.weight;
  };
  grid[1] = bands[0].lower / fs;
  if (neg && grid[1] < delf) grid[1] = delf;
  size_t j = 1;
  for (int32_t band = 0;;) {
    const Band& b = bands[band];
    const double fup = b.upper / fs;
    double temp;
    do {
      temp = grid[j];
      des[j] = desired(temp, b);
      wt[j] = weight(temp, b);
      if (++j > capacity) return kNoMemory;  // cannot happen: the capacity bounds every band
      grid[j] = temp + delf;
    } while (grid[j] <= fup);
    grid[j - 1] = fup;
    des[j - 1] = desired(fup, b);
    wt[j - 1] = weight(fup, b);
    if (++band >= nbands) break;
    grid[j] = bands[band].lower / fs;
  }
  int32_t ngrid = static_cast<int32_t>(j - 1);
  if (neg == odd && grid[ngrid] > 0.5 - delf) --ngrid;
  if (ngrid < nfcns + 1) return kDesignFailed;  // fewer grid points than extrema

  // The equivalent problem for a plain cosine series.
  if (!neg && !odd) {
    for (int32_t i = 1; i <= ngrid; ++i) {
      const double change = std::cos(kPi * grid[i]);
      des[i] /= change;
      wt[i] *= change;
    }
  } else if (neg) {
    for (int32_t i = 1; i <= ngrid; ++i) {
      const double change = odd ? std::sin(kTwoPi * grid[i]) : std::sin(kPi * grid[i]);
      des[i] /= change;
      wt[i] *= change;
    }
  }

  double* w = work.data();
  Exchange e{w, w + m, w + 2 * m, w + 3 * m, w + 4 * m, w + 5 * m, w + 6 * m, iext_s.data()};
  const double spacing = static_cast<double>(ngrid - 1) / nfcns;
  for (int32_t i = 1; i <= nfcns; ++i) e.iext[i] = static_cast<int32_t>((i - 1) * spacing) + 1;
  e.iext[nfcns + 1] = ngrid;

  const Problem pr{grid, des, wt, ngrid, nfcns};
  bool converged = false;
  double dev = 0.0;
  if (int32_t code = exchange(pr, limit < 1 ? kDefaultIterations : limit, e, &dev, &converged)) return code;
  *deviation = std::fabs(dev);
  recover_series(pr, e);

  // Taps from the series, by the four linear-phase cases.
  const double* alpha = e.alpha;
  double* t = w + 7 * m;  // t[1..n]
  const int32_t nz = nfcns + 1, nm1 = nfcns - 1;
  if (!neg) {
    if (odd) {
      for (int32_t i = 1; i <= nm1; ++i) t[i] = 0.5 * alpha[nz - i];
      t[nfcns] = alpha[1];
    } else {
      t[1] = 0.25 * alpha[nfcns];
      for (int32_t i = 2; i <= nm1; ++i) t[i] = 0.25 * (alpha[nz - i] + alpha[nfcns + 2 - i]);
      t[nfcns] = 0.5 * alpha[1] + 0.25 * alpha[2];
    }
  } else if (odd) {
    t[1] = 0.25 * alpha[nfcns];
    if (nm1 >= 1) t[2] = 0.25 * alpha[nm1];
    for (int32_t i = 3; i <= nm1; ++i) t[i] = 0.25 * (alpha[nz - i] - alpha[nfcns + 3 - i]);
    t[nfcns] = 0.5 * alpha[1] - 0.25 * alpha[3];
    t[nz] = 0.0;
  } else {
    t[1] = 0.25 * alpha[nfcns];
    for (int32_t i = 2; i <= nm1; ++i) t[i] = 0.25 * (alpha[nz - i] - alpha[nfcns + 2 - i]);
    t[nfcns] = 0.5 * alpha[1] - 0.25 * alpha[2];
  }
  for (int32_t i = 1; i <= nfcns; ++i) t[n + 1 - i] = neg ? -t[i] : t[i];
  if (neg && odd) t[nz] = 0.0;
  std::copy(t + 1, t + n + 1, h);
  return converged ? kOk : kDesignFailed;
}

}  // namespace jq::fir
