"""The nine keyframe text formats of a tracked plane, and the judgement whether a text shows a shot.

Every bound is derived from the text that is judged: a printed number stands for any number within half a unit of its
sixth digit. Texts pass when each number is within that of what it should be, and when the layer that a program builds
from the text alone has its corners, in every frame, no farther off than these halves of units can carry them.
"""

from dataclasses import dataclass, field
from typing import List, Tuple

import numpy as np

import keyframe_text
from keyframe_text import half_units
from layer_model import Layer, Transform
from planar import Shot, crossings, similarities

AE_TITLE, SCRATCH_TITLE = keyframe_text.FILE_TITLES
CORNER_NAMES = ("lower left", "lower right", "upper left", "upper right")
# The order in which the blocks of a pin's corners follow on one another.
CORNER_ORDER = (2, 3, 0, 1)

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

FORMATS = (
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
)


@dataclass(frozen=True)
class Comparison:
    """Largest error of a quantity, largest error divided by its bound, and where the latter stands."""
    name: str
    error: float
    ratio: float
    where: str


@dataclass
class Verdict:
    frames: int = 0
    problems: List[str] = field(default_factory=list)
    comparisons: List[Comparison] = field(default_factory=list)

    def faults(self) -> List[str]:
        return self.problems + [f"{c.name}: error is {c.ratio:.3g} of the bound at {c.where}"
                                for c in self.comparisons if not c.ratio <= 1.0]


def judge(data: bytes, form: Format, shot: Shot) -> Verdict:
    """Reads a text as its program would and compares it with the shot."""
    verdict = Verdict()
    try:
        document = keyframe_text.parse(data)
    except keyframe_text.KeyframeTextError as error:
        verdict.problems.append(str(error))
        return verdict
    frames, samples = _keys(form, shot)
    verdict.frames = len(frames)
    verdict.problems += _header_problems(document, form, shot) + _block_problems(document, form, frames)
    if not verdict.problems:
        verdict.comparisons += _compare(document, form, shot, frames, samples)
    return verdict


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


def _header_problems(document: keyframe_text.Document, form: Format, shot: Shot) -> List[str]:
    height = shot.height * (shot.line_height if form.whole_frames_from_0 else 1)
    expected = (shot.rate, shot.width, height, shot.pixel_aspect, shot.pixel_aspect)
    problems = [] if document.title == form.title else [f"title {document.title!r} instead of {form.title!r}"]
    for (name, found), value in zip(document.header.items(), expected):
        if abs(found - value) > half_units(found) + ARITHMETIC:
            problems.append(f"header: {name} is {found:g} instead of {value:g}")
    return problems


def _block_problems(document: keyframe_text.Document, form: Format, frames: np.ndarray) -> List[str]:
    expected = [(None, None, name) for name in form.properties] + [(form.effect, 1, name) for name in form.params]
    found = [(block.effect, block.index, block.param) for block in document.blocks]
    if found != expected:
        return [f"blocks {found} instead of {expected}"]
    problems = []
    for block in document.blocks:
        if list(block.rows) != list(frames):
            odd = sorted(set(block.rows) ^ set(frames))
            problems.append(f"block {block.param!r}: {len(block.rows)} rows instead of {len(frames)}, frames {odd[:5]}")
        third = {"Position": 0.0, "Scale": 100.0}.get(block.param)
        if third is not None and any(values[2] != third for values in block.rows.values()):
            problems.append(f"block {block.param!r}: the third value is not {third:g}")
    return problems


def _rows(block: keyframe_text.Block) -> np.ndarray:
    return np.array(list(block.rows.values()), float)


def _corner_errors(pins: np.ndarray) -> np.ndarray:
    """Halves of units, and for y, which is turned over in single precision, half a step of a float as well."""
    errors = half_units(pins)
    errors[..., 1] += np.spacing((np.abs(pins[..., 1]) + errors[..., 1]).astype(np.float32)) / 2.0
    return errors + ARITHMETIC


def _compare(document: keyframe_text.Document, form: Format, shot: Shot, frames: np.ndarray,
             samples: np.ndarray) -> List[Comparison]:
    """All comparisons that a format allows, on texts whose shape is right."""
    corners = shot.corners[samples]
    layer = Layer(shot.width, shot.height, shot.aspect())
    centres = crossings(shot.corners)[samples]
    if len(form.params) == 1:
        # Of interlaced material the height of a field has been taken off this y.
        lowered = np.array([0.0, shot.height if shot.line_height == 2 else 0.0])
        found = _rows(document.blocks[0])
        return [_compared("centre, px", frames, found, centres - lowered, half_units(found) + ARITHMETIC)]
    still = np.zeros(len(frames))
    transform = Transform(np.tile(layer.anchor(), (len(frames), 1)), np.ones((len(frames), 2)), still)
    error = Transform(np.zeros((len(frames), 2)), np.zeros((len(frames), 2)), still)
    comparisons: List[Comparison] = []
    expected = transform
    if form.properties:
        scales, turns = similarities(shot.corners, shot.reference - shot.first, shot.aspect())
        expected = Transform(centres, np.repeat(scales[samples, None], 2, axis=1), turns[samples])
        transform, error = _read_transform(document)
        comparisons += _compare_transform(frames, transform, expected, error)
    if form.params:
        blocks = [_rows(block) for block in document.effect_blocks()]
        pins = np.stack([blocks[CORNER_ORDER.index(corner)] for corner in range(4)], axis=1)
        pin_errors = _corner_errors(pins)
        # Of interlaced material the pin is measured from the lower edge of the full frame in lines of a field: it
        # lands one height of a field too low.
        pins = pins - np.array([0.0, shot.height * (shot.line_height - 1.0)])
        comparisons.append(_compared("pin, px", frames, pins, layer.unplace(expected, corners), pin_errors))
        placed_errors = layer.place_error(transform, pins, error, pin_errors)
        comparisons.append(_compared("corners in the composition, px", frames, layer.place(transform, pins), corners,
                                     placed_errors))
    return comparisons


def _read_transform(document: keyframe_text.Document) -> Tuple[Transform, Transform]:
    """The layer's keys, and how far the printed numbers may be off."""
    position, scale, rotation = (_rows(document.layer_property(name)) for name in ("Position", "Scale", "Rotation"))
    position, scale, rotation = position[:, :2], scale[:, :2], rotation[:, 0]
    errors = [half_units(values) + ARITHMETIC for values in (position, scale, rotation)]
    return (Transform(position, scale / 100.0, np.radians(rotation)),
            Transform(errors[0], errors[1] / 100.0, np.radians(errors[2])))


def _compare_transform(frames: np.ndarray, found: Transform, expected: Transform, error: Transform) -> List[Comparison]:
    return [
        _compared("position, px", frames, found.position, expected.position, error.position),
        _compared("scale, %", frames, found.scale * 100.0, expected.scale * 100.0, error.scale * 100.0),
        _compared("rotation, degrees", frames, np.degrees(found.rotation)[:, None],
                  np.degrees(expected.rotation)[:, None], np.degrees(error.rotation)[:, None]),
    ]


def _compared(name: str, frames: np.ndarray, found: np.ndarray, expected: np.ndarray, bound: np.ndarray) -> Comparison:
    """Compares arrays whose first axis is the frame, whose last is x and y, with corners between if there are any."""
    error = np.abs(found - expected)
    ratio = error / bound
    worst = np.unravel_index(int(np.argmax(ratio)), ratio.shape)
    corner = f", {CORNER_NAMES[worst[1]]}" if len(worst) == 3 else ""
    axis = f", {'xy'[worst[-1]]}" if found.shape[-1] == 2 else ""
    where = (f"frame {frames[worst[0]]:g}{corner}{axis}: expected {expected[worst]:.9g}, found {found[worst]:.9g}, "
             f"bound {bound[worst]:.3g}")
    return Comparison(name, float(error.max()), float(ratio[worst]), where)
