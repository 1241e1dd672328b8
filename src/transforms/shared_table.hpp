// A reference to the shared FFT table of one length, held for one call.
#pragma once
#include <cstdint>

#include "transforms/fft.hpp"

namespace jq::fft {

class SharedTable {
 public:
  explicit SharedTable(uint32_t n) : t_(create_table(n)) {}
  ~SharedTable() { destroy_table(t_); }
  SharedTable(const SharedTable&) = delete;
  SharedTable& operator=(const SharedTable&) = delete;
  // Null when the table could not be made (no memory).
  const FFTTable* get() const { return t_; }

 private:
  FFTTable* t_;
};

}  // namespace jq::fft
