// jqdemo: a small host program. It loads the analysis library at run time
// the way a host does, names the project's host runtime to it through
// SetJQRTModule, and runs a few blocks of each family on generated signals.
#include <cstdio>
#include <string>

#include "demo.hpp"

int main() {
  std::string why;
  void* lib = demo::open_library(why);
  if (!lib) {
    std::fprintf(stderr, "jqdemo: %s\n", why.c_str());
    return 1;
  }
  std::printf("jqdemo: analysis library loaded and bound to the host runtime\n");
  demo::statistics(lib);
  demo::waveforms(lib);
  demo::windows(lib);
  demo::noise(lib);
  demo::spectra(lib);
  demo::dct_hilbert(lib);
  demo::transforms(lib);
  return 0;
}
