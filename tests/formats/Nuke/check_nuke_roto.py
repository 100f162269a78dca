"""Proves that roto shapes stick: rebuilds them from exported Nuke scripts alone and compares them with the project.

usage: check_nuke_roto.py MARLO_EXPORT SOURCE_DIR SCRATCH_DIR

Outlines are compared key by key, as control points and as curves, and with motion in a matrix also in every frame
between the keys. Then faults are put into the scripts, and each has to be noticed.
"""

import sys
from typing import Dict, Tuple

import numpy as np

import checking
import nuke_script
import roto_faults
import roto_judge
import shape_model
import shape_projects
from checking import Check
from findings import Findings, judging
from shape_model import Scene
from shape_projects import Case
from texts import decoded

VERIFIES = {
    "nuke_roto_basic": "points and curves within half a unit of their last digit, X-splines within 0.05 px",
    "nuke_roto_transform_and_shape": "the same, and shapes between keys within what the digits make of them",
    "nuke_rotopaint_basic": "the text of nuke_roto_basic but for the class of the node",
    "nuke_rotopaint_transform_and_shape": "the text of nuke_roto_transform_and_shape but for the class of the node",
    "nuke_splinewarp": "the text of nuke_roto_transform_and_shape but for the class of the node",
}

# The class of the node, and whether motion stands in a matrix.
FORMATS: Dict[str, Tuple[str, bool]] = {
    "nuke_roto_basic": ("Roto", False), "nuke_roto_transform_and_shape": ("Roto", True),
    "nuke_rotopaint_basic": ("RotoPaint", False), "nuke_rotopaint_transform_and_shape": ("RotoPaint", True),
    "nuke_splinewarp": ("SplineWarp3", True)}


@judging
def judge(findings: Findings, data: bytes, key: str, scene: Scene) -> None:
    word, with_matrix = FORMATS[key]
    roto_judge.judge(findings, nuke_script.curve_tree(decoded(data), word), scene, with_matrix)


def judge_file(check: Check, data: bytes, key: str, scene: Scene) -> Findings:
    """Faults are found in the tree alone; that tclsh reads it too is seen once for each text."""
    findings = judge(data, key, scene)
    findings.add(nuke_script.judge_lists(data, check.scratch))
    return findings


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
        check.expect(bool(error <= bound), f"{name}: off by {error:.3g}")


def check_case(check: Check, case: Case) -> None:
    bodies: Dict[bool, bytes] = {}
    for key, (word, with_matrix) in FORMATS.items():
        data = check.export(key, case.name, case.scene.project, *case.arguments)
        if data is None:
            continue
        # Formats of one kind of motion differ by the class of their node alone.
        start, body = data[:len(word) + 1], data[len(word) + 1:]
        if with_matrix in bodies:
            check.expect(start == f"{word} ".encode() and body == bodies[with_matrix],
                         f"{case.name}, {key}: differs from another format by more than the class of the node")
            if case.name == "far":
                check.faults(key, case.name, roto_faults.words(data), lambda text: judge(text, key, case.scene))
            continue
        bodies[with_matrix] = body
        if not check.verdict(key, case.name, judge_file(check, data, key, case.scene)):
            continue
        kinds = {"far": [roto_faults.words, roto_faults.numbers] + [roto_faults.of_matrix] * with_matrix,
                 "single frame": [roto_faults.of_x_spline]}
        for kind in kinds.get(case.name, []):
            check.faults(key, f"{case.name}, {kind.__name__}", kind(data), lambda text: judge(text, key, case.scene))


def body(check: Check) -> None:
    for key in FORMATS:
        check.verdict(key, "golden", judge_file(check, check.golden(key), key, Scene(check.goldens_project())))
    check_x_splines(check)
    project = check.json("samples/paper004-roto.json")
    names = [layer["name"] for layer in project["layers"]]
    cases = shape_projects.cases()
    del cases["left view"]
    for case in (*cases.values(), Case("paper shot", Scene(project, names), ("--layers", "all"))):
        check_case(check, case)


if __name__ == "__main__":
    sys.exit(checking.run(__doc__, body, VERIFIES))
