"""What a compositing program does with a pinned layer, and how far rounded input moves the result.

The composition's y runs down from the top edge. A layer has the size of its source; its anchor is its middle. The pin
effect puts the corners of the layer's content at four points in the layer's own coordinates. Then the layer is scaled
along its own axes, turned clockwise about its anchor, and moved so that the anchor comes to Position. A turn is a turn
on the screen, so coordinates are made square by the pixel aspect before it, and narrowed again after it.

Arrays have one row per frame: pins are (frames, corners, 2), positions and scales (frames, 2), rotations (frames,).
"""

from dataclasses import dataclass

import numpy as np


@dataclass(frozen=True)
class Transform:
    """The keys of a layer, or the errors of these keys: pixels, factors, radians clockwise."""
    position: np.ndarray
    scale: np.ndarray
    rotation: np.ndarray


@dataclass(frozen=True)
class Layer:
    """`aspect` is the width of a pixel divided by its height, as it is seen."""
    width: float
    height: float
    aspect: float

    def anchor(self) -> np.ndarray:
        return np.array([self.width / 2.0, self.height / 2.0])

    def place(self, transform: Transform, pin: np.ndarray) -> np.ndarray:
        """Where points of the layer come to lie in the composition."""
        return transform.position[:, None, :] + self._turn(transform, self._scaled(transform, pin)) / self._square()

    def place_error(self, transform: Transform, pin: np.ndarray, error: Transform, pin_error: np.ndarray) -> np.ndarray:
        """Largest distance, in x and in y, of placed points from where exact keys would place them.

        Each argument may be off by its error: those of the pin grow with the scale, those of scale and rotation with
        the distance of the point from the anchor. Products of errors are counted too, so this is a true bound.
        """
        scaled = self._scaled(transform, pin)
        offset = np.abs(pin - self.anchor()) * self._square()
        scale_error = error.scale[:, None, :]
        scaled_error = (np.abs(transform.scale[:, None, :]) + scale_error) * pin_error * self._square()
        scaled_error = scaled_error + scale_error * offset
        # |R(a + e) v - R(a) v| is at most e times the length of v across, and e squared / 2 of its length along.
        turned = np.abs(self._turn(transform, scaled))
        turned_error = self._turn_sizes(transform, scaled_error)
        angle = error.rotation[:, None, None]
        reach = turned + turned_error
        turned_error = turned_error + angle * reach[..., ::-1] + angle ** 2 / 2.0 * reach
        return error.position[:, None, :] + turned_error / self._square()

    def unplace(self, transform: Transform, points: np.ndarray) -> np.ndarray:
        """The pin with which the layer shows its corners at these points of the composition."""
        back = Transform(transform.position, transform.scale, -transform.rotation)
        offset = (points - transform.position[:, None, :]) * self._square()
        return self.anchor() + self._turn(back, offset) / self._square() / transform.scale[:, None, :]

    def _square(self) -> np.ndarray:
        return np.array([self.aspect, 1.0])

    def _scaled(self, transform: Transform, pin: np.ndarray) -> np.ndarray:
        """Scaled offsets from the anchor, in square pixels."""
        return (pin - self.anchor()) * self._square() * transform.scale[:, None, :]

    @staticmethod
    def _turn(transform: Transform, vectors: np.ndarray) -> np.ndarray:
        """Clockwise as seen on a screen whose y runs down."""
        cos, sin = np.cos(transform.rotation)[:, None], np.sin(transform.rotation)[:, None]
        x, y = vectors[..., 0], vectors[..., 1]
        return np.stack([cos * x - sin * y, sin * x + cos * y], axis=-1)

    @staticmethod
    def _turn_sizes(transform: Transform, sizes: np.ndarray) -> np.ndarray:
        """The extent in x and y of boxes of these sizes, turned."""
        cos, sin = np.abs(np.cos(transform.rotation))[:, None], np.abs(np.sin(transform.rotation))[:, None]
        x, y = sizes[..., 0], sizes[..., 1]
        return np.stack([cos * x + sin * y, sin * x + cos * y], axis=-1)
