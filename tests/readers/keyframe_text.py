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
refuses instead, with the number of the line. Faults of such texts are put into their blocks, which `tables` finds.
"""

import re
from dataclasses import dataclass
from typing import Dict, List, Optional, Tuple

from faults import Faults, Place
from texts import Lines, decoded, six_digits

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

_EFFECT = re.compile(r"Effects\t([^\t#]+) #([1-9][0-9]*)\t([^\t]+)")


@dataclass(frozen=True)
class Block:
    """The keys of one parameter. `effect` and `index` are None for a property of the layer itself."""
    effect: Optional[str]
    index: Optional[int]
    param: str
    rows: Dict[float, Tuple[float, ...]]


@dataclass(frozen=True, eq=False)
class Document:
    title: str
    header: Dict[str, float]
    blocks: List[Block]

    def layer_property(self, name: str) -> Block:
        """The one block of a layer property; raises KeyError when there is none."""
        return {block.param: block for block in self.blocks if block.effect is None}[name]

    def effect_blocks(self) -> List[Block]:
        return [block for block in self.blocks if block.effect is not None]


def parse(data: bytes, properties: Properties = LAYER_PROPERTIES, lines_behind_header: int = 0) -> Document:
    """Reads a whole text; raises TextError at the first thing that is out of order.

    `properties` are those that a layer may have, with their columns. Some formats have more than the one empty line
    between header and first block.
    """
    lines = Lines(decoded(data))
    title = lines.take()
    if title not in FILE_TITLES:
        raise lines.error(f"unknown file title {title!r}")
    fields = header(lines)
    lines.expect(*[""] * lines_behind_header)
    blocks = []
    while True:
        lines.expect("")
        if lines.peek() == FOOTER:
            break
        blocks.append(_block(lines, properties))
    lines.expect(FOOTER)
    lines.end()
    return Document(title, fields, blocks)


def header(lines: Lines) -> Dict[str, float]:
    """The fields of a header and the empty line ahead of them."""
    lines.expect("")
    fields = {name: six_digits(lines.match(f"\t{name}\t(.*)")[0]) for name in HEADER_FIELDS}
    if min(fields.values()) <= 0.0:
        raise lines.error("a field that isn't positive")
    return fields


def _block(lines: Lines, properties: Properties) -> Block:
    title = lines.take()
    effect = _EFFECT.fullmatch(title)
    if effect is None and title not in properties:
        raise lines.error(f"unknown title {title!r}")
    columns = properties[title] if effect is None else EFFECT_POINT
    lines.expect("\tFrame\t" + "\t".join(columns))
    rows: Dict[float, Tuple[float, ...]] = {}
    while lines.left() and lines.peek():
        fields = lines.take().split("\t")
        if fields[0] != "" or len(fields) != 2 + len(columns):
            raise lines.error(f"a frame and {len(columns)} values expected")
        frame, *values = map(six_digits, fields[1:])
        if rows and frame <= next(reversed(rows)):
            raise lines.error("frames do not ascend")
        rows[frame] = tuple(values)
    if effect is None:
        return Block(None, None, title, rows)
    return Block(effect.group(1), int(effect.group(2)), effect.group(3), rows)


# ---- places of faults

@dataclass(frozen=True)
class Table:
    """A block with the empty line behind it, its rows with their ends, and their cells."""
    title: str
    place: Place
    rows: List[Place]
    cells: List[List[Place]]

    def column(self, index: int) -> List[Place]:
        """Column 0 holds the frames."""
        return [row[index] for row in self.cells]

    def values(self) -> List[List[Place]]:
        """All columns but that of the frames."""
        return [self.column(index) for index in range(1, len(self.cells[0]))]


def tables(faults: Faults, within: Place = (0, -1)) -> List[Table]:
    found = []
    for start, end in faults.places(r"^[^\t\n][^\n]*\n\tFrame[^\n]*\n(?:\t[^\n]*\n)+\n", within):
        title, columns, *_ = faults.text[start:end].split("\n")
        rows = faults.places(r"\t[^\n]*\n", (start + len(title) + len(columns) + 2, end))
        cells = [[place for place in faults.places(r"(?<=\t)[^\t\n]*", row)] for row in rows]
        found.append(Table(title, (start, end), rows, cells))
    return found


def lose_rows(faults: Faults, table: Table, name: str) -> None:
    """The first row, one in the middle and the last one."""
    for at in sorted({0, len(table.rows) // 2, len(table.rows) - 1}):
        faults.drop(f"{name} without row {at}", table.rows[at])


def blur_values(faults: Faults, table: Table, name: str) -> None:
    """Each value of the middle row, two units off."""
    for column, place in enumerate(table.cells[len(table.rows) // 2][1:]):
        faults.off(f"{name}, value {column}", place)
