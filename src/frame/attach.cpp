// Process and thread notifications: the BLAS/LAPACK module is loaded when the
// library is attached to a process and released when it is detached; a
// thread that ends hands its module buffers back.
#include <cstdio>

#include "frame/platform.hpp"
#include "linalg/module.hpp"

#if defined(_WIN32)
#include <windows.h>
#else
#include <pthread.h>
#endif

namespace {
char g_searched[2048];
}

#if defined(_WIN32)

// The DLL refuses to load when the module cannot be found.
extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID) {
  switch (reason) {
    case DLL_PROCESS_ATTACH:
      return jq::linalg::attach(g_searched, sizeof g_searched) ? TRUE : FALSE;
    case DLL_PROCESS_DETACH:
      jq::linalg::detach();
      break;
    case DLL_THREAD_DETACH:
      jq::linalg::thread_detach();
      break;
  }
  return TRUE;
}

namespace {
// Linked into a program instead, the library gets no DllMain calls: it
// attaches while the program starts and goes on without the module if the
// search fails, as on Linux.
struct ProgramAttach {
  ProgramAttach() {
    HMODULE self = nullptr;
    GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCSTR>(&g_searched), &self);
    if (self == GetModuleHandleA(nullptr) && !jq::linalg::attach(g_searched, sizeof g_searched))
      std::fprintf(stderr, "jqanlys: no BLAS/LAPACK module %s (searched: %s)\n", jq::platform::kBlasModuleFile,
                   g_searched);
  }
} g_program_attach;
}  // namespace

void jq::platform::watch_thread() {}

#else

namespace {
pthread_key_t g_thread_key;
bool g_have_key = false;

void thread_ended(void*) { jq::linalg::thread_detach(); }

// A shared library cannot refuse to load from its initialiser: it stays
// loaded without the module, says so once, and the exports that need the
// module report an allocation failure.
__attribute__((constructor)) void process_attach() {
  g_have_key = pthread_key_create(&g_thread_key, thread_ended) == 0;
  if (!jq::linalg::attach(g_searched, sizeof g_searched))
    std::fprintf(stderr, "jqanlys: no BLAS/LAPACK module %s (searched: %s)\n", jq::platform::kBlasModuleFile,
                 g_searched);
}

__attribute__((destructor)) void process_detach() { jq::linalg::detach(); }
}  // namespace

void jq::platform::watch_thread() {
  thread_local bool watched = false;
  if (watched || !g_have_key) return;
  watched = true;
  pthread_setspecific(g_thread_key, &g_thread_key);
}

#endif
