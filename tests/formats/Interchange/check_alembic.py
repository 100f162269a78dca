"""Proves that Alembic archives show a solve and tracked meshes, read back by another build of the Alembic library.

usage: check_alembic.py MARLO_EXPORT SOURCE_DIR SCRATCH_DIR
"""

import copy
import re
import sys
from typing import Any, Callable, Dict, Iterator, List, Optional, Tuple

import numpy as np

import alembic_tree
import checking
import mesh_shots
import model_file
import solve_cases
import solve_scene
from alembic_solve import judge_faces, judge_solve, plain
from alembic_tree import ACROSS, DOWN, FOCAL, Archive, Thing
from checking import Check
from findings import Findings, judging
from planar import PlanarLayer
from scene_model import SceneModel
from solve_scene import SINGLE, SceneContents

VERIFIES = {
    "alembic_3D": "matrices within 1e-9, vertices within half a unit of a single, trackers seen within 0.001 px",
    "alembic_2D_mesh": "vertices within two units of a single",
    "alembic_2D_vertex": "positions within two units of a single",
}
SOLVE, MESH, VERTEX = VERIFIES

# Pixels in a scene unit of 2D meshes.
PIXELS = 100.0


@judging
def judge_flat(findings: Findings, archive: Archive, layer: PlanarLayer, frames: List[int], transforms: bool) -> None:
    """A tracked mesh in hundredths of pixels, from the picture's lower left corner."""
    times = np.array([layer.shown(frame) for frame in frames]) / layer.rate
    world = alembic_tree.worlds(archive, times)
    things = list(archive.top.all_below())
    cameras = [thing for thing in things if thing.kind == "camera"]
    findings.same("cameras", [(thing.name, len(thing.samples)) for thing in cameras], [("marlo-camera", 1)])
    for thing in cameras:
        findings.compare("camera", world[id(thing)], np.tile(np.eye(4), (len(times), 1, 1)), 1e-12)
    flat = np.stack([layer.mesh(frame) for frame in frames]) / PIXELS
    expected = np.concatenate([flat, np.zeros(flat.shape[:2] + (1,))], axis=2)
    bound = 4.0 * SINGLE * np.abs(expected) + 1e-12
    if transforms:
        carriers = [thing for thing in things if thing.name.endswith("transform")]
        kinds = {(thing.kind, tuple((child.kind, child.name[-6:]) for child in thing.children)) for thing in carriers}
        findings.same("kinds", kinds, {("xform", (("points", "vertex"),))})
        if findings.same("number of vertices", len(carriers), flat.shape[1]):
            for i, thing in enumerate(carriers):
                found = alembic_tree.parts(world[id(thing)])[0]
                findings.compare("position", found, expected[:, i], bound[:, i], thing.name)
                below = alembic_tree.at_frames(thing.children[0], times)
                findings.compare("point in its transform", below, np.zeros((len(times), 1, 3)), 1e-12, thing.name)
        return
    mesh, = (thing for thing in things if thing.kind == "mesh")
    findings.same("transforms", [thing.name for thing in things if thing.kind == "points"], [])
    above = [thing.name for thing in things if mesh is thing or mesh in thing.children]
    if not any(re.fullmatch(plain(layer.name), name) for name in above):
        findings.problem(f"the mesh {mesh.name} isn't named after {layer.name}")
    findings.compare("camera", world[id(mesh)], np.tile(np.eye(4), (len(times), 1, 1)), 1e-12)
    findings.compare("position", alembic_tree.at_frames(mesh, times), expected, bound, "frame, vertex, axis")
    described = layer.record["mesh"]
    judge_faces(findings, mesh, solve_scene.split_faces(described["faceCounts"], described["faceIndices"]), None)
    box = np.stack([mesh.samples.min(axis=1), mesh.samples.max(axis=1)], axis=1)
    findings.compare("bounds", mesh.bounds, box, 1e-12)


# ---- faults

Change = Callable[[Archive], Any]


def changed(good: Archive, change: Change) -> Archive:
    bad = copy.deepcopy(good)
    change(bad)
    return bad


def late(thing: Thing) -> None:
    thing.samples[1:] = thing.samples[:-1].copy()


def scaled(thing: Thing, at: Any, factor: float) -> None:
    thing.samples[at] *= factor


def named(archive: Archive, kind: str, name: str) -> List[Thing]:
    return [thing for thing in archive.top.all_below() if thing.kind == kind and re.fullmatch(name, thing.name)]


def solve_faults(good: Archive) -> Iterator[Tuple[str, Archive]]:
    def camera(archive: Archive) -> Thing:
        return named(archive, "camera", "Data")[0]

    def shot(archive: Archive) -> Thing:
        return named(archive, "xform", r"Shot \d+")[0]

    def trackers(archive: Archive) -> Thing:
        return named(archive, "xform", "Trackers")[0]

    def tracker(archive: Archive) -> Thing:
        return [thing for thing in trackers(archive).all_below() if not thing.children][0]

    def chisel(archive: Archive) -> Thing:
        return named(archive, "mesh", plain("Chisel"))[0]

    def earlier(archive: Archive) -> None:
        for thing in archive.top.all_below():
            thing.times = [time - thing.times[0] for time in thing.times]
    for name, change in (
            ("shot a frame late", lambda a: late(shot(a))), ("zoom a frame late", lambda a: late(camera(a))),
            ("focal length", lambda a: scaled(camera(a), np.s_[:, FOCAL], 1.01)),
            ("film in millimetres", lambda a: scaled(camera(a), np.s_[:, ACROSS], 10.0)),
            ("film of the raster", lambda a: scaled(camera(a), np.s_[:, ACROSS], 0.5)),
            ("height of the film", lambda a: scaled(camera(a), np.s_[:, DOWN], 2.0)),
            ("turned the other way", lambda a: setattr(shot(a), "samples", np.swapaxes(shot(a).samples, 1, 2))),
            ("y of a tracker", lambda a: scaled(tracker(a), np.s_[:, 1, 3], -1.0)),
            ("trackers carry no inverse", lambda a: setattr(trackers(a), "samples", np.eye(4)[None])),
            ("scene not scaled", lambda a: scaled(a.top.child("scene"), np.s_[:, :3, :3], 1.25)),
            ("from frame 0", earlier),
            ("a tracker less", lambda a: trackers(a).children.pop()), ("mesh a frame late", lambda a: late(chisel(a))),
            ("faces turned over", lambda a: chisel(a).indices.reverse()),
            ("UV upside down", lambda a: chisel(a).uvs.__setitem__(np.s_[:, 1], 1.0 - chisel(a).uvs[:, 1])),
            ("six digits", lambda a: setattr(shot(a), "samples", shot(a).samples.round(5))),
            ("screen half as far", lambda a: scaled(named(a, "xform", "Screen")[0], np.s_[:, 2, 3], 0.5))):
        yield name, changed(good, change)


def flat_faults(good: Archive) -> Iterator[Tuple[str, Archive]]:
    def moving(archive: Archive) -> Thing:
        return next(thing for thing in archive.top.all_below() if len(thing.samples) > 1)

    def y_of(thing: Thing) -> Any:
        return np.s_[:, 1, 3] if thing.kind == "xform" else np.s_[:, :, 1]

    def earlier(archive: Archive) -> None:
        for thing in archive.top.all_below():
            thing.times = [time - thing.times[0] for time in thing.times]
    for name, change in (("a frame late", lambda a: late(moving(a))), ("from frame 0", earlier),
                         ("y flipped", lambda a: scaled(moving(a), y_of(moving(a)), -1.0)),
                         ("pixels", lambda a: scaled(moving(a), y_of(moving(a)), 100.0)),
                         ("a vertex less", lambda a: a.top.children.pop())):
        yield name, changed(good, change)


# ---- what is exported

def prove(check: Check, key: str, title: str, data: Optional[bytes], judge: Callable[[Archive], Findings],
          faults: Optional[Callable[[Archive], Iterator[Tuple[str, Archive]]]] = None) -> None:
    if data is None:
        return
    try:
        archive = alembic_tree.read(data, check.scratch)
    except ValueError as error:
        check.fail(f"{title}, {key}: {error}")
        return
    if check.verdict(key, title, judge(archive)) and faults is not None:
        check.faults(key, title, faults(archive), judge)


def prove_solve(check: Check, case: solve_cases.Case) -> None:
    contents = case.contents()
    data = check.export(SOLVE, case.title(), case.project, *case.arguments(), "--quiet")
    prove(check, SOLVE, case.title(), data, lambda archive: judge_solve(archive, contents, case),
          solve_faults if case.title() == "everything" else None)


def prove_flat(check: Check, name: str, project: Dict[str, Any], view: int = 0, frames: str = "") -> None:
    layer = PlanarLayer(project, view=view)
    arguments = ["--view", layer.view_name] * layer.several_views + ["--frames", frames] * bool(frames)
    wanted = list(layer.frames())
    if frames:
        first, last = map(int, frames.split("-"))
        wanted = [frame for frame in wanted if first <= layer.shown(frame) <= last]
    title = " ".join([name, layer.view_name, frames]).strip()
    for key in (MESH, VERTEX):
        data = check.export(key, title, project, *arguments, "--quiet")
        prove(check, key, title, data, lambda archive, key=key: judge_flat(archive, layer, wanted, key == VERTEX),
              flat_faults if title == "wide main" else None)


def body(check: Check) -> None:
    check.may_warn = ("All names have to be different", "A model isn't exported", "between the eyes",
                      "single floats")
    goldens = check.goldens_project()
    layer, contents = PlanarLayer(goldens), SceneContents(SceneModel(goldens))
    case = solve_cases.Case("golden", goldens)
    prove(check, SOLVE, "golden", check.golden(SOLVE), lambda archive: judge_solve(archive, contents, case))
    for key in (MESH, VERTEX):
        prove(check, key, "golden", check.golden(key),
              lambda archive, key=key: judge_flat(archive, layer, list(layer.frames()), key == VERTEX))
    check.scratch.joinpath(model_file.NAME).write_text(model_file.TEXT, encoding="utf-8")
    for case in (*solve_cases.cases(), *solve_cases.scene_cases()):
        prove_solve(check, case)
    for name, project in mesh_shots.projects().items():
        for view in range(len(project.get("views", ["main"]))):
            prove_flat(check, name, project, view)
    prove_flat(check, "wide", mesh_shots.projects()["wide"], frames="1016-1024")


if __name__ == "__main__":
    sys.exit(checking.run(__doc__, body, VERIFIES))
