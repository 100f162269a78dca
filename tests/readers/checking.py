"""What the readers of scripts and masks share: exports into a scratch folder, verdicts, and faults put into texts."""

import json
import sys
from pathlib import Path
from typing import Any, Callable, Dict, Iterable, Optional, Tuple

from findings import Findings
from tool import Tool

Fault = Tuple[str, bytes]


class Check:
    """Collects what is wrong and prints what was measured."""

    def __init__(self, program: str, scratch: Path) -> None:
        self.tool = Tool(program)
        self.scratch = scratch
        self.texts = 0
        self.failures = 0

    def fail(self, message: str) -> None:
        self.failures += 1
        print("FAILED", message)

    def saved(self, name: str, project: Dict[str, Any]) -> Path:
        target = self.scratch / f"{name}.json"
        target.write_text(json.dumps(project), encoding="utf-8")
        return target

    def export(self, project: Path, key: str, folder: str, extension: str, *arguments: str) -> Optional[bytes]:
        target = self.scratch / folder / (key + extension)
        target.parent.mkdir(parents=True, exist_ok=True)
        try:
            return self.tool.write(target, "export", project, key, *arguments)
        except (RuntimeError, OSError) as error:
            self.fail(str(error))
            return None

    def verdict(self, name: str, findings: Findings) -> bool:
        print(f"{name}: {findings.figures() or 'nothing measured'}")
        for fault in findings.faults()[:5]:
            self.fail(f"{name}: {fault}")
        self.texts += not findings.faults()
        return not findings.faults()

    def faults(self, name: str, text: bytes, faults: Iterable[Fault], judged: Callable[[bytes], Findings]) -> None:
        """Every fault has to be noticed, in a text that is good without it."""
        if judged(text).faults():
            return
        count = 0
        for fault, changed in faults:
            count += 1
            if changed == text:
                self.fail(f"{name}: the fault changes nothing: {fault}")
            elif not judged(changed).faults():
                self.fail(f"{name}: not noticed: {fault}")
        print(f"{name}: {count} faults put in")
        if not count:
            self.fail(f"{name}: no faults")


def replaced(text: str, name: str, old: str, new: str, last: bool = False) -> Fault:
    """The text with one place changed; raises ValueError when there is no such place."""
    head, found, tail = text.rpartition(old) if last else text.partition(old)
    if not found:
        raise ValueError(f"nothing to replace for {name!r}")
    return name, (head + new + tail).encode("utf-8")


def run(script: str, body: Callable[[Check, Path], None]) -> int:
    """The main program of a reader: usage, scratch folder, exit status."""
    if len(sys.argv) != 4:
        print(script, file=sys.stderr)
        return 2
    source, scratch = Path(sys.argv[2]), Path(sys.argv[3])
    scratch.mkdir(parents=True, exist_ok=True)
    check = Check(sys.argv[1], scratch)
    body(check, source)
    print(f"{check.texts} texts are good, {check.failures} failures")
    return 1 if check.failures or not check.texts else 0
