"""Proves that masks stick: rebuilds them from exported mask text for After Effects alone, frame by frame.

usage: check_ae_mask.py MARLO_EXPORT SOURCE_DIR SCRATCH_DIR

A mask with few outlines is carried from them by the homographies beside them: undone at the keys, linear in the plane,
applied again. Then faults are put into the texts, and each has to be noticed.
"""

import sys
from functools import lru_cache
from typing import List, Optional, Tuple

import numpy as np

import checking
import keyframe_text
import mask_text
import shape_projects
from bounded import Bounded, carried, inverse
from checking import Check
from faults import Faults, Place
from findings import Findings, judging
from mask_text import Mask, Outlines
from shape_model import X_SPLINE, Contour, Layer, Outline, Scene, apart
from shape_projects import Case
from texts import six_digits

VERIFIES = {
    "after_effects_mask": "each number within half a unit of its sixth digit, masks in every frame within what follows",
}
KEY, = VERIFIES

# Allowance for the arithmetic of doubles, in coordinates from 0 to 1, and for the parts of homographies.
ARITHMETIC = 1e-10

# A vertex that isn't inside of this many pixels around the origin makes a mask one of an outline per frame.
FAR = 30000


class MaskJudge:
    """A mask held against its contour."""

    def __init__(self, findings: Findings, index: int, mask: Mask, layer: Layer, contour: Contour, base: int) -> None:
        self._findings, self._index, self._mask = findings, index, mask
        self._layer, self._contour, self._base = layer, contour, base
        self._place = f"mask {index}, {layer.name}/{contour.name}"

    def judge(self) -> None:
        self._static()
        self._opacity()
        keys = self._keys()
        frames = [frame - self._base for frame in keys]
        if not self._findings.same(f"{self._place}: frames of outlines", self._mask.frames("Shape data"), frames):
            return
        texts = [mask_text.outlines(text) for _, text in self._mask.rows("Shape data")]
        if self._components() and all([self._outline(frame, text) for frame, text in zip(keys, texts)]):
            self._motion(keys, texts)

    def _apart(self) -> bool:
        """Whether the motion stands beside few outlines."""
        if not self._contour.bezier:
            return False
        vertices = [self._layer.seen(self._contour, frame).points[:, 1] for frame in self._layer.frames()]
        return bool(np.all(np.abs(vertices) < FAR))

    def _keys(self) -> List[int]:
        return self._layer.keys_of(self._contour) if self._apart() else list(self._layer.frames())

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
            self._findings.printed("film back, mm", found, film[side], ARITHMETIC, self._place)

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
        self._findings.same(f"{self._place}: Opacity", list(self._mask.rows("Opacity")), rows)

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
                self._findings.printed("outline", numbers[compared], expected[compared], ARITHMETIC, place)
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


@lru_cache(maxsize=256)
def judged_mask(index: int, mask: Mask, layer: Layer, contour: Contour, base: int) -> Findings:
    """What is found of a mask is remembered, as a fault spoils one of many."""
    findings = Findings()
    MaskJudge(findings, index, mask, layer, contour, base).judge()
    return findings


@judging
def judge(findings: Findings, data: bytes, scene: Scene) -> None:
    contours = [(layer, contour) for layer, in scene.layers for contour in layer.contours]
    header, masks = mask_text.parse(data)
    layer = contours[0][0]
    expected = [layer.rate * layer.line_height, layer.clip["width"], layer.clip["height"], layer.aspect, layer.aspect]
    findings.printed("header", list(header.values()), expected, ARITHMETIC, lambda field: list(header)[field])
    if findings.same("masks", len(masks), len(contours)):
        for index, (mask, (layer, contour)) in enumerate(zip(masks, contours)):
            findings.add(judged_mask(index + 1, mask, layer, contour, scene.playback_in))


# ---- faults

def faults_of(data: bytes) -> Faults:
    """Faults of the first mask of a text, a feathered Bezier curve."""
    faults = Faults(data)
    faults.replace_all((
        ("footer lost", "\nEnd of Keyframe Data\n", ""), ("blank line lost", "\n\n\nEffects", "\n\nEffects"),
        ("another effect number", "shape #1\tScale", "shape #2\tScale"),
        ("open instead of closed", "bezier;closed", "bezier;open"), ("another kind", "bezier;", "xspline;"),
        ("colours swapped", "128\t200\t30", "200\t128\t30"), ("height", "Source Height\t1080", "Source Height\t540")))
    for name, old, new in (("Invert", "1", "0"), ("Blend mode", "3", "1"), ("Layer name", "Front", "front"),
                           ("Film-back width", "24.9", "36"), ("Film-back height", "9.35", "9.34999")):
        faults.replace(name, f"\t{name}\n\tFrame\n\t\t{old}", f"\t{name}\n\tFrame\n\t\t{new}")
    tables = keyframe_text.tables(faults)[:len(mask_text.COLUMNS)]
    names = dict(zip(mask_text.COLUMNS, tables))
    for name, table in names.items():
        faults.drop(f"{name} lost", table.place)
    for name in ("Shape data",) + mask_text.COMPONENTS:
        keyframe_text.lose_rows(faults, names[name], name)
    for name in mask_text.COMPONENTS:
        keyframe_text.blur_values(faults, names[name], name)
    x, y = (names[name].column(1) for name in mask_text.COMPONENTS[:2])
    if [faults.at(place) for place in x] != [faults.at(place) for place in y]:
        faults.put("Translation Y holds Translation X", *((place, faults.at(other)) for place, other in zip(y, x)))
    opacity = names["Opacity"]
    faults.edit("Opacity ends late", opacity.column(0)[-1:], lambda frame: str(int(frame) + 1))
    faults.edit("Opacity reversed", opacity.column(1), lambda text: "0" if text == "100" else "100")
    _spoil_outline(faults, names["Shape data"].cells[1][1])
    return faults


def _spoil_outline(faults: Faults, outline: Place) -> None:
    """Vertices are told by six numbers: where they are, and their handles relative to that."""
    cut = faults.place("/", outline)[0]
    inner, outer = ([faults.places(r"[^,;/]+", vertex) for vertex in faults.places(r"[^;/]+", part)][skipped:]
                    for part, skipped in (((outline[0], cut), 2), ((cut + 1, outline[1]), 0)))
    whole = [(vertex[0][0], vertex[-1][1]) for vertex in inner]
    faults.drop("feather dropped", (cut, outline[1]))
    faults.drop("vertex lost", (whole[0][0], whole[1][0]), (outer[0][0][0], outer[1][0][0]))
    faults.swap("vertices swapped", whole[:1], whole[1:2])
    faults.swap("feather and curve swapped", sum(inner, []), sum(outer, []))
    flipped = [(number, f"{(at == 1) - float(faults.at(number)):.6g}")
               for vertex in inner for at, number in enumerate(vertex) if at % 2]
    faults.put("y flipped", *flipped)
    faults.swap("handles swapped", [place for vertex in inner for place in vertex[2:4]],
                [place for vertex in inner for place in vertex[4:6]])
    for at in range(6):
        faults.off(f"number {at}", inner[2][at])
        faults.off(f"number {at} of the feather", outer[2][at])


def body(check: Check) -> None:
    check.verdict(KEY, "golden", judge(check.golden(KEY), Scene(check.goldens_project())))
    cases = shape_projects.cases()
    del cases["both views"]
    # y of the third vertex is seen 30500 and 23700 pixels away.
    cases["far up"] = Case("far up", Scene(shape_projects.far(13, 36000.0)))
    cases["less far up"] = Case("less far up", Scene(shape_projects.far(13, 28000.0)))
    for case in cases.values():
        # In "layers" the motion stands apart, in "far" an outline goes too far for that.
        check.prove(KEY, case.name, case.scene.project, lambda text: judge(text, case.scene), case.arguments,
                    faults_of if case.name in ("layers", "far") else None)


if __name__ == "__main__":
    sys.exit(checking.run(__doc__, body, VERIFIES))
