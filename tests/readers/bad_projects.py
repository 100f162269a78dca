"""A project file that uses every key, and what can be wrong with one."""

import json
from dataclasses import dataclass
from typing import Any, Callable, Dict, Iterator, List, Tuple

from faults import REMOVED, spoiled

Place = Tuple[Any, ...]

_IDENTITY = [1, 0, 0, 0, 1, 0, 0, 0, 1]
_MOVED = [1, 0, 2.5, 0, 1, -1, 0, 0, 1]
_VERTICES = [600, 300, -5, 0, 5, 0, 900, 310, 0, 0, 0, 0]
_SINGULAR = [1, 2, 3, 2, 4, 6, 0, 0, 1]


def good() -> Dict[str, Any]:
    """Two clips, two views, groups in a group, and layers with all they can have."""
    return {
        "marloProject": 1, "frameRate": 25, "views": ["left", "right"], "currentFrame": 3, "currentLayer": "Poster",
        "currentView": "right", "displayClip": "plate", "playback": [0, 9], "trim": [1, 8],
        "clips": [
            {"name": "plate", "width": 1920, "height": 1080, "pixelAspect": 1.5, "frameCount": 20, "frameOffset": -5,
             "interlaced": True, "lowerFieldFirst": True, "pulldown": 2, "filmBack": {"width": 24.9, "height": 14},
             "footage": {"kind": "sequence", "directory": "/shots", "prefix": "a.", "suffix": ".exr", "indexWidth": 4,
                         "firstIndex": 1001},
             "lens": {"focalLength": 1.2, "radial1": {"frames": [0, 9], "values": [0.01, 0.02]}}},
            {"name": "insert", "width": 640, "height": 481, "frameCount": 1,
             "footage": {"kind": "movie", "file": "a.mov"}},
        ],
        "groups": [{"name": "outer", "moving": True, "pose": {"firstFrame": 2, "positions": [0, 0, 0, 1, 0, 0],
                                                              "rotations": [0, 0, 0, 0, 90, 0], "scales": [1, 2]}},
                   {"name": "inner", "parent": "outer", "hidden": True}],
        "layers": [
            {"name": "Poster", "clip": "plate", "insertClip": "insert", "group": "inner", "in": 2, "out": 9,
             "selected": True, "moving": False, "hidden": False,
             "surface": {"referenceFrame": 2, "corners": [600, 300, 900, 310, 590, 450, 910, 440]},
             "tracking": [{"view": "left", "firstFrame": 2, "homographies": _IDENTITY + _MOVED},
                          {"view": "right", "frames": [2, 5], "homographies": _IDENTITY + _MOVED}],
             "adjust": [{"frame": 2, "offsets": [0] * 8}, {"frame": 4, "offsets": [1, 0, 0, 2.5, 0, 0, -1, 0]}],
             "stabilize": {"rangeStart": 3, "rangeEnd": 8, "fixedFrames": [4, 6]},
             "invert": True, "blend": "subtract", "colour": [255, 128, 0, 255], "overlayColour": [0, 0, 0, 255],
             "contours": [
                 {"name": "edge", "type": "bezier", "closed": True, "active": False, "veilML": ["left"],
                  "keys": [{"frame": 2, "points": list(_VERTICES), "feather": list(_VERTICES)},
                           {"frame": 19, "points": list(_VERTICES)}]},
                 {"name": "edge", "type": "xspline",
                  "keys": [{"frame": 0, "points": [0, 0, 1, 9, 0, -1, 9, 9, 0.5]}]}],
             "mesh": {"vertexCount": 3, "faceCounts": [3], "faceIndices": [0, 1, 2],
                      "tracks": [{"view": "left", "firstFrame": 4, "positions": [0, 0, 9, 0, 0, 9] * 2},
                                 {"view": "right", "frames": [2, 7], "positions": [0, 0, 9, 0, 0, 9] * 2}]},
             "pose": {"positions": [1, 2, 3]},
             "surfacePoints": {"positions": [0, 0, 0, 1, 0, 0, 0, 1, 0], "names": ["a", "b", "c"], "inaccurate": [0, 2],
                               "faceCounts": [3], "faceIndices": [0, 1, 2], "uvs": [0, 0, 1, 0, 0, 1]},
             "meshPoints": {"frames": [0, 9], "positions": [0, 0, 0, 1, 0, 0]}},
            {"name": "Poster", "surface": {"corners": [0, 0, 10, 0, 0, 10, 10, 10]}},
        ],
        "solve": {
            "camera": {"frames": [0, 19], "positions": [0, 1, 9, 0, 1, 5], "rotations": [0] * 6, "filmBackWidth": 24.9,
                       "focalLength": {"frames": [0, 19], "values": [0.1, 10000]}},
            "stereo": {"mode": "converged", "separation": 0.06, "convergence": 1.5, "shiftLeft": 2, "shiftRight": -2},
            "scene": {"positions": [1, 0, 0], "rotations": [0, 90, 0], "scales": [2]}, "referenceFrame": 3, "legacy": False,
            "features": [{"name": "wall", "positions": [0, 0, 0], "hidden": True, "selected": True},
                         {"name": "car", "layer": "Poster", "frames": [0, 1], "positions": [0, 0, 0, 1, 1, 1]}],
            "featureRoot": {"name": "root", "positions": [0, 0, 1]},
            "assets": [{"path": "/models/car.abc", "layer": "Poster"}, {"path": "b.obj", "positions": [1, 2, 3]}],
        },
    }


@dataclass(frozen=True)
class Fault:
    """One thing that is wrong: the value that stands at `at` instead. `reported` is the place that the error has to
    name, or one inside of it; a key that is missing or too much may be reported with the object that it belongs to."""
    name: str
    at: Place
    value: Any
    reported: str

    def project(self) -> Dict[str, Any]:
        return spoiled(good(), self.at, self.value)


def path(at: Place) -> str:
    return "$" + "".join(f"[{step}]" if isinstance(step, int) else f".{step}" for step in at)


def _clip(*at: Any) -> Place:
    return ("clips", 0) + at


def _layer(*at: Any) -> Place:
    return ("layers", 0) + at


def _solve(*at: Any) -> Place:
    return ("solve",) + at


_REQUIRED: List[Place] = [
    ("marloProject",), ("clips",), _clip("name"), _clip("width"), _clip("height"), _clip("frameCount"),
    _clip("filmBack", "height"), _clip("footage", "kind"), _clip("footage", "directory"),
    _clip("footage", "indexWidth"), ("clips", 1, "footage", "file"), _clip("lens", "radial1", "values"),
    ("groups", 0, "name"), _layer("name"), _layer("surface"), _layer("surface", "corners"),
    _layer("tracking", 0, "homographies"), _layer("adjust", 0, "frame"), _layer("adjust", 0, "offsets"),
    _layer("contours", 0, "name"), _layer("contours", 0, "keys"), _layer("contours", 0, "keys", 0, "frame"),
    _layer("contours", 1, "keys", 0, "points"), _layer("mesh", "vertexCount"), _layer("mesh", "faceCounts"),
    _layer("mesh", "faceIndices"), _layer("mesh", "tracks"), _layer("mesh", "tracks", 0, "positions"),
    _layer("pose", "positions"), _layer("surfacePoints", "positions"), _layer("surfacePoints", "faceCounts"),
    _layer("surfacePoints", "faceIndices"), _solve("camera"), _solve("camera", "positions"), _solve("scene", "positions"),
    _solve("stereo", "mode"), _solve("stereo", "separation"), _solve("features", 0, "name"),
    _solve("features", 0, "positions"), _solve("assets", 0, "path"),
]
# Numbers that aren't whole, and what is no number but near to one; of other types every value is tried.
_WRONG_NUMBERS: List[Tuple[Place, Any]] = [
    (("layers",), None), (("currentFrame",), 1.5), (("currentFrame",), True), (_clip("width"), 1920.5),
    (_layer("in"), None), (_layer("surface", "corners", 3), None), (_layer("tracking", 1, "frames", 0), 2.5),
    (_layer("invert"), 1), (_layer("adjust", 0, "offsets", 0), []), (_layer("stabilize"), True),
    (_layer("mesh", "vertexCount"), 3.5), (_solve("legacy"), 0), (_layer("surfacePoints", "faceIndices", 1), 0.5),
    (_layer("surfacePoints", "inaccurate", 0), True), (("groups", 0, "hidden"), 1),
]
_WRONG_VALUES: List[Tuple[Place, Any]] = [
    (("marloProject",), 2), (("frameRate",), 0), (("frameRate",), -25), (("clips",), []), (("views",), []),
    (("views",), ["left", "left"]), (("currentFrame",), -1), (("playback",), [0]), (("trim",), [0, 1, 2]),
    (_clip("name"), ""), (_clip("width"), 0), (_clip("height"), 65537), (_clip("pixelAspect"), 0),
    (_clip("frameCount"), 0), (_clip("pulldown"), 5), (_clip("footage", "kind"), "tape"),
    (_clip("footage", "indexWidth"), 0), (_clip("filmBack", "width"), 0),
    (_layer("surface", "corners"), [0, 0, 1, 0, 0, 1, 1]), (_layer("surface", "corners"), [0, 0, 1, 0, 0, 1, 1, 1, 2]),
    (_layer("tracking", 1, "frames"), [2, 2]), (_layer("tracking", 1, "firstFrame"), 2),
    (_layer("adjust", 1, "offsets"), [0] * 7), (_layer("stabilize", "fixedFrames"), [4, 4]), (_layer("in"), -1),
    (_layer("blend"), "multiply"), (_layer("colour"), [0, 0, 0]), (_layer("colour"), [0, 0, 0, 256]),
    (_layer("overlayColour"), [0.5, 0, 0, 0]), (_layer("contours", 0, "name"), ""),
    (_layer("contours", 0, "veilML"), ["left", "left"]), (_layer("contours", 0, "keys"), []),
    (_layer("contours", 0, "keys", 0, "points"), _VERTICES[:6]), (_layer("contours", 0, "keys", 0, "points", 0), 2e7),
    (_layer("contours", 1, "keys", 0, "points"), [0, 0, 1, 9, 0, 1]), (_layer("mesh", "vertexCount"), 2),
    (_layer("mesh", "faceCounts"), [2]), (_layer("mesh", "faceIndices"), [0, 1, -1]), (_layer("mesh", "tracks"), []),
    (_layer("mesh", "tracks", 1, "firstFrame"), 2),
    (("groups", 0, "moving"), False), (("groups", 0, "pose", "scales", 0), 0), (("groups", 0, "pose", "frames"), [0, 1]),
    (_layer("pose", "firstFrame"), 2), (_layer("pose", "positions"), [1, 2]), (_layer("surfacePoints", "names", 0), ""),
    (_layer("surfacePoints", "faceCounts"), [2]), (_layer("surfacePoints", "faceIndices"), [0, 1, -1]),
    (_layer("surfacePoints", "inaccurate"), [1, 1]), (_layer("meshPoints", "frames"), []),
    (_solve("camera", "focalLength"), 0.05), (_solve("camera", "focalLength", "values"), [35, 10001]),
    (_solve("camera", "filmBackWidth"), 0), (_solve("camera", "frames"), []), (_solve("camera", "firstFrame"), 0),
    (_solve("stereo", "mode"), "toed-in"), (_solve("stereo", "mode"), "parallel"), (_solve("stereo", "convergence"), 180),
    (_solve("stereo", "separation"), -1), (_solve("scene", "positions"), [1, 2]), (_solve("scene", "scales"), [-1]),
    (_solve("scene", "frames"), [0]), (_solve("features", 0, "name"), ""), (_solve("featureRoot", "name"), ""),
    (_solve("assets", 0, "path"), ""), (_solve("assets", 1, "positions"), []), (_solve("assets", 0, "scales"), [1]),
    (_solve("referenceFrame"), -1),
]


_REPORTED_WITH_HOLDER = ("firstFrame", "frames", "kind", "mode", "moving", "scales")
_LISTS = (("veilML",), ("frames",), ("inaccurate",), ("faceIndices",), ("scales",), ("points",))


def _kinds(value: Any, at: Place = ()) -> Iterator[Tuple[Place, Any]]:
    """Everything in a document."""
    yield at, value
    children = value.items() if isinstance(value, dict) else enumerate(value) if isinstance(value, list) else ()
    for step, child in children:
        yield from _kinds(child, at + (step,))


def _by_kind() -> List[Tuple[Place, Any]]:
    """Of everything that differs by indices alone the first."""
    first: Dict[Place, Tuple[Place, Any]] = {}
    for at, value in _kinds(good()):
        first.setdefault(tuple(0 if isinstance(step, int) else step for step in at), (at, value))
    return list(first.values())


def _told(at: Place) -> Place:
    """Keys that need or exclude one another, and elements of lists of numbers, may be reported with what holds them."""
    return at[:-1] if at[-1] in _REPORTED_WITH_HOLDER or at[-2:-1] in _LISTS else at


_OF_OTHER_TYPE = {str: 7, int: "1", float: "1", bool: "yes", list: {}, dict: []}


def seen_by_both() -> Iterator[Fault]:
    """Faults of form, which the schema describes."""
    for at, value in _by_kind():
        if isinstance(value, dict):
            yield Fault(f"unknown key in {path(at)}", at + ("flavour",), 1, path(at))
        if at:
            yield Fault(f"{path(at)} is of another type", at, _OF_OTHER_TYPE[type(value)], path(_told(at)))
    for at in _REQUIRED:
        yield Fault(f"{path(at)} is missing", at, REMOVED, path(at[:-1]))
    for at, value in _WRONG_NUMBERS + _WRONG_VALUES:
        yield Fault(f"{path(at)} is {json.dumps(value)}", at, value, path(_told(at)))


_DANGLING = [("currentLayer",), ("currentView",), ("displayClip",), ("groups", 1, "parent"), _layer("clip"),
             _layer("insertClip"), _layer("group"), _layer("tracking", 0, "view"), _layer("contours", 0, "veilML", 0),
             _layer("mesh", "tracks", 0, "view"), _solve("features", 1, "layer"), _solve("assets", 0, "layer")]


def seen_by_tool() -> Iterator[Fault]:
    """Faults of meaning, which a schema can't describe."""
    for at in _DANGLING:
        # Of groups and tracks the element of the list may be reported, as the words say what it names.
        whole = at[-1] in ("parent", "view")
        yield Fault(f"{path(at)} names nothing", at, "nobody", path(at[:-1] if whole else at))
    track = _layer("tracking", 0)
    keys, spline, mesh = _layer("contours", 0, "keys"), _layer("contours", 1, "keys", 0, "points"), _layer("mesh")
    points = _layer("surfacePoints")
    cases: List[Tuple[str, Place, Any, Place]] = [
        ("group is its own parent", ("groups", 0, "parent"), "outer", ("groups",)),
        ("groups in a ring", ("groups", 0, "parent"), "inner", ("groups",)),
        ("two groups of one name", ("groups", 0, "name"), "inner", ("groups",)),
        ("two clips of one name", ("clips", 1, "name"), "plate", ("clips",)),
        ("two tracks of one view", _layer("tracking", 1, "view"), "left", _layer("tracking")),
        ("odd height of an interlaced clip", _clip("height"), 1081, _clip()),
        ("playback range backwards", ("playback",), [9, 0], ("playback",)),
        ("trimmed range backwards", ("trim",), [8, 1], ("trim",)),
        ("layer ends before it starts", _layer("out"), 1, _layer()),
        ("singular homography", track + ("homographies",), _IDENTITY + _SINGULAR, track + ("homographies",)),
        ("homography of zeros", track + ("homographies",), _IDENTITY + [0] * 9, track + ("homographies",)),
        ("homography of eight numbers", track + ("homographies",), _IDENTITY + _MOVED[:8], track),
        ("fewer homographies than frames", _layer("tracking", 1, "frames"), [2, 5, 6], _layer("tracking", 1)),
        ("tracked frames descend", _layer("tracking", 1, "frames"), [5, 2], _layer("tracking", 1, "frames")),
        ("adjust keys descend", _layer("adjust", 1, "frame"), 1, _layer("adjust")),
        ("adjust keys at one frame", _layer("adjust", 1, "frame"), 2, _layer("adjust")),
        ("fixed frames descend", _layer("stabilize", "fixedFrames"), [6, 4], _layer("stabilize", "fixedFrames")),
        ("lens keys descend", _clip("lens", "radial1", "frames"), [9, 0], _clip("lens")),
        ("fewer lens values than keys", _clip("lens", "radial1", "values"), [0.1], _clip("lens")),
        ("contour keys descend", keys + (1, "frame"), 1, keys),
        ("contour key behind the clip", keys + (1, "frame"), 20, keys),
        ("half a vertex", keys + (1, "points"), _VERTICES + [0, 0, 0], keys),
        ("another number of vertices in a key", keys + (1, "points"), _VERTICES * 2, keys),
        ("another number of vertices in a feather", keys + (0, "feather"), _VERTICES * 2, keys),
        ("weight above 1", spline + (2,), 1.5, spline),
        ("face of a vertex that isn't there", mesh + ("faceIndices",), [0, 1, 3], mesh),
        ("fewer face indices than the faces have", mesh + ("faceCounts",), [3, 3], mesh),
        ("half a frame of a mesh", mesh + ("tracks", 0, "positions"), [0] * 9, mesh),
        ("mesh beyond the clip", mesh + ("tracks", 0, "firstFrame"), 19, mesh),
        ("two mesh tracks of one view", mesh + ("tracks", 1, "view"), "left", mesh),
        ("mesh frames descend", mesh + ("tracks", 1, "frames"), [7, 2], mesh),
        ("pose with fewer rotations than positions", ("groups", 0, "pose", "rotations"), [0, 0, 0], ("groups", 0, "pose")),
        ("pose with more scales than positions", ("groups", 0, "pose", "scales"), [1, 2, 3], ("groups", 0, "pose")),
        ("pose beyond the clip", ("groups", 0, "pose", "firstFrame"), 19, ("groups", 0, "pose")),
        ("points that aren't threes", points + ("positions",), [0] * 8, points),
        ("a name too few", points + ("names",), ["a", "b"], points),
        ("inaccurate points descend", points + ("inaccurate",), [2, 0], points),
        ("inaccurate point that isn't there", points + ("inaccurate",), [3], points),
        ("vertex that isn't there", points + ("faceIndices",), [0, 1, 3], points),
        ("faces with more vertices than indices", points + ("faceCounts",), [4], points),
        ("uvs of two points", points + ("uvs",), [0] * 4, points),
        ("point frames descend", _layer("meshPoints", "frames"), [9, 0], _layer("meshPoints")),
        ("more point frames than positions", _layer("meshPoints", "frames"), [0, 1, 2, 3], _layer("meshPoints")),
        ("two feature sets of one name", _solve("features", 1, "name"), "wall", _solve("features")),
        ("camera keys beyond the clip", _solve("camera", "frames"), [0, 20], _solve("camera")),
        ("fewer camera keys than positions", _solve("camera", "frames"), [0], _solve("camera")),
        ("reference frame beyond the clip", _solve("referenceFrame"), 20, _solve()),
        ("lens turns back inside the picture", _clip("lens", "radial2"), -50, _clip("lens")),
    ]
    for name, corners in (("three corners on a line", [0, 0, 10, 10, 0, 10, 20, 20]),
                          ("two corners at one place", [0, 0, 10, 0, 0, 0, 10, 10])):
        cases.append((name, _layer("surface", "corners"), corners, _layer("surface", "corners")))
    for name, at, value, reported in cases:
        yield Fault(name, at, value, path(reported))


def _replaced(old: str, new: str) -> Callable[[str], str]:
    return lambda text: text.replace(old, new, 1)


# Faults of the text, with the place to be named ("" where the text falls apart and there is none).
TEXT_FAULTS: List[Tuple[str, Callable[[str], str], str]] = [
    ("NaN literal", _replaced("2.5", "NaN"), ""),
    ("infinity literal", _replaced("2.5", "-Infinity"), ""),
    ("number beyond doubles", _replaced("2.5", "1e999"), ""),
    ("cut-off text", lambda text: text[:len(text) // 2], ""),
    ("text behind the end", lambda text: text + "]", ""),
    ("comment", _replaced("{", "{ // project\n"), ""),
    ("comma too many", _replaced('"currentFrame": 3,', '"currentFrame": 3,,'), ""),
    ("single quotes", _replaced('"Poster"', "'Poster'"), ""),
    ("no text", lambda text: "", ""),
    ("a list", lambda text: "[" + text + "]", "$"),
    ("key twice", _replaced('"frameRate": 25', '"frameRate": 25, "frameRate": 25'), "$"),
    ("key twice in a layer", _replaced('"insertClip"', '"clip": "plate", "insertClip"'), "$.layers[0]"),
    ("70 keys in an object", _replaced("{", "{" + "".join(f'"k{i}": 0, ' for i in range(70))), ""),
    ("40 levels", _replaced('"views": [', '"views": [' + "[" * 40 + "]" * 40 + ", "), ""),
]
