"""Solved shots with known answers, made here, for everything that exports a camera and points.

Each is chosen so that a wrong sign, order, side, unit or parent moves points by many pixels: cameras turn about all
three axes by large angles, poses have turns about all three axes, offsets and scales, and nothing lies in the middle.
"""

from itertools import product
from typing import Any, Callable, Dict, Iterator, List, Optional, Tuple

import numpy as np

from scene_model import rotating_xyz, rotating_xyz_angles, static_xyz

Project = Dict[str, Any]

FRAMES = 13

# Points about the origin, up to 1.5 scene units away from it.
CLOUD = [0.31, -0.42, 0.27, -1.13, 0.64, -0.38, 0.95, 0.81, -0.73, -0.22, -0.97, 1.04]


def _flat(rows: np.ndarray) -> List[float]:
    return [float(value) for value in np.asarray(rows).ravel()]


def _static_angles(rotation: np.ndarray) -> np.ndarray:
    """Angles about the static axes x, y, z in degrees: those about the turning axes, of the inverse, reversed."""
    return -rotating_xyz_angles(np.swapaxes(rotation, -1, -2))


def orbit(frames: int = FRAMES, distance: float = 9.0, start=(24.0, 65.0, -140.0), step=(-2.6, 8.3, 7.1)) -> Project:
    """A camera that looks at the origin from all round it, rolls about its own axis, and misses the middle a little."""
    at = np.arange(frames)[:, None]
    # Elevation and heading are those of the place, the roll is about the line of sight.
    elevation, heading, roll = (static_xyz(at * step[i] * axis + start[i] * axis)
                                for i, axis in enumerate(np.diag([-1.0, 1.0, 1.0])))
    turns = heading @ elevation
    rolled = turns @ roll
    positions = turns @ np.array([0.4, -0.3, distance]) + 0.03 * at * np.array([1.0, -2.0, 0.5])
    return {"positions": _flat(positions), "rotations": _flat(_static_angles(rolled)), "firstFrame": 0,
            "focalLength": 35, "filmBackWidth": 36}


def handheld(frames: int = FRAMES) -> Project:
    """A camera as shots have it: some degrees about each axis."""
    at = np.arange(frames)[:, None]
    wobble = np.concatenate([3.1 * np.sin(0.4 * at) - 6.0, 0.9 * at + 4.0, 2.2 * np.cos(0.3 * at) + 1.5], axis=1)
    positions = np.array([0.9, 1.3, 10.5]) + 0.12 * at * np.array([1.0, -0.4, 0.7])
    return {"positions": _flat(positions), "rotations": _flat(wobble), "firstFrame": 0, "focalLength": 35,
            "filmBackWidth": 36}


def swaying(seed: int, frames: int = FRAMES, scale: bool = False) -> Project:
    """A moving pose near the origin, another one for each seed."""
    random = np.random.default_rng(seed)
    at = np.arange(frames)[:, None]
    positions = random.uniform(-0.4, 0.4, 3) + 0.05 * at * random.uniform(-1.0, 1.0, 3)
    rotations = random.uniform(-80.0, 80.0, 3) + at * random.uniform(-11.0, 11.0, 3)
    pose = {"firstFrame": 0, "positions": _flat(positions), "rotations": _flat(rotations)}
    if scale:
        pose["scales"] = _flat(0.7 + 0.04 * at)
    return pose


AT_REST = {"positions": [0.25, -0.35, 0.15], "rotations": [35, -50, 110], "scales": [1.2]}
SCENE = {"positions": [3.5, -1.25, 0.75], "rotations": [20, 75, -130], "scales": [0.8]}


def layer(name: str, **keys: Any) -> Project:
    return {"name": name, "surface": {"corners": [100, 100, 300, 100, 100, 250, 300, 250]},
            "tracking": [{"homographies": [1, 0, 0, 0, 1, 0, 0, 0, 1]}], **keys}


def points(count: int = 4, **keys: Any) -> Project:
    return {"positions": CLOUD[:3 * count], **keys}


def project(solve: Project, layers: Optional[List[Project]] = None, clip: Optional[Project] = None,
            **keys: Any) -> Project:
    return {"marloProject": 1, "frameRate": 24,
            "clips": [{"name": "shot", "width": 1920, "height": 1080, "frameCount": FRAMES, **(clip or {})}],
            "layers": [layer("Wall", surfacePoints=points())] if layers is None else layers,
            "solve": {"camera": orbit(), **solve}, **keys}


def _moving_points() -> Project:
    at = np.arange(FRAMES)[:, None, None]
    cloud = np.array(CLOUD).reshape(1, -1, 3)
    return {"frames": list(range(FRAMES)), "names": ["a", "b c", "d", "e"],
            "positions": _flat(cloud + 0.02 * at * cloud[..., ::-1])}


def _moving_parts() -> Project:
    groups = [{"name": "Whole car", "moving": True, "pose": swaying(1, scale=True)},
              {"name": "Left door", "moving": True, "parent": "Whole car", "pose": swaying(2)}]
    layers = [layer("Car body", group="Whole car", moving=True, pose=swaying(3), surfacePoints=points()),
              layer("Handle", group="Left door", moving=True, pose=swaying(4, scale=True), surfacePoints=points(2)),
              layer("Window", group="Left door", moving=True, pose=swaying(5), surfacePoints=_moving_points()),
              layer("Ball", moving=True, pose=swaying(6, scale=True), surfacePoints=points(3)),
              layer("Sparse", moving=True, surfacePoints=points(1), pose={
                  "frames": [2, 9], "positions": [0, 0.1, 0, 0.4, -0.5, 0.3], "rotations": [10, 20, -30, 95, -40, 60]}),
              layer("Old wall", pose=AT_REST, surfacePoints=points())]
    return project({"scene": SCENE}, layers, groups=groups)


def _features() -> Project:
    layers = [layer("Wall", surfacePoints=points(2)), layer("Hidden van", moving=True, hidden=True, pose=swaying(7)),
              layer("Chosen", selected=True, pose=AT_REST, surfacePoints=points(1))]
    features = [{"name": "cloud", **points(3)}, {"name": "on van", "layer": "Hidden van", **points(2)},
                {"name": "more", "selected": True, **points(1, names=["lamp post"])},
                {"name": "on wall", "layer": "Wall", "hidden": True, **points(1)}]
    root = {"positions": [0.2, 0.1, -0.3], "rotations": [15, 25, -35]}
    return project({"scene": SCENE, "features": features, "featureRoot": root}, layers)


def _assets() -> Project:
    layers = [layer("Empty", moving=True, pose=swaying(8)), layer("Wall", pose=AT_REST, surfacePoints=points(1)),
              layer("Flat", surfacePoints=points(1))]
    assets = [{"path": "models/old tree.v2.obj", **AT_REST}, {"path": "C:/cup.fbx", "layer": "Wall", **AT_REST},
              {"path": "hat.obj", "layer": "Empty", "positions": [0.3, 0.2, -0.1]}]
    return project({"scene": SCENE, "assets": assets}, layers)


def _keyed_focal(**solve: Any) -> Project:
    return project({**solve, "camera": {**orbit(), "focalLength": {"frames": [1, 7, 11], "values": [28, 35.5, 50]}}})


def rig(mode: str = "parallel") -> Project:
    stereo = {"mode": mode, "separation": {"frames": [0, 8], "values": [0.4, 0.6]}}
    if mode == "converged":
        stereo["convergence"] = {"frames": [2, 10], "values": [3.5, 6]}
    return project({"stereo": stereo, "scene": SCENE}, views=["left", "right"])


def legacy() -> Project:
    """A solve of an old version; its features are not exported."""
    wall = layer("Old wall", surfacePoints=points())
    return project({"legacy": True, "scene": SCENE, "features": [{"name": "cloud", **points(2)}]}, [wall],
                   clip={"width": 960, "pixelAspect": 2, "frameOffset": 11}, playback=[2, 9])


_GROUPS: Dict[str, List[Project]] = {
    "": [],
    "at rest": [{"name": "The group"}],
    "moving": [{"name": "The group", "moving": True, "pose": swaying(10)}],
    "moving in one at rest": [{"name": "Outer", "hidden": True},
                              {"name": "The group", "moving": True, "pose": swaying(10), "parent": "Outer"}],
    "at rest in a moving one": [{"name": "Outer", "moving": True, "pose": swaying(12)},
                                {"name": "The group", "parent": "Outer"}],
}


def _combinations() -> Iterator[Tuple[str, Project]]:
    """What pairs names with documents: all that a layer, a group, features and an asset can be at a time.

    What a layer at rest is held by changes nothing, so it is in two of the groups only.
    """
    for own, moving, group, features, asset in product((0, 2), (False, True), _GROUPS, ("", "free", "tied", "both"),
                                                       ("", "free", "tied")):
        if not moving and group not in ("", "moving"):
            continue
        keys: Project = {"moving": moving, "pose": swaying(9) if moving else AT_REST}
        if group:
            keys["group"] = "The group"
        groups = _GROUPS[group]
        if own:
            keys["surfacePoints"] = points(own)
        solve: Project = {"features": [], "assets": []}
        if features in ("free", "both"):
            solve["features"].append({"name": "free", **points(1)})
        if features in ("tied", "both"):
            solve["features"].append({"name": "tied", "layer": "Thing", **points(1)})
        if asset:
            solve["assets"].append({"path": "cup.obj", "positions": [0.1, 0.2, 0.3],
                                    **({"layer": "Thing"} if asset == "tied" else {})})
        name = f"{own} points{' moving' * moving}, group {group or '-'}, features {features or '-'}, "
        name += f"asset {asset or '-'}"
        yield name, project(solve, [layer("Thing", **keys)], groups=groups)


# Every project by name.
PROJECTS: Dict[str, Callable[[], Project]] = {
    "handheld": lambda: project({"camera": handheld()}),
    "orbit": lambda: project({}),
    "wide pixels": lambda: project({}, clip={"width": 960, "pixelAspect": 2}),
    "scene pose": lambda: project({"scene": SCENE}),
    "offset and in point": lambda: project({}, clip={"frameOffset": 1001}, playback=[4, 10]),
    "fields": lambda: project({}, clip={"width": 720, "height": 576, "pixelAspect": 59 / 54, "interlaced": True},
                              playback=[3, 10]),
    "keyed focal length": _keyed_focal,
    "moving parts": _moving_parts,
    "features": _features,
    "assets": _assets,
    "mesh": lambda: project({}, [layer("Sign", pose=AT_REST, surfacePoints=points(2), meshPoints=points(4))]),
    "legacy": legacy,
    "moving points": lambda: project({}, [layer("Flag", pose=AT_REST, surfacePoints=_moving_points())]),
    "short layer": lambda: project({}, [layer("Short", **{"in": 3, "out": 8}, moving=True, pose=swaying(11),
                                              surfacePoints=points())]),
    "camera alone": lambda: project({}, []),
    "sparse camera": lambda: project({"camera": {
        "frames": [2, 6, 11], "positions": [0, 0, 9, 1, 0.5, 8, 2, 1, 8.5],
        "rotations": [0, 0, 170, -4, 8, -160, -8, 14, -90], "focalLength": 40}}),
    "rig": rig,
    "converged rig": lambda: rig("converged"),
}


def combinations() -> Dict[str, Project]:
    return dict(_combinations())


def check_angles() -> bool:
    """Whether this module's decomposition gives the rotation back that it takes apart."""
    rotation = rotating_xyz(np.array([[-20.0, 65.0, 170.0]]))
    return bool(np.allclose(static_xyz(_static_angles(rotation)), rotation, rtol=0.0, atol=1e-12))
