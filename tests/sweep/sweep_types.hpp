// The export descriptors that tools/gen_sweep_table.py writes from the
// public header, and the argument vector its thunks read.
#pragma once
#include <cstddef>
#include <cstdint>

namespace sweep {

enum class Kind { kHandle, kSlot, kInt, kUInt, kByte, kReal, kPointer, kOpaque, kRecord };
enum class Dir { kNone, kIn, kOut, kInOut };
// Element types a pointer parameter points at.
enum Elem : int32_t { kI32 = 1, kU32, kU8, kF64, kF32 };
// kValue: a scalar result that is not a code (the sweep only checks the call survives).
enum class Result { kVoid, kValue, kCode, kObject };

struct Param {
  Kind kind;
  Dir dir;
  const char* name;
  const char* ctype;
  int32_t code;     // handles: host type code; pointers: Elem
  int32_t rank;     // handles: 1 or 2
  int32_t count;    // pointers and records: elements pointed at
  size_t bytes;     // records: size of one
  int32_t doubles;  // records made only of float64 fields: how many
};

// One argument: the thunk reads the member its parameter's kind uses.
struct Arg {
  void* p = nullptr;
  int64_t i = 0;
  double d = 0;
};

struct Export {
  const char* name;
  const char* family;  // the header's stem
  Result result;
  const Param* params;
  int count;
  int64_t (*call)(const Arg*);
  const char* problem;  // why the export could not be classified, or null
  const char* object;   // kObject: the opaque type returned
};

}  // namespace sweep
