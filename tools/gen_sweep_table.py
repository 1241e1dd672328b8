#!/usr/bin/env python3
"""Writes the robustness sweep's call table from the public header.

usage: gen_sweep_table.py include/jqanlys.h out.inc

Every `JQ_API` declaration of every family header that jqanlys.h includes
becomes one descriptor: its name, family (the header's stem), result kind,
parameter kinds and a thunk that calls it from an argument vector. A
parameter or result this script does not understand still yields a
descriptor, with no thunk and the reason, so that the sweep fails the export
by name instead of silently skipping it.
"""
import os
import re
import sys

HANDLES = {
    # typed handle name: (host type code, rank)
    "JQArrF64": (10, 1), "JQArrC128": (13, 1), "JQArrF32": (9, 1), "JQArrC64": (12, 1),
    "JQArrI32": (3, 1), "JQArrU32": (7, 1), "JQArrU8": (5, 1),
    "JQMatF64": (10, 2), "JQMatC128": (13, 2), "JQMatI32": (3, 2),
}
# By-value scalars: C type -> (kind, cast)
SCALARS = {
    "int32_t": ("kInt", "static_cast<int32_t>(a[{i}].i)"),
    "uint32_t": ("kUInt", "static_cast<uint32_t>(a[{i}].i)"),
    "uint8_t": ("kByte", "static_cast<uint8_t>(a[{i}].i)"),
    "int16_t": ("kInt", "static_cast<int16_t>(a[{i}].i)"),
    "uint16_t": ("kUInt", "static_cast<uint16_t>(a[{i}].i)"),
    "double": ("kReal", "a[{i}].d"),
    "float": ("kReal", "static_cast<float>(a[{i}].d)"),
}
# Element types a pointer may point at: C type -> element kind
POINTEES = {"int32_t": "kI32", "uint32_t": "kU32", "uint8_t": "kU8", "double": "kF64", "float": "kF32"}
DIRS = {"JQ_IN": "kIn", "JQ_OUT": "kOut", "JQ_INOUT": "kInOut"}


def strip_comments(text):
    text = re.sub(r"/\*.*?\*/", "", text, flags=re.S)
    return re.sub(r"//[^\n]*", "", text)


def structs_of(text):
    """Named struct typedefs: name -> list of field C types (None when opaque)."""
    out = {}
    for m in re.finditer(r"typedef\s+struct\s+\w*\s*\{(.*?)\}\s*(\w+)\s*;", text, flags=re.S):
        fields = []
        for decl in m.group(1).split(";"):
            decl = decl.strip()
            if not decl:
                continue
            ctype, names = re.match(r"(\w+)\s+(.*)", decl).groups()
            fields += [ctype] * len([n for n in names.split(",") if n.strip()])
        out[m.group(2)] = fields
    for m in re.finditer(r"typedef\s+struct\s+(\w+)\s+(\w+)\s*;", text):
        out.setdefault(m.group(2), None)
    return out


def classify(param, structs, index):
    """One parameter -> (descriptor initialiser, thunk argument) or a reason string."""
    p = param.strip()
    direction = "kNone"
    m = re.match(r"(JQ_IN|JQ_OUT|JQ_INOUT)\s+(.*)", p)
    if m:
        direction, p = DIRS[m.group(1)], m.group(2)
    m = re.match(r"(?:const\s+)?(\w+)\s*(\*?)\s*(\w+)\s*(?:\[(\d+)\])?$", p)
    if not m:
        return f"cannot read parameter '{param.strip()}'"
    ctype, star, name, count = m.groups()
    pointer = bool(star) or count is not None
    count = int(count) if count else 1
    if pointer and direction == "kNone":
        return f"pointer parameter '{name}' has no direction mark"
    if ctype in HANDLES and not pointer:
        if direction == "kNone":
            return f"handle '{name}' has no direction mark"
        code, rank = HANDLES[ctype]
        return (f'{{Kind::kHandle, Dir::{direction}, "{name}", "{ctype}", {code}, {rank}, 1, 0, 0}}',
                f"reinterpret_cast<{ctype}>(a[{index}].p)")
    if ctype == "JQSlot" and not pointer:
        return (f'{{Kind::kSlot, Dir::{direction}, "{name}", "{ctype}", 0, 0, 1, 0, 0}}', f"static_cast<JQSlot>(a[{index}].p)")
    if ctype == "JQHandle":
        return f"parameter '{name}' is an untyped JQHandle"
    if not pointer:
        if ctype in SCALARS:
            kind, cast = SCALARS[ctype]
            return (f'{{Kind::{kind}, Dir::kNone, "{name}", "{ctype}", 0, 0, 1, 0, 0}}', cast.format(i=index))
        return f"by-value parameter '{name}' of unknown type {ctype}"
    if ctype in POINTEES:
        return (f'{{Kind::kPointer, Dir::{direction}, "{name}", "{ctype}", Elem::{POINTEES[ctype]}, 0, {count}, 0, 0}}',
                f"static_cast<{ctype}*>(a[{index}].p)")
    if ctype == "void":
        return (f'{{Kind::kOpaque, Dir::{direction}, "{name}", "{ctype}", 0, 0, 1, 0, 0}}', f"a[{index}].p")
    if ctype in structs:
        fields = structs[ctype]
        if fields is None:
            return (f'{{Kind::kOpaque, Dir::{direction}, "{name}", "{ctype}", 0, 0, 1, 0, 0}}',
                    f"static_cast<{ctype}*>(a[{index}].p)")
        # A record made only of float64 fields reads as that many float64 results.
        doubles = len(fields) if fields and all(f == "double" for f in fields) else 0
        return (f'{{Kind::kRecord, Dir::{direction}, "{name}", "{ctype}", 0, 0, {count}, sizeof({ctype}), {doubles}}}',
                f"static_cast<{ctype}*>(a[{index}].p)")
    return f"pointer parameter '{name}' to unknown type {ctype}"


def result_kind(ret, structs):
    ret = ret.strip()
    if ret == "void":
        return "Result::kVoid", None
    if ret == "int32_t":
        return "Result::kCode", None
    if ret in SCALARS:
        return "Result::kValue", None
    m = re.match(r"(\w+)\s*\*$", ret)
    if m and m.group(1) in structs and structs[m.group(1)] is None:
        return "Result::kObject", m.group(1)
    return None, f"result type {ret} is not understood"


def main():
    top, out = sys.argv[1], sys.argv[2]
    base = os.path.dirname(os.path.abspath(top))
    top_text = open(top).read()
    families = re.findall(r'#include\s+"jqanlys/(\w+)\.h"', top_text)
    texts = {f: strip_comments(open(os.path.join(base, "jqanlys", f + ".h")).read()) for f in families}
    structs = structs_of(strip_comments(top_text))
    for t in texts.values():
        structs.update(structs_of(t))

    rows, thunks = [], []
    for fam in families:
        for line in texts[fam].splitlines():
            if not line.startswith("JQ_API"):
                continue
            m = re.match(r"JQ_API\s+(.+?)\s*\b(\w+)\s*\((.*)\)\s*;\s*$", line)
            if not m:
                name = re.search(r"(\w+)\s*\(", line)
                rows.append(f'{{"{name.group(1) if name else line}", "{fam}", Result::kVoid, nullptr, 0, nullptr, '
                            f'"declaration is not on one line", nullptr}}')
                continue
            ret, name, plist = m.groups()
            params = [] if plist.strip() in ("", "void") else plist.split(",")
            problem = None
            descs, casts = [], []
            for i, p in enumerate(params):
                c = classify(p, structs, i)
                if isinstance(c, str):
                    problem = problem or c
                    continue
                descs.append(c[0])
                casts.append(c[1])
            rkind, robj = result_kind(ret, structs)
            if rkind is None:
                problem = problem or robj
                robj = None
            pname = f"kParams_{name}"
            if descs:
                thunks.append(f"const Param {pname}[] = {{\n  " + ",\n  ".join(descs) + "};")
            if problem:
                rows.append(f'{{"{name}", "{fam}", Result::kVoid, nullptr, 0, nullptr, "{problem}", nullptr}}')
                continue
            call = f"{name}({', '.join(casts)})"
            if rkind == "Result::kVoid":
                body = f"{call};\n  return 0;"
            elif rkind == "Result::kValue":
                body = f"(void){call};\n  return 0;"
            elif rkind == "Result::kCode":
                body = f"return {call};"
            else:
                body = f"return reinterpret_cast<intptr_t>({call});"
            thunks.append(f"int64_t call_{name}(const Arg* a) {{\n  (void)a;\n  {body}\n}}")
            rows.append(f'{{"{name}", "{fam}", {rkind}, {pname if descs else "nullptr"}, {len(descs)}, '
                        f'call_{name}, nullptr, {f"{chr(34)}{robj}{chr(34)}" if robj else "nullptr"}}}')

    with open(out + ".tmp", "w") as f:
        f.write("// Generated by tools/gen_sweep_table.py from the public header; do not edit.\n")
        f.write("\n\n".join(thunks))
        f.write("\n\n")
        f.write("const Export kExports[] = {\n  " + ",\n  ".join(rows) + "};\n")
    os.replace(out + ".tmp", out)


if __name__ == "__main__":
    main()
