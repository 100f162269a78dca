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

from dataclasses import dataclass
from functools import lru_cache
from typing import Dict, List, Tuple

import numpy as np

import keyframe_text
from keyframe_text import Document
from texts import Lines, TextError, decoded, six_digits

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

END_OF_HEADER = "*EndHeader\n"
END_OF_DOCUMENT = f"\n{keyframe_text.FOOTER}\n"


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
    """Reads a whole text; raises TextError at the first thing that is out of order."""
    header, mark, body = decoded(data).partition(END_OF_HEADER)
    if not mark:
        raise TextError("the header has no end")
    lines = Lines(header)
    version, = lines.match(r"\*Marlo 3D Track Importer ([0-9]+\.[0-9]) Data")
    numbers = [six_digits(lines.match(rf"\*{name}: (.*)")[0]) for name in ("FilmSize", "FocalLength")]
    if min(numbers) <= 0.0:
        raise TextError("a film size or focal length that isn't positive")
    count = int(lines.match(r"\*NumberOfNulls: (0|[1-9][0-9]*)")[0])
    nulls = _null_lines(lines, count)
    lines.end()
    documents = _documents(body)
    if len(documents) != len(nulls) + 1:
        raise TextError(f"{len(documents)} documents for a camera and {len(nulls)} nulls")
    for index, document in enumerate(documents):
        _check_document(index, document, documents[0])
    return Text(version, *numbers, documents[0],
                [Null(*null, document) for null, document in zip(nulls, documents[1:])])


def _null_lines(lines: Lines, count: int) -> List[Tuple[str, bool, int]]:
    nulls: List[Tuple[str, bool, int]] = []
    parents: Dict[str, int] = {}
    for index in range(count):
        kind, name, parent = lines.match(r"\*(NullParent|NullObject): (.+?)(?: Parent: (\S+))?")
        if parent is not None and parent not in parents:
            raise lines.error(f"no parent of the name {parent} stands above")
        nulls.append((name, kind == "NullParent", -1 if parent is None else parents[parent]))
        if kind == "NullParent":
            parents[name] = index
    return nulls


def _documents(body: str) -> List[Document]:
    *pieces, rest = body.split(END_OF_DOCUMENT)
    if rest:
        raise TextError("text behind the last document")
    return [_document(piece + END_OF_DOCUMENT) for piece in pieces]


@lru_cache(maxsize=1024)
def _document(text: str) -> Document:
    return keyframe_text.parse(text.encode("utf-8"), PROPERTIES, lines_behind_header=1)


def _check_document(index: int, document: Document, camera: Document) -> None:
    """A camera has no scale and may have a zoom, a null no zoom and may have a scale; the rest is alike."""
    titles = [block.param for block in document.blocks]
    optional = ZOOM if index == 0 else SCALE
    needed = [POSITION, *ROTATIONS]
    if titles not in (needed, needed + [optional]):
        raise TextError(f"document {index} has the blocks {titles}")
    if document.title != keyframe_text.FILE_TITLES[0] or document.header != camera.header:
        raise TextError(f"document {index} has the header of another program or picture")
    frames = {tuple(block.rows) for block in document.blocks}
    if len(frames) != 1 or not min(frames):
        raise TextError(f"document {index}: its blocks have different frames, or none")


@lru_cache(maxsize=4096)
def rows(document: Document, *titles: str) -> Tuple[np.ndarray, np.ndarray]:
    """Frames, and the values of these blocks side by side as (frames, numbers)."""
    for title in titles:
        if not has(document, title):
            raise TextError(f"there is no block {title!r}")
    blocks = [document.layer_property(title) for title in titles]
    values = [np.array(list(block.rows.values()), float) for block in blocks]
    return np.array(list(blocks[0].rows), float), np.concatenate(values, axis=1)


def has(document: Document, title: str) -> bool:
    return any(block.param == title for block in document.blocks)
