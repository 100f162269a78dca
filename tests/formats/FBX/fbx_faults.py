"""Faults that are planted in what was read of FBX files."""

import copy
from typing import Any, Callable, Iterator, Tuple

import numpy as np

from fbx_scene import Node, Scene
from solve_scene import SINGLE


def faults(good: Scene) -> Iterator[Tuple[str, Scene]]:
    """Faults of what was read of the shot with everything in it."""
    def named(scene: Scene, name: str) -> Node:
        return next(node for node in scene.nodes if node.name == name)

    def camera(scene: Scene) -> Node:
        return named(scene, "MarloCameraNode")

    def focal(scene: Scene, factor: float) -> None:
        camera(scene).curves["FocalLength", 0].values[1:] *= factor

    def late(node: Node, numbers: Any = np.s_[:]) -> None:
        node.local[1:, numbers] = node.local[:-1, numbers].copy()

    def scaled(node: Node, at: Any, factor: float) -> None:
        node.local[:, at] *= factor

    def lens(name: str, factor: float) -> Callable[[Scene], Any]:
        return lambda s: camera(s).lens.__setitem__(name, camera(s).lens[name] * factor)

    def moved(scene: Scene, name: str, holder: str) -> None:
        named(scene, name).parent = scene.nodes.index(named(scene, holder))

    def times(scene: Scene, factor: float, by: float) -> None:
        for curve in [curve for node in scene.nodes for curve in node.curves.values()]:
            curve.times = curve.times * factor + by
        scene.times, scene.range = scene.times * factor + by, (scene.range[0] * factor + by, scene.range[1] + by)

    mesh = "Sign_TrackMesh"
    for name, change in (
            ("camera a frame late", lambda s: late(camera(s), np.s_[:3])),
            ("turn a frame late", lambda s: late(camera(s), np.s_[3:7])),
            ("camera looks elsewhere", lambda s: scaled(camera(s), np.s_[3:6], -1.0)),
            ("focal length", lambda s: focal(s, 1.01)), ("focal length in singles", lambda s: focal(s, 1 + 4 * SINGLE)),
            ("lens a frame late", lambda s: camera(s).curves["FocalLength", 0].values.__setitem__(
                np.s_[1:], camera(s).curves["FocalLength", 0].values[:-1].copy())),
            ("film of the picture as seen", lens("FilmWidth", 2.0)), ("height of film", lens("FilmHeight", 1.01)),
            ("squeeze", lens("FilmSqueezeRatio", 0.5)), ("raster", lens("AspectWidth", 0.5)),
            ("far plane", lens("FarPlane", 0.1)), ("aperture mode", lens("ApertureMode", 1 / 3)),
            ("from frame 1000", lambda s: times(s, 1.0, -1 / 24)), ("at 23.976", lambda s: times(s, 1.001, 0.0)),
            ("range", lambda s: setattr(s, "range", (0.0, s.range[1]))), ("span", lambda s: setattr(s, "span", (0, 1))),
            ("rate", lambda s: setattr(s, "rate", 25.0)), ("unit", lambda s: setattr(s, "unit", 0.1)),
            ("z up", lambda s: setattr(s, "axes", ("POSITIVE_X", "POSITIVE_Z", "NEGATIVE_Y"))),
            ("cubic keys", lambda s: camera(s).curves["Lcl Translation", 1].kinds.__setitem__(3, "CUBIC")),
            ("jump by a turn", lambda s: camera(s).curves["Lcl Rotation", 2].values.__setitem__(np.s_[5:], 720.0)),
            ("y of a point", lambda s: scaled(named(s, "Point 1"), 1, -1.0)),
            ("layer at rest off", lambda s: scaled(named(s, "Wall"), 0, 1.0 + 1e-7)),
            ("point not turned", lambda s: setattr(named(s, "Point 2"), "local", np.roll(s.nodes[2].local[:1], 3))),
            ("marker", lambda s: scaled(named(s, "Point 1"), np.s_[7:], 1.001)),
            ("scene not scaled", lambda s: scaled(s.nodes[1], np.s_[7:], 1.25)),
            ("group a frame late", lambda s: late(named(s, "Whole_car"))),
            ("a layer without its group", lambda s: moved(s, "Sign", "MarloScene")),
            ("a point of another layer", lambda s: moved(s, "Point 2", "Floor")),
            ("a point less", lambda s: s.nodes.pop()),
            ("model turned", lambda s: scaled(named(s, "old tree"), 3, -1.0)),
            ("model on the scene", lambda s: moved(s, "hat", "MarloScene")),
            ("one material", lambda s: named(s, "Vertex 1").materials.__setitem__(0, "SurfacePointMaterial")),
            ("color", lambda s: s.materials.__setitem__("MeshPointMaterial", ("lambert", (0.0, 1.0, 0.0), 0.0))),
            ("UV upside down", lambda s: named(s, mesh).mesh.corner_uvs.__setitem__(
                np.s_[:, 1], 1.0 - named(s, mesh).mesh.corner_uvs[:, 1])),
            ("vertex", lambda s: named(s, mesh).mesh.vertices.__setitem__((2, 1), 0.125)),
            ("faces turned over", lambda s: named(s, mesh).mesh.faces[1].reverse()),
            ("two of one name", lambda s: setattr(named(s, "Wall_Surface"), "name", "Floor_Surface"))):
        bad = copy.deepcopy(good)
        change(bad)
        yield name, bad


def rig_faults(good: Scene) -> Iterator[Tuple[str, Scene]]:
    """Faults of a stereo rig."""
    at = next(i for i, node in enumerate(good.nodes) if node.eyes)
    for name, change in (
            ("mode", lambda node: node.lens.__setitem__("Stereo", 2.0)),
            ("separation", lambda node: node.curves["InteraxialSeparation", 0].values.__setitem__(1, 0.3)),
            ("separation a frame late", lambda node: setattr(
                node.curves["InteraxialSeparation", 0], "times", np.array([1, 9]) / 24.0)),
            ("crossing", lambda node: node.curves["ZeroParallax", 0].values.__setitem__(0, 6.5)),
            ("eyes exchanged", lambda node: setattr(node, "eyes", node.eyes[::-1])),
            ("shift the other way", lambda node: setattr(node, "eyes", tuple((n, -x) for n, x in node.eyes))),
            ("one eye", lambda node: setattr(node, "kind", "CAMERA"))):
        bad = copy.deepcopy(good)
        change(bad.nodes[at])
        yield name, bad
