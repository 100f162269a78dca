"""Strict reader of Nuke scripts: the nested lists of any of them, and the curve tree of a roto node.

A script is read twice, by Tcl itself and by the reader here, and both have to find the same lists. What a curve tree
consists of is held against the literals of the format line by line.
"""

import json
import re
import subprocess
from dataclasses import dataclass
from functools import lru_cache
from pathlib import Path
from typing import Any, List, Match, Optional, Tuple

from bounded import Bounded, exact, stacked
from findings import Findings, judging
from texts import Digits, Lines, TextError, decoded

_TCL = Path(__file__).with_name("nuke_script.tcl")


# ---- nested lists

_BRACE, _BARE, _LIST = re.compile(r"[{}]"), re.compile(r"\S+"), re.compile(r"[\s{}\"]")


def nodes_by_tcl(file: Path) -> List[Any]:
    """The nodes of a script as tclsh takes them apart: [class, [words of a knob, ...]] each."""
    done = subprocess.run(["tclsh", str(_TCL), str(file)], stdin=subprocess.DEVNULL, capture_output=True, timeout=60,
                          check=False)
    if done.returncode != 0:
        raise TextError("tclsh: " + done.stderr.decode("utf-8", "replace").splitlines()[0])
    return json.loads(done.stdout)


def nodes(text: str) -> List[Any]:
    """The same by the reader here."""
    found = []
    for node in _commands(text):
        if len(node) != 2:
            raise TextError("a node is a class and its knobs")
        found.append([node[0], [[_nested(word) for word in knob] for knob in _commands(node[1])]])
    return found


@judging
def judge_lists(findings: Findings, data: bytes, scratch: Path) -> None:
    """Whether tclsh and the reader here take a script apart into the same lists."""
    file = scratch / "judged.nk"
    file.write_bytes(data)
    if nodes_by_tcl(file) != nodes(decoded(data)):
        findings.problem("tclsh reads other lists")


def _commands(text: str) -> List[List[str]]:
    """The words of each command; commands end with their line."""
    found: List[List[str]] = []
    words: List[str] = []
    at = 0
    while at < len(text):
        if text[at].isspace():
            if text[at] == "\n" and words:
                found.append(words)
                words = []
            at += 1
            continue
        word, at = _word(text, at)
        words.append(word)
    return found + [words] if words else found


def _words(text: str) -> List[str]:
    found, at = [], 0
    while at < len(text):
        if text[at].isspace():
            at += 1
            continue
        word, at = _word(text, at)
        found.append(word)
    return found


def _word(text: str, at: int) -> Tuple[str, int]:
    """The word that starts here, without its braces or quotes, and where it ends."""
    if text[at] == "{":
        end = _closing_brace(text, at)
    elif text[at] == '"':
        end = text.find('"', at + 1)
        if end < 0:
            raise TextError("a quote is open at the end")
    else:
        end = _BARE.match(text, at).end()
        if "}" in text[at:end] or "{" in text[at:end]:
            raise TextError(f"a brace inside of the word {text[at:end]!r}")
        return text[at:end], end
    if end + 1 < len(text) and not text[end + 1].isspace():
        raise TextError("a word goes on behind its brace or quote")
    return text[at + 1:end], end + 1


def _closing_brace(text: str, at: int) -> int:
    depth = 0
    for brace in _BRACE.finditer(text, at):
        depth += 1 if brace.group() == "{" else -1
        if depth == 0:
            return brace.start()
    raise TextError("a brace is open at the end")


def _nested(word: str) -> Any:
    if not _LIST.search(word):
        return word
    words = _words(word)
    if not words or words == [word]:
        return word
    return [_nested(part) for part in words]


# ---- the curve tree of a roto node

# Numbers of curves, and those of matrices, which are a million times as large.
CURVE, MATRIX = Digits(5, 3, 1e-6), Digits(5, 5, 5e-6)


@dataclass(frozen=True)
class Curve:
    """Keys in time order. A curve of a single key has its time cut to a whole number, and no slopes."""
    times: Bounded
    values: Bounded
    left: Optional[Bounded]
    right: Optional[Bounded]


@dataclass(frozen=True)
class Matrix:
    """Sixteen entries per frame, or None for the identity of a single frame."""
    times: Bounded
    entries: Bounded


@dataclass(frozen=True)
class Shape:
    """`main` and `feather` are what `points` takes apart: texts tell soonest whether two shapes are the same."""
    name: str
    motion: Optional[str]
    flags: Tuple[int, int]
    main: str
    feather: str
    attributes: Tuple[str, ...]


@dataclass(frozen=True)
class LayerNode:
    name: str
    visible: str
    motion: Optional[str]
    shapes: List[Shape]


@dataclass
class Tree:
    layers: List[LayerNode]
    node_name: Optional[str]


_COMMON = '"opc" S 0 1 "mbo" S 0 1 "mb" S 0 1 "mbs" S 0 0.5 "fo" S 0 1 "fx" S 0 0 "fy" S 0 0 "ff" S 0 1 "ft" S 0 0'
_NAME = r'"([^"\n]*)" \{'
SHAPE_ATTRIBUTES = (
    "vis", "r", "g", "b", "a", "ro", "go", "bo", "ao", "opc", "bm", "inv", "mbo", "mb", "mbs", "mbsot", "mbso", "fo",
    "fx", "fy", "ff", "ft", "nv", "view1", "ltn", "ltm", "ltt")


def curve_tree(text: str, word: str, versioned: bool = True) -> Tree:
    """Reads a whole roto node of the class `word`; raises TextError at the first thing that is out of order."""
    lines = Lines(text)
    lines.expect(word + " {", ' curves {AnimTree: "" {')
    if versioned:
        lines.expect(" Version: 1.1", " RootNode: 1")
    lines.expect(" Node: {", '  NodeName: "Root" {', "   NodeType: 1", "   NumOfAttributes: 10",
                 '   "vis" S 0 1 ' + _COMMON, "  }")
    count = int(lines.match(r"  NumOfChildren: ([0-9]+)")[0])
    layers = [_layer(lines) for _ in range(count)]
    lines.expect(" }", "}", "}")
    name = lines.match("name Roto_(.*)")[0] if lines.peek() != "}" else None
    lines.expect("}")
    lines.end()
    return Tree(layers, name)


def _motion(lines: Lines, indent: str) -> Optional[str]:
    if lines.peek().startswith(indent + "Transform2: "):
        return lines.take()[len(indent + "Transform2: "):]
    return None


def _layer(lines: Lines) -> LayerNode:
    lines.expect("  Node: {")
    name, = lines.match("   NodeName: " + _NAME)
    lines.expect("    NodeType: 1")
    motion = _motion(lines, "    ")
    lines.expect("    NumOfAttributes: 10")
    visible, = lines.match('    "vis" S 0 ([01]) ' + re.escape(_COMMON))
    lines.expect("   }")
    count = int(lines.match("   NumOfChildren: ([0-9]+)")[0])
    shapes = [_shape(lines) for _ in range(count)]
    lines.expect("  }")
    return LayerNode(name, visible, motion, shapes)


def _shape(lines: Lines) -> Shape:
    lines.expect("   Node: {")
    name, = lines.match("    NodeName: " + _NAME)
    lines.expect("     NodeType: 3", '     CurveGroup: "" {')
    motion = _motion(lines, "      ")
    lines.expect("      Flag: 0", "      NumOfCubicCurves: 2")
    (flag, main), (feather_flag, feather) = _cubic_curve(lines), _cubic_curve(lines)
    lines.expect("      NumOfAttributes: 27")
    attributes = lines.match("      " + " ".join(f'"{name}" S 0 (\\S+)' for name in SHAPE_ATTRIBUTES))
    lines.expect("     }", "    }", "    NumOfChildren: 0", "   }")
    return Shape(name, motion, (flag, feather_flag), main, feather, attributes)


def _cubic_curve(lines: Lines) -> Tuple[int, str]:
    """The flag, and the count of points with their curves."""
    lines.expect('      CubicCurve: "" {')
    flag = int(lines.match("       Type: 0 Flag: ([0-9]+) Dim: 2")[0])
    count, = lines.match("       NumOfPoints: ([0-9]+)")
    body, = lines.match("       (0 .*)")
    lines.expect("      }")
    return flag, f"{count} {body}"


# Keys of nine words each behind their count; `row` are the words of one, of which the first says nothing.
_KEYS = 'L 0 4096 0\\.5 2 0 0 "" 0 ([0-9]+)((?: "" {row})+)'
_STILL = re.compile("S 1 (-?[0-9]+) ([^ ]+)(?: |$)")
_KEYED = re.compile(_KEYS.format(row="[^ ]+ [^ ]+ [^ ]+ 1 [^ ]+ 1 258 0") + " ([^ ]+)(?: |$)")
_ENTRY = re.compile(_KEYS.format(row="[^ ]+ [^ ]+ 0 1 0 1 258 0") + " 0 ")


def _columns(keys: Match[str]) -> List[List[str]]:
    words = keys.group(2).split(" ")[1:]
    if int(keys.group(1)) != len(words) // 9 or len(words) < 18:
        raise TextError(f"{len(words) // 9} keys where {keys.group(1)} are announced")
    return [words[i::9] for i in range(9)]


@lru_cache(maxsize=256)
def points(text: str) -> List[Tuple[Curve, Curve]]:
    """The curves of a shape's points, x and y; three points for each vertex."""
    count, _, body = text.partition(" ")
    found, at = [], 0
    while at < len(body):
        if not body.startswith("0 ", at):
            raise TextError(f"a point begins with {body[at:at + 20]!r}")
        x, at = _curve(body, at + 2)
        y, at = _curve(body, at)
        if body[at:at + 2] != ("0 " if at + 2 < len(body) else "0"):
            raise TextError(f"a point ends with {body[at:at + 20]!r}")
        at += 2
        found.append((x, y))
    if len(found) != int(count) or len(found) % 3 != 0:
        raise TextError(f"{len(found)} points in a curve of {count}")
    return found


def _curve(text: str, at: int) -> Tuple[Curve, int]:
    """The curve that stands here, and where what follows it begins."""
    still = _STILL.match(text, at)
    if still is not None:
        return Curve(exact([float(still.group(1))]), CURVE.read_all([still.group(2)]), None, None), still.end()
    keyed = _KEYED.match(text, at)
    if keyed is None:
        raise TextError(f"{text[at:at + 60]!r} is not a curve")
    _, times, values, left, _, right, *_ = _columns(keyed)
    if keyed.group(3) != values[0]:
        raise TextError(f"the value of a curve is {keyed.group(3)}, that of its first key {values[0]}")
    return Curve(*(CURVE.read_all(column) for column in (times, values, left, right))), keyed.end()


_MATRIX_HEAD = "0 0 S 0 0 S 0 0 S 0 0 S 0 1 S 0 1 S 0 0 S 0 0 S 0 0 "
_IDENTITY = "".join(f"S 0 {1 if i % 5 == 0 else 0} " for i in range(16))


@lru_cache(maxsize=256)
def matrix(text: str) -> Optional[Matrix]:
    """The keys of a Transform2 block, (frames, 16); None for the identity that a single frame has."""
    if not text.startswith(_MATRIX_HEAD):
        raise TextError(f"a matrix begins with {text[:60]!r}")
    at = len(_MATRIX_HEAD)
    if text[at:] == _IDENTITY:
        return None
    columns = []
    while at < len(text):
        entry = _ENTRY.match(text, at)
        if entry is None:
            raise TextError(f"{text[at:at + 60]!r} is no entry of a matrix")
        at = entry.end()
        columns.append(_columns(entry))
    if len(columns) != 16 or any(column[1] != columns[0][1] for column in columns):
        raise TextError("not sixteen entries with keys at the same frames")
    entries = stacked([MATRIX.read_all(column[2]) for column in columns], axis=1)
    return Matrix(CURVE.read_all(columns[0][1]), entries)
