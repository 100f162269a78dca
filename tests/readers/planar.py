"""The motion of a tracked plane, computed from a project file alone.

Quads are four corners in the order lower left, lower right, upper left, upper right, as (4, 2) arrays, in pixels with
y up as the project file has them, unless a name says otherwise. Per frame they make (frames, 4, 2) arrays.
"""

from dataclasses import dataclass
from typing import Any, Callable, Dict, Optional, Tuple

import numpy as np


def homography(source: np.ndarray, target: np.ndarray) -> np.ndarray:
    """The 3x3 matrix that carries four points to four others."""
    rows, values = [], []
    for (x, y), (u, v) in zip(source, target):
        rows.append([x, y, 1.0, 0.0, 0.0, 0.0, -u * x, -u * y])
        rows.append([0.0, 0.0, 0.0, x, y, 1.0, -v * x, -v * y])
        values += [u, v]
    return np.append(np.linalg.solve(np.array(rows), np.array(values)), 1.0).reshape(3, 3)


def through(matrix: np.ndarray, points: np.ndarray) -> np.ndarray:
    """Points carried by a homography; raises ValueError when they aren't all well on one side of its horizon."""
    carried = np.column_stack([points, np.ones(len(points))]) @ matrix.T
    depth = carried[:, 2] / np.abs(carried[:, 2]).max()
    if np.abs(depth).min() < 0.05 or np.ptp(np.sign(depth)) != 0.0:
        raise ValueError("a point lies at or past the horizon of the homography")
    return carried[:, :2] / carried[:, 2:]


def crossings(quads: np.ndarray) -> np.ndarray:
    """Where the diagonals of each quad cross, (frames, 2)."""
    start, along = quads[:, 0], quads[:, 3] - quads[:, 0]
    other, across = quads[:, 1], quads[:, 2] - quads[:, 1]
    part = _cross(other - start, across) / _cross(along, across)
    return start + part[:, None] * along


def similarities(quads_down: np.ndarray, reference: int, aspect: float) -> Tuple[np.ndarray, np.ndarray]:
    """Scale and clockwise turn in radians, per frame, against the quad at index `reference`.

    The quads' y runs down. The similarity is the least squares fit of the corners' offsets from the crossing of the
    diagonals, in square pixels. Turns are followed over time, past full circles, from 0 at the reference.
    """
    offsets = (quads_down - crossings(quads_down)[:, None, :]) * np.array([aspect, 1.0])
    base = offsets[reference]
    along = np.sum(offsets * base, axis=(1, 2)) / np.sum(base * base)
    across = np.sum(_cross(base, offsets), axis=1) / np.sum(base * base)
    turns = np.unwrap(np.arctan2(across, along))
    return np.hypot(along, across), turns - turns[reference]


def _cross(a: np.ndarray, b: np.ndarray) -> np.ndarray:
    return a[..., 0] * b[..., 1] - a[..., 1] * b[..., 0]


@dataclass(frozen=True)
class Shot:
    """What an export of a planar layer has to show.

    `corners` are in pixels of the clip's raster (of a field, for interlaced clips), y down from the top edge, one quad
    per host frame from `first`. `line_height` is 2 when a line of the raster stands for two of the picture.
    """
    name: str
    width: int
    height: int
    pixel_aspect: float
    rate: float
    line_height: int
    first: int
    reference: int
    corners: np.ndarray

    def aspect(self) -> float:
        """Width of a pixel of the raster divided by its height, as it is seen."""
        return self.pixel_aspect / self.line_height

    def frames(self) -> np.ndarray:
        """Frame numbers as keyframe text counts them: of interlaced material every other one is a half."""
        return (self.first + np.arange(len(self.corners))) / self.line_height


class PlanarProject:
    """The layer of a project file with one clip, one view and one layer, tracked in every frame."""

    def __init__(self, project: Dict[str, Any]) -> None:
        self.project = project
        self.clip = project["clips"][0]
        self.layer = project["layers"][0]
        self.first = self.layer.get("in", 0)
        self.last = self.layer.get("out", self.clip["frameCount"] - 1)
        self.line_height = 2 if self.clip.get("interlaced", False) else 1
        self.raster = (self.clip["width"], self.clip["height"] // self.line_height)
        surface = self.layer["surface"]
        self.surface = np.array(surface["corners"], float).reshape(4, 2)
        self.surface_reference = surface.get("referenceFrame", self.first)
        track = self.layer["tracking"][0]
        self.motion = np.array(track["homographies"], float).reshape(-1, 3, 3)
        if track.get("firstFrame", self.first) != self.first or len(self.motion) != self.last - self.first + 1:
            raise ValueError("the track does not cover the layer")

    def shot(self, name: str, track: str, invert: bool = False, reference: Optional[int] = None) -> Shot:
        """What an export with these options has to show; `reference` is a host frame."""
        if reference is None:
            reference = self._stabilize_start() if track == "stabilized" else self.surface_reference
        frames = range(self.first, self.last + 1)
        if track == "stabilized":
            quads = [self._back(self._track_homography, frame, reference) for frame in frames]
        elif invert:
            quads = [self._back(lambda at: self._solved(track, at), frame, reference) for frame in frames]
        else:
            quads = [self._quad(track, frame) for frame in frames]
        corners = np.array(quads)
        corners[..., 1] = self.raster[1] - corners[..., 1]
        return Shot(name, *self.raster, self.clip.get("pixelAspect", 1), self.project.get("frameRate", 24),
                    self.line_height, self.first, reference, corners)

    def _track_homography(self, frame: int) -> np.ndarray:
        return self.motion[frame - self.first]

    def _adjusted_by(self, frame: int) -> np.ndarray:
        keys = self.layer.get("adjust", [])
        if not keys:
            return np.zeros((4, 2))
        at = [key["frame"] for key in keys]
        return np.array([np.interp(frame, at, [key["offsets"][i] for key in keys]) for i in range(8)]).reshape(4, 2)

    def _quad(self, track: str, frame: int) -> np.ndarray:
        matrix = self._track_homography(frame)
        if track == "adjusted":
            return through(matrix, self.surface) + self._adjusted_by(frame)
        if track == "offset":
            return through(matrix, self.surface + self._adjusted_by(self.surface_reference))
        return through(matrix, self.surface)

    def _solved(self, track: str, frame: int) -> np.ndarray:
        return homography(self.surface, self._quad(track, frame))

    def _back(self, motion: Callable[[int], np.ndarray], frame: int, reference: int) -> np.ndarray:
        """The corners of the picture, carried from a frame back to the reference frame."""
        width, height = self.raster
        picture = np.array([[0, 0], [width, 0], [0, height], [width, height]], float)
        return through(motion(reference) @ np.linalg.inv(motion(frame)), picture)

    def _stabilize_start(self) -> int:
        marks = self.layer.get("stabilize", {})
        start, end = marks.get("rangeStart", self.first), marks.get("rangeEnd", self.last)
        fixed = [frame for frame in marks.get("fixedFrames", []) if start <= frame <= end]
        return fixed[0] if fixed else start
