"""The motion of a tracked plane, computed from a project file alone.

Quads are four corners in the order lower left, lower right, upper left, upper right, as (4, 2) arrays, in pixels with
y up as the project file has them, unless a name says otherwise. Per frame they make (frames, 4, 2) arrays.
"""

from dataclasses import dataclass
from functools import lru_cache
from typing import Any, Callable, Dict, List, Optional, Tuple

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


class PlanarLayer:
    """A layer of a project file in one view: its frames, its surface, and how that moves."""

    def __init__(self, project: Dict[str, Any], record: Optional[Dict[str, Any]] = None, view: int = 0) -> None:
        record = project["layers"][0] if record is None else record
        views = project.get("views", ["main"])
        clips = {clip["name"]: clip for clip in project["clips"]}
        self.record, self.view, self.view_name = record, view, views[view]
        self.several_views = len(views) > 1
        self.name = record["name"]
        self.clip = clips[record.get("clip", project["clips"][0]["name"])]
        self.rate = project.get("frameRate", 24)
        self.aspect = self.clip.get("pixelAspect", 1)
        self.line_height = 2 if self.clip.get("interlaced", False) else 1
        self.raster = (self.clip["width"], self.clip["height"] // self.line_height)
        self.offset = self.clip.get("frameOffset", 0)
        self.first = record.get("in", 0)
        self.last = record.get("out", self.clip["frameCount"] - 1)
        self.surface = np.array(record["surface"]["corners"], float).reshape(4, 2)
        self.reference = record["surface"].get("referenceFrame", self.first)
        track = self._in_view(record.get("tracking", [{"homographies": np.eye(3)}]), views[0])
        self._motion = np.array(track["homographies"], float).reshape(-1, 3, 3)
        self._tracked = self._frames_of(track, len(self._motion))
        self._mesh = None
        if "mesh" in record:
            track = self._in_view(record["mesh"]["tracks"], views[0])
            positions = np.array(track["positions"], float).reshape(-1, record["mesh"]["vertexCount"], 2)
            self._mesh = self._frames_of(track, len(positions)), positions

    def frames(self) -> range:
        return range(self.first, self.last + 1)

    def shown(self, frame: float) -> float:
        """The number of a host frame as the user sees it."""
        return (frame + self.offset) / self.line_height

    def shot(self, track: str = "adjusted", invert: bool = False, reference: Optional[int] = None) -> Shot:
        """What an export with these options has to show; `reference` is a host frame."""
        if reference is None:
            reference = self._stabilize_start() if track == "stabilized" else self.reference
        if track == "stabilized":
            quads = [self._back(self.tracked, frame, reference) for frame in self.frames()]
        elif invert:
            quads = [self._back(lambda at: homography(self.surface, self._quad(track, at)), frame, reference)
                     for frame in self.frames()]
        else:
            quads = [self._quad(track, frame) for frame in self.frames()]
        corners = np.array(quads)
        corners[..., 1] = self.raster[1] - corners[..., 1]
        return Shot(*self.raster, self.aspect, self.rate, self.line_height, self.first, reference, corners)

    @lru_cache(maxsize=None)
    def tracked(self, frame: int) -> np.ndarray:
        """From the surface's reference frame, without the user's corrections; the last element is 1."""
        matrix = self._motion[_nearest(self._tracked, frame)]
        return matrix / matrix[2, 2]

    @lru_cache(maxsize=None)
    def motion(self, frame: int) -> np.ndarray:
        """From the surface's reference frame, the user's corrections in it; the last element is 1."""
        if not self.record.get("adjust"):
            return self.tracked(frame)
        return homography(self.surface, self._quad("adjusted", frame))

    def mesh(self, frame: int) -> np.ndarray:
        """Where the vertices of the mesh are seen: the track of the mesh, moved by the user's corrections of the frame
        that the track is of."""
        frames, positions = self._mesh
        row = _nearest(frames, frame)
        return through(self.motion(frames[row]) @ np.linalg.inv(self.tracked(frames[row])), positions[row])

    def _in_view(self, tracks: List[Dict[str, Any]], hero: str) -> Dict[str, Any]:
        return next(track for track in tracks if track.get("view", hero) == self.view_name)

    def _frames_of(self, track: Dict[str, Any], count: int) -> List[int]:
        start = track.get("firstFrame", self.first)
        return track.get("frames", list(range(start, start + count)))

    def _adjusted_by(self, frame: int) -> np.ndarray:
        keys = self.record.get("adjust", [])
        if not keys:
            return np.zeros((4, 2))
        at = [key["frame"] for key in keys]
        return np.array([np.interp(frame, at, [key["offsets"][i] for key in keys]) for i in range(8)]).reshape(4, 2)

    def _quad(self, track: str, frame: int) -> np.ndarray:
        if track == "offset":
            return through(self.tracked(frame), self.surface + self._adjusted_by(self.reference))
        quad = through(self.tracked(frame), self.surface)
        # A frame without data is the nearest tracked one, with the corrections of that.
        held = self._tracked[_nearest(self._tracked, frame)]
        return quad + self._adjusted_by(held) if track == "adjusted" else quad

    def _back(self, motion: Callable[[int], np.ndarray], frame: int, reference: int) -> np.ndarray:
        """The corners of the picture, carried from a frame back to the reference frame."""
        width, height = self.raster
        picture = np.array([[0, 0], [width, 0], [0, height], [width, height]], float)
        return through(motion(reference) @ np.linalg.inv(motion(frame)), picture)

    def _stabilize_start(self) -> int:
        marks = self.record.get("stabilize", {})
        start, end = marks.get("rangeStart", self.first), marks.get("rangeEnd", self.last)
        fixed = [frame for frame in marks.get("fixedFrames", []) if start <= frame <= end]
        return fixed[0] if fixed else start


def _nearest(frames: List[int], frame: int) -> int:
    return min(range(len(frames)), key=lambda i: (abs(frames[i] - frame), frames[i]))
