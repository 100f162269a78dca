"""What a judge of an exported text found: things that are wrong, and numbers with how far they are off."""

from dataclasses import dataclass
from typing import Any, Callable, Dict, List, Union

import numpy as np


@dataclass(frozen=True)
class Measure:
    """The largest error of a quantity; the largest error divided by its bound, and where that is."""
    error: float
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

    def compare(self, name: str, found: Any, expected: Any, bound: Any, where: Union[str, Callable[..., str]] = "") -> None:
        """Holds arrays of one shape against each other; `where` may name a place from its indices."""
        found, expected = np.atleast_1d(np.asarray(found, float)), np.atleast_1d(np.asarray(expected, float))
        if found.shape != expected.shape:
            self.problem(f"{name}: numbers of shape {found.shape} instead of {expected.shape}, {where}")
            return
        error = np.abs(found - expected)
        ratio = np.where(np.isfinite(error), error / np.broadcast_to(bound, error.shape), np.inf)
        at = np.unravel_index(int(np.argmax(ratio)), ratio.shape)
        place = where(*at) if callable(where) else f"{where} {tuple(int(i) for i in at)}"
        text = f"{place}: expected {expected[at]:.9g}, found {found[at]:.9g}"
        before = self.measures.get(name, Measure(0.0, -1.0, ""))
        worse = ratio[at] > before.ratio
        self.measures[name] = Measure(max(before.error, float(error.max())), max(before.ratio, float(ratio[at])),
                                      text if worse else before.where)

    def faults(self) -> List[str]:
        return self.problems + [f"{name}: error is {m.ratio:.4g} of the bound, {m.where}"
                                for name, m in self.measures.items() if not m.ratio <= 1.0]

    def figures(self) -> str:
        return "; ".join(f"{name}: {m.error:.3g}, of bound {m.ratio:.3f}" for name, m in self.measures.items())


def _short(value: Any) -> str:
    text = repr(value)
    return text if len(text) < 120 else text[:117] + "..."
