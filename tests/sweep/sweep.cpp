// Robustness sweep: calls every export the public header declares with
// adversarial arguments, then with every host resize and every internal
// allocation of a valid call failing in turn.
//
//   jqsweep [--family NAME]... [--faults | --no-faults] [--light] [--list] [--verbose]
//
// Each call must return without a crash or hang, leave no host block behind
// and, when it reports an error, come back with every array output empty and
// every float64 result NaN. The export and case being run are kept where a
// crash handler, the sanitizers' death callback and the watchdog can name them.
#include <atomic>
#include <chrono>
#include <cinttypes>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <limits>
#include <map>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "frame/scratch.hpp"
#include "jqanlys.h"
#include "jqrt.h"
#include "sweep_types.hpp"
#include "starting_arguments.hpp"

namespace sweep {
#include "sweep_table.inc"
}  // namespace sweep

using namespace sweep;

namespace {

// ---- naming a crash or a hang -------------------------------------------------

char g_current[512] = "start-up";
std::atomic<int64_t> g_started_ms{0};  // 0 while no call is running
std::atomic<int64_t> g_limit_ms{20000};

int64_t now_ms() {
  using namespace std::chrono;
  return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

void say_current(const char* what) {
  std::fputs(what, stderr);
  std::fputs(g_current, stderr);
  std::fputs("\n", stderr);
  std::fflush(stderr);
}

extern "C" void on_signal(int sig) {
  say_current(sig == SIGABRT ? "\nABORT in " : "\nCRASH in ");
  std::_Exit(4);
}

extern "C" void on_sanitizer_death() { say_current("\nSANITIZER REPORT in "); }

void watchdog() {
  for (;;) {
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    const int64_t t = g_started_ms.load();
    if (t != 0 && now_ms() - t > g_limit_ms.load()) {
      say_current("\nHANG (no return within the time limit) in ");
      std::_Exit(3);
    }
  }
}

}  // namespace

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define JQ_SWEEP_SANITIZED 1
extern "C" void __sanitizer_set_death_callback(void (*)(void));
#endif

namespace {

// ---- values -------------------------------------------------------------------

constexpr double kMax = std::numeric_limits<double>::max();
constexpr double kInf = std::numeric_limits<double>::infinity();
const double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kDenormal = 4.9406564584124654e-324;
constexpr int32_t kMin32 = std::numeric_limits<int32_t>::min();
constexpr int32_t kMax32 = std::numeric_limits<int32_t>::max();

// Data of an input array.
// The kinds after kMixed are valid-call data, not adversarial cases: a
// positive increasing ramp (fits of logs, bin edges), a symmetric,
// diagonally dominant matrix (positive definite, well conditioned) and a
// constant.
enum class Data { kSmooth, kAllNaN, kOneNaN, kPosInf, kNegInf, kMaxPos, kMaxNeg, kDenormal, kZero, kMixed,
                  kRamp, kSpd, kConst };
const char* name_of(Data d) {
  static const char* names[] = {"smooth", "all NaN", "one NaN", "+Inf", "-Inf", "+max", "-max", "denormals", "zeros",
                                "mixed extremes", "ramp", "spd", "constant"};
  return names[static_cast<int>(d)];
}

// i is the element's flat index; a matrix of `cols` columns places it.
double sample(Data d, int64_t i, int32_t cols = 1, double constant = 0) {
  const double smooth = 0.5 + std::sin(0.7 * static_cast<double>(i)) + 0.25 * std::cos(2.3 * static_cast<double>(i));
  switch (d) {
    case Data::kSmooth: return smooth;
    case Data::kAllNaN: return kNaN;
    case Data::kOneNaN: return i == 1 ? kNaN : smooth;
    case Data::kPosInf: return i % 3 == 0 ? kInf : smooth;
    case Data::kNegInf: return i % 3 == 1 ? -kInf : smooth;
    case Data::kMaxPos: return kMax;
    case Data::kMaxNeg: return i % 2 ? -kMax : kMax;
    case Data::kDenormal: return (i % 2 ? -1 : 1) * kDenormal * static_cast<double>(i % 5);
    case Data::kZero: return 0.0;
    case Data::kMixed: {
      static const double v[] = {kMax, -kInf, kDenormal, 0.0, kNaN, -kMax, 1.0, kInf};
      return v[i % 8];
    }
    case Data::kRamp: return 1.0 + 0.5 * static_cast<double>(i);
    case Data::kSpd: {
      const int64_t r = i / cols, c = i % cols, gap = r > c ? r - c : c - r;
      return 1.0 / static_cast<double>(1 + gap) + (gap == 0 ? static_cast<double>(cols) + 1 : 0.0);
    }
    case Data::kConst: return constant;
  }
  return 0;
}

int64_t integer_sample(Data d, int64_t i) {
  switch (d) {
    case Data::kSmooth: return i;
    case Data::kMaxPos: return kMax32;
    case Data::kMaxNeg: return i % 2 ? kMin32 : kMax32;
    case Data::kZero: return 0;
    case Data::kRamp: return i + 1;
    default: return i % 2 ? -1 : kMin32;
  }
}

// list: elements given one by one (real parts), repeated to fill; else d.
void fill(void* data, int32_t code, int64_t count, int32_t cols, Data d, double constant,
          const std::vector<double>& list) {
  // A valid-call matrix stays Hermitian: its imaginary part is zero.
  const bool real_only = d == Data::kSpd || d == Data::kRamp || d == Data::kConst;
  for (int64_t i = 0; i < count; ++i) {
    const double re = list.empty() ? sample(d, i, cols, constant) : list[static_cast<size_t>(i) % list.size()];
    const double im = real_only ? 0.0 : sample(d, i + 7, cols, constant);
    // Integer elements of a valid-call matrix or constant are its rounded values.
    const int64_t whole = d == Data::kSpd || d == Data::kConst ? std::llround(re) : integer_sample(d, i);
    switch (code) {
      case 10: static_cast<double*>(data)[i] = re; break;
      case 13: static_cast<double*>(data)[2 * i] = re, static_cast<double*>(data)[2 * i + 1] = im; break;
      case 9: static_cast<float*>(data)[i] = static_cast<float>(re); break;
      case 12: static_cast<float*>(data)[2 * i] = static_cast<float>(re),
               static_cast<float*>(data)[2 * i + 1] = static_cast<float>(im); break;
      case 3: static_cast<int32_t*>(data)[i] = static_cast<int32_t>(whole); break;
      case 7: static_cast<uint32_t*>(data)[i] = static_cast<uint32_t>(whole); break;
      case 5: static_cast<uint8_t*>(data)[i] = static_cast<uint8_t>(whole & 1); break;
    }
  }
}

// How one argument is made.
struct Value {
  enum Tag { kArray, kNullHandle, kNullMaster, kCounts, kNumber, kNullPointer, kBytes } tag = kArray;
  int32_t d0 = 16, d1 = 4;  // kArray: the real sizes; kCounts: the sizes written over a valid block
  Data data = Data::kSmooth;
  double number = 0;  // kNumber: the scalar, or what a pointer points at
  std::vector<double> list;  // kArray: elements given one by one, repeated to fill
};

Value array(int32_t d0, int32_t d1 = 4, Data d = Data::kSmooth) {
  Value v;
  v.d0 = d0, v.d1 = d1, v.data = d;
  return v;
}
Value tagged(Value::Tag t, int32_t d0 = 0, int32_t d1 = 0) {
  Value v;
  v.tag = t, v.d0 = d0, v.d1 = d1;
  return v;
}
Value number(double x) {
  Value v;
  v.tag = Value::kNumber, v.number = x;
  return v;
}

std::string text(double x) {
  char b[32];
  std::snprintf(b, sizeof b, "%.17g", x);
  return b;
}

bool is_handle_input(const Param& p) { return p.kind == Kind::kHandle && p.dir != Dir::kOut; }
bool is_scalar(const Param& p) { return p.kind >= Kind::kInt && p.kind <= Kind::kReal; }
bool is_scalar_input(const Param& p) { return is_scalar(p) || (p.kind == Kind::kPointer && p.dir != Dir::kOut); }
// The int32 out-argument of the exports that report their code there
// rather than returning it: named error, or status in the matrix families.
bool is_error_param(const Param& p) {
  return p.kind == Kind::kPointer && p.dir == Dir::kOut && p.code == kI32 && p.count == 1 &&
         (std::strcmp(p.name, "error") == 0 || std::strcmp(p.name, "status") == 0);
}
bool is_real_kind(const Param& p) {
  return p.kind == Kind::kReal || (p.kind == Kind::kPointer && (p.code == kF64 || p.code == kF32));
}

// Where a parameter name says which small values make sense.
bool named(const Param& p, std::initializer_list<const char*> parts) {
  for (const char* s : parts)
    if (std::strstr(p.name, s)) return true;
  return false;
}

Value default_value(const Param& p) {
  if (p.kind == Kind::kHandle) return p.dir == Dir::kOut ? array(3, 2) : array(16, 4);
  if (is_real_kind(p)) return number(0.5);
  // A seed of 1 restarts a generator, so that a valid call draws real numbers.
  if (named(p, {"seed"})) return number(1);
  if (named(p, {"start", "offset", "delay", "shift", "method", "symmetric", "unit_gain", "exclude", "spacing",
                 "interpolation", "selector"}))
    return number(0);
  if (named(p, {"rows", "cols"})) return number(4);
  return number(8);
}

// ---- one call's arguments -------------------------------------------------------

// The arguments of one call, with everything they point at. Handles made
// here are freed by release(); slots are kept so that a later call can reuse
// them.
struct Frame {
  const Export* e = nullptr;
  std::vector<Arg> args;
  std::vector<uint8_t**> handles;
  std::vector<std::vector<uint64_t>> storage;  // pointees and records, 8-byte aligned
  std::vector<void*> slots;
  int32_t* error = nullptr;

  explicit Frame(const Export& x) : e(&x), args(x.count), handles(x.count), storage(x.count), slots(x.count) {}
  Frame(const Frame&) = delete;
  Frame& operator=(const Frame&) = delete;
  ~Frame() { release(); }

  void make(const std::vector<Value>& values, bool keep_slots = false) {
    free_handles();
    for (int i = 0; i < e->count; ++i) {
      const Param& p = e->params[i];
      const Value& v = values[i];
      Arg& a = args[i];
      a = Arg{};
      switch (p.kind) {
        case Kind::kHandle: a.p = make_handle(p, v, &handles[i]); break;
        case Kind::kSlot:
          if (!keep_slots && slots[i]) std::abort();  // released before reuse
          a.p = v.tag == Value::kNullPointer ? nullptr : &slots[i];
          break;
        case Kind::kInt: case Kind::kUInt: case Kind::kByte: a.i = static_cast<int64_t>(v.number); break;
        case Kind::kReal: a.d = v.number; break;
        case Kind::kPointer: a.p = make_pointee(p, v, storage[i]); break;
        case Kind::kRecord:
          // Records start zero-filled, as a host that never wrote them holds
          // them, or filled with one byte; results start as garbage.
          storage[i].assign((p.bytes * p.count + 7) / 8 + 1, 0);
          if (p.dir == Dir::kOut || v.tag == Value::kBytes)
            std::memset(storage[i].data(), p.dir == Dir::kOut ? 0x5a : static_cast<int>(v.number), storage[i].size() * 8);
          a.p = storage[i].data();
          break;
        case Kind::kOpaque: a.p = nullptr; break;  // only null can be passed for a type the sweep cannot make
      }
      if (is_error_param(p)) error = static_cast<int32_t*>(a.p);
    }
  }

  static void* make_pointee(const Param& p, const Value& v, std::vector<uint64_t>& s) {
    s.assign(static_cast<size_t>(p.count) + 1, 0);
    for (int32_t k = 0; k < p.count; ++k) {
      void* at = s.data() + k;
      const double x = p.dir == Dir::kOut ? (is_error_param(p) ? 12345 : 7.25) : v.number;
      switch (p.code) {
        case kF64: *static_cast<double*>(at) = x; break;
        case kF32: *static_cast<float*>(at) = static_cast<float>(x); break;
        case kI32: *static_cast<int32_t*>(at) = static_cast<int32_t>(x); break;
        case kU32: *static_cast<uint32_t*>(at) = static_cast<uint32_t>(static_cast<int64_t>(x)); break;
        case kU8: *static_cast<uint8_t*>(at) = static_cast<uint8_t>(static_cast<int64_t>(x)); break;
      }
    }
    // The element array is packed for the callee: 4-byte elements sit side by side.
    if (p.code != kF64 && p.count > 1) {
      std::vector<uint64_t> packed(s.size(), 0);
      const size_t w = p.code == kU8 ? 1 : 4;
      for (int32_t k = 0; k < p.count; ++k) std::memcpy(reinterpret_cast<char*>(packed.data()) + k * w, s.data() + k, w);
      s = packed;
    }
    return v.tag == Value::kNullPointer ? nullptr : s.data();
  }

  static uint8_t** make_handle(const Param& p, const Value& v, uint8_t*** keep) {
    *keep = nullptr;
    if (v.tag == Value::kNullHandle) return nullptr;
    const bool two = p.rank == 2;
    int32_t d0 = v.d0, d1 = two ? v.d1 : 0;
    if (v.tag != Value::kArray) d0 = 5, d1 = two ? 3 : 0;  // a valid block, whose sizes are then overwritten
    uint8_t** h = jqrt_make(p.code, p.rank, d0, d1);
    if (!h) {
      std::fprintf(stderr, "the host could not make a %d x %d block\n", d0, d1);
      std::abort();
    }
    *keep = h;
    if (v.tag == Value::kArray) {
      fill(jqrt_data(h, p.code, p.rank), p.code, static_cast<int64_t>(d0) * (two ? d1 : 1), two ? d1 : 1, v.data,
           v.number, v.list);
    } else if (v.tag == Value::kNullMaster) {
      std::free(*h);  // the runtime's blocks come from malloc; it frees whatever the cell holds
      *h = nullptr;
    } else if (v.tag == Value::kCounts) {
      auto* sizes = reinterpret_cast<int32_t*>(*h);
      sizes[0] = v.d0;
      if (two) sizes[1] = v.d1;
    }
    return h;
  }

  void free_handles() {
    for (uint8_t**& h : handles) {
      jqrt_free(h);
      h = nullptr;
    }
  }

  // Frees the handles and the per-call-site state the call left.
  void release();
};

const Export* find_export(const char* name) {
  for (const Export& x : kExports)
    if (std::strcmp(x.name, name) == 0) return &x;
  return nullptr;
}

bool ends_with(const char* s, const char* tail) {
  const size_t a = std::strlen(s), b = std::strlen(tail);
  return a >= b && std::strcmp(s + a - b, tail) == 0;
}

// The export that releases an _IDP instance: measurement families keep
// measurement instances, every other family transform instances.
const Export* unreserve_of(const Export& e) {
  const bool measurement = std::strstr(e.family, "measure") != nullptr || std::strstr(e.family, "level") != nullptr;
  return find_export(measurement ? "MeasurementUnreserveProc" : "TransformUnreserveProc");
}

void Frame::release() {
  free_handles();
  const Export* unreserve = ends_with(e->name, "_IDP") ? unreserve_of(*e) : nullptr;
  bool registered = false;
  for (void*& s : slots) {
    if (!s) continue;
    if (unreserve) {
      Arg a;
      a.p = &s;
      unreserve->call(&a);
    } else {
      registered = true;
      s = nullptr;  // the clean-up procedure the export registered frees it
    }
  }
  if (registered) jqrt_dispose_context();
}

// ---- outcome -------------------------------------------------------------------

// Exports whose float64 results read as this value instead of NaN on an
// error, as documented for them: the state levels come back as zeros.
const std::map<std::string, double> kResultsOnError = {{"StateLevels", 0.0}, {"StateLevels_IDP", 0.0}};

// Results an export documents as written on one error: the equiripple
// design reports the deviation it reached when it ran out of iterations.
const std::map<std::string, int32_t> kResultsKeptOnCode = {{"Parks", -20031}};

// In-out arrays that an export documents as kept on an error: the block-mode
// filters leave their states for the caller, emptying them only where the
// filter's own description says so.
const std::map<std::string, std::set<std::string>> kKeptOnError = {
    {"IIR_Filter", {"fstate", "rstate"}},        {"CxSigIIR_Filter", {"fstate", "rstate"}},
    {"CxIIR_Filter_H", {"fstate", "rstate"}},    {"CxIIRReSig_Filter_H", {"fstate", "rstate"}},
    {"IIR_Filter2", {"state"}},                  {"CxSigIIR_Filter2", {"state"}},
    {"zeroPhaseCascadeFiltH", {"state1", "state2"}},
    {"zeroPhaseFiltH", {"fstate1", "rstate1", "fstate2", "rstate2"}}};

bool kept_on_error(const Export& e, const Param& p) {
  const auto it = kKeptOnError.find(e.name);
  return p.dir == Dir::kInOut && it != kKeptOnError.end() && it->second.count(p.name) != 0;
}

struct Outcome {
  int64_t result = 0;
  int32_t code = 0;
  std::string problem;
};

class Sweep {
 public:
  Sweep(bool light, bool faults, bool verbose) : light_(light), faults_(faults), verbose_(verbose) {}
  int64_t cases() const { return cases_; }
  int failures() const { return failures_; }
  int without_valid_call() const { return without_valid_; }

  void run(const Export& e) {
    cases_before_ = cases_;
    if (e.problem) {
      fail(e, "classification", e.problem);
      return;
    }
    std::vector<Value> base = valid_values(e);
    sweep_arguments(e, base);
    sweep_slots(e, base);
    if (faults_ && valid_) {
      sweep_faults(e, base, "");
      // Longer inputs take other paths (transform sizes that are not powers
      // of two, blocked loops), with their own allocations.
      const std::vector<Value> larger = larger_values(e, base);
      if (call(e, larger, "larger valid call").code >= 0) sweep_faults(e, larger, "larger call: ");
    }
    without_valid_ += valid_ ? 0 : 1;
    std::printf("%-28s %5" PRId64 " cases%s\n", e.name, cases_ - cases_before_,
                valid_ ? "" : "  (no valid call found: argument cases only)");
    std::fflush(stdout);
  }

 private:
  // Runs one call on a fresh frame and checks everything that must hold.
  Outcome call(const Export& e, const std::vector<Value>& values, const std::string& what, Frame* reuse = nullptr) {
    ++cases_;
    std::snprintf(g_current, sizeof g_current, "%s: %s", e.name, what.c_str());
    const int64_t live = jqrt_live_blocks();
    const int32_t cleanups = jqrt_cleanup_count();
    Outcome o;
    {
      Frame local(e);
      Frame& f = reuse ? *reuse : local;
      f.make(values, reuse != nullptr);
      const int64_t resizes = jqrt_resize_calls();
      g_started_ms.store(now_ms());
      o.result = e.call(f.args.data());
      g_started_ms.store(0);
      o.code = code_of(e, f, o, jqrt_resize_calls() != resizes);
      if (o.code < 0) check_emptied(e, f, o);
      if (ends_with(e.name, "_IDP") && jqrt_cleanup_count() != cleanups)
        o.problem += "an _IDP export registered a clean-up procedure; ";
      release_object(e, o.result);
      if (!reuse) f.release();
    }
    if (!reuse && jqrt_live_blocks() != live) o.problem += "a host block was left behind; ";
    if (!o.problem.empty()) fail(e, what, o.problem);
    if (verbose_) std::printf("  %-60s code %d\n", what.c_str(), o.code);
    return o;
  }

  // An object an export returned goes back through the export that takes
  // only that type and returns nothing (its destroyer).
  static void release_object(const Export& e, int64_t result) {
    if (e.result != Result::kObject || !result) return;
    Arg a;
    a.p = reinterpret_cast<void*>(static_cast<intptr_t>(result));
    for (const Export& x : kExports)
      if (x.count == 1 && x.params[0].kind == Kind::kOpaque && std::strcmp(x.params[0].ctype, e.object) == 0 &&
          x.result == Result::kVoid) {
        x.call(&a);
        return;
      }
  }

  // The code the export reported: its result (shape a) or its error
  // parameter (shape b), whose result must then be 0, the code itself, or
  // the host's status after one of its resizes failed.
  static int32_t code_of(const Export& e, const Frame& f, Outcome& o, bool resized) {
    if (e.result == Result::kObject) return o.result ? 0 : -20001;
    if (e.result == Result::kVoid || e.result == Result::kValue) return 0;
    if (!f.error) return static_cast<int32_t>(o.result);
    const int32_t code = *f.error;
    if (code == 12345) o.problem += "the error parameter was not written; ";
    const bool host_status = code == -20001 && resized && o.result != 0;
    if (o.result != 0 && o.result != code && !host_status)
      o.problem += "result " + std::to_string(o.result) + " beside error " + std::to_string(code) + "; ";
    return code;
  }

  static void check_emptied(const Export& e, const Frame& f, Outcome& o) {
    for (int i = 0; i < e.count; ++i) {
      const Param& p = e.params[i];
      if (p.kind == Kind::kHandle && p.dir != Dir::kIn && f.handles[i] && *f.handles[i] && !kept_on_error(e, p)) {
        const int32_t d0 = jqrt_dim(f.handles[i], 0), d1 = p.rank == 2 ? jqrt_dim(f.handles[i], 1) : 0;
        if (d0 != 0 || (p.rank == 2 && d1 != 0))
          o.problem += std::string("output '") + p.name + "' not emptied on error " + std::to_string(o.code) + "; ";
      }
      const auto kept = kResultsOnError.find(e.name);
      const auto written = kResultsKeptOnCode.find(e.name);
      if (written != kResultsKeptOnCode.end() && written->second == o.code && p.kind == Kind::kPointer) continue;
      const auto* data = reinterpret_cast<const double*>(f.args[i].p);
      int32_t doubles = 0;
      if (p.kind == Kind::kPointer && p.dir == Dir::kOut && p.code == kF64) doubles = p.count;
      if (p.kind == Kind::kRecord && p.dir == Dir::kOut) doubles = p.doubles * p.count;
      for (int32_t k = 0; data && k < doubles; ++k)
        if (kept == kResultsOnError.end() ? !std::isnan(data[k]) : data[k] != kept->second) {
          o.problem += std::string("result '") + p.name + "' reads " + text(data[k]) + " on error " +
                       std::to_string(o.code) + "; ";
          break;
        }
    }
  }

  void fail(const Export& e, const std::string& what, const std::string& why) {
    ++failures_;
    std::printf("FAIL %s: %s: %s\n", e.name, what.c_str(), why.c_str());
    std::fflush(stdout);
  }

  // A call that succeeds: defaults from the parameter names, overridden by
  // the export's starting arguments where it has some; then, unless that
  // already succeeds, the same with square positive definite matrices and
  // vectors of their side, then with positive increasing vectors; on each,
  // every scalar in turn tries a few other small values.
  std::vector<Value> valid_values(const Export& e) {
    std::vector<Value> v;
    for (int i = 0; i < e.count; ++i) v.push_back(default_value(e.params[i]));
    fixed_.assign(e.count, false);
    std::vector<bool>& fixed = fixed_;
    starting_values(e, v, fixed);
    bool has_matrix = false;
    for (int i = 0; i < e.count; ++i) has_matrix |= e.params[i].kind == Kind::kHandle && e.params[i].rank == 2;
    auto input = [&](int i) { return !fixed[i] && is_handle_input(e.params[i]); };
    std::vector<std::pair<std::string, std::vector<Value>>> tries{{"", v}};
    if (has_matrix) {
      std::vector<Value> w = v;
      for (int i = 0; i < e.count; ++i)
        if (input(i)) w[i] = e.params[i].rank == 2 ? array(4, 4, Data::kSpd) : array(4);
      tries.push_back({" with square matrices", w});
    }
    std::vector<Value> r = tries.back().second;
    for (int i = 0; i < e.count; ++i)
      if (input(i) && e.params[i].rank == 1) r[i] = array(r[i].d0, 1, Data::kRamp);
    tries.push_back({" with increasing vectors", r});
    for (auto& [how, w] : tries) {
      if ((valid_ = call(e, w, "valid call" + how).code >= 0)) return w;
      for (int i = 0; i < e.count; ++i) {
        if (fixed[i] || !is_scalar_input(e.params[i])) continue;
        const Value keep = w[i];
        for (double x : is_real_kind(e.params[i]) ? std::vector<double>{1, 0, 2, 10, 0.1, 60, 100}
                                                  : std::vector<double>{0, 1, 2, 4, 16, 3, 60}) {
          w[i] = number(x);
          if (call(e, w, "search for a valid call" + how + ": " + e.params[i].name + "=" + text(x)).code >= 0) {
            valid_ = true;
            return w;
          }
        }
        w[i] = keep;
      }
    }
    return v;
  }

  // The export's entries in the starting-argument table: each named
  // parameter takes its value and keeps it through the search. A name the
  // export lacks fails the run, unless marked optional with a leading '?'.
  void starting_values(const Export& e, std::vector<Value>& v, std::vector<bool>& fixed) {
    const std::string me = std::string(" ") + e.name + " ";
    for (const StartingArguments& s : kStartingArguments) {
      std::string names = " ";
      names += s.names;
      names += ' ';
      if (names.find(me) == std::string::npos) continue;
      const std::string all = s.values;
      size_t at = 0;
      while (at < all.size()) {
        size_t end = all.find(' ', at);
        if (end == std::string::npos) end = all.size();
        std::string item = all.substr(at, end - at);
        at = end + 1;
        const bool optional = !item.empty() && item[0] == '?';
        if (optional) item = item.substr(1);
        const size_t eq = item.find('=');
        if (item.empty() || eq == std::string::npos) continue;
        int i = 0;
        while (i < e.count && item.compare(0, eq, e.params[i].name) != 0) ++i;
        if (i == e.count && optional) continue;
        if (i == e.count || !parse_value(e.params[i], item.substr(eq + 1), v[i])) {
          fail(e, "starting arguments", "cannot use '" + item + "'");
          continue;
        }
        fixed[i] = true;
      }
    }
  }

  // "12.5" for a scalar; "ROWS[xCOLS][/DATA]" for a handle, DATA one of
  // ramp, spd, zero, a number that every element takes, or comma-separated
  // elements in order.
  static bool parse_value(const Param& p, const std::string& s, Value& out) {
    char* end = nullptr;
    if (p.kind != Kind::kHandle) {
      const double x = std::strtod(s.c_str(), &end);
      if (end == s.c_str() || *end) return false;
      out = number(x);
      return true;
    }
    const long d0 = std::strtol(s.c_str(), &end, 10);
    long d1 = 1;
    if (*end == 'x') d1 = std::strtol(end + 1, &end, 10);
    Data d = Data::kSmooth;
    double constant = 0;
    std::vector<double> list;
    if (*end == '/') {
      const std::string tag = end + 1;
      if (tag == "ramp") d = Data::kRamp;
      else if (tag == "spd") d = Data::kSpd;
      else if (tag == "zero") d = Data::kZero;
      else {
        const char* at = tag.c_str();
        for (;;) {
          char* tail = nullptr;
          const double x = std::strtod(at, &tail);
          if (tail == at || (*tail && *tail != ',')) return false;
          list.push_back(x);
          if (!*tail) break;
          at = tail + 1;
        }
        if (list.size() == 1) constant = list[0], list.clear();
        d = Data::kConst;
      }
    } else if (*end) {
      return false;
    }
    out = array(static_cast<int32_t>(d0), static_cast<int32_t>(d1), d);
    out.number = constant;
    out.list = list;
    return true;
  }

  // Every parameter in turn takes each of its adversarial values, the others
  // keeping their valid ones.
  void sweep_arguments(const Export& e, const std::vector<Value>& base) {
    int n = 0;
    auto with = [&](int i, const Value& v, const std::string& what) {
      if (light_ && n++ % 4 != 0) return;
      std::vector<Value> values = base;
      values[i] = v;
      call(e, values, std::string(e.params[i].name) + ": " + what);
    };
    for (int i = 0; i < e.count; ++i) {
      const Param& p = e.params[i];
      if (p.kind == Kind::kHandle) handle_cases(p, [&](const Value& v, const std::string& w) { with(i, v, w); });
      else if (p.kind == Kind::kSlot) with(i, tagged(Value::kNullPointer), "null slot pointer");
      else if (is_scalar_input(p)) scalar_cases(p, [&](const Value& v, const std::string& w) { with(i, v, w); });
      else if (p.kind == Kind::kRecord && p.dir == Dir::kInOut)
        for (int byte : {0xa5, 0xff, 0x7f}) {
          Value v = number(byte);
          v.tag = Value::kBytes;
          with(i, v, "every byte " + std::to_string(byte));
        }
    }
    if (!light_) scalar_pairs(e, base);
    // All inputs empty at once, and all of length 1.
    std::vector<Value> empty = base, single = base;
    bool any = false;
    for (int i = 0; i < e.count; ++i)
      if (is_handle_input(e.params[i])) {
        empty[i] = tagged(Value::kCounts, 0, 0);
        single[i] = array(1, 1);
        any = true;
      }
    if (any) {
      call(e, empty, "every input empty");
      call(e, single, "every input of one element");
    }
  }

  template <class F> static void handle_cases(const Param& p, F with) {
    const bool two = p.rank == 2;
    with(tagged(Value::kNullMaster), "null master pointer");
    with(tagged(Value::kCounts, 0, two ? 4 : 0), "count 0");
    with(tagged(Value::kCounts, -1, two ? 4 : 0), "count -1");
    with(tagged(Value::kCounts, kMin32, two ? 4 : 0), "count INT32_MIN");
    if (two) {
      with(tagged(Value::kCounts, 4, 0), "columns 0");
      with(tagged(Value::kCounts, 4, -1), "columns -1");
      with(tagged(Value::kCounts, 4, kMin32), "columns INT32_MIN");
      with(tagged(Value::kCounts, -1, -1), "rows and columns -1");
    }
    // A host never passes a null output handle: it could not see the block
    // an export made for it.
    if (p.dir == Dir::kOut) {
      with(array(40, 7), "a larger output block");
      return;
    }
    with(tagged(Value::kNullHandle), "null handle");
    const int32_t lengths[][2] = {{1, 1}, {2, 1}, {3, 5}, {15, 3}, {17, 2}, {64, 1}};
    for (auto& l : lengths)
      with(array(l[0], l[1]), "sizes " + std::to_string(l[0]) + (two ? " x " + std::to_string(l[1]) : ""));
    if (two) with(array(1, 16), "sizes 1 x 16");
    for (int d = 1; d <= static_cast<int>(Data::kMixed); ++d)
      with(array(16, 4, static_cast<Data>(d)), std::string("data: ") + name_of(static_cast<Data>(d)));
  }

  // Every pair of scalars at once over a few values each, so that a selector
  // meets each odd parameter.
  void scalar_pairs(const Export& e, const std::vector<Value>& base) {
    auto values = [](const Param& p) {
      return is_real_kind(p) ? std::vector<double>{kNaN, kInf, -kInf, 0.0, -1.0, kMax, 1e-300, 0.5}
                             : std::vector<double>{-1, 0, 1, 2, 3, 61, 2147483647.0, -2147483648.0};
    };
    for (int i = 0; i < e.count; ++i)
      for (int j = i + 1; j < e.count; ++j) {
        if (!is_scalar_input(e.params[i]) || !is_scalar_input(e.params[j])) continue;
        for (double a : values(e.params[i]))
          for (double b : values(e.params[j])) {
            std::vector<Value> v = base;
            v[i] = number(a);
            v[j] = number(b);
            call(e, v, std::string(e.params[i].name) + "=" + text(a) + ", " + e.params[j].name + "=" + text(b));
          }
      }
  }

  template <class F> static void scalar_cases(const Param& p, F with) {
    if (is_real_kind(p)) {
      for (double x : {kNaN, kInf, -kInf, 0.0, -1.0, 1.0, kMax, -kMax, kDenormal, 1e-300, 1e300})
        with(number(x), text(x));
    } else if (p.kind == Kind::kByte || (p.kind == Kind::kPointer && p.code == kU8)) {
      for (double x : {0, 1, 2, 255}) with(number(x), text(x));
    } else if (p.kind == Kind::kUInt || (p.kind == Kind::kPointer && p.code == kU32)) {
      for (double x : {0.0, 1.0, 2.0, 3.0, 1000.0, 2147483647.0, 4294967295.0}) with(number(x), text(x));
    } else {
      // Small values reach every selector and mode of today's families.
      for (double x = -2; x <= 64; ++x) with(number(x), text(x));
      for (double x : {100.0, 1000.0, 65536.0, 2147483647.0, -2147483648.0}) with(number(x), text(x));
    }
  }

  // A call site used again with the same length, then with another one.
  void sweep_slots(const Export& e, const std::vector<Value>& base) {
    bool has_slot = false;
    for (int i = 0; i < e.count; ++i) has_slot |= e.params[i].kind == Kind::kSlot;
    if (!has_slot) return;
    const int64_t live = jqrt_live_blocks();
    {
      Frame f(e);
      const std::vector<Value> other = other_length(e, base);
      call(e, base, "call site: first call", &f);
      call(e, base, "call site: same length again", &f);
      call(e, other, "call site: another length", &f);
      call(e, base, "call site: first length again", &f);
      f.release();
    }
    if (jqrt_live_blocks() != live) fail(e, "call site", "a host block was left behind");
    if (faults_ && valid_) sweep_slot_faults(e, base, other_length(e, base));
  }

  std::vector<Value> other_length(const Export& e, const std::vector<Value>& base) const {
    std::vector<Value> other = base;
    for (int i = 0; i < e.count; ++i)
      if (is_handle_input(e.params[i])) other[i] = array(17, 3);
    return other;
  }

  // A call site that holds the state of one length, asked for another with
  // each of that call's resizes and allocations failing in turn: -20001, and
  // the call site still serves both lengths afterwards and frees everything.
  void sweep_slot_faults(const Export& e, const std::vector<Value>& base, const std::vector<Value>& other) {
    if (e.result == Result::kVoid || e.result == Result::kValue) return;
    int64_t resizes = 0, allocations = 0;
    const int64_t live = jqrt_live_blocks();
    {
      Frame f(e);
      call(e, base, "call site faults: warm-up", &f);
      const int64_t r = jqrt_resize_calls(), a = jq::scratch_allocations();
      const bool valid = call(e, other, "call site faults: another length", &f).code >= 0;
      resizes = valid ? jqrt_resize_calls() - r : 0;
      allocations = valid ? jq::scratch_allocations() - a : 0;
      f.release();
    }
    const int64_t most = light_ ? 2 : 200;
    for (int pass = 0; pass < 2; ++pass) {
      const int64_t count = std::min(pass == 0 ? resizes : allocations, most);
      for (int64_t k = 1; k <= count; ++k) {
        const std::string what = std::string("call site, another length: ") +
                                 (pass == 0 ? "host resize " : "internal allocation ") + std::to_string(k) + " of " +
                                 std::to_string(pass == 0 ? resizes : allocations) + " fails";
        Frame f(e);
        call(e, base, what + ": first length", &f);
        if (pass == 0) jqrt_fail_resize(static_cast<int32_t>(k));
        else jq::fail_scratch_allocation(k);
        const Outcome o = call(e, other, what, &f);
        jqrt_fail_resize(0);
        jq::fail_scratch_allocation(0);
        if (o.code != -20001) fail(e, what, "code " + std::to_string(o.code) + " instead of -20001");
        if (call(e, other, what + ", then that length", &f).code < 0) fail(e, what, "the next call failed");
        if (call(e, base, what + ", then the first length", &f).code < 0) fail(e, what, "the first length failed");
        f.release();
      }
    }
    if (jqrt_live_blocks() != live) fail(e, "call site faults", "a host block was left behind");
  }

  // The valid call with each host resize, then each internal allocation,
  // failing in turn: -20001, outputs empty, and the next call succeeds.
  // The valid call with its generated inputs longer: vectors of 97
  // (prime) and matrices of 97 rows, or, where the call pairs square
  // matrices with vectors of their side, side 12.
  std::vector<Value> larger_values(const Export& e, const std::vector<Value>& base) const {
    bool square = false;
    for (int i = 0; i < e.count; ++i)
      square |= !fixed_[i] && is_handle_input(e.params[i]) && e.params[i].rank == 2 && base[i].data == Data::kSpd;
    std::vector<Value> v = base;
    for (int i = 0; i < e.count; ++i) {
      if (fixed_[i] || !is_handle_input(e.params[i]) || base[i].tag != Value::kArray) continue;
      if (square) {
        if (base[i].d0 == 4) v[i].d0 = 12;
        if (e.params[i].rank == 2 && base[i].d1 == 4) v[i].d1 = 12;
      } else {
        v[i].d0 = 97;
      }
    }
    return v;
  }

  void sweep_faults(const Export& e, const std::vector<Value>& base, const std::string& label) {
    if (e.result == Result::kVoid || e.result == Result::kValue) return;
    int64_t resizes = 0, allocations = 0;
    {
      Frame f(e);
      f.make(base);
      const int64_t r = jqrt_resize_calls(), a = jq::scratch_allocations();
      std::snprintf(g_current, sizeof g_current, "%s: counting resizes and allocations", e.name);
      const int64_t result = e.call(f.args.data());
      resizes = jqrt_resize_calls() - r;
      allocations = jq::scratch_allocations() - a;
      release_object(e, result);
    }
    const int64_t most = light_ ? 2 : 200;
    for (int pass = 0; pass < 2; ++pass) {
      const int64_t count = std::min(pass == 0 ? resizes : allocations, most);
      for (int64_t k = 1; k <= count; ++k) {
        const std::string what = label + (pass == 0 ? "host resize " : "internal allocation ") + std::to_string(k) +
                                 " of " + std::to_string(pass == 0 ? resizes : allocations) + " fails";
        if (pass == 0) jqrt_fail_resize(static_cast<int32_t>(k));
        else jq::fail_scratch_allocation(k);
        const Outcome o = call(e, base, what);
        jqrt_fail_resize(0);
        jq::fail_scratch_allocation(0);
        if (o.code != -20001) fail(e, what, "code " + std::to_string(o.code) + " instead of -20001");
        if (call(e, base, what + ", then a call").code < 0) fail(e, what, "the next call failed");
      }
    }
  }

  bool light_, faults_, verbose_;
  bool valid_ = false;
  std::vector<bool> fixed_;  // the parameters the starting-argument table set
  int64_t cases_ = 0, cases_before_ = 0;
  int failures_ = 0;
  int without_valid_ = 0;
};

}  // namespace

int main(int argc, char** argv) {
  std::set<std::string> families;
  bool light = false, faults = true, list = false, verbose = false;
  for (int i = 1; i < argc; ++i) {
    const std::string a = argv[i];
    if (a == "--family" && i + 1 < argc) families.insert(argv[++i]);
    else if (a == "--light") light = true;
    else if (a == "--faults") faults = true;
    else if (a == "--no-faults") faults = false;
    else if (a == "--list") list = true;
    else if (a == "--verbose") verbose = true;
    else {
      std::fprintf(stderr, "unknown argument %s\n", a.c_str());
      return 2;
    }
  }
  if (list) {
    for (const Export& e : kExports) std::printf("%s %s\n", e.family, e.name);
    return 0;
  }
  std::signal(SIGSEGV, on_signal);
  std::signal(SIGFPE, on_signal);
  std::signal(SIGILL, on_signal);
  std::signal(SIGABRT, on_signal);
#ifdef JQ_SWEEP_SANITIZED
  __sanitizer_set_death_callback(on_sanitizer_death);
  g_limit_ms.store(120000);
#else
  (void)on_sanitizer_death;
#endif
  std::thread(watchdog).detach();
  // Counts of 2^31-1 must fail like an exhausted heap instead of
  // allocating gigabytes: 64 MiB is far above what any valid case needs.
  jqrt_limit_block(size_t{64} << 20);
  jq::limit_scratch_bytes(size_t{64} << 20);

  const auto start = std::chrono::steady_clock::now();
  Sweep sweep(light, faults, verbose);
  int exports = 0;
  for (const Export& e : kExports) {
    if (!families.empty() && !families.count(e.family)) continue;
    ++exports;
    sweep.run(e);
  }
  const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  std::printf("%d exports (%d without a valid call), %" PRId64 " cases, %d failures, %.1f s\n", exports,
              sweep.without_valid_call(), sweep.cases(), sweep.failures(), seconds);
  if (exports == 0) {
    std::printf("no export in the selected families\n");
    return 1;
  }
  return sweep.failures() == 0 ? 0 : 1;
}
