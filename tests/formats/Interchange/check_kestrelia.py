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
import scene_shots
import shots
import solve_cases
import solve_scene
from checking import Check
from findings import Findings, judging
from kestrelia_file import IDENTITY, Record, at_frames
from planar import PlanarLayer, crossings
from scene_model import SceneModel, keyed
from solve_scene import SINGLE, SceneContents

VERIFIES = {
    "kestrelia_3D": "numbers within 1e-9, the lens within half a unit of a single, points seen within 0.001 px",
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


def judge_clip(findings: Findings, shot: Record, clip: Dict[str, Any], project: Dict[str, Any]) -> None:
    fields = clip.get("interlaced", False)
    findings.same("shot", shot.name, clip["name"])
    findings.same("size", shot.one("size"), [clip["width"], clip["height"] // (2 if fields else 1)])
    findings.same("pixels, rate, fields", [shot.one(word)[0] for word in ("pixel_aspect", "frame_rate", "interlaced")],
                  [clip.get("pixelAspect", 1), project.get("frameRate", 24), fields])


class Solve:
    """A file beside the solve that it should show; raises ValueError when its shape is wrong."""

    def __init__(self, data: bytes, contents: SceneContents) -> None:
        self.model, self.contents, self.file = contents.model, contents, kestrelia_file.parse(data)
        model = self.model
        self.shot, = self.file.all("shot")
        self.frames = [frame + model.clip.get("frameOffset", 0) for frame in range(model.frames)]
        self.camera, = self.shot.all("camera")
        self.trackers, self.meshes = self.shot.all("tracker"), self.file.all("mesh")
        self.objects = {item.values[0]: item for item in self.file.all("object")}
        self.scene = matrix([self.file.one("pose", IDENTITY)] * model.frames)
        self.eye = self.scene @ matrix(at_frames(self.camera.keys("pose"), self.frames))
        self.places = [self.place(tracker) for tracker in self.trackers]

    def carrier(self, item: Record) -> np.ndarray:
        """What an item's numbers are relative to, in the world."""
        if not item.all("object"):
            return self.scene
        return self.scene @ matrix(at_frames(self.objects[item.one("object")[0]].keys("pose"), self.frames))

    def place(self, tracker: Record) -> np.ndarray:
        carrier = self.carrier(tracker)
        position = np.array(at_frames(tracker.keys("position") or {None: [np.nan] * 3}, self.frames))
        return np.einsum("fij,fj->fi", carrier[:, :3, :3], position) + carrier[:, :3, 3]

    def judge_shape(self, findings: Findings) -> None:
        clip, model = self.model.clip, self.model
        findings.same("scene", self.file.one("name"), ["Marlo Scene"])
        judge_clip(findings, self.shot, clip, model.project)
        findings.same("frames", self.shot.one("frames"), [self.frames[0], self.frames[-1]])
        reference = model.solve.get("referenceFrame", 0) + self.frames[0]
        findings.same("reference frame", self.file.one("reference_frame", [reference]), [reference])
        groups = [name for _, name in self.shot.all("group")]
        for names in (self.objects.values(), self.trackers, self.meshes):
            findings.same("names that stand twice", len(names) - len({item.name for item in names}), 0)
        findings.same("group names that stand twice", len(groups) - len(set(groups)), 0)
        points = self.contents.of_kind("point")
        if findings.same("number of trackers", len(self.trackers), len(points)):
            for tracker, node in zip(self.trackers, points):
                if not re.fullmatch(plain(node.name), tracker.name):
                    findings.problem(f"a tracker is called {tracker.name} instead of {node.name}")
                self.judge_holder(findings, tracker, node)

    def judge_holder(self, findings: Findings, tracker: Record, node: solve_scene.Node) -> None:
        """Features are in groups, points of layers may be; what moves hangs on an object of its layer."""
        holder = self.contents.nodes[node.holder]
        group = dict(self.shot.all("group")).get(tracker.one("group", [None])[0], "none")
        if not re.fullmatch(r"Marlo Features \d+" if holder.kind == "set" else f"none|{plain(holder.name)}", group):
            findings.problem(f"{tracker.name} of {holder.name} is in the group {group}")
        layer = self.contents.nodes[holder.holder] if holder.kind == "set" and holder.holder is not None else holder
        moving = [item.world is layer.world and item.moving for item in self.model.layers]
        if any(moving) and findings.same(f"{tracker.name} has an object", bool(tracker.all("object")), True):
            item = self.objects[tracker.one("object")[0]]
            if not re.fullmatch(plain(layer.name), item.name):
                findings.problem(f"{tracker.name} moves with {item.name} instead of {layer.name}")
            pose = self.carrier(tracker)
            expected = np.concatenate([layer.world.rotation * layer.world.scale[:, None, None],
                                       layer.world.position[:, :, None]], axis=2)
            findings.compare("object", pose[:, :3], expected, ARITHMETIC * (1.0 + np.abs(expected).max()), item.name)

    def judge_camera(self, findings: Findings) -> None:
        camera, place, film = self.contents.camera, self.contents.camera.place, self.contents.film
        findings.compare("lens, mm", self.camera.one("film_back"), film, 4.0 * SINGLE * film, "film")
        lens = np.array(at_frames(self.camera.keys("lens"), self.frames))
        findings.compare("lens, mm", lens[:, 0], camera.focal, SINGLE * camera.focal + 1e-9, "focal length, frame")
        findings.compare("shift, px", lens[:, 1], self.shift(), 1e-9)
        size = 1.0 + np.abs(place.position).max()
        findings.compare("camera", self.eye[:, :3, 3], place.position, ARITHMETIC * size, "frame and axis")
        turned = place.rotation * place.scale[:, None, None]
        findings.compare("turn", self.eye[:, :3, :3], turned, ARITHMETIC, "camera")
        scene = self.model.scene
        findings.compare("scene", self.scene[:, :3, 3], scene.position, ARITHMETIC)
        findings.compare("scene", self.scene[:, :3, :3], scene.rotation * scene.scale[:, None, None], ARITHMETIC)

    def shift(self) -> np.ndarray:
        """How far the picture of an eye is shifted to the right."""
        views = self.model.project.get("views", [])
        word = "shiftRight" if self.contents.view in views[1:] else "shiftLeft"
        return keyed(self.model.solve.get("stereo", {}).get(word, 0.0), self.model.frames)

    def judge_points(self, findings: Findings) -> None:
        for place, node in zip(self.places, self.contents.of_kind("point")):
            expected = node.world.position[node.shown]
            bound = ARITHMETIC * (1.0 + np.abs(expected).max())
            findings.compare("position", place[node.shown], expected, bound, node.name)

    def judge_meshes(self, findings: Findings) -> None:
        expected = self.contents.world_meshes()
        if not findings.same("number of meshes", len(self.meshes), len(expected)):
            return
        for mesh, good in zip(self.meshes, expected):
            carrier = self.carrier(mesh) @ matrix([mesh.one("pose", IDENTITY)])
            local = np.array(at_frames(mesh.rows(), self.frames))
            found = np.einsum("fij,fpj->fpi", carrier[:, :3, :3], local) + carrier[:, None, :3, 3]
            bound = ARITHMETIC * (1.0 + np.abs(good.vertices).max())
            findings.compare("vertices", found, good.vertices, bound, mesh.name)
            findings.same(f"faces of {mesh.name}", mesh.all("face"), good.faces)
            uvs = mesh.all("uv")
            if good.corner_uvs is not None and findings.same(f"UV of {mesh.name}", bool(uvs), True):
                corners = [uvs[i] for face in mesh.all("face_uv") or mesh.all("face") for i in face]
                findings.compare("UV", corners, good.corner_uvs, SINGLE * np.abs(good.corner_uvs), mesh.name)

    def judge_picture(self, findings: Findings) -> None:
        """By the page's own formula."""
        inverse, size = np.linalg.inv(self.eye), self.contents.picture
        places = np.stack(self.places, axis=1)
        seen = np.einsum("fij,fpj->fpi", inverse[:, :3, :3], places) + inverse[:, None, :3, 3]
        lens = np.array(at_frames(self.camera.keys("lens"), self.frames))[:, None, :1]
        fraction = 0.5 - lens * seen[..., :2] / (np.array(self.camera.one("film_back")) * seen[..., 2:])
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


# A layer's trackers: its corners, and perhaps where its diagonals cross.
PLACES = ("lower left", "lower right", "upper left", "upper right", "centre")


def tracked(layer: PlanarLayer) -> List[int]:
    """The frames of a layer that were tracked; it isn't seen in others."""
    track = layer.record["tracking"][0]
    first = track.get("firstFrame", layer.first)
    return [frame for frame in layer.frames() if first <= frame < first + len(track["homographies"]) // 9]


@judging
def judge_flat(findings: Findings, data: bytes, layers: List[PlanarLayer]) -> None:
    """Trackers for each layer, where its corners and its centre are seen."""
    file = kestrelia_file.parse(data)
    shot, = file.all("shot")
    first = layers[0]
    judge_clip(findings, shot, first.clip, {"frameRate": first.rate})
    findings.same("frames", shot.one("frames"), [min(tracked(layer)[0] for layer in layers) + first.offset,
                                                 max(tracked(layer)[-1] for layer in layers) + first.offset])
    findings.same("what a solve has", [*shot.all("camera"), *file.all("object"), *file.all("mesh")], [])
    trackers = shot.all("tracker")
    for layer in layers:
        places = layer.shot().corners.copy()
        places[..., 1] = layer.raster[1] - places[..., 1]
        places = np.concatenate([places, crossings(places)[:, None]], axis=1)[[f - layer.first for f in tracked(layer)]]
        for index, word in enumerate(PLACES):
            found = [tracker for tracker in trackers if re.fullmatch(plain(f"{layer.name} {word}"), tracker.name)]
            if not found:
                findings.same(f"{layer.name} has no {word}", word, "centre")
                continue
            trackers.remove(found[0])
            keys = found[0].keys("image")
            if findings.same(f"frames of {layer.name}", list(keys), [f + layer.offset for f in tracked(layer)]):
                findings.compare("tracker, px", list(keys.values()), places[:, index], SOLVED, found[0].name)
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
    yield "a scene without its pose", re.sub(rb"\npose [^\n]*", b"", data)
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
    names = {b"left": b"right", b"right": b"left"}
    yield "sides exchanged", re.sub(rb"(left|right)\"", lambda match: names[match[1]] + b'"', data)
    yield "shot a frame longer", faults.number(faults.at("shot", "frames"), 2, lambda value: int(value) + 1)


# ---- what is exported

def prove_solve(check: Check, case: solve_cases.Case) -> None:
    contents = case.contents(eyes=True)
    faults = solve_faults if case.title() == "everything" else None
    check.prove(SOLVE, case.title(), case.project, lambda data: judge_solve(data, contents),
                [*case.arguments(), "--quiet"], faults)


def two_layers() -> Dict[str, Any]:
    """A second layer of another range, hidden, with a name that has to be quoted."""
    project = shots.hand_made(shots.STRONG)
    record = project["layers"][0]
    second = {**record, "name": "Back \"wall\" \\", "in": 9, "out": 25, "hidden": True,
              "tracking": [{**record["tracking"][0], "firstFrame": 12}]}
    return {**project, "layers": [record, second]}


def prove_flat(check: Check, name: str, project: Dict[str, Any], count: int, *arguments: str) -> None:
    wanted = [PlanarLayer(project, record) for record in project["layers"][:count]]
    check.prove(FLAT, " ".join([name, *arguments]).replace("--", ""), project, lambda data: judge_flat(data, wanted),
                [*arguments, "--quiet"], flat_faults if name == "wide" else None)


def body(check: Check) -> None:
    check.may_warn = ("Several things have one name", "A model isn't exported", "between the eyes",
                      "Auto feature tracks will not be exported")
    goldens = check.goldens_project()
    check.verdict(SOLVE, "golden", judge_solve(check.golden(SOLVE), SceneContents(SceneModel(goldens))))
    check.verdict(FLAT, "golden", judge_flat(check.golden(FLAT), [PlanarLayer(goldens)]))
    check.scratch.joinpath(model_file.NAME).write_text(model_file.TEXT, encoding="utf-8")
    shifted = scene_shots.rig()
    shifted["solve"]["stereo"].update(shiftLeft=-7.5, shiftRight={"frames": [1, 9], "values": [3, 11]})
    rigs = [solve_cases.Case("shifted rig", shifted, view) for view in ("left", "right")]
    for case in (*solve_cases.cases(check.json("samples/castle.json")), *rigs):
        prove_solve(check, case)
    prove_flat(check, "wide", shots.hand_made(shots.STRONG), 1)
    prove_flat(check, "fields", shots.interlaced(), 1)
    prove_flat(check, "two", two_layers(), 2, "--layers", "all")
    prove_flat(check, "two", two_layers(), 1, "--layers", "visible")


if __name__ == "__main__":
    sys.exit(checking.run(__doc__, body, VERIFIES))
