// Everything that differs between Windows and Linux lives behind this header.
#pragma once

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

// An unnamed process-wide mutex; create returns false when none can be made.
struct Mutex {
  void* impl = nullptr;
};
bool mutex_create(Mutex& m);
void mutex_lock(Mutex& m);
void mutex_unlock(Mutex& m);

}  // namespace jq::platform
