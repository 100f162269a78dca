"""Strict reader of mask text for After Effects, and of the outlines in it (docs/outline-text.md)."""

import re
from dataclasses import dataclass
from functools import lru_cache
from typing import Dict, List, Optional, Tuple

import numpy as np

from bounded import Bounded, cosine, exact, sine, stacked
from keyframe_text import FILE_TITLES, FOOTER, header
from texts import Lines, TextError, decoded, six_digits, within_half_units

# The parts of the homography beside the outlines, in the order of the text.
COMPONENTS = ("Translation X", "Translation Y", "Scale", "Rotation", "Shear X", "Shear Y", "Perspective X",
              "Perspective Y")
COLUMNS: Dict[str, Tuple[str, ...]] = {name: () for name in (
    "Shape data",) + COMPONENTS + ("Blend mode", "Invert", "Opacity", "Layer name", "Film-back width", "Film-back height")}
COLUMNS["Shape colour"] = ("alpha", "red", "green", "blue")

# The rows of a block, a frame and a text each; the frame of a static row is None.
Rows = Tuple[Tuple[Optional[float], str], ...]


@dataclass(frozen=True)
class Mask:
    """Rows of each block; two masks are equal when their texts say the same."""
    blocks: Tuple[Rows, ...]

    def rows(self, name: str) -> Rows:
        return self.blocks[list(COLUMNS).index(name)]

    def frames(self, name: str) -> List[Optional[float]]:
        return [frame for frame, _ in self.rows(name)]

    def values(self, name: str) -> Bounded:
        """Values of a keyed block, and how far they may be from what was meant."""
        return within_half_units([six_digits(text) for _, text in self.rows(name)])

    def static(self, name: str) -> str:
        rows = self.rows(name)
        if len(rows) != 1 or rows[0][0] is not None:
            raise TextError(f"{name!r} is not one static row")
        return rows[0][1]


@dataclass(frozen=True)
class Outlines:
    """The curve and its feather as printed: numbers (vertices, 6)."""
    kind: str
    closed: bool
    points: np.ndarray
    feather: Optional[np.ndarray]


def parse(data: bytes) -> Tuple[Dict[str, float], List[Mask]]:
    """Header fields and masks; raises TextError at the first thing that is out of order."""
    lines = Lines(decoded(data))
    lines.expect(FILE_TITLES[0])
    fields = header(lines)
    lines.expect("", "")
    masks: List[Mask] = []
    while lines.peek() != FOOTER:
        index = len(masks) + 1
        masks.append(Mask(tuple(_block(lines, index, name, columns) for name, columns in COLUMNS.items())))
    lines.expect(FOOTER)
    lines.end()
    return fields, masks


def _block(lines: Lines, index: int, name: str, columns: Tuple[str, ...]) -> Rows:
    lines.expect(f"Effects\tmarlo shape #{index}\t{name}", "\t".join(("", "Frame") + columns))
    rows = []
    while lines.peek() != "":
        frame, value = lines.match(r"\t([^\t]*)\t(.*)")
        rows.append((six_digits(frame) if frame else None, value))
    lines.expect("")
    return tuple(rows)


@lru_cache(maxsize=1024)
def outlines(text: str) -> Outlines:
    match = re.fullmatch(r"(bezier);(closed|open);([^/]*)(?:/([^/]*))?", text)
    if match is None:
        raise TextError(f"{text[:60]!r} is not an outline")
    def points(part: str) -> np.ndarray:
        rows = [[six_digits(number) for number in vertex.split(",")] for vertex in part.split(";")]
        if any(len(row) != 6 for row in rows):
            raise TextError(f"a vertex of {text[:60]!r} has not six numbers")
        return np.array(rows)
    inner = points(match.group(3))
    outer = points(match.group(4)) if match.group(4) is not None else None
    if outer is not None and outer.shape != inner.shape:
        raise TextError(f"the feather of {text[:60]!r} has another number of vertices")
    return Outlines(match.group(1), match.group(2) == "closed", inner, outer)


def control_points(numbers: np.ndarray) -> Bounded:
    """Points as outlines have them, (vertices, 3, 2), from printed numbers."""
    printed = within_half_units(numbers)
    vertex = printed[:, 0:2]
    return stacked([vertex + printed[:, 2:4], vertex, vertex + printed[:, 4:6]], axis=1)


def homographies(mask: Mask) -> Bounded:
    """One matrix per frame, (frames, 3, 3), put together from the eight parts."""
    tx, ty, scale, turn, shear_x, shear_y, px, py = (mask.values(name) for name in COMPONENTS)
    cos, sin = cosine(turn), sine(turn)
    wide, narrow = shear_x + 1.0, shear_x * -1.0 + 1.0
    one = exact(np.ones(len(turn.value)))
    rows = [[scale * (cos * wide - sin * shear_y), scale * (cos * shear_y - sin * narrow), tx],
            [scale * (sin * wide + cos * shear_y), scale * (sin * shear_y + cos * narrow), ty], [px, py, one]]
    return stacked([stacked(row) for row in rows], axis=-2)
