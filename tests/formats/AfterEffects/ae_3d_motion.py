"""The judgement whether the text of a camera with nulls shows a solve.

The program's axes: x right, y down, z away; a camera looks along +z. A layer is turned by Rx Ry Rz of its three angles;
position, rotation and scale (percent) of a parent apply to its children. The picture is as wide as the header's Source
Width in square pixels, and a focal length in the header's unit divided by the film size is in widths of the picture.
"""

from dataclasses import dataclass, field
from typing import List, Sequence, Tuple

import numpy as np

import ae_3d_text
from ae_3d_nulls import AXES, MILLIMETRE, RIG_SCALE, Options, expected_nulls
from ae_3d_text import POSITION, ROTATIONS, SCALE, ZOOM
from keyframe_text import Document, KeyframeTextError, half_units
from reprojection import Camera, Comparison, ProjectionError, compared, reprojected, spread
from scene_model import Placement, SceneModel, rotating_xyz, rotating_xyz_angles

# The world's scale and the numbers of the lens go through single precision once or twice.
SINGLE = 2e-7

# Allowance for the arithmetic of doubles, in any unit.
ARITHMETIC = 1e-7


@dataclass
class Verdict:
    problems: List[str] = field(default_factory=list)
    comparisons: List[Comparison] = field(default_factory=list)

    def faults(self) -> List[str]:
        return self.problems + [f"{c.name}: error is {c.ratio:.3g} of the bound at {c.where}"
                                for c in self.comparisons if not c.ratio <= 1.0]


class Reading:
    """A text beside the solve that it should show; raises KeyframeTextError when its shape is wrong."""

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

    def names(self) -> List[str]:
        return [null.name for null in self.nulls]

    def focal_pixels(self) -> np.ndarray:
        return self.camera.focal / self.camera.film_width * self.width

    # --- the shape of the text

    def problems(self) -> List[str]:
        return self._header_problems() + (self._null_problems() or self._row_problems())

    def _header_problems(self) -> List[str]:
        clip, text = self.model.clip, self.text
        aspect = clip.get("pixelAspect", 1)
        expected = {"Units Per Second": self.model.project.get("frameRate", 24),
                    "Source Width": int(clip["width"] * aspect), "Source Height": clip["height"],
                    "Source Pixel Aspect Ratio": aspect, "Comp Pixel Aspect Ratio": aspect}
        found = [(name, text.camera.header[name], value) for name, value in expected.items()]
        found += [("FilmSize", text.film_size, self.camera.film_width * self.header_unit),
                  ("FocalLength", text.focal_length, self.camera.focal[0] * self.header_unit)]
        problems = [f"header: {name} is {value:g} instead of {meant:g}" for name, value, meant in found
                    if abs(value - meant) > half_units(value) + SINGLE * value]
        if text.version != ("2.0" if self.options.hierarchy else "1.0"):
            problems.append(f"header: version {text.version}")
        zoomed = ae_3d_text.has(text.camera, ZOOM)
        if zoomed != (self.camera.focal_is_keyed or self.model.legacy):
            problems.append(f"the camera has {'a' if zoomed else 'no'} zoom")
        return problems

    def _null_problems(self) -> List[str]:
        found = [(null.name, null.is_parent, self.text.nulls[null.parent].name if null.parent >= 0 else "")
                 for null in self.text.nulls]
        expected = [(null.name, null.is_parent, null.parent) for null in self.nulls]
        return [] if found == expected else [f"nulls {found} instead of {expected}"]

    def _row_problems(self) -> List[str]:
        problems = []
        documents = [("camera", self.text.camera)] + [(null.name, null.document) for null in self.text.nulls]
        for index, (name, document) in enumerate(documents):
            frames = ae_3d_text.rows(document, POSITION)[0]
            still = 0 < index <= len(self.nulls) and self.nulls[index - 1].still
            if index == 0 and list(frames) != list(self.rows):
                problems.append(f"{name}: {len(frames)} rows from frame {frames[0]:g} instead of {self.model.frames} "
                                f"from {self.rows[0]:g}")
            elif still and list(frames) != [self.rows[0]]:
                problems.append(f"{name}: rows at {list(frames)} instead of {self.rows[0]:g}")
            elif not set(frames) <= set(self.rows):
                problems.append(f"{name}: rows that are no frames of the clip")
        return problems

    # --- its numbers, one by one

    def number_comparisons(self) -> List[Comparison]:
        """Every number of the text against half a unit of its sixth digit."""
        comparisons = self._compare_document("camera", self.text.camera, self.camera.place, False)
        if ae_3d_text.has(self.text.camera, ZOOM):
            found = ae_3d_text.rows(self.text.camera, ZOOM)[1]
            expected = self.camera.focal * self.header_unit
            comparisons.append(self._compare("camera, zoom", self.rows, found, expected[:, None], SINGLE * found))
        for null, expected_null in zip(self.text.nulls, self.nulls):
            comparisons += self._compare_document(null.name, null.document, expected_null.local, True)
        return comparisons

    def _compare_document(self, name: str, document: Document, place: Placement, scaled: bool) -> List[Comparison]:
        frames, found = ae_3d_text.rows(document, POSITION)
        at = np.searchsorted(self.rows, frames)
        position = self.unit * place.position[at] @ AXES
        comparisons = [self._compare(f"{name}, position", frames, found, position, SINGLE * np.abs(position))]
        found = ae_3d_text.rows(document, *ROTATIONS)[1]
        angles = nearest_angles(AXES @ place.rotation[at] @ AXES, found)
        comparisons.append(self._compare(f"{name}, rotation", frames, found, angles, 0.0))
        if scaled:
            found = ae_3d_text.rows(document, SCALE)[1]
            percent = np.repeat(100.0 * place.scale[at, None], 3, axis=1)
            comparisons.append(self._compare(f"{name}, scale", frames, found, percent, SINGLE * percent))
        return comparisons

    @staticmethod
    def _compare(name: str, frames: np.ndarray, found: np.ndarray, expected: np.ndarray, allowed) -> Comparison:
        bound = half_units(found) + allowed + ARITHMETIC
        labels = [f"frame {frame:g}" for frame in frames]
        return compared(name, labels, [name], found[:, None, :], expected[:, None, :], bound[:, None, :])

    # --- the scene that the program builds from them

    def reprojection(self) -> Comparison:
        """Pixels of all nulls through the camera, both from the text alone, against those of the solve. What only
        carries others may lie behind the camera; it is seen in them."""
        camera = Camera(self.camera.place.position, self.camera.place.rotation, self.focal_pixels())
        seen = [i for i, null in enumerate(self.nulls) if not null.is_parent or camera.sees(null.world[:, None])]
        values, errors = self.printed()
        for numbers in (values, errors):
            numbers[2] = numbers[2][:, seen]
        found = self.pixels(*values)
        world = np.stack([self.nulls[i].world for i in seen], axis=1)
        shown = np.stack([self.nulls[i].shown for i in seen], axis=1)
        labels, names = [f"frame {frame:g}" for frame in self.rows], [self.names()[i] for i in seen]
        return reprojected(labels, names, found, camera, world, spread(self.pixels, values, errors), shown)

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
            raise KeyframeTextError(f"null {index} has more parents than a group and a layer")
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


def judge(data: bytes, model: SceneModel, options: Options) -> Verdict:
    """Reads a text as its program would and compares it with the solve."""
    verdict = Verdict()
    try:
        reading = Reading(data, model, options)
        verdict.problems += reading.problems()
        if verdict.problems:
            return verdict
        verdict.comparisons += reading.number_comparisons()
        if reading.nulls:
            verdict.comparisons.append(reading.reprojection())
    except (KeyframeTextError, ProjectionError) as error:
        verdict.problems.append(str(error))
    return verdict


def shows_in_picture(data: bytes, model: SceneModel, options: Options) -> bool:
    """Whether the pixels alone tell that a well-formed text is wrong."""
    try:
        return Reading(data, model, options).reprojection().ratio > 1.0
    except ProjectionError:
        return True
