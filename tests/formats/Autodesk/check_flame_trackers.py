"""Proves that Flame's trackers and stabilizers follow the corners of the plane.

usage: check_flame_trackers.py MARLO_EXPORT SOURCE_DIR SCRATCH_DIR
"""

import sys
from typing import Any, Dict, Iterator, List, Tuple

import numpy as np

import checking
import shots
from checking import Check
from faults import Faults
from findings import Findings, judging
from planar import PlanarLayer, Shot, crossings
from texts import Lines, TextError, decoded, half_units, last_units_off, six_digits

VERIFIES = {
    "flame_point_tracker": "each number within half a unit of its second decimal",
    "flame_point_tracker_2014": "each number within half a unit of its second decimal",
    "flame_stabilizer": "each number, and ref - shift, within half a unit of the sixth digits that it is made of",
    "flame_stabilizer_2014": "each number, and ref - shift, within half a unit of the sixth digits that it is made of",
}

# Allowance for the arithmetic of doubles: coordinates go through a few homographies.
ARITHMETIC = 1e-8

# Trackers in the order of their names, and the corners that they follow; newer names tell column and row, from below.
OLD, NEW = {"1": 2, "2": 3, "3": 0, "4": 1}, {"0_0": 0, "0_1": 2, "1_0": 1, "1_1": 3}
_SHIFT_COLOURS = ("255 0 0", "0 255 0", "131 174 255", "0 255 255")
_DATE = (r"CreationDate (Mon|Tue|Wed|Thu|Fri|Sat|Sun) (Jan|Feb|Mar|Apr|May|Jun|Jul|Aug|Sep|Oct|Nov|Dec) "
         r"\d\d? \d\d?:\d\d?:\d\d? \d{4}")
_CONSTANTS = ("AutoKey yes|MotionPath yes|Icons yes|AutoPan yes|EditMode 0|Format 0|Padding|\tRed 0|\tGreen 0|\tBlue 0|"
              "Oversampling no|Opacity 50|Zoom 3").split("|")
_TRACKER = ("Tracker {}|\tActive yes|\tColour|\t\tRed {}|\t\tGreen {}|\t\tBlue {}|\tFixedRef {}|\tFixedX no|\tFixedY no|"
            "\tTolerance {}")
_TRACKERS = ((100, 0, 0, "yes", 100), (0, 100, 0, "yes", 100), (51.3726, 68.2353, 100, "no", 51), (0, 100, 100, "no", 100))


class Motion:
    """Frames as they are shown, and four corners and the centre in full-frame lines, y up."""

    def __init__(self, shot: Shot, offset: int, new: bool) -> None:
        quads = (shot.corners * [1.0, -1.0] + [0.0, shot.height]) * [1.0, shot.line_height]
        self.points = np.concatenate([quads, crossings(quads)[:, None]], axis=1)
        self.frames = (shot.first + np.arange(len(quads)) + (offset or 1)) / shot.line_height
        self.reference = min(max(shot.reference - shot.first, 0), len(quads) - 1)
        self.size, self.new, self.corners = (shot.width, shot.height * shot.line_height), new, NEW if new else OLD


@judging
def judge_points(findings: Findings, files: Dict[str, bytes], motion: Motion) -> None:
    names = {**{f"out_Tracker{name}.ascii": at for name, at in motion.corners.items()}, "out_Centre.ascii": 4}
    if not findings.same("files", sorted(files), sorted(names)):
        return
    for name, corner in names.items():
        lines = Lines(decoded(files[name]))
        rows = [lines.match("( *[.0-9]{4,}) :( *[-.0-9]{4,}),( *[-.0-9]{4,})") for _ in motion.frames]
        lines.end()
        if any(cell != f"{float(cell):{size}.2f}" for row in rows for cell, size in zip(row, (6, 10, 10))):
            raise TextError(f"{name}: columns")
        found = np.array(rows, float)
        findings.same(f"{name}: frames", list(found[:, 0]), list(motion.frames))
        findings.compare("points, px", found[:, 1:], motion.points[:, corner], 0.005 + ARITHMETIC, name)


def constant(lines: Lines, channel: str, frame: float) -> float:
    lines.expect(f"Channel {channel}", "\tExtrapolation constant")
    text, = lines.match("\tValue (.+)")
    lines.expect("\tSize 1", "\tKeyVersion 1", "\tKey 0", f"\t\tFrame {frame:.6g}", f"\t\tValue {text}",
                 "\t\tInterpolation constant", "\t\tEnd", "\tColour 50 50 50 ", "\tEnd")
    return six_digits(text)


def shifts(lines: Lines, channel: str, colour: str, frames: np.ndarray) -> Tuple[np.ndarray, np.ndarray]:
    """Values of the keys, and the slopes between each two of them: to the right of one, to the left of the other."""
    found: Dict[str, List[float]] = {"Value": [], "RightSlope": [], "LeftSlope": []}
    lines.expect(f"Channel {channel}", "\tExtrapolation linear", "\tValue 0", f"\tSize {len(frames)}", "\tKeyVersion 1")
    for i, frame in enumerate(frames):
        lines.expect(f"\tKey {i}", f"\t\tFrame {frame:.6g}")
        for name, stands in (("Value", True), ("RightSlope", i + 1 < len(frames)), ("LeftSlope", i > 0)):
            found[name] += [six_digits(*lines.match(f"\t\t{name} (.+)"))] if stands else []
        lines.expect("\t\tInterpolation linear", "\t\tEnd")
    lines.expect(f"\tColour {colour}", "\tEnd")
    return np.array(found["Value"]), np.array([found["RightSlope"], found["LeftSlope"]])


@judging
def judge_stabilizer(findings: Findings, files: Dict[str, bytes], motion: Motion) -> None:
    data, = files.values()
    lines, (width, height), reference = Lines(decoded(data)), motion.size, float(motion.frames[motion.reference])
    lines.match(_DATE)
    lines.expect("", "", f"StabilizerFileVersion {5 + motion.new}.0", *_CONSTANTS, *motion.new * ["AutoUpdate yes"])
    lines.expect("NbTrackers 4", "Selected 0", f"FrameWidth {width}", f"FrameHeight {height}",
                 f"AnimRefFrame {reference:.6g}", "Field no", "Backward no", "Anim")
    for (name, corner), colour in zip(motion.corners.items(), _SHIFT_COLOURS):
        ref, *boxes = [constant(lines, f"tracker{name}/{channel}", reference) for channel in (
            "ref/x", "ref/y", "ref/width", "ref/height", "ref/dx", "ref/dy", "track/x", "track/y", "track/width",
            "track/height")]
        ref = [ref, boxes.pop(0)]
        findings.same(f"{name}: boxes", boxes, [10, 10, 0, 0, width / 2, height / 2, 15, 15])
        for axis, expected in enumerate(motion.points[:, corner].T):
            found, slopes = shifts(lines, f"tracker{name}/shift/{'xy'[axis]}", colour, motion.frames)
            findings.same(f"{name}: shift at the reference", found[motion.reference], 0.0)
            findings.printed("ref, px", ref[axis], expected[motion.reference], ARITHMETIC, name)
            findings.printed("shift, px", found, expected[motion.reference] - expected, ARITHMETIC, name)
            findings.compare("ref - shift, px", ref[axis] - found, expected,
                             half_units(ref[axis]) + half_units(found) + ARITHMETIC, name)
            slope = -np.diff(expected) / np.diff(motion.frames)
            findings.printed("slopes, px a frame", slopes, np.array([slope, slope]), 4.0 * ARITHMETIC, name)
        for axis in "xy":
            lines.expect(f"Channel tracker{name}/offset/{axis}", "\tColour 50 50 50 ", "\tEnd")
    lines.expect("ChannelEnd")
    for i, values in enumerate(_TRACKERS):
        lines.expect(*_TRACKER.format(i, *values).split("|"))
    lines.expect("End")
    lines.end()


def faults_of(files: Dict[str, bytes]) -> Iterator[Tuple[str, Any]]:
    """Of each file in turn, and of each two of them."""
    for i, (name, data) in enumerate(sorted(files.items())):
        faults = Faults(data)
        if name.endswith("ascii"):
            faults.drop("a line lost", faults.place(r"^.*?\n"))
            faults.put("a column narrower", (faults.place(": "), ":"))
            faults.put("a field late", (faults.place(r"^[^:]*"), f"{float(faults.text[:7]) + 0.5:6.2f} "))
            for column in (0, 1):
                faults.off(f"column {column}", faults.places(r"[-.\d]+")[4 + column], last_units_off)
            other = sorted(files)[i - 1]
            yield f"{other} for {name}", {**files, name: files[other]}
            yield f"lost: {name}", {at: text for at, text in files.items() if at != name}
        else:
            values, slopes = faults.places(r"\t\tValue (\S+)"), faults.places(r"Slope (\S+)")
            faults.negate("shift negated", values[10:20])
            faults.negate("slopes negated", slopes[:9])
            faults.number("slopes of fields", slopes[:9], lambda slope: slope / 2.0)
            for name_of, place in (("ref", values[0]), ("shift", values[13]), ("slope", slopes[3]), ("box", values[2])):
                faults.off(name_of, place)
            faults.drop("key lost", faults.place(r"\tKey 3\n.*?End\n"))
            for one, other in (("LeftSlope", "RightSlope"), ("255 0 0", "0 255 0"), (r"tracker(\S+)/ref/x",) * 2):
                faults.swap(f"{one} swapped", faults.places(one)[:1], faults.places(other)[1:2])
            for words in ("NbTrackers 4", "FrameHeight 5", "AnimRefFrame ", "Size 1", "KeyVersion 1", "offset/x", "Padding"):
                faults.replace(f"{words} changed", words, words[:-1] + "7")
            faults.replace("end lost", "End\n", "", last=True)
        yield from ((f"{fault}, {name}", {**files, name: text}) for fault, text in faults)


def body(check: Check) -> None:
    strong, gentle, fields, one = (shots.hand_made(shots.STRONG), shots.hand_made(shots.GENTLE), shots.interlaced(),
                                   shots.hand_made(shots.STRONG))
    del one["clips"][0]["frameOffset"]
    cases = (("strong", strong, {}, ()), ("from frame 1", one, {"track": "basic"}, ("--track", "basic")),
             ("another reference", strong, {"reference": 19}, ("--reference-frame", "1020")),
             ("reference before the layer", strong, {"reference": 2}, ("--reference-frame", "1003")),
             ("offset", strong, {"track": "offset"}, ("--track", "offset")),
             ("inverted", gentle, {"invert": True}, ("--invert",)), ("fields", fields, {}, ()))
    for key in VERIFIES:
        judge = judge_points if "point" in key else judge_stabilizer
        golden = PlanarLayer(check.goldens_project())
        check.verdict(key, "golden", judge(check.goldens(key), Motion(golden.shot(), golden.offset, "2014" in key)))
        for name, project, options, arguments in cases:
            layer = PlanarLayer(project)
            motion = Motion(layer.shot(**options), layer.offset, "2014" in key)
            files = check.export_files(key, name, project, *arguments)
            if files and check.verdict(key, name, judge(files, motion)) and name in ("strong", "fields"):
                check.faults(key, name, faults_of(files), lambda bad: judge(bad, motion))


if __name__ == "__main__":
    sys.exit(checking.run(__doc__, body, VERIFIES))
