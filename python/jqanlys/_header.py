"""Reads the public C header into declarations: the structs it defines and
every export with its parameters.

The header names each handle by element type and rank (JQArrF64, JQMatC128,
...) and marks every pointer or handle parameter JQ_IN, JQ_OUT or JQ_INOUT;
a pointer to several elements is declared as an array with its count. That
is all the binding needs to know how to pass and return each argument."""
import os
import re

# Element type of a typed handle name: numpy dtype name and host type code.
ELEMENTS = {
    "F64": ("float64", 10), "C128": ("complex128", 13), "F32": ("float32", 9), "C64": ("complex64", 12),
    "I32": ("int32", 3), "U32": ("uint32", 7), "U8": ("uint8", 5),
}
# Plain C scalar types and their numpy names.
SCALARS = {
    "double": "float64", "float": "float32", "int32_t": "int32", "uint32_t": "uint32", "uint8_t": "uint8",
    "int16_t": "int16", "uint16_t": "uint16", "int64_t": "int64", "uint64_t": "uint64", "size_t": "uintp",
    "int8_t": "int8", "int": "intc",
}
DIRECTIONS = ("JQ_IN", "JQ_OUT", "JQ_INOUT")
# Names of the int32 out-parameter that carries the code in the exports that
# report through an argument (older families say error, linear algebra status).
_CODE_NAMES = ("error", "status")

_HANDLE = re.compile(r"JQ(Arr|Mat)(F64|C128|F32|C64|I32|U32|U8)$")
_COMMENTS = re.compile(r"/\*.*?\*/|//[^\n]*", re.S)
_INCLUDE = re.compile(r'#\s*include\s+"(jqanlys/[^"]+)"')
_STRUCT = re.compile(r"typedef\s+struct\s+(\w+)\s*\{(.*?)\}\s*(\w+)\s*;", re.S)
_OPAQUE = re.compile(r"typedef\s+struct\s+(\w+)\s+(\w+)\s*;")
_EXPORT = re.compile(r"\bJQ_API\s+([\w\s\*]+?)\s*\b(\w+)\s*\(([^)]*)\)\s*;", re.S)


class HeaderError(ValueError):
    """A declaration the binding cannot read."""


class Param:
    """One parameter. kind is one of: array (a host handle), slot (an
    instance slot), value (a scalar by value), ref (a pointer to one scalar),
    vector (a pointer to `count` scalars), struct (a pointer to a struct),
    error (the trailing int32 error out-parameter), pointer (anything else)."""

    def __init__(self, name, kind, direction, ctype, dtype=None, code=None, rank=None, count=None):
        self.name, self.kind, self.direction, self.ctype = name, kind, direction, ctype
        self.dtype, self.code, self.rank, self.count = dtype, code, rank, count

    @property
    def is_input(self):
        return self.direction in ("in", "inout")

    @property
    def is_output(self):
        return self.direction in ("out", "inout")

    def __repr__(self):
        return f"Param({self.name!r}, {self.kind}, {self.direction}, {self.ctype})"


class Export:
    def __init__(self, name, result, params, header):
        self.name, self.result, self.params, self.header = name, result, params, header

    @property
    def error_param(self):
        return next((p for p in self.params if p.kind == "error"), None)

    def __repr__(self):
        return f"Export({self.name!r}, {self.result!r}, {self.params!r})"


class Struct:
    def __init__(self, name, fields, opaque=False):
        self.name, self.fields, self.opaque = name, fields, opaque  # fields: [(name, C type, count)]


def _split_params(text):
    text = " ".join(text.split())
    if text in ("", "void"):
        return []
    return [p.strip() for p in text.split(",")]


def _parse_param(text, structs, export):
    p = _classify(text, structs, export)
    p.text = text
    return p


def _classify(text, structs, export):
    m = re.fullmatch(r"(?:(JQ_IN|JQ_OUT|JQ_INOUT)\s+)?(?:const\s+)?([A-Za-z_]\w*)\s*(\**)\s*([A-Za-z_]\w*)\s*(?:\[\s*(\w*)\s*\])?", text)
    if not m:
        raise HeaderError(f"{export}: cannot read parameter {text!r}")
    mark, ctype, stars, name, count = m.groups()
    direction = {"JQ_IN": "in", "JQ_OUT": "out", "JQ_INOUT": "inout", None: None}[mark]
    pointers = len(stars) + (1 if count is not None else 0)
    handle = _HANDLE.match(ctype)

    def need_mark():
        if direction is None:
            raise HeaderError(f"{export}: parameter {name!r} has no direction mark")

    if handle and pointers == 0:
        need_mark()
        dtype, code = ELEMENTS[handle.group(2)]
        return Param(name, "array", direction, ctype, dtype, code, 1 if handle.group(1) == "Arr" else 2)
    if ctype == "JQSlot" and pointers == 0:
        need_mark()
        return Param(name, "slot", direction, ctype)
    if ctype in SCALARS and pointers == 0:
        return Param(name, "value", "in", ctype, SCALARS[ctype])
    if ctype in SCALARS and pointers == 1:
        need_mark()
        if count is not None:
            if not count:
                raise HeaderError(f"{export}: parameter {name!r} has no element count")
            return Param(name, "vector", direction, ctype, SCALARS[ctype], count=int(count) if count.isdigit() else count)
        if ctype == "int32_t" and direction == "out" and name in _CODE_NAMES:
            return Param(name, "error", direction, ctype, "int32")
        return Param(name, "ref", direction, ctype, SCALARS[ctype])
    if ctype in structs and pointers == 1 and not structs[ctype].opaque:
        need_mark()
        return Param(name, "struct", direction, ctype)
    if ctype == "JQHandle":
        raise HeaderError(f"{export}: handle {name!r} has no element type (use a JQArr or JQMat name)")
    if pointers >= 1:
        return Param(name, "pointer", direction or "in", ctype)
    raise HeaderError(f"{export}: unknown type {ctype!r} of parameter {name!r}")


def _parse_fields(body, struct):
    fields = []
    for decl in body.split(";"):
        decl = " ".join(decl.split())
        if not decl:
            continue
        m = re.fullmatch(r"([A-Za-z_]\w*)\s+(.+)", decl)
        if not m or m.group(1) not in SCALARS:
            raise HeaderError(f"{struct}: cannot read field {decl!r}")
        for item in m.group(2).split(","):
            f = re.fullmatch(r"\s*([A-Za-z_]\w*)\s*(?:\[\s*(\d+)\s*\])?\s*", item)
            if not f:
                raise HeaderError(f"{struct}: cannot read field {item!r}")
            fields.append((f.group(1), m.group(1), int(f.group(2)) if f.group(2) else None))
    return fields


def parse(include_dir):
    """Structs (by name), exports (in header order) and the declarations that
    could not be read ({name: reason}) of jqanlys.h and the family headers it
    includes. One unreadable declaration does not stop the others."""
    top = os.path.join(include_dir, "jqanlys.h")
    with open(top, encoding="utf-8") as f:
        main = _COMMENTS.sub(" ", f.read())
    files = [("jqanlys.h", main)]
    for rel in _INCLUDE.findall(main):
        with open(os.path.join(include_dir, rel), encoding="utf-8") as f:
            files.append((os.path.basename(rel), _COMMENTS.sub(" ", f.read())))
    structs, exports, skipped = {}, [], {}
    for header, text in files:
        for m in _STRUCT.finditer(text):
            structs[m.group(3)] = Struct(m.group(3), _parse_fields(m.group(2), m.group(3)))
        for m in _OPAQUE.finditer(text):
            structs[m.group(2)] = Struct(m.group(2), [], opaque=True)
    for header, text in files:
        for m in _EXPORT.finditer(text):
            result = " ".join(m.group(1).replace("*", " * ").split()).replace(" *", "*")
            try:
                params = [_parse_param(p, structs, m.group(2)) for p in _split_params(m.group(3))]
            except HeaderError as e:
                skipped[m.group(2)] = str(e)
                continue
            exports.append(Export(m.group(2), result, params, header))
    return structs, exports, skipped
