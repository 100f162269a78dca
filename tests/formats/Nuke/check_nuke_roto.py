"""Proves that roto shapes stick: rebuilds them from exported Nuke scripts alone and compares them with the project.

usage: check_nuke_roto.py MARLO_EXPORT SOURCE_DIR SCRATCH_DIR

Outlines are compared key by key, as control points and as curves, and with motion in a matrix also in every frame
between the keys. Then faults are put into the scripts, and each has to be noticed.
"""

import itertools
import json
import sys
from dataclasses import dataclass
from pathlib import Path
from typing import Callable, Dict, Tuple

import numpy as np

import checking
import nuke_script
import roto_faults
import roto_judge
import shape_model
import shape_projects
from checking import Check
from findings import Findings
from roto_judge import Scene
from text_lines import TextError, decoded

FORMATS: Dict[str, Tuple[str, bool]] = {
    "nuke_roto_basic": ("Roto", False), "nuke_roto_transform_and_shape": ("Roto", True),
    "nuke_rotopaint_basic": ("RotoPaint", False), "nuke_rotopaint_transform_and_shape": ("RotoPaint", True),
    "nuke_splinewarp": ("SplineWarp3", True)}

# Formats that differ from another one by the class of their node alone.
SAME_BUT_FOR_CLASS = {"nuke_rotopaint_basic": "nuke_roto_basic",
                      "nuke_rotopaint_transform_and_shape": "nuke_roto_transform_and_shape",
                      "nuke_splinewarp": "nuke_roto_transform_and_shape"}


@dataclass(frozen=True)
class Case:
    name: str
    scene: Scene
    arguments: Tuple[str, ...]


def sample(source: Path) -> Case:
    """Shapes on the real shot."""
    project = json.loads((source / "samples" / "paper004-roto.json").read_text(encoding="utf-8"))
    return Case("paper shot", Scene(project, [layer["name"] for layer in project["layers"]]), ("--layers", "all"))


def cases() -> Tuple[Case, ...]:
    layers, stereo = shape_projects.layers(), shape_projects.stereo()
    names = [layer["name"] for layer in layers["layers"]]
    return (
        Case("layers", Scene(layers, names), ("--layers", "all")),
        Case("single frame", Scene(layers, ["Still"]), ("--layer", "Still")),
        Case("fields", Scene(shape_projects.fields(), ["Screen"]), ()),
        Case("both views", Scene(stereo, ["Both eyes"], (0, 1)), ("--view", "all")),
        Case("right view", Scene(stereo, ["Both eyes"], (1,)), ("--view", "right")),
        Case("far", Scene(shape_projects.far(), ["Front sign"]), ()))


def judged(data: bytes, key: str, scene: Scene, scratch: Path) -> Findings:
    word, with_matrix = FORMATS[key]
    try:
        nuke_script.read_nodes(data, scratch / "judged.nk")
        return roto_judge.judge(nuke_script.curve_tree(decoded(data), word), scene, with_matrix)
    except TextError as error:
        findings = Findings()
        findings.problem(str(error))
        return findings


def all_faults(text: str, with_matrix: bool):
    kinds = [roto_faults.structural, roto_faults.attributes, roto_faults.misplaced, roto_faults.imprecise]
    return itertools.chain.from_iterable(kind(text) for kind in kinds + [roto_faults.of_matrix] * with_matrix)


def x_spline_faults(text: str):
    """A vertex of an X-spline's curve that is off by four times what the curve may be."""
    edited = roto_faults.moved_vertex(text, 2, 0.2)
    return [("vertex of an x-spline off", edited)]


def check_x_splines(check: Check) -> None:
    """What is known of X-splines without their formulas."""
    points = np.array([[0, 0], [90, 10], [140, 120], [60, 200], [-40, 90]], float)
    before, after = np.roll(points, 1, axis=0), np.roll(points, -1, axis=0)
    count = 200

    def curve(weight: float) -> np.ndarray:
        return shape_model.x_spline(points, np.full(len(points), weight), True, count)
    side = np.tile(np.linspace(0.0, 1.0, count + 1)[:-1], len(points))[:, None]
    sides = np.repeat(points, count, axis=0) * (1.0 - side) + np.repeat(after, count, axis=0) * side
    corners = shape_model.distances(curve(0.0), np.vstack([sides, sides[:1]])).max()
    round_ones = np.abs(curve(1.0)[:-1:count] - (before + 4.0 * points + after) / 6.0).max()
    through = np.abs(curve(-1.0)[:-1:count] - points).max()
    slope = (curve(-1.0)[1::count] - points) * count
    tangents = np.abs(slope - (after - before) / 2.0).max() / np.abs(slope).max()
    jump = np.abs(curve(1e-7) - curve(-1e-7)).max()
    for name, error, bound in (
            ("weights of 0 make straight sides", corners, 1e-9), ("weights of 1 make a cubic B-spline", round_ones, 1e-9),
            ("weights of -1 meet the points", through, 1e-9), ("weights of -1 leave along their neighbours", tangents, 0.02),
            ("a weight that passes 0 moves nothing at once", jump, 1e-4)):
        if not error <= bound:
            check.fail(f"{name}: off by {error:.3g}")


def check_case(check: Check, case: Case) -> None:
    project = check.saved(case.name.replace(" ", "_"), case.scene.project)
    texts: Dict[str, bytes] = {}
    for key, (word, with_matrix) in FORMATS.items():
        data = check.export(project, key, case.name.replace(" ", "_"), ".nk", *case.arguments)
        if data is None:
            continue
        texts[key] = data
        other = SAME_BUT_FOR_CLASS.get(key)
        if other in texts:
            if data != word.encode() + texts[other].partition(b" ")[1] + texts[other].partition(b" ")[2]:
                check.fail(f"{case.name}, {key}: differs from {other} by more than the class of the node")
            check.texts += 1
            continue
        judge: Callable[[bytes], Findings] = lambda text: judged(text, key, case.scene, check.scratch)
        if check.verdict(f"{case.name}, {key}", judge(data)):
            if case.name == "far":
                check.faults(f"{case.name}, {key}", data, all_faults(data.decode("utf-8"), with_matrix), judge)
            if case.name == "single frame":
                check.faults(f"{case.name}, {key}", data, x_spline_faults(data.decode("utf-8")), judge)


def body(check: Check, source: Path) -> None:
    golden = Path(__file__).with_name("golden")
    for key in FORMATS:
        data = (golden / key / "out.nk").read_bytes()
        check.verdict(f"golden, {key}", judged(data, key, Scene.of_golden(golden), check.scratch))
    check_x_splines(check)
    for case in cases() + (sample(source),):
        check_case(check, case)


if __name__ == "__main__":
    sys.exit(checking.run(__doc__, body))
