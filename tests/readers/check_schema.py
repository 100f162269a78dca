"""Holds the project schema and the program against each other: what is good passes both, what is bad passes neither.

usage: check_schema.py MARLO_EXPORT SOURCE_DIR SCRATCH_DIR

A bad project ends the program with status 3 and exactly one line on stderr that names the file and the place in it.
"""

import json
import re
import sys
from pathlib import Path
from typing import Any, Iterator, Tuple

import jsonschema

import bad_projects
import checking
import scene_shots
import shots
from checking import Check

_PLACE = re.compile(r"\$(?:\.\w+|\[\d+\])*")


def accepted(check: Check, validator: Any, name: str, file: Path) -> None:
    """The file is good for both."""
    for error in validator.iter_errors(json.loads(file.read_text(encoding="utf-8"))):
        check.fail(f"{name}: the schema refuses {error.json_path}: {error.message}")
    if check.silent("info", file):
        print("good:", name)


def refused(check: Check, name: str, file: Path, reported: str) -> None:
    status, errors = check.run("info", file)
    if status != 3 or len(errors) != 1:
        check.fail(f"{name}: the program ends with status {status} and {len(errors)} lines: {' / '.join(errors)}")
        return
    check.expect(str(file) in errors[0], f"{name}: the error does not name the file: {errors[0]}")
    if reported:
        check.expect(any(_inside(place, reported) for place in _PLACE.findall(errors[0])),
                     f"{name}: the error does not name {reported}: {errors[0]}")


def _inside(place: str, container: str) -> bool:
    return place.startswith(container) and place[len(container):len(container) + 1] in ("", ".", "[")


def good_files(check: Check) -> Iterator[Tuple[str, Path]]:
    page = (check.source / "docs" / "project-file.md").read_text(encoding="utf-8")
    texts = [("project with every key", json.dumps(bad_projects.good()))]
    texts += [(f"example {i} of the page", text) for i, text in enumerate(re.findall(r"```json\n(.*?)```", page, re.S))]
    projects = {"hand-made shot": shots.hand_made(shots.STRONG), "interlaced shot": shots.interlaced(),
                **{f"solved shot {name}": make() for name, make in scene_shots.PROJECTS.items()}}
    for name, text in texts + [(name, json.dumps(project)) for name, project in projects.items()]:
        yield name, check.saved("project", text)
    for sample in sorted((check.source / "samples").glob("*.json")):
        yield f"sample {sample.name}", sample
    imported, table = check.scratch / "paper.json", check.source / "tests" / "data" / "paper004_corners.txt"
    if check.silent("import", "corners", table, "--size", "x".join(map(str, shots.PAPER_SIZE)), "-o", imported):
        yield "imported project", imported


def text_faults(check: Check) -> None:
    good = json.dumps(bad_projects.good())
    for name, change, reported in bad_projects.TEXT_FAULTS:
        check.expect(change(good) != good, f"{name}: the fault changes nothing")
        refused(check, name, check.saved("project", change(good)), reported)
    latin = good.replace("Poster", "Pl\xe4ne").encode("latin-1")
    refused(check, "not UTF-8", check.saved("latin", latin), "")
    refused(check, "no file", check.scratch / "nowhere.json", "")


def body(check: Check) -> None:
    schema = check.json("docs/project.schema.json")
    jsonschema.Draft202012Validator.check_schema(schema)
    validator = jsonschema.Draft202012Validator(schema)
    for name, file in good_files(check):
        accepted(check, validator, name, file)
    for faults, seen in ((bad_projects.seen_by_both(), True), (bad_projects.seen_by_tool(), False)):
        count = 0
        for count, fault in enumerate(faults, 1):
            project = fault.project()
            check.expect(validator.is_valid(project) != seen,
                         f"{fault.name}: the schema {'accepts' if seen else 'refuses'} it")
            refused(check, fault.name, check.saved("project", project), fault.reported)
        print(f"{count} faults {'of form' if seen else 'of meaning'}")
        check.expect(count > 0, "no faults")
    text_faults(check)


if __name__ == "__main__":
    sys.exit(checking.run(__doc__, body, {}))
