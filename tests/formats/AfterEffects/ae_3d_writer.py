"""Writes the text of a camera with nulls from what the reader expects: a good text in which faults can be planted.

It proves nothing about the program; it shows that the reader takes a good text and no other.
"""

from typing import List, Tuple

import numpy as np

from ae_3d_nulls import AXES, MILLIMETRE, RIG_SCALE, Options, expected_nulls
from ae_3d_text import POSITION, PROPERTIES, ROTATIONS, SCALE, ZOOM
from scene_model import Placement, SceneModel, rotating_xyz_angles

Columns = List[Tuple[str, np.ndarray]]


def write(model: SceneModel, options: Options) -> bytes:
    camera, nulls = model.camera(options.view), expected_nulls(model, options)
    width = int(model.clip["width"] * model.clip.get("pixelAspect", 1))
    header_unit = width / camera.film_width if model.legacy else MILLIMETRE
    lines = [f"*Marlo 3D Track Importer {'2.0' if options.hierarchy else '1.0'} Data",
             f"*FilmSize: {camera.film_width * header_unit:.6g}", f"*FocalLength: {camera.focal[0] * header_unit:.6g}",
             f"*NumberOfNulls: {len(nulls)}"]
    lines += [f"*{'NullParent' if null.is_parent else 'NullObject'}: {null.name}"
              + (f" Parent: {null.parent}" if null.parent else "") for null in nulls]
    unit = model.clip["width"] * camera.focal[0] / camera.film_width * (RIG_SCALE if "stereo" in model.solve else 1.0)
    blocks = _pose(camera.place, unit)[:-1]
    if camera.focal_is_keyed or model.legacy:
        blocks.append((ZOOM, camera.focal[:, None] * header_unit))
    text = "\n".join(lines) + "\n*EndHeader\n" + _document(model, blocks, model.frames)
    for null in nulls:
        text += _document(model, _pose(null.local, unit), 1 if null.still else model.frames)
    return text.encode("utf-8")


def _pose(place: Placement, unit: float) -> Columns:
    angles = rotating_xyz_angles(AXES @ place.rotation @ AXES)
    return ([(POSITION, unit * place.position @ AXES)]
            + [(title, angles[:, i:i + 1]) for i, title in enumerate(ROTATIONS)]
            + [(SCALE, np.repeat(100.0 * place.scale[:, None], 3, axis=1))])


def _document(model: SceneModel, blocks: Columns, rows: int) -> str:
    clip = model.clip
    aspect = clip.get("pixelAspect", 1)
    text = (f"Adobe After Effects 6.0 Keyframe Data\n\n\tUnits Per Second\t{model.project['frameRate']:.6g}\n"
            f"\tSource Width\t{int(clip['width'] * aspect)}\n\tSource Height\t{clip['height']}\n"
            f"\tSource Pixel Aspect Ratio\t{aspect:.6g}\n\tComp Pixel Aspect Ratio\t{aspect:.6g}\n\n")
    for title, values in blocks:
        text += f"\n{title}\n\tFrame\t" + "\t".join(PROPERTIES[title]) + "\n"
        for host, numbers in enumerate(values[:rows]):
            row = [(host - model.playback_in) / model.line_height, *(numbers + 0.0)]
            text += "".join(f"\t{number:.6g}" for number in row) + "\n"
    return text + "\nEnd of Keyframe Data\n"
