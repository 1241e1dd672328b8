// Analog lowpass prototypes of the IIR families, normalised to an edge at
// 1 rad/s, handed out one section at a time so that a design of any order
// needs no more memory than its coefficient arrays (Bessel, whose poles come
// from a polynomial, keeps them in scratch).
#pragma once
#include <complex>
#include <cstdint>

#include "frame/scratch.hpp"

namespace jq::iir {

enum Family : int32_t { kButterworth, kChebyshev, kInvChebyshev, kElliptic, kBessel };

// The figures a family needs besides order and edges.
struct Figures {
  double ripple = 0;       // passband ripple in dB (Chebyshev, elliptic)
  double attenuation = 0;  // stopband attenuation in dB (inverse Chebyshev, elliptic)
};

// One analog section (n2·s² + n0) / (s² + d1·s + d0), or, for the first-order
// section of an odd order, n0 / (s + d0).
struct AnalogSection {
  double n2, n0, d1, d0;
};

class Prototype {
 public:
  // 0 or kNoMemory (Bessel's pole scratch).
  int32_t init(Family family, int32_t order, const Figures& f);
  // The first-order section of an odd order.
  AnalogSection real_pole() const;
  // Pole pair k (0-based), in cascade order: the pair nearest the axis first.
  AnalogSection pair(int64_t k) const;

 private:
  AnalogSection bessel_pair(int64_t k) const;
  AnalogSection elliptic_pair(int64_t k) const;

  Family family_ = kButterworth;
  int32_t order_ = 0;
  double sh_ = 0, ch_ = 0;  // Chebyshev and inverse Chebyshev ellipse axes
  double gain_ = 1;         // extra gain of the first pair of an even order
  // Elliptic: the modulus, its complement and the imaginary pole offset.
  double k_ = 0, kp_ = 0, v0_ = 0;
  Scratch<std::complex<double>> poles_;  // Bessel, upper half plane first, real pole last
};

}  // namespace jq::iir
