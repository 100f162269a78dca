"""Pins the plate whose lens was taken away with what was exported: the surface has to stand still on it.

usage: check_undistorted_plate.py MARLO_EXPORT SOURCE_DIR SCRATCH_DIR

An inverted or stabilized pin maps the whole undistorted plate of its frame. The surface is seen there where its corners
come to lie without the lens of that frame; the pin has to carry them to where they lie in the reference frame, to the
digits that were printed, whatever the lens. In the reference frame it has to be the picture itself, exactly. Then
faults are put into pins that passed, and each has to be noticed.
"""

import functools
import itertools
import re
import sys
from dataclasses import dataclass
from typing import Any, Callable, Dict, Iterator, Tuple

import numpy as np

import checking
import shots
from findings import Findings
from planar import homography, through
from texts import half_units

Pins = Dict[int, np.ndarray]
GAPS = (13, 20, 21, 29)
LENSES = ([], [0]), ([0], [0.0]), ([0], [-0.03]), ([0], [-0.12]), ([10, 22, 34], [-0.12, 0.02, -0.07])
MOTIONS = [["--track", track, "--invert"] for track in ("basic", "adjusted", "offset", "stabilized")]
MOTIONS += [["--track", "stabilized"]]


def shot(frames, values) -> Dict[str, Any]:
    """Two eyes, wide pixels, corrections by hand and frames without a track, seen through a lens."""
    project = shots.hand_made(shots.GENTLE)
    clip, layer = project["clips"][0], project["layers"][0]
    if frames:
        radial = {"frames": frames, "values": values} if len(frames) > 1 else values[0]
        clip["lens"] = {"focalLength": 1.5, "radial1": radial}
        if any(values):
            clip["lens"].update(centreX=0.03, tangential1=0.002, squeeze=1.1)
    kept = [frame for frame in range(12, 31) if frame not in GAPS]
    other = shots.motion(19, 2, 2.0, (560, 130), (4.0, 6.5), -7.0, 0.99, shots.GENTLE)
    tracks = np.reshape(layer["tracking"][0]["homographies"], (19, 9)), np.reshape(other, (19, 9))
    layer["tracking"] = [{"view": view, "frames": kept, "homographies": [float(n) for f in kept for n in track[f - 12]]}
                         for view, track in zip(("left", "right"), tracks)]
    return dict(project, views=["left", "right"])


class Plate:
    """Where the corners of the surface lie at a frame of one eye, with the lens and without it."""

    def __init__(self, project: Dict[str, Any], eye: int, track: str) -> None:
        self.clip, self.layer, self.track = project["clips"][0], project["layers"][0], track
        tracking = self.layer["tracking"][eye]
        self.frames = tracking["frames"]
        self.homographies = np.reshape(tracking["homographies"], (-1, 3, 3))
        self.size = np.array([self.clip["width"], self.clip["height"]], float)

    def nearest(self, frame: int) -> int:
        return min(self.frames, key=lambda tracked: (abs(tracked - frame), tracked))

    def offsets(self, frame: int) -> np.ndarray:
        keys = np.array([key["offsets"] for key in self.layer["adjust"]])
        frames = [key["frame"] for key in self.layer["adjust"]]
        return np.array([np.interp(frame, frames, column) for column in keys.T]).reshape(4, 2)

    def seen(self, frame: int) -> np.ndarray:
        corners = np.reshape(self.layer["surface"]["corners"], (4, 2)).astype(float)
        corners = corners + self.offsets(self.layer["surface"]["referenceFrame"]) * (self.track == "offset")
        carried = through(self.homographies[self.frames.index(frame)], corners)
        return carried + self.offsets(frame) * (self.track == "adjusted")

    @functools.lru_cache(maxsize=None)
    def straight(self, frame: int) -> np.ndarray:
        return np.array([self.without_lens(point, frame) for point in self.seen(frame)])

    def without_lens(self, point: np.ndarray, frame: int) -> np.ndarray:
        """By Newton's method on the formula of the project file's page, with differences as derivatives."""
        guess = point
        for _ in range(20):
            steps = [(self.lensed(guess + step, frame) - self.lensed(guess - step, frame)) / 2 for step in np.eye(2)]
            guess = guess - np.linalg.solve(np.array(steps).T, self.lensed(guess, frame) - point)
        return guess

    def lensed(self, point: np.ndarray, frame: int) -> np.ndarray:
        lens = self.clip.get("lens")
        if not lens:
            return point
        wide = np.array([self.size[0] * self.clip["pixelAspect"] / self.size[1], 1.0])
        focal = np.array([lens.get("squeeze", 1), 1.0]) * lens["focalLength"]
        centre = np.array([lens.get("centreX", 0), 0.0])
        radial = lens["radial1"]
        k = np.interp(frame, radial["frames"], radial["values"]) if isinstance(radial, dict) else radial
        p = lens.get("tangential1", 0)
        x, y = q = ((point / self.size - 0.5) * wide - centre) / focal
        shown = q * (1 + k * (q @ q)) + p * np.array([2 * x * y, q @ q + 2 * y * y])
        return ((shown * focal + centre) / wide + 0.5) * self.size

    def picture(self) -> np.ndarray:
        return np.array([[0, 0], [1, 0], [0, 1], [1, 1]]) * self.size


@dataclass(frozen=True)
class Case:
    """What pins of one eye have to do. `forward` ones carry the still picture with the surface."""
    plate: Plate
    reference: int
    forward: bool

    def judge(self, pins: Pins) -> Findings:
        findings, plate = Findings(), self.plate
        findings.same("frames", sorted(pins), list(range(12, 31)))
        for frame, pin in pins.items():
            start, end = plate.straight(plate.nearest(frame)), plate.straight(plate.nearest(self.reference))
            start, end = (end, start) if self.forward else (start, end)
            if plate.nearest(frame) == plate.nearest(self.reference):
                findings.same("reference frame", pin.tolist(), plate.picture().tolist())
            try:
                found = through(homography(plate.picture(), pin), start)
            except ValueError as error:
                findings.problem(f"frame {frame}: {error}")
                continue
            findings.compare("drift", found, end, 1e-9 + self.looseness(pin, start), f"frame {frame}")
        return findings

    def looseness(self, pin: np.ndarray, points: np.ndarray) -> np.ndarray:
        """How far points move when every printed number is off by half a unit of its last digit."""
        moved = np.zeros_like(points)
        for place, half in np.ndenumerate(half_units(pin)):
            step = np.zeros_like(pin)
            step[place] = half
            moved += np.abs(np.diff([through(homography(self.plate.picture(), pin + side * step), points)
                                     for side in (-1, 1)], axis=0)[0]) / 2
        return 1.01 * moved


def read(text: str) -> Iterator[Pins]:
    """The pins of each node of a Nuke script; y runs up, and the upper corners stand the other way round."""
    for node in text.split("CornerPin2D {")[1:]:
        curves = [dict(re.findall(r"x(\d+) (\S+)", curve)) for curve in re.findall(r"\{curve ([^}]*)\}", node)[:8]]
        yield {int(frame) - 1001: np.array([float(curve[frame]) for curve in curves]).reshape(4, 2)[[0, 1, 3, 2]]
               for frame in curves[0]}


def faults(case: Case, pins: Pins) -> Iterator[Tuple[str, Pins]]:
    plate, reference = case.plate, case.plate.nearest(case.reference)

    def redone(end: Callable[[int], np.ndarray], start: Callable[[int], np.ndarray] = plate.straight) -> Pins:
        pairs = {frame: (start(plate.nearest(frame)), end(reference)) for frame in pins}
        return {frame: through(homography(*pair[::-1 if case.forward else 1]), plate.picture())
                for frame, pair in pairs.items()}

    yield "the corners of the picture through the lens", {
        frame: np.array([plate.lensed(point, reference) for point in pin]) for frame, pin in pins.items()}
    yield "lens left on", redone(plate.seen, plate.seen)
    yield "lens of the reference frame left on", redone(plate.seen)
    yield "a frame late", {frame: pins[max(frame - 1, 12)] for frame in pins}
    yield "the picture nearly itself", {frame: pin + 1e-6 * (frame == reference) for frame, pin in pins.items()}
    corner = np.array([[True, False]] + [[False, False]] * 3)
    yield "a corner by 3 units of the last digit", {
        frame: pin + 6 * half_units(pin) * corner for frame, pin in pins.items()}


def body(check: checking.Check) -> None:
    planted = 0
    for lens, motion in itertools.product(LENSES, MOTIONS):
        project = shot(*lens)
        name = " ".join(["radial1", *map(str, lens[1]), *motion])
        track = motion[1]
        reference, words = (17, []) if track == "stabilized" else (20, ["--reference-frame", "1021"])
        status, errors = check.run("export", check.saved("project", project), "nuke_corner_pin", "--undistort",
                                   "--view", "all", *motion, *words, "--overwrite", "-o", check.scratch / "pin.nk")
        # Frames without a track are told, and a lens that isn't there; nothing else.
        gaps = [line for line in errors if "no tracking data" in line]
        if status != 4 or len(gaps) != len(GAPS) or len(errors) - len(gaps) != (not any(lens[1])):
            check.fail(f"{name}: status {status}, {errors}")
            continue
        for eye, pins in enumerate(read((check.scratch / "pin.nk").read_text())):
            case = Case(Plate(project, eye, "basic" if track == "stabilized" else track), reference,
                        motion[-2:] == ["stabilized", "--invert"])
            findings = case.judge(pins)
            good = check.expect(not findings.faults(), f"{name}, eye {eye}: {findings.faults()[:3]}")
            if good and lens[1] == [-0.12]:
                for fault, changed in faults(case, pins):
                    planted += 1
                    if not case.judge(changed).faults():
                        check.fail(f"{name}: not noticed: {fault}")
    print(f"{planted} faults put in")
    if not planted:
        check.fail("no faults")


if __name__ == "__main__":
    sys.exit(checking.run(__doc__, body, {}))
