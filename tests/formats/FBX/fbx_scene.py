"""What ufbx makes of an FBX file, in plain numbers.

ufbx 0.0.5 crashes when one of its lists is walked twice or garbage is collected, so each is taken once, and a child
process does it.
"""

import gc
import multiprocessing
from concurrent.futures import ProcessPoolExecutor
from concurrent.futures.process import BrokenProcessPool
from dataclasses import dataclass, field
from pathlib import Path
from typing import Any, Dict, List, Optional, Tuple

import numpy as np

# Numbers of a camera that are read as they stand in the file.
LENS = ("AspectRatioMode", "AspectWidth", "AspectHeight", "ApertureMode", "FilmFormatIndex", "FilmWidth", "FilmHeight",
        "FilmSqueezeRatio", "FilmAspectRatio", "FilmOffsetX", "FilmOffsetY", "FocalLength", "FieldOfView", "NearPlane",
        "FarPlane", "PixelAspectRatio", "Stereo", "InteraxialSeparation", "ZeroParallax")


@dataclass
class Curve:
    """Keys: seconds, values, and the names of how each goes on to the next."""
    times: np.ndarray
    values: np.ndarray
    kinds: List[str]


@dataclass
class Mesh:
    vertices: np.ndarray
    faces: List[List[int]]
    corner_uvs: Optional[np.ndarray]
    face_materials: List[int]


@dataclass
class Node:
    """`local` is (times, 10): translation, quaternion x y z w, scale, one row where nothing is keyed; `curves` are by
    property and axis, those of the lens among them; `eyes` are name and
    FilmOffsetX of left and right."""
    name: str
    parent: Optional[int]
    kind: str
    local: np.ndarray
    angles: np.ndarray
    curves: Dict[Tuple[str, int], Curve] = field(default_factory=dict)
    lens: Dict[str, float] = field(default_factory=dict)
    eyes: Tuple[Tuple[str, float], ...] = ()
    mesh: Optional[Mesh] = None
    materials: List[str] = field(default_factory=list)


@dataclass
class Scene:
    """`nodes[0]` is the root; `times` are those of all keys of translations and rotations, seconds."""
    version: int
    unit: float
    axes: Tuple[str, ...]
    rate: float
    range: Tuple[float, float]
    span: Tuple[int, int]
    stacks: List[str]
    layers: List[str]
    materials: Dict[str, Tuple[str, Tuple[float, ...], float]]
    nodes: List[Node]
    times: np.ndarray


def read(data: bytes, scratch: Path) -> Scene:
    """Raises ValueError when ufbx refuses the file, or falls over it."""
    file = scratch / "read.fbx"
    file.write_bytes(data)
    with ProcessPoolExecutor(1, multiprocessing.get_context("fork")) as pool:
        try:
            return pool.submit(_load, str(file)).result()
        except BrokenProcessPool:
            raise ValueError("ufbx doesn't survive the file") from None


_HELD: List[Any] = []


def _taken(values: Any) -> List[Any]:
    """The things of a list; both stay in memory."""
    _HELD.append((values, list(values)))
    return _HELD[-1][1]


def _load(file: str) -> Scene:
    import ufbx
    gc.disable()
    try:
        scene = ufbx.load_file(file)
    except ufbx.UfbxError as error:
        raise ValueError(f"ufbx: {error}") from None
    settings, stacks, found = scene.settings, _taken(scene.anim_stacks), _taken(scene.nodes)
    layers = _taken(scene.anim_layers)
    index = {node.element_id: i for i, node in enumerate(found)}
    for i, node in enumerate(found):
        if node.attrib is not None:
            index[node.attrib.element_id] = i
    curves: Dict[int, Dict[Tuple[str, int], Curve]] = {}
    for layer in layers:
        for animated in _taken(layer.anim_props):
            for axis, curve in enumerate(animated.anim_value.curves):
                if curve is not None and animated.element.element_id in index:
                    of_node = curves.setdefault(index[animated.element.element_id], {})
                    if (animated.prop_name, axis) in of_node:
                        raise ValueError(f"two curves of {animated.prop_name}")
                    keys = _taken(curve.keyframes)
                    of_node[animated.prop_name, axis] = Curve(
                        np.array([key.time for key in keys]), np.array([key.value for key in keys]),
                        [key.interpolation.name for key in keys])
    times = np.unique([time for of_node in curves.values() for (name, _), curve in of_node.items()
                       if name.startswith("Lcl") for time in curve.times])
    nodes = [_node(ufbx, scene.anim, node, index, curves.get(i, {}), times) for i, node in enumerate(found)]
    materials = {}
    for material in _taken(scene.materials):
        found_properties = [material.props.find_prop(name) for name in ("DiffuseColor", "EmissiveFactor")]
        materials[material.name] = (material.shading_model_name, tuple(found_properties[0].value_vec4)[:3],
                                    found_properties[1].value_vec4.x)
    axes = tuple(axis.name for axis in settings.axes)
    span = tuple(settings.props.find_prop(name).value_int for name in ("TimeSpanStart", "TimeSpanStop"))
    bounds = (stacks[0].time_begin, stacks[0].time_end) if stacks else (0.0, 0.0)
    return Scene(scene.metadata.version, settings.unit_meters, axes, settings.frames_per_second, bounds, span,
                 [stack.name for stack in stacks], [layer.name for layer in layers], materials, nodes, times)


def _node(ufbx: Any, anim: Any, node: Any, index: Dict[int, int], curves: Dict[Tuple[str, int], Curve],
          times: np.ndarray) -> Node:
    moves = any(name.startswith("Lcl") for name, _ in curves)
    local = [(*at.translation, *at.rotation, *at.scale) for at in (
        ufbx.evaluate_transform(anim, node, time) for time in (times if moves else [0.0]))]
    turned = node.props.find_prop("Lcl Rotation")
    angles = (0.0, 0.0, 0.0) if turned is None else tuple(turned.value_vec4)[:3]
    parent = None if node.parent is None else index[node.parent.element_id]
    result = Node(node.name, parent, node.attrib_type.name, np.array(local), np.array(angles), curves)
    attribute = node.attrib
    if node.attrib_type.name in ("CAMERA", "STEREO_CAMERA"):
        found = {name: attribute.props.find_prop(name) for name in LENS}
        result.lens = {name: prop.value_vec4.x for name, prop in found.items() if prop is not None}
    if node.attrib_type.name == "STEREO_CAMERA":
        result.eyes = tuple((eye.name, eye.props.find_prop("FilmOffsetX").value_vec4.x)
                            for eye in (attribute.left, attribute.right))
    if node.mesh is not None:
        mesh, faces, corners = node.mesh, _taken(node.mesh.faces), _taken(node.mesh.vertex_indices)
        uvs = None
        if mesh.vertex_uv.exists:
            values = np.array([tuple(pair) for pair in _taken(mesh.vertex_uv.values)])
            uvs = values[_taken(mesh.vertex_uv.indices)]
        result.mesh = Mesh(np.array([tuple(v) for v in _taken(mesh.vertices)]).reshape(-1, 3), [
            corners[face.index_begin:face.index_begin + face.num_indices] for face in faces], uvs,
            _taken(mesh.face_material))
    result.materials = [material.name for material in _taken(node.materials)]
    return result
