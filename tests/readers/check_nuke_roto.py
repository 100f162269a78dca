"""Proves that roto shapes stick: rebuilds them from exported Nuke scripts alone and compares them with the project.

usage: check_nuke_roto.py MARLO_EXPORT SOURCE_DIR SCRATCH_DIR

Outlines are compared key by key, as control points and as curves, and with motion in a matrix also in every frame
between the keys. Then faults are put into the scripts, and each has to be noticed.
"""

import itertools
import sys
from dataclasses import dataclass
from pathlib import Path
from typing import Callable, Dict, Tuple

import checking
import nuke_script
import roto_faults
import roto_judge
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


def body(check: Check, _source: Path) -> None:
    for case in cases():
        check_case(check, case)


if __name__ == "__main__":
    sys.exit(checking.run(__doc__, body))
