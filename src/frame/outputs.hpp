// The resize convention shared by every export with array outputs.
//
// An export names its outputs once, in order, in an Outputs set. It then
// sizes them one after another; the first failed resize stops the export with
// kNoMemory. Whenever the export fails, every output of the set, including
// those it never reached, is resized to zero elements so that the host sees
// either complete outputs or empty ones.
#pragma once
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <type_traits>

#include "frame/errors.hpp"
#include "frame/handles.hpp"

namespace jq {

// One output array: element type, rank and the handle the host passed. The
// handle is held by value because the host may replace a null handle with a
// new block, which is then visible only through this copy.
template <class T, int Dims = 1> class Out {
  static_assert(Dims == 1 || Dims == 2);

 public:
  explicit Out(Handle h) : h_(h) {}
  T* data() const {
    uint8_t* b = block_of(h_);
    return b ? reinterpret_cast<T*>(b + (Dims == 1 ? HostType<T>::offset : kOffset2D)) : nullptr;
  }
  Handle handle() const { return h_; }
  Handle* slot() { return &h_; }
  static constexpr int32_t type_code = HostType<T>::code;
  static constexpr int32_t dims = Dims;

 private:
  Handle h_;
};

template <class T> using Out2 = Out<T, 2>;

// Asks the host to resize a handle and writes the sizes on success; returns
// the host's own status (0 on success). Exposed for the rare export that
// resizes outside an Outputs set.
int32_t host_resize(int32_t type_code, int32_t dims, Handle* h, int32_t rows, int32_t cols);

class Outputs {
 public:
  template <class... O> explicit Outputs(O&... outs) {
    static_assert(sizeof...(O) <= kMax, "too many outputs for one export");
    (add(outs.type_code, outs.dims, outs.slot()), ...);
  }
  Outputs(const Outputs&) = delete;
  Outputs& operator=(const Outputs&) = delete;

  // Resizes a 1-D output to n elements. False (and kNoMemory) on failure,
  // which includes a null handle.
  template <class T> bool size(Out<T, 1>& o, int32_t n) { return resize(o.type_code, 1, o.slot(), n, 0); }
  // Resizes a 2-D output to rows x cols elements.
  template <class T> bool size(Out<T, 2>& o, int32_t rows, int32_t cols) {
    return resize(o.type_code, 2, o.slot(), rows, cols);
  }

  // Empties every output and returns the code.
  int32_t fail(int32_t code);
  // Reporting shape (a): the code is the result; a negative one empties the outputs.
  int32_t finish(int32_t code) { return code < 0 ? fail(code) : code; }
  // Reporting shape (b): the code goes to the error parameter; the result is 0,
  // or the host's own status when one of its resizes failed.
  int32_t report(int32_t code, int32_t* error) {
    if (code < 0) fail(code);
    if (error) *error = code;
    return host_status_;
  }
  // The last non-zero status NumericArrayResize returned, or 0.
  int32_t host_status() const { return host_status_; }

 private:
  static constexpr int kMax = 8;
  struct Entry {
    int32_t type;
    int32_t dims;
    Handle* handle;
  };
  void add(int32_t type, int32_t dims, Handle* h) { entries_[count_++] = Entry{type, dims, h}; }
  bool resize(int32_t type, int32_t dims, Handle* h, int32_t rows, int32_t cols);

  Entry entries_[kMax];  // only the first count_ are set: zeroing all of them shows in small exports
  int count_ = 0;
  int32_t host_status_ = 0;
};

// Scalar results reported through an error parameter: the error is the code
// and a negative code turns the result (a double, or a record of doubles such
// as a complex value) into quiet NaNs. Always returns 0.
template <class S> int32_t report_scalar(int32_t code, S* result, int32_t* error) {
  static_assert(std::is_standard_layout_v<S> && sizeof(S) % sizeof(double) == 0, "a result made of doubles");
  if (error) *error = code;
  if (code < 0 && result) {
    auto* parts = reinterpret_cast<double*>(result);
    for (size_t i = 0; i < sizeof(S) / sizeof(double); ++i) parts[i] = std::numeric_limits<double>::quiet_NaN();
  }
  return 0;
}

}  // namespace jq
