#include "linalg/module.hpp"

#include <atomic>
#include <cstdio>
#include <cstring>

#include "frame/platform.hpp"

namespace jq::linalg {
namespace {

constexpr const char* kNames[] = {
#define JQ_NAME(name) #name,
    JQ_BLAS_ROUTINES(JQ_NAME)
#undef JQ_NAME
};
constexpr int kCount = static_cast<int>(Routine::count);
static_assert(sizeof kNames / sizeof kNames[0] == kCount);

std::atomic<platform::Module> g_module{nullptr};
std::atomic<bool> g_attached{false};
bool g_attach_result = false;
void* g_routines[kCount];
std::atomic<bool> g_bound{false};
std::atomic<int64_t> g_thread_releases{0};

constexpr size_t kPath = 512;

// Appends text to a path; false when it would not fit.
bool append(char* path, const char* text) {
  const size_t n = std::strlen(path), m = std::strlen(text);
  if (n + m >= kPath) return false;
  std::memcpy(path + n, text, m + 1);
  return true;
}

bool ends_with_separator(const char* path) {
  const size_t n = std::strlen(path);
  return n > 0 && path[n - 1] == platform::kSeparator;
}

bool append_separator(char* path) {
  const char sep[2] = {platform::kSeparator, 0};
  return ends_with_separator(path) || append(path, sep);
}

// A path file holds the bare directory, byte for byte: nothing is trimmed.
bool read_path_file(const char* file, char* dir) {
  std::FILE* f = std::fopen(file, "rb");
  if (!f) return false;
  const size_t n = std::fread(dir, 1, 498, f);
  std::fclose(f);
  if (n == 0) return false;
  dir[n] = 0;
  return append_separator(dir);
}

// Forces the module's lazy start-up to happen now rather than in the first
// caller's export.
void warm_up(platform::Module m) {
  using Gemm = void(int, int, int, int, int, int, double, const double*, int, const double*, int, double, double*,
                    int);
  auto* gemm = reinterpret_cast<Gemm*>(platform::symbol(m, "cblas_dgemm"));
  if (!gemm) return;
  double a[20 * 20] = {}, c[20 * 20] = {};
  gemm(101, 111, 111, 20, 20, 20, 1.0, a, 20, a, 20, 0.0, c, 20);
}

bool load_from(const char* dir, char* searched, size_t capacity) {
  char path[kPath] = {};
  std::snprintf(searched + std::strlen(searched), capacity - std::strlen(searched), "%s%s", *searched ? ", " : "",
                dir);
  if (!append(path, dir) || !append(path, platform::kBlasModuleFile)) return false;
  platform::Module m = platform::load_path(path);
  if (!m) return false;
  g_module.store(m);
  warm_up(m);
  return true;
}

bool search(char* searched, size_t capacity) {
  const char sep[2] = {platform::kSeparator, 0};
  char own[kPath] = {};
  const bool have_own = platform::own_directory(own, kPath - 1) && append_separator(own);
  char file[kPath], dir[kPath];
  if (have_own) {
    // A path file beside the library is authoritative: its directory or nothing.
    std::snprintf(file, kPath, "%smklpath", own);
    if (read_path_file(file, dir)) return load_from(dir, searched, capacity);
    if (load_from(own, searched, capacity)) return true;
    std::snprintf(file, kPath, "%s..%sMKL%sJQBuildMKLPath", own, sep, sep);
    if (read_path_file(file, dir) && load_from(dir, searched, capacity)) return true;
  }
  if (!platform::installer_directory(dir, 500)) {
    std::snprintf(searched + std::strlen(searched), capacity - std::strlen(searched), "%sno installer directory",
                  *searched ? ", " : "");
    return false;
  }
  if (!append_separator(dir) || !append(dir, "MKL") || !append(dir, sep) || !append(dir, "JQ170000_BLASLAPACK") ||
      !append(dir, sep))
    return false;
  return load_from(dir, searched, capacity);
}

}  // namespace

bool attach(char* searched, size_t capacity) {
  if (g_attached.exchange(true)) return g_attach_result;
  if (capacity) *searched = 0;
  g_attach_result = search(searched, capacity);
  return g_attach_result;
}

void detach() {
  g_bound.store(false);
  platform::unload(g_module.exchange(nullptr));
}

void* const* routines() {
  if (g_bound.load(std::memory_order_acquire)) {
    platform::watch_thread();
    return g_routines;
  }
  platform::Module m = g_module.load();
  if (!m) return nullptr;
  // Threads binding at once store the same pointers.
  for (int i = 0; i < kCount; ++i) {
    g_routines[i] = platform::symbol(m, kNames[i]);
    if (!g_routines[i]) return nullptr;
  }
  g_bound.store(true, std::memory_order_release);
  platform::watch_thread();
  return g_routines;
}

void thread_detach() {
  // Only a thread that used the module reaches here with the routines bound.
  if (!g_module.load() || !g_bound.load(std::memory_order_acquire)) return;
  reinterpret_cast<void (*)()>(g_routines[static_cast<int>(Routine::MKL_Thread_Free_Buffers)])();
  g_thread_releases.fetch_add(1);
}

int64_t thread_releases() { return g_thread_releases.load(); }

}  // namespace jq::linalg
