"""What a judge of an exported text found: things that are wrong, and numbers with how far they are off."""

from dataclasses import dataclass
from functools import wraps
from typing import Any, Callable, Dict, List, Union

import numpy as np

from texts import half_units

# Names a place from the indices of the number that is off most, or is what stands before these indices.
Where = Union[str, Callable[..., str]]


@dataclass(frozen=True)
class Measure:
    """The largest error and bound of a quantity; the largest error divided by its bound, and where that is."""
    error: float
    bound: float
    ratio: float
    where: str


class Findings:
    def __init__(self) -> None:
        self.problems: List[str] = []
        self.measures: Dict[str, Measure] = {}

    def problem(self, text: str) -> None:
        self.problems.append(text)

    def same(self, name: str, found: Any, expected: Any) -> bool:
        if found != expected:
            self.problem(f"{name}: {_short(found)} instead of {_short(expected)}")
        return bool(found == expected)

    def compare(self, name: str, found: Any, expected: Any, bound: Any, where: Where = "") -> None:
        """Holds arrays of one shape against each other; what isn't a number is off by any bound."""
        found, expected = np.atleast_1d(np.asarray(found, float)), np.atleast_1d(np.asarray(expected, float))
        if found.shape != expected.shape:
            self.problem(f"{name}: numbers of shape {found.shape} instead of {expected.shape}, {where}")
            return
        if not found.size:
            return
        error, bound = np.abs(found - expected), np.broadcast_to(bound, found.shape)
        with np.errstate(divide="ignore", invalid="ignore"):
            ratio = np.where(error == 0.0, 0.0, np.where(np.isfinite(error), error / bound, np.inf))
        at = np.unravel_index(int(np.argmax(ratio)), ratio.shape)
        place = where(*at) if callable(where) else f"{where} {tuple(int(i) for i in at)}"
        text = f"{place}: expected {expected[at]:.9g}, found {found[at]:.9g}"
        self._join(name, Measure(float(error.max()), float(bound.max()), float(ratio[at]), text))

    def _join(self, name: str, new: Measure) -> None:
        old = self.measures.get(name, Measure(0.0, 0.0, -1.0, ""))
        self.measures[name] = Measure(max(old.error, new.error), max(old.bound, new.bound), max(old.ratio, new.ratio),
                                      new.where if new.ratio > old.ratio else old.where)

    def add(self, other: "Findings") -> None:
        """What was found of a part."""
        self.problems += other.problems
        for name, measure in other.measures.items():
            self._join(name, measure)

    def printed(self, name: str, found: Any, expected: Any, allowed: Any, where: Where = "") -> None:
        """Numbers of six digits: each may be half a unit of its sixth off, and what is allowed beside that."""
        self.compare(name, found, expected, half_units(found) + allowed, where)

    def only(self, name: str) -> "Findings":
        """What one measure alone says."""
        rest = Findings()
        rest.measures = {measure: value for measure, value in self.measures.items() if measure == name}
        return rest

    def faults(self) -> List[str]:
        return self.problems + [f"{name}: error is {m.ratio:.4g} of the bound, {m.where}"
                                for name, m in self.measures.items() if not m.ratio <= 1.0]

    def figures(self) -> str:
        return "; ".join(f"{name}: {m.error:.3g}, of bound {m.ratio:.3f}" for name, m in self.measures.items())


def judging(function: Callable[..., None]) -> Callable[..., Findings]:
    """Makes a judge `function(findings, text, ...)` one that returns its findings; a text that can't be read is a
    problem. TextError and what else says that a text is wrong are ValueErrors."""
    @wraps(function)
    def judge(*arguments: Any) -> Findings:
        findings = Findings()
        try:
            function(findings, *arguments)
        except ValueError as error:
            findings.problem(str(error))
        return findings
    return judge


def _short(value: Any) -> str:
    text = repr(value)
    return text if len(text) < 120 else text[:117] + "..."
