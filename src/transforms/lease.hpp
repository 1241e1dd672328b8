// Where an export's tables come from: the plain form's slots (clean-up
// registered with the host) or the _IDP form's TransformInstance. A null
// slot gets a table for the one call only.
#pragma once
#include <cstdint>

#include "transforms/fft.hpp"

namespace jq::fft {

class TableSource {
 public:
  // Plain exports: one slot per table (row length, then column length).
  static TableSource plain(void** first, void** second = nullptr) { return TableSource(first, second, false); }
  // _IDP exports: one slot holding a TransformInstance.
  static TableSource idp(void** slot) { return TableSource(slot, nullptr, true); }

  ~TableSource() {
    for (FFTTable* t : temporary_) destroy_table(t);
  }
  TableSource(const TableSource&) = delete;
  TableSource& operator=(const TableSource&) = delete;

  // The table of length n for holder `which` (0 or 1). 0 or kNoMemory.
  // A call site that keeps its length finds its table without a call.
  int32_t get(int which, uint32_t n, FFTTable** table) {
    if (FFTTable* t = kept(which); t && static_cast<uint32_t>(t->length) == n) {
      *table = t;
      return 0;
    }
    return acquire(which, n, table);
  }

 private:
  TableSource(void** a, void** b, bool idp) : slots_{a, b}, idp_(idp) {}
  FFTTable* kept(int which) const {
    void** slot = idp_ ? slots_[0] : slots_[which];
    if (!slot || !*slot) return nullptr;
    const TransformTableHolder* h = static_cast<TransformTableHolder*>(*slot);
    if (idp_) {
      const auto* inst = static_cast<const TransformInstance*>(*slot);
      h = which == 0 ? inst->first : inst->second;
    }
    return h ? h->table : nullptr;
  }
  int32_t acquire(int which, uint32_t n, FFTTable** table);
  void** slots_[2];
  bool idp_;
  FFTTable* temporary_[2] = {nullptr, nullptr};
};

}  // namespace jq::fft
