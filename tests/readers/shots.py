"""Planar shots with known answers: an annotated sheet of paper, and two projects that are made here.

Each shot is chosen so that a wrong sign, order, side, unit or reference frame shows as an error of many pixels.
"""

from pathlib import Path
from typing import Any, Dict

import numpy as np

from planar import PlanarLayer, Shot

PAPER_SIZE = (1920, 1080)


def paper_corners(table: Path) -> np.ndarray:
    """The annotated corners, y down from the top edge, in this module's order of corners."""
    rows = np.loadtxt(table, skiprows=1)
    if rows.shape != (119, 9) or list(rows[:, 0]) != list(range(1, 120)):
        raise ValueError(f"{table}: 119 frames of four corners expected")
    upper_left, upper_right, lower_right, lower_left = (rows[:, 1 + 2 * i:3 + 2 * i] for i in range(4))
    return np.stack([lower_left, lower_right, upper_left, upper_right], axis=1)


def paper_shot(corners: np.ndarray, imported: Dict[str, Any]) -> Shot:
    """The sheet of paper as its table has it; only the reference frame and the rate are the importer's choice."""
    layer = PlanarLayer(imported)
    return Shot(*PAPER_SIZE, 1.0, layer.rate, 1, 0, layer.reference, corners)


def imported_error(corners: np.ndarray, imported: Dict[str, Any]) -> float:
    """Largest distance, in pixels, of the imported project's corners from the annotated ones."""
    shot = PlanarLayer(imported).shot("basic")
    if shot.first != 0 or shot.corners.shape != corners.shape or (shot.width, shot.height) != PAPER_SIZE:
        raise ValueError("the imported project has other frames or another size than the table")
    return float(np.abs(shot.corners - corners).max())


def motion(frames: int, reference: int, aspect: float, middle, path, turn: float, zoom: float, perspective):
    """Homographies against the frame at index `reference` of a plane about `middle` that moves by `path`, turns
    by `turn` degrees (counter-clockwise), grows by the factor `zoom` and tilts, everything per frame."""
    square = np.diag([aspect, 1.0, 1.0])
    poses = []
    for i in range(frames):
        angle, scale = np.radians(turn * i), zoom ** i
        cos, sin = scale * np.cos(angle), scale * np.sin(angle)
        tilt = np.array([[1, 0, 0], [0, 1, 0], [perspective[0] * np.cos(0.4 * i), perspective[1] * np.sin(0.3 * i), 1]])
        spin = np.array([[cos, -sin, 0], [sin, cos, 0], [0, 0, 1]])
        x, y = middle[0] + path[0] * i, middle[1] + path[1] * i
        poses.append(_shift(x, y) @ np.linalg.inv(square) @ spin @ tilt @ square @ _shift(-middle[0], -middle[1]))
    return [pose @ np.linalg.inv(poses[reference]) for pose in poses]


def _shift(x: float, y: float) -> np.ndarray:
    return np.array([[1.0, 0.0, x], [0.0, 1.0, y], [0.0, 0.0, 1.0]])


def flat_numbers(matrices) -> list:
    """The nine numbers of each matrix, times a factor that changes nothing."""
    return [(1.0, -2.5, 4e-3)[i % 3] * float(value) for i, matrix in enumerate(matrices) for value in matrix.ravel()]


# Tilts, per square pixel: one that makes a side of the surface more than twice as long as the opposite one, and one
# that keeps the corners of the whole picture in front of the horizon, for exports that carry the picture.
STRONG, GENTLE = (1.5e-3, -2e-3), (2e-4, -3e-4)


def hand_made(tilt) -> Dict[str, Any]:
    """Wide pixels, a surface far from the middle, perspective, a turn of 450 degrees, corrections by hand."""
    poses = motion(19, 2, 2.0, (560, 130), (-7.5, 9.25), 25.0, 1.015, tilt)
    corners = [500, 60, 640, 75, 490, 210, 622, 198]
    return {
        "marloProject": 1,
        "frameRate": 23.976,
        "clips": [{"name": "wide", "width": 720, "height": 576, "pixelAspect": 2, "frameCount": 50,
                   "frameOffset": 1001}],
        "currentLayer": "Poster",
        "layers": [{
            "name": "Poster", "in": 12, "out": 30,
            "surface": {"referenceFrame": 14, "corners": corners},
            "tracking": [{"firstFrame": 12, "homographies": flat_numbers(poses)}],
            "adjust": [
                {"frame": 13, "offsets": [4, -3, 0, 2.5, -6, 1, 3, 3]},
                {"frame": 21, "offsets": [0, 0, 5.5, -4, 2, 2, -1, 6]},
                {"frame": 27, "offsets": [-3, 7, 1, 1, 0, -5, 2.25, 0]},
            ],
            "stabilize": {"rangeStart": 15, "rangeEnd": 28, "fixedFrames": [13, 17, 24]},
        }],
    }


def interlaced() -> Dict[str, Any]:
    """Fields of a PAL clip; the layer starts on a second field. Corners and homographies are in field lines."""
    aspect = 59 / 54
    poses = motion(19, 0, aspect / 2, (180, 70), (11.0, 4.5), -13.0, 0.985, (-5e-4, 8e-4))
    return {
        "marloProject": 1,
        "frameRate": 25,
        "clips": [{"name": "fields", "width": 720, "height": 576, "pixelAspect": aspect, "frameCount": 40,
                   "frameOffset": 10, "interlaced": True}],
        "layers": [{
            "name": "Screen", "in": 3, "out": 21,
            "surface": {"corners": [100, 30, 255, 42, 112, 115, 240, 104]},
            "tracking": [{"homographies": flat_numbers(poses)}],
        }],
    }
