#!/usr/bin/env python3
"""Checks the texts in other languages against the sources and the program.

A text that changed in the sources loses its translations without a word, and two
names that become equal in a language are one format there; both fail here. A new
text without a translation doesn't: it shows in English.

usage: check_translations.py MARLO_EXPORT LUPDATE SOURCE_DIR SCRATCH_DIR
"""
import collections
import json
import pathlib
import re
import shutil
import subprocess
import sys
import xml.etree.ElementTree as ElementTree


def stale(ts_file, lupdate, source_dir, scratch):
    """Translations of texts that the sources no longer have, as lupdate sees it."""
    copy = scratch / ts_file.name
    shutil.copy(ts_file, copy)
    sources = [source_dir / "src", source_dir / "host" / "scene" / "CameraSolveExporter.cpp"]
    subprocess.run([lupdate, "-silent", *sources, "-ts", copy], check=True)
    for message in ElementTree.parse(copy).iter("message"):
        if message.find("translation").get("type") in ("vanished", "obsolete"):
            yield f'no source has the text "{message.findtext("source")}"; run translations/update'


def placeholders(text):
    return sorted(re.findall(r"%\d", text))


def broken(ts_file):
    """Translations that lack a placeholder, or have one too many."""
    for message in ElementTree.parse(ts_file).iter("message"):
        source, translation = message.findtext("source"), message.findtext("translation")
        if translation and placeholders(source) != placeholders(translation):
            yield f'"{translation}" has other placeholders than "{source}"'


def format_rows(marlo_export, language):
    command = [marlo_export, "formats", "--json", "--lang", language]
    result = subprocess.run(command, check=True, stdout=subprocess.PIPE)
    return {(row["kind"], row["key"]): row for row in json.loads(result.stdout)}


def wrong_names(ts_file, marlo_export, language):
    """Formats that don't show the name of the .ts file, or share a name."""
    expected = {}
    for message in ElementTree.parse(ts_file).iter("message"):
        expected[message.findtext("source")] = message.findtext("translation")
    english, translated = format_rows(marlo_export, "en"), format_rows(marlo_export, language)
    if english.keys() != translated.keys() or not english:
        yield f"{len(english)} formats in English, {len(translated)} in this language"
        return
    for (kind, key), row in translated.items():
        source = english[kind, key]
        if kind == "shape":
            expected_texts = {"name": source["name"], "description": source["description"]}
        else:
            expected_texts = {field: expected.get(source[field]) or source[field] for field in ("name", "description")}
        for field, text in expected_texts.items():
            if row[field] != text:
                yield f'{key}: {field} is "{row[field]}" and should be "{text}"'
    names = collections.Counter((kind, row["name"]) for (kind, _), row in translated.items())
    for (kind, name), count in names.items():
        if count > 1:
            yield f'{count} {kind} formats are called "{name}"'


def main():
    marlo_export, lupdate, source_dir, scratch = sys.argv[1:]
    scratch = pathlib.Path(scratch)
    scratch.mkdir(parents=True, exist_ok=True)
    ts_files = sorted(pathlib.Path(source_dir, "translations").glob("marlo_*.ts"))
    faults = [] if ts_files else ["no .ts file found"]
    for ts_file in ts_files:
        language = ts_file.stem.split("_", 1)[1]
        found = [*stale(ts_file, lupdate, pathlib.Path(source_dir), scratch), *broken(ts_file),
                 *wrong_names(ts_file, marlo_export, language)]
        faults += [f"{ts_file.name}: {fault}" for fault in found]
    for fault in faults:
        print("check_translations: " + fault, file=sys.stderr)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
