#!/usr/bin/env python3
"""Lists the reference BLAS/LAPACK/CBLAS sources the Windows module needs:
the routines the library binds and everything they call, one path a line,
Fortran modules first.

    closure.py <reference LAPACK source directory> <routine>...

A routine's dependencies are the names it CALLs, declares EXTERNAL or USEs.
xerbla comes from the CBLAS C sources, which replace the Fortran one."""
import os
import re
import sys

root = sys.argv[1]
roots = [r.lower() for r in sys.argv[2:]]

unit = re.compile(r"^\s*(?:[A-Z][A-Z0-9* ]*\s)?(SUBROUTINE|FUNCTION|MODULE)\s+([A-Z0-9_]+)", re.I | re.M)
call = re.compile(r"\bCALL\s+([A-Z0-9_]+)", re.I)
external = re.compile(r"^\s*EXTERNAL\s+(.+)$", re.I | re.M)
use = re.compile(r"^\s*USE\s+([A-Z0-9_]+)", re.I | re.M)

provider = {}   # routine or module name -> file
modules = set()
dirs = ["BLAS/SRC", "SRC", "SRC/DEPRECATED", "INSTALL", "CBLAS/src"]
skip = {"xerbla.f", "dlamchf77.f", "slamchf77.f"}
for d in dirs:
    full = os.path.join(root, d)
    for f in sorted(os.listdir(full)):
        if not f.lower().endswith((".f", ".f90")) or f in skip:
            continue
        # The INSTALL directory holds test programs and timers beside dlamch and lsame.
        if d == "INSTALL" and f not in ("dlamch.f", "droundup_lwork.f"):
            continue
        text = open(os.path.join(full, f), errors="replace").read()
        text = "\n".join(l for l in text.splitlines() if l[:1] not in "*cC!" or not l[:1])
        for kind, name in unit.findall(text):
            name = name.lower()
            if kind.upper() == "MODULE":
                modules.add(name)
            provider.setdefault(name, os.path.join(d, f))

texts = {}


def deps(path):
    if path not in texts:
        text = open(os.path.join(root, path), errors="replace").read()
        text = "\n".join(l for l in text.splitlines() if not l[:1] in ("*", "c", "C", "!"))
        # Fold fixed-form continuation lines so that EXTERNAL lists are whole.
        text = re.sub(r"\n     [^ 0]", " ", text)
        names = set(n.lower() for n in call.findall(text))
        for lst in external.findall(text):
            names.update(n.strip().lower() for n in lst.split(","))
        names.update(n.lower() for n in use.findall(text))
        texts[path] = names
    return texts[path]


wanted = set()
todo = list(roots)
while todo:
    name = todo.pop()
    path = provider.get(name)
    if path is None or path in wanted:
        continue
    wanted.add(path)
    todo.extend(deps(path))

missing = [r for r in roots if r not in provider]
if missing:
    sys.exit("no source for: " + " ".join(missing))
first = sorted(p for p in wanted if any(provider.get(m) == p for m in modules))
print("\n".join(first + sorted(wanted - set(first))))
