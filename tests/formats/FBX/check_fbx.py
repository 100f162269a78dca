"""Proves that FBX files show a solve, with ufbx, and FBX 7 with assimp as well: nodes, lens, meshes, points in pixels.

usage: check_fbx.py MARLO_EXPORT SOURCE_DIR SCRATCH_DIR
"""

import shutil
import sys
from typing import Iterator

import checking
import fbx_scene
import scene_shots
import solve_cases
from checking import Check
from fbx_by_assimp import prove_by_assimp
from fbx_faults import faults, rig_faults
from fbx_judge import NUKE, judge
from solve_cases import Case

VERIFIES = {
    "fbx_7_7_0": "keys, lens and UV to what singles keep, what is at rest within 1e-9, points within 0.01 px",
    "fbx_6_1_0": "keys, lens and UV to what singles keep, what is at rest within 1e-9, points within 0.01 px",
    "fbx_for_nuke": "keys, lens and UV to what singles keep, what is at rest within 1e-9, points within 0.01 px",
}
ODD_RATE = "FBX 7.7.0 does not support 17 fps. Solve will be exported as 23.976 fps"
BY_ASSIMP = ("handheld", "everything", "moving parts")


def prove(check: Check, case: Case) -> None:
    for key in VERIFIES:
        if case.at_origin and key == NUKE or case.view == "all" and key == NUKE:
            continue
        data = check.export(key, case.title(), case.project, *case.arguments(), "--quiet")
        if data is None:
            continue
        try:
            scene = fbx_scene.read(data, check.scratch)
        except ValueError as error:
            check.fail(f"{case.title()}, {key}: {error}")
            continue
        planted = {"everything": faults, "converged rig all": rig_faults}.get(case.title())
        if check.verdict(key, case.title(), judge(scene, case, key)) and planted:
            check.faults(key, case.title(), planted(scene), lambda bad, key=key: judge(bad, case, key))
        if key == "fbx_7_7_0" and case.title() in BY_ASSIMP and shutil.which("assimp"):
            prove_by_assimp(check, case.title(), data, scene)


def all_cases(check: Check) -> Iterator[Case]:
    yield from solve_cases.cases(check.json("samples/castle.json"))
    yield from solve_cases.scene_cases()
    for mode in ("parallel", "converged"):
        project = scene_shots.rig(mode)
        project["solve"]["stereo"].update(shiftLeft=12, shiftRight=-7.5)
        yield Case(f"{mode} rig", project, view="all")
    for rate in (17, 23.976, 29.97, 59.94, 25):
        yield Case(f"at {rate}", scene_shots.project({}, frameRate=rate))


def body(check: Check) -> None:
    check.may_warn = ("Several objects have one name", "single floats", "between the eyes",
                      "These models stand where", ODD_RATE)
    if not shutil.which("assimp"):
        print("not read by assimp: there is no program of that name (Debian's assimp-utils has it)")
    golden = Case("golden", check.goldens_project())
    for key in VERIFIES:
        check.verdict(key, "golden", judge(fbx_scene.read(check.golden(key), check.scratch), golden, key))
    for case in all_cases(check):
        prove(check, case)
    project = check.saved("at 17", scene_shots.project({}, frameRate=17))
    for key in VERIFIES:
        _, said = check.run("export", project, key, "-o", check.scratch / f"17.{key}.fbx", "--quiet")
        check.expect(any(ODD_RATE in line for line in said), f"{key} at 17 frames per second says {said}")


if __name__ == "__main__":
    sys.exit(checking.run(__doc__, body, VERIFIES))
