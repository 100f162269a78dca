"""Proves that pins stick: rebuilds them from exported keyframe text alone and compares them with the tracked plane.

usage: check_keyframe_text.py MARLO_EXPORT SOURCE_DIR SCRATCH_DIR

Three shots go through all nine formats: corners that people annotated in a video, and two projects that are made here,
one of them with every choice of motion. Then faults are put into the exported texts, and each has to be noticed.
"""

import json
import sys
from dataclasses import dataclass
from typing import Any, List, Optional

import numpy as np

import checking
import keyframe_text
import shots
from checking import Check
from faults import Faults
from findings import Findings, judging
from keyframe_formats import FORMATS, IN_COMPOSITION, Format, inexact, judge, misplaced
from layer_model import Layer, Transform
from planar import PlanarLayer, Shot, similarities

VERIFIES = {
    "after_effects_cs3_corner_pin": "each number and the corners in the composition within half units of six digits",
    "after_effects_transform": "each number within half a unit of its sixth digit",
    "after_effects_corner_pin_with_motion_blur": "each number and the corners in the composition within half units",
    "after_effects_cc_power_pin": "each number and the corners in the composition within half units of six digits",
    "vantarium_corner_pin": "each number and the corners in the composition within half units of six digits",
    "vantarium_center_point": "each number within half a unit of its sixth digit",
    "after_effects_corner_pin": "each number and the corners in the composition within half units of six digits",
    "scratch_corner_pin": "each number and the corners in the composition within half units of six digits",
    "glimmerset_corner_pin": "each number and the corners in the composition within half units of six digits",
}


@dataclass(frozen=True)
class Case:
    """One export of a project that is made here. `reference` is the shown number that is asked for."""
    project: str
    track: str
    invert: bool = False
    reference: Optional[int] = None

    def name(self) -> str:
        return " ".join([self.project, self.track] + ["inverted"] * self.invert
                        + ([] if self.reference is None else [f"from {self.reference}"]))

    def arguments(self) -> List[str]:
        return (["--track", self.track] + ["--invert"] * self.invert
                + ([] if self.reference is None else ["--reference-frame", str(self.reference)]))


CASES = (
    Case("strong", "basic"), Case("strong", "adjusted"), Case("strong", "offset"),
    Case("strong", "adjusted", reference=1022),
    Case("gentle", "stabilized"), Case("gentle", "stabilized", reference=1030),
    Case("gentle", "basic", True), Case("gentle", "adjusted", True), Case("gentle", "offset", True),
    Case("gentle", "adjusted", True, reference=1019),
    Case("interlaced", "basic"), Case("interlaced", "basic", reference=12), Case("interlaced", "stabilized"),
    Case("interlaced", "basic", True),
)

# The case whose texts get faults: scales and turns start in the middle, under corrections by hand.
FAULTY = Case("strong", "adjusted", reference=1022)


def formats(check: Check, name: str, project: Any, shot: Shot, *arguments: str) -> None:
    """Sends a shot through the nine formats."""
    for form in FORMATS.values():
        text = check.export(form.key, name, project, *arguments)
        if text is None or not check.verdict(form.key, name, judge(text, form, shot)) or name != FAULTY.name():
            continue
        # Pins in a wrong place must show in the composition, not only as numbers.
        seen = [IN_COMPOSITION] if len(form.params) == 4 else []
        check.faults(form.key, name, misplaced(text, shot.height), lambda bad: _judged(bad, form, shot, *seen))
        check.faults(form.key, name, inexact(text), lambda bad: judge(bad, form, shot))


def _judged(text: bytes, form: Format, shot: Shot, *measure: str) -> Findings:
    findings = judge(text, form, shot)
    return findings.only(*measure) if measure else findings


def paper(check: Check) -> None:
    file, table = check.scratch / "paper.json", check.source / "tests" / "data" / "paper004_corners.txt"
    if not check.silent("import", "corners", table, "--size", "x".join(map(str, shots.PAPER_SIZE)), "-o", file):
        return
    imported, corners = json.loads(file.read_text(encoding="utf-8")), shots.paper_corners(table)
    error = shots.imported_error(corners, imported)
    check.expect(error <= 1e-8, f"paper: imported corners are off by {error:.3g} px")
    formats(check, "paper", file, shots.paper_shot(corners, imported))


def made_here(check: Check) -> None:
    projects = {"strong": shots.hand_made(shots.STRONG), "gentle": shots.hand_made(shots.GENTLE),
                "interlaced": shots.interlaced()}
    for case in CASES:
        layer, host = PlanarLayer(projects[case.project]), None
        if case.reference is not None:
            host = case.reference * layer.line_height - layer.offset
        shot = layer.shot(case.track, case.invert, host)
        formats(check, case.name(), projects[case.project], shot, *case.arguments())
    formats(check, "strong default", projects["strong"], PlanarLayer(projects["strong"]).shot("adjusted"))


def check_layer_model(check: Check) -> None:
    """Answers that were worked out by hand, and the bound held against keys that are off at random."""
    layer = Layer(200.0, 100.0, 2.0)
    # 10 wide pixels right of the anchor, half as long again, turned a quarter clockwise: 30 down from Position.
    keys = Transform(np.array([[70.0, 80.0]]), np.array([[1.5, 1.0]]), np.radians([90.0]))
    pin = np.array([[[110.0, 50.0], [100.0, 40.0]]])
    check.expect(np.allclose(layer.place(keys, pin), [[[70.0, 110.0], [75.0, 80.0]]], rtol=0.0, atol=1e-12),
                 "the layer model puts points in a wrong place")
    quad = np.array([[[0.0, 30.0], [20.0, 30.0], [0.0, 0.0], [20.0, 0.0]]])
    turned = layer.place(Transform(np.array([[9.0, 9.0]]), np.array([[2.0, 2.0]]), np.radians([40.0])), quad)
    scales, turns = similarities(np.concatenate([quad, turned]), 0, 2.0)
    check.expect(np.allclose([scales[1], np.degrees(turns[1])], [2.0, 40.0], rtol=0.0, atol=1e-9),
                 "the similarity of a turned and enlarged quad is wrong")
    random = np.random.default_rng(7)
    error = Transform(np.full((1, 2), 0.005), np.full((1, 2), 5e-5), np.array([8e-5]))
    keys = Transform(keys.position, keys.scale, np.radians([33.0]))
    bound = layer.place_error(keys, pin, error, np.full(pin.shape, 0.002))
    farthest = np.zeros(pin.shape)
    shapes = ((1, 2), (1, 2), 1, pin.shape)
    for _ in range(2000):
        position, scale, rotation, corner = (random.choice((-1.0, 1.0), shape) for shape in shapes)
        off = Transform(keys.position + position * error.position, keys.scale + scale * error.scale,
                        keys.rotation + rotation * error.rotation)
        moved = layer.place(off, pin + 0.002 * corner) - layer.place(keys, pin)
        farthest = np.maximum(farthest, np.abs(moved))
    check.expect(bool(np.all(farthest <= bound) and np.all(farthest >= 0.99 * bound)),
                 f"the bound {bound.tolist()} does not describe the largest errors {farthest.tolist()}")


# A text in small, and what replaces what in it: each is a text that the parser must refuse.
GOOD = ("Adobe After Effects 6.0 Keyframe Data\n\n\tUnits Per Second\t24\n\tSource Width\t1920\n\tSource Height\t1080\n"
        "\tSource Pixel Aspect Ratio\t1\n\tComp Pixel Aspect Ratio\t1\n\n"
        "Rotation\n\tFrame\tDegrees\n\t0\t0\n\t0.5\t-1.5e-05\n\n"
        "Effects\tADBE Corner Pin #1\tADBE Corner Pin-0001\n\tFrame\tX pixels\tY pixels\n"
        "\t0\t100\t980\n\t1\t101\t980.5\n\nEnd of Keyframe Data\n")
MALFORMED = (
    ("carriage return", "\n", "\r\n"), ("byte order mark", "Adobe", "\ufeffAdobe"),
    ("another title", "6.0 Keyframe", "7.0 Keyframe"), ("no footer", "\nEnd of Keyframe Data\n", ""),
    ("no line end at the end", "Data\n\0", "Data"), ("text behind the footer", "Data\n\0", "Data\n\n"),
    ("no blank line behind the title", "Data\n\n\tUnits", "Data\n\tUnits"),
    ("missing header field", "\tSource Height\t1080\n", ""), ("header field twice", "Source Height", "Source Width"),
    ("rate of zero", "Second\t24", "Second\t0"), ("two blank lines", "\n\nRotation", "\n\n\nRotation"),
    ("no blank line between blocks", "\n\nEffects", "\nEffects"), ("unknown property", "Rotation", "Turning"),
    ("effect without a number", "Pin #1", "Pin"), ("effect number 0", "#1", "#0"),
    ("effect without a parameter", "\tADBE Corner Pin-0001", ""), ("column of another unit", "Degrees", "Radians"),
    ("missing column title", "\tX pixels\tY pixels", "\tX pixels"), ("value too few", "\t100\t980\n", "\t100\n"),
    ("value too many", "\t100\t980\n", "\t100\t980\t0\n"), ("row without a leading tab", "\t0\t100", "0\t100"),
    ("frame twice", "\t1\t101", "\t0\t101"), ("frames descend", "\t0.5\t", "\t-0.5\t"),
    ("not a number", "980.5", "nan"), ("infinite", "980.5", "inf"), ("decimal comma", "980.5", "980,5"),
    ("space around a number", "980.5", "980.5 "), ("empty value", "980.5", ""), ("hexadecimal", "980.5", "0x3d4"),
    ("underscore", "980.5", "9_80.5"), ("plus sign", "980.5", "+980.5"), ("bare point", "980.5", "980."),
    ("seven digits", "980.5", "980.5678"), ("zero at the end", "980.5", "980.50"), ("other digits", "980.5", "٩٨٠"),
)


@judging
def readable(_: Findings, data: bytes) -> None:
    keyframe_text.parse(data)


def check_parser(check: Check) -> None:
    check.expect(not readable(GOOD.encode("utf-8")).faults(), "the parser refuses a good text")
    faults = Faults(GOOD.encode("utf-8"))
    faults.replace_all(MALFORMED)
    latin = [("not UTF-8", GOOD.replace("Pin-0001", "Pin-\xff").encode("latin-1"))]
    check.faults("after_effects_corner_pin", "the parser", [*faults, *latin], readable)


def body(check: Check) -> None:
    check_layer_model(check)
    check_parser(check)
    shot = PlanarLayer(check.goldens_project()).shot("adjusted")
    for form in FORMATS.values():
        check.verdict(form.key, "golden", judge(check.golden(form.key), form, shot))
    paper(check)
    made_here(check)


if __name__ == "__main__":
    sys.exit(checking.run(__doc__, body, VERIFIES))
