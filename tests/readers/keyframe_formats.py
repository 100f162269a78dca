"""The keyframe text formats of a tracked plane, and the judgement whether a text shows a shot.

Every bound is derived from the text that is judged: a printed number stands for any number within half a unit of its
sixth digit. Texts pass when each number is within that of what it should be, and when the layer that a program builds
from the text alone has its corners, in every frame, no farther off than these halves of units can carry them.
"""

from dataclasses import dataclass
from itertools import combinations
from typing import Callable, Tuple

import numpy as np

import keyframe_text
from faults import Faults
from findings import Findings, judging
from keyframe_text import Block, Document
from layer_model import Layer, Transform
from planar import Shot, crossings, similarities
from texts import half_units

AE_TITLE, SCRATCH_TITLE = keyframe_text.FILE_TITLES
CORNER_NAMES = ("lower left", "lower right", "upper left", "upper right")
# The order in which the blocks of a pin's corners follow on one another.
CORNER_ORDER = (2, 3, 0, 1)

# The comparison that follows a text through its program; the others look at single numbers.
IN_COMPOSITION = "corners in the composition, px"

# Allowance for the arithmetic of doubles, in any unit: a project's numbers go through a few homographies.
ARITHMETIC = 1e-8


@dataclass(frozen=True)
class Format:
    """`params` are the blocks of the pin effect, four corners or one centre; `properties` those of the layer."""
    key: str
    properties: Tuple[str, ...] = ()
    effect: str = ""
    params: Tuple[str, ...] = ()
    title: str = AE_TITLE
    whole_frames_from_0: bool = False


def _numbered(prefix: str, first: int) -> Tuple[str, ...]:
    return tuple(f"{prefix}-{number:04}" for number in range(first, first + 4))


_POSITION_ROTATION_SCALE = ("Position", "Rotation", "Scale")
_SIDES = ("Top Left", "Top Right", "Bottom Left", "Bottom Right")

FORMATS = {form.key: form for form in (
    Format("after_effects_cs3_corner_pin", _POSITION_ROTATION_SCALE, "Corner Pin",
           ("Upper Left", "Upper Right", "Lower Left", "Lower Right")),
    Format("after_effects_transform", ("Position", "Scale", "Rotation")),
    Format("after_effects_corner_pin_with_motion_blur", _POSITION_ROTATION_SCALE, "ADBE Corner Pin",
           _numbered("ADBE Corner Pin", 1)),
    Format("after_effects_cc_power_pin", (), "CC Power Pin", _numbered("CC Power Pin", 2)),
    Format("vantarium_corner_pin", (), "VNT Corner Pin", ("Tracker Center KF",) * 4, whole_frames_from_0=True),
    Format("vantarium_center_point", (), "VNT Match Move", ("Tracker Center KF",), whole_frames_from_0=True),
    Format("after_effects_corner_pin", (), "ADBE Corner Pin", _numbered("ADBE Corner Pin", 1)),
    Format("scratch_corner_pin", _POSITION_ROTATION_SCALE, "SCRATCH Corner Pin", _SIDES, title=SCRATCH_TITLE),
    Format("glimmerset_corner_pin", (), "CC Power Pin", _SIDES),
)}


@judging
def judge(findings: Findings, data: bytes, form: Format, shot: Shot) -> None:
    """Reads a text as its program would and compares it with the shot."""
    document = keyframe_text.parse(data)
    frames, samples = _keys(form, shot)
    findings.same("title", document.title, form.title)
    height = shot.height * (shot.line_height if form.whole_frames_from_0 else 1)
    findings.printed("header", list(document.header.values()),
                     [shot.rate, shot.width, height, shot.pixel_aspect, shot.pixel_aspect], ARITHMETIC,
                     lambda field: keyframe_text.HEADER_FIELDS[field])
    _judge_blocks(findings, document, form, frames)
    if not findings.faults():
        _compare(findings, document, form, shot, frames, samples)


def _keys(form: Format, shot: Shot) -> Tuple[np.ndarray, np.ndarray]:
    """Frame numbers of the rows, and the index of the shot's frame that each of them shows."""
    frames, samples = shot.frames(), np.arange(len(shot.corners))
    if form.whole_frames_from_0:
        whole = frames == np.floor(frames)
        frames, samples = frames[whole], samples[whole]
        ahead = int(frames[0])
        frames = np.concatenate([np.arange(ahead), frames])
        samples = np.concatenate([np.full(ahead, samples[0]), samples])
    return frames, samples


def _judge_blocks(findings: Findings, document: Document, form: Format, frames: np.ndarray) -> None:
    expected = [(None, None, name) for name in form.properties] + [(form.effect, 1, name) for name in form.params]
    findings.same("blocks", [(block.effect, block.index, block.param) for block in document.blocks], expected)
    for block in document.blocks:
        findings.same(f"rows of {block.param!r}", list(block.rows), list(frames))
        third = {"Position": 0.0, "Scale": 100.0}.get(block.param)
        if third is not None:
            findings.same(f"third values of {block.param!r}", {values[2] for values in block.rows.values()}, {third})


def _rows(block: Block) -> np.ndarray:
    return np.array(list(block.rows.values()), float)


def _corner_errors(pins: np.ndarray) -> np.ndarray:
    """Halves of units, and for y, which is turned over in single precision, half a step of a float as well."""
    errors = half_units(pins)
    errors[..., 1] += np.spacing((np.abs(pins[..., 1]) + errors[..., 1]).astype(np.float32)) / 2.0
    return errors + ARITHMETIC


def _at(frames: np.ndarray) -> Callable[..., str]:
    """Names a number of arrays of frames, corners if there are any, and axes."""
    def where(frame: int, *rest: int) -> str:
        return ", ".join([f"frame {frames[frame]:g}"] + [CORNER_NAMES[at] for at in rest[:-1]] + [f"value {rest[-1]}"])
    return where


def _compare(findings: Findings, document: Document, form: Format, shot: Shot, frames: np.ndarray,
             samples: np.ndarray) -> None:
    """All comparisons that a format allows, on texts whose shape is right."""
    at, corners, centres = _at(frames), shot.corners[samples], crossings(shot.corners)[samples]
    if len(form.params) == 1:
        # Of interlaced material the height of a field has been taken off this y.
        lowered = np.array([0.0, shot.height if shot.line_height == 2 else 0.0])
        findings.printed("centre, px", _rows(document.blocks[0]), centres - lowered, ARITHMETIC, at)
        return
    layer = Layer(shot.width, shot.height, shot.aspect())
    still = np.zeros(len(frames))
    expected = transform = Transform(np.tile(layer.anchor(), (len(frames), 1)), np.ones((len(frames), 2)), still)
    error = Transform(np.zeros((len(frames), 2)), np.zeros((len(frames), 2)), still)
    if form.properties:
        scales, turns = similarities(shot.corners, shot.reference - shot.first, shot.aspect())
        expected = Transform(centres, np.repeat(scales[samples, None], 2, axis=1), turns[samples])
        position, scale, rotation = (_rows(document.layer_property(name)) for name in ("Position", "Scale", "Rotation"))
        findings.printed("position, px", position[:, :2], expected.position, ARITHMETIC, at)
        findings.printed("scale, %", scale[:, :2], expected.scale * 100.0, ARITHMETIC, at)
        findings.printed("rotation, degrees", rotation, np.degrees(expected.rotation)[:, None], ARITHMETIC, at)
        transform = Transform(position[:, :2], scale[:, :2] / 100.0, np.radians(rotation[:, 0]))
        errors = [half_units(values) + ARITHMETIC for values in (position[:, :2], scale[:, :2], rotation[:, 0])]
        error = Transform(errors[0], errors[1] / 100.0, np.radians(errors[2]))
    if form.params:
        blocks = [_rows(block) for block in document.effect_blocks()]
        pins = np.stack([blocks[CORNER_ORDER.index(corner)] for corner in range(4)], axis=1)
        pin_errors = _corner_errors(pins)
        # Of interlaced material the pin is measured from the lower edge of the full frame in lines of a field: it
        # lands one height of a field too low.
        pins = pins - np.array([0.0, shot.height * (shot.line_height - 1.0)])
        findings.compare("pin, px", pins, layer.unplace(expected, corners), pin_errors, at)
        findings.compare(IN_COMPOSITION, layer.place(transform, pins), corners,
                         layer.place_error(transform, pins, error, pin_errors), at)


# ---- faults

def misplaced(data: bytes, height: float) -> Faults:
    """Well-formed texts with the usual rows in which the picture is wrong."""
    faults = Faults(data)
    tables = keyframe_text.tables(faults)
    pins = [table for table in tables if table.title.startswith("Effects")]
    points = pins or [table for table in tables if table.title == "Position"]
    faults.number("y flipped", [y for table in points for y in table.column(2)], lambda y: height - y)
    for one, other in combinations(range(len(pins)), 2):
        faults.swap(f"corners {one} and {other} swapped", sum(pins[one].cells, []), sum(pins[other].cells, []))
    for index, table in enumerate(points):
        faults.late(f"point {index} one frame late", *table.values())
    for table in tables:
        if table.title == "Rotation":
            faults.negate("rotation reversed", table.column(1))
        if table.title == "Scale":
            faults.number("scale 1 % off", table.column(1) + table.column(2), lambda percent: percent * 1.01)
    return faults


def inexact(data: bytes) -> Faults:
    """Texts that lack a block or a row, or have a value two units off."""
    faults = Faults(data)
    for index, table in enumerate(keyframe_text.tables(faults)):
        faults.drop(f"block {index} lost", table.place)
        keyframe_text.lose_rows(faults, table, f"block {index}")
        keyframe_text.blur_values(faults, table, f"block {index}")
    return faults
