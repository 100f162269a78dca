"""Proves that a USD stage shows a solve, with OpenUSD itself: nodes, lens, meshes, and points through its camera.

usage: check_usd.py MARLO_EXPORT SOURCE_DIR SCRATCH_DIR

Each number is held to what a single, or a double, can keep of it; the picture to what that makes of pixels.
"""

import re
import sys
from typing import Any, Callable, Iterator, List, Tuple

from pxr import Gf, Sdf, Usd, UsdGeom, UsdUtils, UsdValidation

import checking
import solve_cases
from checking import Check
from scene_model import SceneModel
from solve_cases import Case
from solve_scene import SINGLE, SceneContents
from usd_stage import Reading, judge

VERIFIES = {
    "usd": "positions within 1e-9, turns, lens and vertices within half a unit of a single, points within 0.01 px",
}
KEY, = VERIFIES

Change = Callable[[Usd.Stage], Any]


def complaints(file: str) -> List[str]:
    """What OpenUSD's own checks say of a file."""
    checker = UsdUtils.ComplianceChecker()
    checker.CheckCompliance(file)
    said = [*checker.GetErrors(), *checker.GetFailedChecks(), *checker.GetWarnings()]
    validators = UsdValidation.ValidationRegistry().GetOrLoadAllValidators()
    found = UsdValidation.ValidationContext(validators).Validate(Usd.Stage.Open(file))
    return said + [f"{error.GetName()}: {error.GetMessage()}" for error in found]


class Faults:
    """Changed texts of a stage; each change is told the root layer's stage and where the good one's nodes are."""

    def __init__(self, data: bytes, reading: Reading) -> None:
        self.data, self.reading = data, reading

    def _changed(self, change: Change) -> bytes:
        layer = Sdf.Layer.CreateAnonymous(".usda")
        layer.ImportFromString(self.data.decode("utf-8"))
        change(Usd.Stage.Open(layer))
        return layer.ExportToString().encode("utf-8")

    def __iter__(self) -> Iterator[Tuple[str, bytes]]:
        yield "six digits", re.sub(rb"-?\d+\.\d{5,}", lambda m: b"%.6g" % float(m.group()), self.data)
        yield "from frame 0", re.sub(rb"\b10(\d\d): ", lambda m: b"%d: " % (int(m[1]) - 1), self.data)
        yield "17 digits", re.sub(rb"-?\d+\.\d{5,}", lambda m: b"%.17g" % float(m.group()), self.data)
        for name, change in [*self._of_stage(), *self._of_camera(), *self._of_nodes(), *self._of_meshes()]:
            yield name, self._changed(change)

    def _of_stage(self) -> Iterator[Tuple[str, Change]]:
        yield "metres", lambda stage: UsdGeom.SetStageMetersPerUnit(stage, 1.0)
        yield "z up", lambda stage: UsdGeom.SetStageUpAxis(stage, "Z")
        yield "no default prim", lambda stage: stage.ClearDefaultPrim()
        yield "another rate", lambda stage: stage.SetTimeCodesPerSecond(25.5)
        yield "a frame too long", lambda stage: stage.SetEndTimeCode(stage.GetEndTimeCode() + 1)
        yield "a prim too many", lambda stage: stage.DefinePrim(f"{self.reading.scene.GetPath()}/Ghost", "Xform")

    def _of_camera(self) -> Iterator[Tuple[str, Change]]:
        path = self.reading.mover.GetPath()
        yield "camera a frame late", lambda stage: _late(stage.GetPrimAtPath(path), "xformOp:translate")
        yield "camera turned a frame late", lambda stage: _late(stage.GetPrimAtPath(path), "xformOp:rotateXYZ")
        yield "x and z turn exchanged", lambda stage: _mapped(
            stage.GetPrimAtPath(path), "xformOp:rotateXYZ", lambda v: Gf.Vec3f(v[2], v[1], v[0]))
        lens = self.reading.camera.GetPath()
        for name, factor in (("focalLength", 1.01), ("horizontalAperture", 0.5), ("verticalAperture", 2.0),
                             ("focalLength", 1.0 + 4.0 * SINGLE)):
            yield f"{name} times {factor}", lambda stage, name=name, factor=factor: _mapped(
                stage.GetPrimAtPath(lens), name, lambda v: v * factor)

    def _of_nodes(self) -> Iterator[Tuple[str, Change]]:
        paths = [prim.GetPath() for prim in self.reading.prims]
        nodes = self.reading.contents.nodes
        point = next(path for path, node in zip(paths, nodes) if node.kind == "point")
        yield "points of another size", lambda stage: _mapped(
            stage.GetPrimAtPath(point), "xformOp:scale", lambda v: 1.001 * v)
        for path in (point, next(path for path, node in zip(paths, nodes) if node.kind == "layer")):
            yield f"y of {path}", lambda stage, path=path: _mapped(
                stage.GetPrimAtPath(path), "xformOp:translate", lambda v: Gf.Vec3d(v[0], -v[1], v[2]))
        layers = [path for path, node in zip(paths, nodes) if node.kind == "layer"]
        yield "a layer a frame late", lambda stage: _late(stage.GetPrimAtPath(layers[0]), "xformOp:translate")
        yield "a point of another layer", lambda stage: _moved(stage, point, layers[-1])
        yield "a layer without its group", lambda stage: _moved(stage, layers[0], self.reading.scene.GetPath())
        yield "scene without its scale", lambda stage: _mapped(
            stage.GetPrimAtPath(self.reading.scene.GetPath()), "xformOp:scale", lambda v: Gf.Vec3f(1.0))

    def _of_meshes(self) -> Iterator[Tuple[str, Change]]:
        path = self.reading.meshes[0].GetPath()
        yield "faces turned over", lambda stage: _mapped(
            stage.GetPrimAtPath(path), "faceVertexIndices", lambda v: list(v)[::-1])
        yield "UV upside down", lambda stage: _mapped(
            stage.GetPrimAtPath(path), "primvars:st", lambda v: [Gf.Vec2f(u, 1.0 - w) for u, w in v])
        yield "UV per vertex", lambda stage: UsdGeom.PrimvarsAPI(stage.GetPrimAtPath(path)).GetPrimvar(
            "st").SetInterpolation("vertex")
        yield "mesh a frame late", lambda stage: _late(stage.GetPrimAtPath(path), "points")
        yield "vertices in another order", lambda stage: _mapped(
            stage.GetPrimAtPath(path), "points", lambda v: [v[1], v[0], *list(v)[2:]])


def _late(prim: Usd.Prim, name: str) -> None:
    """Every sample has the value of the one before it."""
    attribute = prim.GetAttribute(name)
    times = attribute.GetTimeSamples()
    values = [attribute.Get(time) for time in times]
    for time, value in zip(times[1:], values):
        attribute.Set(value, time)


def _mapped(prim: Usd.Prim, name: str, change: Callable[[Any], Any]) -> None:
    attribute = prim.GetAttribute(name)
    for time in attribute.GetTimeSamples() or [Usd.TimeCode.Default()]:
        attribute.Set(change(attribute.Get(time)), time)


def _moved(stage: Usd.Stage, path: Sdf.Path, holder: Sdf.Path) -> None:
    edit = Sdf.BatchNamespaceEdit()
    edit.Add(path, holder.AppendChild("Moved" + path.name))
    stage.GetRootLayer().Apply(edit)



def prove(check: Check, case: Case) -> None:
    contents = case.contents()
    data = check.export(KEY, case.title(), case.project, *case.arguments(), "--quiet")
    if data is None or not check.verdict(KEY, case.title(), judge(data, contents, case.fixed_size)):
        return
    file = check.scratch / "stage.usda"
    file.write_bytes(data)
    said = complaints(str(file))
    check.expect(not said, f"{case.title()}: OpenUSD complains: {'; '.join(said)}")
    if case.title() == "everything":
        check.faults(KEY, case.title(), Faults(data, Reading(data, contents)), lambda bad: judge(bad, contents))


def body(check: Check) -> None:
    check.may_warn = ("got a number behind", "between the eyes")
    check.verdict(KEY, "golden", judge(check.golden(KEY), SceneContents(SceneModel(check.goldens_project()))))
    for case in (*solve_cases.cases(), *solve_cases.scene_cases()):
        prove(check, case)


if __name__ == "__main__":
    sys.exit(checking.run(__doc__, body, VERIFIES))
