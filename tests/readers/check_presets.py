"""Holds the presets schema and the program against each other.

usage: check_presets.py MARLO_EXPORT SOURCE_DIR SCRATCH_DIR

What `preset add` writes has to pass the schema. What breaks a type, a word or a required key passes neither: the program
ends with status 3 and one line. Keys that don't exist are refused by the schema alone, as the program passes over them.
"""

import copy
import json
import sys
from pathlib import Path

import jsonschema

from tool import Tool

PIN = "after_effects_corner_pin"
ADDED = (
    ["plain", PIN],
    ["plain", "after_effects_transform", "-o", "out/t.txt"],
    ["all options", PIN, "--layer", "Sign %1", "--track", "stabilized", "--invert", "--undistort", "--view", "0",
     "--view", "1", "--reference-frame", "12", "-o", "/tmp/pin.txt"],
    ["\u00fcber", "vantarium_corner_pin", "--layers", "visible", "--track", "basic"],
)

FIRST = ["presets", 0, "exports", 0]
# Where, and what stands there instead; DROP takes the key away.
DROP = object()
BAD = (
    (["version"], 2), (["version"], "1"), (["presets"], DROP), (["presets"], {}), (["presets", 0, "name"], DROP),
    (["presets", 0, "name"], 1), (["presets", 0, "exports"], DROP), (FIRST + ["type"], "lens"), (FIRST + ["type"], DROP),
    (FIRST + ["format"], DROP), (FIRST + ["options"], []), (FIRST + ["options", "invert"], 1),
    (FIRST + ["options", "trackingOption"], "Basic"), (FIRST + ["options", "layerExportMode"], "specified"),
    (FIRST + ["options", "referenceFrame"], True), (FIRST + ["options", "viewsToExport"], [0.5]),
    (FIRST + ["filePath"], 7),
)
UNKNOWN = (["colour"], ["presets", 0, "colour"], FIRST + ["colour"], FIRST + ["options", "colour"])


def changed(document, path, value):
    """A copy of the document with the value at the path."""
    result = copy.deepcopy(document)
    place = result
    for step in path[:-1]:
        place = place[step]
    if value is DROP:
        del place[path[-1]]
    else:
        place[path[-1]] = value
    return result


def faults(tool, source, scratch):
    schema = json.loads((source / "docs" / "presets.schema.json").read_text(encoding="utf-8"))
    jsonschema.Draft202012Validator.check_schema(schema)
    validator = jsonschema.Draft202012Validator(schema)
    file = scratch / "presets.json"
    file.unlink(missing_ok=True)
    for arguments in ADDED:
        status, errors = tool.run("preset", "add", file, *arguments)
        if status != 0 or errors:
            yield f"preset add {' '.join(arguments)} ends with {status}: {errors}"
    written = json.loads(file.read_text(encoding="utf-8"))
    names = [preset["name"] for preset in written["presets"]]
    if names != ["all options", "plain", "\u00fcber"]:
        yield f"the presets are {names}"
    for error in validator.iter_errors(written):
        yield f"the schema refuses {error.json_path}: {error.message}"

    bad = scratch / "bad.json"
    for path, value in BAD:
        document = changed(written, path, value)
        if path[-1] == "layerExportMode":
            document["presets"][0]["exports"][0]["options"].pop("layer", None)
        bad.write_text(json.dumps(document), encoding="utf-8")
        status, errors = tool.run("preset", "list", bad)
        if validator.is_valid(document):
            yield f"the schema accepts {value!r} at {path}"
        if status != 3 or len(errors) != 1:
            yield f"{value!r} at {path}: status {status}, {errors}"
    for path in UNKNOWN:
        if validator.is_valid(changed(written, path, 1)):
            yield f"the schema accepts {path}"


def main():
    if len(sys.argv) != 4:
        print(__doc__, file=sys.stderr)
        return 2
    scratch = Path(sys.argv[3])
    scratch.mkdir(parents=True, exist_ok=True)
    found = list(faults(Tool(sys.argv[1]), Path(sys.argv[2]), scratch))
    for fault in found:
        print("FAILED", fault)
    print(f"{len(ADDED)} exports added, {len(BAD)} bad files, {len(UNKNOWN)} unknown keys, {len(found)} failures")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
