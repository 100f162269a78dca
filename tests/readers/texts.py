"""Texts that have to be exactly what their format says: their lines, and their numbers, of which each stands for any
number within half a unit of its last digit."""

import math
import re
from dataclasses import dataclass
from typing import Any, List, Tuple

import numpy as np

from bounded import Bounded


class TextError(ValueError):
    """The text isn't what the format says; the message names the place."""


def decoded(data: bytes) -> str:
    if b"\r" in data or data.startswith(b"\xef\xbb\xbf"):
        raise TextError("a carriage return or a byte order mark")
    try:
        return data.decode("utf-8")
    except UnicodeDecodeError as error:
        raise TextError(f"byte {error.start}: not UTF-8") from None


class Lines:
    """The lines of a text, taken one after the other."""

    def __init__(self, text: str) -> None:
        if not text.endswith("\n"):
            raise TextError("the last line has no end")
        self._lines = text[:-1].split("\n")
        self._at = 0

    def expect(self, *lines: str) -> None:
        for line in lines:
            if self.peek() != line:
                raise self.error(f"{self.peek()[:80]!r} instead of {line[:80]!r}")
            self._at += 1

    def match(self, pattern: str) -> Tuple[str, ...]:
        """The groups of a pattern that the next line has to match."""
        found = re.fullmatch(pattern, self.peek())
        if found is None:
            raise self.error(f"{self.peek()[:80]!r} does not match {pattern[:80]!r}")
        self._at += 1
        return found.groups()

    def take(self) -> str:
        line = self.peek()
        self._at += 1
        return line

    def left(self) -> int:
        return len(self._lines) - self._at

    def peek(self) -> str:
        if not self.left():
            raise TextError("the text ends early")
        return self._lines[self._at]

    def end(self) -> None:
        if self.left():
            raise self.error("text behind the end")

    def error(self, message: str) -> TextError:
        return TextError(f"line {self._at + 1}: {message}")


# ---- numbers

# The digits that a number of most texts carries at most.
DIGITS = 6

_SIX = re.compile(r"-?[0-9]+(\.[0-9]+)?(e[+-][0-9]{2,3})?", re.ASCII)
_PLAIN = re.compile(r"-?(?:0|[1-9][0-9]*)(?:\.([0-9]+))?", re.ASCII)


def six_digits(text: str) -> float:
    """A number of six significant digits at most, in the one way that C prints it as "%.6g"."""
    if not _SIX.fullmatch(text) or text != f"{float(text):.{DIGITS}g}":
        raise TextError(f"{text[:40]!r} is not a number of six digits at most")
    return float(text)


def half_units(values: Any) -> np.ndarray:
    """How far numbers of six digits may lie from what was meant: half a unit of the sixth.

    A number prints as "0" only when it is exactly that.
    """
    values = np.abs(np.asarray(values, float))
    # The margin is far below the sixth digit, and lifts powers of ten over the error of the logarithm.
    exponents = np.floor(np.log10(np.where(values > 0.0, values, 1.0) * (1.0 + 1e-9)))
    return np.where(values > 0.0, 0.5 * 10.0 ** (exponents - DIGITS + 1), 0.0)


def within_half_units(values: Any) -> Bounded:
    return Bounded(np.asarray(values, float), half_units(values))


def two_units_off(text: str) -> str:
    """A number with two units more, or less, of its sixth digit."""
    value = float(text)
    step = 4.0 * float(half_units(value)) or 2e-5
    # 999.999 is lowered, as it would turn into a number with a coarser sixth digit.
    coarser = half_units(value + step) > step / 2.0
    return f"{value - step if coarser else value + step:.6g}"


def last_units_off(text: str) -> str:
    """A number with two units more of its last digit."""
    decimals = len(text.partition(".")[2])
    return f"{float(text) + 2.0 * 10.0 ** -decimals:.{decimals}f}"


@dataclass(frozen=True)
class Digits:
    """At most so many significant digits and decimals; `snap` is what a value is moved by at most before it prints."""
    significant: int
    decimals: int
    snap: float

    def read(self, token: str) -> Tuple[float, float]:
        """A number and how far it may be from what was meant.

        The count of decimals has to be what the size asks for. Without decimals a number is either so large that none
        were left, or what was meant was whole up to half a unit of the last decimal.
        """
        match = _PLAIN.fullmatch(token)
        if match is None:
            raise TextError(f"{token!r} is not a number without exponent")
        value, size, decimals = float(token), abs(float(token)), len(match.group(1) or "")
        if decimals == 0:
            large = self._decimals_of(size) == 0
            return value, (0.5 if large else 0.5 * 10.0 ** -self.decimals) + self.snap
        half = 0.5 * 10.0 ** -decimals
        if decimals not in {self._decimals_of(max(size - half, 1e-9)), self._decimals_of(size + half)}:
            raise TextError(f"{token!r} has {decimals} decimals")
        return value, half + self.snap

    def read_all(self, tokens: List[str]) -> Bounded:
        return Bounded(*np.array([self.read(token) for token in tokens], float).reshape(-1, 2).T)

    def two_units_off(self, token: str) -> str:
        """A number with two units more of the last decimal that it may have."""
        decimals = min(self.decimals, self._decimals_of(abs(float(token))))
        return f"{float(token) + 2.0 * 10.0 ** -decimals:.{decimals}f}"

    def _decimals_of(self, magnitude: float) -> int:
        """How many decimals a number of this size has when it isn't whole."""
        if magnitude <= 0.0:
            return self.decimals
        return min(self.decimals, max(0, math.ceil(self.significant - (math.log10(magnitude) + 1.0))))
