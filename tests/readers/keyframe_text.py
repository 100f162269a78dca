"""Strict reader of the keyframe text that compositing programs take from a file or from the clipboard.

    Adobe After Effects 6.0 Keyframe Data
                                                    (empty)
    <tab>Units Per Second<tab>24                    the header: one field a line
    ...
                                                    (empty line ahead of each block)
    Position                                        a property of the layer, or
    Effects<tab>ADBE Corner Pin #1<tab>NAME         a parameter of one of its effects
    <tab>Frame<tab>X pixels<tab>Y pixels            the columns
    <tab>0<tab>100<tab>980                          a key: its frame, then its values
                                                    (empty)
    End of Keyframe Data

A program that pastes this text skips what it doesn't understand, and the artist finds out much later. This reader
refuses instead, with the number of the line.
"""

import re
from dataclasses import dataclass
from typing import Dict, List, Optional, Tuple

import numpy as np

FILE_TITLES = ("Adobe After Effects 6.0 Keyframe Data", "Assimilate SCRATCH Keyframe Data")
FOOTER = "End of Keyframe Data"
HEADER_FIELDS = ("Units Per Second", "Source Width", "Source Height", "Source Pixel Aspect Ratio",
                 "Comp Pixel Aspect Ratio")

# Properties of a layer and their columns; the parameters of a pin effect are points.
Properties = Dict[str, Tuple[str, ...]]
LAYER_PROPERTIES: Properties = {
    "Anchor Point": ("X pixels", "Y pixels", "Z pixels"),
    "Position": ("X pixels", "Y pixels", "Z pixels"),
    "Scale": ("X percent", "Y percent", "Z percent"),
    "Rotation": ("Degrees",),
}
EFFECT_POINT = ("X pixels", "Y pixels")

# The digits that one number of the text carries at most.
DIGITS = 6

_EFFECT = re.compile(r"Effects\t([^\t#]+) #([1-9][0-9]*)\t([^\t]+)")
_NUMBER = re.compile(r"-?(0|[1-9][0-9]*)(\.[0-9]+)?(e[+-][0-9]{2,3})?")


class KeyframeTextError(ValueError):
    """The text isn't keyframe text; the message names the line."""


@dataclass(frozen=True)
class Block:
    """The keys of one parameter. `effect` and `index` are None for a property of the layer itself."""
    effect: Optional[str]
    index: Optional[int]
    param: str
    columns: Tuple[str, ...]
    rows: Dict[float, Tuple[float, ...]]


@dataclass(frozen=True)
class Document:
    title: str
    header: Dict[str, float]
    blocks: List[Block]

    def layer_property(self, name: str) -> Block:
        """The one block of a layer property; raises KeyError when there is none."""
        return {block.param: block for block in self.blocks if block.effect is None}[name]

    def effect_blocks(self) -> List[Block]:
        return [block for block in self.blocks if block.effect is not None]


def half_units(values: np.ndarray) -> np.ndarray:
    """How far printed numbers may lie from those that were meant: half a unit of the sixth significant digit.

    A number prints as "0" only when it is exactly that.
    """
    values = np.abs(np.asarray(values, float))
    # The margin is far below the sixth digit, and lifts powers of ten over the error of the logarithm.
    exponents = np.floor(np.log10(np.where(values > 0.0, values, 1.0) * (1.0 + 1e-9)))
    return np.where(values > 0.0, 0.5 * 10.0 ** (exponents - DIGITS + 1), 0.0)


class Lines:
    """The lines of the text, handed out one after the other."""

    def __init__(self, data: bytes) -> None:
        if data.startswith(b"\xef\xbb\xbf"):
            raise KeyframeTextError("line 1: byte order mark")
        if b"\r" in data:
            raise KeyframeTextError(f"line {data[:data.index(13)].count(10) + 1}: carriage return")
        try:
            text = data.decode("utf-8")
        except UnicodeDecodeError as error:
            raise KeyframeTextError(f"byte {error.start}: not UTF-8") from None
        if not text.endswith("\n"):
            raise KeyframeTextError("the last line has no end")
        self._lines = text[:-1].split("\n")
        self._at = 0

    def peek(self) -> Optional[str]:
        return self._lines[self._at] if self._at < len(self._lines) else None

    def take(self) -> str:
        line = self.peek()
        self._at += 1
        if line is None:
            raise self.error("the text ends early")
        return line

    def take_exactly(self, expected: str) -> None:
        line = self.take()
        if line != expected:
            raise self.error(f"{expected!r} expected, found {line!r}")

    def error(self, message: str) -> KeyframeTextError:
        """An error in the line that was taken last."""
        return KeyframeTextError(f"line {self._at}: {message}")

    def number(self, text: str) -> float:
        match = _NUMBER.fullmatch(text)
        if match is None:
            raise self.error(f"{text!r} is not a number")
        digits = (match.group(1) + (match.group(2) or "")).replace(".", "").lstrip("0")
        if len(digits) > DIGITS:
            raise self.error(f"{text!r} has more than {DIGITS} digits")
        return float(text)


def parse(data: bytes, properties: Properties = LAYER_PROPERTIES, lines_behind_header: int = 0) -> Document:
    """Reads a whole text; raises KeyframeTextError at the first thing that is out of order.

    `properties` are those that a layer may have, with their columns. Some formats have more than the one empty line
    between header and first block.
    """
    lines = Lines(data)
    title = lines.take()
    if title not in FILE_TITLES:
        raise lines.error(f"unknown file title {title!r}")
    lines.take_exactly("")
    header = _header(lines)
    for _ in range(lines_behind_header):
        lines.take_exactly("")
    blocks = []
    while True:
        lines.take_exactly("")
        if lines.peek() == FOOTER:
            break
        blocks.append(_block(lines, properties))
    lines.take()
    if lines.peek() is not None:
        lines.take()
        raise lines.error("text behind the footer")
    return Document(title, header, blocks)


def _header(lines: Lines) -> Dict[str, float]:
    header = {}
    for name in HEADER_FIELDS:
        fields = lines.take().split("\t")
        if len(fields) != 3 or fields[0] != "" or fields[1] != name:
            raise lines.error(f"header field {name!r} expected")
        header[name] = lines.number(fields[2])
        if header[name] <= 0.0:
            raise lines.error(f"{name!r} is not positive")
    return header


def _block(lines: Lines, properties: Properties) -> Block:
    title = lines.take()
    effect = _EFFECT.fullmatch(title)
    if effect is None and title not in properties:
        raise lines.error(f"unknown title {title!r}")
    columns = properties[title] if effect is None else EFFECT_POINT
    lines.take_exactly("\tFrame\t" + "\t".join(columns))
    rows: Dict[float, Tuple[float, ...]] = {}
    while lines.peek():
        fields = lines.take().split("\t")
        if fields[0] != "" or len(fields) != 2 + len(columns):
            raise lines.error(f"a frame and {len(columns)} values expected")
        frame, *values = (lines.number(field) for field in fields[1:])
        if rows and frame <= next(reversed(rows)):
            raise lines.error("frames do not ascend")
        rows[frame] = tuple(values)
    if effect is None:
        return Block(None, None, title, columns, rows)
    return Block(effect.group(1), int(effect.group(2)), effect.group(3), columns, rows)
