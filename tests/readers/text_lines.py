"""The lines of a text that has to be exactly what its format says."""

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
