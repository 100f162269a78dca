#!/usr/bin/env python3
"""Fails on an include against the arrow platform <- host <- export <- tool.

Rooms are told by folder. A target folder of src/ (AfterEffects, Nuke, ...) may
include Host, Writing, Core's descriptors and its own folder; where one class derives
from or builds with another folder's, the pair is listed in CROSS. A folder inside of
one of src/ is private to it, and so are the rooms of host/.
"""
import pathlib
import re
import sys

INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.M)
PLATFORM = {"text", "mtx", "fbx", "usd", "kestrelia"}
HOST_ROOMS = {"model", "file", "import", "plane", "shapes", "scene"}

# folder -> folders whose classes it derives from or builds with
CROSS = {
    "Nuke": {"AfterEffects"},
    "HitFilm": {"AfterEffects"},
    "Lens": {"AfterEffects"},
    "Motion": {"FinalCut"},
}
# What a target folder may take of Core; the composition roots are Core's own.
CORE_FOR_TARGETS = {"ExportApi.h", "DataFormat.h", "LensExporter.h", "ExportEnvironment.h"}


def room(path):
    parts = path.parts
    if parts[0] == "platform":
        return "platform"
    if parts[0] == "src":
        return "Host" if parts[1] == "Host" else "export"
    return {"host": "host", "tool": "tool"}.get(parts[0])


def target_of(include):
    first = include.split("/")[0]
    if "/" not in include:
        return "own"
    if first in PLATFORM:
        return "platform"
    if first == "Host":
        return "Host"
    if first == "marlohost":
        return "host"
    if first in HOST_ROOMS:
        return "host room"
    return "export"


ALLOWED = {
    "platform": {"platform"},
    "Host": {"platform", "Host"},
    "host": {"platform", "Host", "host", "host room"},
    "export": {"platform", "Host", "export"},
    "tool": {"platform", "Host", "host", "export", "tool"},
}


def faults(root):
    for folder in ("platform", "src", "host", "tool"):
        for path in sorted((root / folder).rglob("*")):
            if path.suffix not in (".h", ".cpp"):
                continue
            inside = path.relative_to(root)
            here = room(inside)
            for include in INCLUDE.findall(path.read_text(encoding="utf-8")):
                kind = target_of(include)
                if kind == "own":
                    if not (path.parent / include).exists() and not include.endswith(".moc"):
                        yield f'{inside}: "{include}" is not beside it'
                    continue
                if kind not in ALLOWED[here]:
                    yield f'{inside}: {here} must not include "{include}"'
                elif kind == "export":
                    folder_of, file = include.split("/", 1)
                    own = inside.parts[1] if here == "export" else here
                    if own != folder_of and "/" in file:
                        yield f'{inside}: "{include}" is private to {folder_of}'
                    elif own in {"Core", "tool"}:
                        continue
                    elif folder_of == "Core" and file not in CORE_FOR_TARGETS:
                        yield f'{inside}: {own} must not include "{include}"'
                    elif folder_of not in {"Core", "Writing", own} | CROSS.get(own, set()):
                        yield f'{inside}: {own} must not include "{include}"'


def main():
    found = list(faults(pathlib.Path(sys.argv[1])))
    for line in found:
        print("check-includes: " + line, file=sys.stderr)
    return 1 if found else 0


sys.exit(main())
