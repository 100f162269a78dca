"""Runs the command line program for the readers."""

import subprocess
from pathlib import Path
from typing import List, Tuple


class Tool:
    def __init__(self, program: str) -> None:
        self._program = program

    def run(self, *arguments: object) -> Tuple[int, List[str]]:
        """Exit status and the lines of stderr; a run that hangs raises subprocess.TimeoutExpired."""
        done = subprocess.run([self._program, *map(str, arguments)], stdin=subprocess.DEVNULL, capture_output=True,
                              timeout=60, check=False)
        return done.returncode, done.stderr.decode("utf-8", "replace").splitlines()

    def write(self, target: Path, *arguments: object) -> bytes:
        """What a run writes to a file that isn't there yet; raises RuntimeError when it fails or says a word."""
        target.unlink(missing_ok=True)
        status, errors = self.run(*arguments, "-o", target)
        if status != 0 or errors:
            words = " ".join(map(str, arguments))
            raise RuntimeError(f"'{words}' ended with status {status}: {' / '.join(errors) or 'no words'}")
        return target.read_bytes()
