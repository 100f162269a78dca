"""Layers with tracked meshes: perspective, corrections by hand, wide pixels, gaps, fields, and a view for each eye."""

from typing import Any, Dict, List

import numpy as np

import shots

FACES = {"vertexCount": 6, "faceCounts": [3, 4, 3], "faceIndices": [0, 1, 5, 1, 2, 3, 4, 1, 4, 5]}


def _positions(frames: int, middle, seed: float) -> List[float]:
    """Vertices around a point, each of which goes its own way."""
    angles = np.radians([200.0, 265.0, 330.0, 30.0, 95.0, 160.0])
    at = np.arange(frames)[:, None]
    x = middle[0] + (50.0 + 2.0 * np.sin(seed * at)) * np.cos(angles + 0.05 * at) + 1.25 * at
    y = middle[1] + (35.0 + 1.5 * np.cos(seed * at)) * np.sin(angles + 0.05 * at) - 0.75 * at
    return [round(float(number), 3) for number in np.stack([x, y], axis=2).ravel()]


def _with_mesh(project: Dict[str, Any], tracks: List[Dict[str, Any]]) -> Dict[str, Any]:
    layer = {**project["layers"][0], "mesh": {**FACES, "tracks": tracks}}
    return {**project, "layers": [layer]}


def projects() -> Dict[str, Dict[str, Any]]:
    wide = _with_mesh(shots.hand_made(shots.GENTLE), [{"positions": _positions(19, (560, 130), 0.7)}])
    gaps = _with_mesh(shots.hand_made(shots.GENTLE), [
        {"frames": [13, 15, 16, 21, 29], "positions": _positions(5, (560, 130), 0.4)}])
    gaps["layers"][0]["name"] = gaps["currentLayer"] = "1 sign; a=b"
    fields = _with_mesh(shots.interlaced(), [{"positions": _positions(19, (180, 70), 0.9)}])
    eyes = _with_mesh(shots.hand_made(shots.GENTLE), [
        {"positions": _positions(19, (560, 130), 0.7)},
        {"view": "right", "positions": _positions(19, (540, 140), 0.5)}])
    record = eyes["layers"][0]
    record["tracking"] = [*record["tracking"], {**record["tracking"][0], "view": "right"}]
    return {"wide": wide, "gaps": gaps, "fields": fields, "eyes": {**eyes, "views": ["left", "right"]}}
