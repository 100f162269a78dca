"""Holds FBX scenes against the project, on every frame.

What is keyed is held to the singles that FBX keeps keys in, through all nodes above it; the picture to what that makes
of pixels. A node that holds others keeps its axes; in the forms for Maya the camera looks along its x and what holds
nothing is turned half around y.
"""

import re
from dataclasses import replace
from functools import cached_property
from typing import Any, Callable, Dict, Iterator, List, Optional

import numpy as np

import solve_scene
from fbx_scene import Node, Scene
from findings import Findings, judging
from reprojection import ARITHMETIC, Camera
from scene_model import Placement, keyed, static_xyz
from solve_cases import Case
from solve_scene import SINGLE

NUKE = "fbx_for_nuke"

INCH = 0.03937008494017086
TICKS = 46186158000
# Frames per second of the time modes, in their order, without the custom one.
RATES = [120, 100, 60, 50, 48, 30, 30, 30000 / 1001, 30000 / 1001, 25, 24, 1000, 24000 / 1001, 96, 72, 60000 / 1001,
         120000 / 1001]
COLORS = {"SurfacePointMaterial": (1.0, 0.0, 0.0), "FeaturePointMaterial": (0.0, 1.0, 0.0),
          "MeshPointMaterial": (0.0, 0.0, 1.0)}
PYRAMID = [[0, 1, 2], [0, 2, 3], [0, 3, 4], [0, 4, 1], [2, 1, 3], [4, 3, 1]]
TIP = np.array([[0, 0, 0], [-0.01, 0.03, -0.01], [-0.01, 0.03, 0.01], [0.01, 0.03, 0.01], [0.01, 0.03, -0.01]])
# Pixels that the picture may be off at most, but where the scene is far from its origin.
CEILING = 0.01
EXACT = 1e-9


def about_y(degrees: float) -> np.ndarray:
    return static_xyz(np.array([0.0, degrees, 0.0]))


def quaternion_matrices(q: np.ndarray) -> np.ndarray:
    v, w = q[:, :3], q[:, 3, None, None]
    cross = np.cross(np.eye(3)[None], v[:, None, :])
    return np.eye(3) + 2.0 * w * cross + 2.0 * cross @ cross


class Placed:
    """Nodes in the world: `place`, and how far position (units), turn (radians) and scale (part) may be off."""

    def __init__(self, node: Node, above: Optional["Placed"], frames: int) -> None:
        rows = np.broadcast_to(node.local, (frames, 10))
        if np.ptp(rows[:, 7:], axis=1).max() > 1e-12:
            raise ValueError(f"{node.name} is scaled by {rows[0, 7:]}")
        place = Placement(rows[:, :3], quaternion_matrices(rows[:, 3:7]), rows[:, 7])
        sizes = {name: np.array([[abs(curve.values).max()] for (of, _), curve in node.curves.items() if of == name])
                 for name in ("Lcl Translation", "Lcl Rotation", "Lcl Scaling")}
        off = SINGLE * np.linalg.norm(rows[:, :3], axis=1) * bool(sizes["Lcl Translation"].size)
        turn = SINGLE * np.radians(sizes["Lcl Rotation"].sum())
        size = SINGLE * bool(sizes["Lcl Scaling"].size)
        if above is not None:
            way = np.linalg.norm(place.position, axis=1)
            off = above.off + above.place.scale * (off + way * (above.turn + above.size))
            turn, size, place = turn + above.turn, size + above.size, above.place.holding(place)
        self.place, self.off, self.turn, self.size = place, off, turn, size


class Judge:
    def __init__(self, findings: Findings, scene: Scene, case: Case, key: str) -> None:
        self.findings, self.scene, self.case, self.key = findings, scene, case, key
        solve = case.project["solve"]
        self.legacy, self.nuke, self.rig = solve.get("legacy", False), key == NUKE, case.view == "all"
        posed = not (self.legacy and not self.nuke)
        self.contents = replace(case, at_origin=case.at_origin or not posed).contents(eyes=not self.rig)
        self.model, camera = self.contents.model, self.contents.camera
        self.pixels = camera.focal * self.contents.picture[0] / self.contents.film[0]
        self.factor = 100.0 if "stereo" in solve and not self.rig else 1.0
        if self.nuke:
            self.factor *= self.pixels[0]
        turned = not (self.nuke or self.rig)
        self.camera_turn, self.leaf_turn = about_y(90.0 * turned), about_y(180.0 * turned)
        frames = len(scene.times)
        self.placed: List[Placed] = []
        for node in scene.nodes:
            above = None if node.parent is None else self.placed[node.parent]
            self.placed.append(Placed(node, above, frames))
        self.top = 0 if self.legacy else 1
        self.taken = {0, self.top}

    def run(self) -> None:
        self.judge_scene()
        self.judge_keys()
        self.judge_camera()
        self.judge_nodes()
        findings = self.findings
        findings.same("other nodes", [n.name for i, n in enumerate(self.scene.nodes) if i not in self.taken], [])
        names = [node.name for node in self.scene.nodes]
        findings.same("number of different names", len(set(names)), len(names))

    # ---- the file

    def judge_scene(self) -> None:
        findings, scene = self.findings, self.scene
        findings.same("version", scene.version, 6100 if self.key == "fbx_6_1_0" else 7700)
        findings.same("metres in a unit", scene.unit, 0.01 if self.nuke or self.legacy else 1.0)
        findings.same("axes", scene.axes, ("POSITIVE_X", "POSITIVE_Y", "POSITIVE_Z"))
        findings.same("stacks", scene.stacks, ["MarloAnimations"])
        if scene.version > 7000:
            findings.same("layers", scene.layers, ["MarloAnimLayer"])
        wanted = self.model.project.get("frameRate", 24)
        rate = min(RATES, key=lambda each: abs(each - wanted))
        # ufbx knows rates to three digits behind the point; times tell them exactly.
        findings.compare("rate", scene.rate, rate, 5e-4)
        shown = self.model.clip.get("frameOffset", 0) + np.arange(self.model.frames)
        self.times = shown / rate
        findings.compare("times, s", scene.times, self.times, 0.5 / TICKS + 1e-12)
        ends = self.times[[0, -1]]
        findings.compare("times, s", scene.range, ends, 0.5 / TICKS + 1e-12, "range")
        findings.compare("times, s", np.array(scene.span) / TICKS, ends, 0.5 / TICKS + 1e-12, "span")
        for name, material in scene.materials.items():
            findings.same(name, (material[0].lower(), *material[1:]), ("lambert", COLORS.get(name), 0.0))

    def judge_keys(self) -> None:
        for node in self.scene.nodes:
            for (name, axis), curve in node.curves.items():
                self.findings.same(f"kinds of keys of {node.name}", set(curve.kinds), {"LINEAR"})
                if name.startswith("Lcl") and node.mesh is None:
                    self.findings.compare("times, s", curve.times, self.scene.times, 1e-12, node.name)
                if name == "Lcl Rotation" and np.abs(np.diff(curve.values)).max(initial=0.0) > 180.0:
                    self.findings.problem(f"{node.name} turns by more than half a circle between keys of axis {axis}")

    # ---- what is in it

    def expected(self, place: Placement) -> Placement:
        """A place of the project as it has to stand in the file's world."""
        if self.legacy:
            origin = self.contents.camera.place.position[0]
            return replace(place, position=(place.position - origin) * self.factor)
        if self.nuke:
            return replace(place, position=place.position * self.factor)
        inside = self.model.scene.inverse().holding(place)
        return self.model.scene.holding(replace(inside, position=self.factor * inside.position))

    def compare(self, name: str, index: int, place: Placement, turn: np.ndarray, shown: Any = True,
                turned: bool = True) -> None:
        found, expected, findings = self.placed[index], self.expected(place), self.findings
        shown = np.ones(len(self.scene.times), bool) & shown
        size = np.linalg.norm(expected.position, axis=1) + self.factor
        bound = (found.off + EXACT * size)[:, None]
        findings.compare("position, units", found.place.position[shown], expected.position[shown], np.broadcast_to(
            bound, (len(shown), 3))[shown], name)
        axes = (expected.rotation @ turn)
        findings.compare("turn", found.place.rotation[shown], axes[shown], found.turn + EXACT, name)
        if turned:
            findings.compare("scale", found.place.scale, expected.scale, (found.size + EXACT) * expected.scale, name)

    def judge_camera(self) -> None:
        if not self.legacy:
            findings, top = self.findings, self.scene.nodes[self.top]
            findings.same("node of the scene", (top.name, top.parent), ("MarloScene", 0))
            place = self.placed[self.top].place
            scene = self.model.scene if not self.nuke else replace(
                self.model.scene, position=0.0 * place.position, rotation=np.eye(3) + 0.0 * place.rotation,
                scale=np.ones(len(place.scale)))
            for name, one, other in zip(("position", "turn", "scale"), (place.position, place.rotation, place.scale),
                                        (scene.position, scene.rotation, scene.scale)):
                findings.compare("scene", one, other, EXACT, name)
        index, = (i for i, node in enumerate(self.scene.nodes) if node.name == "MarloCameraNode")
        self.camera, node = index, self.scene.nodes[index]
        self.taken.add(index)
        self.findings.same("what holds the camera", node.parent, self.top)
        kind = "STEREO_CAMERA" if self.rig else "CAMERA"
        self.findings.same("kind of camera", (node.kind, len(node.eyes)), (kind, 2 * self.rig))
        camera = self.contents.camera
        scale = self.model.scene.scale
        place = replace(camera.place, scale=scale if not (self.nuke or self.legacy) else np.ones(len(scale)))
        self.compare("camera", index, place, self.camera_turn)
        self.judge_lens(node)
        if self.rig:
            self.judge_rig(node)

    def judge_lens(self, node: Node) -> None:
        findings, camera, clip, lens = self.findings, self.contents.camera, self.model.clip, node.lens
        picture, film, aspect = self.contents.picture, self.contents.film * INCH, clip.get("pixelAspect", 1)
        across = film[0] if self.legacy else film[0] / aspect
        same = {"AspectRatioMode": 2, "AspectWidth": picture[0], "AspectHeight": picture[1], "FilmFormatIndex": 0,
                "ApertureMode": 1 if self.legacy else 3, "FilmSqueezeRatio": 1 if self.legacy else aspect,
                "NearPlane": 0.01, "FarPlane": 10000, "FilmWidth": across, "FilmHeight": film[1]}
        for name, value in same.items():
            findings.compare("lens", lens.get(name, np.nan), value, 3.0 * SINGLE * value, name)
        word = "FieldOfView" if self.legacy else "FocalLength"
        value = np.degrees(2.0 * np.arctan2(film[0] / 2.0, camera.focal * INCH)) if self.legacy else camera.focal
        curve = node.curves.get((word, 0))
        findings.same("keys of the lens", curve is not None, camera.focal_is_keyed or self.legacy)
        if curve is not None:
            findings.compare("times, s", curve.times, self.scene.times, 1e-12, word)
        found = np.full(len(value), lens[word]) if curve is None else curve.values
        findings.compare("lens", found, value, 2.0 * SINGLE * value, word)
        findings.compare("lens", lens[word], value[0], 2.0 * SINGLE * value[0], f"first {word}")
        # How many pixels the file's lens has, of its own numbers.
        self.lens = (picture[0] / 2.0 / np.tan(np.radians(found) / 2.0) if self.legacy
                     else found * INCH * lens["AspectWidth"] / (lens["FilmWidth"] * lens["FilmSqueezeRatio"]))

    def judge_rig(self, node: Node) -> None:
        """Keys of the separation are those of the project; the distance where the eyes meet follows from both."""
        rig, findings = self.case.project["solve"]["stereo"], self.findings
        converged = rig["mode"] == "converged"
        findings.same("mode of the rig", node.lens["Stereo"], 1.0 if converged else 3.0)
        separation = np.asarray(keyed(rig["separation"], self.model.frames))
        curve = node.curves["InteraxialSeparation", 0]
        at = rig["separation"]["frames"]
        findings.compare("times, s", curve.times, self.times[at], 1e-9, "separation")
        findings.compare("rig", curve.values, separation[at], SINGLE * separation[at], "separation")
        findings.same("keys of the crossing", ("ZeroParallax", 0) in node.curves, converged)
        if converged:
            meeting = separation / (2.0 * np.tan(np.radians(keyed(rig["convergence"], self.model.frames)) / 2.0))
            curve = node.curves["ZeroParallax", 0]
            at = [int(np.argmin(abs(self.times - time))) for time in curve.times]
            findings.same("keys of the crossing are those of the project", set(at) >= set(rig["convergence"]["frames"]),
                          True)
            findings.compare("times, s", curve.times, self.times[at], 1e-9, "crossing")
            findings.compare("rig", curve.values, meeting[at], 3.0 * SINGLE * meeting[at], "crossing")
        width = self.model.clip["width"]
        for (name, offset), side in zip(node.eyes, ("Left", "Right")):
            findings.same("eye", name, f"Marlo{side}Camera")
            findings.compare("rig", offset, -rig.get(f"shift{side}", 0.0) / width, EXACT, f"shift {side}")

    def judge_nodes(self) -> None:
        """Nodes of one holder stand in the file in the order of the project."""
        scene, contents = self.scene, self.contents
        waiting: Dict[int, List[int]] = {i: [] for i in range(len(scene.nodes))}
        for child, node in enumerate(scene.nodes):
            if node.parent is not None and child != self.camera:
                waiting[node.parent].append(child)

        def taken(holder: int, name: str) -> int:
            if not waiting[holder]:
                raise ValueError(f"there is no {name} in {scene.nodes[holder].name}")
            index = waiting[holder].pop(0)
            if not re.fullmatch(re.escape(name) + r"(_\d+)?", scene.nodes[index].name):
                raise ValueError(f"in {scene.nodes[holder].name}: {scene.nodes[index].name} instead of {name}")
            self.taken.add(index)
            return index

        wanted = iter(self.point_layers())
        materials, at, points, root = [], {}, [], None
        # Models make no node of a layer; where there is none, they stand as if it were at the origin of the scene, or
        # of the world where the scene has no node.
        made = {node.holder for node in contents.nodes if node.kind in ("point", "set")}
        made |= {contents.nodes[i].holder for i in made if i is not None}
        for number, node in enumerate(contents.nodes):
            if node.kind in ("layer", "group") and number not in made:
                continue
            if node.kind == "asset" and node.holder is not None and node.holder not in made:
                local = contents.nodes[node.holder].world.inverse().holding(node.world)
                node = replace(node, holder=None, world=local if self.nuke else self.model.scene.holding(local))
            holder = self.top if node.holder is None or self.legacy else at[node.holder]
            flat = node.name.replace(" ", "_")
            if node.kind == "set":
                at[number] = holder
                if node.holder is None:
                    if root is None:
                        described = self.model.solve.get("featureRoot", {})
                        root = taken(self.top, described.get("name", "Static_auto_features").replace(" ", "_"))
                    at[number] = taken(root, node.name)
                    self.compare(node.name, at[number], node.world, np.eye(3), turned=not self.nuke)
                continue
            if self.legacy and node.kind in ("layer", "group"):
                at[number] = 0
            elif node.kind in ("layer", "group"):
                at[number] = taken(holder, flat)
                self.compare(node.name, at[number], node.world, np.eye(3))
            elif node.kind == "asset":
                self.compare(node.name, taken(holder, node.name), node.world, self.leaf_turn)
            else:
                if not materials and contents.nodes[node.holder].kind == "layer":
                    materials = self.judge_meshes(next(wanted), holder, taken)
                index = taken(holder, node.name)
                self.compare(node.name, index, node.world, self.leaf_turn, node.shown, False)
                self.judge_marker(index, materials.pop(0) if materials else "FeaturePointMaterial")
                points.append(index)
        if points:
            self.judge_picture(points)

    def point_layers(self) -> Iterator[int]:
        """Layers whose points are exported, in their order."""
        nodes = self.contents.nodes
        holders = {id(nodes[node.holder].world) for node in nodes if node.kind == "point"}
        return (i for i, layer in enumerate(self.model.layers) if layer.points.names and id(layer.world) in holders)

    def judge_meshes(self, index: int, holder: int, taken: Callable[[int, str], int]) -> List[str]:
        """A layer's meshes; the materials of its points."""
        layer, described = self.model.layers[index], self.model.project["layers"][index]
        mesh = described.get("meshPoints", {})
        count = len(mesh.get("positions", [])) // 3 // len(mesh.get("frames", [0]))
        surface = len(layer.points) - count
        frame = self.model.solve.get("referenceFrame", 0) if self.case.reference else 0
        vertices = layer.points.positions[frame]
        if self.legacy:
            # Unlike points, vertices stay in the axes of the old solve.
            vertices = layer.world.through(layer.points.positions)[frame] - self.contents.camera.place.position[0]
            vertices = vertices * [1.0, -1.0, -1.0]
        for word, part, keys in (("_TrackMesh", slice(surface, None), mesh),
                                 ("_Surface", slice(0, surface), {})):
            if part == slice(0, 0) or not len(vertices[part]):
                continue
            node = self.scene.nodes[taken(holder, layer.name + word)]
            faces = solve_scene.split_faces(keys.get("faceCounts", []), keys.get("faceIndices", []))
            self.findings.compare("own place of meshes", node.local, [[0, 0, 0, 0, 0, 0, 1, 1, 1, 1]], 0.0, node.name)
            self.findings.compare("vertices", node.mesh.vertices, self.factor * vertices[part],
                                  EXACT * self.factor * (1.0 + abs(vertices[part])), node.name)
            self.findings.same(f"faces of {node.name}", node.mesh.faces, faces)
            if "uvs" in keys:
                pairs = np.reshape(keys["uvs"], (-1, 2))[keys["faceIndices"]]
                self.findings.compare("UV", node.mesh.corner_uvs, pairs, SINGLE * pairs, node.name)
        return ["SurfacePointMaterial"] * surface + ["MeshPointMaterial"] * count

    def judge_marker(self, index: int, material: str) -> None:
        node, findings = self.scene.nodes[index], self.findings
        findings.same(f"material of {node.name}", node.materials, [material])
        findings.same(f"faces of {node.name}", (node.mesh.faces, node.mesh.face_materials), (PYRAMID, [0] * 6))
        findings.compare("markers", node.mesh.vertices, TIP, 1e-12, node.name)
        findings.compare("size of markers", node.local[:, 7], [self.marker] * len(node.local), 4e-7 * self.marker)

    @cached_property
    def marker(self) -> float:
        if self.case.fixed_size:
            return 0.01
        film = self.contents.film[0]
        if self.legacy:
            return 0.2 * film / self.contents.camera.focal[0]
        size = self.contents.marker_size() * film / self.model.clip.get("pixelAspect", 1) * self.factor
        return size * self.model.scene.scale[0] if self.nuke else size

    def judge_picture(self, points: List[int]) -> None:
        """Points through the camera, both as they are in the file."""
        eye = self.placed[self.camera]
        axes = eye.place.rotation @ self.camera_turn.T
        places = np.stack([self.placed[i].place.position for i in points], axis=1)
        found = Camera(eye.place.position, axes, self.lens).project(places)
        away = places - eye.place.position[:, None]
        depth = np.abs(np.einsum("fj,fpj->fp", axes[:, :, 2], away))
        off = np.stack([self.placed[i].off for i in points], axis=1) + eye.off[:, None]
        off = (off + eye.turn * np.linalg.norm(away, axis=2) + 1e-12 * np.linalg.norm(places, axis=2)) / depth
        bound = self.lens[:, None, None] * off[..., None] + np.abs(found) * (off[..., None] + 6.0 * SINGLE) + ARITHMETIC
        self.findings.compare("picture, px", found, self.contents.pixels(found), bound,
                              lambda f, p, axis: f"{self.scene.nodes[points[p]].name}, frame {f}, {axis}")
        if bound.max() > CEILING and self.case.name != "far":
            self.findings.problem(f"pixels may be off by {bound.max():.3g}")


@judging
def judge(findings: Findings, scene: Scene, case: Case, key: str) -> None:
    Judge(findings, scene, case, key).run()
