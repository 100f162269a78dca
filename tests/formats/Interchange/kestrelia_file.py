"""A strict parser of matchmove project files, from the page about them."""

import re
from dataclasses import dataclass, field
from typing import Any, Callable, Dict, Iterator, List, Optional, Tuple

# Numbers by frame; what is at rest has one entry, for None.
Keys = Dict[Optional[int], List[float]]

IDENTITY = [1.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0]


class KestreliaError(ValueError):
    """The text isn't one of these files."""


def _need(good: bool, words: str) -> None:
    if not good:
        raise KestreliaError(words)


# ---- values

def _number(word: str) -> float:
    _need(bool(re.fullmatch(r"-?(\d+)(\.\d+)?(e[-+]?\d+)?", word)), f"{word} is no number")
    _need(_digits(word) <= _digits(repr(float(word))), f"{word} has more digits than it needs")
    return float(word)


def _digits(word: str) -> int:
    return len(word.lower().split("e")[0].replace("-", "").replace(".", "").lstrip("0").rstrip("0"))


def _whole(least: int, most: int) -> Callable[[str], int]:
    def integer(word: str) -> int:
        _need(bool(re.fullmatch(r"-?\d+", word)) and least <= int(word) <= most, f"{word} isn't from {least} to {most}")
        return int(word)
    return integer


def _time(word: str) -> Optional[int]:
    return None if word == "-" else _frame(word)


def _name(word: str) -> str:
    pattern = r'"([^"\\\x00-\x1f\x7f]|\\["\\]|\\x[01][0-9a-fA-F]|\\x7[fF])*"'
    _need(bool(re.fullmatch(pattern, word)), f"{word} is no name")
    return re.sub(r"\\(x..|.)", lambda m: chr(int(m[1][1:], 16)) if len(m[1]) == 3 else m[1], word[1:-1])


def _yes(word: str) -> bool:
    _need(word in ("yes", "no"), f"{word} is neither yes nor no")
    return word == "yes"


_id, _frame, _size, _index = _whole(1, 2147483647), _whole(-10 ** 9, 10 ** 9), _whole(1, 10 ** 6), _whole(0, 2147483647)
_POSE = [_number] * 12
_CORNERS = [_index, _index, _index, ...]

# Per record: its words, what stands behind them, and how often they come at least and at most.
MANY = 10 ** 7
GRAMMAR: Dict[str, Dict[str, Tuple[List[Any], int, int]]] = {
    "file": {"name": ([_name], 0, 1), "pose": (_POSE, 0, 1), "reference_frame": ([_frame], 0, 1),
             "object": ([_id, _name], 0, MANY), "shot": ([_id, _name], 0, MANY), "mesh": ([_id, _name], 0, MANY)},
    "object": {"pose": ([_time, *_POSE], 1, MANY)},
    "shot": {"size": ([_size, _size], 1, 1), "pixel_aspect": ([_number], 1, 1), "frame_rate": ([_number], 1, 1),
             "frames": ([_frame, _frame], 1, 1), "interlaced": ([_yes], 1, 1), "screen_distance": ([_number], 1, 1),
             "camera": ([_name], 0, 1), "group": ([_id, _name], 0, MANY), "tracker": ([_id, _name], 0, MANY)},
    "camera": {"film_back": ([_number, _number], 1, 1), "pose": ([_time, *_POSE], 1, MANY),
               "lens": ([_time, _number, _number], 1, MANY)},
    "tracker": {"group": ([_id], 0, 1), "object": ([_id], 0, 1), "image": ([_time, _number, _number], 0, MANY),
                "position": ([_time, _number, _number, _number], 0, MANY)},
    "mesh": {"object": ([_id], 0, 1), "pose": (_POSE, 0, 1), "row": ([_time], 1, MANY), "v": ([_number] * 3, 0, MANY),
             "face": (_CORNERS, 0, MANY), "uv": ([_number] * 2, 0, MANY), "face_uv": (_CORNERS, 0, MANY)},
}


@dataclass
class Record:
    """`values` are its id and name; `parts` its lines and records by their words, in order."""
    word: str
    values: List[Any]
    parts: List[Tuple[str, Any]] = field(default_factory=list)

    @property
    def name(self) -> str:
        return self.values[-1]

    def all(self, word: str) -> List[Any]:
        return [part for found, part in self.parts if found == word]

    def one(self, word: str, otherwise: Any = None) -> Any:
        return next(iter(self.all(word)), otherwise)

    def keys(self, word: str) -> Keys:
        return {values[0]: values[1:] for values in self.all(word)}

    def rows(self) -> Keys:
        """Of a mesh, its vertices."""
        found: Dict[Optional[int], List[Any]] = {}
        for word, values in self.parts:
            if word == "row":
                found[values[0]] = []
            elif word == "v":
                list(found.values())[-1].append(values)
        return found


def parse(data: bytes) -> Record:
    text = data.decode("utf-8").replace("\r\n", "\n")
    _need("\r" not in text and text.endswith("\n"), "a line without its end")
    lines = [line.strip(" ") for line in text.split("\n")]
    words = (_words(line) for line in lines if line and line[0] != "#")
    _need(next(words, None) == ["kestrelia", "1"], "no file of version 1")
    file = _record(Record("file", []), words)
    _judge_file(file)
    return file


def _words(line: str) -> List[str]:
    word = r'(?:"(?:[^"\\]|\\.)*"|[^ "]+)'
    _need(bool(re.fullmatch(f"{word}( +{word})*", line)), f"words without a blank, a name without an end: {line[:60]}")
    return re.findall(word, line)


def _record(record: Record, lines: Iterator[List[str]]) -> Record:
    grammar = GRAMMAR[record.word]
    for word, *rest in lines:
        if word == "end" and record.word != "file":
            break
        _need(word in grammar, f"{word} in a {record.word}")
        kinds = grammar[word][0]
        if kinds[-1] is ...:
            kinds = kinds[:-1] + [kinds[-2]] * (len(rest) - len(kinds) + 1)
        _need(len(rest) == len(kinds), f"{word} has {len(rest)} values")
        values = [kind(value) for kind, value in zip(kinds, rest)]
        holds_lines = word in GRAMMAR and (record.word, word) not in (("tracker", "object"), ("mesh", "object"))
        record.parts.append((word, _record(Record(word, values), lines) if holds_lines else values))
    else:
        _need(record.word == "file", f"the file ends in a {record.word}")
    for word, (kinds, least, most) in grammar.items():
        found = record.all(word)
        _need(least <= len(found) <= most, f"{word} stands {len(found)} times in a {record.word}")
        if kinds[0] is _time:
            times = [values[0] for values in found]
            _need(times == [None] or None not in times and times == sorted(set(times)), f"times of {word}: {times}")
    return record


def _judge_file(file: Record) -> None:
    """What ids and indices say."""
    order = [word for word, _ in file.parts]
    records = [i for i, word in enumerate(order) if word in GRAMMAR]
    _need(not records or all(word in GRAMMAR for word in order[records[0]:]), "a line of the file behind its records")
    trackers = [tracker for shot in file.all("shot") for tracker in shot.all("tracker")]
    for things in (file.all("object"), file.all("shot"), file.all("mesh"), trackers):
        ids = [thing.values[0] for thing in things]
        _need(len(set(ids)) == len(ids), f"ids {ids}")
    objects = {thing.values[0] for thing in file.all("object")}
    for thing in (*trackers, *file.all("mesh")):
        _need(thing.one("object", [None])[0] in {None, *objects}, f"{thing.name} has an object that isn't there")
    for shot in file.all("shot"):
        groups = [values[0] for values in shot.all("group")]
        _need(len(set(groups)) == len(groups), f"groups {groups}")
        for tracker in shot.all("tracker"):
            _need(tracker.one("group", [None])[0] in {None, *groups}, f"{tracker.name} has a group that isn't there")
    for mesh in file.all("mesh"):
        counts = {len(row) for row in mesh.rows().values()}
        uvs, faces, uv_faces = mesh.all("uv"), mesh.all("face"), mesh.all("face_uv")
        good = len(counts) == 1 and all(i < max(counts) for face in faces for i in face)
        good &= all(i < len(uvs) for face in uv_faces for i in face)
        alike = [len(face) for face in uv_faces] == [len(face) for face in faces]
        good &= alike if uv_faces else len(uvs) in (0, *counts)
        order = [("object", "pose", "row", "v", "face", "uv", "face_uv").index(word) for word, _ in mesh.parts]
        levels = [2 if level == 3 else level for level in order]
        _need(good and levels == sorted(levels), f"mesh {mesh.name} has other indices or another order than it may")


def at_frames(keys: Keys, frames: List[int]) -> List[List[float]]:
    """Numbers of each frame, all of which must be there."""
    if None in keys:
        return [keys[None]] * len(frames)
    _need(list(keys) == frames, f"keys from {min(keys)} to {max(keys)} instead of {frames[0]} to {frames[-1]}")
    return [keys[frame] for frame in frames]
