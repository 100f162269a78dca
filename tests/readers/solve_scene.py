"""What a file of a 3D scene has to hold of a camera solve: nodes that carry others, points, models and meshes.

Everything is in the project's world: scene units, y up. A reader finds each node in its file and compares.
"""

from dataclasses import dataclass, replace
from typing import Any, Dict, List, Optional, Tuple

import numpy as np

import scene_shots
from scene_model import Placement, PointSet, SceneLayer, SceneModel

Project = Dict[str, Any]

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


@dataclass(frozen=True)
class SolvedMesh:
    """Vertices (frames, vertices, 3) relative to the layer, faces, and a pair of `uvs` for each vertex, or none."""
    layer: int
    local: np.ndarray
    counts: List[int]
    indices: List[int]
    uvs: Optional[np.ndarray]

    def corner_uvs(self) -> np.ndarray:
        """A pair for each corner of each face."""
        return self.uvs[self.indices]


class SceneContents:
    """The nodes in the order layers, features, models; those that carry others in front of these."""

    def __init__(self, model: SceneModel, features: bool = True, objects: str = "all") -> None:
        self.model, self.nodes = model, []
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


def rig_centre(project: Project) -> Project:
    """A project whose camera is the rig's own one, between the eyes."""
    return {**project, "solve": {key: value for key, value in project["solve"].items() if key != "stereo"}}


def without_scene_pose(project: Project) -> Project:
    return {**project, "solve": {key: value for key, value in project["solve"].items() if key != "scene"}}


def film_size(model: SceneModel) -> Tuple[float, float]:
    """Width and height of what the picture as it is seen was recorded on, in millimetres."""
    width, (across, down) = model.camera().film_width, picture_size(model)
    return width, width * down / across


def picture_size(model: SceneModel) -> Tuple[float, float]:
    """The picture as it is seen, in square pixels."""
    return model.clip["width"] * model.clip.get("pixelAspect", 1), float(model.clip["height"])


def _mesh_points(**keys: Any) -> Project:
    """Two triangles and a quadrangle, no two of whose numbers are alike."""
    positions = [-0.9, -0.4, 0.1, 0.1, -0.6, 0.2, 0.8, -0.3, -0.1, 0.7, 0.5, 0.3, -0.1, 0.8, 0.0, -0.7, 0.6, -0.2]
    return {"positions": positions, "faceCounts": [3, 4, 3], "faceIndices": [0, 1, 5, 1, 2, 3, 4, 1, 4, 5],
            "uvs": [0.01, 0.02, 0.52, 0.03, 0.97, 0.11, 0.93, 0.89, 0.45, 0.98, 0.08, 0.83], **keys}


def _moving_mesh() -> Project:
    at = np.arange(scene_shots.FRAMES)[:, None]
    still = _mesh_points()
    moved = np.array(still["positions"]) * (1.0 + 0.01 * at) + 0.02 * at * np.arange(18) / 18.0
    return {**still, "frames": list(range(scene_shots.FRAMES)), "positions": [float(v) for v in moved.ravel()]}


def everything() -> Project:
    """Moving layers in moving groups, meshes, features, models, a keyed lens, a posed scene, wide pixels, from 1001."""
    layer, points, swaying = scene_shots.layer, scene_shots.points, scene_shots.swaying
    groups = [{"name": "Whole car", "moving": True, "pose": swaying(1, scale=True)},
              {"name": "Left door", "moving": True, "parent": "Whole car", "pose": swaying(2)}]
    layers = [layer("Sign", group="Left door", moving=True, pose=swaying(3, scale=True), surfacePoints=points(2),
                    meshPoints=_moving_mesh()),
              layer("Car body", group="Whole car", moving=True, pose=swaying(4), surfacePoints=points()),
              layer("Wall", pose=scene_shots.AT_REST, surfacePoints=points(3), meshPoints=_mesh_points()),
              layer("Floor", surfacePoints=points(1), **{"in": 2, "out": 9})]
    features = [{"name": "cloud", **points(3)}, {"name": "on door", "layer": "Sign", **points(2)}]
    assets = [{"path": "models/old tree.v2.obj", **scene_shots.AT_REST},
              {"path": "hat.obj", "layer": "Car body", "positions": [0.3, 0.2, -0.1], "scales": [0.5]}]
    focal = {"frames": [1, 7, 11], "values": [28, 35.5, 50]}
    root = {"positions": [0.2, 0.1, -0.3], "rotations": [15, 25, -35]}
    return scene_shots.project(
        {"camera": {**scene_shots.orbit(), "focalLength": focal}, "scene": scene_shots.SCENE, "referenceFrame": 4,
         "features": features, "featureRoot": root, "assets": assets}, layers,
        {"width": 960, "pixelAspect": 2, "frameOffset": 1001}, groups=groups, playback=[3, 10])


def odd_names() -> Project:
    """Names that formats clean or make unique; points tell which node is which."""
    layer, points = scene_shots.layer, scene_shots.points
    names = ["1 plane", "1_plane", "Twin", "Twin", "a/b;c=d\"e'", "\u00e4\u4e16", "x" * 300]
    layers = [layer(name, pose={"positions": [0.1 * i, 0.05 * i, 0.02 * i]},
                    surfacePoints=points(2, names=["1 point", "1=point;"])) for i, name in enumerate(names)]
    assets = [{"path": f"cup{i}.obj", "positions": [0.1 * i, 0.2, 0.3]} for i in range(3)]
    features = [{"name": "Twin", **points(1)}, {"name": "twin 2", "layer": "1 plane", **points(1)}]
    return scene_shots.project({"assets": assets, "features": features}, layers)


def projects() -> Dict[str, Project]:
    """Every project that formats of scenes are judged by, by name."""
    names = ("handheld", "orbit", "wide pixels", "offset and in point", "fields", "keyed focal length", "moving parts",
             "features", "assets", "legacy", "moving points", "short layer", "camera alone", "sparse camera")
    found = {name: scene_shots.PROJECTS[name]() for name in names}
    return {**found, "everything": everything(), "odd names": odd_names()}
