"""Strict reader of Nuke scripts: the nested lists of any of them, and the curve tree of a roto node.

A script is read twice, by Tcl itself and by the reader here, and both have to find the same lists. What a curve tree
consists of is held against the literals of the format line by line.
"""

import json
import re
import subprocess
from dataclasses import dataclass, field
from pathlib import Path
from typing import Any, Dict, List, Optional, Tuple

import numpy as np

from bounded import Bounded
from text_lines import Lines, TextError, decoded

_TCL = Path(__file__).with_name("nuke_script.tcl")


# ---- nested lists

_BRACE, _BARE = re.compile(r"[{}]"), re.compile(r"\S+")


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


def read_nodes(data: bytes, file: Path) -> List[Any]:
    """Both readings of a file; raises TextError where they differ."""
    file.write_bytes(data)
    by_tcl, own = nodes_by_tcl(file), nodes(decoded(data))
    if by_tcl != own:
        raise TextError("tclsh reads other lists")
    return own


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
    words = _words(word)
    if not words or words == [word]:
        return word
    return [_nested(part) for part in words]


# ---- numbers of curve trees

@dataclass(frozen=True)
class Digits:
    """At most so many significant digits and decimals; `snap` is what a value is moved by at most before it prints."""
    significant: int
    decimals: int
    snap: float


CURVE, MATRIX = Digits(5, 3, 1e-6), Digits(5, 5, 5e-6)

_NUMBER = re.compile(r"-?(?:0|[1-9][0-9]*)(?:\.([0-9]+))?")


def _decimals_of(magnitude: float, digits: Digits) -> int:
    """How many decimals a number of this size has when it isn't whole."""
    if magnitude <= 0.0:
        return digits.decimals
    return min(digits.decimals, max(0, int(np.ceil(digits.significant - (np.log10(magnitude) + 1.0)))))


def number(token: str, digits: Digits = CURVE) -> Tuple[float, float]:
    """A number of the text and how far it may be from what was meant.

    The count of decimals has to be what the size asks for. Without decimals a number is either so large that none
    were left, or what was meant was whole up to half a unit of the last decimal.
    """
    match = _NUMBER.fullmatch(token)
    if match is None:
        raise TextError(f"{token!r} is not a number of a curve tree")
    value, size, decimals = float(token), abs(float(token)), len(match.group(1) or "")
    if decimals == 0:
        large = _decimals_of(size, digits) == 0
        return value, (0.5 if large else 0.5 * 10.0 ** -digits.decimals) + digits.snap
    half = 0.5 * 10.0 ** -decimals
    if decimals not in {_decimals_of(max(size - half, 1e-9), digits), _decimals_of(size + half, digits)}:
        raise TextError(f"{token!r} has {decimals} decimals")
    return value, half + digits.snap


def numbers(tokens: List[str], digits: Digits = CURVE) -> Bounded:
    pairs = [number(token, digits) for token in tokens]
    return Bounded(*np.array(pairs, float).reshape(-1, 2).T)


# ---- the curve tree of a roto node

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


@dataclass
class Shape:
    name: str = ""
    motion: Optional[str] = None
    flags: Tuple[int, int] = (0, 0)
    # Curves of a point, x and y; three points for each vertex.
    main: List[Tuple[Curve, Curve]] = field(default_factory=list)
    feather: List[Tuple[Curve, Curve]] = field(default_factory=list)
    attributes: Dict[str, str] = field(default_factory=dict)


@dataclass
class LayerNode:
    name: str = ""
    visible: str = ""
    motion: Optional[str] = None
    shapes: List[Shape] = field(default_factory=list)


@dataclass
class Tree:
    layers: List[LayerNode]
    node_name: Optional[str]


_COMMON = '"opc" S 0 1 "mbo" S 0 1 "mb" S 0 1 "mbs" S 0 0.5 "fo" S 0 1 "fx" S 0 0 "fy" S 0 0 "ff" S 0 1 "ft" S 0 0'
_NAME = r'"([^"\n]*)" \{'
_SHAPE_ATTRIBUTES = (
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
    layer = LayerNode()
    lines.expect("  Node: {")
    layer.name, = lines.match("   NodeName: " + _NAME)
    lines.expect("    NodeType: 1")
    layer.motion = _motion(lines, "    ")
    lines.expect("    NumOfAttributes: 10")
    layer.visible, = lines.match('    "vis" S 0 ([01]) ' + re.escape(_COMMON))
    lines.expect("   }")
    count = int(lines.match("   NumOfChildren: ([0-9]+)")[0])
    layer.shapes = [_shape(lines) for _ in range(count)]
    lines.expect("  }")
    return layer


def _shape(lines: Lines) -> Shape:
    shape = Shape()
    lines.expect("   Node: {")
    shape.name, = lines.match("    NodeName: " + _NAME)
    lines.expect("     NodeType: 3", '     CurveGroup: "" {')
    shape.motion = _motion(lines, "      ")
    lines.expect("      Flag: 0", "      NumOfCubicCurves: 2")
    main_flag, shape.main = _cubic_curve(lines)
    feather_flag, shape.feather = _cubic_curve(lines)
    shape.flags = (main_flag, feather_flag)
    lines.expect("      NumOfAttributes: 27")
    shape.attributes = _attributes(lines.take())
    lines.expect("     }", "    }", "    NumOfChildren: 0", "   }")
    return shape


def _attributes(line: str) -> Dict[str, str]:
    found = re.fullmatch("      " + " ".join(f'"{name}" S 0 (\\S+)' for name in _SHAPE_ATTRIBUTES), line)
    if found is None:
        raise TextError(f"attributes of a shape: {line!r}")
    return dict(zip(_SHAPE_ATTRIBUTES, found.groups()))


def _cubic_curve(lines: Lines) -> Tuple[int, List[Tuple[Curve, Curve]]]:
    lines.expect('      CubicCurve: "" {')
    flag = int(lines.match("       Type: 0 Flag: ([0-9]+) Dim: 2")[0])
    count = int(lines.match("       NumOfPoints: ([0-9]+)")[0])
    body = lines.take()
    if not body.startswith("       0 ") or "  " in body[7:] or body.endswith(" "):
        raise TextError("the body of a curve begins, or is spaced, in another way")
    tokens = Tokens(body[7:].split(" "))
    points = []
    while tokens.left():
        tokens.expect("0")
        x, y = tokens.curve(), tokens.curve()
        tokens.expect("0")
        points.append((x, y))
    if len(points) != count or count % 3 != 0:
        raise TextError(f"{len(points)} points in a curve of {count}")
    lines.expect("      }")
    return flag, points


class Tokens:
    def __init__(self, tokens: List[str]) -> None:
        self._tokens = tokens
        self._at = 0

    def left(self) -> int:
        return len(self._tokens) - self._at

    def take(self, count: int) -> List[str]:
        if self.left() < count:
            raise TextError("a curve ends early")
        self._at += count
        return self._tokens[self._at - count:self._at]

    def expect(self, *tokens: str) -> None:
        found = self.take(len(tokens))
        if found != list(tokens):
            raise TextError(f"{' '.join(found)!r} instead of {' '.join(tokens)!r}")

    def keys(self, names: Tuple[Optional[str], ...]) -> List[List[str]]:
        """The keys of a curve with several, each a row of what stands where `names` has None."""
        self.expect(*'L 0 4096 0.5 2 0 0 "" 0'.split(" "))
        count, = self.take(1)
        if not count.isdigit() or int(count) < 2:
            raise TextError(f"a curve of {count!r} keys")
        rows = []
        for _ in range(int(count)):
            row = self.take(len(names))
            if any(name is not None and name != token for name, token in zip(names, row)):
                raise TextError(f"key {' '.join(row)!r}")
            rows.append([token for name, token in zip(names, row) if name is None])
        return rows

    def curve(self) -> Curve:
        if self._tokens[self._at:self._at + 2] == ["S", "1"]:
            self.take(2)
            time, value = self.take(2)
            if not re.fullmatch("-?[0-9]+", time):
                raise TextError(f"{time!r} is not a whole frame")
            return Curve(Bounded(np.array([float(time)]), np.zeros(1)), numbers([value]), None, None)
        rows = self.keys(('""', None, None, None, "1", None, "1", "258", "0"))
        still, = self.take(1)
        if still != rows[0][1]:
            raise TextError(f"the value of a curve is {still}, that of its first key {rows[0][1]}")
        times, values, left, right = (numbers(list(column)) for column in zip(*rows))
        return Curve(times, values, left, right)


_MATRIX_HEAD = "0 0 S 0 0 S 0 0 S 0 0 S 0 1 S 0 1 S 0 0 S 0 0 S 0 0".split(" ")


def matrix(text: str) -> Optional[Matrix]:
    """The keys of a Transform2 block, (frames, 16); None for the identity that a single frame has."""
    if not text.endswith(" "):
        raise TextError("Transform2 doesn't end in a blank")
    tokens = Tokens(text[:-1].split(" "))
    tokens.expect(*_MATRIX_HEAD)
    if tokens.left() == 48:
        for i in range(16):
            tokens.expect("S", "0", "1" if i % 5 == 0 else "0")
        return None
    times, columns = None, []
    for _ in range(16):
        rows = tokens.keys(('""', None, None, "0", "1", "0", "1", "258", "0"))
        tokens.expect("0")
        at = [row[0] for row in rows]
        if times is not None and at != times:
            raise TextError("the entries of a matrix have keys at different frames")
        times = at
        columns.append(numbers([row[1] for row in rows], MATRIX))
    if tokens.left():
        raise TextError("a matrix of more than sixteen entries")
    entries = Bounded(np.stack([c.value for c in columns], axis=1), np.stack([c.error for c in columns], axis=1))
    return Matrix(numbers(times), entries)
