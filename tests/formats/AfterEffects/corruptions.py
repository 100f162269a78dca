"""Faults put into good keyframe texts, to prove that the readers notice them.

A fault is a name and a text in which one thing is wrong that a program would paste without a word.
"""

from itertools import combinations
from typing import Callable, Iterator, List, Tuple

from keyframe_text import half_units

Fault = Tuple[str, bytes]
Rows = List[List[str]]

GOOD = ("Adobe After Effects 6.0 Keyframe Data\n\n\tUnits Per Second\t24\n\tSource Width\t1920\n\tSource Height\t1080\n"
        "\tSource Pixel Aspect Ratio\t1\n\tComp Pixel Aspect Ratio\t1\n\n"
        "Rotation\n\tFrame\tDegrees\n\t0\t0\n\t0.5\t-1.5e-05\n\n"
        "Effects\tADBE Corner Pin #1\tADBE Corner Pin-0001\n\tFrame\tX pixels\tY pixels\n"
        "\t0\t100\t980\n\t1\t101\t980.5\n\nEnd of Keyframe Data\n")

# What replaces what in the text above.
_BAD_TEXTS = (
    ("carriage return", "\n", "\r\n"), ("byte order mark", "Adobe", "\ufeffAdobe"),
    ("another title", "6.0 Keyframe", "7.0 Keyframe"), ("no footer", "\nEnd of Keyframe Data\n", ""),
    ("no line end at the end", "Data\n\x00", "Data"), ("text behind the footer", "Data\n\x00", "Data\n\n"),
    ("no blank line behind the title", "Data\n\n\tUnits", "Data\n\tUnits"),
    ("missing header field", "\tSource Height\t1080\n", ""), ("header field twice", "Source Height", "Source Width"),
    ("rate of zero", "Second\t24", "Second\t0"), ("two blank lines", "\n\nRotation", "\n\n\nRotation"),
    ("no blank line between blocks", "\n\nEffects", "\nEffects"), ("unknown property", "Rotation", "Turning"),
    ("effect without a number", "Pin #1", "Pin"), ("effect number 0", "#1", "#0"),
    ("effect without a parameter", "\tADBE Corner Pin-0001", ""), ("column of another unit", "Degrees", "Radians"),
    ("missing column title", "\tX pixels\tY pixels", "\tX pixels"), ("value too few", "\t100\t980\n", "\t100\n"),
    ("value too many", "\t100\t980\n", "\t100\t980\t0\n"), ("row without a leading tab", "\t0\t100", "0\t100"),
    ("frame twice", "\t1\t101", "\t0\t101"), ("frames descend", "\t0.5\t", "\t-0.5\t"),
    ("not a number", "980.5", "nan"), ("infinite", "980.5", "inf"), ("decimal comma", "980.5", "980,5"),
    ("space around a number", "980.5", "980.5 "), ("empty value", "980.5", ""), ("hexadecimal", "980.5", "0x3d4"),
    ("underscore", "980.5", "9_80.5"), ("plus sign", "980.5", "+980.5"), ("bare point", "980.5", "980."),
    ("seven digits", "980.5", "980.5678"), ("other digits", "980.5", "٩٨٠"),
)


def malformed() -> Iterator[Fault]:
    """Texts that the parser must refuse."""
    for name, old, new in _BAD_TEXTS:
        marked = GOOD + "\x00"
        if old not in marked:
            raise ValueError(f"nothing to replace for {name!r}")
        yield name, marked.replace(old, new, -1 if old == "\n" else 1).rstrip("\x00").encode("utf-8")
    yield "not UTF-8", GOOD.replace("Pin-0001", "Pin-\xff").encode("latin-1")


class EditableText:
    """A text in blocks of title and rows that can be changed and put together again."""

    def __init__(self, data: bytes) -> None:
        sections = data.decode("utf-8").split("\n\n")
        self._head, self._foot = sections[:2], sections[-1]
        self.height = float(sections[1].split("Source Height\t")[1].split("\n")[0])
        lines = [section.split("\n") for section in sections[2:-1]]
        self._titles = [block[:2] for block in lines]
        self.rows: List[Rows] = [[row.split("\t")[1:] for row in block[2:]] for block in lines]

    def find(self, title: str) -> List[int]:
        """Indices of the blocks whose title starts with these words."""
        return [i for i, block in enumerate(self._titles) if block[0].startswith(title)]

    def drop(self, block: int) -> None:
        del self._titles[block], self.rows[block]

    def data(self) -> bytes:
        blocks = ["\n".join(title + ["\t".join([""] + row) for row in rows])
                  for title, rows in zip(self._titles, self.rows)]
        return "\n\n".join(self._head + blocks + [self._foot]).encode("utf-8")


def _changed(data: bytes, change: Callable[[EditableText], None]) -> bytes:
    text = EditableText(data)
    change(text)
    if text.data() == data:
        raise ValueError("the fault changes nothing")
    return text.data()


def two_units_off(number: str) -> str:
    """A printed number with 2 more units of its sixth digit."""
    value = float(number)
    step = 4.0 * float(half_units(value)) or 2e-5
    # 999.999 is lowered, as it would turn into a number with a coarser sixth digit.
    coarser = half_units(value + step) > step / 2.0
    return f"{value - step if coarser else value + step:.6g}"


def map_column(rows: Rows, column: int, change: Callable[[float], float]) -> None:
    for row in rows:
        row[column] = f"{change(float(row[column])):.6g}"


def misplaced(data: bytes) -> Iterator[Fault]:
    """Well-formed texts with the usual rows in which the picture is wrong."""
    text = EditableText(data)
    pins, scales, rotations = text.find("Effects"), text.find("Scale"), text.find("Rotation")

    def flip(changed: EditableText) -> None:
        for block in pins or changed.find("Position"):
            map_column(changed.rows[block], 2, lambda y: changed.height - y)
    yield "y flipped", _changed(data, flip)

    for one, other in combinations(pins, 2):
        def swap(changed: EditableText) -> None:
            changed.rows[one], changed.rows[other] = changed.rows[other], changed.rows[one]
        yield f"corners {one} and {other} swapped", _changed(data, swap)

    for block in pins or text.find("Position"):
        def shift(changed: EditableText) -> None:
            values = [row[1:] for row in changed.rows[block]]
            for row, earlier in zip(changed.rows[block], values[:1] + values[:-1]):
                row[1:] = earlier
        yield f"block {block} one frame late", _changed(data, shift)

    for block in rotations:
        yield "rotation reversed", _changed(data, lambda changed: map_column(changed.rows[block], 1, lambda r: -r))
    for block in scales:
        def grow(changed: EditableText) -> None:
            map_column(changed.rows[block], 1, lambda percent: percent * 1.01)
            map_column(changed.rows[block], 2, lambda percent: percent * 1.01)
        yield "scale 1 % off", _changed(data, grow)


def incomplete(data: bytes) -> Iterator[Fault]:
    """Texts that lack a row, one for each block."""
    for block, rows in enumerate(EditableText(data).rows):
        for at in sorted({0, len(rows) // 2, len(rows) - 1}):
            yield f"block {block} without row {at}", _changed(data, lambda changed: changed.rows[block].pop(at))


def imprecise(data: bytes) -> Iterator[Fault]:
    """Texts in which one value is off by 2 units of its sixth digit, one for each column of each block."""
    for block, rows in enumerate(EditableText(data).rows):
        at = len(rows) // 2
        for column in range(1, len(rows[at])):
            def raise_value(changed: EditableText) -> None:
                changed.rows[block][at][column] = two_units_off(changed.rows[block][at][column])
            yield f"block {block}, row {at}, value {column} off by 2 units", _changed(data, raise_value)
