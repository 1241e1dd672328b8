"""jqanlys from Python: the analysis library's exports over numpy arrays.

Two layers:
- `jqanlys.exports`: every export of the public header, bound automatically
  (arrays in, arrays out, JQError on a negative code), under its C name;
  `unbound` names any declaration that could not be bound, with the reason.
- Functions in the style of scipy over them: `fft`, `ifft`, `rfft`,
  `spectrum`, `cross_spectrum`, `fft2`, `ifft2`, `dct`, `idct`, `dst`,
  `idst`, `hilbert`, `hartley`, and the modules `windows`, `noise`,
  `waveforms`, `special`, `stats`, `measure`, `filters` (FIR), `signal`
  (convolution and correlation), `integrate` and `linalg`.

The shared libraries and the header are found through JQANLYS_LIBDIR and
JQANLYS_INCLUDE, else the installed tree, else the source tree's build."""
import types as _types

from . import _binding, _header, _loader
from .errors import JQError, JQWarning, MESSAGES, message
from ._binding import Slot

lib, _rt = _loader.load()
_structs, _decls, unbound = _header.parse(_loader.include_dir())
_bound = _binding.Binding(lib, _rt, _structs, _decls)
runtime = _bound.rt
for _name in _bound.missing:
    unbound[_name] = "declared in the header but not exported by the library"

exports = _types.SimpleNamespace(**_bound.functions)
exports.__doc__ = "Every export of the public header, by its C name."
structs = _types.SimpleNamespace(**_bound.structs)
release_defaults = _bound.release_defaults

from .transforms import (fft, ifft, rfft, irfft, fft2, ifft2, spectrum, cross_spectrum,  # noqa: E402
                         dct, idct, dst, idst, hilbert, ihilbert, hartley, ihartley)
from . import windows, noise, waveforms, special, stats, measure, filters, signal, integrate, linalg  # noqa: E402,F401

__all__ = ["JQError", "JQWarning", "MESSAGES", "message", "Slot", "exports", "structs", "lib", "runtime",
           "release_defaults", "fft", "ifft", "rfft", "irfft", "fft2", "ifft2", "spectrum", "cross_spectrum",
           "dct", "idct", "dst", "idst", "hilbert", "ihilbert", "hartley", "ihartley",
           "windows", "noise", "waveforms", "special", "stats", "measure",
           "filters", "signal", "integrate", "linalg"]
