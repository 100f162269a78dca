"""Proves that pins stick: rebuilds them from exported keyframe text alone and compares them with the tracked plane.

usage: check_keyframe_text.py MARLO_EXPORT SOURCE_DIR SCRATCH_DIR

Three shots go through all nine formats: corners that people annotated in a video, and two projects that are made here,
one of them with every choice of motion. Then faults are put into the exported texts, and each has to be noticed.
"""

import json
import sys
from dataclasses import dataclass
from pathlib import Path
from typing import Dict, List, Optional, Tuple

import numpy as np

import corruptions
import keyframe_text
import shots
from keyframe_formats import FORMATS, Format, judge
from layer_model import Layer, Transform
from planar import PlanarProject, Shot, similarities
from tool import Tool

# The comparison that follows a text through its program; the others look at single numbers.
IN_COMPOSITION = "corners in the composition, px"


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


class Check:
    """Collects what is wrong and prints what was measured."""

    def __init__(self, tool: Tool, scratch: Path) -> None:
        self.tool = tool
        self.scratch = scratch
        self.failures: List[str] = []
        self.texts: List[Tuple[bytes, Format, Shot]] = []

    def fail(self, message: str) -> None:
        self.failures.append(message)
        print("FAILED", message)

    def export(self, project: Path, form: Format, folder: str, arguments: List[str]) -> Optional[bytes]:
        target = self.scratch / folder / f"{form.key}.txt"
        target.parent.mkdir(exist_ok=True)
        try:
            return self.tool.write(target, "export", project, form.key, *arguments)
        except (RuntimeError, OSError) as error:
            self.fail(str(error))
            return None

    def formats(self, project: Path, shot: Shot, arguments: List[str]) -> None:
        """Sends a shot through the nine formats."""
        for form in FORMATS:
            text = self.export(project, form, shot.name.replace(" ", "_"), arguments)
            if text is None:
                continue
            verdict = judge(text, form, shot)
            figures = "; ".join(f"{c.name}: error {c.error:.3g}, of bound {c.ratio:.3f}" for c in verdict.comparisons)
            print(f"{shot.name}, {form.key}, {verdict.frames} rows: {figures}")
            for fault in verdict.faults():
                self.fail(f"{shot.name}, {form.key}: {fault}")
            if not verdict.faults():
                self.texts.append((text, form, shot))

    def paper(self, table: Path) -> None:
        project = self.scratch / "paper.json"
        width, height = shots.PAPER_SIZE
        try:
            imported = json.loads(self.tool.write(project, "import", "corners", table, "--size", f"{width}x{height}"))
            corners = shots.paper_corners(table)
            error = shots.imported_error(corners, imported)
        except (RuntimeError, OSError, ValueError, LookupError) as reason:
            self.fail(f"paper: {reason}")
            return
        print(f"paper, import: corners off by {error:.3g} px")
        if not error <= 1e-8:
            self.fail(f"paper: imported corners are off by {error:.3g} px")
        self.formats(project, shots.paper_shot(corners, imported), [])

    def made_here(self) -> None:
        projects = {"strong": shots.hand_made(shots.STRONG), "gentle": shots.hand_made(shots.GENTLE),
                    "interlaced": shots.interlaced()}
        for name, project in projects.items():
            (self.scratch / f"{name}.json").write_text(json.dumps(project), encoding="utf-8")
        for case in CASES:
            planar = PlanarProject(projects[case.project])
            reference = case.reference
            if reference is not None:
                reference = reference * planar.line_height - planar.clip["frameOffset"]
            shot = planar.shot(case.name(), case.track, case.invert, reference)
            self.formats(self.scratch / f"{case.project}.json", shot, case.arguments())
        self.adjusted_is_default(projects)

    def goldens(self, folder: Path) -> None:
        """Judges the checked-in exports as they stand."""
        shot = PlanarProject(json.loads((folder.parent.parent / "project.json").read_text(encoding="utf-8"))).shot("golden", "adjusted")
        for form in FORMATS:
            verdict = judge((folder / form.key / "out.txt").read_bytes(), form, shot)
            for fault in verdict.faults():
                self.fail(f"golden, {form.key}: {fault}")

    def adjusted_is_default(self, projects: Dict[str, dict]) -> None:
        shot = PlanarProject(projects["strong"]).shot("strong default", "adjusted")
        self.formats(self.scratch / "strong.json", shot, [])


def check_layer_model(check: Check) -> None:
    """Answers that were worked out by hand, and the bound held against keys that are off at random."""
    layer = Layer(200.0, 100.0, 2.0)
    # 10 wide pixels right of the anchor, half as long again, turned a quarter clockwise: 30 down from Position.
    keys = Transform(np.array([[70.0, 80.0]]), np.array([[1.5, 1.0]]), np.radians([90.0]))
    pin = np.array([[[110.0, 50.0], [100.0, 40.0]]])
    if not np.allclose(layer.place(keys, pin), [[[70.0, 110.0], [75.0, 80.0]]], rtol=0.0, atol=1e-12):
        check.fail("the layer model puts points in a wrong place")
    quad = np.array([[[0.0, 30.0], [20.0, 30.0], [0.0, 0.0], [20.0, 0.0]]])
    turned = layer.place(Transform(np.array([[9.0, 9.0]]), np.array([[2.0, 2.0]]), np.radians([40.0])), quad)
    scales, turns = similarities(np.concatenate([quad, turned]), 0, 2.0)
    if not np.allclose([scales[1], np.degrees(turns[1])], [2.0, 40.0], rtol=0.0, atol=1e-9):
        check.fail("the similarity of a turned and enlarged quad is wrong")
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
    if np.any(farthest > bound) or np.any(farthest < 0.99 * bound):
        check.fail(f"the bound {bound.tolist()} does not describe the largest errors {farthest.tolist()}")


def check_parser(check: Check) -> None:
    keyframe_text.parse(corruptions.GOOD.encode("utf-8"))
    for name, text in corruptions.malformed():
        try:
            keyframe_text.parse(text)
        except keyframe_text.KeyframeTextError:
            continue
        check.fail(f"the parser accepts a text with this fault: {name}")


def check_faults_are_noticed(check: Check) -> None:
    """Corrupts every text that passed. Pins in a wrong place must show in the composition, not only as numbers."""
    counts: Dict[str, int] = {}
    for text, form, shot in check.texts:
        for kind in (corruptions.misplaced, corruptions.incomplete, corruptions.imprecise):
            for name, corrupted in kind(text):
                counts[kind.__name__] = counts.get(kind.__name__, 0) + 1
                verdict = judge(corrupted, form, shot)
                noticed = bool(verdict.faults())
                if kind is corruptions.misplaced and len(form.params) == 4:
                    noticed = any(c.name == IN_COMPOSITION and c.ratio > 1.0 for c in verdict.comparisons)
                if not noticed:
                    check.fail(f"{shot.name}, {form.key}: not noticed: {name}")
    print("faults put in:", ", ".join(f"{count} {kind}" for kind, count in counts.items()) or "none")
    if not counts:
        check.fail("no text was good enough to put faults into")


def main() -> int:
    if len(sys.argv) != 4:
        print(__doc__, file=sys.stderr)
        return 2
    program, source, scratch = sys.argv[1], Path(sys.argv[2]), Path(sys.argv[3])
    scratch.mkdir(parents=True, exist_ok=True)
    check = Check(Tool(program), scratch)
    check_layer_model(check)
    check_parser(check)
    check.paper(source / "tests" / "data" / "paper004_corners.txt")
    check.made_here()
    check.goldens(Path(__file__).with_name("golden"))
    check_faults_are_noticed(check)
    print(f"{len(check.texts)} texts are good, {len(check.failures)} failures")
    return 1 if check.failures else 0


if __name__ == "__main__":
    sys.exit(main())
