"""What a file of a 3D scene has to hold of a camera solve: nodes that carry others, points, models and meshes.

Everything is in the project's world: scene units, y up. A reader finds each node in its file and compares.
"""

from dataclasses import dataclass, replace
from typing import Any, List, Optional

import numpy as np

import model_file
from reprojection import Camera
from scene_model import Placement, PointSet, SceneLayer, SceneModel

# Half a unit in the last place of a single, as a part of its value.
SINGLE = 2.0 ** -24


@dataclass(frozen=True)
class Node:
    """`kind` is group, layer, set, asset or point; `holder` is the index of the node above it in the list of them all.

    Of a point, only the position counts, and that only where it exists: `shown` is (frames,).
    """
    kind: str
    name: str
    holder: Optional[int]
    world: Placement
    shown: np.ndarray


def split_faces(counts: List[int], indices: List[int]) -> List[List[int]]:
    ends = np.cumsum(counts).tolist()
    return [list(indices[end - count:end]) for count, end in zip(counts, ends)]


@dataclass(frozen=True)
class SolvedMesh:
    """Vertices (frames, vertices, 3) relative to the layer, faces, and a pair of `uvs` for each vertex, or none."""
    layer: int
    local: np.ndarray
    counts: List[int]
    indices: List[int]
    uvs: Optional[np.ndarray]

    def corner_uvs(self) -> Optional[np.ndarray]:
        """A pair for each corner of each face."""
        return None if self.uvs is None else self.uvs[self.indices]


@dataclass(frozen=True)
class WorldMesh:
    """Vertices (frames, vertices, 3) in the world; of the UV a pair for each corner of each face, or none."""
    vertices: np.ndarray
    faces: List[List[int]]
    corner_uvs: Optional[np.ndarray]


class SceneContents:
    """The nodes in the order layers, features, models; those that carry others in front of these. `camera` is the one
    of the view."""

    def __init__(self, model: SceneModel, features: bool = True, objects: str = "all",
                 view: Optional[str] = None) -> None:
        self.model, self.view, self.camera, self.nodes = model, view, model.camera(view), []
        clip = model.clip
        # The picture as it is seen, in square pixels, and what it was recorded on, in millimetres.
        self.picture = np.array([clip["width"] * clip.get("pixelAspect", 1), clip["height"]], float)
        self.film = self.camera.film_width * self.picture / self.picture[0]
        self.meshes: List[SolvedMesh] = []
        self._objects, self._listed = objects, {}
        for index, layer in enumerate(model.layers):
            if self._wanted(layer) and len(layer.points):
                self._points(layer.points, layer.world, self._layer(index), self._range(layer))
                self._mesh(index, layer)
        for number, described in enumerate(model.features if features else []):
            if self._wanted(described) and len(described.points):
                self._features(described, model.solve["features"][number]["name"])
        for asset in model.assets:
            self._asset(asset)

    def of_kind(self, *kinds: str) -> List[Node]:
        return [node for node in self.nodes if node.kind in kinds]

    def world_meshes(self) -> List[WorldMesh]:
        """The meshes of layers, then the models whose file is there."""
        found = [WorldMesh(self.model.layers[mesh.layer].world.through(mesh.local),
                           split_faces(mesh.counts, mesh.indices), mesh.corner_uvs())
                 for mesh in self.meshes if mesh.counts]
        for node, asset in zip(self.of_kind("asset"), self.model.assets):
            if asset.path == model_file.NAME:
                vertices = node.world.through(np.tile(model_file.VERTICES, (self.model.frames, 1, 1)))
                found.append(WorldMesh(vertices, model_file.FACES, model_file.CORNER_UVS))
        return found

    def pixels(self, found: np.ndarray) -> np.ndarray:
        """Where the solve sees the points, (frames, points, 2) square pixels from the middle, y up; where a point
        doesn't exist, what was found."""
        place, points = self.camera.place, self.of_kind("point")
        seen = Camera(place.position, place.rotation, self.camera.focal / self.film[0] * self.picture[0]).project(
            np.stack([node.world.position for node in points], axis=1))
        return np.where(np.stack([node.shown for node in points], axis=1)[..., None], seen, found)

    def marker_size(self) -> float:
        """A size that suits markers: the median of the points' distances from the camera, both in the first frame,
        times 0.2 and divided by the focal length."""
        inside = self.model.scene.inverse()
        eye = inside.holding(self.camera.place).position[0]
        places = np.stack([inside.holding(node.world).position[0] for node in self.of_kind("point")])
        distance = float(np.median(np.linalg.norm(places - eye, axis=1)))
        return distance * float(np.float32(0.2)) / self.camera.focal[0]

    def _wanted(self, described: Any) -> bool:
        """Features of a hidden layer are hidden with it."""
        tied = getattr(described, "layer", None)
        hidden = described.hidden or (tied is not None and self.model.layers[tied].hidden)
        return {"all": True, "visible": not hidden, "selected": described.selected}[self._objects]

    def _range(self, layer: SceneLayer) -> np.ndarray:
        at = np.arange(self.model.frames)
        return (at >= layer.first) & (at <= layer.last)

    def _add(self, kind: str, name: str, holder: Optional[int], world: Placement, shown: Any = True) -> int:
        self.nodes.append(Node(kind, name, holder, world, np.ones(self.model.frames, bool) & shown))
        return len(self.nodes) - 1

    def _layer(self, index: int) -> int:
        layer, holder = self.model.layers[index], None
        if ("layer", index) not in self._listed:
            if layer.moving and layer.outermost is not None:
                key = "group", layer.outermost
                if key not in self._listed:
                    world = self.model.group_world(layer.outermost)
                    self._listed[key] = self._add("group", layer.outermost, None, world)
                holder = self._listed[key]
            self._listed["layer", index] = self._add("layer", layer.name, holder, layer.world)
        return self._listed["layer", index]

    def _points(self, points: PointSet, world: Placement, holder: int, shown: Any = True) -> None:
        positions = world.through(points.positions)
        for i, name in enumerate(points.names):
            self._add("point", name, holder, replace(world, position=positions[:, i]), shown)

    def _features(self, described: Any, name: str) -> None:
        if described.layer is None:
            holder, world = None, self.model.scene.holding(self.model.feature_root)
        else:
            holder = self._layer(described.layer)
            world = self.model.layers[described.layer].world
        self._points(described.points, world, self._add("set", name, holder, world))

    def _asset(self, asset: Any) -> None:
        holder, world = None, self.model.scene
        if asset.layer is not None:
            holder, world = self._layer(asset.layer), self.model.layers[asset.layer].world
        self._add("asset", asset.path.rsplit("/", 1)[-1].split(".", 1)[0], holder, world.holding(asset.local))

    def _mesh(self, index: int, layer: SceneLayer) -> None:
        described = self.model.project["layers"][index].get("meshPoints")
        if described is None:
            return
        count = len(described["positions"]) // 3 // len(described.get("frames", [0]))
        uvs = np.array(described["uvs"], float).reshape(-1, 2) if "uvs" in described else None
        self.meshes.append(SolvedMesh(index, layer.points.positions[:, len(layer.points) - count:],
                                      described.get("faceCounts", []), described.get("faceIndices", []), uvs))
