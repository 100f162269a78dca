"""The judgement whether the text of a camera with nulls shows a solve.

The program's axes: x right, y down, z away; a camera looks along +z. A layer is turned by Rx Ry Rz of its three angles;
position, rotation and scale (percent) of a parent apply to its children. The picture is as wide as the header's Source
Width in square pixels, and a focal length in the header's unit divided by the film size is in widths of the picture.
"""

from typing import List, Sequence, Tuple

import numpy as np

import ae_3d_text
from ae_3d_nulls import AXES, MILLIMETRE, RIG_SCALE, Options, expected_nulls
from ae_3d_text import POSITION, ROTATIONS, SCALE, ZOOM
from findings import Findings, judging
from keyframe_text import Document
from reprojection import Camera, spread
from scene_model import Placement, SceneModel, rotating_xyz, rotating_xyz_angles
from texts import TextError, half_units

PICTURE = "reprojection, px"

# The world's scale and the numbers of the lens go through single precision once or twice.
SINGLE = 2e-7

# Allowance for the arithmetic of doubles, in any unit.
ARITHMETIC = 1e-7


class Reading:
    """A text beside the solve that it should show; raises TextError when its shape is wrong."""

    def __init__(self, data: bytes, model: SceneModel, options: Options) -> None:
        self.text, self.model, self.options = ae_3d_text.parse(data), model, options
        self.camera = model.camera(options.view)
        self.nulls = expected_nulls(model, options)
        self.step = 1.0 / model.line_height
        self.rows = (np.arange(model.frames) - model.playback_in) * self.step
        self.width = int(self.text.camera.header["Source Width"])
        # What a millimetre of the camera measures in the header; old solves count pixels.
        self.header_unit = self.width / self.camera.film_width if model.legacy else MILLIMETRE
        # What a scene unit measures in the file: about a pixel for what is as far away as the film is wide.
        self.unit = model.clip["width"] * self.camera.focal[0] / self.camera.film_width
        if "stereo" in model.solve:
            self.unit *= RIG_SCALE

    def focal_pixels(self) -> np.ndarray:
        return self.camera.focal / self.camera.film_width * self.width

    def judge_shape(self, findings: Findings) -> None:
        """Header, nulls and rows."""
        clip, text = self.model.clip, self.text
        aspect = clip.get("pixelAspect", 1)
        found = np.array([*text.camera.header.values(), text.film_size, text.focal_length])
        findings.printed("header", found, [
            self.model.project.get("frameRate", 24), int(clip["width"] * aspect), clip["height"], aspect, aspect,
            self.camera.film_width * self.header_unit, self.camera.focal[0] * self.header_unit], SINGLE * found)
        findings.same("version", text.version, "2.0" if self.options.hierarchy else "1.0")
        findings.same("a zoom", ae_3d_text.has(text.camera, ZOOM), self.camera.focal_is_keyed or self.model.legacy)
        nulls = [(null.name, null.is_parent, text.nulls[null.parent].name if null.parent >= 0 else "")
                 for null in text.nulls]
        if not findings.same("nulls", nulls, [(null.name, null.is_parent, null.parent) for null in self.nulls]):
            return
        findings.same("camera, frames", list(ae_3d_text.rows(text.camera, POSITION)[0]), list(self.rows))
        for null, expected in zip(text.nulls, self.nulls):
            frames = ae_3d_text.rows(null.document, POSITION)[0]
            if expected.still:
                findings.same(f"{null.name}, frames", list(frames), [self.rows[0]])
            elif not set(frames) <= set(self.rows):
                findings.problem(f"{null.name}: rows that are no frames of the clip")

    def judge_numbers(self, findings: Findings) -> None:
        """Every number of the text against half a unit of its sixth digit."""
        self._judge_document(findings, "camera", self.text.camera, self.camera.place, False)
        if ae_3d_text.has(self.text.camera, ZOOM):
            found = ae_3d_text.rows(self.text.camera, ZOOM)[1]
            findings.printed("zoom", found, self.camera.focal[:, None] * self.header_unit, SINGLE * found + ARITHMETIC)
        for null, expected in zip(self.text.nulls, self.nulls):
            self._judge_document(findings, null.name, null.document, expected.local, True)

    def _judge_document(self, findings: Findings, name: str, document: Document, place: Placement,
                        scaled: bool) -> None:
        frames, found = ae_3d_text.rows(document, POSITION)
        at = np.searchsorted(self.rows, frames)

        def where(row: int, axis: int) -> str:
            return f"{name}, frame {frames[row]:g}, {'xyz'[axis]}"
        position = self.unit * place.position[at] @ AXES
        findings.printed("position", found, position, SINGLE * np.abs(position) + ARITHMETIC, where)
        found = ae_3d_text.rows(document, *ROTATIONS)[1]
        findings.printed("rotation", found, nearest_angles(AXES @ place.rotation[at] @ AXES, found), ARITHMETIC, where)
        if scaled:
            percent, found = np.repeat(100.0 * place.scale[at, None], 3, axis=1), ae_3d_text.rows(document, SCALE)[1]
            findings.printed("scale", found, percent, SINGLE * percent + ARITHMETIC, where)

    def judge_picture(self, findings: Findings) -> None:
        """Pixels of all nulls through the camera, both from the text alone, against those of the solve. What only
        carries others may lie behind the camera; it is seen in them."""
        camera = Camera(self.camera.place.position, self.camera.place.rotation, self.focal_pixels())
        seen = [i for i, null in enumerate(self.nulls) if not null.is_parent or camera.sees(null.world[:, None])]
        values, errors = self.printed()
        for numbers in (values, errors):
            numbers[2] = numbers[2][:, seen]
        found = self.pixels(*values)
        shown = np.stack([self.nulls[i].shown for i in seen], axis=1)
        expected = camera.project(np.stack([self.nulls[i].world for i in seen], axis=1))
        names = [self.nulls[i].name for i in seen]
        # Where a null doesn't exist it may be anywhere.
        expected = np.where(shown[..., None], expected, found)
        findings.compare(PICTURE, found, expected, spread(self.pixels, values, errors),
                         lambda row, null, axis: f"frame {self.rows[row]:g}, {names[null]}, {'xy'[axis]}")

    def printed(self) -> Tuple[List[np.ndarray], List[np.ndarray]]:
        """Numbers of the camera, the lens and each null with all its parents, and how far each may be off."""
        camera, camera_error = self._held(self.text.camera, POSITION, *ROTATIONS)
        if ae_3d_text.has(self.text.camera, ZOOM):
            zoom = ae_3d_text.rows(self.text.camera, ZOOM)[1][:, 0]
        else:
            zoom = np.full(self.model.frames, self.text.focal_length)
        lens = np.stack([zoom, np.full(self.model.frames, self.text.film_size)], axis=1)
        chains, chain_errors = zip(*(self._chain(index) for index in range(len(self.text.nulls))))
        values = [camera[:, None], lens[:, None], np.stack(chains, axis=1)]
        errors = [camera_error[:, None], (half_units(lens) + SINGLE * lens)[:, None], np.stack(chain_errors, axis=1)]
        return values, errors

    def _held(self, document: Document, *titles: str) -> Tuple[np.ndarray, np.ndarray]:
        """Values at every frame of the clip, as the program has them between and outside of rows, and their errors."""
        frames, found = ae_3d_text.rows(document, *titles)
        return tuple(np.stack([np.interp(self.rows, frames, column) for column in numbers.T], axis=1)
                     for numbers in (found, half_units(found)))

    def _chain(self, index: int) -> Tuple[np.ndarray, np.ndarray]:
        """Nine numbers for the null and for each of its parents, inner ones first, filled up to the deepest chain."""
        depth = 3
        identity = np.tile([0.0] * 6 + [100.0] * 3, (self.model.frames, depth))
        values, errors = identity, np.zeros(identity.shape)
        at = index
        for level in range(depth):
            if at < 0:
                break
            document = self.text.nulls[at].document
            titles = [POSITION, *ROTATIONS] + [SCALE] * ae_3d_text.has(document, SCALE)
            held, error = self._held(document, *titles)
            values[:, 9 * level:9 * level + held.shape[1]] = held
            errors[:, 9 * level:9 * level + held.shape[1]] = error
            at = self.text.nulls[at].parent
        if at >= 0:
            raise TextError(f"null {index} has more parents than a group and a layer")
        return values, errors

    def pixels(self, camera: np.ndarray, lens: np.ndarray, chains: np.ndarray) -> np.ndarray:
        """What the program shows, (frames, nulls, 2) pixels from the middle, y up."""
        point = chains[..., 0:3]
        for level in range(1, chains.shape[2] // 9):
            numbers = chains[..., 9 * level:9 * level + 9]
            scaled = point * numbers[..., 6:9] / 100.0
            point = numbers[..., 0:3] + np.einsum("fpij,fpj->fpi", rotating_xyz(numbers[..., 3:6]), scaled)
        rotation = AXES @ rotating_xyz(camera[:, 0, 3:6]) @ AXES
        focal = lens[:, 0, 0] / lens[:, 0, 1] * self.width
        return Camera(camera[:, 0, 0:3] @ AXES, rotation, focal).project(point @ AXES)


def nearest_angles(rotation: np.ndarray, found: np.ndarray) -> np.ndarray:
    """Of all triples of angles that make these (rows, 3, 3) matrices, those nearest to the ones found, (rows, 3)."""
    plain = rotating_xyz_angles(rotation)
    over = np.stack([plain[:, 0] + 180.0, 180.0 - plain[:, 1], plain[:, 2] + 180.0], axis=1)
    triples: Sequence[np.ndarray] = [angles + 360.0 * np.round((found - angles) / 360.0) for angles in (plain, over)]
    distances = [np.abs(found - angles).max(axis=1) for angles in triples]
    return np.where((distances[0] <= distances[1])[:, None], *triples)


@judging
def judge(findings: Findings, data: bytes, model: SceneModel, options: Options) -> None:
    """Reads a text as its program would and compares it with the solve."""
    reading = Reading(data, model, options)
    reading.judge_shape(findings)
    if not findings.faults():
        reading.judge_numbers(findings)
    if not findings.faults() and reading.nulls:
        reading.judge_picture(findings)


@judging
def judge_picture(findings: Findings, data: bytes, model: SceneModel, options: Options) -> None:
    """Only whether the pixels are right."""
    Reading(data, model, options).judge_picture(findings)
