"""Projects with roto shapes, made here so that a wrong order, side, sign, unit, key or layer shows as many pixels."""

import copy
from dataclasses import dataclass
from typing import Any, Dict, List, Tuple

import numpy as np

import shots
from shape_model import Scene


def _bezier(middle, radius, turn: float, stretch: float = 1.0) -> List[float]:
    """Five vertices around a point; no two sides alike, and handles that don't mirror one another."""
    numbers: List[float] = []
    for i, part in enumerate((0.9, 1.1, 0.7, 1.2, 1.0)):
        angle = np.radians(turn + 72.0 * i + 9.0 * part)
        x, y = part * radius * np.cos(angle) * stretch, part * radius * np.sin(angle)
        numbers += [middle[0] + x, middle[1] + y, 0.3 * y + 2.0, -0.25 * x, -0.2 * y, 0.35 * x - 1.5 * i]
    return [round(float(number), 3) for number in numbers]


def _x_spline(middle, radius, turn: float, weights) -> List[float]:
    numbers: List[float] = []
    for i, weight in enumerate(weights):
        angle, reach = np.radians(turn + 360.0 * i / len(weights)), radius * (1.0, 0.7, 1.2)[i % 3]
        numbers += [middle[0] + reach * np.cos(angle), middle[1] + reach * np.sin(angle), weight]
    return [round(float(number), 3) for number in numbers]


def _contours(x: float, y: float, size: float, keys) -> List[Dict[str, Any]]:
    """A feathered shape, a round and an open X-spline, an open line, and one that isn't exported."""
    early, middle, late = keys
    line = [x, y, 9, 9, 20, 5, x + size, y + 0.4 * size, -15, 12, 12, -15, x + 1.5 * size, y - 0.2 * size, -20, -6, 7, 7]
    return [
        {"name": "Soft edge", "keys": [
            {"frame": early, "points": _bezier((x, y), size, 10), "feather": _bezier((x + 3, y - 2), 1.3 * size, 12)},
            {"frame": middle, "points": _bezier((x + 30, y + 8), size, 25), "feather": _bezier((x + 35, y), 1.4 * size, 25)},
            {"frame": late, "points": _bezier((x - 10, y + 20), 1.2 * size, -5),
             "feather": _bezier((x - 10, y + 30), 1.5 * size, -5)}]},
        {"name": "Round", "type": "xspline", "keys": [
            {"frame": middle, "points": _x_spline((x, y), size, 0, (1, -1, 0.5, 0, -0.4, 1)),
             "feather": _x_spline((x, y), 1.3 * size, 5, (1, -1, 0.5, 0, -0.4, 1))},
            {"frame": late, "points": _x_spline((x + 25, y), 0.9 * size, 30, (0.6, -1, 1, 0, -0.4, 1))}]},
        {"name": "Line", "closed": False, "keys": [
            {"frame": early, "points": line}, {"frame": late, "points": [number + 11.5 for number in line]}]},
        {"name": "Idle", "active": False, "keys": [{"frame": early, "points": line}]},
        {"name": "Open round", "type": "xspline", "closed": False, "keys": [
            {"frame": middle, "points": _x_spline((x, y), 1.1 * size, 50, (0, 1, -1, 0.3, 0))}]},
    ]


def _moved(frames: int, aspect: float, middle, path, turn: float, zoom: float, tilt) -> List[float]:
    return shots.flat_numbers(shots.motion(frames, 0, aspect, middle, path, turn, zoom, tilt))


def layers() -> Dict[str, Any]:
    """Three layers over a base offset and a playback range: inverted with corrections by hand; subtracting, hidden and
    of the length of the clip; and one of a single frame."""
    return {
        "marloProject": 1, "frameRate": 25, "playback": [5, 33],
        "clips": [{"name": "wide", "width": 1440, "height": 1080, "pixelAspect": 2, "frameCount": 40, "frameOffset": 1001,
                   "filmBack": {"width": 24.9, "height": 9.35}}],
        "currentLayer": "Front sign",
        "layers": [
            {"name": "Front sign", "in": 12, "out": 26, "invert": True, "colour": [200, 30, 90, 128],
             "surface": {"referenceFrame": 12, "corners": [500, 360, 640, 375, 490, 510, 622, 498]},
             "tracking": [{"homographies": _moved(15, 2.0, (560, 430), (9.5, 7.25), 4.0, 1.012, (6e-4, -8e-4))}],
             "adjust": [{"frame": 13, "offsets": [4, -3, 0, 2.5, -6, 1, 3, 3]},
                        {"frame": 20, "offsets": [0, 0, 5.5, -4, 2, 2, -1, 6]}],
             "contours": _contours(560, 430, 90, (8, 16, 22))},
            {"name": "Back", "blend": "subtract", "hidden": True, "overlayColour": [1, 2, 3, 4],
             "surface": {"referenceFrame": 0, "corners": [100, 200, 900, 180, 120, 800, 880, 820]},
             "tracking": [{"homographies": _moved(40, 2.0, (500, 500), (3.0, -2.0), -1.5, 0.995, (1e-4, 1e-4))}],
             "contours": [{"name": "Hole in it", "keys": [{"frame": 3, "points": _bezier((400, 500), 150, 40)}]}]},
            {"name": "Still", "in": 7, "out": 7,
             "surface": {"corners": [100, 200, 300, 210, 120, 400, 310, 420]},
             "tracking": [{"frames": [7], "homographies": _moved(1, 2.0, (200, 300), (0, 0), 0.0, 1.0, (0, 0))}],
             "contours": _contours(220, 300, 60, (2, 7, 9))},
        ],
    }


def fields() -> Dict[str, Any]:
    """Fields of a PAL clip; coordinates are in field lines. The layer ends with the clip."""
    aspect = 59 / 54
    return {
        "marloProject": 1, "frameRate": 25,
        "clips": [{"name": "fields", "width": 720, "height": 576, "pixelAspect": aspect, "frameCount": 24,
                   "frameOffset": 10, "interlaced": True}],
        "layers": [
            {"name": "Screen", "in": 3, "out": 23, "surface": {"corners": [100, 30, 255, 42, 112, 115, 240, 104]},
             "tracking": [{"homographies": _moved(21, aspect / 2, (180, 70), (11.0, 4.5), -7.0, 0.985, (-5e-4, 8e-4))}],
             "contours": _contours(180, 75, 28, (4, 9, 15))}],
    }


def stereo() -> Dict[str, Any]:
    """Two views of one layer, whose motion is another one in each; the layer starts with the clip."""
    project = layers()
    layer = project["layers"][0]
    layer.update({"in": 0, "out": 14, "surface": dict(layer["surface"], referenceFrame=0), "name": "Both eyes"})
    right = _moved(15, 2.0, (530, 425), (7.5, 8.25), 4.5, 1.008, (5e-4, -7e-4))
    layer["tracking"] = [dict(layer["tracking"][0], view="left", firstFrame=0),
                         {"view": "right", "firstFrame": 0, "homographies": right}]
    project.update({"views": ["left", "right"], "layers": [layer], "currentLayer": "Both eyes"})
    del project["playback"]
    return project


def far(number: int = 0, value: float = -31000.0) -> Dict[str, Any]:
    """A vertex is more than 30000 pixels away, in a single frame; `number` is that of the coordinate in a key."""
    project = layers()
    layer = copy.deepcopy(project["layers"][0])
    shape = layer["contours"][0]
    shape["keys"] = [dict(shape["keys"][0], frame=frame) for frame in (12, 19, 20, 26)]
    for key in shape["keys"]:
        key["points"] = list(key["points"])
    shape["keys"][1]["points"][number] = 4200.0
    shape["keys"][2]["points"][number] = value
    del layer["adjust"]
    layer["tracking"] = [{"homographies": _moved(15, 2.0, (560, 430), (9.5, 7.25), 4.0, 1.0, (0, 0))}]
    layer["contours"] = [shape, layer["contours"][2]]
    project.update({"layers": [layer], "playback": [0, 39]})
    return project


@dataclass(frozen=True)
class Case:
    """A scene and what exports it."""
    name: str
    scene: Scene
    arguments: Tuple[str, ...] = ()


def cases() -> Dict[str, Case]:
    """By name; a format that writes one view alone leaves "both views" out."""
    several, one, two = layers(), fields(), stereo()
    names = [layer["name"] for layer in several["layers"]]
    return {case.name: case for case in (
        Case("layers", Scene(several, names), ("--layers", "all")),
        Case("single frame", Scene(several, ["Still"]), ("--layer", "Still")), Case("fields", Scene(one)),
        Case("both views", Scene(two, views=(0, 1)), ("--view", "all")),
        Case("left view", Scene(two), ("--view", "left")),
        Case("right view", Scene(two, views=(1,)), ("--view", "right")), Case("far", Scene(far())))}
