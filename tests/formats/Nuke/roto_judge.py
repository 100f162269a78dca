"""Whether the curve tree of a roto node shows the contours of a project.

Every bound comes from the digits of the text that is judged: a printed number stands for any number within half a unit
of its last digit, and what is computed from printed numbers for all that these can make of it. X-splines may leave
the curve by 0.05 pixels more, as they turn into Bezier curves.
"""

from dataclasses import dataclass
from functools import lru_cache
from typing import List, Optional, Tuple

import numpy as np

import nuke_script
import shape_model
from bounded import Bounded, carried, exact, stacked
from findings import Findings
from nuke_script import Curve
from shape_model import ARRIVING, LEAVING, VERTEX, X_SPLINE, Contour, Layer, Outline, Scene
from texts import six_digits

# Allowance for the arithmetic of doubles: coordinates go through a few homographies.
ARITHMETIC = 1e-8

# Entries of motion matrices are multiplied by this, so that few decimals keep the small ones.
MATRIX_SCALE = 1e6


@dataclass(frozen=True)
class Scramble:
    """The map of a coordinate to what is printed in its stead: scale * value + bias."""
    scale: float = 1.0
    bias: float = 0.0

    def undone(self, printed: Bounded) -> Bounded:
        return (printed - self.bias) * (1.0 / self.scale)


def judge(findings: Findings, tree: nuke_script.Tree, scene: Scene, with_matrix: bool,
          scramble: Scramble = Scramble()) -> None:
    """The lowest layer stands first."""
    findings.same("name of the node", tree.node_name, _word(scene.layers[0][0].name))
    layers = [layer for views in reversed(scene.layers) for layer in views]
    if findings.same("layers", [node.name for node in tree.layers], [_node_name(layer) for layer in layers]):
        for node, layer in zip(tree.layers, layers):
            _judge_layer(findings, node, layer, scene, with_matrix, scramble)


def _word(name: str) -> str:
    return name.replace(" ", "_")


def _node_name(layer: Layer) -> str:
    return _word(f"{layer.name}.{layer.view_name}" if layer.several_views else layer.name)


def _judge_layer(findings: Findings, node: nuke_script.LayerNode, layer: Layer, scene: Scene, with_matrix: bool,
                 scramble: Scramble) -> None:
    findings.same(f"{node.name}: visible", node.visible, "0" if layer.record.get("hidden", False) else "1")
    if not findings.same(f"{node.name}: has a matrix", node.motion is not None, with_matrix and bool(layer.contours)):
        return
    if node.motion is not None:
        findings.add(_judged_motion(node.motion, layer))
    names = [_word(contour.name) for contour in layer.contours]
    if not findings.same(f"{node.name}: shapes", [shape.name for shape in node.shapes], names):
        return
    for shape, contour in zip(node.shapes, layer.contours):
        place = f"{node.name}/{shape.name}"
        findings.same(f"{place}: matrix of its own", shape.motion, None)
        flag = 8224 if contour.closed else 8192
        findings.same(f"{place}: flags", shape.flags, (flag, flag))
        _judge_attributes(findings, place, shape.attributes, layer, scene)
        findings.add(_judged_outlines(place, shape.main, shape.feather, layer, contour, node.motion, with_matrix,
                                      scramble))


def _judge_attributes(findings: Findings, place: str, values: Tuple[str, ...], layer: Layer, scene: Scene) -> None:
    found = dict(zip(nuke_script.SHAPE_ATTRIBUTES, values))
    clip = scene.project["clips"][0]
    offset, end = clip.get("frameOffset", 0), clip["frameCount"] - 1
    if layer.first == layer.last:
        lifetime = "2"
    elif layer.first == 0:
        lifetime = "0" if layer.last == end else "1"
    else:
        lifetime = "3" if layer.last == end else "4"
    subtracts = layer.record.get("blend", "add") == "subtract"
    expected = {
        "vis": "1", "a": "1", "ao": "1", "opc": "1", "bm": "12" if subtracts else "0",
        "inv": "1" if layer.record.get("invert", False) else "0",
        "mbo": "0", "mb": "1", "mbs": "0.5", "mbsot": "0", "mbso": "0", "fo": "1", "fx": "0", "fy": "0", "ff": "1",
        "ft": "0", "nv": "1", "view1": str(layer.view + 1), "ltn": str(layer.first + offset),
        "ltm": str(layer.last + offset), "ltt": lifetime}
    findings.same(f"{place}: attributes", {name: found[name] for name in expected}, expected)
    fill = layer.record.get("colour", [255] * 4)
    for suffix, colour in (("", fill), ("o", layer.record.get("overlayColour", fill))):
        printed = [six_digits(found[name + suffix]) for name in "rgb"]
        findings.printed("colour", printed, np.array(colour[:3]) / 255.0, ARITHMETIC, place)


def _lines(layer: Layer) -> np.ndarray:
    """From the clip's raster to full-frame lines."""
    return np.diag([1.0, float(layer.line_height), 1.0])


def _compare_times(findings: Findings, place: str, found: Bounded, frames: List[int], layer: Layer) -> bool:
    if not findings.same(f"{place}: number of keys", len(found.value), len(frames)):
        return False
    shown = np.array([layer.shown(frame) for frame in frames])
    findings.compare("frame", found.value, shown, found.error + ARITHMETIC, place)
    return True


@lru_cache(maxsize=64)
def _judged_motion(text: str, layer: Layer) -> Findings:
    """The matrix of every frame, which is the identity for a single one."""
    findings, motion, frames = Findings(), nuke_script.matrix(text), list(layer.frames())
    if not findings.same(f"{layer.name}: moves", motion is not None, len(frames) > 1) or motion is None:
        return findings
    if not _compare_times(findings, layer.name, motion.times, frames, layer):
        return findings
    expected = np.zeros((len(frames), 4, 4))
    lines = _lines(layer)
    for matrix, frame in zip(expected, frames):
        plane = lines @ layer.motion(frame) @ np.linalg.inv(lines)
        matrix[np.ix_([0, 1, 3], [0, 1, 3])] = plane * MATRIX_SCALE
        matrix[2, 2] = MATRIX_SCALE
    # Entries are sums of products of a size that the text doesn't show; that of the largest bounds it.
    entries = motion.entries
    findings.compare("matrix", entries.value, expected.reshape(-1, 16),
                     entries.error + 1e-12 * np.abs(expected).max(), layer.name)
    return findings


@lru_cache(maxsize=256)
def _judged_outlines(place: str, main: str, feather: str, layer: Layer, contour: Contour, motion: Optional[str],
                     with_matrix: bool, scramble: Scramble) -> Findings:
    """What is found of a shape is remembered, as a fault spoils one of many."""
    findings = Findings()
    matrix = nuke_script.matrix(motion) if motion is not None else None
    _Outlines(findings, place, layer, contour, matrix, with_matrix, scramble).judge(
        nuke_script.points(main), nuke_script.points(feather))
    return findings


@lru_cache(maxsize=None)
def _expected(layer: Layer, contour: Contour, frame: int, feather: bool, apart: bool) -> Outline:
    """In full-frame lines: as the contour is seen, or as it lies in the plane when the motion stands apart."""
    outline = layer.plane(contour, frame, feather) if apart else layer.seen(contour, frame, feather)
    return outline.lines(layer.line_height)


class _Outlines:
    """The keys of a shape held against its contour."""

    def __init__(self, findings: Findings, place: str, layer: Layer, contour: Contour,
                 motion: Optional[nuke_script.Matrix], with_matrix: bool, scramble: Scramble) -> None:
        self._findings, self._place = findings, place
        self._layer, self._contour, self._motion, self._scramble = layer, contour, motion, scramble
        self._apart = with_matrix and layer.first != layer.last

    def judge(self, main_points: List[Tuple[Curve, Curve]], feather_points: List[Tuple[Curve, Curve]]) -> None:
        frames = self._layer.keys_of(self._contour) if self._apart else list(self._layer.frames())
        if self._apart and not self._contour.bezier:
            frames = self._with_own_keys(main_points[0][0], frames)
        main, feather = self._read(main_points, frames), self._read(feather_points, frames)
        if main is None or feather is None:
            return
        feather_values, plain = feather[0], self._descrambled(main[0])
        if not self._findings.same(f"{self._place}: shape of the feather", feather_values.value.shape, plain.value.shape):
            return
        self._compare_slopes("slope", main, plain, frames)
        self._compare_slopes("slope of feather", feather, feather_values, frames)
        if self._contour.bezier:
            self._compare_handles(plain, feather_values, frames)
        if not self._contour.bezier:
            plain, feather_values = (self._every_frame(values, frames) for values in (plain, feather_values))
            frames = list(self._layer.frames())
        for name, curves, feathered in zip(("", "feather "), _both(plain, feather_values), (False, True)):
            self._compare_curves(name, curves, feathered, frames)
        if self._motion is not None and self._contour.bezier:
            self._compare_motion((plain,) + main[1:], feather, frames)

    def _with_own_keys(self, curve: Curve, own: List[int]) -> List[int]:
        """An X-spline's keys, and those that hold its curve where weights change."""
        frames = {float(self._layer.shown(frame)): frame for frame in self._layer.frames()}
        found = [frames[time] for time in curve.times.value if time in frames]
        return found if set(own).issubset(found) else own

    def _every_frame(self, values: Bounded, frames: List[int]) -> Bounded:
        """What stands in the text at every frame: straight lines from key to key."""
        every = np.clip(list(self._layer.frames()), frames[0], frames[-1])
        after = np.clip(np.searchsorted(frames, every), 1, max(len(frames) - 1, 1)) if len(frames) > 1 else None
        if after is None:
            return values
        before, keys = after - 1, np.array(frames, float)
        along = ((every - keys[before]) / (keys[after] - keys[before]))[:, None, None, None]
        parts = (np.take(part, before, 0) * (1 - along) + np.take(part, after, 0) * along
                 for part in (values.value, values.error))
        return Bounded(*parts)

    def _expected(self, frame: int, feather: bool) -> Outline:
        return _expected(self._layer, self._contour, frame, feather, self._apart)

    def _read(self, points: List[Tuple[Curve, Curve]], frames: List[int]):
        """Values, left and right slopes (keys, vertices, 3, 2); slopes are None for a single key."""
        curves = [curve for point in points for curve in point]
        if len(frames) == 1:
            whole = int(self._layer.shown(frames[0]))
            if any(curve.left is not None or curve.times.value[0] != whole for curve in curves):
                self._findings.problem(f"{self._place}: not a single key at {whole}")
                return None
        else:
            for curve in curves:
                if curve.left is None or not _compare_times(self._findings, self._place, curve.times, frames, self._layer):
                    self._findings.problem(f"{self._place}: keys of a curve")
                    return None
        shape = (len(frames), len(points) // 3, 3, 2)

        def together(parts: List[Bounded]) -> Bounded:
            whole = stacked(parts)
            return Bounded(whole.value.reshape(shape), whole.error.reshape(shape))
        values = together([curve.values for curve in curves])
        if len(frames) == 1:
            return values, None, None
        return values, together([curve.left for curve in curves]), together([curve.right for curve in curves])

    def _descrambled(self, printed: Bounded) -> Bounded:
        plain = self._scramble.undone(printed[:, :, VERTEX])
        return stacked([printed[:, :, ARRIVING], plain, printed[:, :, LEAVING]], axis=2)

    def _compare_slopes(self, name: str, curves, values: Bounded, frames: List[int]) -> None:
        """Left slopes lead from the key before, right slopes to the next; at the ends they are 0."""
        if len(frames) == 1:
            return
        steps = np.diff([self._layer.shown(frame) for frame in frames])[:, None, None, None]
        change = (values[1:] - values[:-1]) / steps
        none = exact(np.zeros((1,) + change.value.shape[1:]))
        for found, parts in ((curves[1], (none, change)), (curves[2], (change, none))):
            expected = Bounded(*(np.concatenate([getattr(part, what) for part in parts]) for what in ("value", "error")))
            self._findings.compare(name, found.value, expected.value, found.error + expected.error + ARITHMETIC, self._place)

    def _compare_handles(self, plain: Bounded, feather: Bounded, frames: List[int]) -> None:
        """Vertices, and what is told relative to them, number by number."""
        expected = {"main": [], "feather": []}
        for frame in frames:
            mask, blur = self._expected(frame, False), self._expected(frame, True)
            expected["main"].append(self._relative(mask, mask.points[:, VERTEX]))
            offsets = blur.points[:, VERTEX] - mask.points[:, VERTEX]
            expected["feather"].append(self._relative(blur, offsets))
        for name, found in (("main", plain), ("feather", feather)):
            # The text is made of double numbers of the size of a coordinate.
            bound = found.error + ARITHMETIC + 1e-12 * np.abs(plain.value).max()
            self._findings.compare(name, found.value, np.array(expected[name]), bound, self._place)

    @staticmethod
    def _relative(outline: Outline, vertices: np.ndarray) -> np.ndarray:
        handles = np.where(outline.drawn()[..., None], outline.points - outline.points[:, VERTEX:VERTEX + 1], 0.0)
        handles[:, VERTEX] = vertices
        return handles

    def _compare_curves(self, name: str, curves: Bounded, feathered: bool, frames: List[int]) -> None:
        """Curves at their keys, sampled densely; where the vertices of an X-spline's curve are is left to the text."""
        for i, frame in enumerate(frames):
            expected = self._expected(frame, feathered)
            found = Outline(curves.value[i], None, self._contour.closed)
            error = float(np.linalg.norm(curves.error[i], axis=-1).max())
            place = f"{self._place} at frame {frame}"
            if self._contour.bezier:
                if self._findings.same(f"{place}: vertices", len(found.points), len(expected.points)):
                    self._findings.compare(name + "curve", found.dense, expected.dense,
                                           error + ARITHMETIC, place)
                continue
            away = shape_model.apart(found, expected)
            self._findings.compare(name + "x-spline", away, np.zeros(len(away)), X_SPLINE + error, place)

    def _compare_motion(self, main, feather, frames: List[int]) -> None:
        """In every frame, between keys too, the curve of the plane through the matrix is the contour that is seen."""
        shown = [self._layer.shown(frame) for frame in frames]
        for i, frame in enumerate(self._layer.frames()):
            at = self._layer.shown(frame)
            k = min(int(np.searchsorted(shown, at, side="right")) - 1, len(shown) - 2)
            length = shown[k + 1] - shown[k]
            plane = _both(*(_between(*curves, k, (at - shown[k]) / length, length) for curves in (main, feather)))
            entries, keep = self._motion.entries[i], np.ix_([0, 1, 3], [0, 1, 3])
            matrix = Bounded(entries.value.reshape(4, 4)[keep], entries.error.reshape(4, 4)[keep])
            for name, points, feathered in zip(("seen", "feather seen"), plane, (False, True)):
                expected = _expected(self._layer, self._contour, frame, feathered, False)
                found, drawn = carried(matrix, points), expected.drawn()
                self._findings.compare(name, found.value[drawn], expected.points[drawn], found.error[drawn] + ARITHMETIC,
                                       f"{self._place} at frame {frame}")


def _between(values: Bounded, left: Bounded, right: Bounded, key: int, part: float, length: float) -> Bounded:
    """Values between a key and the next, by the slopes as they are written."""
    blend = part * part * (3.0 - 2.0 * part)
    straight = values[key] * (1.0 - blend) + values[key + 1] * blend
    leaving, arriving = part * (1.0 - part) ** 2 * length, -part * part * (1.0 - part) * length
    return straight + right[key] * leaving + left[key + 1] * arriving


def _absolute(relative: Bounded, vertices: Bounded) -> Bounded:
    """Points of a curve (..., vertices, 3, 2) from its handles and where its vertices are."""
    return stacked([relative[..., ARRIVING, :] + vertices, vertices, relative[..., LEAVING, :] + vertices], axis=-2)


def _both(plain: Bounded, feather: Bounded) -> Tuple[Bounded, Bounded]:
    """Points of a shape's curve and of its feather, whose vertices are told from the vertices of the former."""
    vertices = plain[..., VERTEX, :]
    return _absolute(plain, vertices), _absolute(feather, vertices + feather[..., VERTEX, :])
