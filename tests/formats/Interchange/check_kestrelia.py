"""Proves that matchmove projects show a solve and tracked surfaces, from the page about their files alone.

usage: check_kestrelia.py MARLO_EXPORT SOURCE_DIR SCRATCH_DIR
"""

import re
import sys
from typing import Any, Callable, Dict, Iterator, List, Tuple

import numpy as np

import checking
import kestrelia_file
import model_file
import shots
import solve_cases
import solve_scene
from checking import Check
from findings import Findings, judging
from kestrelia_file import Item, at_frames
from planar import PlanarLayer
from scene_model import SceneModel
from solve_scene import SINGLE, SceneContents

VERIFIES = {
    "kestrelia_3D": "poses, points and vertices within 1e-9, the lens within half a unit of a single, points within 0.001 px",
    "kestrelia_2D": "corners of every frame within 1e-6 px",
}
SOLVE, FLAT = VERIFIES
PICTURE = "reprojection, px"

# Allowance for the arithmetic of doubles, as a part of the size of these scenes.
ARITHMETIC = 1e-9

# The same for corners, which are solved from homographies, in pixels.
SOLVED = 1e-6


def plain(name: str) -> str:
    """A pattern of a name that is made unique."""
    return re.escape(name) + r"(_\d{4})?"


def matrix(poses: Any) -> np.ndarray:
    """(frames, 4, 4) on column vectors of rows of twelve numbers."""
    numbers = np.array(poses, float).reshape(-1, 4, 3)
    found = np.tile(np.eye(4), (len(numbers), 1, 1))
    found[:, :3, :] = np.swapaxes(numbers, 1, 2)
    return found


class Solve:
    """A file beside the solve that it should show; raises ValueError when its shape is wrong."""

    def __init__(self, data: bytes, contents: SceneContents) -> None:
        self.model, self.contents, self.file = contents.model, contents, kestrelia_file.parse(data)
        model = self.model
        self.shot, = self.file.shots
        self.frames = [frame + model.clip.get("frameOffset", 0) for frame in range(model.frames)]
        if self.shot.camera is None:
            raise ValueError("no camera")
        self.camera = self.shot.camera
        self.scene = matrix([self.file.values.get("pose", [1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0])] * model.frames)
        self.eye = self.scene @ matrix(at_frames(self.camera.keys["pose"], self.frames))
        self.places = [self.place(tracker) for tracker in self.shot.trackers]

    def carrier(self, item: Item) -> np.ndarray:
        """What an item's numbers are relative to, in the world."""
        if "object" not in item.values:
            return self.scene
        return self.scene @ matrix(at_frames(self.file.objects[item.values["object"][0]].keys["pose"], self.frames))

    def place(self, tracker: Item) -> np.ndarray:
        carrier = self.carrier(tracker)
        position = np.array(at_frames(tracker.keys["position"], self.frames) if "position" in tracker.keys else
                            [[np.nan] * 3] * len(self.frames))
        return np.einsum("fij,fj->fi", carrier[:, :3, :3], position) + carrier[:, :3, 3]

    def judge_shape(self, findings: Findings) -> None:
        clip, shot, model = self.model.clip, self.shot.values, self.model
        findings.same("scene", self.file.values.get("name"), ["Marlo Scene"])
        findings.same("shot", self.shot.name, clip["name"])
        findings.same("size", shot["size"], [clip["width"], clip["height"] // model.line_height])
        findings.same("pixels, rate, fields", [shot["pixel_aspect"], shot["frame_rate"], shot["interlaced"]], [
            [clip.get("pixelAspect", 1)], [model.project.get("frameRate", 24)], [clip.get("interlaced", False)]])
        findings.same("frames", shot["frames"], [self.frames[0], self.frames[-1]])
        if "reference_frame" in self.file.values:
            findings.same("reference frame", self.file.values["reference_frame"],
                          [model.solve.get("referenceFrame", 0) + self.frames[0]])
        for kind, names in (("object", [item.name for item in self.file.objects.values()]),
                            ("tracker", [item.name for item in self.shot.trackers]),
                            ("group", list(self.shot.groups.values())), ("mesh", [m.name for m in self.file.meshes])):
            findings.same(f"{kind} names that stand twice", len(names) - len(set(names)), 0)
        if not all(re.fullmatch(r"Marlo Features \d+", name) for name in self.shot.groups.values()):
            findings.problem(f"groups {list(self.shot.groups.values())}")
        points = self.contents.of_kind("point")
        if findings.same("number of trackers", len(self.shot.trackers), len(points)):
            for tracker, node in zip(self.shot.trackers, points):
                if not re.fullmatch(plain(node.name), tracker.name):
                    findings.problem(f"a tracker is called {tracker.name} instead of {node.name}")
                self.judge_holder(findings, tracker, node)

    def judge_holder(self, findings: Findings, tracker: Item, node: solve_scene.Node) -> None:
        """Features are in groups; what moves hangs on an object of its layer."""
        holder = self.contents.nodes[node.holder]
        findings.same(f"{tracker.name} is in a group", "group" in tracker.values, holder.kind == "set")
        layer = self.contents.nodes[holder.holder] if holder.kind == "set" and holder.holder is not None else holder
        moving = [item.world is layer.world and item.moving for item in self.model.layers]
        if any(moving) and findings.same(f"{tracker.name} has an object", "object" in tracker.values, True):
            item = self.file.objects[tracker.values["object"][0]]
            if not re.fullmatch(plain(layer.name), item.name):
                findings.problem(f"{tracker.name} moves with {item.name} instead of {layer.name}")
            pose = self.carrier(tracker)
            expected = np.concatenate([layer.world.rotation * layer.world.scale[:, None, None],
                                       layer.world.position[:, :, None]], axis=2)
            findings.compare("object", pose[:, :3], expected, ARITHMETIC * (1.0 + np.abs(expected).max()), item.name)

    def judge_camera(self, findings: Findings) -> None:
        camera, place = self.model.camera(), self.model.camera().place
        film = np.array(solve_scene.film_size(self.model))
        findings.compare("lens, mm", self.camera.values["film_back"], film, 4.0 * SINGLE * film, "film")
        lens = np.array(at_frames(self.camera.keys["lens"], self.frames))
        findings.compare("lens, mm", lens[:, 0], camera.focal, SINGLE * camera.focal + 1e-9, "focal length, frame")
        findings.compare("shift, px", lens[:, 1], np.zeros(len(lens)), 1e-12)
        size = 1.0 + np.abs(place.position).max()
        findings.compare("camera", self.eye[:, :3, 3], place.position, ARITHMETIC * size, "frame and axis")
        turned = place.rotation * place.scale[:, None, None]
        findings.compare("turn", self.eye[:, :3, :3], turned, ARITHMETIC, "camera")
        scene = self.model.scene
        findings.compare("scene", self.scene[:, :3, 3], scene.position, ARITHMETIC)
        findings.compare("scene", self.scene[:, :3, :3], scene.rotation * scene.scale[:, None, None], ARITHMETIC)

    def judge_points(self, findings: Findings) -> None:
        for place, node in zip(self.places, self.contents.of_kind("point")):
            size = 1.0 + np.abs(node.world.position).max()
            findings.compare("position", place[node.shown], node.world.position[node.shown], ARITHMETIC * size, node.name)

    def judge_meshes(self, findings: Findings) -> None:
        expected = self.contents.world_meshes()
        if not findings.same("number of meshes", len(self.file.meshes), len(expected)):
            return
        for mesh, good in zip(self.file.meshes, expected):
            carrier = self.carrier(mesh) @ matrix([mesh.values.get("pose", [1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0])])
            rows = {time: [row] for time, row in zip(mesh.row_times, mesh.rows)}
            local = np.array(at_frames(rows, self.frames))[:, 0]
            found = np.einsum("fij,fpj->fpi", carrier[:, :3, :3], local) + carrier[:, None, :3, 3]
            bound = ARITHMETIC * (1.0 + np.abs(good.vertices).max())
            findings.compare("vertices", found, good.vertices, bound, mesh.name)
            findings.same(f"faces of {mesh.name}", mesh.faces, good.faces)
            if good.corner_uvs is not None and findings.same(f"UV of {mesh.name}", bool(mesh.uvs), True):
                corners = [mesh.uvs[i] for face in mesh.uv_faces or mesh.faces for i in face]
                findings.compare("UV", corners, good.corner_uvs, SINGLE * np.abs(good.corner_uvs), mesh.name)

    def judge_picture(self, findings: Findings) -> None:
        """By the page's own formula."""
        inverse, size = np.linalg.inv(self.eye), np.array(solve_scene.picture_size(self.model))
        places = np.stack(self.places, axis=1)
        seen = np.einsum("fij,fpj->fpi", inverse[:, :3, :3], places) + inverse[:, None, :3, 3]
        lens = np.array(at_frames(self.camera.keys["lens"], self.frames))[:, None, :1]
        fraction = 0.5 - lens * seen[..., :2] / (np.array(self.camera.values["film_back"]) * seen[..., 2:])
        found = (fraction - 0.5) * size
        expected = self.contents.pixels(found)
        findings.compare(PICTURE, found, expected, 5.0 * SINGLE * np.abs(expected) + 1e-6)


@judging
def judge_solve(findings: Findings, data: bytes, contents: SceneContents) -> None:
    solve = Solve(data, contents)
    solve.judge_shape(findings)
    solve.judge_camera(findings)
    solve.judge_points(findings)
    solve.judge_meshes(findings)
    if solve.places and not findings.problems:
        solve.judge_picture(findings)


CORNERS = ("lower left", "lower right", "upper left", "upper right")


@judging
def judge_flat(findings: Findings, data: bytes, layers: List[PlanarLayer]) -> None:
    """Four trackers for each layer, where its corners are seen."""
    file = kestrelia_file.parse(data)
    shot, = file.shots
    first = layers[0]
    findings.same("size", shot.values["size"], list(first.raster))
    findings.same("pixels, rate, fields", [shot.values["pixel_aspect"], shot.values["frame_rate"], shot.values["interlaced"]],
                  [[first.aspect], [first.rate], [first.line_height == 2]])
    findings.same("frames", shot.values["frames"], [min(layer.first for layer in layers) + first.offset,
                                                    max(layer.last for layer in layers) + first.offset])
    findings.same("what a solve has", [shot.camera, file.objects, file.meshes], [None, {}, []])
    trackers = list(shot.trackers)
    for layer in layers:
        quads = layer.shot().corners.copy()
        quads[..., 1] = layer.raster[1] - quads[..., 1]
        for corner, word in enumerate(CORNERS):
            found = [tracker for tracker in trackers if re.fullmatch(plain(f"{layer.name} {word}"), tracker.name)]
            if not found:
                findings.problem(f"{layer.name} has no {word}")
                continue
            trackers.remove(found[0])
            keys = found[0].keys.get("image", {})
            if findings.same(f"frames of {found[0].name}", list(keys), [frame + layer.offset for frame in layer.frames()]):
                findings.compare("corner, px", list(keys.values()), quads[:, corner], SOLVED, found[0].name)
    findings.same("other trackers", [tracker.name for tracker in trackers], [])


class Faults:
    """Changed texts of a file. Lines are those of the first record of a word that have another word in front."""

    def __init__(self, data: bytes) -> None:
        self.lines = data.decode("utf-8").split("\n")

    def at(self, record: str, word: str) -> List[int]:
        words = [line.split(" ")[0] if line else "" for line in map(str.strip, self.lines)]
        for start in (i for i, found in enumerate(words) if found == record):
            end = words.index("end", start)
            found = [i for i in range(start, end) if words[i] == word]
            if found:
                return found
        raise ValueError(f"no {word} in a {record}")

    def changed(self, places: List[int], change: Callable[[List[str]], List[str]]) -> bytes:
        """With other words in these lines; each gets a line's words."""
        lines = list(self.lines)
        for place in places:
            lines[place] = " ".join(change(lines[place].split()))
        return "\n".join(lines).encode("utf-8")

    def late(self, places: List[int]) -> bytes:
        lines = list(self.lines)
        for before, place in zip(places, places[1:]):
            lines[place] = " ".join(self.lines[place].split()[:2] + self.lines[before].split()[2:])
        return "\n".join(lines).encode("utf-8")

    def number(self, places: List[int], at: int, change: Callable[[float], float]) -> bytes:
        return self.changed(places, lambda words: [*words[:at], repr(change(float(words[at]))), *words[at + 1:]])

    def without(self, places: List[int]) -> bytes:
        return "\n".join(line for i, line in enumerate(self.lines) if i not in places).encode("utf-8")


def solve_faults(data: bytes) -> Iterator[Tuple[str, bytes]]:
    faults = Faults(data)
    pose, lens, film = (faults.at("camera", word) for word in ("pose", "lens", "film_back"))
    yield "camera a frame late", faults.late(pose)
    yield "camera not known in a frame", faults.without(pose[3:4])
    yield "zoom a frame late", faults.late(lens)
    yield "focal length", faults.number(lens, 2, lambda value: value * 1.01)
    yield "film of the raster", faults.number(film, 1, lambda value: value / 2.0)
    yield "film's height", faults.number(film, 2, lambda value: value * 2.0)
    yield "turned the other way", faults.changed(pose, lambda words: [
        *words[:2], *(words[2 + 3 * (i % 3) + i // 3] for i in range(9)), *words[11:]])
    yield "six digits", faults.changed(pose, lambda words: [*words[:2], *(f"{float(word):.6g}" for word in words[2:])])
    yield "17 digits", faults.changed(pose, lambda words: [*words[:2], *(f"{float(word):.17g}" for word in words[2:])])
    position, holder = faults.at("tracker", "position"), faults.at("tracker", "object")
    yield "y of a point", faults.number(position, 3, lambda value: -value)
    yield "a point of nothing", faults.without(holder)
    yield "a point of another object", faults.changed(holder, lambda words: [words[0], "1" if words[1] != "1" else "2"])
    yield "an object a frame late", faults.late(faults.at("object", "pose"))
    yield "frames from 0", re.sub(rb"frames 1001 ", b"frames 0 ", data)
    yield "a scene without its pose", faults.without([i for i, line in enumerate(faults.lines) if line.startswith("pose ")])
    yield "faces turned over", faults.changed(faults.at("mesh", "face"), lambda words: [words[0], *words[:0:-1]])
    yield "UV upside down", faults.number(faults.at("mesh", "uv"), 2, lambda value: 1.0 - value)
    yield "mesh a vertex off", faults.number(faults.at("mesh", "v")[:1], 1, lambda value: value + 1e-6)
    yield "a word too many", data.replace(b"\nend\n", b"\nwhatever 1\nend\n", 1)


def flat_faults(data: bytes) -> Iterator[Tuple[str, bytes]]:
    faults = Faults(data)
    image = faults.at("tracker", "image")
    yield "a corner a frame late", faults.late(image)
    yield "y flipped", faults.number(image, 3, lambda value: 576.0 - value)
    yield "a thousandth of a pixel", faults.number(image[3:4], 2, lambda value: value + 1e-3)
    yield "a frame less", faults.without(image[-1:])
    yield "another corner's name", data.replace(b" lower left\"", b" LOWER\"").replace(b" lower right\"", b" lower left\"").replace(
        b" LOWER\"", b" lower right\"")
    yield "shot a frame longer", faults.number(faults.at("shot", "frames"), 2, lambda value: int(value) + 1)


# ---- what is exported

def prove_solve(check: Check, case: solve_cases.Case) -> None:
    contents = case.contents()
    check.prove(SOLVE, case.title(), case.project, lambda data: judge_solve(data, contents), [*case.arguments(), "--quiet"],
                solve_faults if case.title() == "everything" else None)


def two_layers() -> Dict[str, Any]:
    """A second layer of another range, hidden, with a name that has to be quoted."""
    project = shots.hand_made(shots.STRONG)
    record = project["layers"][0]
    second = {**record, "name": "Back \"wall\" \\", "in": 9, "out": 25, "hidden": True,
              "tracking": [{**record["tracking"][0], "firstFrame": 12}]}
    return {**project, "layers": [record, second]}


def prove_flat(check: Check, name: str, project: Dict[str, Any], layers: List[int], *arguments: str, faulty: bool = False) -> None:
    wanted = [PlanarLayer(project, project["layers"][i]) for i in layers]
    check.prove(FLAT, " ".join([name, *arguments]).replace("--", ""), project, lambda data: judge_flat(data, wanted),
                [*arguments, "--quiet"], flat_faults if faulty else None)


def body(check: Check) -> None:
    check.may_warn = ("no hierarchy:", "have one name:", "points up to", "Auto feature tracks will not be exported")
    goldens = check.goldens_project()
    check.verdict(SOLVE, "golden", judge_solve(check.golden(SOLVE), SceneContents(SceneModel(goldens))))
    check.verdict(FLAT, "golden", judge_flat(check.golden(FLAT), [PlanarLayer(goldens)]))
    check.scratch.joinpath(model_file.NAME).write_text(model_file.TEXT, encoding="utf-8")
    for case in solve_cases.cases():
        prove_solve(check, case)
    prove_flat(check, "wide", shots.hand_made(shots.STRONG), [0], faulty=True)
    prove_flat(check, "fields", shots.interlaced(), [0])
    prove_flat(check, "two", two_layers(), [0, 1], "--layers", "all")
    prove_flat(check, "two", two_layers(), [0], "--layers", "visible")


if __name__ == "__main__":
    sys.exit(checking.run(__doc__, body, VERIFIES))
