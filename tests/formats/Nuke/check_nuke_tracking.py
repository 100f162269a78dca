"""Proves that pins and trackers in Nuke scripts, and plain coordinate files, follow the tracked plane.

usage: check_nuke_tracking.py MARLO_EXPORT SOURCE_DIR SCRATCH_DIR

The annotated corners of a sheet of paper in a video, and projects that are made here, go through every tracking format
of Nuke. Then faults are put into the exported texts, and each has to be noticed.
"""

import re
import sys
from dataclasses import dataclass, replace
from typing import Any, Dict, List, Tuple

import numpy as np

import checking
import nuke_script
import shape_projects
import shots
from checking import Check, Project
from faults import Faults
from findings import Findings, judging
from planar import PlanarLayer, Shot
from texts import Lines, TextError, decoded, six_digits

VERIFIES = {
    "nuke_corner_pin": "each number within half a unit of its sixth digit, as a float",
    "flowbox_corner_pin": "each number within half a unit of its sixth digit, as a float",
    "nuke_tracker": "each number within half a unit of its sixth digit, as a float",
    "nuke_warp_lattice_to_tracker": "each number within half a unit of its sixth digit, as a float from 0 to 1",
    "nuke_ascii": "each number within half a unit of its sixth digit",
}
PINS, MESH, ASCII = ("nuke_corner_pin", "flowbox_corner_pin"), "nuke_warp_lattice_to_tracker", "nuke_ascii"

# Allowance for the arithmetic of doubles: coordinates go through a few homographies.
ARITHMETIC = 1e-8

# The corners in Nuke's order: lower left, lower right, upper right, upper left.
ORDER = (0, 1, 3, 2)

# Stands for a curve in the lists of a node.
CURVE = object()

_KEY = re.compile(r"x(-?[0-9]+)")
_CONSTANT = {value: ["curve", "K", "x1", value] for value in "01"}
_HEADER = [["5", "1", "20", "enable", "e", "1"], ["3", "1", "75", "name", "name", "1"],
           ["2", "1", "58", "track_x", "track_x", "1"], ["2", "1", "58", "track_y", "track_y", "1"],
           ["2", "1", "63", "offset_x", "offset_x", "1"], ["2", "1", "63", "offset_y", "offset_y", "1"]]
_BASE = [["from1", ["0", "0"]], ["from2", ["width", "0"]], ["from3", ["width", "height"]], ["from4", ["0", "height"]]]


@dataclass(frozen=True)
class Track:
    """What the nodes of one view have to show: points (frames, points, 2), in pixels with y up, and their frames."""
    view: str
    frames: np.ndarray
    points: np.ndarray


def raster_track(shot: Shot, offset: int, view: str = "") -> Track:
    """In the lines of the clip's raster. The offset stays in host frames."""
    points = shot.corners * [1.0, -1.0] + [0.0, shot.height]
    return Track(view, (shot.first + np.arange(len(points))) / shot.line_height + offset, points[:, ORDER])


def corner_track(shot: Shot, offset: int, view: str = "") -> Track:
    """Of fields the distance in y from the first sample counts twice."""
    track = raster_track(shot, offset, view)
    points = (track.points - track.points[:1]) * [1.0, shot.line_height] + track.points[:1]
    return replace(track, points=points)


def mesh_track(project: Dict[str, Any], view: int = 0, name: str = "") -> Track:
    layer = PlanarLayer(project, view=view)
    return Track(name, np.array(layer.frames()) + layer.offset, np.array([layer.mesh(at) for at in layer.frames()]))


# ---- reading

def curve(words: Any) -> Tuple[List[int], np.ndarray]:
    if not isinstance(words, list) or words[:1] != ["curve"] or len(words) % 2 == 0:
        raise TextError(f"{str(words)[:60]} is not a curve")
    keys = [_KEY.fullmatch(word) for word in words[1::2]]
    if None in keys:
        raise TextError(f"frames of {str(words)[:60]}")
    return [int(key.group(1)) for key in keys], np.array([six_digits(word) for word in words[2::2]])


def node_of(key: str, name: str, count: int) -> List[Any]:
    """A node with as many points, as the lists of its script; a name of two words reads as a list of two."""
    def words(text: str) -> Any:
        return text.split(" ") if " " in text else text
    if key in PINS:
        corners = [[f"to{corner}", [CURVE, CURVE]] for corner in (1, 2, 3, 4)]
        return ["CornerPin2D", [*corners, *_BASE, ["name", *f"CornerPin2D_{name}".split(" ")]]]
    labels = [words(str(i + 1) if key == MESH else f"track {i + 1}") for i in range(count)]
    rows = [[_CONSTANT["1"], label, CURVE, CURVE, _CONSTANT["0"], _CONSTANT["0"]] for label in labels]
    return ["Tracker4", [["inputs", "0"], ["tracks", [["1", "6", str(count)], _HEADER, rows]],
                         ["name", *f"Tracker_{name}".split(" ")]]]


def curves_of(found: Any, expected: Any) -> List[Tuple[List[int], np.ndarray]]:
    """What stands where curves are expected; everything else has to be what is expected."""
    if expected is CURVE:
        return [curve(found)]
    if not isinstance(expected, list) or not isinstance(found, list) or len(found) != len(expected):
        if found != expected:
            raise TextError(f"{str(found)[:60]} instead of {str(expected)[:60]}")
        return []
    return [one for pair in zip(found, expected) for one in curves_of(*pair)]


@judging
def judge(findings: Findings, data: bytes, key: str, layer: str, tracks: List[Track]) -> None:
    nodes = nuke_script.nodes(decoded(data))
    if findings.same("number of nodes", len(nodes), len(tracks)):
        for node, track in zip(nodes, tracks):
            name = layer + ("_" + track.view if track.view else "")
            _compare(findings, curves_of(node, node_of(key, name, track.points.shape[1])), track, key)


def _compare(findings: Findings, curves: List[Tuple[List[int], np.ndarray]], track: Track, key: str) -> None:
    # Frames are rounded, halves upwards: fields print each whole number twice.
    frames = [int(frame) for frame in np.floor(track.frames.astype(np.float32) + 0.5)]
    for at, (found_frames, found) in enumerate(curves):
        place = f"{track.view or 'view'}, point {at // 2 + 1}, {'xy'[at % 2]}"
        if findings.same(f"frames of {place}", found_frames, frames):
            _compare_values(findings, place, found, track.points[:, at // 2, at % 2], key)


def _compare_values(findings: Findings, place: str, found: np.ndarray, expected: np.ndarray, key: str) -> None:
    """Numbers have six digits of a single-precision float; those of a mesh were one, from 0 to 1, before as well, and
    plain text has them of a double."""
    floats = {ASCII: 0.0, MESH: 3.0}.get(key, 1.0)
    allowed = floats * np.spacing(np.abs(expected).astype(np.float32)) / 2.0 + ARITHMETIC
    findings.printed("points, px", found, expected, allowed, place)


@judging
def judge_ascii(findings: Findings, files: Dict[str, bytes], tracks: List[Track], line_height: int) -> None:
    """Files of a folder; of fields every other sample is written, in the lines of a field."""
    names = [f"out_Tracker{track.view}{i}.txt" for track in tracks for i in (1, 2, 3, 4)]
    if not findings.same("files", sorted(files), sorted(names)):
        return
    for track in tracks:
        points = track.points[::line_height]
        for i in range(4):
            name = f"out_Tracker{track.view}{i + 1}.txt"
            lines = Lines(decoded(files[name]))
            found = np.array([[six_digits(word) for word in lines.match("([^ ]+) ([^ ]+)")] for _ in points])
            lines.end()
            for axis in range(2):
                _compare_values(findings, f"{name}, {'xy'[axis]}", found[:, axis], points[:, i, axis], ASCII)


# ---- faults

def script_faults(data: bytes) -> Faults:
    """The first curve of a script is x of its first point, the next one y."""
    faults = Faults(data)
    curves = faults.places(r"\{curve (x[^}]*)\}")
    frames = [faults.places(r"x(-?\d+)", curve) for curve in curves]
    values = [faults.places(r"(?<= )[-.\de+]+", curve) for curve in curves]
    faults.swap("corners 1 and 2 swapped", curves[0:1], curves[2:3])
    faults.swap("x of points 3 and 4 swapped", curves[4:5], curves[6:7])
    faults.swap("x and y swapped", curves[0:1], curves[1:2])
    for at in (1, 3, 5, 7):
        faults.number(f"y flipped in curve {at}", values[at], lambda y: 1080.0 - y)
    for at, curve_place in enumerate(curves):
        middle = len(values[at]) // 2
        faults.drop(f"curve {at} without its first key", (curve_place[0], frames[at][1][0] - 1))
        faults.drop(f"curve {at} without its last key", (values[at][-2][1], curve_place[1]))
        faults.off(f"curve {at}", values[at][middle])
    faults.edit("a frame late", frames[0], lambda frame: str(int(frame) + 1))
    faults.put("too many digits", (values[1][-1], "12.34567"))
    braces = (("brace lost", "}", "", True), ("inner brace lost", "{curve", "curve"))
    if faults.text.startswith("CornerPin2D"):
        faults.replace_all((
            *braces, ("another name", " name Corner", "\nname "), ("base in numbers", "{width}", "1920"),
            ("base swapped", "from3 {{width} {height}}", "from3 {{height} {width}}"),
            ("knob lost", " from4 {0 {height}}\n", "")))
    else:
        faults.replace_all((
            *braces, ("another name", "\nname Tracker_", "\nname "), ("track count", "{ 1 6 ", "{ 1 6 1"),
            ("track name", '1"', '9"'), ("offset lost", "{curve K x1 0} {curve K x1 0}", "{curve K x1 0}"),
            ("a row disabled", "{curve K x1 1}", "{curve K x1 0}")))
    return faults


def ascii_faults(files: Dict[str, bytes]) -> List[Tuple[str, Dict[str, bytes]]]:
    """Of each file in turn."""
    found, names = [], sorted(files)
    for i, one in enumerate(names):
        faults = Faults(files[one])
        faults.drop("a line lost", faults.place(r"^.*?\n"))
        faults.number("y flipped", faults.places(r"(?<= )\S+$"), lambda y: 1080.0 - y)
        faults.off("a number", faults.places(r"\S+")[7])
        changed = [(f"{name}, {one}", {**files, one: text}) for name, text in faults]
        lost = {name: text for name, text in files.items() if name != one}
        found += changed + [(f"lost: {one}", lost), (f"another corner in {one}", {**files, one: files[names[i - 1]]})]
    return found


# ---- projects

def with_mesh() -> Dict[str, Any]:
    """A tracked mesh of six vertices under corrections by hand; frames without data take the nearest."""
    project = shots.hand_made(shots.STRONG)
    project["layers"][0]["mesh"] = _mesh({"firstFrame": 12, "positions": _grid(range(12, 31))})
    return project


def _mesh(*tracks: Dict[str, Any]) -> Dict[str, Any]:
    return {"vertexCount": 6, "faceCounts": [4, 4], "faceIndices": [0, 1, 4, 3, 1, 2, 5, 4], "tracks": list(tracks)}


def _grid(frames: range, shift: float = 0.0) -> List[float]:
    start = np.array([[500, 60], [570, 66], [640, 75], [490, 210], [555, 204], [622, 198]], float)
    grid = [start + [1.25 * (f - 12), -0.7 * (f - 12)] + 0.01 * (f - 12) * start[:, ::-1] for f in frames]
    return [float(value) + shift for value in np.array(grid).ravel()]


def two_views() -> Dict[str, Any]:
    project = shape_projects.stereo()
    layer = project["layers"][0]
    project["currentLayer"] = layer["name"] = "A%1 sign"
    layer["mesh"] = _mesh(*({"view": view, "firstFrame": 0, "positions": _grid(range(0, 15), shift)}
                            for view, shift in (("left", 0.0), ("right", 3.0))))
    return project


# ---- the check

def check_script(check: Check, key: str, name: str, project: Project, layer: str, tracks: List[Track],
                 *arguments: str) -> None:
    """Texts of two views get faults."""
    data = check.export(key, name, project, *arguments)
    if data is not None and judged(check, key, name, data, layer, tracks) and "two views" in name:
        check.faults(key, name, script_faults(data), lambda text: judge(text, key, layer, tracks))
        broken = Faults(data)
        broken.replace("brace lost", "}", "", last=True)
        check.faults(key, f"{name}, tclsh", broken, lambda text: nuke_script.judge_lists(text, check.scratch))


def judged(check: Check, key: str, name: str, data: bytes, layer: str, tracks: List[Track]) -> bool:
    findings = judge(data, key, layer, tracks)
    findings.add(nuke_script.judge_lists(data, check.scratch))
    return check.verdict(key, name, findings)


def check_corners(check: Check, name: str, project: Project, layer: str, tracks: List[Track], plain: List[Track],
                  line_height: int, *arguments: str) -> None:
    """`plain` are the tracks in the lines of the clip's raster."""
    for key in (*PINS, "nuke_tracker"):
        check_script(check, key, name, project, layer, tracks, *arguments)
    files = check.export_files(ASCII, name, project, *arguments)
    good = files and check.verdict(ASCII, name, judge_ascii(files, plain, line_height))
    if good and "two views" in name:
        check.faults(ASCII, name, ascii_faults(files), lambda bad: judge_ascii(bad, plain, line_height))


def shot_case(check: Check, name: str, project: Project, shot: Shot, record: Dict[str, Any], *arguments: str) -> None:
    offset = record["clips"][0].get("frameOffset", 0)
    check_corners(check, name, project, record["layers"][0]["name"], [corner_track(shot, offset)],
                  [raster_track(shot, offset)], shot.line_height, *arguments)


def goldens(check: Check) -> None:
    """Judges the checked-in exports as they stand."""
    project = check.goldens_project()
    layer = PlanarLayer(project)
    tracks = [corner_track(layer.shot(), layer.offset)]
    for key in (*PINS, "nuke_tracker", MESH):
        judged(check, key, "golden", check.golden(key), layer.name, [mesh_track(project)] if key == MESH else tracks)
    check.verdict(ASCII, "golden", judge_ascii(check.goldens(ASCII), tracks, 1))


def body(check: Check) -> None:
    goldens(check)
    corners = shots.paper_corners(check.source / "tests" / "data" / "paper004_corners.txt")
    imported = check.json("samples/paper004.json")
    shot_case(check, "paper", check.source / "samples/paper004.json", shots.paper_shot(corners, imported), imported)
    strong, gentle, fields = shots.hand_made(shots.STRONG), shots.hand_made(shots.GENTLE), shots.interlaced()
    for track in ("basic", "adjusted", "offset"):
        shot_case(check, f"strong {track}", strong, PlanarLayer(strong).shot(track), strong, "--track", track)
    shot_case(check, "stabilized", gentle, PlanarLayer(gentle).shot("stabilized"), gentle, "--track", "stabilized")
    shot_case(check, "inverted", gentle, PlanarLayer(gentle).shot("adjusted", True), gentle, "--invert")
    shot_case(check, "fields", fields, PlanarLayer(fields).shot(), fields)
    stereo = two_views()
    views = [PlanarLayer(stereo, view=view) for view in range(2)]
    tracks = [corner_track(layer.shot(), layer.offset, layer.view_name) for layer in views]
    check_corners(check, "two views", stereo, "A%1 sign", tracks, tracks, 1, "--view", "all")
    check_script(check, MESH, "mesh", with_mesh(), "Poster", [mesh_track(with_mesh())])
    check_script(check, MESH, "mesh in two views", stereo, "A%1 sign",
                 [mesh_track(stereo, layer.view, layer.view_name) for layer in views], "--view", "all")


if __name__ == "__main__":
    sys.exit(checking.run(__doc__, body, VERIFIES))
