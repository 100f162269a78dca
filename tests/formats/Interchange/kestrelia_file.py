"""A strict parser of matchmove project files, from the page about them."""

import re
from dataclasses import dataclass, field
from typing import Any, Callable, Dict, List, Optional, Tuple

# Times of what is at rest.
REST = None

WORD = r'(?:"(?:[^"\\]|\\.)*"|[^ "]+)'

Keys = Dict[Optional[int], List[float]]


@dataclass
class Item:
    """An object, tracker, camera, shot or mesh; `keys` has the numbers of a word by time, `values` those without one."""
    ident: int
    name: str
    values: Dict[str, Any] = field(default_factory=dict)
    keys: Dict[str, Keys] = field(default_factory=dict)
    rows: List[List[float]] = field(default_factory=list)
    row_times: List[Optional[int]] = field(default_factory=list)
    faces: List[List[int]] = field(default_factory=list)
    uvs: List[List[float]] = field(default_factory=list)
    uv_faces: List[List[int]] = field(default_factory=list)
    camera: Optional["Item"] = None
    groups: Dict[int, str] = field(default_factory=dict)
    trackers: List["Item"] = field(default_factory=list)


@dataclass
class Project:
    values: Dict[str, Any] = field(default_factory=dict)
    objects: Dict[int, Item] = field(default_factory=dict)
    shots: List[Item] = field(default_factory=list)
    meshes: List[Item] = field(default_factory=list)


class KestreliaError(ValueError):
    """The text isn't one of these files."""


def _number(word: str) -> float:
    if not re.fullmatch(r"-?(\d+)(\.\d+)?(e[-+]?\d+)?", word):
        raise KestreliaError(f"{word} is no number")
    if _digits(word) > _digits(repr(float(word))):
        raise KestreliaError(f"{word} has more digits than it needs")
    return float(word)


def _digits(word: str) -> int:
    return len(word.lower().split("e")[0].replace("-", "").replace(".", "").lstrip("0").rstrip("0"))


def _integer(word: str) -> int:
    if not re.fullmatch(r"-?\d+", word):
        raise KestreliaError(f"{word} is no integer")
    return int(word)


def _id(word: str) -> int:
    if not 1 <= _integer(word) <= 2147483647:
        raise KestreliaError(f"{word} is no id")
    return int(word)


def _frame(word: str) -> int:
    if not -10 ** 9 <= _integer(word) <= 10 ** 9:
        raise KestreliaError(f"{word} is no frame")
    return int(word)


def _time(word: str) -> Optional[int]:
    return REST if word == "-" else _frame(word)


def _name(word: str) -> str:
    if not re.fullmatch(r'"([^"\\\x00-\x1f\x7f]|\\["\\]|\\x[01][0-9a-fA-F]|\\x7[fF])*"', word):
        raise KestreliaError(f"{word} is no name")
    return re.sub(r"\\(x..|.)", lambda m: chr(int(m[1][1:], 16)) if len(m[1]) == 3 else m[1], word[1:-1])


def _yes(word: str) -> bool:
    if word not in ("yes", "no"):
        raise KestreliaError(f"{word} is neither yes nor no")
    return word == "yes"


# What stands behind a word that comes once.
POSE = [_number] * 12
ONCE: Dict[str, Dict[str, List[Callable[[str], Any]]]] = {
    "file": {"name": [_name], "pose": POSE, "reference_frame": [_frame]},
    "object": {},
    "shot": {"size": [_integer, _integer], "pixel_aspect": [_number], "frame_rate": [_number], "frames": [_frame, _frame],
             "interlaced": [_yes], "screen_distance": [_number]},
    "camera": {"film_back": [_number, _number]},
    "tracker": {"group": [_id], "object": [_id]},
    "mesh": {"object": [_id], "pose": POSE},
}
# How many numbers stand behind a word and its time.
KEYED = {"object": {"pose": 12}, "camera": {"pose": 12, "lens": 2}, "tracker": {"image": 2, "position": 3}}


class _Parser:
    def __init__(self, text: str) -> None:
        if "\r" in text.replace("\r\n", ""):
            raise KestreliaError("a carriage return that ends no line")
        lines = [line.strip(" ") for line in text.replace("\r\n", "\n").split("\n")]
        lines = [line for line in lines if line and line[0] != "#"]
        for line in lines:
            if not re.fullmatch(f"{WORD}( +{WORD})*", line):
                raise KestreliaError(f"words that no blank parts, or no end of a name: {line[:60]}")
        self.lines = [re.findall(WORD, line) for line in lines]
        self.at, self.trackers = 0, set()

    def next(self) -> List[str]:
        if self.at >= len(self.lines):
            raise KestreliaError("the file ends inside a record")
        self.at += 1
        return self.lines[self.at - 1]

    def project(self) -> Project:
        if self.next() != ["kestrelia", "1"]:
            raise KestreliaError("no file of version 1")
        found = Project()
        while self.at < len(self.lines):
            word, *rest = self.next()
            if word in ONCE["file"] and not (found.objects or found.shots or found.meshes):
                self.once(found.values, "file", word, rest)
            elif word == "object":
                item = self.record(word, rest, found)
                found.objects[self.unique(item, found.objects)] = item
            elif word in ("shot", "mesh"):
                items = found.shots if word == "shot" else found.meshes
                items.append(self.record(word, rest, found))
                self.unique(items[-1], [item.ident for item in items[:-1]])
            else:
                raise KestreliaError(f"{word} at the top")
        return found

    @staticmethod
    def unique(item: Item, others: Any) -> int:
        if item.ident in others:
            raise KestreliaError(f"id {item.ident} stands twice")
        return item.ident

    @staticmethod
    def typed(word: str, kinds: List[Callable[[str], Any]], rest: List[str]) -> List[Any]:
        if len(rest) != len(kinds):
            raise KestreliaError(f"{word} has {len(rest)} values")
        return [kind(value) for kind, value in zip(kinds, rest)]

    def once(self, values: Dict[str, Any], record: str, word: str, rest: List[str]) -> None:
        if word in values:
            raise KestreliaError(f"{word} stands twice in a {record}")
        values[word] = self.typed(word, ONCE[record][word], rest)

    def record(self, word: str, rest: List[str], found: Project) -> Item:
        item = Item(*([0] if word == "camera" else []), *self.typed(word, [_id] * (word != "camera") + [_name], rest))
        while True:
            line, *values = self.next()
            if line == "end":
                break
            if line in ONCE[word]:
                self.once(item.values, word, line, values)
                if line == "object" and item.values[line][0] not in found.objects:
                    raise KestreliaError(f"there is no object {item.values[line][0]}")
            elif line in KEYED.get(word, {}):
                self.key(item.keys.setdefault(line, {}), line, values, KEYED[word][line])
            elif not (word == "shot" and self.of_shot(item, line, values, found)) and not (
                    word == "mesh" and self.of_mesh(item, line, values)):
                raise KestreliaError(f"{line} in a {word}")
        needed = {"object": ["pose"], "camera": ["film_back", "pose", "lens"], "shot": list(ONCE["shot"])}
        for name in needed.get(word, []):
            if name not in item.values and name not in item.keys:
                raise KestreliaError(f"a {word} without {name}")
        return item

    def key(self, keys: Keys, word: str, values: List[str], count: int) -> None:
        time, *numbers = self.typed(word, [_time] + [_number] * count, values)
        if keys and (time is REST or REST in keys or time <= list(keys)[-1]):
            raise KestreliaError(f"times of {word} don't ascend")
        keys[time] = numbers

    def of_shot(self, shot: Item, word: str, values: List[str], found: Project) -> bool:
        if word == "camera" and shot.camera is None:
            shot.camera = self.record(word, values, found)
        elif word == "group":
            ident, name = self.typed(word, [_id, _name], values)
            if shot.groups.setdefault(ident, name) is not name:
                raise KestreliaError(f"group {ident} stands twice")
        elif word == "tracker":
            item = self.record(word, values, found)
            self.trackers.add(self.unique(item, self.trackers))
            if "group" in item.values and item.values["group"][0] not in shot.groups:
                raise KestreliaError(f"there is no group {item.values['group'][0]}")
            shot.trackers.append(item)
        else:
            return False
        return True

    def of_mesh(self, mesh: Item, word: str, values: List[str]) -> bool:
        if word == "row" and not mesh.faces:
            self.key({time: [] for time in mesh.row_times}, word, values, 0)
            mesh.row_times.append(_time(values[0]))
            mesh.rows.append([])
        elif word == "v" and mesh.rows and not mesh.faces:
            mesh.rows[-1].append(self.typed(word, [_number] * 3, values))
        elif word == "uv" and not mesh.uv_faces:
            mesh.uvs.append(self.typed(word, [_number] * 2, values))
        elif word in ("face", "face_uv"):
            corners = [_integer(value) for value in values]
            limit = len(mesh.uvs) if word == "face_uv" else len(mesh.rows[0])
            if len(corners) < 3 or not all(0 <= corner < limit for corner in corners):
                raise KestreliaError(f"{word} {corners} of {limit}")
            (mesh.faces if word == "face" else mesh.uv_faces).append(corners)
        else:
            return False
        return True


def parse(data: bytes) -> Project:
    project = _Parser(data.decode("utf-8")).project()
    for mesh in project.meshes:
        if len({len(row) for row in mesh.rows}) > 1:
            raise KestreliaError(f"rows of mesh {mesh.ident} differ in length")
        if mesh.uv_faces and [len(face) for face in mesh.uv_faces] != [len(face) for face in mesh.faces]:
            raise KestreliaError(f"the UV of mesh {mesh.ident} have other faces")
        if mesh.uvs and not mesh.uv_faces and len(mesh.uvs) != len(mesh.rows[0]):
            raise KestreliaError(f"mesh {mesh.ident} has {len(mesh.uvs)} UV")
    return project


def at_frames(keys: Keys, frames: List[int]) -> List[Tuple[float, ...]]:
    """Numbers of each frame; what has no key there holds the one before."""
    if REST in keys:
        return [tuple(keys[REST])] * len(frames)
    missing = [frame for frame in frames if frame not in keys]
    if missing or len(keys) != len(frames):
        raise KestreliaError(f"keys from {min(keys)} to {max(keys)} instead of {frames[0]} to {frames[-1]}")
    return [tuple(keys[frame]) for frame in frames]
