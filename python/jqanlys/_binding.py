"""Binds every export of the public header as a Python function over numpy
arrays.

For each declaration a small Python function is generated (as namedtuple
does) that converts its inputs, moves arrays into host handles, calls the
export, raises on an error code and returns the outputs. Generating the code
keeps the per-call cost close to that of a hand-written wrapper.

Rules, read from the declaration:
- JQ_IN arrays, scalars and pointed-to scalars are arguments; JQ_OUT ones are
  returned; JQ_INOUT ones are both (a new array or value is returned; the
  caller's array is not changed).
- Instance slots (JQSlot) and state structs are optional trailing keyword
  arguments. A slot is a `Slot`; without one, each export keeps its own slot
  per thread. A JQ_INOUT struct is changed in place, so a state object passed
  on every call continues its stream.
- The code is the result or, where the export has an `error` (or `status`)
  int32 out-parameter, that parameter (with a failed host resize as -20001).
  Negative codes raise JQError; positive codes warn with JQWarning.
"""
import atexit
import ctypes
import keyword
import operator
import threading
import warnings

import numpy as np

from .errors import JQError, JQWarning

_C = {
    "double": ctypes.c_double, "float": ctypes.c_float, "int32_t": ctypes.c_int32, "uint32_t": ctypes.c_uint32,
    "uint8_t": ctypes.c_uint8, "int16_t": ctypes.c_int16, "uint16_t": ctypes.c_uint16, "int64_t": ctypes.c_int64,
    "uint64_t": ctypes.c_uint64, "size_t": ctypes.c_size_t, "int8_t": ctypes.c_int8, "int": ctypes.c_int,
}
_VP = ctypes.c_void_p.from_address
_I32 = ctypes.c_int32.from_address
# Blocks larger than this are given back after a call rather than kept for
# the next one.
_KEEP_BYTES = 1 << 22


def _report(code, export):
    if code < 0:
        raise JQError(code, export)
    warnings.warn(JQWarning(code, export), stacklevel=3)


class Runtime:
    """The host runtime's handle functions, typed."""

    def __init__(self, rt):
        self.rt = rt
        H = ctypes.c_void_p
        for name, res, args in (
                ("jqrt_make", H, [ctypes.c_int32] * 4), ("jqrt_free", None, [H]),
                ("NumericArrayResize", ctypes.c_int32, [ctypes.c_int32, ctypes.c_int32, H, ctypes.c_size_t]),
                ("jqrt_live_blocks", ctypes.c_int64, []), ("jqrt_fail_resize", None, [ctypes.c_int32]),
                ("jqrt_cleanup_count", ctypes.c_int32, []), ("jqrt_dispose_instance", ctypes.c_int32, [H])):
            f = getattr(rt, name)
            f.restype, f.argtypes = res, args
            setattr(self, name, f)


class _Handle:
    """One host handle and a cached numpy view of its block's elements."""
    __slots__ = ("cell", "addr", "vkey", "view")

    def __init__(self, rt, code, rank):
        self.cell = ctypes.c_void_p(rt.jqrt_make(code, rank, 0, 0))
        if not self.cell.value:
            raise MemoryError("jqanlys: the host runtime could not make a handle")
        self.addr = self.cell.value
        self.vkey = self.view = None


class _Pool:
    """Handles of one element type and rank, kept between calls so that a
    repeated call reuses its blocks. Safe across threads: a handle is popped
    by one call and pushed back when it is done."""

    def __init__(self, rt, code, rank, dtype):
        self.rt, self.code, self.rank = rt, code, rank
        self.dtype = np.dtype(dtype)
        # Where the elements start in a block (after the sizes, aligned).
        self.offset = 8 if rank == 2 or self.dtype in (np.float64, np.complex128) else 4
        self.free = []
        self.empty = np.empty((0,) * rank, self.dtype)

    def get(self):
        try:
            return self.free.pop()
        except IndexError:
            return _Handle(self.rt, self.code, self.rank)

    def put(self, h):
        if h.view is not None and h.view.nbytes > _KEEP_BYTES:
            self._resize(h, (0,) * self.rank)
            h.view = h.vkey = None
        if len(self.free) < 4:
            self.free.append(h)
        else:
            self.rt.jqrt_free(h.addr)

    def _shape(self, blk):
        if self.rank == 1:
            return (max(_I32(blk).value, 0),)
        return (max(_I32(blk).value, 0), max(_I32(blk + 4).value, 0))

    def _resize(self, h, shape):
        count = shape[0] if self.rank == 1 else shape[0] * shape[1]
        if self.rt.NumericArrayResize(self.code, self.rank, ctypes.addressof(h.cell), count):
            raise MemoryError("jqanlys: the host runtime could not resize a handle")
        blk = _VP(h.addr).value
        for i, s in enumerate(shape):
            _I32(blk + 4 * i).value = s
        return blk

    def _view(self, h, blk, shape):
        if h.vkey != (blk, shape):
            nbytes = self.dtype.itemsize * (shape[0] if self.rank == 1 else shape[0] * shape[1])
            if nbytes:
                buf = (ctypes.c_char * nbytes).from_address(blk + self.offset)
                h.view = np.frombuffer(buf, self.dtype).reshape(shape)
            else:
                h.view = np.empty(shape, self.dtype)
            h.vkey = (blk, shape)
        return h.view

    def fill(self, h, a):
        """Makes the handle hold a copy of array a (of this type and rank)."""
        blk = _VP(h.addr).value
        shape = a.shape
        if h.vkey != (blk, shape) or self._shape(blk) != shape:
            if not blk or self._shape(blk) != shape:
                blk = self._resize(h, shape)
            self._view(h, blk, shape)
        np.copyto(h.view, a)

    def clear(self, h):
        """Sets the handle's sizes to 0, keeping its block for reuse."""
        blk = _VP(h.addr).value
        if blk:
            for i in range(self.rank):
                _I32(blk + 4 * i).value = 0

    def read(self, h):
        """A copy of the handle's elements."""
        blk = _VP(h.addr).value
        if not blk:
            return self.empty.copy()
        return self._view(h, blk, self._shape(blk)).copy()


def _as_array(x, dtype, rank):
    """x as a numpy array of the element type and rank an export expects."""
    if x is None:
        return np.empty((0,) * rank, dtype)
    a = x if type(x) is np.ndarray else np.asarray(x)
    if a.dtype != dtype:
        a = a.astype(dtype, casting="same_kind")
    if a.ndim != rank:
        if rank == 1 and a.ndim == 0:
            a = a.reshape(1)
        else:
            raise ValueError(f"expected a {rank}-D array, got {a.ndim}-D")
    if max(a.shape, default=0) > 0x7FFFFFFF:
        raise ValueError("array dimension beyond the int32 range")
    return a


def _as_vector(x, dtype, count, inout):
    """x as a contiguous array of `count` elements; an in-out array of the
    right kind is used as it is, so the export updates it in place."""
    if inout and type(x) is np.ndarray and x.dtype == dtype and x.flags.c_contiguous and x.flags.writeable:
        a = x
    else:
        a = np.array(x if x is not None else np.zeros(count or 0, dtype), dtype=dtype, copy=True).reshape(-1)
    if count is not None and a.size != count:
        raise ValueError(f"expected {count} elements, got {a.size}")
    return a


def _int(v, lo, hi):
    v = operator.index(v)
    if not lo <= v <= hi:
        raise OverflowError(f"{v} outside [{lo}, {hi}]")
    return v


class Slot:
    """An instance slot: state the library keeps for one call site between
    calls (for instance a transform's tables). Released by release(), by
    leaving a `with` block, or when the object is collected."""

    def __init__(self):
        self.cell = ctypes.c_void_p()
        self.addr = ctypes.addressof(self.cell)
        self._release = None

    @property
    def held(self):
        return bool(self.cell.value)

    def release(self):
        if self.cell.value and self._release is not None:
            self._release(self)
        self.cell.value = None

    close = release

    def __enter__(self):
        return self

    def __exit__(self, *exc):
        self.release()

    def __del__(self):
        try:
            self.release()
        except Exception:  # interpreter shutting down
            pass


def _struct_class(s):
    def __repr__(self):
        return f"{s.name}(" + ", ".join(f"{n}={getattr(self, n)!r}" for n, _, _ in s.fields) + ")"

    def _asdict(self):
        return {n: getattr(self, n) for n, _, _ in s.fields}

    fields = [(n, _C[t] * c if c else _C[t]) for n, t, c in s.fields]
    return type(s.name, (ctypes.Structure,), {"_fields_": fields, "__repr__": __repr__, "_asdict": _asdict})


def _pyname(name):
    # Keywords get a trailing underscore; a leading underscore is kept for the
    # generated code's own names.
    if keyword.iskeyword(name):
        return name + "_"
    return "arg" + name if name.startswith("_") else name


_INT_RANGE = {"int32_t": (-2**31, 2**31 - 1), "uint32_t": (0, 2**32 - 1), "uint8_t": (0, 255),
              "int16_t": (-2**15, 2**15 - 1), "uint16_t": (0, 2**16 - 1), "int64_t": (-2**63, 2**63 - 1),
              "uint64_t": (0, 2**64 - 1), "size_t": (0, 2**64 - 1), "int8_t": (-128, 127), "int": (-2**31, 2**31 - 1)}


class Binding:
    """Every export of the header, bound. `functions` maps each C name to
    its generated Python function; `structs` each struct name to its ctypes
    class."""

    def __init__(self, lib, rt, structs, exports):
        self.lib, self.rt = lib, Runtime(rt)
        self.structs = {n: _struct_class(s) for n, s in structs.items() if not s.opaque}
        self.functions = {}
        self._defaults = []  # every default slot, released at exit
        self._lock = threading.Lock()
        self.missing = []  # declared in the header but not exported by the library
        by_name = {e.name: e for e in exports}
        for e in exports:
            if not hasattr(lib, e.name):
                self.missing.append(e.name)
                continue
            self.functions[e.name] = self._bind(e, by_name)
        atexit.register(self.release_defaults)

    def release_defaults(self):
        """Releases the slots the exports keep for callers that pass none."""
        with self._lock:
            slots, self._defaults = self._defaults, []
        for s in slots:
            s.release()

    def _releaser(self, e, by_name):
        """How a slot used by export e is released: the family's unreserve
        export for the _IDP forms, else the runtime's clean-up registration."""
        if e.name.endswith("_IDP"):
            name = "MeasurementUnreserveProc" if e.header.startswith("measure") else "TransformUnreserveProc"
            if name in by_name:
                f = getattr(self.lib, name)
                f.argtypes, f.restype = [ctypes.c_void_p], ctypes.c_int32
                return lambda slot: f(slot.addr)
            return None
        dispose = self.rt.jqrt_dispose_instance
        return lambda slot: dispose(slot.cell.value)

    def _default_slot_factory(self, releaser):
        local = threading.local()

        def default_slot():
            try:
                return local.slot
            except AttributeError:
                s = local.slot = Slot()
                s._release = releaser
                with self._lock:
                    self._defaults.append(s)
                return s
        return default_slot

    def _bind(self, e, by_name):
        fn = getattr(self.lib, e.name)
        ns = {"_fn": fn, "_report": _report, "_as_array": _as_array, "_as_vector": _as_vector, "_int": _int,
              "_byref": ctypes.byref, "_Slot": Slot, "_np": np, "_type": type, "_float": float, "_TypeError": TypeError}
        argtypes, args, required, optional, body, pre, post, outs, finals = [], [], [], [], [], [], [], [], []
        releaser = None
        for i, p in enumerate(e.params):
            name = _pyname(p.name)
            if p.kind == "array":
                pool = _Pool(self.rt, p.code, p.rank, p.dtype)
                ns[f"_pool{i}"] = pool
                argtypes.append(ctypes.c_void_p)
                pre.append(f"_h{i} = _pool{i}.get()")
                finals.append(f"_pool{i}.put(_h{i})")
                if p.is_input:
                    required.append(name)
                    ns[f"_dt{i}"] = np.dtype(p.dtype)
                    # Arrays that already fit skip the conversion call.
                    body.append(f"_a{i} = {name} if _type({name}) is _np.ndarray and {name}.dtype is _dt{i} "
                                f"and {name}.ndim == {p.rank} and {name}.size <= 0x7FFFFFFF "
                                f"else _as_array({name}, _dt{i}, {p.rank})")
                    pre.append(f"_pool{i}.fill(_h{i}, _a{i})")
                else:
                    pre.append(f"_pool{i}.clear(_h{i})")
                if p.is_output:
                    post.append(f"_o{i} = _pool{i}.read(_h{i})")
                    outs.append(f"_o{i}")
                args.append(f"_h{i}.addr")
            elif p.kind == "slot":
                releaser = releaser or self._releaser(e, by_name)
                ns["_rel"] = releaser
                ns[f"_dslot{i}"] = self._default_slot_factory(releaser)
                argtypes.append(ctypes.c_void_p)
                optional.append(name)
                body.append(f"if {name} is None: {name} = _dslot{i}()")
                body.append(f"elif {name}._release is None: {name}._release = _rel")
                args.append(f"{name}.addr")
            elif p.kind == "value":
                ctype = _C[p.ctype]
                argtypes.append(ctype)
                required.append(name)
                if p.ctype in _INT_RANGE:
                    lo, hi = _INT_RANGE[p.ctype]
                    body.append(f"{name} = _int({name}, {lo}, {hi})")
                else:
                    body.append(f"{name} = _float({name})")
                args.append(name)
            elif p.kind in ("ref", "error"):
                ctype = _C[p.ctype]
                ns[f"_t{i}"] = ctype
                argtypes.append(ctypes.POINTER(ctype))
                if p.is_input:
                    required.append(name)
                    conv = f"_int({name}, {_INT_RANGE[p.ctype][0]}, {_INT_RANGE[p.ctype][1]})" \
                        if p.ctype in _INT_RANGE else f"_float({name})"
                    body.append(f"_c{i} = _t{i}({conv})")
                else:
                    body.append(f"_c{i} = _t{i}()")
                if p.kind == "error":
                    ns["_e"] = None
                    body.append(f"_e = _c{i}")
                elif p.is_output:
                    outs.append(f"_c{i}.value")
                args.append(f"_byref(_c{i})")
            elif p.kind == "vector":
                ns[f"_dt{i}"] = np.dtype(p.dtype)
                argtypes.append(ctypes.c_void_p)
                count = p.count if isinstance(p.count, int) else _pyname(p.count)
                if p.is_input:
                    required.append(name)
                    body.append(f"_v{i} = _as_vector({name}, _dt{i}, {count}, {p.is_output})")
                else:
                    body.append(f"_v{i} = _np.zeros({count}, _dt{i})")
                if p.is_output:
                    outs.append(f"_v{i}")
                args.append(f"_v{i}.ctypes.data")
            elif p.kind == "struct":
                cls = self.structs[p.ctype]
                ns[f"_s{i}"] = cls
                argtypes.append(ctypes.POINTER(cls))
                if p.is_input:
                    optional.append(name)
                    body.append(f"if {name} is None: {name} = _s{i}()")
                    body.append(f"elif _type({name}) is not _s{i}: raise _TypeError('{name}: expected {p.ctype}')")
                else:
                    body.append(f"{name} = _s{i}()")
                    outs.append(name)
                args.append(f"_byref({name})")
            else:  # raw pointer, passed as an address or None
                argtypes.append(ctypes.c_void_p)
                required.append(name)
                args.append(name)
        fn.argtypes = argtypes
        fn.restype = None if e.result == "void" else (_C.get(e.result) or ctypes.c_void_p)
        call = f"_fn({', '.join(args)})"
        lines = [f"def {e.name}({', '.join(required + [o + '=None' for o in optional])}):"]
        lines += [f"    {b}" for b in body]
        coded = e.result == "int32_t" or e.error_param is not None
        if finals:
            lines += [f"    {s}" for s in pre if "get()" in s]
            lines.append("    try:")
            lines += [f"        {s}" for s in pre if "get()" not in s]
            ind = "        "
        else:
            ind = "    "
        lines.append(f"{ind}_r = {call}")
        if e.error_param is not None:
            lines.append(f"{ind}_code = _e.value or (-20001 if _r else 0)")
        elif coded:
            lines.append(f"{ind}_code = _r")
        if post:
            if coded:
                lines.append(f"{ind}if _code >= 0:")
                lines += [f"{ind}    {s}" for s in post]
            else:
                lines += [f"{ind}{s}" for s in post]
        if finals:
            lines.append("    finally:")
            lines += [f"        {s}" for s in finals]
        if coded:
            lines.append(f"    if _code: _report(_code, {e.name!r})")
        elif e.result != "void":
            outs.insert(0, "_r")
        if len(outs) == 1:
            lines.append(f"    return {outs[0]}")
        elif outs:
            lines.append(f"    return ({', '.join(outs)})")
        source = "\n".join(lines) + "\n"
        exec(compile(source, f"<jqanlys {e.name}>", "exec"), ns)
        f = ns[e.name]
        f.__doc__ = _doc(e, required, optional)
        f.declaration = e
        f.source = source
        return f


def _doc(e, required, optional):
    returns = [p.name for p in e.params
               if p.is_output and p.kind not in ("error", "slot") and not (p.kind == "struct" and p.is_input)]
    if e.result not in ("void", "int32_t"):
        returns.insert(0, "the result")
    return (f"{e.name}({', '.join(required + [o + '=None' for o in optional])})\n\n"
            f"Binds: {e.result} {e.name}({', '.join(p.text for p in e.params)})  [{e.header}]\n"
            f"Returns: {', '.join(returns) if returns else 'nothing'}.")
