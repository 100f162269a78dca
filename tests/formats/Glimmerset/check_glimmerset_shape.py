"""Holds exported Glimmerset shapes against the project: every name, every number, every frame.

usage: check_glimmerset_shape.py MARLO_EXPORT SOURCE_DIR SCRATCH_DIR

Then faults are put into the documents that passed, and each has to be noticed.
"""

import sys
import xml.etree.ElementTree as ElementTree
from typing import Any, Dict, List

import numpy as np

import checking
import shots
from checking import Check
from faults import Faults
from findings import Findings, judging
from planar import through
from shape_model import Layer, Scene
from texts import TextError

VERIFIES = {
    "glimmerset_shape": "points exactly, where homographies carry the surface within 1e-7 px",
}
KEY, = VERIFIES

Element = ElementTree.Element


def two_layers() -> Dict[str, Any]:
    """A shot with corrections by hand, whose names and contours try what XML has to escape, and a layer above it."""
    project = shots.hand_made(shots.STRONG)
    layer = project["layers"][0]
    vertices = [500.1, 60, -3, 4, 5, 6.5, 640, 75, 0, 0, 0, 0, 622, 198, 0.1, 0.2, 0.3, 1 / 3]
    moved = [value + 0.1 * i for i, value in enumerate(vertices)]
    layer.update({
        "name": ' Poster <"&\'> \u00a0\u00fc ', "blend": "subtract", "invert": True, "colour": [1, 20, 255, 128],
        "contours": [
            {"name": "  edge  ", "closed": False,
             "keys": [{"frame": 3, "points": vertices, "feather": moved}, {"frame": 40, "points": moved}]},
            {"name": "spline", "type": "xspline",
             "keys": [{"frame": 12, "points": [1e-7, 2, -1, 1234567.125, 3, 1 / 3, 5, 6, 0.25]}]},
            {"name": "switched off", "active": False, "keys": [{"frame": 0, "points": vertices}]},
        ],
    })
    project["currentLayer"] = layer["name"]
    project["clips"].append({"name": "other", "width": 360, "height": 288, "pixelAspect": 1.5, "frameCount": 20,
                             "frameOffset": 3, "interlaced": True})
    project["layers"].insert(0, {"name": "Top", "clip": "other", "hidden": True,
                                 "surface": {"corners": [0, 0, 9, 0, 0, 9, 9, 9]}})
    return project


def fields() -> Dict[str, Any]:
    project = shots.interlaced()
    project["layers"][0]["contours"] = [
        {"name": "line", "keys": [{"frame": 7, "points": [100, 30, 0, 0, 5, 5, 255, 42, -5, 1, 0, 0]}]}]
    project["currentLayer"] = "Screen"
    return project


def _flag(value: bool) -> str:
    return "true" if value else "false"


def _hex(colour: List[int]) -> str:
    return "#" + "".join(f"{component:02x}" for component in colour)


def _numbers(element: Element) -> List[float]:
    return [float(word) for word in (element.text or "").split()]


def judge_contour(findings: Findings, place: str, found: Element, contour: Dict[str, Any]) -> None:
    findings.same(place, found.attrib, {"name": contour["name"], "type": contour.get("type", "bezier"),
                                        "closed": _flag(contour.get("closed", True))})
    frames = [str(key["frame"]) for key in contour["keys"]]
    if not findings.same(f"{place}, frames", [key.get("frame") for key in found], frames):
        return
    for element, key in zip(found, contour["keys"]):
        here = f"{place}, key {key['frame']}"
        words = ["points"] + ["feather"] * ("feather" in key)
        if findings.same(f"{here}, children", [child.tag for child in element], words):
            for child in element:
                findings.compare("points", _numbers(child), key[child.tag], 0.0, f"{here}, {child.tag}")


def judge_motion(findings: Findings, place: str, found: Element, layer: Layer) -> None:
    """Where the corners of the surface and their middle come out."""
    if not findings.same(f"{place}, frames", [row.get("frame") for row in found], [str(at) for at in layer.frames()]):
        return
    points = np.vstack([layer.surface, layer.surface.mean(axis=0)])
    for element, frame in zip(found, layer.frames()):
        matrix = np.array(_numbers(element))
        if findings.same(f"{place}, numbers at {frame}", matrix.size, 9):
            findings.compare("surface, px", through(matrix.reshape(3, 3), points), through(layer.motion(frame), points),
                             1e-7, f"{place}, frame {frame}")


def judge_layer(findings: Findings, found: Element, layer: Layer) -> None:
    record, colour = layer.record, layer.record.get("colour", [255] * 4)
    place = f"layer {layer.name}"
    attributes = dict(found.attrib)
    findings.compare("pixel aspect", float(attributes.pop("pixelAspect", "nan")), layer.clip.get("pixelAspect", 1), 0.0, place)
    findings.same(place, attributes, {
        "name": layer.name, "clip": layer.clip["name"], "width": str(layer.raster[0]), "height": str(layer.raster[1]),
        "frameOffset": str(layer.clip.get("frameOffset", 0)), "fieldsPerFrame": str(layer.line_height),
        "colour": _hex(colour), "overlayColour": _hex(record.get("overlayColour", colour)),
        "invert": _flag(record.get("invert", False)), "blend": record.get("blend", "add"), "in": str(layer.first),
        "out": str(layer.last), "referenceFrame": str(layer.reference)})
    contours = [contour for contour in record.get("contours", []) if contour.get("active", True)]
    if findings.same(f"{place}, children", [child.tag for child in found], ["contour"] * len(contours) + ["motion"]):
        for element, contour in zip(found, contours):
            judge_contour(findings, f"{place}, contour {contour['name']}", element, contour)
        judge_motion(findings, f"{place}, motion", found[-1], layer)


@judging
def judge(findings: Findings, data: bytes, scene: Scene) -> None:
    try:
        root = ElementTree.fromstring(data)
    except ElementTree.ParseError as error:
        raise TextError(str(error)) from None
    clip, layers = scene.project["clips"][0], [layer for layer, in scene.layers]
    findings.same("root", (root.tag, root.get("version"), root.get("product")), ("glimmersetShapes", "1", "Marlo"))
    if not findings.same("children", [child.tag for child in root], ["project"] + ["layer"] * len(layers)):
        return
    expected = {"width": clip["width"], "height": clip["height"], "pixelAspect": clip.get("pixelAspect", 1),
                "frameRate": scene.project["frameRate"], "frameOffset": clip.get("frameOffset", 0),
                "fieldsPerFrame": 2 if clip.get("interlaced") else 1}
    findings.same("project", {name: float(value) for name, value in root[0].attrib.items()},
                  {name: float(value) for name, value in expected.items()})
    for found, layer in zip(root[1:], layers):
        judge_layer(findings, found, layer)


def faults_of(data: bytes) -> Faults:
    """Documents in which one thing is wrong; their first contour is a Bezier curve of two keys."""
    faults = Faults(data)
    key, contour = faults.place(r"   <key .*?</key>\n"), faults.place(r"  <contour .*?</contour>\n")
    rows = faults.places(r"   <homography [^\n]*\n")
    points = faults.places(r"[^ ]+", faults.place(r"<points>([^<]*)</points>"))
    matrix = faults.places(r"[^ ]+", faults.place(r">([^<]*)<", rows[-1]))
    for name, place in (("key", key), ("contour", contour), ("homography", rows[0])):
        faults.drop(f"{name} removed", place)
    faults.number("y flipped", points[1:2], lambda y: 1080.0 - y)
    faults.swap("vertices swapped", points[:6], points[6:12])
    faults.swap("handles swapped", points[2:4], points[4:6])
    faults.put("last digit", (points[0], faults.at(points[0]) + ("001" if "." in faults.at(points[0]) else ".001")))
    faults.drop("a number lost", (points[0][0], points[1][0]))
    faults.swap("matrix transposed", [matrix[1], matrix[2], matrix[5]], [matrix[3], matrix[6], matrix[7]])
    faults.edit("frame by one", [faults.place(r'<key frame="(\d+)"')], lambda frame: str(int(frame) + 1))
    for attribute in ("name", "clip", "width", "height", "colour", "overlayColour", "invert", "blend", "in", "out",
                      "referenceFrame"):
        faults.put(f"{attribute} changed", (faults.place(rf'<layer [^>]*?\b{attribute}="([^"]*)"'), "7"))
    for attribute in ("width", "height", "pixelAspect", "frameRate", "frameOffset", "fieldsPerFrame"):
        faults.put(f"project's {attribute} changed", (faults.place(rf'<project [^>]*?\b{attribute}="([^"]*)"'), "7"))
    faults.put("open and closed", (faults.place(r'closed="(\w+)"'), "maybe"))
    faults.replace("another version", 'Shapes version="1"', 'Shapes version="2"')
    faults.replace("no end", "</glimmersetShapes>", "")
    return faults


def body(check: Check) -> None:
    layers, line = two_layers(), fields()
    bottom = layers["currentLayer"]
    scenes = {"one layer": (Scene(layers, [bottom]),),
              "all layers": (Scene(layers, ["Top", bottom]), "--layers", "all"),
              "visible layers": (Scene(layers, [bottom]), "--layers", "visible"), "fields": (Scene(line),)}
    for name, (scene, *arguments) in scenes.items():
        check.prove(KEY, name, scene.project, lambda text: judge(text, scene), arguments,
                    faults_of if name == "one layer" else None)
    check.verdict(KEY, "golden", judge(check.golden(KEY), Scene(check.goldens_project())))


if __name__ == "__main__":
    sys.exit(checking.run(__doc__, body, VERIFIES))
