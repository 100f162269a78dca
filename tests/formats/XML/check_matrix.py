"""Proves that the matrices and the corner pins in XML move the tracked plane as the project does.

usage: check_matrix.py MARLO_EXPORT SOURCE_DIR SCRATCH_DIR
"""

import copy
import sys

import numpy as np

import checking
import shots
from faults import Faults
from findings import judging
from planar import PlanarLayer, through
from texts import Lines, decoded, half_units, six_digits

VERIFIES = {
    "quantel_corner_pin": "each number within half a unit of its sixth digit",
    "xml_motion_matrix": "points of plane and picture within what half units of the sixth digits of nine entries make of them",
}
QUANTEL, MATRIX = VERIFIES
_SIDES = [f"{side}{axis}" for side in ("bottomleft", "bottomright", "topleft", "topright") for axis in "xy"]
_ENTRIES = "xx xy xz yx yy yz zx zy zz".split()


def frames_of(data, root, name, elements, normalised):
    """The values of each frame, a row for each; the text is held to the last blank."""
    lines, rows = Lines(decoded(data)), []
    lines.expect(f"<{root}>")
    if normalised:
        lines.expect("   <Normalised>", "      yes", "   </Normalised>")
    lines.expect("   <Object>", "      <Name>", f"         {name}", "      </Name>")
    while lines.peek() == "      <Frame>":
        lines.take()
        row = []
        for element in ["FrameNumber", "FileNumber"] + elements:
            lines.expect(f"         <{element}>")
            row.append(lines.match(r" {12}(\S+)")[0])
            lines.expect(f"         </{element}>")
        lines.expect("      </Frame>")
        rows.append(row)
    lines.expect("   </Object>", f"</{root}>")
    lines.end()
    return rows


def up(shot):
    """Corners with y up."""
    return shot.corners * [1.0, -1.0] + [0.0, shot.height]


@judging
def judge_pin(findings, data, layer, shot):
    rows = frames_of(data, "CornerPinInfoDoc", layer.name, _SIDES, True)
    times = [frame / layer.line_height for frame in layer.frames()]
    file = layer.clip.get("footage", {}).get("firstIndex", 0)
    findings.same("numbers", [row[:2] for row in rows], [[f"{time:g}", str(int(file + time))] for time in times])
    values = np.array([[six_digits(value) for value in row[2:]] for row in rows]).reshape(-1, 4, 2)
    findings.printed("corners, 0 to 1", values, up(shot) / [shot.width, shot.height], 1e-12)


@judging
def judge_matrices(findings, data, layer, shot, is_picture):
    """`is_picture` tells whether the matrices move the picture's corners, not those of the surface."""
    rows = frames_of(data, "MotionInfoDoc", layer.name, _ENTRIES, False)
    file = layer.clip.get("footage", {}).get("firstIndex", 0)
    findings.same("numbers", [row[:2] for row in rows],
                  [[f"{frame + layer.offset:g}", f"{frame + file:g}"] for frame in layer.frames()])
    size = np.array([shot.width, shot.height], float)
    start = np.array([[0, 0], [1, 0], [0, 1], [1, 1]], float) if is_picture else layer.surface / size
    findings.same("zz", {row[-1] for row in rows}, {"1"})
    for frame, row, expected in zip(layer.frames(), rows, up(shot)):
        matrix = np.array([six_digits(value) for value in row[2:]]).reshape(3, 3)
        found = through(matrix, start) * size
        steps = half_units(matrix).reshape(9)[:, None, None] * np.eye(9).reshape(9, 3, 3)
        bound = sum(np.abs(through(matrix + step, start) * size - found) for step in steps)
        findings.compare("points, px", found, expected, 1e-4 + 1.01 * bound, f"frame {frame}")


def faults_of(data):
    faults = Faults(data)
    values = faults.places(r"^ {12}(\S+)$")
    width = 2 + (8 if b"Normalised" in data else 9)
    if b"Normalised" in data:
        faults.off("a value", values[3 * width + 4])
    # Of a matrix the digits of all entries count together.
    faults.number("a value by a thousandth", [values[3 * width + 4]], lambda value: value * 1.001)
    faults.edit("a frame late", [values[3 * width]], lambda text: str(int(text) + 1))
    faults.edit("a file late", [values[3 * width + 1]], lambda text: str(int(text) + 1))
    faults.swap("two values", [values[2 * width + 2]], [values[2 * width + 5]])
    faults.drop("a frame less", faults.places(r"^      <Frame>.*?</Frame>\n")[4])
    faults.replace_all((("name", " Poster\n", " poster\n"), ("order", "InfoDoc>\n", "InfoDoc>\n\n"),
                        ("end", "   </Object>\n", "")))
    return faults


def body(check):
    strong, gentle, fields = shots.hand_made(shots.STRONG), shots.hand_made(shots.GENTLE), shots.interlaced()
    filmed = copy.deepcopy(gentle)
    filmed["clips"][0].update(
        footage={"kind": "sequence", "directory": "/a", "prefix": "a.", "suffix": ".exr", "indexWidth": 3, "firstIndex": 7},
        lens={"focalLength": {"frames": [0, 49], "values": [0.9, 2.25]}, "centreX": 0.11, "centreY": -0.06, "squeeze": 1.3})
    for project, track, *invert in ((strong, "adjusted"), (strong, "offset"), (fields, "basic"), (filmed, "adjusted"),
                                    (filmed, "adjusted", "--invert"), (gentle, "basic", "--invert"),
                                    (filmed, "stabilized")):
        layer = PlanarLayer(project)
        shot = layer.shot(track, bool(invert))
        name = " ".join([track, layer.name, *(['filmed'] if project is filmed else []), *invert])
        arguments = ["--track", track, *invert]
        check.prove(QUANTEL, name, project, lambda text: judge_pin(text, layer, shot), arguments,
                    faults_of if project is strong else None)
        is_picture = bool(invert) or track == "stabilized"
        check.prove(MATRIX, name, project, lambda text: judge_matrices(text, layer, shot, is_picture), arguments,
                    faults_of if project is strong else None)


if __name__ == "__main__":
    sys.exit(checking.run(__doc__, body, VERIFIES))
