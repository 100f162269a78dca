"""Holds the project schema and the program against each other: what is good passes both, what is bad passes neither.

usage: check_schema.py MARLO_EXPORT SOURCE_DIR SCRATCH_DIR

A bad project ends the program with status 3 and exactly one line on stderr that names the file and the place in it.
"""

import json
import re
import sys
from pathlib import Path
from typing import Any, Iterator, List, Tuple

import jsonschema

import bad_projects
import scene_shots
import shots
from tool import Tool

_PLACE = re.compile(r"\$(?:\.\w+|\[\d+\])*")


class Check:
    def __init__(self, tool: Tool, schema: Any, scratch: Path) -> None:
        self.tool = tool
        self.validator = jsonschema.Draft202012Validator(schema)
        self.scratch = scratch
        self.failures = 0

    def fail(self, message: str) -> None:
        self.failures += 1
        print("FAILED", message)

    def saved(self, text: str) -> Path:
        target = self.scratch / "project.json"
        target.write_text(text, encoding="utf-8")
        return target

    def accepted(self, name: str, file: Path) -> None:
        """The file is good for both."""
        for error in self.validator.iter_errors(json.loads(file.read_text(encoding="utf-8"))):
            self.fail(f"{name}: the schema refuses {error.json_path}: {error.message}")
        status, errors = self.tool.run("info", file)
        if status != 0 or errors:
            self.fail(f"{name}: the program ends with status {status}: {' / '.join(errors)}")

    def refused_by_tool(self, name: str, file: Path, reported: str) -> None:
        status, errors = self.tool.run("info", file)
        if status != 3 or len(errors) != 1:
            self.fail(f"{name}: the program ends with status {status} and {len(errors)} lines: {' / '.join(errors)}")
        elif str(file) not in errors[0]:
            self.fail(f"{name}: the error does not name the file: {errors[0]}")
        elif reported and not any(_inside(place, reported) for place in _PLACE.findall(errors[0])):
            self.fail(f"{name}: the error does not name {reported}: {errors[0]}")

    def fault(self, fault: bad_projects.Fault, schema_sees_it: bool) -> None:
        project = fault.project()
        if self.validator.is_valid(project) == schema_sees_it:
            self.fail(f"{fault.name}: the schema {'accepts' if schema_sees_it else 'refuses'} it")
        self.refused_by_tool(fault.name, self.saved(json.dumps(project)), fault.reported)


def _inside(place: str, container: str) -> bool:
    return place.startswith(container) and place[len(container):len(container) + 1] in ("", ".", "[")


def good_files(source: Path, check: Check) -> Iterator[Tuple[str, Path]]:
    page = (source / "docs" / "project-file.md").read_text(encoding="utf-8")
    texts = [("project with every key", json.dumps(bad_projects.good()))]
    texts += [(f"example {i} of the page", text) for i, text in enumerate(re.findall(r"```json\n(.*?)```", page, re.S))]
    texts += [("hand-made shot", json.dumps(shots.hand_made(shots.STRONG))),
              ("interlaced shot", json.dumps(shots.interlaced()))]
    texts += [(f"solved shot {name}", json.dumps(make())) for name, make in scene_shots.PROJECTS.items()]
    for name, text in texts:
        yield name, check.saved(text)
    for sample in sorted((source / "samples").glob("*.json")):
        yield f"sample {sample.name}", sample
    imported, table = check.scratch / "paper.json", source / "tests" / "data" / "paper004_corners.txt"
    size = "x".join(map(str, shots.PAPER_SIZE))
    try:
        check.tool.write(imported, "import", "corners", table, "--size", size)
        yield "imported project", imported
    except (RuntimeError, OSError) as error:
        check.fail(str(error))


def text_faults(check: Check) -> int:
    good = json.dumps(bad_projects.good())
    for name, change, reported in bad_projects.TEXT_FAULTS:
        bad = change(good)
        if bad == good:
            check.fail(f"{name}: the fault changes nothing")
        check.refused_by_tool(name, check.saved(bad), reported)
    latin = check.scratch / "latin.json"
    latin.write_bytes(good.replace("Poster", "Pl\xe4ne").encode("latin-1"))
    check.refused_by_tool("not UTF-8", latin, "")
    check.refused_by_tool("no file", check.scratch / "nowhere.json", "")
    return len(bad_projects.TEXT_FAULTS) + 2


def main() -> int:
    if len(sys.argv) != 4:
        print(__doc__, file=sys.stderr)
        return 2
    program, source, scratch = sys.argv[1], Path(sys.argv[2]), Path(sys.argv[3])
    scratch.mkdir(parents=True, exist_ok=True)
    schema = json.loads((source / "docs" / "project.schema.json").read_text(encoding="utf-8"))
    jsonschema.Draft202012Validator.check_schema(schema)
    check = Check(Tool(program), schema, scratch)
    accepted: List[str] = []
    for name, file in good_files(source, check):
        check.accepted(name, file)
        accepted.append(name)
    both, only_tool = list(bad_projects.seen_by_both()), list(bad_projects.seen_by_tool())
    for fault in both:
        check.fault(fault, True)
    for fault in only_tool:
        check.fault(fault, False)
    texts = text_faults(check)
    print(f"{len(accepted)} good projects ({', '.join(accepted)})")
    print(f"{len(both)} faults of form, {len(only_tool)} of meaning, {texts} of the text; {check.failures} failures")
    return 1 if check.failures else 0


if __name__ == "__main__":
    sys.exit(main())
