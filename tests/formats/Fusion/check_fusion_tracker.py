"""Proves that the tracker of a Fusion composition follows the corners of the tracked plane along its paths.

A Lua interpreter loads the composition; the order of keys, which its tables hide, is read from the text.

usage: check_fusion_tracker.py MARLO_EXPORT SOURCE_DIR SCRATCH_DIR
"""

import copy
import re
import sys

import lupa
import numpy as np

import checking
import shots
from faults import Faults
from findings import judging
from planar import PlanarLayer
from texts import TextError, decoded, half_units, six_digits

VERIFIES = {
    "fusion_tracker": "points and patterns within half a unit of their sixth digit, a corner on its path within what these carry",
}
KEY, = VERIFIES

_KINDS = "Composition Loader Clip Input FuID Tracker PolyPath Polyline BezierSpline OperatorInfo"
# From the order of corners of this module to that of the patterns: upper left, upper right, lower left, lower right.
_ORDER = (2, 3, 0, 1)
_NUMBER = r"[-+.0-9e]+|nan"
_POINT = re.compile(rf"\{{ Linear = true, LockY = true, X = ({_NUMBER}), Y = ({_NUMBER}), \}},")
_SHARE = re.compile(rf"\[({_NUMBER})\] = \{{ ({_NUMBER}), Flags = \{{ Linear = true, LockedY = true, \}}, \}},")


def composition(text):
    """The tree as dictionaries of kinds and fields; lists have their items under 1, 2, ..."""
    lua = lupa.LuaRuntime(unpack_returned_tuples=True)
    for kind in _KINDS.split():
        lua.execute(f"{kind} = function(fields) fields.kind = '{kind}' return fields end")
    try:
        return _plain(lua.execute("return " + text))
    except lupa.LuaError as error:
        raise TextError(f"not Lua: {error}") from None


def _plain(value):
    return {key: _plain(item) for key, item in value.items()} if lupa.lua_type(value) == "table" else value


def _at(tree, path):
    for key in path.split("."):
        tree = tree.get(int(key) if key.isdigit() else key) if isinstance(tree, dict) else None
    return tree


def _rows(text, head, pattern):
    """What a pattern finds between a tool's head and that of the next one."""
    part = text.partition(f"\t\t{head} = ")[2]
    return pattern.findall(re.split(r"\n\t\t\w", part)[0])


@judging
def judge(findings, data, project, layer, shot):
    text = decoded(data)
    tree, frames = composition(text), list(layer.frames())
    _judge_fields(findings, tree, project, layer, frames)
    corners = shot.corners[:, _ORDER] * [1.0, -1.0] + [0.0, shot.height]
    for n in (1, 2, 3, 4):
        _judge_path(findings, text, tree, n, corners[:, n - 1], layer, shot)


def _judge_fields(findings, tree, project, layer, frames):
    count = len(frames) // layer.line_height
    last = count - 1 + layer.offset
    footage = layer.clip.get("footage", {})
    first_file = footage.get("firstIndex", 0)
    files = layer.clip["frameCount"] if footage.get("kind") == "sequence" else 1
    files = -(-files // layer.line_height)
    name = ""
    if footage:
        number = str(first_file).zfill(footage["indexWidth"])
        name = f"{footage['directory']}/{footage['prefix']}{number}{footage['suffix']}"
    loader, tracker = "Tools.Loader1", "Tools.Tracker1"
    clip = f"{loader}.Clips.1"
    pulldown = layer.clip.get("pulldown")
    lower = layer.clip.get("lowerFieldFirst", False)
    fields = layer.line_height == 2
    expected = {
        "kind": "Composition", "CurrentTime": layer.offset + frames[0], "RenderRange.1": layer.offset, "RenderRange.2": last,
        "GlobalRange.1": layer.offset, "GlobalRange.2": last, f"{loader}.kind": "Loader", f"{clip}.kind": "Clip",
        f"{clip}.Filename": name, f"{clip}.FormatID": {".dpx": "DpxFormat"}.get(footage.get("suffix")),
        f"{clip}.StartFrame": first_file, f"{clip}.Length": files, f"{clip}.TrimIn": 0, f"{clip}.TrimOut": files - 1,
        f"{clip}.GlobalStart": layer.offset, f"{clip}.GlobalEnd": last, f"{clip}.Loop": 1,
        f"{clip}.ImportMode": 0 if pulldown is None else 1, f"{clip}.PullOffset": pulldown or 0,
        f"{loader}.Inputs.ProcessMode.Value.1":
            ("NTSC" if lower and pulldown is None else "PAL") if fields else None,
        f"{loader}.Inputs.SwapFieldDominance.Value": 1 if pulldown is not None and lower else None,
        f"{tracker}.kind": "Tracker", f"{tracker}.Inputs.Input.SourceOp": "Loader1", f"{tracker}.Inputs.Input.Source": "Output",
    }
    for n in (1, 2, 3, 4):
        inputs, path = f"{tracker}.Inputs", f"Tools.Path{n}"
        expected.update({
            f"{tracker}.Trackers.{n}.PatternTime": frames[0], f"{inputs}.Name{n}.Value": f"Tracker {n}",
            f"{inputs}.TrackedCenter{n}.SourceOp": f"Path{n}", f"{inputs}.TrackedCenter{n}.Source": "Position",
            f"{path}.kind": "PolyPath", f"{path}.DrawMode": 4, f"{path}.Inputs.Displacement.SourceOp": f"Path{n}Displacement",
            f"{path}.Inputs.Displacement.Source": "Value", f"{path}.Inputs.PolyLine.Value.Closed": False,
            f"{path}Displacement.kind": "BezierSpline", f"{path}Displacement.SplineName": f"Path{n}Displacement"})
    for path, value in expected.items():
        findings.same(path, _at(tree, path), value)
    findings.same("tools", sorted(_at(tree, "Tools")),
                  sorted(["Loader1", "Tracker1", *(f"Path{n}{end}" for n in (1, 2, 3, 4) for end in ("", "Displacement"))]))


def _judge_path(findings, text, tree, n, corners, layer, shot):
    unit = corners / [shot.width, shot.height]
    for path in (f"Trackers.{n}", f"Inputs.PatternCenter{n}.Value"):
        pattern = _at(tree, f"Tools.Tracker1.{path}")
        found = [pattern.get("PatternX", pattern.get(1)), pattern.get("PatternY", pattern.get(2))]
        findings.printed("patterns", found, unit[0], 1e-12, f"{path}")
    points = np.array([[six_digits(x), six_digits(y)] for x, y in _rows(text, f"Path{n}", _POINT)])
    findings.printed("points", points, unit - 0.5, 1e-12, f"path {n}")
    keys = _rows(text, f"Path{n}Displacement", _SHARE)
    findings.same(f"frames of path {n}", [frame for frame, _ in keys], [f"{layer.shown(frame):g}" for frame in layer.frames()])
    steps = np.hypot(*np.diff(unit, axis=0).T)
    if not steps.sum():
        findings.same(f"shares of path {n}", {share for _, share in keys}, {"nan"})
        return
    shares = np.array([six_digits(share) for _, share in keys])
    expected = np.append(0.0, np.cumsum(steps)) / steps.sum()
    findings.printed("shares", shares, expected, 1e-7, f"path {n}")
    if points.shape == unit.shape and len(shares) == len(points):
        _judge_positions(findings, points, shares, corners, shot, n)


def _judge_positions(findings, points, shares, corners, shot, n):
    """Where the path is at a share of its length, in pixels. Along the path a share is as good as its digits and those
    of all the steps; across it only the digits of points count."""
    lengths = np.append(0.0, np.cumsum(np.hypot(*np.diff(points, axis=0).T)))
    at = np.stack([np.interp(shares * lengths[-1], lengths, axis) for axis in points.T], axis=1)
    size = max(shot.width, shot.height)
    slack = (half_units(shares)[:, None] * lengths[-1] + (2 * len(points) + 1) * 1.5 * half_units(points).max()) * size
    findings.compare("corners, px", (at + 0.5) * [shot.width, shot.height], corners, slack + 1e-4, f"path {n}")


def faults_of(data):
    faults = Faults(data)
    points, shares = faults.places(r"\t\{ Linear[^\n]*\n"), faults.places(r"\t\[[^\n]*\n")
    faults.off("a point", faults.places(r" Y = ([^,]+)", points[30])[0])
    faults.off("a share", faults.places(r"\{ ([^,]+)", shares[30])[0])
    faults.off("a pattern", faults.places(r"PatternX = ([^,]+)")[2])
    faults.drop("a point less", points[30])
    faults.drop("a key less", shares[30])
    faults.repeat("a key twice", shares[30])
    faults.swap("two keys", [shares[30]], [shares[31]])
    faults.replace_all((("paths", '"Path2",', '"Path3",'), ("range", "RenderRange = { 1", "RenderRange = { 2"), ("brace", "}\n\n", "\n\n"),
                        ("file", "Filename = \"", "Filename = \"a"), ("displacement", "Path1Displacement", "Path2Displacement")))
    return faults


def _filmed(project, **clip):
    project = copy.deepcopy(project)
    project["clips"][0].update(clip, footage={"kind": "sequence", "directory": "/plates/a \\ \"b\"", "prefix": "sign.",
                                              "suffix": ".dpx", "indexWidth": 4, "firstIndex": 86})
    return project


def body(check):
    strong, gentle, fields = shots.hand_made(shots.STRONG), shots.hand_made(shots.GENTLE), shots.interlaced()
    still = copy.deepcopy(strong)
    still["layers"][0]["tracking"][0]["homographies"] = 19 * [1, 0, 0, 0, 1, 0, 0, 0, 1]
    for name, project, track, *arguments in (
            ("adjusted", strong, "adjusted"), ("offset", _filmed(strong), "offset"), ("still", still, "basic"),
            ("inverted", gentle, "adjusted", "--invert"), ("fields", fields, "basic"),
            ("lower", _filmed(fields, lowerFieldFirst=True), "basic"),
            ("pulldown", _filmed(fields, lowerFieldFirst=True, pulldown=3), "basic"),
            ("upper", _filmed(gentle, pulldown=4), "stabilized")):
        layer = PlanarLayer(project)
        shot = layer.shot(track, bool(arguments))
        check.prove(KEY, name, project, lambda text: judge(text, project, layer, shot), ["--track", track, *arguments],
                    faults_of if name == "adjusted" else None)


if __name__ == "__main__":
    sys.exit(checking.run(__doc__, body, VERIFIES))
