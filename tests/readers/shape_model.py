"""Contours and their motion, computed from a project file alone, as docs/project-file.md has them.

Points are pixels of the clip's raster (of a field, for interlaced clips), y up; `lines` of them make full-frame lines.
A Bezier outline has for each vertex the tip of the handle that arrives, the vertex, and the tip of the handle that
leaves: (vertices, 3, 2). An X-spline has its control points, (points, 1, 2), and their weights.
"""

from dataclasses import dataclass, replace
from functools import cached_property, lru_cache
from typing import Any, Dict, List, Optional, Tuple

import numpy as np

from planar import PlanarLayer, through

ARRIVING, VERTEX, LEAVING = range(3)

# Steps for each segment of a densely sampled curve, and of a curve as the line that distances are taken from.
STEPS, _LINE_STEPS, _STRIDE = 16, 120, 8


@dataclass(frozen=True, eq=False)
class Outline:
    points: np.ndarray
    weights: Optional[np.ndarray]
    closed: bool

    # Where the points of an X-spline were before they were carried, and what carried them: it is drawn there, and the
    # curve is what moves.
    rest: Optional[np.ndarray] = None
    motion: Optional[np.ndarray] = None

    def carried(self, matrix: np.ndarray) -> "Outline":
        rest = self.points if self.rest is None else self.rest
        motion = matrix if self.motion is None else matrix @ self.motion
        points = through(matrix, self.points.reshape(-1, 2)).reshape(self.points.shape)
        return replace(self, points=points, rest=rest, motion=motion)

    def lines(self, height: float) -> "Outline":
        """With y in lines of which `height` make one of these."""
        return self.carried(np.diag([1.0, height, 1.0]))

    def drawn(self) -> np.ndarray:
        """Which points take part in the curve, (vertices, 3): an open Bezier curve has no handles beyond its ends."""
        mask = np.ones(self.points.shape[:2], bool)
        if not self.closed and self.weights is None:
            mask[0, ARRIVING] = mask[-1, LEAVING] = False
        return mask

    @cached_property
    def dense(self) -> np.ndarray:
        """The curve as a line of some steps for each segment, (steps + 1, 2)."""
        return self._stepped(STEPS)

    @cached_property
    def fine(self) -> np.ndarray:
        """The curve as the line that distances are taken from."""
        return self._stepped(_LINE_STEPS)

    def _stepped(self, count: int) -> np.ndarray:
        if self.weights is None:
            return bezier(self.points, self.closed, count)
        if self.rest is None:
            return x_spline(self.points[:, 0], self.weights, self.closed, count)
        return through(self.motion, x_spline(self.rest[:, 0], self.weights, self.closed, count))


def bezier(points: np.ndarray, closed: bool, count: int) -> np.ndarray:
    spans = len(points) if closed else len(points) - 1
    start, after = np.arange(spans), (np.arange(spans) + 1) % len(points)
    corners = [points[start, VERTEX], points[start, LEAVING], points[after, ARRIVING], points[after, VERTEX]]
    t = np.linspace(0.0, 1.0, count + 1)[None, :, None]
    parts = ((1 - t) ** 3, 3 * t * (1 - t) ** 2, 3 * t ** 2 * (1 - t), t ** 3)
    return _joined(sum(part * corner[:, None, :] for part, corner in zip(parts, corners)))


def x_spline(points: np.ndarray, weights: np.ndarray, closed: bool, count: int) -> np.ndarray:
    """Blanc and Schlick, "X-splines: a spline model designed for the end-user", SIGGRAPH 1995, general X-splines.

    A segment runs from a point to the next and blends these two with the one before and the one behind. The first and
    the last point of an open curve stand twice, with weights of 0.
    """
    total = len(points)
    if not closed:
        weights = np.concatenate([[0.0], weights[1:-1], [0.0]])
    segments = np.arange(total if closed else total - 1)
    around = segments[:, None] + np.array([-1, 0, 1, 2])
    around = around % total if closed else np.clip(around, 0, total - 1)
    t = np.linspace(0.0, 1.0, count + 1)[None, :]
    near, far = (weights[around[:, i]][:, None] for i in (1, 2))
    before, end = _influences(near, t)
    behind, start = _influences(far, 1.0 - t)
    blends = np.stack([before, start, end, behind], axis=-1)
    blends = blends / blends.sum(axis=-1, keepdims=True)
    return _joined(np.einsum("stk,skc->stc", blends, points[around]))


def _influences(weight: np.ndarray, t: np.ndarray):
    """How much, at t from a point of this weight towards the next, the point on its other side and the next count.

    A positive weight stretches the reach of both neighbours past the point by as much; a negative one lets the blend
    of the other side be negative, which bends the curve through the point.
    """
    reach = np.maximum(weight, 0.0)
    stretched = 1.0 + reach
    before = np.where(t < reach, _blend(np.maximum(reach - t, 0.0) / stretched, stretched), 0.0)
    after = _blend((t + reach) / stretched, stretched)
    q = -0.5 * np.minimum(weight, 0.0)
    negative = weight < 0.0
    return np.where(negative, _backward(-t, q), before), np.where(negative, _forward(t, q), after)


def _blend(u: np.ndarray, stretched: np.ndarray) -> np.ndarray:
    p = 2.0 * stretched ** 2
    return u ** 3 * (10 - p + (2 * p - 15) * u + (6 - p) * u ** 2)


def _forward(u: np.ndarray, q: np.ndarray) -> np.ndarray:
    """Without q the blend of an unstretched point, so that a curve doesn't jump when a weight passes 0."""
    return q * u + 2 * q * u ** 2 + (8 - 12 * q) * u ** 3 + (14 * q - 11) * u ** 4 + (4 - 5 * q) * u ** 5


def _backward(u: np.ndarray, q: np.ndarray) -> np.ndarray:
    return q * u + 2 * q * u ** 2 - 2 * q * u ** 4 - q * u ** 5


def _joined(segments: np.ndarray) -> np.ndarray:
    return np.concatenate([segments[:, :-1].reshape(-1, 2), segments[-1, -1:]])


def distances(points: np.ndarray, line: np.ndarray) -> np.ndarray:
    """How far each of the points is from the parts of a finely stepped polyline that meet at its nearest corner.

    That corner is looked for near the nearest one of few; should a nearer one lie elsewhere, a distance is too large.
    """
    middle = line.mean(axis=0)
    points, line = points - middle, line - middle
    steps, ring = len(line) - 1, np.allclose(line[0], line[-1], rtol=0.0, atol=1e-9)
    few = line[::_STRIDE]
    about = _STRIDE * np.argmin(np.einsum("ij,ij->i", few, few) - 2.0 * points @ few.T, axis=1)
    near = (about[:, None] + np.arange(-_STRIDE, _STRIDE + 1)) % steps
    offsets = line[near] - points[:, None]
    nearest = near[np.arange(len(points)), np.argmin(np.einsum("ijk,ijk->ij", offsets, offsets), axis=1)]
    result = np.full(len(points), np.inf)
    for first in (nearest - 1, nearest):
        first = first % steps if ring else np.clip(first, 0, steps - 1)
        along, offset = line[first + 1] - line[first], points - line[first]
        length = np.einsum("ij,ij->i", along, along)
        part = np.clip(np.einsum("ij,ij->i", offset, along) / np.where(length > 0.0, length, 1.0), 0.0, 1.0)
        result = np.minimum(result, np.linalg.norm(offset - part[:, None] * along, axis=1))
    return result


# How far a Bezier curve may be from the X-spline that it stands for, in pixels.
X_SPLINE = 0.05


def apart(one: Outline, other: Outline) -> np.ndarray:
    """How far places all along each of two curves are from the other one."""
    return np.concatenate([distances(one.dense, other.fine), distances(other.dense, one.fine)])


class Contour:
    def __init__(self, record: Dict[str, Any]) -> None:
        self.name = record["name"]
        self.bezier = record.get("type", "bezier") == "bezier"
        self.closed = record.get("closed", True)
        self.active = record.get("active", True)
        self.frames = [key["frame"] for key in record["keys"]]
        self.has_feather = any("feather" in key for key in record["keys"])
        width = 6 if self.bezier else 3
        self._points = np.array([key["points"] for key in record["keys"]], float).reshape(len(self.frames), -1, width)
        feather = [key.get("feather", key["points"]) for key in record["keys"]]
        self._feather = np.array(feather, float).reshape(self._points.shape)

    def plane(self, frame: float, feather: bool = False) -> Outline:
        """As it lies in the surface's reference frame: linear between keys, held outside of them."""
        keys = self._feather if feather else self._points
        flat = keys.reshape(len(keys), -1)
        values = np.array([np.interp(frame, self.frames, column) for column in flat.T]).reshape(keys.shape[1:])
        if not self.bezier:
            return Outline(values[:, None, :2], values[:, 2], self.closed)
        vertex = values[:, 0:2]
        return Outline(np.stack([vertex + values[:, 2:4], vertex, vertex + values[:, 4:6]], axis=1), None, self.closed)


class Layer(PlanarLayer):
    """A layer with its contours in one view."""

    def __init__(self, project: Dict[str, Any], record: Dict[str, Any], view: int = 0) -> None:
        super().__init__(project, record, view)
        self.contours = [contour for contour in map(Contour, record.get("contours", [])) if contour.active]

    @lru_cache(maxsize=None)
    def seen(self, contour: Contour, frame: int, feather: bool = False) -> Outline:
        return contour.plane(frame, feather).carried(self.motion(frame))

    @lru_cache(maxsize=None)
    def plane(self, contour: Contour, frame: int, feather: bool = False) -> Outline:
        """The contour as it lies in the reference frame."""
        return contour.plane(frame, feather)

    def keys_of(self, contour: Contour) -> List[int]:
        """Frames of the few outlines that motion can be told beside: the contour's within the layer, and its ends."""
        return sorted({self.first, self.last} | {frame for frame in contour.frames if self.first <= frame <= self.last})


class Scene:
    """What is exported: layers from the top of the stack, each in these views."""

    def __init__(self, project: Dict[str, Any], names: Optional[List[str]] = None,
                 views: Tuple[int, ...] = (0,)) -> None:
        """Without names the topmost layer."""
        self.project = project
        names = [project["layers"][0]["name"]] if names is None else names
        records = [record for record in project["layers"] if record["name"] in names]
        self.layers = [[Layer(project, record, view) for view in views] for record in records]
        self.playback_in = project.get("playback", [0])[0]
