"""The camera solve of a project file in numbers: poses, camera, eyes and points per host frame.

Everything here follows the project page alone: right-handed, y up, a camera looks along -z with y up in its picture,
angles in degrees about the static axes x, then y, then z. Arrays have one row per host frame of the first clip, from 0;
rotations are (frames, 3, 3) matrices whose columns are the axes of what is turned.
"""

from dataclasses import dataclass
from typing import Any, Dict, List, Optional

import numpy as np


def static_xyz(degrees: np.ndarray) -> np.ndarray:
    """Matrices of turns about the static axes x, then y, then z, of (..., 3) angles."""
    x, y, z = (_axis_turn(np.radians(degrees[..., i]), i) for i in range(3))
    return z @ y @ x


def rotating_xyz(degrees: np.ndarray) -> np.ndarray:
    """Matrices of turns about x, then the turned y, then the turned z, of (..., 3) angles."""
    x, y, z = (_axis_turn(np.radians(degrees[..., i]), i) for i in range(3))
    return x @ y @ z


def rotating_xyz_angles(rotation: np.ndarray) -> np.ndarray:
    """The angles in degrees that `rotating_xyz` makes a matrix of, the middle one within 90."""
    y = np.arctan2(rotation[..., 0, 2], np.hypot(rotation[..., 0, 0], rotation[..., 0, 1]))
    x = np.arctan2(-rotation[..., 1, 2], rotation[..., 2, 2])
    z = np.arctan2(-rotation[..., 0, 1], rotation[..., 0, 0])
    return np.degrees(np.stack([x, y, z], axis=-1))


def _axis_turn(angle: np.ndarray, axis: int) -> np.ndarray:
    turn = np.zeros(np.shape(angle) + (3, 3))
    one, other = (axis + 1) % 3, (axis + 2) % 3
    turn[..., axis, axis] = 1.0
    turn[..., one, one] = turn[..., other, other] = np.cos(angle)
    turn[..., other, one] = np.sin(angle)
    turn[..., one, other] = -turn[..., other, one]
    return turn


def partial_turn(start: np.ndarray, end: np.ndarray, part: float) -> np.ndarray:
    """The rotation that has gone this part of the shortest way between two; they may not lie half a turn apart."""
    between = start.T @ end
    sine_axis = np.array([between[2, 1] - between[1, 2], between[0, 2] - between[2, 0],
                          between[1, 0] - between[0, 1]]) / 2.0
    sine = np.linalg.norm(sine_axis)
    if sine < 1e-12:
        if np.trace(between) < 0.0:
            raise ValueError("half a turn has no shortest way")
        return start
    angle = part * np.arctan2(sine, (np.trace(between) - 1.0) / 2.0)
    x, y, z = sine_axis / sine
    cross = np.array([[0.0, -z, y], [z, 0.0, -x], [-y, x, 0.0]])
    return start @ (np.eye(3) + np.sin(angle) * cross + (1.0 - np.cos(angle)) * cross @ cross)


@dataclass(frozen=True)
class Placement:
    """Positions (frames, 3), rotations (frames, 3, 3) and scale factors (frames,)."""
    position: np.ndarray
    rotation: np.ndarray
    scale: np.ndarray

    def through(self, points: np.ndarray) -> np.ndarray:
        """Where (frames, points, 3) positions in here come to lie outside."""
        turned = np.einsum("fij,fpj->fpi", self.rotation, points)
        return self.position[:, None, :] + self.scale[:, None, None] * turned

    def holding(self, child: "Placement") -> "Placement":
        return Placement(self.through(child.position[:, None, :])[:, 0], self.rotation @ child.rotation,
                         self.scale * child.scale)


    def inverse(self) -> "Placement":
        turned_back = np.swapaxes(self.rotation, -1, -2)
        position = -np.einsum("fij,fj->fi", turned_back, self.position) / self.scale[:, None]
        return Placement(position, turned_back, 1.0 / self.scale)


def at_origin(frames: int) -> Placement:
    return Placement(np.zeros((frames, 3)), np.tile(np.eye(3), (frames, 1, 1)), np.ones(frames))


def _sample_frames(described: Dict[str, Any], count: int) -> List[int]:
    if "frames" in described:
        return described["frames"]
    return list(range(described.get("firstFrame", 0), described.get("firstFrame", 0) + count))


def _rows(described: Dict[str, Any], values: np.ndarray, frames: int) -> np.ndarray:
    """The rows for every frame: linear between samples, held outside of them."""
    flat = values.reshape(len(values), -1)
    at = _sample_frames(described, len(values))
    rows = np.stack([np.interp(np.arange(frames), at, column) for column in flat.T], axis=1)
    return rows.reshape((frames,) + values.shape[1:])


def _rotations(described: Dict[str, Any], samples: np.ndarray, frames: int) -> np.ndarray:
    at = _sample_frames(described, len(samples))
    turns = []
    for frame in range(frames):
        after = int(np.searchsorted(at, frame, side="right"))
        if after in (0, len(at)):
            turns.append(samples[min(after, len(at) - 1)])
            continue
        part = (frame - at[after - 1]) / (at[after] - at[after - 1])
        turns.append(partial_turn(samples[after - 1], samples[after], part))
    return np.array(turns)


def placement(pose: Optional[Dict[str, Any]], frames: int) -> Placement:
    """A pose of the project file, or the origin."""
    if not pose or "positions" not in pose:
        return at_origin(frames)
    positions = np.array(pose["positions"], float).reshape(-1, 3)
    angles = np.array(pose.get("rotations", np.zeros(positions.size)), float).reshape(-1, 3)
    scales = np.array(pose.get("scales", np.ones(len(positions))), float)
    return Placement(_rows(pose, positions, frames), _rotations(pose, static_xyz(angles), frames),
                     _rows(pose, scales, frames))


def keyed(value: Any, frames: int) -> np.ndarray:
    """A number, or one that is keyed, for every frame."""
    if isinstance(value, dict):
        return np.interp(np.arange(frames), value["frames"], value["values"])
    return np.full(frames, float(value))


@dataclass(frozen=True)
class SceneCamera:
    """`place` is in the world; focal lengths (frames,) and the width of the film back are millimetres."""
    place: Placement
    focal: np.ndarray
    focal_is_keyed: bool
    film_width: float


@dataclass(frozen=True)
class PointSet:
    """Points relative to what they hang on: (frames, points, 3) scene units."""
    names: List[str]
    positions: np.ndarray

    def __len__(self) -> int:
        return len(self.names)


def _points(described: Optional[Dict[str, Any]], word: str, frames: int) -> PointSet:
    if not described or not described["positions"]:
        return PointSet([], np.zeros((frames, 0, 3)))
    numbers = np.array(described["positions"], float)
    samples = numbers.reshape(len(described.get("frames", [0])), -1, 3)
    names = described.get("names", [f"{word} {i + 1}" for i in range(samples.shape[1])])
    return PointSet(names, _rows(described, samples, frames))


@dataclass(frozen=True)
class SceneLayer:
    """`world` has the scene's pose in it; `outermost` is the group at the top of those that hold the layer.

    `first` and `last` are its host frames.
    """
    name: str
    moving: bool
    hidden: bool
    selected: bool
    outermost: Optional[str]
    first: int
    last: int
    world: Placement
    points: PointSet


@dataclass(frozen=True)
class FeatureSet:
    """`layer` is the index of the layer that the features move with; without one they hang on the feature root."""
    layer: Optional[int]
    hidden: bool
    selected: bool
    points: PointSet


@dataclass(frozen=True)
class Asset:
    """`local` is relative to the layer, or to the scene."""
    path: str
    layer: Optional[int]
    local: Placement


class SceneModel:
    """Everything of a project that a camera export has to show."""

    def __init__(self, project: Dict[str, Any]) -> None:
        self.project = project
        self.clip = project["clips"][0]
        self.solve = project["solve"]
        self.frames = self.clip["frameCount"]
        self.legacy = self.solve.get("legacy", False)
        self.scene = placement(self.solve.get("scene"), self.frames)
        self._groups = {group["name"]: group for group in project.get("groups", [])}
        self.layers = [self._layer(layer) for layer in project.get("layers", [])]
        self.feature_root = placement(self.solve.get("featureRoot"), self.frames)
        self.features = [FeatureSet(self._index(described), described.get("hidden", False),
                                    described.get("selected", False), _points(described, "Feature", self.frames))
                         for described in self.solve.get("features", [])]
        self.assets = [Asset(described["path"], self._index(described), placement(described, self.frames))
                       for described in self.solve.get("assets", [])]

    @property
    def line_height(self) -> int:
        """2 when a line of the raster stands for two of the picture."""
        return 2 if self.clip.get("interlaced", False) else 1

    @property
    def playback_in(self) -> int:
        return self.project.get("playback", [0])[0]

    def camera(self, view: Optional[str] = None) -> SceneCamera:
        """The camera of a view; of a rig, the eye of that view."""
        described = self.solve["camera"]
        place = self.scene.holding(placement(described, self.frames).holding(self._eye(view)))
        film = described.get("filmBackWidth", self.clip.get("filmBack", {}).get("width", 36.0))
        focal = described.get("focalLength", 35.0)
        return SceneCamera(place, keyed(focal, self.frames), isinstance(focal, dict), float(film))

    def group_world(self, name: str) -> Placement:
        """Where a group stands in the world."""
        chain = self._groups[name]
        outer = self.group_world(chain["parent"]) if "parent" in chain else self.scene
        return outer.holding(placement(chain.get("pose"), self.frames))

    def _eye(self, view: Optional[str]) -> Placement:
        rig = self.solve.get("stereo")
        if rig is None:
            return at_origin(self.frames)
        side = {self.project["views"][0]: -1.0, self.project["views"][1]: 1.0}[view]
        position = np.zeros((self.frames, 3))
        position[:, 0] = side * keyed(rig["separation"], self.frames) / 2.0
        turns = np.zeros((self.frames, 3))
        if rig["mode"] == "converged":
            # Counter-clockwise from above turns the direction of view, -z, to the left.
            turns[:, 1] = side * keyed(rig.get("convergence", 0.0), self.frames) / 2.0
        return Placement(position, static_xyz(turns), np.ones(self.frames))

    def _index(self, described: Dict[str, Any]) -> Optional[int]:
        if "layer" not in described:
            return None
        return [layer["name"] for layer in self.project["layers"]].index(described["layer"])

    def _ancestors(self, layer: Dict[str, Any]) -> List[Dict[str, Any]]:
        found, name = [], layer.get("group")
        while name is not None:
            found.append(self._groups[name])
            name = self._groups[name].get("parent")
        return found

    def _layer(self, layer: Dict[str, Any]) -> SceneLayer:
        ancestors = self._ancestors(layer)
        moving = layer.get("moving", False)
        # What moves stands in the group that holds it, what doesn't in the scene.
        local = placement(layer.get("pose"), self.frames)
        outer = self.group_world(ancestors[0]["name"]) if moving and ancestors else self.scene
        surface = _points(layer.get("surfacePoints"), "Point", self.frames)
        mesh = _points(layer.get("meshPoints"), "Vertex", self.frames)
        points = PointSet(surface.names + mesh.names, np.concatenate([surface.positions, mesh.positions], axis=1))
        hidden = layer.get("hidden", False) or any(group.get("hidden", False) for group in ancestors)
        return SceneLayer(layer["name"], moving, hidden, layer.get("selected", False),
                          ancestors[-1]["name"] if ancestors else None, layer.get("in", 0),
                          layer.get("out", self.frames - 1), outer.holding(local), points)
