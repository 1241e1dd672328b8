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

bool own_directory(char* dir, size_t capacity) {
  HMODULE self = nullptr;
  if (!GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                          reinterpret_cast<LPCSTR>(&own_directory), &self))
    return false;
  char file[512];
  const DWORD n = GetModuleFileNameA(self, file, 511);
  if (n == 0 || n >= 511) return false;
  file[n] = 0;
  char drive[16], directory[400];
  if (_splitpath_s(file, drive, sizeof drive, directory, sizeof directory, nullptr, 0, nullptr, 0) != 0) return false;
  return std::snprintf(dir, capacity, "%s%s", drive, directory) < static_cast<int>(capacity);
}

Module load_path(const char* path) { return LoadLibraryExA(path, nullptr, LOAD_WITH_ALTERED_SEARCH_PATH); }
void unload(Module m) {
  if (m) FreeLibrary(static_cast<HMODULE>(m));
}

bool installer_directory(char* dir, size_t capacity) {
  HKEY key;
  if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Brasswick\\Common\\Installer", 0, KEY_READ, &key) != ERROR_SUCCESS)
    return false;
  char value[500];
  DWORD bytes = sizeof value - 1;
  DWORD type = 0;
  const LONG rc = RegQueryValueExA(key, "KWSHAREDDIR64", nullptr, &type, reinterpret_cast<BYTE*>(value), &bytes);
  RegCloseKey(key);
  if (rc != ERROR_SUCCESS) return false;
  value[bytes < sizeof value ? bytes : sizeof value - 1] = 0;
  return std::snprintf(dir, capacity, "%s", value) < static_cast<int>(capacity);
}

const char* const kBlasModuleFile = "JQ170000_BLASLAPACK.dll";

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

bool own_directory(char* dir, size_t capacity) {
  Dl_info info;
  if (!dladdr(reinterpret_cast<void*>(&own_directory), &info) || !info.dli_fname) return false;
  const char* slash = std::strrchr(info.dli_fname, '/');
  if (!slash) return std::snprintf(dir, capacity, "./") < static_cast<int>(capacity);
  const int n = static_cast<int>(slash - info.dli_fname) + 1;
  return std::snprintf(dir, capacity, "%.*s", n, info.dli_fname) < static_cast<int>(capacity);
}

Module load_path(const char* path) { return dlopen(path, RTLD_NOW | RTLD_LOCAL); }
void unload(Module m) {
  if (m) dlclose(m);
}

bool installer_directory(char* dir, size_t capacity) {
  const char* v = std::getenv("KWSHAREDDIR64");
  return v && std::snprintf(dir, capacity, "%s", v) < static_cast<int>(capacity);
}

const char* const kBlasModuleFile = "libJQ170000_BLASLAPACK.so";

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
