"""The judgement whether an Alembic archive shows a solve: its own camera has to see its trackers where the project's
camera sees its points."""

import re
from typing import List, Optional

import numpy as np

import alembic_tree
import solve_scene
from alembic_tree import ACROSS, DOWN, FAR, FOCAL, NEAR, SHIFT_ACROSS, SHIFT_DOWN, SQUEEZE, Archive, Thing
from findings import Findings, judging
from solve_cases import Case
from solve_scene import SINGLE, SceneContents

PICTURE = "reprojection, px"

# Allowance for the arithmetic of doubles, as a part of the size of these scenes.
ARITHMETIC = 1e-9

# How far from the camera the picture is hung up, scene units.
SCREEN = 995.0

# Millimetres in the unit of apertures.
CENTIMETRE = 10.0


def plain(name: str) -> str:
    """A pattern of names as archives may hold them: what they can't hold is replaced, what is there twice numbered."""
    return "".join("." if letter in "/;=" else re.escape(letter) for letter in name) + r"(_\d{4})?"


class Solve:
    """An archive beside the solve that it should show; raises ValueError when its shape is wrong."""

    def __init__(self, archive: Archive, contents: SceneContents, at_origin: bool) -> None:
        self.archive, self.model, self.contents = archive, contents.model, contents
        model = self.model
        rate = model.project.get("frameRate", 24) * model.line_height
        self.times = (np.arange(model.frames) + model.clip.get("frameOffset", 0)) / rate
        top = archive.top if at_origin else archive.top.child("scene")
        shots = [child for child in top.children if re.fullmatch(r"Shot \d+", child.name)]
        if len(shots) != 1 or (at_origin and any(child.name == "scene" for child in top.children)):
            raise ValueError(f"below {top.name}: {[child.name for child in top.children]}")
        self.scene, self.shot = top, shots[0]
        self.camera, self.screen = self.shot.child("Data"), self.shot.child("Screen")
        below = self.shot.child("Trackers").all_below()
        self.trackers = [thing for thing in below if thing.kind == "xform" and not
                         any(child.kind == "xform" for child in thing.children)]
        self.meshes = [thing for thing in archive.top.all_below() if thing.kind == "mesh" and thing.name != "Shape"]
        self.world = alembic_tree.worlds(archive, self.times)
        eye = contents.camera.place.position
        found = alembic_tree.parts(self.world[id(self.camera)])[0]
        # All lengths may be in another unit; whether it is the right one is judged apart.
        self.unit = float(np.sum(found * eye) / np.sum(eye * eye))

    def judge_shape(self, findings: Findings) -> None:
        info = self.archive.info
        findings.same("application", info["appName"], "Marlo ")
        findings.same("description", info["userDescription"], "Exported from: (unnamed)")
        findings.same("kinds", [(thing.name, thing.kind) for thing in self.shot.children],
                      [("Data", "camera"), ("ShotPreLens", "xform"), ("Screen", "xform"), ("Trackers", "xform")])
        names = [thing.name for thing in self.archive.top.all_below()]
        findings.same("names that stand twice", len(names) - len(set(names)), 0)
        samples = [len(thing.samples) for thing in (self.camera, self.shot)]
        findings.same("samples of camera and shot", samples, [len(self.times)] * 2)
        points = self.contents.of_kind("point")
        if findings.same("number of trackers", len(self.trackers), len(points)):
            for tracker, node in zip(self.trackers, points):
                if not re.fullmatch(plain(node.name), tracker.name):
                    findings.problem(f"a tracker is called {tracker.name} instead of {node.name}")

    def judge_lens(self, findings: Findings) -> None:
        found = alembic_tree.at_frames(self.camera, self.times)
        focal = self.contents.camera.focal
        findings.compare("lens, mm", found[:, FOCAL], focal, SINGLE * focal + 1e-9, "focal length, frame")
        film = np.stack([found[:, ACROSS] * found[:, SQUEEZE], found[:, DOWN]], axis=1) * CENTIMETRE
        findings.compare("lens, mm", film, np.tile(self.contents.film, (len(film), 1)), 4.0 * SINGLE * film, "film")
        findings.compare("lens, mm", found[:, [SHIFT_ACROSS, SHIFT_DOWN]], np.zeros((len(found), 2)), 1e-12, "shift")
        depths = [self.depth(i) for i in range(len(self.trackers))]
        nearest, farthest = np.min(depths or [1.0]), np.max(depths or [1.0])
        if not np.all((0.0 < found[:, NEAR]) & (found[:, NEAR] < nearest) & (farthest < found[:, FAR])):
            findings.problem(f"clips from {found[0, NEAR]} to {found[0, FAR]}: trackers from {nearest} to {farthest}")

    def seen(self, positions: np.ndarray) -> np.ndarray:
        """(frames, points, 3) of the world in the camera's axes."""
        inverse = np.linalg.inv(self.world[id(self.camera)])
        return np.einsum("fij,fpj->fpi", inverse[:, :3, :3], positions) + inverse[:, None, :3, 3]

    def place(self, thing: Thing) -> np.ndarray:
        return alembic_tree.parts(self.world[id(thing)])[0]

    def depth(self, index: int) -> np.ndarray:
        return -self.seen(self.place(self.trackers[index])[:, None])[:, 0, 2]

    def pixels(self, positions: np.ndarray) -> np.ndarray:
        """What the camera shows of (frames, points, 3), from the middle, in square pixels, y up."""
        seen, lens = self.seen(positions), alembic_tree.at_frames(self.camera, self.times)
        film = np.stack([lens[:, ACROSS] * lens[:, SQUEEZE], lens[:, DOWN]], axis=1) * CENTIMETRE
        factor = lens[:, None, FOCAL, None] / film[:, None] * self.contents.picture
        return factor * seen[..., :2] / -seen[..., 2:]

    def judge_places(self, findings: Findings) -> None:
        named = [("camera", self.camera, self.contents.camera.place, None),
                 ("scene", self.scene, self.model.scene, None)]
        named += [(node.name, thing, node.world, node) for thing, node in
                  zip(self.trackers, self.contents.of_kind("point"))]
        for name, thing, place, node in named:
            position, axes = alembic_tree.parts(self.world[id(thing)])
            shown = np.ones(len(self.times), bool) if node is None else node.shown
            size = 1.0 + np.abs(self.unit * place.position).max()
            findings.compare("position", position[shown], (self.unit * place.position)[shown], ARITHMETIC * size, name)
            if node is None:
                turned = place.rotation * place.scale[:, None, None]
                findings.compare("turn and scale", axes.reshape(-1, 9), turned.reshape(-1, 9), ARITHMETIC, name)

    def judge_unit(self, findings: Findings, case: Case) -> None:
        """Sizes that suit the points are made by scaling everything."""
        unit = self.contents.marker_size() if self.trackers and not case.fixed_size else 1.0
        findings.compare("unit", self.unit, unit, 4.0 * SINGLE * unit)

    def judge_meshes(self, findings: Findings) -> None:
        expected = self.contents.world_meshes()
        if not findings.same("number of meshes", len(self.meshes), len(expected)):
            return
        for mesh, good in zip(self.meshes, expected):
            if not re.fullmatch(plain("Chisel"), mesh.name):
                findings.problem(f"a mesh is called {mesh.name}")
            # A vertex is three singles in the mesh's own axes.
            local = alembic_tree.at_frames(mesh, self.times)
            axes = np.abs(alembic_tree.parts(self.world[id(mesh)])[1])
            bound = np.einsum("fij,fpj->fpi", axes, SINGLE * np.abs(local)) + ARITHMETIC
            findings.compare("vertices", self.vertices(mesh), self.unit * good.vertices, bound, mesh.name)
            judge_faces(findings, mesh, good.faces, good.corner_uvs)

    def vertices(self, mesh: Thing) -> np.ndarray:
        """(frames, vertices, 3) in the world."""
        position, axes = alembic_tree.parts(self.world[id(mesh)])
        return np.einsum("fij,fpj->fpi", axes, alembic_tree.at_frames(mesh, self.times)) + position[:, None]

    def judge_bounds(self, findings: Findings) -> None:
        """The archive's box holds every mesh in every frame, a mesh's own is no larger than it."""
        top = self.archive.top
        if top.bounds is None:
            findings.problem("the archive has no bounds")
            return
        box = alembic_tree.at_frames(Thing("bounds", "other", top.times, top.bounds), self.times)
        for mesh in self.meshes:
            world = self.vertices(mesh)
            slack = 1e-6 * (1.0 + np.abs(world).max())
            if np.any(world.min(axis=1) < box[:, 0] - slack) or np.any(world.max(axis=1) > box[:, 1] + slack):
                findings.problem(f"{mesh.name} sticks out of the archive's bounds")

    def judge_picture(self, findings: Findings) -> None:
        found = self.pixels(np.stack([self.place(tracker) for tracker in self.trackers], axis=1))
        expected = self.contents.pixels(found)
        # Focal length and film were singles.
        findings.compare(PICTURE, found, expected, 5.0 * SINGLE * np.abs(expected) + 1e-6)

    def judge_screen(self, findings: Findings) -> None:
        """The picture is hung up so that it fills the view."""
        shape = self.screen.child("Shape")
        own = alembic_tree.at_frames(self.screen, self.times)
        distance = np.tile([0.0, 0.0, -SCREEN * self.unit], (len(own), 1))
        findings.compare("screen, distance", own[:, :3, 3], distance, 8.0 * SINGLE * SCREEN * self.unit)
        pixels = self.pixels(self.vertices(shape))
        found = np.stack([pixels.min(axis=1), pixels.max(axis=1)], axis=1)
        half = self.contents.picture / 2.0
        findings.compare("screen, px", found, np.tile([-half, half], (len(found), 1, 1)), 10.0 * SINGLE * half + 1e-6)


def judge_faces(findings: Findings, mesh: Thing, faces: List[List[int]], corner_uvs: Optional[np.ndarray]) -> None:
    """Faces have the order of the vertices that the programs expect, clockwise from the front, wherever they start."""
    found = solve_scene.split_faces(mesh.counts, mesh.indices)
    expected = [_turned(face[::-1]) for face in faces]
    good = findings.same(f"faces of {mesh.name}", [_turned(face) for face in found], expected)
    if corner_uvs is None or not good or not findings.same(f"UV of {mesh.name}", mesh.scope, "kFacevaryingScope"):
        return
    ends = np.cumsum([len(face) for face in faces])
    pairs = [dict(zip(face, corner_uvs[end - len(face):end])) for face, end in zip(faces, ends)]
    corners = np.array([of_face[vertex] for face, of_face in zip(found, pairs) for vertex in face])
    findings.compare("UV", mesh.uvs, corners, SINGLE * np.abs(corners), mesh.name)


def _turned(face: List[int]) -> List[int]:
    start = face.index(min(face))
    return face[start:] + face[:start]


@judging
def judge_solve(findings: Findings, archive: Archive, contents: SceneContents, case: Case) -> None:
    solve = Solve(archive, contents, case.at_origin)
    solve.judge_shape(findings)
    solve.judge_lens(findings)
    solve.judge_places(findings)
    solve.judge_unit(findings, case)
    solve.judge_meshes(findings)
    solve.judge_bounds(findings)
    solve.judge_screen(findings)
    if solve.trackers and not findings.problems:
        solve.judge_picture(findings)
