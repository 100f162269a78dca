"""A model beside a project, for formats that hold the meshes of models."""

import numpy as np

NAME = "box.obj"

# Two sides of a box, and the place in a picture of each corner of each face.
VERTICES = np.array([[0.0, 0.0, 0.0], [1.25, 0.0, 0.0], [1.25, 1.5, 0.0], [0.0, 1.5, 0.0], [0.0, 1.5, -1.75],
                     [1.25, 1.5, -1.75]])
FACES = [[0, 1, 2, 3], [3, 2, 5], [3, 5, 4]]
CORNER_UVS = np.array([[0.0, 0.0], [0.5, 0.0], [0.5, 0.75], [0.0, 0.75], [0.0, 0.75], [0.5, 0.75], [0.5, 1.0],
                       [0.0, 0.75], [0.5, 1.0], [0.0, 1.0]])

# Indices count from 1, or back from the last.
TEXT = "# a box\no box\n" + "".join(f"v {x} {y} {z}\n" for x, y, z in VERTICES) + "".join(
    f"vt {u} {v}\n" for u, v in CORNER_UVS) + "f 1/1 2/2 3/3 4/4\nf 4/5 3/6 6/7\nf -3/8 -1/9 -2/10\n"
