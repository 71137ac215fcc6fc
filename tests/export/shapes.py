"""One element of every shape, with coordinates made by hand, and what a reader must find of it."""

# Corners of the boxes that the elements fill: 2 wide, 3 deep, 4 high.
BOX = [(0, 0, 0), (2, 0, 0), (2, 3, 0), (0, 3, 0), (0, 0, 4), (2, 0, 4), (2, 3, 4), (0, 3, 4)]
WEDGE = [(0, 0, 0), (2, 0, 0), (0, 3, 0), (0, 0, 4), (2, 0, 4), (0, 3, 4)]
TET = [(0, 0, 0), (2, 0, 0), (0, 3, 0), (0, 0, 4)]
PYRAMID = [(0, 0, 0), (2, 0, 0), (2, 3, 0), (0, 3, 0), (0, 0, 4)]
QUAD = BOX[:4]
TRIANGLE = [(0, 0, 0), (2, 0, 0), (0, 3, 0)]
LINE = [(0, 0, 0), (2, 3, 4)]

# Further nodes lie in the middle of these corners, which count from 1.
HEX_MIDS = "12 23 34 41 56 67 78 85"
HEX_POSTS = " 15 26 37 48"
WEDGE_MIDS = "12 23 31 45 56 64"
WEDGE_POSTS = " 14 25 36"

# type, corners, further nodes, VTK type and points of its cell, length, area or volume
SHAPES = [
    ("MASS", [(2, 3, 4)], "", 1, 1, 0),
    ("T3D2", LINE, "", 3, 2, 29 ** 0.5),
    ("S3", TRIANGLE, "", 5, 3, 3),
    ("STRI65", TRIANGLE, "12 23 31", 22, 6, 3),
    ("S4", QUAD, "", 9, 4, 6),
    ("GK3D6L", QUAD, "12 34", 30, 6, 6),
    ("COH2D4P", QUAD, "41 23", 30, 6, 6),
    ("S8R", QUAD, "12 23 34 41", 23, 8, 6),
    ("M3D9", QUAD, "12 23 34 41 1234", 28, 9, 6),
    ("C3D4", TET, "", 10, 4, 4),
    ("C3D10", TET, "12 23 31 14 24 34", 24, 10, 4),
    ("AC3D5", PYRAMID, "", 14, 5, 8),
    ("MESH_ELSPEC_V_PYR_13", PYRAMID, "12 23 34 41 15 25 35 45", 27, 13, 8),
    ("C3D6", WEDGE, "", 13, 6, 12),
    ("CCL9", WEDGE, WEDGE_POSTS, 13, 6, 12),
    ("GK3D12M", WEDGE, WEDGE_MIDS, 13, 6, 12),
    ("C3D15", WEDGE, WEDGE_MIDS + WEDGE_POSTS, 26, 15, 12),
    ("C3D15V", WEDGE, WEDGE_MIDS + WEDGE_POSTS, 26, 15, 12),
    ("C3D15V", WEDGE, WEDGE_MIDS + WEDGE_POSTS + " 1452 2563 3641", 26, 15, 12),
    ("C3D8", BOX, "", 12, 8, 24),
    ("CCL12", BOX, HEX_POSTS, 12, 8, 24),
    ("GK3D18", BOX, HEX_MIDS + " 1234 5678", 12, 8, 24),
    ("C3D20", BOX, HEX_MIDS + HEX_POSTS, 25, 20, 24),
    ("CCL24", BOX, HEX_MIDS + HEX_POSTS + " 1562 2673 3784 4851", 33, 24, 24),
    ("C3D27", BOX, HEX_MIDS + HEX_POSTS + " 12345678", 25, 20, 24),
    ("C3D27", BOX, HEX_MIDS + HEX_POSTS + " 12345678 1234 5678 1562 2673 3784 4851", 29, 27, 24),
    ("CINPE4", QUAD, "", 9, 4, 6),
    ("CINPE5R", QUAD, "12", 9, 4, 6),
    ("CIN3D8", BOX, "", 12, 8, 24),
    ("CIN3D12R", BOX, "12 23 34 41", 12, 8, 24),
    ("CIN3D18R", BOX, HEX_MIDS + " 1234 5678", 12, 8, 24),
    ("LS6", BOX[:6], "", 2, 6, 0),
]

# Nodes of a beam follow one another: the second is the middle one.
BEAM = ("B32", [(0, 0, 0), (1, 1.5, 2), (2, 3, 4)], "", 21, 3, 29 ** 0.5)


def nodes_of(corners, further):
    def middle(which):
        places = [corners[int(digit) - 1] for digit in which]
        return tuple(sum(place[i] for place in places) / len(places) for i in range(3))

    return list(corners) + [middle(which) for which in further.split()]


def shape_deck(rows):
    """Every element at its own place on the x axis, 10 apart, with labels from 1000 on."""
    nodes, elements, label = [], [], 0
    for number, (kind, corners, further, *_) in enumerate(rows, 1):
        own = []
        for x, y, z in nodes_of(corners, further):
            label += 1
            nodes.append(f"{label}, {x + 10 * number}, {y}, {z}")
            own.append(str(label))
        lines = [", ".join(own[i:i + 8]) for i in range(0, len(own), 8)]
        elements.append(f"*ELEMENT, TYPE={kind}\n{1000 + number}, " + ",\n".join(lines))
    return "*NODE\n" + "\n".join(nodes) + "\n" + "\n".join(elements) + "\n", label
