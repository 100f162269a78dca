"""Proves that masks stick: rebuilds them from exported mask text for After Effects alone, frame by frame.

usage: check_ae_mask.py MARLO_EXPORT SOURCE_DIR SCRATCH_DIR

A mask with few outlines is carried from them by the homographies beside them: undone at the keys, linear in the plane,
applied again. Then faults are put into the texts, and each has to be noticed.
"""

import re
import sys
from pathlib import Path
from typing import Iterator, List, Optional, Tuple

import numpy as np

import checking
import mask_text
import shape_projects
from bounded import Bounded, carried, inverse
from checking import Check, Fault, replaced
from findings import Findings
from keyframe_text import half_units
from mask_text import Mask, Outlines
from roto_judge import Scene
from shape_model import X_SPLINE, Contour, Layer, Outline, apart
from text_lines import TextError, six_digits

KEY = "after_effects_mask"

# Allowance for the arithmetic of doubles, in coordinates from 0 to 1, and for the parts of homographies.
ARITHMETIC = 1e-10

# A vertex that isn't inside of this many pixels around the origin makes a mask one of an outline per frame.
FAR = 30000


class MaskJudge:
    """A mask held against its contour."""

    def __init__(self, findings: Findings, index: int, mask: Mask, layer: Layer, contour: Contour, scene: Scene) -> None:
        self._findings, self._index, self._mask = findings, index, mask
        self._layer, self._contour = layer, contour
        self._base = scene.project.get("playback", [0])[0]
        self._place = f"mask {index}, {layer.name}/{contour.name}"

    def judge(self) -> None:
        self._static()
        self._opacity()
        keys = self._keys()
        frames = [frame - self._base for frame in keys]
        if not self._findings.same(f"{self._place}: frames of outlines", self._mask.frames("Shape data"), frames):
            return
        texts = [mask_text.outlines(text) for _, text in self._mask.blocks["Shape data"]]
        if self._components() and all([self._outline(frame, text) for frame, text in zip(keys, texts)]):
            self._motion(keys, texts)

    def _apart(self) -> bool:
        """Whether the motion stands beside few outlines."""
        if not self._contour.bezier:
            return False
        vertices = [self._layer.seen(self._contour, frame).points[:, 1] for frame in self._layer.frames()]
        return bool(np.all(np.abs(vertices) < FAR))

    def _keys(self) -> List[int]:
        first, last = self._layer.first, self._layer.last
        if not self._apart():
            return list(self._layer.frames())
        return sorted({first, last} | {frame for frame in self._contour.frames if first <= frame <= last})

    def _static(self) -> None:
        record, clip = self._layer.record, self._layer.clip
        subtracts = record.get("blend", "add") == "subtract"
        red, green, blue, alpha = record.get("colour", [255] * 4)
        expected = {
            "Blend mode": "2" if subtracts else "3" if self._index == 1 else "1",
            "Invert": "1" if record.get("invert", False) else "0", "Layer name": self._layer.name,
            "Shape colour": f"{alpha}\t{red}\t{green}\t{blue}"}
        for name, value in expected.items():
            self._findings.same(f"{self._place}: {name}", self._mask.static(name), value)
        picture = clip["height"] / (clip["width"] * clip.get("pixelAspect", 1))
        film = clip.get("filmBack", {"width": 36.0, "height": 36.0 * picture})
        for side in ("width", "height"):
            found = six_digits(self._mask.static(f"Film-back {side}"))
            self._findings.compare("film back, mm", found, film[side], half_units(found) + ARITHMETIC, self._place)

    def _opacity(self) -> None:
        first, last = self._layer.first, self._layer.last
        start, end = first - self._base, last - self._base
        rows: List[Tuple[Optional[float], str]] = []
        if start != 0:
            rows = [(0, "0")] + ([(start - 1, "0")] if start > 1 else [])
        if start == 0 and end == last - first:
            rows = [(None, "100")]
        else:
            rows += [(start, "100"), (end, "100")] + ([(end + 1, "0")] if end + 1 < self._layer.clip["frameCount"] else [])
        self._findings.same(f"{self._place}: Opacity", self._mask.blocks["Opacity"], rows)

    def _unit(self, matrix: np.ndarray) -> np.ndarray:
        """A homography of pixels in coordinates from 0 to 1, with a last element of 1."""
        size = np.diag([*self._layer.raster, 1.0])
        matrix = np.linalg.inv(size) @ matrix @ size
        return matrix / matrix[2, 2]

    def _components(self) -> bool:
        frames = list(self._layer.frames())
        for name in mask_text.COMPONENTS:
            if not self._findings.same(f"{self._place}: frames of {name}", self._mask.frames(name),
                                       [frame - self._base for frame in frames]):
                return False
        apart = self._apart()
        parts = [_parts(self._unit(self._layer.motion(frame)) if apart else np.eye(3)) for frame in frames]
        expected = np.array(parts)
        turns = mask_text.COMPONENTS.index("Rotation")
        expected[:, turns] = np.unwrap(expected[:, turns])
        for name, column in zip(mask_text.COMPONENTS, expected.T):
            found = self._mask.values(name)
            if name == "Rotation":
                column = column + 2.0 * np.pi * np.round((found.value[0] - column[0]) / (2.0 * np.pi))
            self._findings.compare(name, found.value, column, found.error + ARITHMETIC, self._place)
        return True

    def _outline(self, frame: int, text: Outlines) -> bool:
        """The outline of one frame, number by number."""
        place = f"{self._place} at frame {frame}"
        good = self._findings.same(f"{place}: kind", (text.kind, text.closed, text.feather is not None),
                                   ("bezier", self._contour.closed, self._contour.has_feather))
        if not self._contour.bezier:
            return good
        for numbers, feathered in ((text.points, False), (text.feather, True)):
            if not good or numbers is None:
                continue
            seen = self._layer.seen(self._contour, frame, feathered)
            expected, compared = self._numbers(seen)
            good = self._findings.same(f"{place}: vertices", len(numbers), len(expected))
            if good:
                self._findings.compare("outline", numbers[compared], expected[compared],
                                       half_units(numbers[compared]) + ARITHMETIC, place)
        return good

    def _numbers(self, outline: Outline) -> Tuple[np.ndarray, np.ndarray]:
        """What a text of the outline says, and which of it the curve shows."""
        points = outline.points / self._layer.raster
        vertices = points[:, 1]
        drawn = outline.drawn()
        shown = np.repeat(np.stack([drawn[:, 1], drawn[:, 0], drawn[:, 2]], axis=1), 2, axis=1)
        return np.hstack([vertices, points[:, 0] - vertices, points[:, 2] - vertices]), shown

    def _motion(self, keys: List[int], texts: List[Outlines]) -> None:
        """Every frame as the importer shows it."""
        frames = list(self._layer.frames())
        matrices = mask_text.homographies(self._mask)
        for feathered in (False, True) if self._contour.has_feather else (False,):
            numbers = [text.feather if feathered else text.points for text in texts]
            planes = [carried(inverse(matrices[frames.index(key)]), mask_text.control_points(number))
                      for key, number in zip(keys, numbers)]
            for i, frame in enumerate(frames):
                k = max(0, min(int(np.searchsorted(keys, frame, side="right")) - 1, len(keys) - 2))
                plane = planes[k]
                if len(keys) > 1:
                    part = (frame - keys[k]) / (keys[k + 1] - keys[k])
                    plane = planes[k] * (1.0 - part) + planes[k + 1] * part
                found = carried(matrices[i], plane)
                expected = self._layer.seen(self._contour, frame, feathered)
                if not self._contour.bezier:
                    self._compare_spline(found, expected, f"{self._place} at frame {frame}")
                    continue
                drawn, size = expected.drawn(), self._layer.raster
                self._findings.compare("seen, px", (found.value * size)[drawn], expected.points[drawn],
                                       ((found.error + ARITHMETIC) * size)[drawn], f"{self._place} at frame {frame}")


    def _compare_spline(self, found: Bounded, expected: Outline, place: str) -> None:
        """A Bezier curve may be that far from the X-spline which it stands for, and its digits move it further."""
        size = self._layer.raster
        curve = Outline(found.value * size, None, self._contour.closed)
        error = float(np.linalg.norm((found.error + ARITHMETIC) * size, axis=-1).max())
        away = apart(curve, expected)
        self._findings.compare("x-spline, px", away, np.zeros(len(away)), X_SPLINE + error, place)


def _parts(matrix: np.ndarray) -> List[float]:
    """The eight numbers of a homography, in the order of the text. The block of the upper left is a turn times a
    symmetric matrix, its polar decomposition."""
    block = matrix[:2, :2]
    turn = np.arctan2(block[1, 0] - block[0, 1], block[0, 0] + block[1, 1])
    cos, sin = np.cos(turn), np.sin(turn)
    stretch = np.array([[cos, sin], [-sin, cos]]) @ block
    scale = np.trace(stretch) / 2.0
    return [matrix[0, 2], matrix[1, 2], scale, turn, (stretch[0, 0] - stretch[1, 1]) / (2.0 * scale), stretch[0, 1] / scale,
            matrix[2, 0], matrix[2, 1]]


def judged(data: bytes, scene: Scene) -> Findings:
    findings = Findings()
    layers = [Layer(scene.project, record, scene.views[0]) for record in scene.records()]
    contours = [(layer, contour) for layer in layers for contour in layer.contours]
    try:
        header, masks = mask_text.parse(data)
        _judge_header(findings, header, contours[0][0], scene)
        if findings.same("masks", len(masks), len(contours)):
            for i, (mask, (layer, contour)) in enumerate(zip(masks, contours)):
                MaskJudge(findings, i + 1, mask, layer, contour, scene).judge()
    except (TextError, ValueError) as error:
        findings.problem(str(error))
    return findings


def _judge_header(findings: Findings, header, layer: Layer, scene: Scene) -> None:
    aspect = layer.clip.get("pixelAspect", 1)
    expected = (scene.project.get("frameRate", 24) * layer.line_height, layer.clip["width"], layer.clip["height"], aspect,
                aspect)
    for (name, found), value in zip(header.items(), expected):
        findings.compare("header", found, value, half_units(found) + ARITHMETIC, name)


# ---- faults

def faults(text: str) -> Iterator[Fault]:
    """Faults of the first mask of a text, a feathered Bezier curve."""
    yield replaced(text, "footer lost", "\nEnd of Keyframe Data\n", "")
    yield replaced(text, "blank line lost", "\n\n\nEffects", "\n\nEffects")
    yield replaced(text, "another effect number", "shape #1\tScale", "shape #2\tScale")
    yield replaced(text, "open instead of closed", "bezier;closed", "bezier;open")
    yield replaced(text, "another kind", "bezier;", "xspline;")
    yield replaced(text, "colours swapped", "128\t200\t30", "200\t128\t30")
    for name, old, new in (("Invert", "1", "0"), ("Blend mode", "3", "1"), ("Layer name", "Front", "front"),
                           ("Film-back width", "24.9", "36"), ("Film-back height", "9.35", "9.34999")):
        yield replaced(text, name, f"\t{name}\n\tFrame\n\t\t{old}", f"\t{name}\n\tFrame\n\t\t{new}")
    yield replaced(text, "height", "Source Height\t1080", "Source Height\t540")
    blocks = text.split("\n\n")
    first = next(i for i, block in enumerate(blocks) if "\tShape data\n" in block)

    def put(name: str, at: int, block: Optional[str]) -> Fault:
        changed = blocks[:at] + ([] if block is None else [block]) + blocks[at + 1:]
        return name, "\n\n".join(changed).encode("utf-8")
    for i, name in enumerate(mask_text.COLUMNS):
        yield put(f"{name} lost", first + i, None)
    for i in range(9):
        rows = blocks[first + i].split("\n")
        for at in (2, len(rows) // 2 + 1, len(rows) - 1):
            yield put(f"row {at} of block {i} lost", first + i, "\n".join(rows[:at] + rows[at + 1:]))
    for i in range(1, 9):
        rows = blocks[first + i].split("\n")
        at = len(rows) // 2 + 1
        frame, value = rows[at].split("\t")[1:]
        step = 4.0 * float(half_units(float(value))) or 1e-5
        rows[at] = f"\t{frame}\t{float(value) + step:.6g}"
        yield put(f"block {i} off by 2 units", first + i, "\n".join(rows))
    one, other = (blocks[first + i].split("\n") for i in (1, 2))
    if one[2:] != other[2:]:
        yield put("Translation Y holds Translation X", first + 2, "\n".join(other[:2] + one[2:]))
    opacity = first + list(mask_text.COLUMNS).index("Opacity")
    rows = blocks[opacity]
    yield put("Opacity ends late", opacity, re.sub(r"\t(\d+)\t0$", lambda m: f"\t{int(m.group(1)) + 1}\t0", rows))
    yield put("Opacity reversed", opacity, re.sub(r"\t(100|0)(?=\n|$)", lambda m: "\t0" if m.group(1) == "100" else "\t100", rows))
    yield from _outline_faults(blocks[first], lambda name, block: put(name, first, block))


def _outline_faults(block: str, put) -> Iterator[Fault]:
    outline = block.split("\n")[3].split("\t")[2]
    head, points = outline.rpartition("closed;")[0] + "closed;", outline.rpartition("closed;")[2].partition("/")
    vertices, feather = points[0].split(";"), points[2].split(";")

    def text(inner: List[str], outer: List[str]) -> str:
        return block.replace(outline, head + ";".join(inner) + ("/" + ";".join(outer) if outer else ""))

    def edited(vertex: str, at: int, change) -> str:
        numbers = vertex.split(",")
        numbers[at] = f"{change(float(numbers[at])):.6g}"
        return ",".join(numbers)
    yield put("feather dropped", text(vertices, []))
    yield put("vertex lost", text(vertices[1:], feather[1:]))
    yield put("vertices swapped", text([vertices[1], vertices[0]] + vertices[2:], feather))
    yield put("feather and curve swapped", text(feather, vertices))
    yield put("y flipped", text([edited(edited(edited(v, 1, lambda y: 1 - y), 3, lambda y: -y), 5, lambda y: -y)
                                 for v in vertices], feather))
    swapped = [",".join((v.split(",") * 2)[i] for i in (0, 1, 4, 5, 2, 3)) for v in vertices]
    yield put("handles swapped", text(swapped, feather))
    for at in range(6):
        raised = edited(vertices[2], at, lambda value: value + 4.0 * float(half_units(value)))
        yield put(f"number {at} off by 2 units", text(vertices[:2] + [raised] + vertices[3:], feather))
        raised = edited(feather[2], at, lambda value: value + 4.0 * float(half_units(value)))
        yield put(f"number {at} of the feather off by 2 units", text(vertices, feather[:2] + [raised] + feather[3:]))


def body(check: Check, source: Path) -> None:
    golden = Path(__file__).with_name("golden")
    check.verdict("golden", judged((golden / KEY / "out.shape4ae").read_bytes(), Scene.of_golden(golden)))
    layers, stereo = shape_projects.layers(), shape_projects.stereo()
    names = [layer["name"] for layer in layers["layers"]]
    cases = (
        ("layers", Scene(layers, names), ("--layers", "all")),
        ("single frame", Scene(layers, ["Still"]), ("--layer", "Still")),
        ("fields", Scene(shape_projects.fields(), ["Screen"]), ()),
        ("left view", Scene(stereo, ["Both eyes"], (0,)), ("--view", "left")),
        ("right view", Scene(stereo, ["Both eyes"], (1,)), ("--view", "right")),
        ("far", Scene(shape_projects.far(), ["Front sign"]), ()))
    for name, scene, arguments in cases:
        folder = name.replace(" ", "_")
        data = check.export(check.saved(folder, scene.project), KEY, folder, ".shape4ae", *arguments)
        if data is not None and check.verdict(name, judged(data, scene)) and name in ("layers", "far"):
            check.faults(name, data, faults(data.decode("utf-8")), lambda text, scene=scene: judged(text, scene))


if __name__ == "__main__":
    sys.exit(checking.run(__doc__, body))
