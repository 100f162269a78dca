"""Faults put into a good text of a camera with nulls, to prove that the reader notices them.

A fault is a name and a text in which one thing is wrong that the importer would take without a word, and that an artist
finds out when nothing sticks.
"""

from typing import Callable, Iterator, List, Tuple

from ae_3d_text import END_OF_DOCUMENT, END_OF_HEADER, POSITION, ROTATIONS, SCALE, ZOOM
from corruptions import EditableText, Fault, map_column, two_units_off


class _Text:
    """Header lines and documents that can be changed and put together again; document 0 is the camera."""

    def __init__(self, data: bytes) -> None:
        header, _, body = data.partition(END_OF_HEADER)
        self.header = header.decode("utf-8").split("\n")[:-1]
        # The second empty line behind a document's header is kept apart from the split into blocks.
        pieces = [piece.replace(b"\n\n\n", b"\n\n") for piece in body.split(END_OF_DOCUMENT)[:-1]]
        self.documents = [EditableText(piece + END_OF_DOCUMENT) for piece in pieces]

    def nulls(self) -> List[int]:
        """Lines of the header that name nulls; the null of line i has document i - 3."""
        return [i for i, line in enumerate(self.header) if line.startswith("*Null")]

    def data(self) -> bytes:
        header = "".join(line + "\n" for line in self.header).encode("utf-8") + END_OF_HEADER
        return header + b"".join(self._document(document) for document in self.documents)

    @staticmethod
    def _document(document: EditableText) -> bytes:
        title, fields, rest = document.data().split(b"\n\n", 2)
        return b"\n\n".join([title, fields, b"\n" + rest])

    def rows(self, document: int, title: str) -> List[List[str]]:
        text = self.documents[document]
        return text.rows[text.find(title)[0]]

    def map(self, document: int, title: str, column: int, change: Callable[[float], float]) -> None:
        map_column(self.rows(document, title), column, change)

    def late(self, document: int) -> None:
        """Values come a row late."""
        for rows in self.documents[document].rows:
            values = [row[1:] for row in rows]
            for row, earlier in zip(rows, values[:1] + values[:-1]):
                row[1:] = earlier


def _swap_columns(rows: List[List[str]], one: int, other: int) -> None:
    for row in rows:
        row[one], row[other] = row[other], row[one]


def _swap_rotations(text: _Text, one: str, other: str) -> None:
    for first, second in zip(text.rows(0, one), text.rows(0, other)):
        first[1], second[1] = second[1], first[1]


def _mirror(text: _Text) -> None:
    for document in range(len(text.documents)):
        text.map(document, POSITION, 2, lambda y: -y)


def _move_frames(text: _Text) -> None:
    for document in text.documents:
        for rows in document.rows:
            map_column(rows, 0, lambda frame: frame + 1.0)


def _remove_null(text: _Text, index: int, with_line: bool) -> None:
    del text.documents[index + 1]
    if with_line:
        del text.header[text.nulls()[index]]
        text.header[3] = f"*NumberOfNulls: {len(text.nulls())}"


def _swap_documents(text: _Text) -> None:
    text.documents[-1], text.documents[-2] = text.documents[-2], text.documents[-1]


def _grow(text: _Text) -> None:
    """Everything twice as far away: no pixel moves."""
    for document in range(len(text.documents)):
        for column in (1, 2, 3):
            text.map(document, POSITION, column, lambda value: 2.0 * value)


def _replaced(at: int, old: str, new: str) -> Callable[[_Text], None]:
    def change(text: _Text) -> None:
        text.header[at] = text.header[at].replace(old, new)
    return change


def _times(at: int, factor: float) -> Callable[[_Text], None]:
    def change(text: _Text) -> None:
        name, value = text.header[at].split(": ")
        text.header[at] = f"{name}: {float(value) * factor:.6g}"
    return change


# Rows: a name, whether the picture alone has to show the fault (of the others some are faults of form, some of numbers
# that move no pixel), and the change.
Rows = Tuple[Tuple[str, bool, Callable[[_Text], object]], ...]

# For any text with at least two nulls, the last two of which stand in different places.
_ANY: Rows = (
    ("y of the camera flipped", True, lambda text: text.map(0, POSITION, 2, lambda y: -y)),
    ("y of all positions flipped", True, _mirror),
    ("z of a null flipped", True, lambda text: text.map(-1, POSITION, 3, lambda z: -z)),
    ("x rotation reversed", True, lambda text: text.map(0, ROTATIONS[0], 1, lambda x: -x)),
    ("y rotation reversed", True, lambda text: text.map(0, ROTATIONS[1], 1, lambda y: -y)),
    ("z rotation reversed", True, lambda text: text.map(0, ROTATIONS[2], 1, lambda z: -z)),
    ("x and y rotation swapped", True, lambda text: _swap_rotations(text, ROTATIONS[0], ROTATIONS[1])),
    ("y and z rotation swapped", True, lambda text: _swap_rotations(text, ROTATIONS[1], ROTATIONS[2])),
    ("x and y of the camera swapped", True, lambda text: _swap_columns(text.rows(0, POSITION), 1, 2)),
    ("y and z of a null swapped", True, lambda text: _swap_columns(text.rows(-1, POSITION), 2, 3)),
    ("all frames one later", False, _move_frames),
    ("the camera one frame late", True, lambda text: text.late(0)),
    ("a row of the camera missing", False, lambda text: [rows.pop(4) for rows in text.documents[0].rows]),
    ("the document of a null missing", False, lambda text: _remove_null(text, 0, False)),
    ("a null missing", False, lambda text: _remove_null(text, 0, True)),
    ("the last null missing", False, lambda text: _remove_null(text, -1, True)),
    ("a document too many", False, lambda text: text.documents.append(text.documents[-1])),
    ("two documents swapped", True, _swap_documents),
    ("film size 1 % off", True, _times(1, 1.01)),
    ("focal length 1 % off", False, _times(2, 1.01)),
    ("number of nulls off", False, _times(3, 2.0)),
    ("another version", False, _replaced(0, ".0 Data", ".1 Data")),
    ("a null of another name", False, _replaced(-1, ": P", ": Q")),
    ("an object called parent", False, _replaced(-1, "NullObject", "NullParent")),
    ("scene twice as large", False, _grow),
)

# For a text with a keyed focal length.
_ZOOM: Rows = (
    ("zoom 1 % off", True, lambda text: text.map(0, ZOOM, 1, lambda zoom: 1.01 * zoom)),
    ("no zoom", False, lambda text: text.documents[0].drop(text.documents[0].find(ZOOM)[0])),
)


def _parent_line(text: _Text) -> int:
    """The first line of a null that has a parent."""
    return next(i for i in text.nulls() if " Parent: " in text.header[i])


def _rename_parent(text: _Text) -> None:
    text.header[_parent_line(text)] += "_2"


def _drop_parent(text: _Text) -> None:
    at = _parent_line(text)
    text.header[at] = text.header[at].split(" Parent: ")[0]


def _wrong_parent(text: _Text) -> None:
    """A null hangs on what its parent hangs on, or on another one's parent."""
    parents = [text.header[i].split(": ")[1].split(" Parent")[0] for i in text.nulls()
               if text.header[i].startswith("*NullParent")]
    at = text.nulls()[-1]
    name, parent = text.header[at].split(" Parent: ")
    text.header[at] = f"{name} Parent: {next(other for other in parents if other != parent)}"


def _document_of_parent(text: _Text) -> int:
    """The document of the first parent that has a parent."""
    return 1 + next(i for i, line in enumerate(text.nulls())
                    if text.header[line].startswith("*NullParent") and " Parent: " in text.header[line])


# For a text with a moving layer in a moving group.
_PARENTS: Rows = (
    ("an unknown parent", False, _rename_parent),
    ("a parent forgotten", True, _drop_parent),
    ("another's parent", True, _wrong_parent),
    ("a parent's turn reversed", True, lambda text: text.map(_document_of_parent(text), ROTATIONS[0], 1, lambda x: -x)),
    ("a parent one frame late", True, lambda text: text.late(_document_of_parent(text))),
    ("a parent 1 % larger", True, lambda text: text.map(_document_of_parent(text), SCALE, 2, lambda s: 1.01 * s)),
    ("layer ahead of its group", False, lambda text: text.header.insert(4, text.header.pop(5))),
)


def _changed(data: bytes, change: Callable[[_Text], object]) -> bytes:
    text = _Text(data)
    if text.data() != data:
        raise ValueError("the text does not come back as it was")
    change(text)
    if text.data() == data:
        raise ValueError("the fault changes nothing")
    return text.data()


def _imprecise(data: bytes) -> Iterator[Fault]:
    """One value off by 2 units of its sixth digit, for each column, in the middle of each block."""
    for index, document in enumerate(_Text(data).documents):
        for title in (POSITION, *ROTATIONS) + (SCALE,) * (index > 0):
            for column in range(1, len(document.rows[document.find(title)[0]][0])):
                def change(text: _Text) -> None:
                    rows = text.rows(index, title)
                    row = rows[len(rows) // 2]
                    row[column] = two_units_off(row[column])
                yield f"document {index}, {title[10:]}, value {column} off by 2 units", _changed(data, change)


def faults(data: bytes, zoom: bool, parents: bool) -> Iterator[Tuple[str, bool, bytes]]:
    """Names, whether the picture alone has to show it, and texts."""
    for table in (_ANY,) + (_ZOOM,) * zoom + (_PARENTS,) * parents:
        for name, in_picture, change in table:
            try:
                yield name, in_picture, _changed(data, change)
            except ValueError as error:
                raise ValueError(f"{name}: {error}") from None
    for name, text in _imprecise(data):
        yield name, False, text


# What replaces what, once, in any text.
_BAD_FORM = (
    ("no end of the header", "*EndHeader\n", ""), ("text behind the documents", "\x00", "\n"),
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
    ("a document of another rate", "Per Second\t24", "Per Second\t25"),
)


def malformed(data: bytes) -> Iterator[Fault]:
    """Texts that the parser must refuse."""
    text = data.decode("utf-8") + "\x00"
    for name, old, new in _BAD_FORM:
        if old not in text:
            raise ValueError(f"nothing to replace for {name!r}")
        yield name, text.replace(old, new, 1).rstrip("\x00").encode("utf-8")
