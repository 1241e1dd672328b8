// Host array handles: typed read access and the host's type codes.
//
// A handle points at the host's master pointer, which points at one block:
// the dimension sizes (int32 each), then the elements at the first offset
// that suits the element type. The library never allocates these blocks;
// it only reads them and asks the host to resize them.
#pragma once
#include <complex>
#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace jq {

using Handle = uint8_t**;
using cdouble = std::complex<double>;
using cfloat = std::complex<float>;

// Type code passed to NumericArrayResize and where the elements of a 1-D
// array start. Every 2-D array keeps its elements at byte 8.
template <class T> struct HostType;
template <> struct HostType<double> { static constexpr int32_t code = 10, offset = 8; };
template <> struct HostType<cdouble> { static constexpr int32_t code = 13, offset = 8; };
template <> struct HostType<float> { static constexpr int32_t code = 9, offset = 4; };
template <> struct HostType<cfloat> { static constexpr int32_t code = 12, offset = 4; };
template <> struct HostType<int32_t> { static constexpr int32_t code = 3, offset = 4; };
template <> struct HostType<uint32_t> { static constexpr int32_t code = 7, offset = 4; };
template <> struct HostType<uint8_t> { static constexpr int32_t code = 5, offset = 4; };

constexpr int32_t kOffset2D = 8;

// A block reachable through a handle, or null for a null handle or master pointer.
inline uint8_t* block_of(Handle h) { return h ? *h : nullptr; }

// View of a 1-D host array. A null handle reads as empty. size() is the
// stored count as a signed value, so a corrupt negative count is visible.
template <class T> class Array1 {
  using U = std::remove_const_t<T>;

 public:
  explicit Array1(Handle h) : h_(h) {}
  int32_t size() const {
    const uint8_t* b = block_of(h_);
    return b ? *reinterpret_cast<const int32_t*>(b) : 0;
  }
  bool empty() const { return size() < 1; }
  T* data() const {
    uint8_t* b = block_of(h_);
    return b ? reinterpret_cast<T*>(b + HostType<U>::offset) : nullptr;
  }
  T& operator[](size_t i) const { return data()[i]; }
  Handle handle() const { return h_; }

 private:
  Handle h_;
};

// View of a 2-D host array: rows first, then columns, elements row after row.
template <class T> class Array2 {
 public:
  explicit Array2(Handle h) : h_(h) {}
  int32_t rows() const { return dim(0); }
  int32_t cols() const { return dim(1); }
  bool empty() const { return rows() < 1 || cols() < 1; }
  T* data() const {
    uint8_t* b = block_of(h_);
    return b ? reinterpret_cast<T*>(b + kOffset2D) : nullptr;
  }
  T* row(int32_t r) const { return data() + static_cast<size_t>(r) * cols(); }
  Handle handle() const { return h_; }

 private:
  int32_t dim(int i) const {
    const uint8_t* b = block_of(h_);
    return b ? reinterpret_cast<const int32_t*>(b)[i] : 0;
  }
  Handle h_;
};

}  // namespace jq
