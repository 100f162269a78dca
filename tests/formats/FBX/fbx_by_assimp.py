"""Holds what assimp reads of an FBX file against what ufbx read of it."""

import json
import subprocess
from typing import Any, Dict, List

import numpy as np

from checking import Check
from fbx_judge import COLORS, quaternion_matrices
from fbx_scene import Scene
from findings import Findings, judging
from solve_scene import SINGLE


@judging
def judge_assimp(findings: Findings, document: Dict[str, Any], scene: Scene) -> None:
    """What assimp makes of the file that ufbx has read, in six digits of singles; it moves the first key to 0."""
    animation, = document["animations"]
    findings.printed("assimp: rate", animation["tickspersecond"], scene.rate, 0.0)
    channels, camera = {channel["name"]: channel for channel in animation["channels"]}, document["cameras"][0]
    known = {node.name: node for node in scene.nodes[1:]}
    findings.same("animated nodes", set(channels), {name for name, node in known.items() if len(node.local) > 1})
    lens = known[camera["name"]].lens
    findings.printed("assimp: lens", [np.degrees(camera["horizontalfov"]), camera["clipplanenear"]],
                     [lens["FieldOfView"], lens["NearPlane"]], 1e-4)
    seen: List[str] = []

    def judge_node(found: Dict[str, Any], holder: str) -> None:
        node, name = known[found["name"]], found["name"]
        seen.append(name)
        findings.same(f"holder of {name}", scene.nodes[node.parent].name or "RootNode", holder)
        expected, turns = node.local[:, :3], quaternion_matrices(node.local[:, 3:7])
        angles = sum(np.radians(abs(curve.values).max()) for (of, _), curve in node.curves.items() if "Rot" in of)
        # A double turn of a single in each angle, and the products of six sines.
        allowed = 4.0 * SINGLE * (6.0 + angles)
        if name in channels:
            keys = [np.array([key[1] for key in channels[name][f"{of}keys"]]) for of in
                    ("position", "rotation", "scaling")]
            times = [key[0] for key in channels[name]["positionkeys"]]
            findings.printed("assimp: times", times, (scene.times - scene.times[0]) * scene.rate, 1e-6)
            findings.printed("assimp: position", keys[0], expected, 2.0 * SINGLE * abs(expected), name)
            findings.compare("assimp: turn", quaternion_matrices(keys[1][:, [1, 2, 3, 0]]), turns, 4e-6 + allowed, name)
            findings.printed("assimp: scale", keys[2], node.local[:, 7:], 2.0 * SINGLE * node.local[:, 7:], name)
        else:
            matrix = np.reshape(found["transformation"], (4, 4))
            findings.printed("assimp: position", matrix[:3, 3], expected[0], 2.0 * SINGLE * abs(expected[0]), name)
            size = node.local[0, 7]
            findings.printed("assimp: turn", matrix[:3, :3], turns[0] * size, 1e-6 * size, name)
        for number in found.get("meshes", []):
            mesh, corners = document["meshes"][number], sum(node.mesh.faces, [])
            flat = np.reshape(mesh["vertices"], (-1, 3))
            findings.printed("assimp: vertices", flat[sum(mesh["faces"], [])], node.mesh.vertices[corners], 1e-6, name)
            findings.same(f"corners of {name}", [len(f) for f in mesh["faces"]], [len(f) for f in node.mesh.faces])
            material = {p["key"]: p["value"] for p in document["materials"][mesh["materialindex"]]["properties"]}
            if node.materials:
                findings.same(f"color of {name}", (material["?mat.name"], tuple(material["$clr.diffuse"])),
                              (node.materials[0], COLORS[node.materials[0]]))
            if "texturecoords" in mesh:
                pairs = np.reshape(mesh["texturecoords"][0], (-1, 2))
                findings.printed("assimp: UV", pairs[sum(mesh["faces"], [])], node.mesh.corner_uvs, 1e-6, name)
        for child in found.get("children", []):
            judge_node(child, name)

    for child in document["rootnode"]["children"]:
        judge_node(child, "RootNode")
    findings.same("nodes of assimp", sorted(seen), sorted(known))


def prove_by_assimp(check: Check, title: str, data: bytes, scene: Scene) -> None:
    source, result = check.scratch / "assimp.fbx", check.scratch / "assimp.json"
    source.write_bytes(data)
    words = ["assimp", "export", source, result, "-fassjson"]
    done = subprocess.run(words, capture_output=True, timeout=60, check=False)
    if check.expect(done.returncode == 0, f"{title}: assimp refuses the file"):
        check.verdict("fbx_7_7_0", f"{title} by assimp", judge_assimp(json.loads(result.read_text("utf-8")), scene))
