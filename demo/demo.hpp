// Shared pieces of the demo's sections: export look-up and report layout.
#pragma once
#include <cstdio>
#include <cstdlib>

#include "jqanlys.h"
#include "jqrt.hpp"
#include "loader.hpp"

namespace demo {

// An export of the library cast to its declared type; the demo stops when
// the library lacks it.
template <class Fn> Fn get(void* lib, const char* name) {
  auto f = reinterpret_cast<Fn>(find_export(lib, name));
  if (!f) {
    std::fprintf(stderr, "jqdemo: the library lacks %s\n", name);
    std::exit(1);
  }
  return f;
}
#define JQ_DEMO_GET(lib, name) demo::get<decltype(&name)>(lib, #name)

inline void section(const char* title) { std::printf("\n== %s ==\n", title); }

// One section per family, each in its own file.
void statistics(void* lib);
void waveforms(void* lib);
void windows(void* lib);
void noise(void* lib);
void spectra(void* lib);
void dct_hilbert(void* lib);
void transforms(void* lib);

}  // namespace demo
