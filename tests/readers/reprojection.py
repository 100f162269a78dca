"""The check that catches nearly every fault of a camera export: points through the camera, both as a file has them.

The camera and the points that were read back from a file are taken to the axes of the project (y up, the camera looks
along -z), the points are projected, and their pixels are compared with those of the project's own camera and points. A
similarity of the whole scene moves no pixel, so what a format does to unit and origin of the world is compared apart.
"""

from dataclasses import dataclass
from typing import Callable, List, Sequence

import numpy as np

# The margin over a bound of first order: numbers of six digits are off by less than 1e-5 of their size, angles by less
# than 1e-5 radians, so products of two errors are below a thousandth of a single one, also where a point is as near to
# the camera as a tenth of the scene's size.
SECOND_ORDER = 1.01

# Allowance for the arithmetic of doubles, pixels.
ARITHMETIC = 1e-6


class ProjectionError(ValueError):
    """A camera doesn't see a point that it should see."""


@dataclass(frozen=True)
class Camera:
    """Positions (frames, 3), rotations (frames, 3, 3) and focal lengths (frames,) in square pixels."""
    position: np.ndarray
    rotation: np.ndarray
    focal: np.ndarray

    def sees(self, points: np.ndarray) -> bool:
        """Whether all points are well in front of the camera in all frames."""
        try:
            self.project(points)
        except ProjectionError:
            return False
        return True

    def project(self, points: np.ndarray) -> np.ndarray:
        """(frames, points, 2) pixels from the middle of the picture, x right and y up, of (frames, points, 3).

        Raises ProjectionError when a point isn't well in front of the camera: its pixel would prove nothing.
        """
        seen = np.einsum("fji,fpj->fpi", self.rotation, points - self.position[:, None, :])
        if seen.size and np.any(seen[..., 2] > -1e-3 * np.abs(seen).max(axis=-1)):
            raise ProjectionError("a point lies beside or behind the camera")
        return self.focal[:, None, None] * seen[..., :2] / -seen[..., 2:]


def spread(read: Callable[..., np.ndarray], values: Sequence[np.ndarray], errors: Sequence[np.ndarray]) -> np.ndarray:
    """How far the result of `read` may be off when each number may be off by its error.

    The first axis of everything is the frame; results of a frame must depend on numbers of that frame alone, and the
    numbers of arrays with a second axis for points on that point alone, for only the axes behind that are taken apart:
    `values` are (frames, 1, numbers) or (frames, points, numbers), or broadcast to that.
    """
    middle = read(*values)
    total = np.zeros(middle.shape)
    for which, (value, error) in enumerate(zip(values, errors)):
        for number in range(value.shape[2]):
            step = np.zeros(value.shape)
            step[..., number] = error[..., number]
            if not step.any():
                continue
            moved = []
            for sign in (1.0, -1.0):
                shifted: List[np.ndarray] = list(values)
                shifted[which] = value + sign * step
                moved.append(np.abs(read(*shifted) - middle))
            total += np.maximum(*moved)
    return SECOND_ORDER * total + ARITHMETIC
