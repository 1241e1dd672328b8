// RAII wrappers over the host runtime for tests and embedding programs.
#pragma once
#include <complex>
#include <cstdint>
#include <initializer_list>
#include <stdexcept>
#include <utility>
#include <vector>

#include "jqrt.h"

namespace jqrt {

template <class T> struct TypeCode;
template <> struct TypeCode<double> { static constexpr int32_t value = JQRT_F64; };
template <> struct TypeCode<std::complex<double>> { static constexpr int32_t value = JQRT_CF64; };
template <> struct TypeCode<float> { static constexpr int32_t value = JQRT_F32; };
template <> struct TypeCode<std::complex<float>> { static constexpr int32_t value = JQRT_CF32; };
template <> struct TypeCode<int32_t> { static constexpr int32_t value = JQRT_I32; };
template <> struct TypeCode<uint32_t> { static constexpr int32_t value = JQRT_U32; };
template <> struct TypeCode<uint8_t> { static constexpr int32_t value = JQRT_U8; };

// An owned host array handle of T, 1-D or 2-D. h() gives the handle to pass
// to an export by value; slot() gives the address an export may fill when
// the handle starts out null.
template <class T, int Dims = 1> class Array {
 public:
  static constexpr int32_t code = TypeCode<T>::value;

  // A null handle: the export must create the block itself.
  static Array null() { return Array(nullptr); }

  Array() : Array(0) {}
  explicit Array(int32_t n, int32_t cols = 1) : h_(jqrt_make(code, Dims, n, Dims == 2 ? cols : 0)) {
    if (!h_) throw std::bad_alloc();
  }
  Array(std::initializer_list<T> v) : Array(std::vector<T>(v)) {}
  explicit Array(const std::vector<T>& v) : Array(static_cast<int32_t>(v.size())) {
    for (size_t i = 0; i < v.size(); ++i) data()[i] = v[i];
  }
  // A 2-D array from its rows.
  static Array rows(const std::vector<std::vector<T>>& r) {
    Array a(static_cast<int32_t>(r.size()), r.empty() ? 0 : static_cast<int32_t>(r[0].size()));
    for (size_t i = 0; i < r.size(); ++i)
      for (size_t j = 0; j < r[i].size(); ++j) a.data()[i * a.cols() + j] = r[i][j];
    return a;
  }
  ~Array() { jqrt_free(h_); }
  Array(Array&& o) noexcept : h_(std::exchange(o.h_, nullptr)) {}
  Array& operator=(Array&& o) noexcept {
    std::swap(h_, o.h_);
    return *this;
  }
  Array(const Array&) = delete;
  Array& operator=(const Array&) = delete;

  uint8_t** h() const { return h_; }
  uint8_t*** slot() { return &h_; }
  int32_t size() const { return Dims == 2 ? rows() * cols() : jqrt_dim(h_, 0); }
  int32_t rows() const { return jqrt_dim(h_, 0); }
  int32_t cols() const { return Dims == 2 ? jqrt_dim(h_, 1) : 1; }
  T* data() const { return static_cast<T*>(jqrt_data(h_, code, Dims)); }
  T& operator[](size_t i) const { return data()[i]; }
  std::vector<T> values() const {
    const int32_t n = size();
    return n > 0 ? std::vector<T>(data(), data() + n) : std::vector<T>();
  }
  // Overwrites the stored sizes without reallocating, to present corrupt or
  // negative counts to an export.
  void set_dims(int32_t d0, int32_t d1 = 0) {
    reinterpret_cast<int32_t*>(*h_)[0] = d0;
    if (Dims == 2) reinterpret_cast<int32_t*>(*h_)[1] = d1;
  }

 private:
  explicit Array(std::nullptr_t) : h_(nullptr) {}
  uint8_t** h_;
};

template <class T> using Array2 = Array<T, 2>;

// A host instance slot (null before first use).
class Slot {
 public:
  Slot() = default;
  Slot(const Slot&) = delete;
  Slot& operator=(const Slot&) = delete;
  void** get() { return &p_; }
  void* value() const { return p_; }

 private:
  void* p_ = nullptr;
};

// Makes the nth resize from now fail for the lifetime of the object.
class FailResize {
 public:
  explicit FailResize(int32_t nth) { jqrt_fail_resize(nth); }
  ~FailResize() { jqrt_fail_resize(0); }
};

}  // namespace jqrt
