"""Faults put into good curve trees: each is a text that a program would load without a word, or not load at all."""

import re
from typing import Callable, Iterator, List, Tuple

from checking import Fault, replaced

# Tokens of a curve: where its values stand, key by key, and where the value is told again at its end.
_CurvePlaces = Tuple[List[int], int]


class _Text:
    """A curve tree whose curves can be changed."""

    def __init__(self, text: str) -> None:
        self.lines = text.split("\n")
        self.bodies = [i for i, line in enumerate(self.lines) if re.match("       0 [SL] ", line)]

    def tokens(self, body: int) -> List[str]:
        return self.lines[self.bodies[body]][7:].split(" ")

    def store(self, body: int, tokens: List[str]) -> None:
        self.lines[self.bodies[body]] = "       " + " ".join(tokens)

    def data(self) -> bytes:
        return "\n".join(self.lines).encode("utf-8")


def _places(tokens: List[str]) -> List[_CurvePlaces]:
    """The curves of a body: x and y of the first point, of the second, and so on."""
    found, at = [], 0
    while at < len(tokens):
        at += 1
        for _ in "xy":
            if tokens[at] == "S":
                found.append(([], at + 3))
                at += 4
            else:
                count = int(tokens[at + 9])
                found.append(([at + 12 + 9 * key for key in range(count)], at + 10 + 9 * count))
                at += 11 + 9 * count
        at += 1
    return found


def nudged(token: str, steps: int = 2) -> str:
    """A printed number, some units of its last digit higher."""
    decimals = len(token.partition(".")[2])
    return f"{float(token) + steps * 10.0 ** -decimals:.{decimals}f}"


def _changed(text: str, body: int, change: Callable[[List[str], List[_CurvePlaces]], None]) -> bytes:
    edited = _Text(text)
    tokens = edited.tokens(body)
    change(tokens, _places(tokens))
    edited.store(body, tokens)
    return edited.data()


def _swap(tokens: List[str], one: _CurvePlaces, other: _CurvePlaces) -> None:
    for a, b in zip(one[0] + [one[1]], other[0] + [other[1]]):
        tokens[a], tokens[b] = tokens[b], tokens[a]


def structural(text: str) -> Iterator[Fault]:
    """Texts that lack something, or have it twice."""
    yield replaced(text, "last brace lost", "}\n", "", last=True)
    yield replaced(text, "brace of a shape lost", '     CurveGroup: "" {', '     CurveGroup: "" ')
    yield replaced(text, "quote lost", 'NodeName: "Root"', 'NodeName: "Root')
    yield replaced(text, "a child too many", "\n  NumOfChildren: 1", "\n  NumOfChildren: 2")
    yield replaced(text, "a shape too many", "\n   NumOfChildren: 2", "\n   NumOfChildren: 3")
    yield replaced(text, "points miscounted", "NumOfPoints: 15", "NumOfPoints: 12")
    yield replaced(text, "carriage return", "\n", "\r\n")
    feather = re.search(r'(?<=\n      }\n)      CubicCurve.*?\n      }\n', text, re.S)
    yield "feather dropped", (text[:feather.start()] + text[feather.end():]).encode("utf-8")
    shapes = list(re.finditer(r'   Node: \{\n    NodeName.*?\n   }\n', text, re.S))
    yield "shape dropped", (text[:shapes[0].start()] + text[shapes[0].end():]).encode("utf-8")
    first, second = (shape.group() for shape in shapes[:2])
    yield "shapes swapped", text.replace(first, "\x00").replace(second, first).replace("\x00", second).encode("utf-8")

    def drop_key(tokens: List[str], places: List[_CurvePlaces], recount: bool) -> None:
        value = places[4][0][1]
        del tokens[value - 2:value + 7]
        if recount:
            tokens[places[4][0][0] - 3] = str(len(places[4][0]) - 1)
    yield "key lost", _changed(text, 0, lambda tokens, places: drop_key(tokens, places, False))
    yield "key lost and not counted", _changed(text, 0, lambda tokens, places: drop_key(tokens, places, True))


def attributes(text: str) -> Iterator[Fault]:
    """Wrong words and whole numbers around the curves."""
    for name, old, new in (
            ("inverted", '"inv" S 0 1', '"inv" S 0 0'), ("blend", '"bm" S 0 0', '"bm" S 0 12'),
            ("hidden", '"vis" S 0 1 "opc" S 0 1 "mbo" S 0 1 "mb" S 0 1 "mbs" S 0 0.5 "fo" S 0 1 "fx" S 0 0 "fy" S 0 0 '
             '"ff" S 0 1 "ft" S 0 0\n   }\n   Num',
             '"vis" S 0 0 "opc" S 0 1 "mbo" S 0 1 "mb" S 0 1 "mbs" S 0 0.5 "fo" S 0 1 "fx" S 0 0 "fy" S 0 0 '
             '"ff" S 0 1 "ft" S 0 0\n   }\n   Num'),
            ("open instead of closed", "Flag: 8224 Dim", "Flag: 8192 Dim"),
            ("closed instead of open", "Flag: 8192 Dim", "Flag: 8224 Dim"),
            ("view", '"view1" S 0 1', '"view1" S 0 2'), ("lifetime", '"ltt" S 0 4', '"ltt" S 0 0'),
            ("first frame", '"ltn" S 0 1013', '"ltn" S 0 1012'), ("last frame", '"ltm" S 0 1027', '"ltm" S 0 1026'),
            ("red", '"r" S 0 0.784314', '"r" S 0 0.784316'), ("red and green swapped", '"r" S', '"g" S'),
            ("overlay", '"bo" S 0 0.352941', '"bo" S 0 0.35'), ("name of the layer", '"Front_sign"', '"Front sign"'),
            ("name of the shape", '"Soft_edge"', '"Soft edge"'), ("name of the node", "name Roto_", "name Roto"),
            ("attributes miscounted", "NumOfAttributes: 27", "NumOfAttributes: 26"), ("class", "{\n curves", "2 {\n curves")):
        yield replaced(text, name, old, new)


def misplaced(text: str) -> Iterator[Fault]:
    """Well-formed texts in which the picture is wrong. Points are arriving handle, vertex, leaving handle."""
    def flip(tokens: List[str], places: List[_CurvePlaces]) -> None:
        for keys, still in places[3::6]:
            for at in keys + [still]:
                tokens[at] = f"{1080.0 - float(tokens[at]):.{len(tokens[at].partition('.')[2])}f}"
    yield "y flipped", _changed(text, 0, flip)
    for name, body, pairs in (
            ("vertices 0 and 1 swapped", 0, ((2, 8), (3, 9))), ("handles of a vertex swapped", 0, ((0, 4), (1, 5))),
            ("x and y of a vertex swapped", 0, ((2, 3),)), ("feathers of vertices swapped", 1, ((2, 8), (3, 9))),
            ("feather handles swapped", 1, ((0, 4), (1, 5)))):
        def swap(tokens: List[str], places: List[_CurvePlaces]) -> None:
            for one, other in pairs:
                _swap(tokens, places[one], places[other])
        yield name, _changed(text, body, swap)

    def zero(tokens: List[str], places: List[_CurvePlaces]) -> None:
        for keys, still in places[2::6]:
            for at in keys + [still]:
                tokens[at] = "0"
    yield "feather without distance", _changed(text, 1, zero)

    def late(tokens: List[str], places: List[_CurvePlaces]) -> None:
        keys, still = places[2]
        values = [tokens[at] for at in keys]
        for at, value in zip(keys, values[:1] + values):
            tokens[at] = value
    yield "vertex a key late", _changed(text, 0, late)


def imprecise(text: str) -> Iterator[Fault]:
    """Numbers that are two units of their last digit off, and slopes and frames that are wrong."""
    for body, name in ((0, "curve"), (1, "feather")):
        for curve in range(6):
            def raise_value(tokens: List[str], places: List[_CurvePlaces]) -> None:
                at = places[curve][0][1]
                whole = "." not in tokens[at] and abs(float(tokens[at])) < 1e4
                tokens[at] = nudged(tokens[at] + ".000" if whole else tokens[at])
            yield f"{name} {curve} off by 2 units", _changed(text, body, raise_value)

        def steepen(tokens: List[str], places: List[_CurvePlaces], side: int) -> None:
            at = places[2][0][1] + side
            tokens[at] = f"{float(tokens[at]) + 7.0:.3f}"
        yield f"left slope of {name}", _changed(text, body, lambda tokens, places: steepen(tokens, places, 1))
        yield f"right slope of {name}", _changed(text, body, lambda tokens, places: steepen(tokens, places, 3))

    def postpone(tokens: List[str], places: List[_CurvePlaces]) -> None:
        at = places[3][0][1] - 1
        tokens[at] = str(int(tokens[at]) + 1)
    yield "frame of a key", _changed(text, 0, postpone)

    def restill(tokens: List[str], places: List[_CurvePlaces]) -> None:
        tokens[places[2][1]] = tokens[places[2][0][1]]
    yield "value behind the keys", _changed(text, 0, restill)


def moved_vertex(text: str, body: int, pixels: float) -> bytes:
    """The first vertex of a curve of a single key, moved to the right."""
    def move(tokens: List[str], places: List[_CurvePlaces]) -> None:
        at = places[2][1]
        tokens[at] = f"{float(tokens[at]) + pixels:.{len(tokens[at].partition('.')[2])}f}"
    return _changed(text, body, move)


def of_matrix(text: str) -> Iterator[Fault]:
    """Faults of a layer's motion."""
    line = next(line for line in text.split("\n") if line.startswith("    Transform2: "))
    tokens = line[len("    Transform2: "):].split(" ")
    count = int(tokens[35])
    # Behind the head of 26 tokens each entry has ten of its own, nine for a key, and one behind them.
    length = 11 + 9 * count

    def at(entry: int, key: int) -> int:
        return 26 + entry * length + 10 + 9 * key + 2

    def changed(name: str, change: Callable[[List[str]], None]) -> Fault:
        edited = list(tokens)
        change(edited)
        return replaced(text, name, line, "    Transform2: " + " ".join(edited))

    def swapped(one: int, other: int) -> Callable[[List[str]], None]:
        def change(edited: List[str]) -> None:
            for key in range(count):
                edited[at(one, key)], edited[at(other, key)] = edited[at(other, key)], edited[at(one, key)]
        return change

    def off(entry: int, key: int) -> Callable[[List[str]], None]:
        def change(edited: List[str]) -> None:
            edited[at(entry, key)] = nudged(edited[at(entry, key)])
        return change
    for one, other in ((1, 4), (3, 7), (3, 12)):
        yield changed(f"matrix entries {one} and {other} swapped", swapped(one, other))
    for entry in (0, 1, 3, 4, 5, 7, 10, 12, 13, 15):
        yield changed(f"matrix entry {entry} off by 2 units", off(entry, count // 2))
    yield replaced(text, "matrix dropped", line + "\n", "")
    yield changed("matrix key lost", lambda edited: edited.__delitem__(slice(at(3, 1) - 2, at(3, 1) + 7)))
    yield changed("matrix entry lost", lambda edited: edited.__delitem__(slice(26 + length, 26 + 2 * length)))
