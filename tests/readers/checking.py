"""The frame of every reader: it exports, judges and plants faults, and counts what came of it.

A reader of formats declares in VERIFIES what it holds each format to. A run fails when a format that is declared there
was not judged by its numbers, or when no fault in a text of it was planted and noticed.
"""

import json
import re
import subprocess
import sys
from pathlib import Path
from typing import Any, Callable, Dict, Iterable, List, Optional, Tuple, Union

from findings import Findings

LOSS = re.compile(r"marlo-export: warning: \w+ (holds no|doesn't hold|holds one clip|counts the lifetimes)")
Project = Union[Path, Dict[str, Any]]


class Check:
    """Collects what is wrong and prints what was measured."""

    def __init__(self, program: str, source: Path, scratch: Path, verifies: Dict[str, str]) -> None:
        self.program, self.source, self.scratch = program, source, scratch
        self.failures = self.passed = 0
        self._verifies, self._measured = verifies, set()
        self.may_warn: Tuple[str, ...] = ()
        self._noticed: Dict[str, int] = {}

    def fail(self, message: str) -> None:
        self.failures += 1
        print("FAILED", message)

    def expect(self, good: bool, message: str) -> bool:
        """Something that has to be so; the message tells what is wrong when it isn't."""
        self.passed += good
        if not good:
            self.fail(message)
        return good

    # ---- the program and its files

    def run(self, *arguments: object) -> Tuple[int, List[str]]:
        """Exit status and the lines of stderr; a run that hangs raises subprocess.TimeoutExpired."""
        done = subprocess.run([self.program, *map(str, arguments)], stdin=subprocess.DEVNULL, capture_output=True,
                              timeout=60, check=False)
        return done.returncode, done.stderr.decode("utf-8", "replace").splitlines()

    def silent(self, *arguments: object) -> bool:
        """Runs what has to succeed without a word, but for what the format can't hold of the project, and for warnings
        with the words of `may_warn`."""
        status, lines = self.run(*arguments)
        errors = [line for line in lines
                  if not LOSS.match(line) and not any(words in line for words in self.may_warn)]
        words = f"'{' '.join(map(str, arguments))}' ended with status {status}: {' / '.join(errors) or 'no words'}"
        if status != 0 or errors:
            self.fail(words)
        return status == 0 and not errors

    def saved(self, name: str, content: Union[Dict[str, Any], str, bytes]) -> Path:
        """A file of the scratch folder with a project or any text in it."""
        file = self.scratch / f"{_word(name)}.json"
        text = json.dumps(content) if isinstance(content, dict) else content
        file.write_bytes(text.encode("utf-8") if isinstance(text, str) else text)
        return file

    def export(self, key: str, name: str, project: Project, *arguments: str) -> Optional[bytes]:
        """What a format makes of a project, when it is a single file."""
        files = self.export_files(key, name, project, *arguments)
        if len(files) == 1:
            return next(iter(files.values()))
        if files:
            self.fail(f"{name}, {key}: {len(files)} files instead of one")
        return None

    def export_files(self, key: str, name: str, project: Project, *arguments: str) -> Dict[str, bytes]:
        """All files that an export to "out" makes, by their names; none when it fails."""
        folder = self.scratch / _word(name) / key
        folder.mkdir(parents=True, exist_ok=True)
        for file in folder.iterdir():
            file.unlink()
        source = project if isinstance(project, Path) else self.saved(name, project)
        suffix = next(self.golden_folder(key).iterdir()).suffix
        if not self.silent("export", source, key, *arguments, "-o", folder / f"out{suffix}"):
            return {}
        return {file.name: file.read_bytes() for file in folder.iterdir()}

    @staticmethod
    def golden_folder(key: str) -> Path:
        return Path(sys.argv[0]).with_name("golden") / key

    def goldens(self, key: str) -> Dict[str, bytes]:
        """The checked-in files of a format; they show the topmost layer of the goldens' project."""
        return {file.name: file.read_bytes() for file in self.golden_folder(key).iterdir()}

    def golden(self, key: str) -> bytes:
        file, = self.goldens(key).values()
        return file

    def goldens_project(self) -> Dict[str, Any]:
        return self.json("tests/formats/project.json")

    def json(self, path: str) -> Dict[str, Any]:
        return json.loads((self.source / path).read_text(encoding="utf-8"))

    # ---- verdicts

    def verdict(self, key: str, name: str, findings: Findings, quiet: bool = False) -> bool:
        """Whether a text is good; says what was found of it."""
        faults = findings.faults()
        if not quiet or faults:
            print(f"{name}, {key}: {findings.figures() or 'nothing measured'}")
        for fault in faults[:5]:
            self.fail(f"{name}, {key}: {fault}")
        self.passed += not faults
        if findings.measures:
            self._measured.add(key)
        return not faults

    def faults(self, key: str, name: str, faults: Iterable[Tuple[str, Any]], judge: Callable[[Any], Findings]) -> None:
        """Every fault has to be noticed, in a text that is good without it."""
        noticed = 0
        for fault, changed in faults:
            if judge(changed).faults():
                noticed += 1
            else:
                self.fail(f"{name}, {key}: not noticed: {fault}")
        self._noticed[key] = self._noticed.get(key, 0) + noticed
        print(f"{name}, {key}: {noticed} faults noticed")
        if not noticed:
            self.fail(f"{name}, {key}: no faults")

    def prove(self, key: str, name: str, project: Project, judge: Callable[[bytes], Findings],
              arguments: Iterable[str] = (),
              faults: Optional[Callable[[bytes], Iterable[Tuple[str, Any]]]] = None) -> None:
        """Exports a project to a single file and judges that; `faults` are made of it when it is good."""
        data = self.export(key, name, project, *arguments)
        if data is not None and self.verdict(key, name, judge(data)) and faults is not None:
            self.faults(key, name, faults(data), judge)

    def finish(self) -> int:
        """The exit status, behind what the declaration asks for and a summary."""
        for key in self._verifies:
            if key not in self._measured:
                self.fail(f"{key} is declared, but no number of it was judged")
            if not self._noticed.get(key):
                self.fail(f"{key} is declared, but no fault in it was noticed")
        for key in sorted(self._measured.union(self._noticed).difference(self._verifies)):
            self.fail(f"{key} is judged without being declared")
        print(f"{self.passed} are good, {sum(self._noticed.values())} faults noticed, {self.failures} failures")
        return 1 if self.failures or not self.passed else 0


def _word(name: str) -> str:
    return name.replace(" ", "_").replace(",", "")


def run(script: str, body: Callable[[Check], None], verifies: Dict[str, str]) -> int:
    """The main program of a reader: usage, scratch folder, exit status. `verifies` is empty for what is no format."""
    if len(sys.argv) != 4:
        print(script, file=sys.stderr)
        return 2
    program, source, scratch = sys.argv[1], Path(sys.argv[2]), Path(sys.argv[3])
    scratch.mkdir(parents=True, exist_ok=True)
    check = Check(program, source, scratch, verifies)
    body(check)
    return check.finish()
