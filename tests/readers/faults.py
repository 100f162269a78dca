"""Faults that are put into good texts and documents, to prove that a reader notices them.

A place is where a piece of a text begins and ends. Of its format a reader lists the places; what happens to them is the
same for all: other words, another number, dropped, repeated, exchanged, moved on by one.
"""

import copy
import re
from texts import two_units_off
from typing import Any, Callable, Iterable, Iterator, List, Sequence, Tuple


Place = Tuple[int, int]
REMOVED = object()


class Faults:
    """Faults of one text: a name and the text in which this one thing is wrong. Raises ValueError for what changes
    nothing, so that a fault that is no longer in its place is missed."""

    def __init__(self, data: bytes) -> None:
        self.text = data.decode("utf-8")
        self._made: List[Tuple[str, bytes]] = []

    def __iter__(self) -> Iterator[Tuple[str, bytes]]:
        return iter(self._made)

    # ---- where

    def places(self, pattern: str, within: Place = (0, -1)) -> List[Place]:
        """Where a pattern, or its group if it has one, is found."""
        end = within[1] if within[1] >= 0 else len(self.text)
        found = re.compile(pattern, re.M | re.S)
        return [match.span(found.groups) for match in found.finditer(self.text, within[0], end)]

    def place(self, pattern: str, within: Place = (0, -1)) -> Place:
        """The first of them."""
        places = self.places(pattern, within)
        if not places:
            raise ValueError(f"nothing to spoil at {pattern!r}")
        return places[0]

    def at(self, place: Place) -> str:
        return self.text[place[0]:place[1]]

    # ---- what

    def put(self, name: str, *edits: Tuple[Place, str]) -> None:
        """Other words at some places, which may not overlap."""
        pieces, done = [], 0
        for (start, end), words in sorted(edits):
            if start < done:
                raise ValueError(f"{name}: places overlap")
            pieces += [self.text[done:start], words]
            done = end
        text = "".join(pieces) + self.text[done:]
        if text == self.text:
            raise ValueError(f"the fault changes nothing: {name}")
        self._made.append((name, text.encode("utf-8")))

    def replace(self, name: str, old: str, new: str, last: bool = False) -> None:
        """Other words where some stand, at their first or last place; "\\0" stands for the end of the text."""
        text = self.text + "\0"
        at = text.rfind(old) if last else text.find(old)
        if at < 0:
            raise ValueError(f"nothing to replace for {name!r}")
        self.put(name, ((at, min(at + len(old), len(self.text))), new.rstrip("\0")))

    def replace_all(self, rows: Iterable[Tuple[str, str, str]]) -> None:
        """One fault for each name, old words and new ones."""
        for row in rows:
            self.replace(*row)

    def drop(self, name: str, *places: Place) -> None:
        self.put(name, *((place, "") for place in places))

    def repeat(self, name: str, place: Place) -> None:
        self.put(name, (place, 2 * self.at(place)))

    def edit(self, name: str, places: Iterable[Place], change: Callable[[str], str]) -> None:
        self.put(name, *((place, change(self.at(place))) for place in places))

    def number(self, name: str, places: Iterable[Place], change: Callable[[float], float]) -> None:
        """Other numbers of six digits."""
        self.edit(name, places, lambda text: f"{change(float(text)):.6g}")

    def negate(self, name: str, places: Iterable[Place]) -> None:
        self.edit(name, places, lambda text: text[1:] if text.startswith("-") else "-" + text if float(text) else text)

    def off(self, name: str, place: Place, unit: Callable[[str], str] = two_units_off) -> None:
        """A number with two more units of its last digit."""
        self.edit(f"{name} off by 2 units", [place], unit)

    def swap(self, name: str, ones: Sequence[Place], others: Sequence[Place]) -> None:
        """Pieces that change places, pair by pair."""
        pairs = list(zip(ones, others))
        self.put(name, *[(one, self.at(other)) for one, other in pairs + [pair[::-1] for pair in pairs]])

    def late(self, name: str, *columns: Sequence[Place]) -> None:
        """Each column has its values a row late."""
        self.put(name, *((place, self.at(before)) for column in columns for place, before in zip(column[1:], column)))


def spoiled(document: Any, path: Sequence[Any], value: Any) -> Any:
    """A copy of a JSON document with another value at a path of keys and indices, or none."""
    result = copy.deepcopy(document)
    holder = result
    for step in path[:-1]:
        holder = holder[step]
    if value is REMOVED:
        del holder[path[-1]]
    else:
        holder[path[-1]] = value
    return result
