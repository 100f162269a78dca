"""Proves that masks of Premiere's clipboard stick: decodes every outline of a document and compares it in pixels.

usage: check_premiere_mask.py MARLO_EXPORT SOURCE_DIR SCRATCH_DIR
"""

import base64
import re
import struct
import sys
from functools import lru_cache
from typing import Any, Callable, Dict, Iterator, List, Tuple
from xml.etree import ElementTree
from xml.sax.saxutils import escape

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

TICKS, NEVER, LENGTH, START = 254016000000, -91445760000000000, 27367929388800, -101606400000000000

# Allowance for the arithmetic of doubles, in coordinates from 0 to 1.
ARITHMETIC = 1e-10
UUID = re.compile(r"[0-9a-f]{8}(-[0-9a-f]{4}){3}-[0-9a-f]{12}")

# ---- the document that is expected; "*" stands for an identifier, "?" for what is judged by its numbers


def tag(name: str, content: str = "", **attributes: Any) -> str:
    return f"<{name}" + "".join(f' {key}="{value}"' for key, value in attributes.items()) + f">{content}</{name}>"


def leaves(text: str) -> str:
    return "".join(tag(name, escape(value)) for name, _, value in (leaf.partition(" ") for leaf in text.split("|")))


def parameter(row: Tuple[Any, ...], ident: int, mask: "Mask") -> str:
    kind, name, number, control, value, lower, upper = row
    keys, varying = "", False
    if name == "Mask Opacity":
        keys, varying = "|Keyframes " + mask.pulse(), True
    named = f"Name {name}|" if name else ""
    if kind == "path":
        return path(named, number, control, ident, len(mask.layer.frames()) > 1)
    value = str(mask.layer.record.get("invert", False)).lower() if control == 4 else value
    head = f"{named}IsTimeVarying {str(varying).lower()}|ParameterControlType {control}|StartKeyframe {NEVER},{value},0,0,0,0,0,0"
    return tag("VideoComponentParam", leaves(f"{head}{keys}|LowerBound {lower}|UpperBound {upper}|ParameterID {number}"),
               ObjectID=ident, ClassID=kind, Version=8)


def path(named: str, number: int, control: int, ident: int, moves: bool, outlines: bool = True) -> str:
    content = leaves(f"{named}IsTimeVarying {str(moves).lower()}|ParameterControlType {control}|StartKeyframePosition {NEVER}")
    content += tag("Keyframes", "?") if moves else ""
    content += tag("StartKeyframeValue", "?", BinaryHash="*", Encoding="base64") if outlines else ""
    return tag("ArbVideoComponentParam", content + leaves(f"ParameterID {number}"), ObjectID=ident,
               ClassID="313e54d4-6903-49ad-b0bf-8262cdd10f4e", Version=2)


_FLAG, _NUMBER = "cc12343e-f113-4d3b-ae05-b287db77d461", "a4ff2d6e-7ac2-44f8-9d52-17d9ca50e542"
PARAMETERS = (
    (_FLAG, "Track:", 1, 11, "false", "false", "false"), (_FLAG, "", 2, 16, "false", "false", "true"),
    (_FLAG, "", 3, 16, "false", "false", "true"), (_FLAG, "", 4, 16, "false", "false", "false"),
    (_FLAG, "", 5, 12, "false", "false", "false"), ("path", "Mask Path", 6, 22, "", "", ""),
    (_NUMBER, "Mask Feather", 7, 8, 1, 0, 1000), (_NUMBER, "Mask Opacity", 8, 8, 100, 0, 100),
    (_NUMBER, "Mask Expansion", -1, 8, 0, -1000, 1000), (_FLAG, "", -1, 4, "false", "false", "true"),
    (_NUMBER, "", -1, 8, 2, 0, 3))


def filter_node(ident: int, params: range, words: str, subs: str, end: str) -> str:
    listed = "".join(tag("Param", Index=i, ObjectRef=param) for i, param in enumerate(params))
    component = tag("Component", tag("Params", listed, Version=1) + leaves(words + "|Bypass false|Intrinsic false"), Version=4)
    return tag("VideoFilterComponent", component + subs + leaves(end), ObjectID=ident,
               ClassID="d10da199-beea-4dd1-b941-ed3a78766d50", Version=7)


def document(masks: List["Mask"]) -> ElementTree.Element:
    """Objects level by level, numbered from 0 behind the root of the tree."""
    m, rows = len(masks), len(PARAMETERS)
    clip_rest = ("PosterFrame 0|FrameHold 0|FrameHoldStart {0}|HoldFilters false|DeinterlaceOnHold false|"
                 "ReverseFieldDominance false|FieldProcessing 0|FrameBlend false|ScaleToFramePolicy 0|AdjustmentLayer false")
    subs = "".join(tag("SubComponent", Index=i, ObjectRef=6 + i) for i in range(m))
    parts = [tag("VideoFilterComponentClipboardItem", ObjectRef=0), tag("VideoClipTrackItem", tag(
        "ClipTrackItem", tag("ComponentOwner", tag("Components", ObjectRef=1), Version=1) + tag("TrackItem", leaves(
            f"Type 1|MediaType 228cda18-3625-4d2d-951e-348879e4ed93|TrackIndex 0|Start 0|End {LENGTH}"), Version=3)
        + tag("SubClip", ObjectRef=2) + leaves("IsMuted false"), Version=4)
        + leaves("FrameRect 0,0,1920,1080|PixelAspectRatio 10000,10000"),
        ObjectID=0, ClassID="368b0406-29e3-4923-9fcd-094fbf9a1089", Version=5)]
    parts += [tag("VideoComponentChain", tag("ComponentChain", tag("Components", tag("Component", Index=0, ObjectRef=3), Version=1),
                                             Version=2), ObjectID=1, ClassID="0970e08a-f58f-4108-b29a-1a717b8e12e2", Version=1)]
    parts += [tag("SubClip", tag("Clip", ObjectRef=4) + leaves("Name t56_0029_01.MP4|OrigChGrp 0"), ObjectID=2,
                  ClassID="e0c58dc9-dbdd-4166-aef7-5db7e3f22e84", Version=5)]
    parts += [filter_node(3, range(5, 6), "ID 1|DisplayName Black & White", tag("SubComponents", subs, Version=1),
                          "MatchName PR.ADBE Black & White|VideoFilterType 1")]
    parts += [tag("VideoClip", tag("Clip", tag("Node", tag("Properties", leaves(
        "asl.clip.label.color 13408882|asl.clip.label.name BE.Prefs.LabelColors.1"), Version=1), Version=1) + tag(
            "MarkerOwner", tag("Markers", ObjectRef=6 + m), Version=1) + tag("Source", ObjectRef=7 + m) + leaves(
                f"ClipID *|InPoint 0|OutPoint {LENGTH}|InUse false"), Version=17) + leaves(clip_rest.format(START)),
        ObjectID=4, ClassID="9308dbef-2440-4acb-9ab2-953b9a4e82ec", Version=10), path("", -1, 9, 5, False, False)]
    for i, mask in enumerate(masks):
        parts += [filter_node(6 + i, range(8 + m + rows * i, 8 + m + rows * (i + 1)),
                              f"ID 0|DisplayName Mask|InstanceName {mask.name}", "", "MatchName AE.ADBE AEMask|VideoFilterType 2")]
    state = "60f2065b-57c4-affa-8a2a-e54900000024"
    parts += [tag("Markers", leaves(f"ByGUID byGUID|LastMetadataState {state}|LastContentState {state}"), ObjectID=6 + m,
                  ClassID="bee50706-b524-416c-9f03-b596ce5f6866", Version=3)]
    parts += [tag("VideoMediaSource", tag("MediaSource", tag("Content", leaves(
        f"StartBoundary {START}|EndBoundary {START}|BoundariesAreHard true"), Version=7) + tag("Media", ObjectURef="*"),
        Version=3) + leaves(f"OriginalDuration {LENGTH}"), ObjectID=7 + m, ClassID="e64ddf74-8fac-4682-8aa8-0e0ca2248949",
        Version=2)]
    parts += [parameter(row, 8 + m + rows * i + j, mask) for i, mask in enumerate(masks) for j, row in enumerate(PARAMETERS)]
    audio = 8 + (rows + 1) * m
    parts += [tag("Media", tag("AudioStream", ObjectRef=audio) + tag("VideoStream", ObjectRef=audio + 1) + tag(
        "ModificationState", "\nNgAwAGYAMgAwADYANQBiAC0ANQA3AGMANAAtAGEAZgBmAGEALQA4AGEAMgBhAC0AZQA1ADQAOQAwADAAMAAwADAAMAAyADQA\n",
        BinaryHash="*", Encoding="base64") + leaves(
            "FilePath \\File\\Path.MP4|ImplementationID 1fa18bfa-255c-44b1-ad73-56bcd99fceaf|Title Path.MP4|FileKey *|"
            "Infinite false|OfflineReason 0|CaptureStatus 0|ConformedAudioRate 5292000|IgnoreVideo false|IgnoreAudio false|"
            "SingleAudioChannel -1|StreamNumber 0|ActualMediaFilePath \\marlo\\rocks.MP4|Start 0|AlternateStart 0|"
            "UseAlternateStart false|MediaFileHistory0 \\marlo\\rocks.MP4|ContentAndMetadataState *"),
        ObjectUID="*", ClassID="7a5c103e-f3ac-4391-b6b4-7cc3d2f9a7ff", Version=23)]
    parts += [tag("AudioStream", leaves(
        f"SampleType 11|FrameRate 5292000|DisplayFrameRate 5292000|SingleChannel -1|CodecType 0|Duration {LENGTH}|"
        'ConformedAudioPath \\marlo\\rocks.pek|AudioChannelLayout [{"channellabel":100},{"channellabel":101}]'),
        ObjectID=audio, ClassID="0b5cf52f-2b85-4863-890b-8844b64ecfe9", Version=6)]
    parts += [tag("VideoStream", leaves(
        "CodecType 1297106740|FrameRate 8475667200|OveriddenFrameRate 9223372036854775807|FrameRect 0,0,1920,1080|"
        "OriginalPAR 10000,10000|OverriddenPAR 1,1|PARIsUncertain false|AlphaType 2|IsAlphaTypeOverridden false|"
        "OverriddenAlphaType 0|AlphaInfoIsUncertain false|IsIgnoreAlphaOverridden false|OverriddenIgnoreAlpha false|"
        "IsInvertAlphaOverridden false|OverriddenInvertAlpha false|OriginalAlphaMatteColor 0,0,0|"
        f"IsAlphaMatteColorOverridden false|OverriddenAlphaMatterColor 0,0,0|Duration {LENGTH}|OriginalFieldType 1|"
        "OverriddenFieldType 3|FieldTypeIsUncertain false"),
        ObjectID=audio + 1, ClassID="a36e4719-3ec6-4a0c-ab11-8b4aab377aa5", Version=14)]
    return ElementTree.fromstring(tag("PremiereData", "".join(parts), Version=3))


def compare_elements(found: ElementTree.Element, expected: ElementTree.Element, drawn: List[str]) -> None:
    """Raises TextError at the first difference; gathers the identifiers that are new in each document."""
    place = f"{found.tag} {found.get('ObjectID', '')}"
    texts = [("tag", found.tag, expected.tag), ("attributes", " ".join(sorted(found.attrib)), " ".join(sorted(expected.attrib)))]
    texts += [(key, found.get(key, ""), value) for key, value in expected.attrib.items()]
    texts += [("text", (found.text or "").strip(" \n") if len(found) else found.text or "", expected.text or "")]
    for what, text, wanted in texts:
        if wanted == "*" and UUID.fullmatch(text):
            drawn += [text] * (what != "ObjectURef")
        elif text != wanted and wanted != "?":
            raise TextError(f"{place}: {what} is {text[:60]!r} instead of {wanted[:60]!r}")
    if len(found) != len(expected):
        raise TextError(f"{place}: {len(found)} children instead of {len(expected)}")
    for pair in zip(found, expected):
        compare_elements(*pair, drawn)


# ---- masks


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
    if findings.same(f"{mask.name}: times", [key[0] for key in keys], [str(ticks) for ticks in mask.ticks()]):
        for (_, one), frame in zip(keys, frames):
            findings.add(outline(one, mask.layer, mask.contour, frame, mask.turn))


@judging
def judge(findings: Findings, data: bytes, scene: Scene) -> None:
    masks = [Mask(scene.project, layer, contour) for layer, in scene.layers for contour in layer.contours]
    text, drawn = decoded(data), []
    if not text.startswith('<?xml version="1.0" encoding="UTF-8"?>\n<PremiereData Version="3">\n  <VideoFilterC'):
        raise TextError("another head")
    try:
        root = ElementTree.fromstring(data)
    except ElementTree.ParseError as error:
        raise TextError(str(error)) from None
    compare_elements(root, document(masks), drawn)
    findings.same("identifiers that are drawn twice", len(drawn) - len(set(drawn)), 0)
    findings.same("media", root.find(".//Media[@ObjectURef]").get("ObjectURef"), root.find("Media").get("ObjectUID"))
    for node, mask in zip(root.findall("*[StartKeyframeValue]"), masks):
        judge_path(findings, node, mask)


# ---- faults

def faults_of(data: bytes) -> Faults:
    """Faults of the document and of the first mask, a Bezier curve."""
    faults = Faults(data)
    for number in faults.places(r'Object(?:U?Ref|ID)="(\d+)"')[:60]:
        faults.put(f"reference {number}", (number, str(int(faults.at(number)) + 1)))
    for name in ("ClassID", "Version", "Index", "ObjectURef", "ObjectUID"):
        place = faults.place(f' {name}="([^"]*)"', (100, -1))
        digit = faults.text[place[1] - 1]
        faults.put(f"another {name}", ((place[1] - 1, place[1]), "3" if digit != "3" else "4"))
    faults.drop("object lost", faults.place(r"  <Markers O.*?</Markers>\n"))
    faults.drop("element lost", faults.place(r"<LowerBound>0</LowerBound>"))
    faults.swap("bounds swapped", faults.places("<LowerBound>0<.LowerBound>")[1:2], faults.places("<UpperBound>100<.UpperBound>"))
    for name, old, new in (("inverted", r",(true),0", "false"), ("name", r"<InstanceName>(.)", "x"),
                           ("opacity", r",(100),4", "99"), ("held", r",100,(4)", "5")):
        faults.put(name, (faults.place(old), new))
    for i in range(3):
        faults.edit(f"opacity key {i}", faults.places(r"(-?\d+),\d+,4,0")[i:i + 1], lambda ticks: str(int(ticks) + TICKS // 25))
    keys = faults.places(r"\d+,[\w+/=]+;", faults.place(r"<Keyframes>(-?\d+,\w[^<]*)"))
    outlines = [faults.place(r",([^;]+)", key) for key in keys]
    faults.drop("first key lost", keys[0])
    faults.drop("a key lost", keys[4])
    faults.late("outlines a key late", outlines)
    faults.edit("a tick", [faults.place(r"\d+", keys[3])], lambda ticks: str(int(ticks) + 1))
    faults.put("another first outline", (faults.place(r'<StartKeyframeValue[^>]*>([^<]{40}[^<]*)', (keys[-1][1], -1)), faults.at(outlines[1])))
    spoil = {"y flipped": lambda at: at * [1, -1] + [0, 1], "handles swapped": lambda at: at[:, [0, 2, 1]],
             "turned": lambda at: np.roll(at[::-1, [0, 2, 1]], 1, axis=0), "from the next": lambda at: np.roll(at, 1, axis=0),
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
