"""Numbers that are known within a bound: arrays of values with the largest errors that they may have.

What is printed with few digits stands for any number near it. Arithmetic on such numbers keeps true bounds, products
of errors included, so that a result can be held against what it should be without a guess.
"""

from dataclasses import dataclass
from typing import Union

import numpy as np

Operand = Union["Bounded", np.ndarray, float]


@dataclass(frozen=True)
class Bounded:
    value: np.ndarray
    error: np.ndarray

    def __add__(self, other: Operand) -> "Bounded":
        other = exact(other)
        return Bounded(self.value + other.value, self.error + other.error)

    def __sub__(self, other: Operand) -> "Bounded":
        return self + exact(other) * -1.0

    def __mul__(self, other: Operand) -> "Bounded":
        other = exact(other)
        error = np.abs(self.value) * other.error + np.abs(other.value) * self.error + self.error * other.error
        return Bounded(self.value * other.value, error)

    def __truediv__(self, other: Operand) -> "Bounded":
        """Raises ValueError when the divisor may be zero."""
        other = exact(other)
        if np.any(np.abs(other.value) <= other.error):
            raise ValueError("a divisor may be zero within its bound")
        quotient = self.value / other.value
        return Bounded(quotient, (self.error + np.abs(quotient) * other.error) / (np.abs(other.value) - other.error))

    def __getitem__(self, index) -> "Bounded":
        return Bounded(self.value[index], self.error[index])


def exact(number: Operand) -> Bounded:
    if isinstance(number, Bounded):
        return number
    number = np.asarray(number, float)
    return Bounded(number, np.zeros(number.shape))


def stacked(parts, axis: int = -1) -> Bounded:
    parts = [exact(part) for part in parts]
    return Bounded(np.stack([part.value for part in parts], axis), np.stack([part.error for part in parts], axis))


def cosine(angle: Bounded) -> Bounded:
    return Bounded(np.cos(angle.value), angle.error)


def sine(angle: Bounded) -> Bounded:
    return Bounded(np.sin(angle.value), angle.error)


def carried(matrix: Operand, points: Operand) -> Bounded:
    """Points (..., 2) through the homography (3, 3)."""
    matrix, points = exact(matrix), exact(points)
    x, y = points[..., 0], points[..., 1]
    u, v, w = (x * matrix[i, 0] + y * matrix[i, 1] + matrix[i, 2] for i in range(3))
    return stacked([u / w, v / w])


def inverse(matrix: Bounded) -> Bounded:
    """The inverse of a homography (3, 3) but for a factor: its adjugate."""
    def minor(i: int, j: int) -> Bounded:
        a, b = [k for k in range(3) if k != i]
        c, d = [k for k in range(3) if k != j]
        return (matrix[a, c] * matrix[b, d] - matrix[a, d] * matrix[b, c]) * (-1.0) ** (i + j)
    return stacked([stacked([minor(j, i) for j in range(3)]) for i in range(3)], axis=0)
