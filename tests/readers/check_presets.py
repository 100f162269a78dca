"""Holds the presets schema and the program against each other.

usage: check_presets.py MARLO_EXPORT SOURCE_DIR SCRATCH_DIR

What `preset add` writes has to pass the schema. What breaks a type, a word or a required key passes neither: the program
ends with status 3 and one line. Keys that don't exist are refused by the schema alone, as the program passes over them.
"""

import json
import sys

import jsonschema

import checking
from checking import Check
from faults import REMOVED, spoiled

PIN = "after_effects_corner_pin"
ADDED = (
    ["plain", PIN],
    ["plain", "after_effects_transform", "-o", "out/t.txt"],
    ["all options", PIN, "--layer", "Sign %1", "--track", "stabilized", "--invert", "--undistort", "--view", "0",
     "--view", "1", "--reference-frame", "12", "-o", "/tmp/pin.txt"],
    ["\u00fcber", "vantarium_corner_pin", "--layers", "visible", "--track", "basic"],
)

FIRST = ["presets", 0, "exports", 0]
# Where, and what stands there instead.
BAD = (
    (["version"], 2), (["version"], "1"), (["presets"], REMOVED), (["presets"], {}), (["presets", 0, "name"], REMOVED),
    (["presets", 0, "name"], 1), (["presets", 0, "exports"], REMOVED), (FIRST + ["type"], "lens"),
    (FIRST + ["type"], REMOVED), (FIRST + ["format"], REMOVED), (FIRST + ["options"], []), (FIRST + ["options", "invert"], 1),
    (FIRST + ["options", "trackingOption"], "Basic"), (FIRST + ["options", "layerExportMode"], "specified"),
    (FIRST + ["options", "referenceFrame"], True), (FIRST + ["options", "viewsToExport"], [0.5]),
    (FIRST + ["filePath"], 7),
)
UNKNOWN = (["colour"], ["presets", 0, "colour"], FIRST + ["colour"], FIRST + ["options", "colour"])



def body(check: Check) -> None:
    schema = check.json("docs/presets.schema.json")
    jsonschema.Draft202012Validator.check_schema(schema)
    validator = jsonschema.Draft202012Validator(schema)
    file = check.scratch / "presets.json"
    for arguments in ADDED:
        check.silent("preset", "add", file, *arguments)
    written = json.loads(file.read_text(encoding="utf-8"))
    names = [preset["name"] for preset in written["presets"]]
    check.expect(names == ["all options", "plain", "\u00fcber"], f"the presets are {names}")
    for error in validator.iter_errors(written):
        check.fail(f"the schema refuses {error.json_path}: {error.message}")
    for path, value in BAD:
        document = spoiled(written, path, value)
        if path[-1] == "layerExportMode":
            document["presets"][0]["exports"][0]["options"].pop("layer", None)
        status, errors = check.run("preset", "list", check.saved("bad", document))
        check.expect(not validator.is_valid(document), f"the schema accepts {value!r} at {path}")
        check.expect(status == 3 and len(errors) == 1, f"{value!r} at {path}: status {status}, {errors}")
    for path in UNKNOWN:
        check.expect(not validator.is_valid(spoiled(written, path, 1)), f"the schema accepts {path}")
    print(f"{len(ADDED)} exports added, {len(BAD)} bad files, {len(UNKNOWN)} unknown keys")


if __name__ == "__main__":
    sys.exit(checking.run(__doc__, body, {}))
