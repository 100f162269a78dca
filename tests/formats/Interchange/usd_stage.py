"""The judgement whether a USD stage shows a solve, with OpenUSD's own reading of it.

Lengths are in scene units, which a stage calls centimetres, so that lenses stand in millimetres.
"""

import re
from typing import Iterator, List, Tuple

import numpy as np
from pxr import Sdf, Tf, Usd, UsdGeom

import solve_scene
from findings import Findings, judging
from reprojection import Camera, spread
from scene_model import static_xyz
from solve_scene import SINGLE, Node, SceneContents

ROOT = "/MarloExport"
PICTURE = "reprojection, px"

# Allowance for the arithmetic of doubles, as a part of the size of these scenes.
ARITHMETIC = 1e-9

# What singles may cost in these scenes at the most, pixels.
CEILING = 0.01

# Numbers of a transform: three of the translation, three angles, a scale.
LEVEL = 7


def compose(numbers: np.ndarray) -> np.ndarray:
    """Twelve numbers for each chain of transforms, outermost first: the position, and the axes with their scale."""
    position, axes = np.zeros(numbers.shape[:-1] + (3,)), np.tile(np.eye(3), numbers.shape[:-1] + (1, 1))
    for at in range(0, numbers.shape[-1], LEVEL):
        position = position + np.einsum("...ij,...j->...i", axes, numbers[..., at:at + 3])
        axes = axes @ static_xyz(numbers[..., at + 3:at + 6]) * numbers[..., at + 6, None, None]
    return np.concatenate([position, axes.reshape(axes.shape[:-2] + (9,))], axis=-1)


def prim_names(node: Node) -> List[str]:
    """What a name may become before it is made unique: models keep digits only where these tell them apart."""
    cleaned = [re.sub(kept, "_", node.name) for kept in ["[^A-Za-z]"] * (node.kind == "asset") + ["[^A-Za-z0-9]"]]
    return ["L" + name if name[:1].isdigit() else name for name in cleaned]


class Reading:
    """A stage beside the solve that it should show; raises ValueError when its shape is wrong."""

    def __init__(self, data: bytes, contents: SceneContents) -> None:
        self.model, self.contents = contents.model, contents
        self.layer, self.text = Sdf.Layer.CreateAnonymous(".usda"), data.decode("utf-8")
        try:
            self.layer.ImportFromString(self.text)
            self.stage = Usd.Stage.Open(self.layer)
        except Tf.ErrorException as error:
            raise ValueError(f"OpenUSD refuses it: {error}") from error
        self.times = [float(frame + self.model.clip.get("frameOffset", 0)) for frame in range(self.model.frames)]
        cameras = [prim for prim in self.stage.TraverseAll() if prim.IsA(UsdGeom.Camera)]
        if len(cameras) != 1:
            raise ValueError(f"{len(cameras)} cameras")
        self.camera = UsdGeom.Camera(cameras[0])
        self.mover = cameras[0].GetParent()
        self.scene = self.mover.GetParent()
        if not str(self.scene.GetPath()).startswith(ROOT):
            raise ValueError("no transform between the scene and its camera")
        self._used = {self.camera.GetPrim(), self.mover}
        self.prims: List[Usd.Prim] = []
        for node in contents.nodes:
            self.prims.append(self._find(node))
        self.meshes = [self._mesh_prim(mesh) for mesh in contents.meshes]

    def _find(self, node: Node) -> Usd.Prim:
        holder = self.scene if node.holder is None else self.prims[node.holder]
        if node.kind == "set" and node.holder is None:
            holder = self._child(self.scene, ["SolvedFeatures"], again=True)
        return self._child(holder, prim_names(node))

    def _child(self, holder: Usd.Prim, names: List[str], again: bool = False) -> Usd.Prim:
        """The child of this name that wasn't found yet; behind it in the file, those whose name got a suffix."""
        children = [child for child in holder.GetAllChildren() if again or child not in self._used]
        good = [child for child in children if child.GetName() in names] + [
            child for child in children if re.fullmatch(re.escape(names[0]) + "_?[0-9]+", child.GetName())]
        if not good:
            raise ValueError(f"no {names[0]} below {holder.GetPath()}")
        self._used.add(good[0])
        return good[0]

    def _mesh_prim(self, mesh: solve_scene.SolvedMesh) -> Usd.Prim:
        layer = self.model.layers[mesh.layer]
        at, = (i for i, node in enumerate(self.contents.nodes)
               if node.kind == "layer" and node.world is layer.world)
        return self._child(self.prims[at], [name + "_TrackMesh" for name in prim_names(self.contents.nodes[at])])

    def others(self) -> List[str]:
        """Prims that belong to nothing of the solve; those that hold it all aren't among them."""
        above = {prim for prim in self.stage.TraverseAll() if self.scene.GetPath().HasPrefix(prim.GetPath())}
        return [str(prim.GetPath()) for prim in self.stage.TraverseAll() if prim not in self._used | above]

    # ---- numbers

    def chains(self, prims: List[Usd.Prim]) -> Tuple[np.ndarray, np.ndarray]:
        """(frames, prims, numbers): transforms from the outermost to the prim's own, and how far each may be off."""
        found = [[[self._level(self.stage.GetPrimAtPath(path), time) for path in prim.GetPath().GetPrefixes()]
                  for prim in prims] for time in self.times]
        depth = max(len(levels) for row in found for levels in row)
        numbers = np.zeros((len(self.times), len(prims), depth, LEVEL))
        numbers[..., 6] = 1.0
        for f, row in enumerate(found):
            for p, levels in enumerate(row):
                numbers[f, p, :len(levels)] = levels
        errors = np.abs(numbers) * SINGLE
        errors[..., :3] = 0.0
        errors[numbers[..., 6] == 1.0, 6] = 0.0
        shape = numbers.shape[:2] + (-1,)
        return numbers.reshape(shape), errors.reshape(shape)

    @staticmethod
    def _level(prim: Usd.Prim, time: float) -> List[float]:
        if not prim.IsA(UsdGeom.Xformable) or not UsdGeom.Xformable(prim).GetOrderedXformOps():
            return [0.0] * 6 + [1.0]
        common = UsdGeom.XformCommonAPI(prim)
        if not common:
            raise ValueError(f"{prim.GetPath()} has other than the common operations")
        place, turn, scale, pivot, order = common.GetXformVectors(time)
        if order != UsdGeom.XformCommonAPI.RotationOrderXYZ or any(pivot) or len(set(scale)) != 1:
            raise ValueError(f"{prim.GetPath()}: order {order}, pivot {pivot}, scale {scale}")
        return [*place, *turn, scale[0]]

    def numbers_of_times(self) -> Iterator[Tuple[str, List[float]]]:
        for prim in self.stage.TraverseAll():
            for attribute in prim.GetAttributes():
                if attribute.GetNumTimeSamples():
                    yield str(attribute.GetPath()), attribute.GetTimeSamples()

    # ---- judgement

    def judge_stage(self, findings: Findings) -> None:
        clip, stage = self.model.clip, self.stage
        first, last = self.model.project.get("playback", [0, self.model.frames - 1])
        rate = self.model.project.get("frameRate", 24)
        offset = clip.get("frameOffset", 0)
        findings.same("range", (stage.GetStartTimeCode(), stage.GetEndTimeCode()), (first + offset, last + offset))
        findings.same("rates", (stage.GetFramesPerSecond(), stage.GetTimeCodesPerSecond()), (rate, rate))
        findings.same("unit, up", (UsdGeom.GetStageMetersPerUnit(stage), UsdGeom.GetStageUpAxis(stage)), (0.01, "Y"))
        findings.same("unit and axis are said", (stage.HasAuthoredMetadata("metersPerUnit"),
                                                 stage.HasAuthoredMetadata("upAxis")), (True, True))
        findings.same("default prim", str(stage.GetDefaultPrim().GetPath()), ROOT)
        findings.same("root prims", [str(prim.GetPath()) for prim in stage.GetPseudoRoot().GetAllChildren()], [ROOT])
        findings.same("other prims", self.others(), [])
        # OpenUSD prints as few digits as read back to the same number.
        texts = [re.findall(r"-?[0-9][-+.e0-9]*", text) for text in (self.text, self.layer.ExportToString())]
        findings.same("numbers in another form", [pair for pair in zip(*texts) if pair[0] != pair[1]], [])
        findings.same("prims that aren't def", [str(p.GetPath()) for p in stage.TraverseAll() if not p.IsDefined()], [])
        findings.same("types", {prim.GetTypeName() for prim in self.prims}, {"Xform"} if self.prims else set())
        for name, times in self.numbers_of_times():
            if len(times) > 1:
                findings.same(f"times of {name}", times, self.times)

    def judge_lens(self, findings: Findings) -> None:
        camera, expected = self.camera, self.contents.camera
        focal = [camera.GetFocalLengthAttr().Get(time) for time in self.times]
        findings.compare("lens, mm", focal, expected.focal, SINGLE * expected.focal * (1 + 1e-6), "focal length")
        findings.same("samples of the focal length", camera.GetFocalLengthAttr().GetNumTimeSamples(),
                      self.model.frames if expected.focal_is_keyed else 0)
        found = np.array([camera.GetHorizontalApertureAttr().Get(), camera.GetVerticalApertureAttr().Get(),
                          camera.GetHorizontalApertureOffsetAttr().Get(), camera.GetVerticalApertureOffsetAttr().Get()])
        # The width of squeezed film went through singles before it came here.
        film = [*self.contents.film, 0.0, 0.0]
        findings.compare("lens, mm", found, film, 3.0 * SINGLE * np.abs(found) + 1e-12, "film")
        findings.same("projection", camera.GetProjectionAttr().Get(), "perspective")
        near, far = camera.GetClippingRangeAttr().Get()
        points = [self.contents.nodes[i].world.position for i in self.points()]
        depths = [-np.einsum("fj,fj->f", expected.place.rotation[:, :, 2], p - expected.place.position) for p in points]
        # Distances are those in front of the camera, in units of the stage.
        seen = np.array(depths or [[1.0]])
        if not 0.0 < near < seen.min() <= seen.max() < far:
            findings.problem(f"clips from {near} to {far}: points lie from {seen.min()} to {seen.max()}")

    def points(self) -> List[int]:
        return [i for i, node in enumerate(self.contents.nodes) if node.kind == "point"]

    def judge_nodes(self, findings: Findings) -> None:
        """Where everything stands in the world."""
        named = [("scene", self.scene, self.model.scene, None), ("camera", self.camera.GetPrim(),
                                                                self.contents.camera.place, None)]
        named += [(node.name, prim, node.world, node) for node, prim in zip(self.contents.nodes, self.prims)]
        numbers, errors = self.chains([prim for _, prim, _, _ in named])
        found, bound = compose(numbers), spread(compose, [numbers], [errors])
        turns = numbers[:, 1].reshape(len(self.times), -1, LEVEL)[..., 3:6]
        if np.abs(np.diff(turns, axis=0)).max(initial=0.0) > 180.0:
            findings.problem("the camera turns more than half a circle from one frame to the next")
        for i, (name, _, place, node) in enumerate(named):
            shown = np.ones(len(self.times), bool) if node is None else node.shown
            size = 1.0 + np.abs(place.position)
            # `spread` adds its own allowance; what is known here is known better.
            off = bound[:, i] - 1e-6
            findings.compare("position", found[shown, i, :3], place.position[shown],
                             (off[:, :3] + ARITHMETIC * size)[shown], f"{name}, frame and axis")
            if node is None or node.kind != "point":
                axes = (place.rotation * place.scale[:, None, None]).reshape(-1, 9)
                findings.compare("turn and scale", found[:, i, 3:], axes, off[:, 3:] + ARITHMETIC, name)

    def judge_markers(self, findings: Findings, fixed_size: bool) -> None:
        """Points are scaled to be seen, as the same part of the picture or by one number."""
        size = 0.01 if fixed_size else self.contents.marker_size() * self.contents.film[0]
        found = [self._level(self.prims[index], self.times[0])[6] for index in self.points()]
        findings.compare("size of points", found, [size] * len(found), 4.0 * SINGLE * size)

    def judge_meshes(self, findings: Findings) -> None:
        for expected, prim in zip(self.contents.meshes, self.meshes):
            name, mesh = str(prim.GetPath()), UsdGeom.Mesh(prim)
            if not findings.same(f"type of {name}", prim.GetTypeName(), "Mesh"):
                continue
            found = np.array([mesh.GetPointsAttr().Get(time) for time in self.times], float)
            findings.compare("vertices", found, expected.local, SINGLE * np.abs(expected.local) + 1e-12, name)
            findings.same(f"faces of {name}", list(mesh.GetFaceVertexCountsAttr().Get() or []), expected.counts)
            findings.same(f"corners of {name}", list(mesh.GetFaceVertexIndicesAttr().Get() or []), expected.indices)
            findings.same(f"own transform of {name}", mesh.GetOrderedXformOps(), [])
            findings.same(f"sides of {name}", mesh.GetOrientationAttr().Get(), "rightHanded")
            findings.same(f"subdivision of {name}", mesh.GetSubdivisionSchemeAttr().Get(), "none")
            self._judge_uvs(findings, name, prim, expected)

    @staticmethod
    def _judge_uvs(findings: Findings, name: str, prim: Usd.Prim, expected: solve_scene.SolvedMesh) -> None:
        pairs = [primvar for primvar in UsdGeom.PrimvarsAPI(prim).GetPrimvarsWithAuthoredValues()
                 if primvar.GetTypeName() == Sdf.ValueTypeNames.TexCoord2fArray]
        if expected.uvs is None:
            return
        if findings.same(f"UV sets of {name}", [(p.GetPrimvarName(), p.GetInterpolation()) for p in pairs],
                         [("st", "faceVarying")]):
            corners = expected.corner_uvs()
            found = np.array(pairs[0].ComputeFlattened(), float)
            findings.compare("UV", found, corners, SINGLE * np.abs(corners), name)

    def judge_picture(self, findings: Findings) -> None:
        """OpenUSD's own matrices and frustum against the solve."""
        at = self.points()
        found = np.zeros((len(self.times), len(at), 2))
        for f, time in enumerate(self.times):
            frustum, cache = self.camera.GetCamera(time).frustum, UsdGeom.XformCache(time)
            through = frustum.ComputeViewMatrix() * frustum.ComputeProjectionMatrix()
            for p, index in enumerate(at):
                world = cache.GetLocalToWorldTransform(self.prims[index]).ExtractTranslation()
                found[f, p] = np.array(through.Transform(world))[:2] * self.contents.picture / 2.0
        bound = self._pixel_bound(at)
        findings.compare(PICTURE, found, self.contents.pixels(found), bound,
                         lambda f, p, axis: f"{self.contents.nodes[at[p]].name}, {self.times[f]}, {axis}")
        if bound.max() > CEILING:
            findings.problem(f"pixels may be off by {bound.max():.3g}")

    def _pixel_bound(self, at: List[int]) -> np.ndarray:
        camera, camera_errors = self.chains([self.camera.GetPrim()])
        points, point_errors = self.chains([self.prims[i] for i in at])

        def pixels(eye: np.ndarray, lens: np.ndarray, chains: np.ndarray) -> np.ndarray:
            place = compose(eye)[:, 0]
            axes = place[:, 3:].reshape(-1, 3, 3)
            axes = axes / np.linalg.norm(axes, axis=1)[:, None, :]
            return Camera(place[:, :3], axes, lens[:, 0, 0]).project(compose(chains)[..., :3])

        lens = (self.contents.camera.focal / self.contents.film[0] * self.contents.picture[0])[:, None, None]
        # Focal length and the two apertures are singles; the film's width was one before.
        return spread(pixels, [camera, lens, points], [camera_errors, 4.0 * SINGLE * lens, point_errors])


@judging
def judge(findings: Findings, data: bytes, contents: SceneContents, fixed_size: bool = False) -> None:
    reading = Reading(data, contents)
    reading.judge_stage(findings)
    reading.judge_lens(findings)
    reading.judge_nodes(findings)
    reading.judge_meshes(findings)
    if reading.points():
        reading.judge_markers(findings, fixed_size)
        reading.judge_picture(findings)
