"""Proves the files of the blending plug-in: scrambled roto shapes, and pins with their layer's transform.

usage: check_blend.py MARLO_EXPORT SOURCE_DIR SCRATCH_DIR

The numbers that vertices are scrambled with are read from the page of the format; undone, shapes are judged as those of
a roto node, and pins as those of keyframe text. Then faults are put into the texts, and each has to be noticed.
"""

import re
import sys
from dataclasses import dataclass
from pathlib import Path
from typing import Any, Dict

import checking
import keyframe_formats
import keyframe_text
import nuke_script
import roto_faults
import roto_judge
import shape_projects
import shots
from checking import Check
from faults import Faults
from findings import Findings, judging
from planar import PlanarLayer, Shot
from roto_judge import Scramble
from shape_model import Scene
from texts import Lines, TextError, decoded, six_digits

VERIFIES = {
    "marlo_blend_shape": "points and curves, descrambled, within half a unit of their last digit",
    "marlo_blend_tracking": "each number and the corners in the composition within half units of six digits",
}
SHAPE, TRACKING = VERIFIES
WORD = "MarloBlendShape"
PINS = keyframe_formats.FORMATS["after_effects_corner_pin_with_motion_blur"]
ARITHMETIC = 1e-10


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
        findings.printed("header", six_digits(lines.match(f"\t{name} (.*)")[0]), value, ARITHMETIC, name)


@judging
def judge_shape(findings: Findings, data: bytes, scene: Scene, key: ScrambleKey) -> None:
    text = decoded(data)
    head, _, _ = text.partition(WORD + " {")
    lines = Lines(head)
    lines.expect("MarloBlend shape data")
    judge_header(findings, lines, {"Version": 1, **expected_header(scene.project)})
    lines.end()
    tree = nuke_script.curve_tree(text[len(head):], WORD, versioned=False)
    roto_judge.judge(findings, tree, scene, False, key.of(head.encode("utf-8")))


@judging
def judge_tracking(findings: Findings, data: bytes, project: Dict[str, Any], shot: Shot) -> None:
    """Behind the header the text is keyframe text."""
    text = decoded(data)
    head, _, _ = text.partition("\n\nPosition\n")
    lines = Lines(head + "\n")
    lines.expect("MarloBlend tracking data")
    judge_header(findings, lines, expected_header(project))
    lines.expect("\tLayer Name " + project["layers"][0]["name"])
    lines.end()
    header = (f"Adobe After Effects 6.0 Keyframe Data\n\n\tUnits Per Second\t{shot.rate:.6g}\n\tSource Width\t{shot.width}\n"
              f"\tSource Height\t{shot.height}\n\tSource Pixel Aspect Ratio\t{shot.pixel_aspect:.6g}\n"
              f"\tComp Pixel Aspect Ratio\t{shot.pixel_aspect:.6g}")
    findings.add(keyframe_formats.judge((header + text[len(head):]).encode("utf-8"), PINS, shot))


# ---- faults

def header_faults(data: bytes) -> Faults:
    faults = Faults(data)
    faults.replace("another title", "data\n", "Data\n")
    for line in faults.places(r"^\t[^\t\n]+ [-.\d]+\n")[:9]:
        faults.drop(f"lost: {faults.at(line)!r}", line)
        faults.number(f"one too much: {faults.at(line)!r}", faults.places(r"[-.\d]+$", line), lambda value: value + 1)
    return faults


def shape_faults(data: bytes) -> Faults:
    faults = header_faults(data)
    # A header that says the same in other words is another key.
    faults.replace_all((("version line", "AnimTree: \"\" {\n", "AnimTree: \"\" {\n Version: 1.1\n"),
                        ("another key", "Source Width 1440", "Source Width 1.44e+03")))
    return faults


def tracking_faults(data: bytes) -> Faults:
    faults = header_faults(data)
    faults.replace("another layer", "Layer Name ", "Layer Name another ")
    for index, table in enumerate(keyframe_text.tables(faults)):
        faults.late(f"block {index} a frame late", *table.values())
    return faults


# ---- the check

def check_shapes(check: Check, key: ScrambleKey) -> None:
    golden = Scene(check.goldens_project())
    check.verdict(SHAPE, "golden", judge_shape(check.golden(SHAPE), golden, key))
    cases = shape_projects.cases()
    for name in ("layers", "fields", "both views", "far"):
        scene = cases[name].scene
        data = check.export(SHAPE, name, scene.project, *cases[name].arguments)
        if data is None:
            continue
        findings = judge_shape(data, scene, key)
        findings.add(nuke_script.judge_lists(data[data.index(WORD.encode()):], check.scratch))
        if check.verdict(SHAPE, name, findings) and name == "far":
            for faults in (shape_faults(data), roto_faults.words(data), roto_faults.numbers(data)):
                check.faults(SHAPE, name, faults, lambda text: judge_shape(text, scene, key))


def check_tracking(check: Check) -> None:
    project = check.goldens_project()
    check.verdict(TRACKING, "golden", judge_tracking(check.golden(TRACKING), project, PlanarLayer(project).shot()))
    strong = shots.hand_made(shots.STRONG)
    for name, project, reference in (("strong", strong, None), ("strong from 1022", strong, 1022),
                                     ("interlaced", shots.interlaced(), None)):
        layer = PlanarLayer(project)
        shot = layer.shot(reference=None if reference is None else reference - layer.offset)
        arguments = [] if reference is None else ["--reference-frame", str(reference)]
        check.prove(TRACKING, name, project, lambda text: judge_tracking(text, project, shot), arguments,
                    None if reference is None else lambda data: [
                        *tracking_faults(data), *keyframe_formats.misplaced(data, shot.height),
                        *keyframe_formats.inexact(data)])


def body(check: Check) -> None:
    try:
        key = key_of_page(check.source / "docs" / "formats" / "marlo-blend.md")
    except (OSError, TextError) as error:
        check.fail(str(error))
        return
    check_shapes(check, key)
    check_tracking(check)


if __name__ == "__main__":
    sys.exit(checking.run(__doc__, body, VERIFIES))
