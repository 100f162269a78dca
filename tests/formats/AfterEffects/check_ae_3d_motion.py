"""Proves that nulls stick: projects them through the camera, both as exported 3D motion text has them, onto the solve.

usage: check_ae_3d_motion.py MARLO_EXPORT SOURCE_DIR SCRATCH_DIR

Projects that are made here go through both formats, and every combination of what pairs names with documents through
both as well. Then faults are put into the exported texts, and each has to be noticed.
"""

import sys
from typing import Any, Dict, List, Optional, Tuple

import numpy as np

import ae_3d_faults
import checking
import scene_shots
from ae_3d_motion import PICTURE, Reading, judge, judge_picture
from ae_3d_nulls import Options
from checking import Check
from reprojection import Camera, spread
from scene_model import SceneModel, partial_turn, static_xyz

VERIFIES = {
    "after_effects_3D_motion": "each number within half a unit of its sixth digit, nulls in the picture within 0.05 px",
    "after_effects_3D_motion_pre_2025": "each number within half a unit of its sixth digit, nulls within 0.05 px",
}

# What half units of six digits may cost in these scenes at the most, pixels.
CEILING = 0.05

# What is exported beside everything of every project.
MORE: Tuple[Tuple[str, Options], ...] = (
    ("features", Options(features=False)), ("features", Options(objects="visible")),
    ("features", Options(objects="selected")), ("moving parts", Options(features=False)),
)

# Projects whose texts get faults: with a moving layer in a moving group, with a zoom, and without parents.
FAULTY = (("moving parts", True), ("keyed focal length", True), ("scene pose", False))


def check_export(check: Check, name: str, project: Dict[str, Any], options: Options, quiet: bool = False,
                 widest: float = CEILING) -> Optional[bytes]:
    """`widest` is how far the bound may reach; the error stays below the ceiling whatever that is."""
    model = SceneModel(project)
    name = " ".join([name, *options.arguments()])
    text = check.export(options.key, name, project, *options.arguments(), "--quiet")
    if text is None:
        return None
    findings = judge(text, model, options)
    good = check.verdict(options.key, name, findings, quiet)
    picture = findings.measures.get(PICTURE)
    if picture is not None:
        good &= check.expect(picture.error <= CEILING and picture.bound <= widest,
                             f"{name}, {options.key}: {picture.error:.3g} px, bound {picture.bound:.3g} px")
    return text if good else None


def cases() -> List[Tuple[str, Options]]:
    found = []
    for name in scene_shots.PROJECTS:
        for hierarchy in (True, False):
            for view in ("left", "right") if "rig" in name else (None,):
                found.append((name, Options(hierarchy, view)))
    return found + list(MORE)


def check_exports(check: Check) -> None:
    for name, options in cases():
        project = scene_shots.PROJECTS[name]()
        text = check_export(check, name, project, options)
        if text is not None and (name, options.hierarchy) in FAULTY and options in (Options(), Options(False)):
            model = SceneModel(project)
            seen, told = ae_3d_faults.faults(text)
            check.faults(options.key, f"{name}, in the picture", seen, lambda bad: judge_picture(bad, model, options))
            check.faults(options.key, name, told, lambda bad: judge(bad, model, options))


def check_sample(check: Check) -> None:
    """A real solve: thousands of points, a view for each frame. Marks of inaccurate points change names only, and bring
    a warning."""
    project = check.json("samples/castle.json")
    for features in project["solve"]["features"]:
        features.pop("inaccurate", None)
    # What the points hang on has nine numbers more that may each be off, as far as their digits say.
    check_export(check, "castle", project, Options(), widest=0.07)
    check_export(check, "castle", project, Options(False))


def check_combinations(check: Check) -> None:
    projects = scene_shots.combinations()
    for name, project in projects.items():
        for hierarchy in (True, False):
            check_export(check, name, project, Options(hierarchy), quiet=True)
    print(f"{len(projects)} combinations of layer, group, features and asset, in both formats")


# A camera at x -1000 that looks to the right, and a null whose parent doubles it and turns it a quarter clockwise.
BY_HAND = """*Marlo 3D Track Importer 2.0 Data
*FilmSize: 100
*FocalLength: 50
*NumberOfNulls: 2
*NullParent: Layer_1
*NullObject: Point 1 Parent: Layer_1
*EndHeader
""" + "".join(f"""Adobe After Effects 6.0 Keyframe Data

\tUnits Per Second\t24
\tSource Width\t2000
\tSource Height\t1000
\tSource Pixel Aspect Ratio\t1
\tComp Pixel Aspect Ratio\t1


Transform\tPosition
\tFrame\tX pixels\tY pixels\tZ pixels
\t0\t{position}

Transform\tX Rotation
\tFrame\tdegrees
\t0\t0

Transform\tY Rotation
\tFrame\tdegrees
\t0\t{y}

Transform\tRotation
\tFrame\tdegrees
\t0\t{z}
{scale}
End of Keyframe Data
""" for position, y, z, scale in (
    ("-1000\t0\t0", 90, 0, ""),
    ("0\t0\t0", 0, 90, "\nTransform\tScale\n\tFrame\tX percent\tY percent\tZ percent\n\t0\t200\t200\t200\n"),
    ("100\t50\t30", 0, 0, "")))


def check_by_hand(check: Check) -> None:
    """Answers that were worked out on paper.

    The camera that stands at x 10 was raised to the zenith and then turned to -x: y is to its right, z is up. The null
    in the program's picture lies at (100, 50, 30) in its parent, so at (-100, 200, 60), seen from 900 away with z to
    the left.
    """
    layers = [scene_shots.layer("Layer 1", group="g", moving=True, pose={"firstFrame": 0, "positions": [1, 0, 0]},
                                surfacePoints={"positions": [0, 1, 0]})]
    pose = {"firstFrame": 0, "positions": [0, 0, 5], "rotations": [0, 0, 90], "scales": [2]}
    model = SceneModel(scene_shots.project(
        {"camera": {"positions": [10, 0, 0], "rotations": [90, 0, 90], "focalLength": 18, "filmBackWidth": 36}}, layers,
        {"width": 2000, "height": 1000, "frameCount": 1}, groups=[{"name": "g", "moving": True, "pose": pose}]))
    reading = Reading(BY_HAND.encode(), model, Options())
    answers = [("the program's picture", reading.pixels(*reading.printed()[0])[0, 1], [-60 / 0.9, -200 / 0.9])]
    place = model.camera().place
    camera = Camera(place.position, place.rotation, reading.focal_pixels())
    answers.append(("the solve's picture", camera.project(np.array([[[0.0, 3.0, 1.0]]]))[0, 0], [300, 100]))
    layer = model.layers[0]
    answers.append(("a layer in a group", layer.world.through(layer.points.positions)[0, 0], [-2, 2, 5]))
    halfway = partial_turn(*static_xyz(np.array([[0.0, 170.0, 0.0], [0.0, -170.0, 0.0]])), 0.5)
    answers.append(("the shortest way", halfway[0], [-1, 0, 0]))
    rig = SceneModel(scene_shots.project({"camera": {"positions": [0, 0, 9], "focalLength": 18}, "stereo": {
        "mode": "converged", "separation": 2, "convergence": 180}}, views=["left", "right"]))
    left, right = rig.camera("left").place, rig.camera("right").place
    answers += [("the left eye", left.position[0], [-1, 0, 9]), ("its view", -left.rotation[0][:, 2], [1, 0, 0]),
                ("the right eye", right.position[0], [1, 0, 9]), ("its view", -right.rotation[0][:, 2], [-1, 0, 0])]
    for name, found, expected in answers:
        check.expect(np.allclose(found, expected, rtol=0.0, atol=1e-9), f"by hand: {name} is {found}, not {expected}")


def check_bound(check: Check) -> None:
    """Numbers that are off by their whole error, at random, stay within the bound and come near it."""
    project = scene_shots.PROJECTS["moving parts"]()
    text = check.export(Options().key, "bound", project, "--quiet")
    # What is wrong with the text is told where all are judged.
    if text is None or judge(text, SceneModel(project), Options()).faults():
        return
    reading = Reading(text, SceneModel(project), Options())
    values, errors = reading.printed()
    middle, bound = reading.pixels(*values), spread(reading.pixels, values, errors)
    random, farthest = np.random.default_rng(7), np.zeros(bound.shape)
    for _ in range(300):
        off = [value + error * random.choice((-1.0, 1.0), value.shape) for value, error in zip(values, errors)]
        farthest = np.maximum(farthest, np.abs(reading.pixels(*off) - middle))
    parts = farthest / bound
    check.expect(bool(np.all(farthest <= bound) and parts.min() >= 0.3 and parts.max() >= 0.9),
                 f"the bound does not describe the largest errors: parts from {parts.min():.3g} to {parts.max():.3g}")
    check.expect(scene_shots.check_angles(), "the angles of the made projects are not those of their cameras")


def body(check: Check) -> None:
    # Made projects have what the user is warned of: models on layers, names that clash, points far from the origin.
    check.may_warn = ("no hierarchy:", "have one name:", "points up to")
    for options in (Options(), Options(False)):
        golden = judge(check.golden(options.key), SceneModel(check.goldens_project()), options)
        check.verdict(options.key, "golden", golden)
    for part in (check_by_hand, check_bound, check_exports, check_sample, check_combinations):
        part(check)


if __name__ == "__main__":
    sys.exit(checking.run(__doc__, body, VERIFIES))
