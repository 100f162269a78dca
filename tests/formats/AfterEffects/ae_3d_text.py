"""Strict reader of the text with which the importer plug-in of a compositing program makes a camera and nulls.

    *Marlo 3D Track Importer 2.0 Data
    *FilmSize: 102.047                              width of the film back; any unit, that of Zoom and FocalLength
    *FocalLength: 99.2
    *NumberOfNulls: 2
    *NullParent: Layer_1                            a null that others hang on
    *NullObject: Point 1 Parent: Layer_1
    *EndHeader
    Adobe After Effects 6.0 Keyframe Data           a whole keyframe document for the camera,
    ...                                             then one for each null of the header, in its order

The plug-in ties names to documents by nothing but their order, so a text with one too many shifts all that follow.
"""

import re
from dataclasses import dataclass
from typing import Dict, List, Tuple

import numpy as np

import keyframe_text
from keyframe_text import Document, KeyframeTextError

POSITION, SCALE, ZOOM = "Transform\tPosition", "Transform\tScale", "Camera Options\tZoom"
ROTATIONS = ("Transform\tX Rotation", "Transform\tY Rotation", "Transform\tRotation")
PROPERTIES: keyframe_text.Properties = {
    POSITION: ("X pixels", "Y pixels", "Z pixels"),
    ROTATIONS[0]: ("degrees",),
    ROTATIONS[1]: ("degrees",),
    ROTATIONS[2]: ("degrees",),
    SCALE: ("X percent", "Y percent", "Z percent"),
    ZOOM: ("pixels",),
}

END_OF_HEADER = b"*EndHeader\n"
END_OF_DOCUMENT = f"\n{keyframe_text.FOOTER}\n".encode()

_TITLE = re.compile(r"\*Marlo 3D Track Importer ([0-9]+\.[0-9]) Data")
_NUMBER_FIELDS = ("FilmSize", "FocalLength")
_NULL = re.compile(r"\*(NullParent|NullObject): (.+?)(?: Parent: (\S+))?")


@dataclass(frozen=True)
class Null:
    """`parent` is the index of the null that it hangs on, or -1."""
    name: str
    is_parent: bool
    parent: int
    document: Document


@dataclass(frozen=True)
class Text:
    version: str
    film_size: float
    focal_length: float
    camera: Document
    nulls: List[Null]


def parse(data: bytes) -> Text:
    """Reads a whole text; raises KeyframeTextError at the first thing that is out of order."""
    header, mark, body = data.partition(END_OF_HEADER)
    if not mark:
        raise KeyframeTextError("the header has no end")
    version, numbers, lines = _header(header)
    nulls = _null_lines(lines)
    documents = _documents(body)
    if len(documents) != len(nulls) + 1:
        raise KeyframeTextError(f"{len(documents)} documents for a camera and {len(nulls)} nulls")
    for index, document in enumerate(documents):
        _check_document(index, document, documents[0])
    return Text(version, *numbers, documents[0],
                [Null(*null, document) for null, document in zip(nulls, documents[1:])])


def _header(data: bytes) -> Tuple[str, List[float], List[str]]:
    """Version, film size and focal length, and the lines of the nulls."""
    lines = keyframe_text.Lines(data)
    title = _TITLE.fullmatch(lines.take())
    if title is None:
        raise lines.error("title expected")
    numbers = []
    for name in _NUMBER_FIELDS:
        numbers.append(lines.number(_field(lines, name)))
        if numbers[-1] <= 0.0:
            raise lines.error(f"{name} is not positive")
    count = _field(lines, "NumberOfNulls")
    if re.fullmatch("0|[1-9][0-9]*", count) is None:
        raise lines.error("a count expected")
    nulls = []
    while lines.peek() is not None:
        nulls.append(lines.take())
    if int(count) != len(nulls):
        raise KeyframeTextError(f"{len(nulls)} nulls where {count} are announced")
    return title.group(1), numbers, nulls


def _field(lines: keyframe_text.Lines, name: str) -> str:
    line, start = lines.take(), f"*{name}: "
    if not line.startswith(start):
        raise lines.error(f"{name} expected")
    return line[len(start):]


def _null_lines(lines: List[str]) -> List[Tuple[str, bool, int]]:
    nulls: List[Tuple[str, bool, int]] = []
    parents: Dict[str, int] = {}
    for line in lines:
        match = _NULL.fullmatch(line)
        if match is None:
            raise KeyframeTextError(f"{line!r} describes no null")
        kind, name, parent = match.groups()
        if parent is not None and parent not in parents:
            raise KeyframeTextError(f"{line!r}: no parent of that name stands above")
        nulls.append((name, kind == "NullParent", -1 if parent is None else parents[parent]))
        if kind == "NullParent":
            parents[name] = len(nulls) - 1
    return nulls


def _documents(body: bytes) -> List[Document]:
    pieces = body.split(END_OF_DOCUMENT)
    if pieces[-1]:
        raise KeyframeTextError("text behind the last document")
    documents = []
    for index, piece in enumerate(pieces[:-1]):
        try:
            documents.append(keyframe_text.parse(piece + END_OF_DOCUMENT, PROPERTIES, lines_behind_header=1))
        except KeyframeTextError as error:
            raise KeyframeTextError(f"document {index}: {error}") from None
    return documents


def _check_document(index: int, document: Document, camera: Document) -> None:
    """A camera has no scale and may have a zoom, a null no zoom and may have a scale; the rest is alike."""
    titles = [block.param for block in document.blocks]
    optional = ZOOM if index == 0 else SCALE
    needed = [POSITION, *ROTATIONS]
    if titles not in (needed, needed + [optional]):
        raise KeyframeTextError(f"document {index} has the blocks {titles}")
    if document.title != keyframe_text.FILE_TITLES[0] or document.header != camera.header:
        raise KeyframeTextError(f"document {index} has the header of another program or picture")
    frames = {tuple(block.rows) for block in document.blocks}
    if len(frames) != 1 or not min(frames):
        raise KeyframeTextError(f"document {index}: its blocks have different frames, or none")


def rows(document: Document, *titles: str) -> Tuple[np.ndarray, np.ndarray]:
    """Frames, and the values of these blocks side by side as (frames, numbers)."""
    for title in titles:
        if not has(document, title):
            raise KeyframeTextError(f"there is no block {title!r}")
    blocks = [document.layer_property(title) for title in titles]
    values = [np.array(list(block.rows.values()), float) for block in blocks]
    return np.array(list(blocks[0].rows), float), np.concatenate(values, axis=1)


def has(document: Document, title: str) -> bool:
    return any(block.param == title for block in document.blocks)
