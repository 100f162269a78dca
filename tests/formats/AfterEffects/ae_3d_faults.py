"""Faults put into a good text of a camera with nulls: the importer would take them without a word, and an artist finds
out when nothing sticks."""

from typing import List, Tuple

import keyframe_text
from ae_3d_text import POSITION, ROTATIONS, SCALE, ZOOM
from faults import Faults, Place

# What replaces what, once, in any text.
_FORM = (
    ("no end of the header", "*EndHeader\n", ""), ("text behind the documents", "\0", "\n"),
    ("carriage return", "Data\n", "Data\r\n"), ("byte order mark", "*Marlo", "\ufeff*Marlo"),
    ("another program", "*Marlo 3D", "*Marlow 3D"), ("an unknown line", "*FocalLength", "*FocalDistance"),
    ("film size of zero", "*FilmSize: ", "*FilmSize: 0\n*FilmSize: "), ("no null count", "OfNulls: ", "OfNulls: x"),
    ("an unknown kind of null", "*NullObject", "*NullThing"),
    ("a null without a name", "*NullObject: ", "*NullObject: \n"),
    ("one empty line behind a header", "\n\n\nTransform", "\n\nTransform"),
    ("degrees of the transform formats", "\tdegrees", "\tDegrees"),
    ("a bare property", "Transform\tPosition", "Position"),
    ("another name of the z rotation", "Transform\tRotation", "Transform\tZ Rotation"),
    ("a document of another program", "Adobe After Effects 6.0", "Assimilate SCRATCH"),
    ("a document of another rate", "Per Second\t24", "Per Second\t25"), ("another version", ".0 Data", ".1 Data"),
)


class TextFaults:
    """`seen` are those that the picture alone has to show; `told` are of form, or of numbers that move no pixel.

    Document 0 is the camera's. A text has at least two nulls, the last two of which stand in different places.
    """

    def __init__(self, data: bytes) -> None:
        self.seen, self.told = Faults(data), Faults(data)
        end = self.seen.place(r"\*EndHeader\n")[0]
        self._lines = self.seen.places(r"^\*[^\n]*\n", (0, end))
        self._nulls = self._lines[4:]
        self._documents = self.seen.places(r"^Adobe After.*?^End of Keyframe Data\n")
        self._tables = [{table.title: table for table in keyframe_text.tables(self.seen, document)}
                        for document in self._documents]
        self._anywhere()
        if any(ZOOM in tables for tables in self._tables):
            self.seen.number("zoom 1 % off", self._column(0, ZOOM, 1), lambda zoom: 1.01 * zoom)
            self.told.drop("no zoom", self._tables[0][ZOOM].place)
        if len([line for line in self._nulls if "NullParent" in self.seen.at(line)]) > 2:
            self._of_parents()

    def _column(self, document: int, title: str, index: int) -> List[Place]:
        return self._tables[document][title].column(index)

    def _late(self, name: str, document: int) -> None:
        """Values come a row late."""
        self.seen.late(name, *(column for table in self._tables[document].values() for column in table.values()))

    def _without(self, name: str, null: int) -> None:
        count = self.told.places(r"\d+", self._lines[3])[0]
        fewer = str(len(self._nulls) - 1)
        self.told.put(name, (self._documents[1:][null], ""), (self._nulls[null], ""), (count, fewer))

    def _positions(self, *columns: int) -> List[Place]:
        return [place for tables in self._tables for column in columns for place in tables[POSITION].column(column)]

    def _anywhere(self) -> None:
        seen, told, column = self.seen, self.told, self._column
        seen.negate("y of the camera flipped", column(0, POSITION, 2))
        seen.negate("y of all positions flipped", self._positions(2))
        seen.negate("z of a null flipped", column(-1, POSITION, 3))
        for title in ROTATIONS:
            seen.negate(f"{title} reversed", column(0, title, 1))
        for one, other in zip(ROTATIONS, ROTATIONS[1:]):
            seen.swap(f"{one} and {other} swapped", column(0, one, 1), column(0, other, 1))
        seen.swap("x and y of the camera swapped", column(0, POSITION, 1), column(0, POSITION, 2))
        seen.swap("y and z of a null swapped", column(-1, POSITION, 2), column(-1, POSITION, 3))
        self._late("the camera one frame late", 0)
        seen.swap("two documents swapped", self._documents[-1:], self._documents[-2:-1])
        film, focal, count = (told.place(r": ([-.\de+]+)\n", line) for line in self._lines[1:4])
        seen.number("film size 1 % off", [film], lambda size: 1.01 * size)
        told.number("focal length 1 % off", [focal], lambda length: 1.01 * length)
        told.number("number of nulls off", [count], lambda nulls: 2 * nulls)
        told.number("all frames one later", [place for tables in self._tables for table in tables.values()
                                             for place in table.column(0)], lambda frame: frame + 1.0)
        told.number("scene twice as large", self._positions(1, 2, 3), lambda value: 2.0 * value)
        told.drop("a row of the camera missing", *(table.rows[4] for table in self._tables[0].values()))
        told.drop("the document of a null missing", self._documents[1])
        self._without("a null missing", 0)
        self._without("the last null missing", -1)
        told.repeat("a document too many", self._documents[-1])
        told.put("a null of another name", (told.place(": (P)", self._nulls[-1]), "Q"))
        told.put("an object called parent", (told.place("NullObject", self._nulls[-1]), "NullParent"))
        told.replace_all(_FORM)
        for index, tables in enumerate(self._tables):
            for title, table in tables.items():
                keyframe_text.blur_values(told, table, f"document {index}, {title[10:]}")

    def _of_parents(self) -> None:
        """For a text with a moving layer in a moving group."""
        names = [self.seen.at(line)[1:-1] for line in self._nulls]
        held = next(i for i, name in enumerate(names) if " Parent: " in name)
        parent = self.seen.place(r" Parent: \S+", self._nulls[held])
        self.told.put("an unknown parent", (parent, self.told.at(parent) + "_2"))
        self.seen.drop("a parent forgotten", parent)
        last = self.seen.place(r" Parent: (\S+)", self._nulls[-1])
        other = next(name.split(": ")[1].split(" Parent")[0] for name in names if name.startswith("NullParent")
                     and not name.startswith(f"NullParent: {self.seen.at(last)}"))
        self.seen.put("another's parent", (last, other))
        between = 1 + next(i for i, name in enumerate(names) if name.startswith("NullParent") and " Parent: " in name)
        self.seen.negate("a parent's turn reversed", self._column(between, ROTATIONS[0], 1))
        self._late("a parent one frame late", between)
        self.seen.number("a parent 1 % larger", self._column(between, SCALE, 2), lambda percent: 1.01 * percent)
        self.told.swap("layer ahead of its group", self._nulls[:1], self._nulls[1:2])


def faults(data: bytes) -> Tuple[Faults, Faults]:
    """What the picture alone has to show, and the rest."""
    text = TextFaults(data)
    return text.seen, text.told
