// IIR filter design: an analog prototype of the family, moved to the wanted
// band by frequency prewarping and the bilinear transform s = (1 - 1/z)/(1 + 1/z),
// one cascade section at a time.
//
// Layout, section by section in cascade order: reverse values {a1..am} (the
// leading 1 of each denominator is not stored) and forward values {b0..bm},
// with m = 2 (second-order sections) or 4 (fourth-order sections). An odd
// order's first section is of half the order, padded with zeros.
#pragma once
#include <cstdint>

#include "filters/iir_prototype.hpp"

namespace jq::iir {

enum FilterType : int32_t { kLowpass = 0, kHighpass = 1, kBandpass = 2, kBandstop = 3 };
enum Topology : int32_t { kSecondOrder = 0, kFourthOrder = 1 };

// The highest Bessel order designed (far beyond any useful one).
constexpr int32_t kMaxBesselOrder = 200;

struct Lengths {
  int64_t reverse, forward;
};

// The array lengths a design of this order, type and topology fills; a type
// or topology outside its set is sized as a band or second-order design (the
// design then rejects it).
Lengths coefficient_lengths(int32_t order, int32_t type, int32_t topology);
// The topology of the exports without one: second-order sections for lowpass
// and highpass, fourth-order ones for bandpass and bandstop.
int32_t natural_topology(int32_t type);

struct DesignRequest {
  int32_t type;
  int32_t order;
  int64_t reverse_capacity;
  double* reverse;
  int64_t forward_capacity;
  double* forward;
  int32_t topology;
};

// Validates (first failing check decides) and designs into the request's
// arrays. fh is ignored for lowpass and highpass.
int32_t design(Family family, const Figures& figures, const DesignRequest& r, double fs, double fl, double fh);

// Topology conversions, exposed for the tests.
// Second-order sections (2·ns reverse, 3·ns forward) into fourth-order ones,
// pairing consecutive sections after an odd count's lone first section.
int32_t to_fourth_order(int64_t ns, const double* rev2, const double* fwd2, int64_t rev_cap, double* rev4,
                        int64_t fwd_cap, double* fwd4);
// Fourth-order sections (4·ns, 5·ns) each into two second-order ones (4·ns, 6·ns).
int32_t to_second_order(int64_t ns, const double* rev4, const double* fwd4, int64_t rev_cap, double* rev2,
                        int64_t fwd_cap, double* fwd2);
// Factors 1 + e1·w + e2·w² + e3·w³ + e4·w⁴ into (1 + c1·w + c2·w²)(1 + d1·w + d2·w²)
// with real coefficients; false when there is no quartic (e4 = 0) or no
// finite factorisation was found.
bool factor_quartic(const double e[4], double c[2], double d[2]);

}  // namespace jq::iir
