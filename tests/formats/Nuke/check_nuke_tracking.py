"""Proves that pins and trackers in Nuke scripts, and plain coordinate files, follow the tracked plane.

usage: check_nuke_tracking.py MARLO_EXPORT SOURCE_DIR SCRATCH_DIR

The annotated corners of a sheet of paper in a video, and projects that are made here, go through every tracking format
of Nuke. Then faults are put into the exported texts, and each has to be noticed.
"""

import copy
import json
import re
import sys
from dataclasses import dataclass
from pathlib import Path
from typing import Any, Callable, Dict, Iterator, List, Optional, Tuple

import numpy as np

import checking
import nuke_script
import shape_projects
import shots
from checking import Check, Fault
from findings import Findings
from keyframe_text import half_units
from planar import PlanarProject, Shot
from shape_model import Layer
from text_lines import TextError, decoded, six_digits

# Allowance for the arithmetic of doubles: coordinates go through a few homographies.
ARITHMETIC = 1e-8

# The corners in Nuke's order: lower left, lower right, upper right, upper left.
ORDER = (0, 1, 3, 2)

_KEY = re.compile(r"x(-?[0-9]+)")
_CONSTANT = {value: ["curve", "K", "x1", value] for value in "01"}
_HEADER = [["5", "1", "20", "enable", "e", "1"], ["3", "1", "75", "name", "name", "1"],
           ["2", "1", "58", "track_x", "track_x", "1"], ["2", "1", "58", "track_y", "track_y", "1"],
           ["2", "1", "63", "offset_x", "offset_x", "1"], ["2", "1", "63", "offset_y", "offset_y", "1"]]


@dataclass(frozen=True)
class Track:
    """What the nodes of one view have to show: points (frames, points, 2), in pixels with y up, and their frames."""
    view: str
    frames: np.ndarray
    points: np.ndarray


def corner_track(shot: Shot, offset: int, view: str = "") -> Track:
    """Of fields the distance in y from the first sample counts twice, and the offset stays in host frames."""
    points = shot.corners * [1.0, -1.0] + [0.0, shot.height]
    points = (points - points[:1]) * [1.0, shot.line_height] + points[:1]
    return Track(view, (shot.first + np.arange(len(points))) / shot.line_height + offset, points[:, ORDER])


def mesh_track(project: Dict[str, Any], view: int, name: str = "") -> Track:
    layer = Layer(project, project["layers"][0], view)
    views = project.get("views", ["main"])
    points = np.array([layer.mesh(views, frame) for frame in layer.frames()])
    return Track(name, np.array(layer.frames()) + layer.offset, points)


# ---- reading

def curve(words: Any) -> Tuple[List[int], np.ndarray]:
    if not isinstance(words, list) or words[:1] != ["curve"] or len(words) % 2 == 0:
        raise TextError(f"{str(words)[:60]} is not a curve")
    keys = [_KEY.fullmatch(word) for word in words[1::2]]
    if None in keys:
        raise TextError(f"frames of {str(words)[:60]}")
    return [int(key.group(1)) for key in keys], np.array([six_digits(word) for word in words[2::2]])


def pin_points(knobs: List[Any], name: str) -> List[Any]:
    """The curves of a corner pin, x and y of each of the four corners."""
    if [knob[0] for knob in knobs] != ["to1", "to2", "to3", "to4", "from1", "from2", "from3", "from4", "name"]:
        raise TextError(f"knobs {[knob[0] for knob in knobs]}")
    base = [["from1", ["0", "0"]], ["from2", ["width", "0"]], ["from3", ["width", "height"]], ["from4", ["0", "height"]]]
    if knobs[4:8] != base:
        raise TextError(f"base of the pin: {knobs[4:8]}")
    if " ".join(knobs[8][1:]) != "CornerPin2D_" + name:
        raise TextError(f"name {knobs[8][1:]}")
    if any(len(knob) != 2 or len(knob[1]) != 2 for knob in knobs[:4]):
        raise TextError("a corner is an x and a y curve")
    return [knob[1] for knob in knobs[:4]]


def tracker_points(knobs: List[Any], name: str, row_name: Callable[[int], str], count: str) -> List[Any]:
    if [knob[0] for knob in knobs] != ["inputs", "tracks", "name"] or knobs[0] != ["inputs", "0"]:
        raise TextError(f"knobs {[knob[0] for knob in knobs]}")
    if " ".join(knobs[2][1:]) != "Tracker_" + name:
        raise TextError(f"name {knobs[2][1:]}")
    head, columns, rows = knobs[1][1]
    if head != ["1", "6", count] or columns != _HEADER:
        raise TextError("header of the tracks")
    points = []
    for i, row in enumerate(rows):
        label = row_name(i + 1)
        if len(row) != 6 or row[0] != _CONSTANT["1"] or row[4:] != [_CONSTANT["0"]] * 2:
            raise TextError(f"row {i + 1} of the tracks")
        # A name of two words reads as a list of two.
        if (row[1] if isinstance(row[1], str) else " ".join(row[1])) != label:
            raise TextError(f"row {i + 1} is called {row[1]}")
        points.append(row[2:4])
    return points


def judge_script(data: bytes, key: str, layer: str, tracks: List[Track], scratch: Path) -> Findings:
    findings = Findings()
    try:
        nodes = nuke_script.read_nodes(data, scratch / "judged.nk")
        node_class = "CornerPin2D" if key == "nuke_corner_pin" else "Tracker4"
        if not findings.same("nodes", [node[0] for node in nodes], [node_class] * len(tracks)):
            return findings
        for (_, knobs), track in zip(nodes, tracks):
            name = layer + ("_" + track.view if track.view else "")
            if key == "nuke_corner_pin":
                points = pin_points(knobs, name)
            elif key == "nuke_tracker":
                points = tracker_points(knobs, name, lambda i: f"track {i}", "4")
            else:
                points = tracker_points(knobs, name, str, str(track.points.shape[1]))
            _compare(findings, [[curve(axis) for axis in point] for point in points], track, key)
    except (TextError, ValueError, IndexError, TypeError) as error:
        findings.problem(f"{type(error).__name__}: {error}")
    return findings


def _compare(findings: Findings, points: List[List[Tuple[List[int], np.ndarray]]], track: Track, key: str) -> None:
    # Frames are rounded, halves upwards: fields print each whole number twice.
    frames = [int(frame) for frame in np.floor(track.frames.astype(np.float32) + 0.5)]
    if not findings.same("points", len(points), track.points.shape[1]):
        return
    for i, point in enumerate(points):
        for axis in range(2):
            if findings.same(f"frames of point {i + 1}", point[axis][0], frames):
                _compare_values(findings, f"{track.view or 'view'}, point {i + 1}, {'xy'[axis]}", point[axis][1],
                                track.points[:, i, axis], key)


def _compare_values(findings: Findings, place: str, found: np.ndarray, expected: np.ndarray, key: str) -> None:
    """Numbers have six digits of a single-precision float; those of a mesh were one, from 0 to 1, before as well, and
    plain text has them of a double."""
    floats = {"nuke_ascii": 0.0, "nuke_warp_lattice_to_tracker": 3.0}.get(key, 1.0)
    bound = half_units(found) + floats * np.spacing(np.abs(expected).astype(np.float32)) / 2.0 + ARITHMETIC
    findings.compare("points, px", found, expected, bound, place)


def judge_ascii(files: Dict[str, bytes], tracks: List[Track], line_height: int, stem: str = "points") -> Findings:
    """Files of a folder; of fields every other sample is written, in the lines of a field."""
    findings = Findings()
    names = [f"{stem}_Tracker{track.view}{i}.txt" for track in tracks for i in (1, 2, 3, 4)]
    if not findings.same("files", sorted(files), sorted(names)):
        return findings
    for track in tracks:
        points = track.points[::line_height]
        for i in range(4):
            name = f"{stem}_Tracker{track.view}{i + 1}.txt"
            try:
                lines = decoded(files[name]).split("\n")
                rows = [[six_digits(word) for word in line.split(" ")] for line in lines[:-1]]
                found = np.array(rows, float).reshape(-1, 2)
            except (TextError, ValueError) as error:
                findings.problem(f"{name}: {error}")
                continue
            if findings.same(f"{name}: end and lines", (lines[-1], len(found)), ("", len(points))):
                for axis in range(2):
                    _compare_values(findings, f"{name}, {'xy'[axis]}", found[:, axis], points[:, i, axis], "nuke_ascii")
    return findings


# ---- faults

def script_faults(text: str) -> Iterator[Fault]:
    """The first curve of a script is x of its first point, the next one y."""
    curves = list(re.finditer(r"\{curve (x[^}]*)\}", text))

    def put(name: str, at: int, change: Callable[[List[str]], List[str]]) -> Fault:
        match = curves[at]
        words = change(match.group(1).split(" "))
        return name, (text[:match.start(1)] + " ".join(words) + text[match.end(1):]).encode("utf-8")

    def exchanged(name: str, one: int, other: int) -> Fault:
        parts = [text[:curves[one].start()], curves[other].group(), text[curves[one].end():curves[other].start()],
                 curves[one].group(), text[curves[other].end():]]
        return name, "".join(parts).encode("utf-8")

    def raised(words: List[str], units: float = 4.0) -> List[str]:
        at = len(words) // 4 * 2 + 1
        return words[:at] + [f"{float(words[at]) + units * float(half_units(float(words[at]))):.6g}"] + words[at + 1:]

    yield exchanged("corners 1 and 2 swapped", 0, 2)
    yield exchanged("x of points 3 and 4 swapped", 4, 6)
    yield exchanged("x and y swapped", 0, 1)
    for at in (1, 3, 5, 7):
        yield put(f"y flipped in curve {at}", at, lambda words: [
            word if word.startswith("x") else f"{1080.0 - float(word):.6g}" for word in words])
    for at in range(len(curves)):
        yield put(f"curve {at} without its first key", at, lambda words: words[2:])
        yield put(f"curve {at} without its last key", at, lambda words: words[:-2])
        yield put(f"curve {at} off by 2 units", at, raised)
    yield put("a frame late", 0, lambda words: [
        f"x{int(word[1:]) + 1}" if word[0] == "x" else word for word in words])
    yield put("too many digits", 1, lambda words: words[:-1] + ["12.34567"])
    yield checking.replaced(text, "brace lost", "}", "", last=True)
    yield checking.replaced(text, "inner brace lost", "{curve", "curve")
    yield checking.replaced(text, "another name", "\nname Tracker_" if text.startswith("Tracker") else " name Corner", "\nname ")
    if text.startswith("CornerPin2D"):
        yield checking.replaced(text, "base swapped", "from3 {{width} {height}}", "from3 {{height} {width}}")
        yield checking.replaced(text, "base in numbers", "{width}", "1920")
        yield checking.replaced(text, "knob lost", " from4 {0 {height}}\n", "")
    else:
        yield checking.replaced(text, "track count", "{ 1 6 ", "{ 1 6 1")
        yield checking.replaced(text, "track name", '1"', '9"')
        yield checking.replaced(text, "offset lost", "{curve K x1 0} {curve K x1 0}", "{curve K x1 0}")
        yield checking.replaced(text, "a row disabled", "{curve K x1 1}", "{curve K x1 0}")


# ---- projects

def with_mesh() -> Dict[str, Any]:
    """A tracked mesh of six vertices under corrections by hand; frames without data take the nearest."""
    project = shots.hand_made(shots.STRONG)
    layer = project["layers"][0]
    layer["mesh"] = {"vertexCount": 6, "faceCounts": [4, 4], "faceIndices": [0, 1, 4, 3, 1, 2, 5, 4], "tracks": [
        {"firstFrame": 12, "positions": [float(value) for value in _grid(range(12, 31)).ravel()]}]}
    return project


def _grid(frames: range) -> np.ndarray:
    start = np.array([[500, 60], [570, 66], [640, 75], [490, 210], [555, 204], [622, 198]], float)
    return np.array([start + [1.25 * (f - 12), -0.7 * (f - 12)] + 0.01 * (f - 12) * start[:, ::-1] for f in frames])


def two_views() -> Dict[str, Any]:
    project = shape_projects.stereo()
    layer = project["layers"][0]
    layer["name"] = "A%1 sign"
    layer["mesh"] = {"vertexCount": 6, "faceCounts": [4, 4], "faceIndices": [0, 1, 4, 3, 1, 2, 5, 4], "tracks": [
        {"view": "left", "firstFrame": 0, "positions": [float(value) for value in _grid(range(0, 15)).ravel()]},
        {"view": "right", "firstFrame": 0, "positions": [float(value) + 3.0 for value in _grid(range(0, 15)).ravel()]}]}
    project["currentLayer"] = layer["name"]
    return project


def in_one_view(project: Dict[str, Any], view: int) -> PlanarProject:
    single = copy.deepcopy(project)
    name = single["views"][view]
    single["layers"][0]["tracking"] = [t for t in single["layers"][0]["tracking"] if t["view"] == name]
    return PlanarProject(single)


# ---- the check

def export_ascii(check: Check, project: Path, folder: str, arguments: Tuple[str, ...]) -> Optional[Dict[str, bytes]]:
    target = check.scratch / folder / "ascii"
    target.mkdir(parents=True, exist_ok=True)
    for file in target.iterdir():
        file.unlink()
    status, errors = check.tool.run("export", project, "nuke_ascii", *arguments, "-o", target / "points.txt")
    if status != 0 or errors:
        check.fail(f"{folder}, nuke_ascii: status {status}: {' / '.join(errors)}")
        return None
    return {file.name: file.read_bytes() for file in target.iterdir()}


def check_corners(check: Check, name: str, project: Path, layer: str, tracks: List[Track], plain: List[Track],
                  line_height: int, arguments: Tuple[str, ...] = ()) -> None:
    """`plain` are the tracks in the lines of the clip's raster."""
    folder = name.replace(" ", "_")
    for key in ("nuke_corner_pin", "nuke_tracker"):
        data = check.export(project, key, folder, ".nk", *arguments)
        if data is not None:
            check_script(check, f"{name}, {key}", data, key, layer, tracks)
    files = export_ascii(check, project, folder, arguments)
    if files is None:
        return
    if check.verdict(f"{name}, nuke_ascii", judge_ascii(files, plain, line_height)):
        names = sorted(files)
        for i, one in enumerate(names):
            rest = {other: data for other, data in files.items() if other != one}
            rows = [line.split() for line in files[one].splitlines()]
            flipped = b"".join(b"%s %.6g\n" % (x, 1080.0 - float(y)) for x, y in rows)
            changes = {"a line lost": files[one].split(b"\n", 1)[1], "y flipped": flipped,
                       "another corner": files[names[i - 1]]}
            faults = [("a file lost", rest)] + [(fault, dict(files, **{one: data})) for fault, data in changes.items()]
            for fault, faulty in faults:
                if not judge_ascii(faulty, plain, line_height).faults():
                    check.fail(f"{name}, nuke_ascii: not noticed: {fault}, {one}")


def check_script(check: Check, name: str, data: bytes, key: str, layer: str, tracks: List[Track]) -> None:
    judge = lambda text: judge_script(text, key, layer, tracks, check.scratch)
    if check.verdict(name, judge(data)):
        check.faults(name, data, script_faults(data.decode("utf-8")), judge)


def shot_case(check: Check, name: str, project: Dict[str, Any], shot: Shot, arguments: Tuple[str, ...] = (),
              saved: Optional[Path] = None) -> None:
    offset = project["clips"][0].get("frameOffset", 0)
    track = corner_track(shot, offset)
    raster = Track("", track.frames, (shot.corners * [1.0, -1.0] + [0.0, shot.height])[:, ORDER])
    check_corners(check, name, saved or check.saved(name.replace(" ", "_"), project), project["layers"][0]["name"],
                  [track], [raster], shot.line_height, arguments)


def goldens(check: Check, folder: Path) -> None:
    """Judges the checked-in exports as they stand."""
    project = json.loads((folder.parent.parent / "project.json").read_text(encoding="utf-8"))
    layer = project["layers"][0]["name"]
    tracks = [corner_track(PlanarProject(project).shot("", "adjusted"), project["clips"][0].get("frameOffset", 0))]
    for key in ("nuke_corner_pin", "nuke_tracker", "nuke_warp_lattice_to_tracker"):
        shown = [mesh_track(project, 0)] if key == "nuke_warp_lattice_to_tracker" else tracks
        data = (folder / key / "out.nk").read_bytes()
        check.verdict(f"golden, {key}", judge_script(data, key, layer, shown, check.scratch))
    files = {file.name: file.read_bytes() for file in (folder / "nuke_ascii").iterdir()}
    check.verdict("golden, nuke_ascii", judge_ascii(files, tracks, 1, "out"))


def body(check: Check, source: Path) -> None:
    goldens(check, Path(__file__).with_name("golden"))
    corners = shots.paper_corners(source / "tests" / "data" / "paper004_corners.txt")
    sample = source / "samples" / "paper004.json"
    imported = json.loads(sample.read_text(encoding="utf-8"))
    shot_case(check, "paper", imported, shots.paper_shot(corners, imported), saved=sample)
    strong, gentle, fields = shots.hand_made(shots.STRONG), shots.hand_made(shots.GENTLE), shots.interlaced()
    for track in ("basic", "adjusted", "offset"):
        shot_case(check, f"strong {track}", strong, PlanarProject(strong).shot("", track), ("--track", track))
    shot_case(check, "stabilized", gentle, PlanarProject(gentle).shot("", "stabilized"), ("--track", "stabilized"))
    shot_case(check, "inverted", gentle, PlanarProject(gentle).shot("", "adjusted", True), ("--invert",))
    shot_case(check, "fields", fields, PlanarProject(fields).shot("", "adjusted"))
    stereo = two_views()
    path = check.saved("two_views", stereo)
    tracks = []
    for view in range(2):
        shot = in_one_view(stereo, view).shot("", "adjusted")
        tracks.append(corner_track(shot, stereo["clips"][0]["frameOffset"], stereo["views"][view]))
    check_corners(check, "two views", path, "A%1 sign", tracks, tracks, 1, ("--view", "all"))
    key, mesh = "nuke_warp_lattice_to_tracker", with_mesh()
    data = check.export(check.saved("mesh", mesh), key, "mesh", ".nk")
    if data is not None:
        check_script(check, "mesh", data, key, "Poster", [mesh_track(mesh, 0)])
    data = check.export(path, key, "two_views", ".nk", "--view", "all")
    if data is not None:
        check_script(check, "mesh in two views", data, key, "A%1 sign",
                     [mesh_track(stereo, view, stereo["views"][view]) for view in range(2)])


if __name__ == "__main__":
    sys.exit(checking.run(__doc__, body))
