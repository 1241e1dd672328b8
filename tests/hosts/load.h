/* Loading a module by path and finding its symbols, for the host probes. */
#ifndef JQ_TEST_LOAD_H
#define JQ_TEST_LOAD_H
#if defined(_WIN32)
#include <windows.h>
static inline void* load_module(const char* path) { return (void*)LoadLibraryA(path); }
static inline void* find_symbol(void* m, const char* name) { return (void*)GetProcAddress((HMODULE)m, name); }
static inline void* self_module(void) { return (void*)GetModuleHandleA(NULL); }
#define PROBE_EXPORT __declspec(dllexport)
#else
#include <dlfcn.h>
#include <stddef.h>
static inline void* load_module(const char* path) { return dlopen(path, RTLD_NOW | RTLD_LOCAL); }
static inline void* find_symbol(void* m, const char* name) { return dlsym(m, name); }
static inline void* self_module(void) { return dlopen(NULL, RTLD_LAZY); }
#define PROBE_EXPORT __attribute__((visibility("default")))
#endif
#endif
