"""Proves that the raw curves of Avid DS hold the corners of the tracked plane.

usage: check_avid_ds.py MARLO_EXPORT SOURCE_DIR SCRATCH_DIR
"""

import copy
import sys

import numpy as np

import checking
import shots
from faults import Faults
from findings import judging
from planar import PlanarLayer
from texts import Lines, decoded, half_units, six_digits

VERIFIES = {
    "avid_ds_tracking": "times, x and y within half a unit of their sixth digit",
}
KEY, = VERIFIES


@judging
def judge(findings, files, layer, shot, y_factor):
    """`y_factor` are lines of square pixels for each line of the raster."""
    expected = {f"out_R{corner + 1}{axis}.fraw": (corner, axis) for corner in range(4) for axis in "xy"}
    findings.same("files", sorted(files), sorted(expected))
    corners = (shot.corners * [1.0, -1.0] + [0.0, shot.height]) * [1.0, y_factor]
    times = (shot.first + np.arange(len(corners))) / layer.line_height / np.float32(layer.rate)
    for name, (corner, axis) in expected.items():
        lines = Lines(decoded(files[name]))
        lines.expect(f"{len(corners)} 20")
        rows = np.array([[six_digits(number) for number in lines.match(r"(\S+) (\S+) 0\.000000 0\.000000")]
                         for _ in corners])
        lines.end()
        findings.printed("times, s", rows[:, 0], times, 1e-9, name)
        # The factor is a float.
        values = corners[:, corner, "xy".index(axis)]
        findings.printed("values, px", rows[:, 1], values, 1e-8 + 1e-7 * np.abs(values), name)


def faults_of(files):
    def with_faults(name):
        faults = Faults(files[name])
        yield faults, faults.places(r"^[^\n]*\n")
    for name, other in (("out_R3x.fraw", "out_R4x.fraw"), ("out_R1y.fraw", "out_R1x.fraw")):
        yield f"{name} and {other} swapped", {**files, name: files[other], other: files[name]}
        for faults, rows in with_faults(name):
            faults.off("a time", faults.places(r"^\S+", rows[7])[0])
            faults.off("a value", faults.places(r"^\S+ (\S+)", rows[7])[0])
            faults.replace_all((("count", " 20\n", " 2\n"), ("tangent", " 0.000000\n", " 0.000001\n")))
            faults.drop("a row less", rows[5])
            faults.repeat("a row twice", rows[5])
            for fault, text in faults:
                yield f"{name}: {fault}", {**files, name: text}


def body(check):
    strong, gentle, fields = shots.hand_made(shots.STRONG), shots.hand_made(shots.GENTLE), shots.interlaced()
    other = copy.deepcopy(strong)
    other["clips"].append({**other["clips"][0], "name": "shown", "pixelAspect": 0.75})
    other["displayClip"] = "shown"
    for name, project, track, aspect, *arguments in (
            ("adjusted", strong, "adjusted", 2), ("fields", fields, "basic", 59 / 54 / 2), ("shown", other, "offset", 0.75),
            ("inverted", gentle, "adjusted", 2, "--invert"), ("stabilized", gentle, "stabilized", 2)):
        layer = PlanarLayer(project)
        shot = layer.shot(track, bool(arguments))

        def judged(files):
            return judge(files, layer, shot, 1 / aspect)
        files = check.export_files(KEY, name, project, "--track", track, *arguments)
        if files and check.verdict(KEY, name, judged(files)) and name == "adjusted":
            check.faults(KEY, name, faults_of(files), judged)


if __name__ == "__main__":
    sys.exit(checking.run(__doc__, body, VERIFIES))
