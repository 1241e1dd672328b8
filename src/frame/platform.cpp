// The one place where Windows and Linux differ.
#include "frame/platform.hpp"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#include <pthread.h>
#endif

namespace jq::platform {

#if defined(_WIN32)

Module host_process_module() {
  HMODULE self = GetModuleHandleA(nullptr);
  if (GetProcAddress(self, "gJQRTVersion") || GetProcAddress(self, "AZNewHandle")) return self;
  return nullptr;
}

Module loaded_module(const char* base_name) {
  char name[64];
  std::snprintf(name, sizeof name, "%s.dll", base_name);
  return GetModuleHandleA(name);
}

void* symbol(Module m, const char* name) {
  return m ? reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(m), name)) : nullptr;
}

void fatal(const char* text) {
  MessageBoxA(nullptr, text, "Fatal Error", 0x2010);
  ExitProcess(1);
}

bool mutex_create(Mutex& m) {
  m.impl = CreateMutexA(nullptr, FALSE, nullptr);
  return m.impl != nullptr;
}
void mutex_lock(Mutex& m) { WaitForSingleObject(static_cast<HANDLE>(m.impl), INFINITE); }
void mutex_unlock(Mutex& m) { ReleaseMutex(static_cast<HANDLE>(m.impl)); }

#else

Module host_process_module() {
  void* self = dlopen(nullptr, RTLD_LAZY);
  if (self && (dlsym(self, "gJQRTVersion") || dlsym(self, "AZNewHandle"))) return self;
  return nullptr;
}

Module loaded_module(const char* base_name) {
  char name[64];
  std::snprintf(name, sizeof name, "lib%s.so", base_name);
  return dlopen(name, RTLD_LAZY | RTLD_NOLOAD);
}

void* symbol(Module m, const char* name) { return m ? dlsym(m, name) : nullptr; }

void fatal(const char* text) {
  std::fprintf(stderr, "Fatal Error: %s\n", text);
  std::fflush(stderr);
  std::_Exit(1);
}

bool mutex_create(Mutex& m) {
  auto* mu = static_cast<pthread_mutex_t*>(std::malloc(sizeof(pthread_mutex_t)));
  if (!mu || pthread_mutex_init(mu, nullptr) != 0) {
    std::free(mu);
    return false;
  }
  m.impl = mu;
  return true;
}
void mutex_lock(Mutex& m) { pthread_mutex_lock(static_cast<pthread_mutex_t*>(m.impl)); }
void mutex_unlock(Mutex& m) { pthread_mutex_unlock(static_cast<pthread_mutex_t*>(m.impl)); }

#endif

}  // namespace jq::platform
