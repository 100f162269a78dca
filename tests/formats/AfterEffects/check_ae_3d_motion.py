"""Proves that nulls stick: projects them through the camera, both as exported 3D motion text has them, onto the solve.

usage: check_ae_3d_motion.py MARLO_EXPORT SOURCE_DIR SCRATCH_DIR

Projects that are made here go through both formats, and every combination of what pairs names with documents through
both as well. Then faults are put into the exported texts, and each has to be noticed.
"""

import json
import sys
from pathlib import Path
from typing import Dict, List, Optional, Tuple

import numpy as np

import ae_3d_corruptions
import ae_3d_writer
import scene_shots
from ae_3d_motion import Reading, judge, shows_in_picture
from ae_3d_nulls import Options
from ae_3d_text import KeyframeTextError, parse
from reprojection import Camera, spread
from scene_model import SceneModel, partial_turn, static_xyz
from tool import Tool

# What half units of six digits may cost in these scenes at the most, pixels.
CEILING = 0.05

# What is exported beside everything of every project.
MORE: Tuple[Tuple[str, Options], ...] = (
    ("features", Options(features=False)), ("features", Options(objects="visible")),
    ("features", Options(objects="selected")), ("moving parts", Options(features=False)),
)

# Projects whose texts get faults: which have a zoom, and a moving layer in a moving group.
FAULTY: Tuple[Tuple[str, bool, bool, bool], ...] = (
    ("keyed focal length", True, True, False), ("scene pose", False, False, False), ("moving parts", True, False, True),
)


class Check:
    """Collects what is wrong and prints what was measured."""

    def __init__(self, tool: Tool, source: Path, scratch: Path) -> None:
        self.tool = tool
        self.source = source
        self.scratch = scratch
        self.failures: List[str] = []
        self.good = 0

    def fail(self, message: str) -> None:
        self.failures.append(message)
        print("FAILED", message)

    def export(self, name: str, project: dict, options: Options) -> Optional[bytes]:
        source = self.scratch / f"{name.replace(' ', '_').replace(',', '')}.json"
        source.write_text(json.dumps(project), encoding="utf-8")
        try:
            return self.tool.write(self.scratch / "motion.txt", "export", source, options.key, *options.arguments(),
                                   "--quiet")
        except (RuntimeError, OSError) as error:
            self.fail(f"{name}: {error}")
            return None

    def judge(self, name: str, text: Optional[bytes], model: SceneModel, options: Options, quiet: bool = False,
              widest: float = CEILING) -> None:
        """`widest` is how far the bound may reach; the error stays below the ceiling whatever that is."""
        if text is None:
            return
        verdict = judge(text, model, options)
        for fault in verdict.faults():
            self.fail(f"{name}, {options}: {fault}")
        self.good += not verdict.faults()
        for comparison in verdict.comparisons:
            if not comparison.name.startswith("reprojection"):
                continue
            if not quiet:
                print(f"{name}, {options.key}: {len(model.layers)} layers, {comparison.name}: error "
                      f"{comparison.error:.3g}, bound up to {comparison.bound:.3g}, of bound {comparison.ratio:.3f}")
            if not (comparison.error <= CEILING and comparison.bound <= widest):
                self.fail(f"{name}, {options}: {comparison.error:.3g} px, bound {comparison.bound:.3g} px")


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
        check.judge(name, check.export(name, project, options), SceneModel(project), options)


def check_sample(check: Check) -> None:
    """A real solve: thousands of points, a view for each frame. Marks of inaccurate points change names only, and bring
    a warning."""
    project = json.loads((check.source / "samples" / "castle.json").read_text(encoding="utf-8"))
    for features in project["solve"]["features"]:
        features.pop("inaccurate", None)
    for hierarchy in (True, False):
        options = Options(hierarchy)
        # What the points hang on has nine numbers more that may each be off, as far as their digits say.
        check.judge("castle", check.export("castle", project, options), SceneModel(project), options,
                    widest=0.07 if hierarchy else CEILING)


def check_combinations(check: Check) -> None:
    projects = scene_shots.combinations()
    for name, project in projects.items():
        for hierarchy in (True, False):
            options = Options(hierarchy)
            check.judge(name, check.export(name, project, options), SceneModel(project), options, quiet=True)
    print(f"{len(projects)} combinations of layer, group, features and asset, in both formats")


def plant_faults(check: Check, name: str, text: bytes, model: SceneModel, options: Options, zoom: bool,
                 parents: bool) -> int:
    count = 0
    for fault, in_picture, bad in ae_3d_corruptions.faults(text, zoom, parents):
        count += 1
        noticed = shows_in_picture(bad, model, options) if in_picture else bool(judge(bad, model, options).faults())
        if not noticed:
            check.fail(f"{name}: not noticed: {fault}")
    for fault, bad in ae_3d_corruptions.malformed(text):
        count += 1
        try:
            parse(bad)
        except KeyframeTextError:
            continue
        check.fail(f"{name}: the parser accepts a text with this fault: {fault}")
    return count


def check_faults_are_noticed(check: Check) -> None:
    """In the reader's own texts, and in the program's."""
    count = 0
    for name, hierarchy, zoom, parents in FAULTY:
        project, options = scene_shots.PROJECTS[name](), Options(hierarchy)
        model = SceneModel(project)
        texts = {"own": ae_3d_writer.write(model, options), "exported": check.export(name, project, options)}
        for kind, text in texts.items():
            if text is None or judge(text, model, options).faults():
                check.fail(f"{name}: there is no good {kind} text to put faults into")
                continue
            count += plant_faults(check, f"{name}, {kind}", text, model, options, zoom, parents)
    print(f"{count} faults put in")


def check_reader(check: Check) -> None:
    """Texts of the reader's own, of every project, have to pass: what fails later is not the reader's doubt."""
    for name, options in cases():
        model = SceneModel(scene_shots.PROJECTS[name]())
        for fault in judge(ae_3d_writer.write(model, options), model, options).faults():
            check.fail(f"the reader's own text of {name}, {options}: {fault}")


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
        if not np.allclose(found, expected, rtol=0.0, atol=1e-9):
            check.fail(f"by hand: {name} is {found} instead of {expected}")


def check_bound(check: Check) -> None:
    """Numbers that are off by their whole error, at random, stay within the bound and come near it."""
    model = SceneModel(scene_shots.PROJECTS["moving parts"]())
    reading = Reading(ae_3d_writer.write(model, Options()), model, Options())
    values, errors = reading.printed()
    middle, bound = reading.pixels(*values), spread(reading.pixels, values, errors)
    random, farthest = np.random.default_rng(7), np.zeros(bound.shape)
    for _ in range(300):
        off = [value + error * random.choice((-1.0, 1.0), value.shape) for value, error in zip(values, errors)]
        farthest = np.maximum(farthest, np.abs(reading.pixels(*off) - middle))
    if np.any(farthest > bound) or np.any(farthest < 0.3 * bound) or (farthest / bound).max() < 0.9:
        check.fail(f"the bound does not describe the largest errors: {farthest.max():.3g} of {bound.max():.3g} px, "
                   f"parts from {(farthest / bound).min():.3g} to {(farthest / bound).max():.3g}")
    if not scene_shots.check_angles():
        check.fail("the angles of the made projects are not those of their cameras")


def main() -> int:
    if len(sys.argv) != 4:
        print(__doc__, file=sys.stderr)
        return 2
    program, source, scratch = sys.argv[1], Path(sys.argv[2]), Path(sys.argv[3])
    scratch.mkdir(parents=True, exist_ok=True)
    check = Check(Tool(program), source, scratch)
    for part in (check_by_hand, check_bound, check_reader, check_exports, check_sample, check_combinations,
                 check_faults_are_noticed):
        part(check)
    print(f"{check.good} texts are good, {len(check.failures)} failures")
    return 1 if check.failures else 0


if __name__ == "__main__":
    sys.exit(main())
