"""Finds and loads the library and the host runtime, and the public header.

Places tried, first match wins:
1. the environment: JQANLYS_LIBDIR (the directory holding both shared
   libraries) and JQANLYS_INCLUDE (the directory holding jqanlys.h);
2. the installed tree, as recorded at install time in _layout.py;
3. the source tree this package sits in: include/ and build/<preset>/bin."""
import ctypes
import os
import sys

HERE = os.path.dirname(os.path.abspath(__file__))

if sys.platform == "win32":
    LIBRARY, RUNTIME = "jqanlys.dll", "jqrt.dll"
else:
    LIBRARY, RUNTIME = "libjqanlys.so", "libjqrt.so"


def _layout():
    try:
        from . import _layout as lay
    except ImportError:
        return None, None
    return os.path.join(HERE, lay.SHARED_DIR), os.path.join(HERE, lay.INCLUDE_DIR)


def _source_tree():
    root = os.path.normpath(os.path.join(HERE, "..", ".."))
    bins = [os.path.join(root, "build", p, "bin") for p in ("linux", "bench", "windows")]
    return bins, os.path.join(root, "include")


def library_dir():
    env = os.environ.get("JQANLYS_LIBDIR")
    installed, _ = _layout()
    bins, _ = _source_tree()
    tried = [d for d in [env, installed] + bins if d]
    for d in tried:
        if os.path.isfile(os.path.join(d, LIBRARY)) and os.path.isfile(os.path.join(d, RUNTIME)):
            return os.path.normpath(d)
    raise ImportError(f"jqanlys: {LIBRARY} and {RUNTIME} not found; tried {', '.join(tried)} "
                      "(set JQANLYS_LIBDIR to the directory that holds them)")


def include_dir():
    env = os.environ.get("JQANLYS_INCLUDE")
    _, installed = _layout()
    _, source = _source_tree()
    tried = [d for d in (env, installed, source) if d]
    for d in tried:
        if os.path.isfile(os.path.join(d, "jqanlys.h")):
            return os.path.normpath(d)
    raise ImportError(f"jqanlys: jqanlys.h not found; tried {', '.join(tried)} "
                      "(set JQANLYS_INCLUDE to the directory that holds it)")


def load():
    """(library, runtime) as ctypes libraries, the library told which
    module is its host."""
    d = library_dir()
    # The runtime goes first and into the global scope, so that nothing else
    # can be taken for the host; then the library is told its module directly.
    rt = ctypes.CDLL(os.path.join(d, RUNTIME), mode=ctypes.RTLD_GLOBAL)
    lib = ctypes.CDLL(os.path.join(d, LIBRARY))
    lib.SetJQRTModule.argtypes = [ctypes.c_void_p]
    lib.SetJQRTModule.restype = None
    lib.SetJQRTModule(rt._handle)
    return lib, rt
