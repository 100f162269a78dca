"""Solves that formats of 3D scenes are judged by, and the options that they are exported with."""

from dataclasses import dataclass
from typing import Any, Dict, Iterator, List, Optional

import numpy as np

import model_file
import scene_shots
from scene_model import SceneModel
from solve_scene import SceneContents

Project = Dict[str, Any]


@dataclass(frozen=True)
class Case:
    """A project and what the user chose."""
    name: str
    project: Project
    view: Optional[str] = None
    objects: str = "all"
    features: bool = True
    reference: bool = True
    at_origin: bool = False
    fixed_size: bool = False

    def arguments(self) -> List[str]:
        words = [("includeFeatures=false", not self.features), ("useReferenceFrame=false", not self.reference),
                 ("sceneAtOrigin=true", self.at_origin), ("pointSizeMode=fixed", self.fixed_size)]
        return [*(["--view", self.view] if self.view else []), *(
            ["--objects", self.objects] if self.objects != "all" else []), *(
            argument for word, chosen in words if chosen for argument in ("--option", word))]

    def title(self) -> str:
        return " ".join([self.name, *(word for word in self.arguments() if not word.startswith("--"))])

    def contents(self, eyes: bool = False) -> SceneContents:
        """`eyes`: of a rig the camera is the view's eye, not the rig's own one between them. Features of solves of an
        old version are never exported."""
        left_out = ["stereo"] * (not eyes) + ["scene"] * self.at_origin
        solve = {key: value for key, value in self.project["solve"].items() if key not in left_out}
        model = SceneModel({**self.project, "solve": solve})
        return SceneContents(model, self.features and not model.legacy, self.objects, self.view)


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


def models() -> Project:
    """A model on its own and on a layer that moves."""
    layer, points = scene_shots.layer, scene_shots.points
    layers = [layer("Car", moving=True, pose=scene_shots.swaying(8, scale=True), surfacePoints=points(1)),
              layer("Wall", surfacePoints=points(1))]
    assets = [{"path": model_file.NAME, **scene_shots.AT_REST},
              {"path": model_file.NAME, "layer": "Car", "positions": [0.3, 0.2, -0.1]}]
    return scene_shots.project({"scene": scene_shots.SCENE, "assets": assets}, layers)


def far() -> Project:
    """Everything a million units from the origin, where singles are six hundredths apart."""
    away = np.array([1e6, -4e5, 7e5])
    camera = scene_shots.orbit()
    camera["positions"] = [float(v) for v in (np.reshape(camera["positions"], (-1, 3)) + away).ravel()]
    wall = scene_shots.layer("Wall", pose={**scene_shots.AT_REST, "positions": [float(v) for v in away + 0.25]},
                             surfacePoints=scene_shots.points(3), meshPoints=_mesh_points())
    cloud = (np.reshape(scene_shots.CLOUD, (-1, 3)) + away).ravel()
    return scene_shots.project({"camera": camera, "features": [
        {"name": "cloud", "positions": [float(v) for v in cloud]}]}, [wall])


SHOTS = ("handheld", "orbit", "wide pixels", "offset and in point", "fields", "keyed focal length", "moving parts",
         "features", "assets", "legacy", "moving points", "short layer", "camera alone", "sparse camera")


def cases() -> Iterator[Case]:
    """With the options that all formats of scenes have."""
    for name in SHOTS:
        yield Case(name, scene_shots.PROJECTS[name]())
    for name, project in (("everything", everything()), ("odd names", odd_names()), ("models", models()), (
            "far", far())):
        yield Case(name, project)
    features = scene_shots.PROJECTS["features"]()
    yield Case("features", features, features=False)
    yield Case("features", features, objects="visible")
    yield Case("features", features, objects="selected")
    for view in ("left", "right"):
        yield Case("rig", scene_shots.rig("converged"), view=view)


def scene_cases() -> Iterator[Case]:
    """With those that formats of scenes beside the matchmove project have."""
    yield Case("everything", everything(), at_origin=True)
    yield Case("everything", everything(), reference=False)
    yield Case("everything", everything(), fixed_size=True)
