"""Pieces of strict readers of text: its lines, and numbers of six significant digits."""

import re
from typing import Tuple


class TextError(ValueError):
    """The text isn't what the format says; the message names the place."""


def decoded(data: bytes) -> str:
    if b"\r" in data or data.startswith(b"\xef\xbb\xbf"):
        raise TextError("a carriage return or a byte order mark")
    try:
        return data.decode("utf-8")
    except UnicodeDecodeError as error:
        raise TextError(f"byte {error.start}: not UTF-8") from None


_NUMBER = re.compile(r"-?(0|[1-9][0-9]*)(\.[0-9]*[1-9])?(e[+-][0-9]{2,3})?", re.ASCII)


def six_digits(text: str) -> float:
    """A number of six significant digits at most, without zeros at its end."""
    if not _NUMBER.fullmatch(text) or len(re.sub(r"[-.]|e.*", "", text).lstrip("0")) > 6:
        raise TextError(f"{text[:40]!r} is not a number of six digits at most")
    return float(text)


class Lines:
    """The lines of a text, taken one after the other."""

    def __init__(self, text: str) -> None:
        if not text.endswith("\n"):
            raise TextError("the last line has no end")
        self._lines = text[:-1].split("\n")
        self._at = 0

    def expect(self, *lines: str) -> None:
        for line in lines:
            self.match(re.escape(line))

    def match(self, pattern: str) -> Tuple[str, ...]:
        found = re.fullmatch(pattern, self.peek())
        if found is None:
            raise self.error(f"{self.peek()[:80]!r} does not match {pattern[:80]!r}")
        self._at += 1
        return found.groups()

    def take(self) -> str:
        line = self.peek()
        self._at += 1
        return line

    def peek(self) -> str:
        if self._at >= len(self._lines):
            raise TextError("the text ends early")
        return self._lines[self._at]

    def end(self) -> None:
        if self._at != len(self._lines):
            raise self.error("text behind the end")

    def error(self, message: str) -> TextError:
        return TextError(f"line {self._at + 1}: {message}")
