"""Proves the files of the blending plug-in: scrambled roto shapes, and pins with their layer's transform.

usage: check_blend.py MARLO_EXPORT SOURCE_DIR SCRATCH_DIR

The numbers that vertices are scrambled with are read from the page of the format; undone, shapes are judged as those of
a roto node, and pins as those of keyframe text. Then faults are put into the texts, and each has to be noticed.
"""

import itertools
import re
import sys
from dataclasses import dataclass
from pathlib import Path
from typing import Any, Dict, Iterator, List, Tuple

import checking
import keyframe_formats
import nuke_script
import roto_faults
import roto_judge
import shape_projects
import shots
from checking import Check, Fault, replaced
from findings import Findings
from keyframe_text import half_units
from planar import PlanarProject, Shot
from roto_judge import Scene, Scramble
from text_lines import Lines, TextError, decoded, six_digits

SHAPE, TRACKING = "marlo_blend_shape", "marlo_blend_tracking"
WORD = "MarloBlendShape"
PINS = next(form for form in keyframe_formats.FORMATS if form.key == "after_effects_corner_pin_with_motion_blur")


@dataclass(frozen=True)
class ScrambleKey:
    """The numbers of the page: scale = lowest + (seed mod count), the seed being a hash of the header."""
    bias: float
    lowest: float
    count: int

    def of(self, header: bytes) -> Scramble:
        return Scramble(self.lowest + fnv1a(header) % self.count, self.bias)


def fnv1a(data: bytes) -> int:
    """Fowler, Noll and Vo's hash of 64 bits, variant 1a."""
    value = 0xcbf29ce484222325
    for byte in data:
        value = (value ^ byte) * 0x100000001b3 % 2 ** 64
    return value


def key_of_page(page: Path) -> ScrambleKey:
    found = re.search(r"bias = (-?[0-9.]+), +scale = ([0-9.]+) \+ \(seed mod ([0-9]+)\)", page.read_text(encoding="utf-8"))
    if found is None:
        raise TextError(f"{page.name} doesn't say how vertices are scrambled")
    return ScrambleKey(float(found.group(1)), float(found.group(2)), int(found.group(3)))


def expected_header(project: Dict[str, Any]) -> Dict[str, float]:
    """Of projects of one clip."""
    clip = project["clips"][0]
    offset, aspect = clip.get("frameOffset", 0), clip.get("pixelAspect", 1)
    return {"Project Frame Offset": offset, "Project In Point": project.get("playback", [0])[0],
            "Source Frame Offset": offset, "Units Per Second": project.get("frameRate", 24),
            "Source Width": clip["width"], "Source Height": clip["height"],
            "Source Pixel Aspect Ratio": aspect, "Comp Pixel Aspect Ratio": aspect}


def judge_header(findings: Findings, lines: Lines, expected: Dict[str, float]) -> None:
    for name, value in expected.items():
        found = six_digits(lines.match(f"\t{name} (.*)")[0])
        findings.compare("header", found, value, half_units(found) + 1e-10, name)


def judge_shape(data: bytes, scene: Scene, key: ScrambleKey, scratch: Path) -> Findings:
    findings = Findings()
    try:
        text = decoded(data)
        head, _, _ = text.partition(WORD + " {")
        lines = Lines(head)
        lines.expect("MarloBlend shape data")
        judge_header(findings, lines, {"Version": 1, **expected_header(scene.project)})
        lines.end()
        tree = text[len(head):]
        nuke_script.read_nodes(tree.encode("utf-8"), scratch / "judged.nk")
        shapes = roto_judge.judge(nuke_script.curve_tree(tree, WORD, versioned=False), scene, False,
                                  key.of(head.encode("utf-8")))
    except TextError as error:
        findings.problem(str(error))
        return findings
    findings.problems += shapes.problems
    findings.measures.update(shapes.measures)
    return findings


def judge_tracking(data: bytes, project: Dict[str, Any], shot: Shot) -> Findings:
    """Behind the header the text is keyframe text."""
    findings = Findings()
    try:
        text = decoded(data)
        head, found, _ = text.partition("\n\nPosition\n")
        if not found:
            raise TextError("no Position")
        lines = Lines(head + "\n")
        lines.expect("MarloBlend tracking data")
        judge_header(findings, lines, expected_header(project))
        lines.expect("\tLayer Name " + project["layers"][0]["name"])
        lines.end()
    except TextError as error:
        findings.problem(str(error))
        return findings
    header = (f"Adobe After Effects 6.0 Keyframe Data\n\n\tUnits Per Second\t{shot.rate:.6g}\n\tSource Width\t{shot.width}\n"
              f"\tSource Height\t{shot.height}\n\tSource Pixel Aspect Ratio\t{shot.pixel_aspect:.6g}\n"
              f"\tComp Pixel Aspect Ratio\t{shot.pixel_aspect:.6g}")
    verdict = keyframe_formats.judge((header + text[len(head):]).encode("utf-8"), PINS, shot)
    for fault in verdict.faults():
        findings.problem(fault)
    for c in verdict.comparisons:
        findings.compare(c.name, c.ratio, 0.0, 1.0, c.where)
    return findings


# ---- faults

def header_faults(text: str) -> Iterator[Fault]:
    yield replaced(text, "another title", "data\n", "Data\n")
    for line in text.split("\n")[1:9]:
        yield replaced(text, f"lost: {line!r}", line + "\n", "")
        name, _, value = line.rpartition(" ")
        yield replaced(text, f"one too much: {line!r}", line + "\n", f"{name} {float(value) + 1:.6g}\n")


def shape_faults(text: str) -> Iterator[Fault]:
    kinds = (roto_faults.structural, roto_faults.attributes, roto_faults.misplaced, roto_faults.imprecise)
    yield replaced(text, "version line", "AnimTree: \"\" {\n", "AnimTree: \"\" {\n Version: 1.1\n")
    # A header that says the same in other words is another key.
    yield replaced(text, "another key", "Source Width 1440", "Source Width 1.44e+03")
    yield from itertools.chain(header_faults(text), *(kind(text) for kind in kinds))


def tracking_faults(text: str) -> Iterator[Fault]:
    yield from header_faults(text)
    yield replaced(text, "another layer", "Layer Name ", "Layer Name another ")
    blocks = text.split("\n\n")
    for i in range(1, len(blocks) - 1):
        rows = blocks[i].split("\n")
        late = ["\t".join(row.split("\t")[:2] + earlier.split("\t")[2:])
                for row, earlier in zip(rows[2:], rows[2:3] + rows[2:])]
        for fault, changed in (("lost", []), ("without a row", rows[:4] + rows[5:]), ("a frame late", rows[:2] + late)):
            block = ["\n".join(changed)] if changed else []
            yield f"block {i} {fault}", "\n\n".join(blocks[:i] + block + blocks[i + 1:]).encode("utf-8")
    for one, other in itertools.combinations(range(4, 8), 2):
        head, tail = blocks[one].split("\n")[:2], blocks[other].split("\n")[2:]
        yield f"corner {one} holds corner {other}", "\n\n".join(
            blocks[:one] + ["\n".join(head + tail)] + blocks[one + 1:]).encode("utf-8")


# ---- the check

def body(check: Check, source: Path) -> None:
    try:
        key = key_of_page(source / "docs" / "formats" / "marlo-blend.md")
    except (OSError, TextError) as error:
        check.fail(str(error))
        return
    golden = Path(__file__).with_name("golden")
    scene = Scene.of_golden(golden)
    shape, pins = ((golden / form / "out.txt").read_bytes() for form in (SHAPE, TRACKING))
    check.verdict(f"golden, {SHAPE}", judge_shape(shape, scene, key, check.scratch))
    shot = PlanarProject(scene.project).shot("golden", "adjusted")
    check.verdict(f"golden, {TRACKING}", judge_tracking(pins, scene.project, shot))
    layers, stereo = shape_projects.layers(), shape_projects.stereo()
    cases: Tuple[Tuple[str, Scene, List[str]], ...] = (
        ("layers", Scene(layers, [layer["name"] for layer in layers["layers"]]), ["--layers", "all"]),
        ("fields", Scene(shape_projects.fields(), ["Screen"]), []),
        ("both views", Scene(stereo, ["Both eyes"], (0, 1)), ["--view", "all"]),
        ("far", Scene(shape_projects.far(), ["Front sign"]), []))
    for name, scene, arguments in cases:
        folder = name.replace(" ", "_")
        data = check.export(check.saved(folder, scene.project), SHAPE, folder, ".txt", *arguments)
        if data is None:
            continue
        judge = lambda text, scene=scene: judge_shape(text, scene, key, check.scratch)
        if check.verdict(f"{name}, {SHAPE}", judge(data)) and name == "far":
            check.faults(f"{name}, {SHAPE}", data, shape_faults(data.decode("utf-8")), judge)
    strong = shots.hand_made(shots.STRONG)
    for name, project, reference in (("strong", strong, None), ("strong from 1022", strong, 1022),
                                     ("interlaced", shots.interlaced(), None)):
        host = None if reference is None else reference - project["clips"][0]["frameOffset"]
        shot = PlanarProject(project).shot(name, "adjusted", reference=host)
        arguments = [] if reference is None else ["--reference-frame", str(reference)]
        folder = name.replace(" ", "_")
        data = check.export(check.saved(folder, project), TRACKING, folder, ".txt", *arguments)
        if data is not None and check.verdict(f"{name}, {TRACKING}", judge_tracking(data, project, shot)):
            check.faults(f"{name}, {TRACKING}", data, tracking_faults(data.decode("utf-8")),
                         lambda text, project=project, shot=shot: judge_tracking(text, project, shot))


if __name__ == "__main__":
    sys.exit(checking.run(__doc__, body))
