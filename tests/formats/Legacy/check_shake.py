"""Proves that the nodes of Shake scripts follow the tracked plane, that the stabilizer holds it, and that the shapes of
Shake's shape files stick.

usage: check_shake.py MARLO_EXPORT SOURCE_DIR SCRATCH_DIR
"""

import re
import sys

import numpy as np

import checking
import shape_projects
import shots
from faults import Faults
from findings import judging
from planar import PlanarLayer, homography, through
from shape_model import VERTEX, X_SPLINE, Outline, apart
from texts import Lines, TextError, decoded, half_units, last_units_off, six_digits

VERIFIES = {
    "shake_tracking": "each number within half a unit of its sixth digit, a stabilized surface within what these carry",
    "shake_rotoshape": "vertices, handles and feather within half a unit of the fourth decimal and what a float has, X-splines within 0.05 px",
}
KEY, SHAPE = VERIFIES

_SCRIPT = re.compile(r"(?:# [^\n]+\n){2}\n" + 3 * r"(\w+ = \w+)\((.*?)\);\n\n?", re.S)
_CURVE = "Linear(0,"
_POINTS, _TRACKS = 8 * ["curve"], 2 * ["curve", "curve", "1", "1"] + 4 * ["curve"]
_PICTURES = [word for image in ("Background", "Foreground")
             for word in f"0 0 {image}.width 0 {image}.width {image}.height 0 {image}.height".split()]


def nodes_of(name, reference, switch):
    """Heads, how many arguments follow each, and those that say what moves; the golden shows the settings."""
    return {
        f"{name}CornerPin = CornerPin": (18, ["0", *_POINTS, '"default"', "xFilter", "0"]),
        f"{name}MatchMove = MatchMove": (86, ["0", "0", "1", '"4 point"', *_TRACKS, *_PICTURES]),
        f"{name}Stabilize = Stabilize": (76, ["0", "1", switch, '"4 point"', *_TRACKS, '"default"', "xFilter",
                                              '"trsx"', "0", "0.5", "0", reference]),
    }


@judging
def judge(findings, data, layer, shot, seen):
    """`seen` are the corners on the footage when those of the shot move against them, otherwise None."""
    found = _SCRIPT.fullmatch(decoded(data))
    if found is None:
        raise TextError("not a script of three nodes")
    frames = [f"{layer.shown(frame):g}" for frame in layer.frames()]
    nodes = nodes_of(layer.name, f"{layer.shown(shot.reference):g}", "0" if seen is None else "1")
    findings.same("nodes", list(found.groups()[::2]), list(nodes))
    for (node, (count, expected)), text in zip(nodes.items(), found.groups()[1::2]):
        words = [word.strip() for word in re.split(r",(?![^(]*\))", text)]
        shown = ["curve" if word.startswith(_CURVE) else word for word in words[:len(expected)]]
        findings.same(node, (len(words), shown), (count, expected))
        keys = [[key.split("@") for key in word[len(_CURVE):-1].split(",")] for word in words if _CURVE in word]
        if findings.same(f"frames of {node}", [[frame for _, frame in curve] for curve in keys], 8 * [frames]):
            points = np.array([[six_digits(value) for value, _ in curve] for curve in keys]).T.reshape(-1, 4, 2)
            findings.printed("corners, px", points, _around(shot, shot.corners), 1e-8, node)
    if seen is not None and not findings.faults():
        _compare_held(findings, points, shot.reference - shot.first, _around(shot, seen))


def _around(shot, quads):
    """With y up, counter-clockwise from the lower left."""
    return (quads * [1.0, -1.0] + [0.0, shot.height])[:, (0, 1, 3, 2)]


def _compare_held(findings, points, start, seen):
    """With its switch on a stabilizer puts the motion of its points on, here against the surface, which then stands.

    The numbers add their halves of units, each by what so small a step does, and a hundredth for what isn't linear.
    """
    def carried(points):
        return np.array([through(homography(points[start], at), quad) for at, quad in zip(points, seen)])
    at_start = (np.arange(len(points)) == start)[:, None, None]
    steps = [which * one * half_units(points) for one in np.eye(8).reshape(8, 4, 2) for which in (at_start, ~at_start)]
    bound = 1e-8 + 1.01 * sum(np.abs(carried(points + step) - carried(points)) for step in steps)
    findings.compare("held surface, px", carried(points), np.broadcast_to(seen[start], points.shape), bound)


def faults_of(data):
    faults = Faults(data)
    for node in (0, 8, 16):
        curves = faults.places(r"Linear\(0,([^)]*)")[node:node + 8]
        faults.swap(f"upper corners swapped in {node}", curves[4:6], curves[6:8])
        faults.off(f"a value in {node}", faults.places(r"[^,@]+(?=@)", curves[5])[7])
        faults.edit(f"a frame late in {node}", faults.places(r"@(\d+)", curves[2]), lambda at: str(int(at) + 1))
    faults.replace_all((("pair", " 1, 1,", " 1,"), ("switch", "Stabilize(0, 1, 1", "Stabilize(0, 1, 0"),
                        ("reference", " 1018, ", " 1015, "), ("name", "PosterM", "M"), ("bracket", ");\n", ";\n")))
    return faults


# ---- shape files

_HEAD = ("shake_shape_data 4.0", "motion_blur 0", "shutter_timing 0.5", "shutter_offset 0.0")
_SWITCHES = ("parent_name ", "closed 1", "visible 1", "locked 0", "tangents 1", "edge_shape 1")
_COLOUR = tuple(f"color_{channel} 1.0" for channel in "rgba")
_DECIMAL = re.compile(r"-?[0-9]+\.[0-9]{4}")


def decimals(text):
    numbers = text.split(" ")
    if not all(map(_DECIMAL.fullmatch, numbers)):
        raise TextError(f"not numbers of four decimals: {text[:60]!r}")
    return np.array(numbers, float)


@judging
def judge_shapes(findings, data, scene):
    lines, shapes = Lines(decoded(data)), [(layer, contour) for layer, in scene.layers for contour in layer.contours]
    frames = range(min(layer.first for layer, _ in shapes), max(layer.last for layer, _ in shapes) + 1)
    lines.expect(*_HEAD, f"num_shapes {len(shapes)}")
    for layer, contour in shapes:
        lines.expect(f"shape_name {contour.name}", *_SWITCHES)
        count = int(lines.match(r"num_vertices (\d+)")[0])
        lines.expect(f"num_key_times {len(frames)}")
        for frame in frames:
            place = f"{layer.name}/{contour.name} at frame {frame}"
            lines.expect(f"key_time {layer.shown(frame):g}")
            centre = decimals(" ".join(lines.match(f"center_{axis} (.*)")[0] for axis in "xy"))
            lines.expect(*_COLOUR)
            numbers = decimals(lines.match("vertex_data (.*)")[0]).reshape(count, 2, 3, 2)
            box = [(numbers[..., axis].min() + numbers[..., axis].max()) / 2 for axis in (0, 1)]
            findings.compare("centre, px", centre, box, 2 * _bound(numbers).max(), place)
            for feather in (False, True):
                # The point stands in front of its handles.
                expected = layer.seen(contour, frame, feather).lines(layer.line_height)
                _compare(findings, numbers[:, int(feather)][:, (1, 0, 2)], expected, contour, place)
    lines.end()


def _bound(numbers):
    return 0.5e-4 + 1e-9 + np.spacing(np.abs(numbers).astype(np.float32)).astype(float)


def _compare(findings, points, expected, contour, place):
    if contour.bezier:
        drawn = expected.drawn()
        findings.compare("shapes, px", points[drawn], expected.points[drawn], _bound(points)[drawn], place)
        # What closes an open curve is straight.
        ends = np.repeat(points[:, VERTEX], (~drawn).sum(axis=1), axis=0)
        findings.compare("closing, px", points[~drawn], ends, 0.0, place)
        return
    away = apart(Outline(points, None, contour.closed), expected)
    findings.compare("x-spline, px", away, np.zeros(len(away)), X_SPLINE + 2 * _bound(points).max(), place)


def shape_faults_of(data):
    faults = Faults(data)
    keys = faults.places(r"^key_time .*?\nvertex_data [^\n]*\n")
    numbers = faults.places(r"-?[0-9]+\.[0-9]{4}", keys[3])
    faults.edit("a vertex off", [numbers[2]], last_units_off)
    faults.edit("a handle off", [numbers[5]], last_units_off)
    faults.edit("a feather off", [numbers[9]], last_units_off)
    faults.number("a centre off", [faults.place(r"center_y (\S+)", keys[3])], lambda value: value + 1)
    faults.swap("handles", numbers[4:6], numbers[6:8])
    faults.drop("a key less", keys[3])
    faults.swap("keys", [keys[3]], [keys[4]])
    faults.replace_all((("exponent", "0000 ", "000e+00 "), ("count", "num_key_times ", "num_key_times 1"),
                        ("name", "shape_name ", "shape_name x"), ("open", "closed 1", "closed 0")))
    return faults


def check_shapes(check):
    # Of what the file has no place for.
    check.may_warn = ("is written closed", "has no place for")
    cases = shape_projects.cases()
    for name in ("layers", "single frame", "fields", "right view"):
        case = cases[name]
        check.prove(SHAPE, name, case.scene.project, lambda text: judge_shapes(text, case.scene), case.arguments,
                    shape_faults_of if name == "fields" else None)


def body(check):
    strong, gentle = shots.hand_made(shots.STRONG), shots.hand_made(shots.GENTLE)
    for project, track, *invert in ((strong, "adjusted"), (strong, "offset"), (shots.interlaced(), "basic"),
                                    (gentle, "adjusted", "--invert"), (gentle, "stabilized")):
        layer, held = PlanarLayer(project), track == "stabilized"
        shot, seen = layer.shot(track, bool(invert)), layer.shot("basic").corners if held else None
        check.prove(KEY, " ".join([track, layer.name, *invert]), project, lambda text: judge(text, layer, shot, seen),
                    ["--track", track, *invert], faults_of if held else None)
    check_shapes(check)


if __name__ == "__main__":
    sys.exit(checking.run(__doc__, body, VERIFIES))
