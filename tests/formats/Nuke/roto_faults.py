"""Faults put into good curve trees: each is a text that a program would load without a word, or not load at all."""

from dataclasses import dataclass
from typing import List

from faults import Faults, Place
from nuke_script import CURVE
from texts import last_units_off


@dataclass(frozen=True)
class _Curve:
    """Places of a curve: of each key its row, frame, value and slopes; and the value that is told again at its end."""
    count: Place
    rows: List[Place]
    frames: List[Place]
    values: List[Place]
    left: List[Place]
    right: List[Place]
    still: Place

    def shown(self) -> List[Place]:
        return self.values + [self.still]


def _bodies(faults: Faults) -> List[Place]:
    """What the points of each curve and each feather are told in, in the order of the text."""
    return faults.places(r"^       (0 [SL] [^\n]*)$")


def _curves(faults: Faults, body: Place) -> List[_Curve]:
    """x and y of the first point, of the second, and so on."""
    tokens, found, at = faults.places("[^ \n]+", body), [], 0
    while at < len(tokens):
        at += 1
        for _ in "xy":
            if faults.at(tokens[at]) == "S":
                found.append(_Curve(tokens[at], [], [], [], [], [], tokens[at + 3]))
                at += 4
                continue
            keys = range(at + 10, at + 10 + 9 * int(faults.at(tokens[at + 9])), 9)
            frames, values, left, right = ([tokens[key + offset] for key in keys] for offset in (1, 2, 3, 5))
            rows = [(tokens[key][0], tokens[key + 9][0]) for key in keys]
            found.append(_Curve(tokens[at + 9], rows, frames, values, left, right, tokens[keys.stop]))
            at = keys.stop + 1
        at += 1
    return found


_VISIBLE = ('"vis" S 0 {} "opc" S 0 1 "mbo" S 0 1 "mb" S 0 1 "mbs" S 0 0.5 "fo" S 0 1 "fx" S 0 0 "fy" S 0 0 '
            '"ff" S 0 1 "ft" S 0 0\n   }}\n   Num')
_WORDS = (
    ("brace of a shape lost", '     CurveGroup: "" {', '     CurveGroup: "" '),
    ("quote lost", 'NodeName: "Root"', 'NodeName: "Root'),
    ("a child too many", "\n  NumOfChildren: 1", "\n  NumOfChildren: 2"),
    ("a shape too many", "\n   NumOfChildren: 2", "\n   NumOfChildren: 3"),
    ("points miscounted", "NumOfPoints: 15", "NumOfPoints: 12"), ("carriage return", "\n", "\r\n"),
    ("inverted", '"inv" S 0 1', '"inv" S 0 0'), ("blend", '"bm" S 0 0', '"bm" S 0 12'),
    ("hidden", _VISIBLE.format(1), _VISIBLE.format(0)), ("open instead of closed", "Flag: 8224 Dim", "Flag: 8192 Dim"),
    ("closed instead of open", "Flag: 8192 Dim", "Flag: 8224 Dim"),
    ("view", '"view1" S 0 1', '"view1" S 0 2'), ("lifetime", '"ltt" S 0 4', '"ltt" S 0 0'),
    ("first frame", '"ltn" S 0 1013', '"ltn" S 0 1012'), ("last frame", '"ltm" S 0 1027', '"ltm" S 0 1026'),
    ("red", '"r" S 0 0.784314', '"r" S 0 0.784316'), ("red and green swapped", '"r" S', '"g" S'),
    ("overlay", '"bo" S 0 0.352941', '"bo" S 0 0.35'), ("name of the layer", '"Front_sign"', '"Front sign"'),
    ("name of the shape", '"Soft_edge"', '"Soft edge"'), ("name of the node", "name Roto_", "name Roto"),
    ("attributes miscounted", "NumOfAttributes: 27", "NumOfAttributes: 26"), ("class", "{\n curves", "2 {\n curves"))


def words(data: bytes) -> Faults:
    """Texts that lack something, have it twice, or say another word or whole number around the curves."""
    faults = Faults(data)
    faults.replace("last brace lost", "}\n", "", last=True)
    faults.replace_all(_WORDS)
    faults.drop("feather dropped", faults.place(r'(?<=\n      }\n)      CubicCurve.*?\n      }\n'))
    shapes = faults.places(r'   Node: \{\n    NodeName.*?\n   }\n')
    faults.drop("shape dropped", shapes[0])
    faults.swap("shapes swapped", shapes[:1], shapes[1:2])
    curve = _curves(faults, _bodies(faults)[0])[4]
    faults.drop("key lost and not counted", curve.rows[1])
    faults.put("key lost", (curve.rows[1], ""), (curve.count, str(len(curve.rows) - 1)))
    return faults


def numbers(data: bytes) -> Faults:
    """Well-formed texts in which the picture is wrong, by much or by two units of a number's last digit. The points of
    a vertex are arriving handle, vertex, leaving handle."""
    faults = Faults(data)
    main, feather = (_curves(faults, body) for body in _bodies(faults)[:2])

    def flip(text: str) -> str:
        return f"{1080.0 - float(text):.{len(text.partition('.')[2])}f}"
    faults.edit("y flipped", [place for curve in main[3::6] for place in curve.shown()], flip)
    for name, curves, pairs in (
            ("vertices 0 and 1 swapped", main, ((2, 8), (3, 9))), ("handles swapped", main, ((0, 4), (1, 5))),
            ("x and y of a vertex swapped", main, ((2, 3),)), ("feathers swapped", feather, ((2, 8), (3, 9))),
            ("feather handles swapped", feather, ((0, 4), (1, 5)))):
        ones, others = ([place for pair in pairs for place in curves[pair[side]].shown()] for side in (0, 1))
        faults.swap(name, ones, others)
    vertices = [place for curve in feather[2::6] for place in curve.shown()]
    faults.edit("feather without distance", vertices, lambda _: "0")
    faults.late("vertex a key late", main[2].values)
    for name, curves in (("curve", main), ("feather", feather)):
        for index in range(6):
            faults.off(f"{name} {index}", curves[index].values[1], CURVE.two_units_off)
        for side in ("left", "right"):
            slope = getattr(curves[2], side)[1]
            faults.edit(f"{side} slope of {name}", [slope], lambda text: f"{float(text) + 7.0:.3f}")
    faults.edit("frame of a key", [main[3].frames[1]], lambda text: str(int(text) + 1))
    faults.put("value behind the keys", (main[2].still, faults.at(main[2].values[1])))
    return faults


def of_matrix(data: bytes) -> Faults:
    """Faults of a layer's motion."""
    faults = Faults(data)
    line = faults.place(r"^    Transform2: [^\n]*\n")
    tokens = faults.places(r"[^ \n]+", line)[1:]
    count = int(faults.at(tokens[35]))
    # Behind the head of 26 tokens each entry has ten of its own, nine for a key, and one behind them.
    length = 11 + 9 * count
    entries = [[tokens[26 + entry * length + 10 + 9 * key + 2] for key in range(count)] for entry in range(16)]
    for one, other in ((1, 4), (3, 7), (3, 12)):
        faults.swap(f"matrix entries {one} and {other} swapped", entries[one], entries[other])
    for entry in (0, 1, 3, 4, 5, 7, 10, 12, 13, 15):
        faults.off(f"matrix entry {entry}", entries[entry][count // 2], last_units_off)
    faults.drop("matrix dropped", line)
    row = tokens.index(entries[3][1]) - 2
    faults.drop("matrix key lost", (tokens[row][0], tokens[row + 9][0]))
    faults.drop("matrix entry lost", (tokens[26 + length][0], tokens[26 + 2 * length][0]))
    return faults


def of_x_spline(data: bytes) -> Faults:
    """A vertex of an X-spline's curve, of a single key, that is off by four times what the curve may be."""
    faults = Faults(data)
    vertex = _curves(faults, _bodies(faults)[2])[2].still
    faults.edit("vertex of an x-spline off", [vertex],
                lambda text: f"{float(text) + 0.2:.{len(text.partition('.')[2])}f}")
    return faults
