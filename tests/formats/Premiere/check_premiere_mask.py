"""Proves that masks of Premiere's clipboard stick: decodes every outline of a document and compares it in pixels.

usage: check_premiere_mask.py MARLO_EXPORT SOURCE_DIR SCRATCH_DIR
"""

import base64
import struct
import sys
from functools import lru_cache
from typing import Any, Callable, Dict, Iterator, List, Tuple
from xml.etree import ElementTree

import numpy as np

import checking
import shape_projects
from checking import Check
from faults import Faults
from findings import Findings, judging
from shape_model import VERTEX, X_SPLINE, Contour, Layer, Outline, Scene, apart, distances
from shape_projects import Case
from texts import TextError, decoded

VERIFIES = {
    "premiere_shape": "vertices and handles within the rounding of four single floats; keys on frames to the tick",
}
KEY, = VERIFIES

TICKS, NEVER = 254016000000, -91445760000000000

# Allowance for the arithmetic of doubles, in coordinates from 0 to 1.
ARITHMETIC = 1e-10

# Class and version, and what comes before and behind what may be keys.
_FILTER, _PATH = "d10da199-beea-4dd1-b941-ed3a78766d50 7", "313e54d4-6903-49ad-b0bf-8262cdd10f4e 2"
_FLAG, _NUMBER = "cc12343e-f113-4d3b-ae05-b287db77d461 8", "a4ff2d6e-7ac2-44f8-9d52-17d9ca50e542 8"
# Class, name, number, control, value and its bounds.
PARAMETERS = (
    (_FLAG, "Track:", 1, 11, "false", "false", "false"), (_FLAG, "", 2, 16, "false", "false", "true"),
    (_FLAG, "", 3, 16, "false", "false", "true"), (_FLAG, "", 4, 16, "false", "false", "false"),
    (_FLAG, "", 5, 12, "false", "false", "false"), (_PATH, "Mask Path", 6, 22, "", "", ""),
    (_NUMBER, "Mask Feather", 7, 8, 1, 0, 1000), (_NUMBER, "Mask Opacity", 8, 8, 100, 0, 100),
    (_NUMBER, "Mask Expansion", -1, 8, 0, -1000, 1000), (_FLAG, "", -1, 4, "false", "false", "true"),
    (_NUMBER, "", -1, 8, 2, 0, 3))


def objects(root: ElementTree.Element) -> List[ElementTree.Element]:
    """All in the order in which references lead to them, level by level, which is that of the document."""
    known = {node.get("ObjectID", node.get("ObjectUID", "root")): node for node in root}
    order, work = [], ["root"]
    while work and len(order) <= len(root):
        node = known.get(work.pop(0))
        if node is None:
            raise TextError(f"a reference behind object {len(order)} leads nowhere")
        order.append(node)
        work += [at.get(name) for at in node.iter() for name in ("ObjectRef", "ObjectURef") if name in at.attrib]
    numbers = [[node.get("ObjectID") for node in root if "ObjectID" in node.attrib]]
    numbers += [[child.get("Index") for child in node if "Index" in child.attrib] for node in root.iter()]
    if order != list(root) or any(found != [str(i) for i in range(len(found))] for found in numbers):
        raise TextError("objects aren't in the order of their references, or numbers have gaps")
    return order


def words(node: ElementTree.Element) -> str:
    """Class, version and all texts of an object, but for outlines."""
    hidden = ("Keyframes", "StartKeyframeValue") * node.tag.startswith("Arb")
    texts = [f"{at.tag} {'' if at.tag in hidden else at.text}" for at in node.iter()
             if not len(at) and "ObjectRef" not in at.attrib]
    return "|".join([f"{node.get('ClassID')} {node.get('Version')}", *texts])


def parameter(mask: "Mask", kind: str, name: str, number: int, control: int, value: Any, lower: Any, upper: Any) -> str:
    moves = len(mask.layer.frames()) > 1
    keys = {"Mask Opacity": f"|Keyframes {mask.pulse()}", "Mask Path": "|Keyframes " * moves}.get(name, "")
    value = str(mask.layer.record.get("invert", False)).lower() if control == 4 else value
    text = f"{kind}|" + f"Name {name}|" * bool(name)
    text += f"IsTimeVarying {str(bool(keys)).lower()}|ParameterControlType {control}|"
    if kind == _PATH:
        return text + f"StartKeyframePosition {NEVER}{keys}|StartKeyframeValue |ParameterID {number}"
    text += f"StartKeyframe {NEVER},{value},0,0,0,0,0,0{keys}"
    return text + f"|LowerBound {lower}|UpperBound {upper}|ParameterID {number}"


class Mask:
    """A contour and the time of its layer: keys count shown frames, opacity host frames."""

    def __init__(self, project: Dict[str, Any], layer: Layer, contour: Contour) -> None:
        self.layer, self.contour = layer, contour
        self.name = layer.name if len(layer.contours) == 1 else f"{layer.name} - {contour.name}"
        trim, start = project.get("trim", [0])[0], project["clips"][0].get("frameOffset", 0)
        self._range_base = (-trim if trim else start - layer.offset) / layer.line_height
        self._key_base = (-trim if trim else -layer.offset) / layer.line_height
        self._rate = float(np.float32(layer.rate))
        # Closed outlines are turned by their area over all keys, open ones never.
        self.turn = contour.closed and sum(area(layer.seen(contour, frame).dense) for frame in layer.frames()) > 0.0

    def pulse(self) -> str:
        first, last = ((self._range_base + frame) / self._rate for frame in (self.layer.first, self.layer.last))
        keys = ((first - 1.0 / self._rate, 0), (first, 100), (last + 1.0 / self._rate, 0))
        return ";".join(f"{int(time * TICKS)},{value},4,0,0,0,0,0" for time, value in keys)

    def ticks(self) -> List[int]:
        return [int((self._key_base + self.layer.shown(frame)) / self._rate * TICKS) for frame in self.layer.frames()]


def record(text: str) -> np.ndarray:
    """Vertices, arriving and leaving handles of an outline in the picture, 0 to 1, y up: (vertices, 3, 2)."""
    data = base64.b64decode(text, validate=True)
    if len(data) < 12 or data[:8] != b"kcin\0\0\0\0" or len(data) != 12 + 28 * struct.unpack_from("<I", data, 8)[0]:
        raise TextError(f"a record of {len(data)} bytes: {data[:12]!r}")
    points = np.frombuffer(data, [("kind", "<i4"), ("at", "<f4", (3, 2))], offset=12)
    if np.any(points["kind"] != 1):
        raise TextError("a point without handles")
    return points["at"].astype(float)[:, [1, 0, 2]]


def turned(points: np.ndarray) -> np.ndarray:
    """The other way round, from the same vertex."""
    return np.roll(points[::-1, ::-1], 1, axis=0)


def area(line: np.ndarray) -> float:
    after = np.roll(line, -1, axis=0)
    return float(np.sum(line[:, 0] * after[:, 1] - line[:, 1] * after[:, 0]) / 2.0)


@lru_cache(maxsize=4096)
def outline(text: str, layer: Layer, contour: Contour, frame: int, turn: bool) -> Findings:
    findings, size = Findings(), np.array(layer.raster, float)
    found, seen, place = record(text), layer.seen(contour, frame), f"{layer.name}/{contour.name} at frame {frame}"
    # A coordinate is rounded to a float, multiplied by a rounded factor, rounded, and y, from the top, taken from 1.
    down = np.abs(found * [1.0, -1.0] + [0.0, 1.0])
    error = (3.0 * 2.0 ** -24 * down + 2.0 ** -24 * np.abs(found) * [0.0, 1.0] + ARITHMETIC) * size
    pixels = found * size
    if contour.bezier:
        expected, drawn = (turned(seen.points), turned(seen.drawn())) if turn else (seen.points, seen.drawn())
        if findings.same(f"{place}: vertices", len(found), len(expected)):
            findings.compare("outlines, px", pixels[drawn], expected[drawn], error[drawn], place)
        return findings
    curve, bound = Outline(pixels, None, True), X_SPLINE + float(np.linalg.norm(error, axis=-1).max())
    away = apart(curve, seen) if contour.closed else np.concatenate(
        [distances(seen.dense, curve.fine), distances(pixels[:, VERTEX], seen.fine)])
    findings.compare("x-splines, px", away, np.zeros(len(away)), bound, place)
    if contour.closed and area(curve.dense) >= 0.0:
        findings.problem(f"{place}: counter-clockwise")
    return findings


def judge_path(findings: Findings, node: ElementTree.Element, mask: Mask) -> None:
    frames, first = mask.layer.frames(), node.findtext("StartKeyframeValue") or ""
    text = node.findtext("Keyframes", f"{mask.ticks()[0]},{first};")
    keys = [key.split(",") for key in text.split(";")]
    if keys.pop() != [""] or any(len(key) != 2 for key in keys):
        raise TextError(f"{mask.name}: keys are not 'ticks,record;'")
    findings.same(f"{mask.name}: first outline", first, keys[0][1])
    findings.same(f"{mask.name}: numbers of vertices", len({len(record(one)) for _, one in keys}), 1)
    if findings.same(f"{mask.name}: times", [key[0] for key in keys], [str(ticks) for ticks in mask.ticks()]):
        for (_, one), frame in zip(keys, frames):
            findings.add(outline(one, mask.layer, mask.contour, frame, mask.turn))


@judging
def judge(findings: Findings, data: bytes, scene: Scene) -> None:
    masks = [Mask(scene.project, layer, contour) for layer, in scene.layers for contour in layer.contours]
    if not decoded(data).startswith('<?xml version="1.0" encoding="UTF-8"?>\n<PremiereData Version="3">\n'):
        raise TextError("another head")
    try:
        nodes = objects(ElementTree.fromstring(data))
    except ElementTree.ParseError as error:
        raise TextError(str(error)) from None
    on, mask_type = "|Bypass false|Intrinsic false|MatchName ", "AE.ADBE AEMask|VideoFilterType 2"
    expected = [f"{_FILTER}|ID 1|DisplayName Black & White{on}PR.ADBE Black & White|VideoFilterType 1",
                f"{_PATH}|IsTimeVarying false|ParameterControlType 9|StartKeyframePosition {NEVER}|ParameterID -1"]
    expected += [f"{_FILTER}|ID 0|DisplayName Mask|InstanceName {mask.name}{on}{mask_type}" for mask in masks]
    expected += [parameter(mask, *row) for mask in masks for row in PARAMETERS]
    varying = [node for node in nodes if node.tag.endswith("Param") or node.tag == "VideoFilterComponent"]
    if findings.same("objects", len(varying), len(expected)):
        for node, text in zip(varying, expected):
            findings.same(f"object {node.get('ObjectID')}", words(node), text)
        for node, mask in zip((node for node in varying if node.find("StartKeyframeValue") is not None), masks):
            judge_path(findings, node, mask)


# ---- faults

def faults_of(data: bytes) -> Faults:
    """Faults of the document and of the first mask, a Bezier curve."""
    faults = Faults(data)
    for number in faults.places(r'Object(?:U?Ref|ID)="(\d+)"')[:60]:
        faults.put(f"reference {number}", (number, str(int(faults.at(number)) + 1)))
    of_filter = "<VideoFilterComponent [^>]*"
    for name in (of_filter + "ClassID", of_filter + "Version", " Index", "ObjectURef", "ObjectUID"):
        end = faults.place(f'{name}="([^"]*)"')[1]
        faults.put(f"another {name}", ((end - 1, end), "3" if faults.text[end - 1] != "3" else "4"))
    faults.drop("object lost", faults.place(r"  <Markers O.*?</Markers>\n"))
    faults.drop("element lost", faults.place(r"<LowerBound>0</LowerBound>"))
    faults.swap("bounds swapped", faults.places("(0)</Low")[1:2], faults.places("(100)</Up"))
    for name, old, new in (("inverted", r",(true),0", "false"), ("name", r"<InstanceName>(.)", "x"),
                           ("opacity", r",(100),4", "99"), ("held", r",100,(4)", "5")):
        faults.put(name, (faults.place(old), new))
    for i in range(3):
        faults.edit(f"opacity key {i}", faults.places(r"(\d+),\d+,4,0")[i:i + 1], lambda at: str(int(at) + TICKS // 25))
    keys = faults.places(r"\d+,[\w+/=]+;", faults.place(r"<Keyframes>(-?\d+,\w[^<]*)"))
    outlines = [faults.place(r",([^;]+)", key) for key in keys]
    faults.drop("first key lost", keys[0])
    faults.drop("a key lost", keys[4])
    faults.late("outlines a key late", outlines)
    faults.edit("a tick", [faults.place(r"\d+", keys[3])], lambda ticks: str(int(ticks) + 1))
    start = faults.place(r"<StartKeyframeValue[^>]*>([^<]{40}[^<]*)", (keys[-1][1], -1))
    faults.put("another first outline", (start, faults.at(outlines[1])))
    spoil = {"y flipped": lambda at: at * [1, -1] + [0, 1], "handles swapped": lambda at: at[:, [0, 2, 1]],
             "counter-clockwise": lambda at: np.roll(at[::-1, [0, 2, 1]], 1, axis=0),
             "from the next": lambda at: np.roll(at, 1, axis=0),
             "vertex lost": lambda at: at[1:], "axes swapped": lambda at: at[..., ::-1],
             "relative": lambda at: at - at[:, :1] * [[0], [1], [1]]}
    spoil.update({f"number {i}": _nudged(i) for i in range(12, 18)})
    for name, change in spoil.items():
        faults.edit(name, outlines[2:3], lambda text: _written(change(record(text)[:, [1, 0, 2]])))
    for name, at in (("magic", 0), ("type", 4), ("count", 8), ("kind", 12)):
        faults.edit(name, outlines[2:3], lambda text: _changed(text, at))
    return faults


def _nudged(number: int) -> Callable[[np.ndarray], np.ndarray]:
    return lambda at: at + 1e-6 * (np.arange(at.size) == number).reshape(at.shape)


def _written(at: np.ndarray) -> str:
    points = b"".join(struct.pack("<i6f", 1, *point.ravel()) for point in at)
    return base64.b64encode(b"kcin\0\0\0\0" + struct.pack("<I", len(at)) + points).decode()


def _changed(text: str, at: int) -> str:
    data = bytearray(base64.b64decode(text))
    data[at] ^= 3
    return base64.b64encode(data).decode()


def cases() -> Iterator[Case]:
    """Those of shapes, and others in which times differ: two clips, fields that are trimmed."""
    known = shape_projects.cases()
    yield from (known[name] for name in ("layers", "single frame", "fields", "left view", "right view", "far"))
    clips, trimmed = shape_projects.layers(), shape_projects.fields()
    yield Case("trimmed", Scene(dict(clips, trim=[4, 30])), ("--layer", "Front sign"))
    clips["clips"].append({"name": "other", "width": 960, "height": 540, "frameCount": 40, "frameOffset": 7})
    clips["layers"][1]["clip"], clips["frameRate"], trimmed["trim"] = "other", 23.976, [5, 19]
    yield Case("clips", Scene(clips, [layer["name"] for layer in clips["layers"]]), ("--layers", "all"))
    yield Case("trimmed fields", Scene(trimmed))


def body(check: Check) -> None:
    check.may_warn = ("The project is trimmed and its clip has an offset",)
    check.verdict(KEY, "golden", judge(check.golden(KEY), Scene(check.goldens_project())))
    for case in cases():
        check.prove(KEY, case.name, case.scene.project, lambda text: judge(text, case.scene), case.arguments,
                    faults_of if case.name == "layers" else None)


if __name__ == "__main__":
    sys.exit(checking.run(__doc__, body, VERIFIES))
