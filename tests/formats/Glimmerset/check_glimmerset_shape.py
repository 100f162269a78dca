"""Holds exported Glimmerset shapes against the project: every name, every number, every frame.

usage: check_glimmerset_shape.py MARLO_EXPORT SOURCE_DIR SCRATCH_DIR

Then faults are put into the documents that passed, and each has to be noticed.
"""

import json
import sys
import xml.etree.ElementTree as ElementTree
from pathlib import Path
from typing import Any, Callable, Dict, Iterator, List, Tuple

import numpy as np

import shots
from planar import PlanarProject, homography, through
from tool import Tool

Element = ElementTree.Element


def two_layers() -> Dict[str, Any]:
    """A shot with corrections by hand, whose names and contours try what XML has to escape, and a layer above it on
    another clip."""
    project = shots.hand_made(shots.STRONG)
    layer = project["layers"][0]
    vertices = [500.1, 60, -3, 4, 5, 6.5, 640, 75, 0, 0, 0, 0, 622, 198, 0.1, 0.2, 0.3, 1 / 3]
    moved = [value + 0.1 * i for i, value in enumerate(vertices)]
    layer.update({
        "name": ' Poster <"&\'> \t\u00fc ', "blend": "subtract", "invert": True, "colour": [1, 20, 255, 128],
        "contours": [
            {"name": "  edge  ", "closed": False,
             "keys": [{"frame": 3, "points": vertices, "feather": moved}, {"frame": 40, "points": moved}]},
            {"name": "spline", "type": "xspline",
             "keys": [{"frame": 12, "points": [1e-7, 2, -1, 1234567.125, 3, 1 / 3, 5, 6, 0.25]}]},
            {"name": "switched off", "active": False, "keys": [{"frame": 0, "points": vertices}]},
        ],
    })
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


class Differences(list):
    """What doesn't fit, with its place."""

    def equal(self, place: str, found: Any, expected: Any) -> None:
        if found != expected:
            self.append(f"{place}: {found!r} where {expected!r} was expected")

    def numbers(self, place: str, element: Element, expected: List[float]) -> None:
        text = (element.text or "") if element is not None else ""
        self.equal(place, [float(word) for word in text.split()], [float(value) for value in expected])


def _flag(value: bool) -> str:
    return "true" if value else "false"


def _hex(colour: List[int]) -> str:
    return "#" + "".join(f"{component:02x}" for component in colour)


def _homographies(project: Dict[str, Any], layer: Dict[str, Any]) -> Callable[[int], np.ndarray]:
    if "tracking" not in layer:
        return lambda frame: np.eye(3)
    planar = PlanarProject({**project, "layers": [layer]})
    return lambda frame: homography(planar.surface, planar._quad("adjusted", frame))


def judge_contour(differences: Differences, place: str, found: Element, contour: Dict[str, Any]) -> None:
    differences.equal(place, found.attrib, {"name": contour["name"], "type": contour.get("type", "bezier"),
                                            "closed": _flag(contour.get("closed", True))})
    differences.equal(f"{place}, frames", [key.get("frame") for key in found],
                      [str(key["frame"]) for key in contour["keys"]])
    for element, key in zip(found, contour["keys"]):
        here = f"{place}, key {key['frame']}"
        differences.equal(f"{here}, children", [child.tag for child in element],
                          ["points"] + ["feather"] * ("feather" in key))
        differences.numbers(f"{here}, points", element.find("points"), key["points"])
        if "feather" in key:
            differences.numbers(f"{here}, feather", element.find("feather"), key["feather"])


def judge_motion(differences: Differences, place: str, found: Element, layer: Dict[str, Any], first: int, last: int,
                 motion: Callable[[int], np.ndarray]) -> float:
    """Where the corners of the surface and their middle come out; the largest error in pixels."""
    differences.equal(f"{place}, frames", [element.get("frame") for element in found],
                      [str(frame) for frame in range(first, last + 1)])
    corners = np.array(layer["surface"]["corners"], float).reshape(4, 2)
    points = np.vstack([corners, corners.mean(axis=0)])
    largest = 0.0
    for element in found:
        matrix = np.array([float(word) for word in element.text.split()])
        if matrix.size != 9:
            differences.append(f"{place}: {matrix.size} numbers in a homography")
            continue
        expected = through(motion(int(element.get("frame"))), points)
        try:
            error = float(np.abs(through(matrix.reshape(3, 3), points) - expected).max())
        except ValueError:
            error = float("inf")
        largest = max(largest, error)
    if not largest <= 1e-7:
        differences.append(f"{place}: points are off by {largest:.3g} px")
    return largest


def judge(text: bytes, project: Dict[str, Any], names: List[str]) -> Tuple[Differences, float]:
    differences = Differences()
    root = ElementTree.fromstring(text)
    clip = project["clips"][0]
    lines = 2 if clip.get("interlaced") else 1
    differences.equal("root", (root.tag, root.get("version"), root.get("product")), ("glimmersetShapes", "1", "Marlo"))
    differences.equal("tags", [child.tag for child in root], ["project"] + ["layer"] * len(names))
    head = root.find("project").attrib
    numbers = {"width": clip["width"], "height": clip["height"], "pixelAspect": clip.get("pixelAspect", 1),
               "frameRate": project["frameRate"], "frameOffset": clip.get("frameOffset", 0), "fieldsPerFrame": lines}
    differences.equal("project", {key: float(value) for key, value in head.items()},
                      {key: float(value) for key, value in numbers.items()})
    layers = {layer["name"]: layer for layer in project["layers"]}
    clips = {clip["name"]: clip for clip in project["clips"]}
    largest = 0.0
    for found, name in zip(root.findall("layer"), names):
        layer = layers[name]
        clip = clips[layer.get("clip", project["clips"][0]["name"])]
        lines = 2 if clip.get("interlaced") else 1
        first, last = layer.get("in", 0), layer.get("out", clip["frameCount"] - 1)
        colour = layer.get("colour", [255] * 4)
        differences.equal(f"layer {name}, pixel aspect", float(found.attrib.pop("pixelAspect", "nan")),
                          float(clip.get("pixelAspect", 1)))
        differences.equal(f"layer {name}", found.attrib, {
            "name": name, "clip": clip["name"], "width": str(clip["width"]), "height": str(clip["height"] // lines),
            "frameOffset": str(clip.get("frameOffset", 0)), "fieldsPerFrame": str(lines),
            "colour": _hex(colour), "overlayColour": _hex(layer.get("overlayColour", colour)),
            "invert": _flag(layer.get("invert", False)), "blend": layer.get("blend", "add"), "in": str(first),
            "out": str(last), "referenceFrame": str(layer["surface"].get("referenceFrame", first))})
        contours = [contour for contour in layer.get("contours", []) if contour.get("active", True)]
        differences.equal(f"layer {name}", [child.tag for child in found], ["contour"] * len(contours) + ["motion"])
        for element, contour in zip(found.findall("contour"), contours):
            judge_contour(differences, f"layer {name}, contour {contour['name']}", element, contour)
        largest = max(largest, judge_motion(differences, f"layer {name}, motion", found.find("motion"), layer, first,
                                            last, _homographies(project, layer)))
    return differences, largest


def faults(text: bytes) -> Iterator[Tuple[str, bytes]]:
    """Documents in which one thing is wrong."""
    def changed(change: Callable[[Element], None]) -> bytes:
        root = ElementTree.fromstring(text)
        change(root)
        return ElementTree.tostring(root)

    def numbers(element: Element, change: Callable[[List[str]], List[str]]) -> None:
        element.text = " ".join(change(element.text.split()))

    def first(root: Element, path: str) -> Element:
        return root.findall(path)[0]

    def flip(words: List[str]) -> List[str]:
        return [words[0], str(1080 - float(words[1]))] + words[2:]

    def drop(root: Element, path: str) -> None:
        parent = first(root, path + "/..")
        parent.remove(parent.findall(path.rsplit("/", 1)[1])[0])

    points, row = "layer/contour/key/points", "layer/contour/../motion/homography"
    yield "a key removed", changed(lambda root: drop(root, "layer/contour/key"))
    yield "a contour removed", changed(lambda root: drop(root, "layer/contour"))
    yield "a homography removed", changed(lambda root: drop(root, row))
    yield "y flipped", changed(lambda root: numbers(first(root, points), flip))
    yield "vertices swapped", changed(lambda root: numbers(first(root, points), lambda w: w[6:12] + w[:6] + w[12:]))
    yield "handles swapped", changed(
        lambda root: numbers(first(root, points), lambda w: w[:2] + w[4:6] + w[2:4] + w[6:]))
    yield "last digit", changed(lambda root: numbers(first(root, points), lambda w: [w[0] + "001"] + w[1:]))
    yield "matrix transposed", changed(
        lambda root: numbers(root.findall(row)[-1], lambda w: [w[i] for i in (0, 3, 6, 1, 4, 7, 2, 5, 8)]))
    yield "frame by one", changed(
        lambda root: first(root, "layer/contour/key").set("frame", str(int(first(root, "layer/contour/key").get("frame")) + 1)))
    for attribute in ("name", "colour", "in", "blend", "frameOffset", "fieldsPerFrame", "pixelAspect"):
        yield f"{attribute} changed", changed(lambda root: first(root, "layer").set(attribute, "7"))
    yield "open and closed", changed(lambda root: first(root, "layer/contour").set("closed", "maybe"))


def main() -> int:
    if len(sys.argv) != 4:
        print(__doc__, file=sys.stderr)
        return 2
    tool, source, scratch = Tool(sys.argv[1]), Path(sys.argv[2]), Path(sys.argv[3])
    scratch.mkdir(parents=True, exist_ok=True)
    golden = Path(__file__).with_name("golden")
    layers, line = two_layers(), fields()
    bottom = layers["layers"][1]["name"]
    layers["currentLayer"] = bottom
    cases = [("one layer", layers, [], [bottom]), ("all layers", layers, ["--layers", "all"], ["Top", bottom]),
             ("visible layers", layers, ["--layers", "visible"], [bottom]), ("fields", line, [], ["Screen"])]
    failures, noticed = [], 0
    documents = []
    for name, project, arguments, names in cases:
        file = scratch / "project.json"
        file.write_text(json.dumps(project), encoding="utf-8")
        text = tool.write(scratch / f"{name.replace(' ', '_')}.fxs", "export", file, "glimmerset_shape", *arguments)
        documents.append((name, text, project, names))
    documents.append(("golden", (golden / "glimmerset_shape" / "out.fxs").read_bytes(),
                      json.loads((golden.parent.parent / "project.json").read_text(encoding="utf-8")), ["Poster"]))
    for name, text, project, names in documents:
        differences, largest = judge(text, project, names)
        print(f"{name}: {len(text)} bytes, points of the surface off by at most {largest:.3g} px")
        failures += [f"{name}: {difference}" for difference in differences]
        if "Top" in names:
            continue
        for fault, bad in faults(text):
            noticed += 1
            if not judge(bad, project, names)[0]:
                failures.append(f"{name}: not noticed: {fault}")
    for failure in failures:
        print("FAILED", failure)
    print(f"{len(documents)} documents, {noticed} faults put in, {len(failures)} failures")
    return 1 if failures or not noticed else 0


if __name__ == "__main__":
    sys.exit(main())
