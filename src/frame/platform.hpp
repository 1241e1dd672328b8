// Everything that differs between Windows and Linux lives behind this header.
#pragma once

#include <cstddef>

namespace jq::platform {

// Module handles as the platform's loader returns them (HMODULE or dlopen's).
using Module = void*;

// The running program's own module if it exports one of the host's marker
// symbols, else null.
Module host_process_module();
// An already-loaded module by its base name ("jqrt" gives jqrt.dll or
// libjqrt.so); never loads one.
Module loaded_module(const char* base_name);
// A symbol of a module, or null.
void* symbol(Module m, const char* name);
// Shows the text the platform's way and ends the process with status 1.
[[noreturn]] void fatal(const char* text);

// The directory of the file that holds this library (or the program it is
// linked into), with a trailing separator; false when it cannot be read.
bool own_directory(char* dir, size_t capacity);
// Loads a module by full path, letting it find its own dependencies beside it.
Module load_path(const char* path);
void unload(Module m);
// The directory the installer recorded for shared components (the registry
// value on Windows, $KWSHAREDDIR64 on Linux); false when there is none.
bool installer_directory(char* dir, size_t capacity);
constexpr char kSeparator =
#if defined(_WIN32)
    '\\';
#else
    '/';
#endif
// File name of the BLAS/LAPACK module on this platform.
extern const char* const kBlasModuleFile;

// Makes sure the calling thread's end is reported to the linear-algebra module
// (Windows reports every thread's end to the DLL anyway). Defined with the
// attach and detach notifications in attach.cpp.
void watch_thread();

// An unnamed process-wide mutex; create returns false when none can be made.
struct Mutex {
  void* impl = nullptr;
};
bool mutex_create(Mutex& m);
void mutex_lock(Mutex& m);
void mutex_unlock(Mutex& m);

}  // namespace jq::platform
