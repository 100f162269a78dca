"""Archives as plain objects with numbers, as the Alembic library's own reader gives them."""

from dataclasses import dataclass, field
from pathlib import Path
from typing import Dict, Iterator, List, Optional, Tuple

import alembic3d
import numpy as np
from alembic3d import AbcGeom
from alembic3d.Abc import GetArchiveInfo, IArchive, IBox3dProperty, IObject, ISampleSelector

assert alembic3d is not None

# What is kept of a camera's sample, by the library's names.
LENS = ("FocalLength", "HorizontalAperture", "VerticalAperture", "LensSqueezeRatio", "HorizontalFilmOffset",
        "VerticalFilmOffset", "NearClippingPlane", "FarClippingPlane")
FOCAL, ACROSS, DOWN, SQUEEZE, SHIFT_ACROSS, SHIFT_DOWN, NEAR, FAR = range(len(LENS))


@dataclass
class Thing:
    """An object of an archive: xform, camera, mesh, points, or other.

    `samples` stand at `times` (seconds): matrices on column vectors, lenses in the order of LENS, or positions. Faces
    are those of the first sample; `uvs` has a pair for each corner when `scope` is kFacevaryingScope.
    """
    name: str
    kind: str
    times: List[float]
    samples: np.ndarray
    counts: List[int] = field(default_factory=list)
    indices: List[int] = field(default_factory=list)
    uvs: Optional[np.ndarray] = None
    scope: str = ""
    bounds: Optional[np.ndarray] = None
    children: List["Thing"] = field(default_factory=list)

    def child(self, name: str) -> "Thing":
        for child in self.children:
            if child.name == name:
                return child
        raise ValueError(f"{self.name} has no child {name}, but {[child.name for child in self.children]}")

    def all_below(self) -> Iterator["Thing"]:
        for child in self.children:
            yield child
            yield from child.all_below()


@dataclass
class Archive:
    top: Thing
    info: Dict[str, str]


def read(data: bytes, scratch: Path) -> Archive:
    """The library reads files only."""
    file = scratch / "read.abc"
    file.write_bytes(data)
    try:
        archive = IArchive(str(file))
        info = GetArchiveInfo(archive)
        top = _thing(archive.getTop())
        properties = archive.getTop().getProperties()
        if properties.getPropertyHeader(".childBnds") is not None:
            bounds = IBox3dProperty(properties, ".childBnds")
            top.times = _times(bounds)
            top.bounds = np.array([[list(box.min()), list(box.max())] for box in
                                   (bounds.getValue(ISampleSelector(time)) for time in top.times)])
    except RuntimeError as error:
        raise ValueError(f"the library refuses it: {error}") from error
    return Archive(top, info)


def _times(sampled) -> List[float]:
    sampling = sampled.getTimeSampling()
    return [sampling.getSampleTime(i) for i in range(sampled.getNumSamples())]


def _values(schema) -> Iterator[object]:
    sampling = schema.getTimeSampling()
    for i in range(schema.getNumSamples()):
        yield schema.getValue(ISampleSelector(sampling.getSampleTime(i)))


def _thing(source: IObject) -> Thing:
    header = source.getHeader()
    thing = Thing(source.getName(), "other", [], np.zeros(0))
    for kind, reader, interface in (("xform", _xform, AbcGeom.IXform), ("camera", _camera, AbcGeom.ICamera),
                                    ("mesh", _mesh, AbcGeom.IPolyMesh), ("points", _points, AbcGeom.IPoints)):
        if interface.matches(header):
            schema = interface(source.getParent(), source.getName()).getSchema()
            thing.kind, thing.times = kind, _times(schema)
            reader(thing, schema)
    thing.children = [_thing(child) for child in source.children]
    return thing


def _xform(thing: Thing, schema) -> None:
    matrices = [value.getMatrix() for value in _values(schema)]
    rows = [[[m[i][j] for j in range(4)] for i in range(4)] for m in matrices]
    thing.samples = np.swapaxes(np.array(rows or [np.eye(4)]), -1, -2)


def _camera(thing: Thing, schema) -> None:
    thing.samples = np.array([[getattr(value, "get" + name)() for name in LENS] for value in _values(schema)])


def _corners(array) -> List[List[float]]:
    return [list(array[i]) for i in range(len(array))]


def _mesh(thing: Thing, schema) -> None:
    values = list(_values(schema))
    thing.samples = np.array([_corners(value.getPositions()) for value in values])
    thing.counts, thing.indices = list(values[0].getFaceCounts()), list(values[0].getFaceIndices())
    for value in values[1:]:
        if list(value.getFaceIndices()) != thing.indices or list(value.getFaceCounts()) != thing.counts:
            raise ValueError(f"faces of {thing.name} change")
    boxes = [value.getSelfBounds() for value in values]
    thing.bounds = np.array([[list(box.min()), list(box.max())] for box in boxes])
    uvs = schema.getUVsParam()
    if uvs.valid():
        thing.uvs, thing.scope = np.array(_corners(uvs.getExpandedValue().getVals())), str(uvs.getScope())


def _points(thing: Thing, schema) -> None:
    thing.samples = np.array([_corners(value.getPositions()) for value in _values(schema)])


def at_frames(thing: Thing, times: np.ndarray) -> np.ndarray:
    """The samples of each frame; one alone holds. Raises ValueError when they lie elsewhere."""
    if len(thing.samples) == 1:
        return np.repeat(thing.samples, len(times), axis=0)
    if len(thing.times) != len(times) or np.abs(np.array(thing.times) - times).max() > 1e-9 * (1 + np.abs(times).max()):
        raise ValueError(f"{len(thing.times)} samples of {thing.name} from {thing.times[0]} to {thing.times[-1]} s "
                         f"instead of {len(times)} from {times[0]} to {times[-1]} s")
    return thing.samples


def worlds(archive: Archive, times: np.ndarray) -> Dict[int, np.ndarray]:
    """(frames, 4, 4) by the id() of each thing."""
    found: Dict[int, np.ndarray] = {}

    def walk(thing: Thing, outer: np.ndarray) -> None:
        own = outer @ at_frames(thing, times) if thing.kind == "xform" else outer
        found[id(thing)] = own
        for child in thing.children:
            walk(child, own)
    walk(archive.top, np.tile(np.eye(4), (len(times), 1, 1)))
    return found


def parts(matrix: np.ndarray) -> Tuple[np.ndarray, np.ndarray]:
    """Positions and axes of matrices on column vectors."""
    return matrix[..., :3, 3], matrix[..., :3, :3]
