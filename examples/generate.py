#!/usr/bin/env python3
"""Writes the example decks beside this file: bracket, plate, assembly, wing_panel and frame.

The decks are committed; run this only to change them. Units: mm, N, tonne, s (so MPa)."""
import math
import pathlib

HERE = pathlib.Path(__file__).resolve().parent


def number(value):
    """A coordinate as an analyst writes it: five significant decimals, always with a point."""
    text = f"{value:.5f}".rstrip("0")
    return "0." if text in ("-0.", "0.") else text


def node_line(label, values):
    return f"{label:6d}, " + ", ".join(f"{number(v):>9s}" for v in values)


def element_line(label, nodes):
    return f"{label:6d}, " + ", ".join(f"{n:5d}" for n in nodes)


def label_lines(labels):
    labels = list(labels)
    return [", ".join(map(str, labels[i:i + 16])) for i in range(0, len(labels), 16)]


def volume_is_positive(corners):
    """The first three edges at the first corner of a brick or wedge make a right-handed frame."""
    up = corners[len(corners) // 2]
    a, b, c, d = corners[0], corners[1], corners[3 if len(corners) == 8 else 2], up
    u, v, w = ([q - p for p, q in zip(a, x)] for x in (b, c, d))
    det = (u[0] * (v[1] * w[2] - v[2] * w[1]) - u[1] * (v[0] * w[2] - v[2] * w[0])
           + u[2] * (v[0] * w[1] - v[1] * w[0]))
    return det > 0


def write(name, lines):
    (HERE / name).write_text("\n".join(lines) + "\n", encoding="utf-8")
    print(f"{name}: {len(lines)} lines")


# ---------------------------------------------------------------------------------------------
# A shelf bracket: an L profile in the x-z plane, extruded along y, with a rib in the corner.

def bracket():
    size, thick, high, long_, wide, rib = 4.0, 2, 16, 12, 10, 6  # in cells of 4 mm
    profile = {}  # (i, k) of a profile corner -> its number in the layer

    def corner(i, k):
        return profile.setdefault((i, k), len(profile) + 1)

    cells = [("UPRIGHT", i, k) for k in range(thick, high) for i in range(thick)]
    cells += [("ARM", i, k) for i in range(long_) for k in range(thick)]
    rib_cells = [(i + thick, k + thick) for i in range(rib) for k in range(rib - i)]
    for i, k in ([(i, k) for _, i, k in cells] + rib_cells):
        on_diagonal = (i, k) in rib_cells and i + k == 2 * thick + rib - 1
        for di, dk in ((0, 0), (1, 0), (0, 1)) + (() if on_diagonal else ((1, 1),)):
            corner(i + di, k + dk)
    rib_only = {(i, k) for i, k in profile if i > thick and k > thick}
    rib_layers = range(4, 6)
    place = {}
    nodes = []
    for j in range(wide + 1):
        for (i, k), number_ in sorted(profile.items(), key=lambda item: item[1]):
            if (i, k) in rib_only and not rib_layers[0] <= j <= rib_layers[-1] + 1:
                continue
            label = 1000 * j + number_
            place[label] = (i * size, j * size, k * size)
            nodes.append(node_line(label, place[label]))

    def at(i, j, k):
        return 1000 * j + profile[(i, k)]

    bricks, wedges, label = {"UPRIGHT": [], "ARM": [], "RIB-CORE": []}, [], 0

    def prism(corners, j):
        # Profile corners run from x towards z, so y points into the element: near side first.
        near = [at(i, j + 1, k) for i, k in corners]
        far = [at(i, j, k) for i, k in corners]
        assert volume_is_positive([place[n] for n in near + far])
        return near + far

    for part, i, k in cells:
        for j in range(wide):
            label += 1
            square = [(i, k), (i + 1, k), (i + 1, k + 1), (i, k + 1)]
            bricks[part].append(element_line(label, prism(square, j)))
    for i, k in rib_cells:
        for j in rib_layers:
            label += 1
            square = [(i, k), (i + 1, k), (i + 1, k + 1), (i, k + 1)]
            if i + k == 2 * thick + rib - 1:
                wedges.append(element_line(label, prism([square[0], square[1], square[3]], j)))
            else:
                bricks["RIB-CORE"].append(element_line(label, prism(square, j)))

    bolts = []
    for y, z in ((12.0, 52.0), (28.0, 52.0), (12.0, 28.0), (28.0, 28.0)):
        bolts += [n for n, (px, py, pz) in place.items()
                  if px == 0.0 and math.hypot(py - y, pz - z) <= 4.5]
    tip = profile[(long_, thick)]
    load_line = [1000 * j + tip for j in range(wide + 1)]
    root = [n for n, p in place.items() if p[0] == thick * size and p[2] == thick * size]
    force = 1200.0 / len(load_line)

    out = ["*HEADING",
           "Shelf bracket, 8 mm steel, bolted to a wall, 1.2 kN on its outer edge",
           "**",
           "** Units: mm, N, tonne, s, MPa.  x points away from the wall, z up.",
           "** Node labels: 1000 times the layer along the width plus the place in the profile.",
           "**",
           "*NODE, NSET=ALL-NODES", *nodes,
           "** The upright leg, 8 mm thick and 64 mm high",
           "*ELEMENT, TYPE=C3D8R, ELSET=UPRIGHT", *bricks["UPRIGHT"],
           "** The arm that carries the shelf",
           "*ELEMENT, TYPE=C3D8R, ELSET=ARM", *bricks["ARM"],
           "** The rib: bricks inside, wedges along its free slanted edge",
           "*ELEMENT, TYPE=C3D8R, ELSET=RIB-CORE", *bricks["RIB-CORE"],
           "*ELEMENT, TYPE=C3D6, ELSET=RIB-EDGE", *wedges,
           "**",
           "** Sets",
           "*ELSET, ELSET=RIB", "RIB-CORE, RIB-EDGE",
           "*ELSET, ELSET=BRACKET", "UPRIGHT, ARM, RIB",
           "*NSET, NSET=BOLTS", *label_lines(sorted(bolts)),
           "*NSET, NSET=EDGE, GENERATE", f"{load_line[0]}, {load_line[-1]}, 1000",
           "*NSET, NSET=ROOT", *label_lines(sorted(root)),
           "*NSET, NSET=RIB-NODES, ELSET=RIB",
           "*NSET, NSET=WATCH", "EDGE, ROOT",
           "**",
           "** Structural steel, yield 355 MPa",
           "*MATERIAL, NAME=STEEL-S355",
           "*DENSITY", "7.85E-9,",
           "*ELASTIC", "210000., 0.3",
           "*PLASTIC", "355., 0.", "362., 0.015", "440., 0.05", "510., 0.15",
           "*SOLID SECTION, ELSET=BRACKET, MATERIAL=STEEL-S355", ",",
           "**",
           "** The bolts hold the wall face",
           "*BOUNDARY", "BOLTS, ENCASTRE",
           "**",
           "*STEP, NAME=LOAD, NLGEOM=YES, INC=50",
           f"The shelf presses down on the edge: {number(force)} N on each of "
           f"{len(load_line)} nodes",
           "*STATIC", "0.1, 1., 1.E-5, 0.25",
           "*CLOAD", f"EDGE, 3, -{number(force)}",
           "*OUTPUT, FIELD, FREQUENCY=5",
           "*NODE OUTPUT", "U, RF",
           "*ELEMENT OUTPUT, ELSET=BRACKET", "S, PEEQ",
           "*OUTPUT, HISTORY",
           "*NODE OUTPUT, NSET=WATCH", "U3,",
           "*NODE PRINT, NSET=BOLTS, FREQUENCY=10", "RF,",
           "*END STEP"]
    write("bracket.inp", out)


# ---------------------------------------------------------------------------------------------
# A quarter of a shell plate with a hole; its outer edge turns down in a round flange.

def plate():
    rings, sectors, radius, collar, half = 5, 12, 10.0, 20.0, 50.0
    arc_radius, arc_steps, skirt_steps = 15.0, 6, 4
    columns = 6  # from the collar out to the square edge
    out_nodes_c, out_nodes_r, out_arc, out_skirt = [], [], [], []

    def label(ring, sector):
        return 100 * ring + sector + 1

    for ring in range(rings + 1):
        r = radius + (collar - radius) * ring / rings
        for sector in range(sectors + 1):
            out_nodes_c.append(node_line(label(ring, sector), (r, 90.0 * sector / sectors, 0.0)))

    def on_square(angle):
        c, s = math.cos(math.radians(angle)), math.sin(math.radians(angle))
        scale = half / max(c, s)
        return scale * c, scale * s

    edge_y = []
    for ring in range(rings + 1, rings + columns + 1):
        t = (ring - rings) / columns
        for sector in range(sectors + 1):
            angle = 90.0 * sector / sectors
            a = (collar * math.cos(math.radians(angle)), collar * math.sin(math.radians(angle)))
            b = on_square(angle)
            x, y = (p + t * (q - p) for p, q in zip(a, b))
            out_nodes_r.append(node_line(label(ring, sector), (x, y, 0.0)))
            if t == 1.0 and sector <= sectors // 2:
                edge_y.append((label(ring, sector), y))

    # The flange: an arc about the line x = 50, z = -15, then a straight skirt of 20 mm. Its local
    # axes have x' along x and y' along z, so z' runs against y.
    flange = [[n for n, _ in edge_y]]
    for step in range(1, arc_steps + 1):
        angle = 90.0 - 90.0 * step / arc_steps
        row = []
        for place, (_, y) in enumerate(edge_y):
            row.append(2000 + 100 * step + place + 1)
            out_arc.append(node_line(row[-1], (arc_radius, angle, -y, 1.0, angle, 0.0)))
        flange.append(row)
    for step in range(1, skirt_steps + 1):
        row = []
        for place, (_, y) in enumerate(edge_y):
            row.append(3000 + 100 * step + place + 1)
            out_skirt.append(node_line(row[-1], (half + arc_radius, y,
                                                 -arc_radius - 20.0 * step / skirt_steps)))
        flange.append(row)

    collar_elements, web_elements, flange_elements, number_ = [], [], [], 0
    for ring in range(rings + columns):
        for sector in range(sectors):
            number_ += 1
            line = element_line(number_, (label(ring, sector), label(ring + 1, sector),
                                          label(ring + 1, sector + 1), label(ring, sector + 1)))
            (collar_elements if ring < rings else web_elements).append(line)
    first_flange = 1001
    for step in range(arc_steps + skirt_steps):
        for place in range(len(edge_y) - 1):
            flange_elements.append(element_line(
                first_flange + len(flange_elements),
                (flange[step][place], flange[step + 1][place],
                 flange[step + 1][place + 1], flange[step][place + 1])))

    last_ring = rings + columns
    sym_y = [label(ring, 0) for ring in range(last_ring + 1)] + [row[0] for row in flange[1:]]
    out = ["*HEADING",
           "Aluminium plate with a hole and a round flange, a quarter by symmetry",
           "**",
           "** Units: mm, N, tonne, s, MPa.  The hole's axis is z; x = 0 and y = 0 are planes of",
           "** symmetry. Two steps: tension across the plate, then its free vibrations under it.",
           "**",
           "** The collar about the hole, in cylindrical coordinates: r, angle, z",
           "*NODE, SYSTEM=C, NSET=COLLAR-NODES", *out_nodes_c,
           "** From the collar to the square edge",
           "*NODE, NSET=WEB-NODES", *out_nodes_r,
           "** The round of the flange about its own axis; the last three fields are the normal",
           "*SYSTEM", "50., 0., -15., 51., 0., -15.", "50., 0., -14.",
           "*NODE, SYSTEM=C, NSET=ROUND-NODES", *out_arc,
           "** Back to the global axes for the straight skirt",
           "*SYSTEM",
           "*NODE, NSET=SKIRT-NODES", *out_skirt,
           "**",
           "*ELEMENT, TYPE=S4R, ELSET=COLLAR", *collar_elements,
           "*ELEMENT, TYPE=S4R, ELSET=WEB", *web_elements,
           "*ELEMENT, TYPE=S4R, ELSET=FLANGE", *flange_elements,
           "**",
           "*ELSET, ELSET=SHEET", "WEB, FLANGE",
           "*NSET, NSET=HOLE, GENERATE", f"1, {sectors + 1}, 1",
           "*NSET, NSET=SYMMETRY-X, GENERATE",
           f"{label(0, sectors)}, {label(last_ring, sectors)}, 100",
           "*NSET, NSET=SYMMETRY-Y", *label_lines(sym_y),
           "*NSET, NSET=HELD, UNSORTED",
           *label_lines(reversed([label(last_ring, s) for s in range(sectors // 2, sectors + 1)])),
           "*NSET, NSET=FOOT", *label_lines(flange[-1]),
           "*NSET, NSET=FLANGE-NODES, ELSET=FLANGE",
           "**",
           "** 6061-T6, with its stiffness at room temperature and at 150 degrees",
           "*MATERIAL, NAME=ALU-6061",
           "*DENSITY", "2.7E-9,",
           "*ELASTIC", "68900., 0.33, 20.", "62500., 0.33, 150.",
           "*EXPANSION, ZERO=20.", "2.36E-5,",
           "** The collar is doubled",
           "*SHELL SECTION, ELSET=COLLAR, MATERIAL=ALU-6061", "3., 5",
           "*SHELL SECTION, ELSET=SHEET, MATERIAL=ALU-6061", "1.5, 5",
           "**",
           "*BOUNDARY",
           "SYMMETRY-X, XSYMM", "SYMMETRY-Y, YSYMM", "HELD, 3, 3",
           "*AMPLITUDE, NAME=RAMP", "0., 0., 1., 1.",
           "**",
           "*STEP, NAME=TENSION, NLGEOM=YES",
           "Pull on the foot of the flange, and a wind of 2 kPa on the sheet",
           "*STATIC", "0.2, 1.",
           "*CLOAD, AMPLITUDE=RAMP", "FOOT, 1, 40.",
           "*DLOAD, AMPLITUDE=RAMP", "SHEET, P, 0.002",
           "*OUTPUT, FIELD", "*NODE OUTPUT", "U,", "*ELEMENT OUTPUT", "S, SF",
           "*END STEP",
           "**",
           "*STEP, NAME=VIBRATION, PERTURBATION",
           "The ten lowest modes of the loaded plate",
           "*FREQUENCY, EIGENSOLVER=LANCZOS", "10,",
           "*OUTPUT, FIELD", "*NODE OUTPUT, NSET=FLANGE-NODES", "U,",
           "*END STEP"]
    write("plate.inp", out)


# ---------------------------------------------------------------------------------------------
# Two equal plates held apart by a round spacer pin: two parts, three placed instances.

def assembly():
    nx, ny, nz, cell = 10, 8, 2, 5.0  # a plate of 50 x 40 x 10 mm

    def plate_label(i, j, k):
        return 1 + i + (nx + 1) * (j + (ny + 1) * k)

    plate_nodes = [node_line(plate_label(i, j, k), (cell * i, cell * j, cell * k))
                   for k in range(nz + 1) for j in range(ny + 1) for i in range(nx + 1)]
    plate_elements = []
    for k in range(nz):
        for j in range(ny):
            for i in range(nx):
                ring = [(i, j), (i + 1, j), (i + 1, j + 1), (i, j + 1)]
                plate_elements.append(element_line(
                    len(plate_elements) + 1,
                    [plate_label(a, b, k) for a, b in ring] +
                    [plate_label(a, b, k + 1) for a, b in ring]))
    layer = nx * ny

    # The pin lies along its own x axis: a core of wedges about the axis, two rings of bricks.
    sectors, radii, slices, length = 8, (0.0, 2.5, 5.0), 8, 40.0
    stride = 1 + sectors * (len(radii) - 1)

    def pin_label(s, ring, sector):
        return 1 + stride * s + (0 if ring == 0 else 1 + sectors * (ring - 1) + sector % sectors)

    pin_nodes, place = [], {}
    for s in range(slices + 1):
        for ring, radius in enumerate(radii):
            for sector in range(1 if ring == 0 else sectors):
                angle = 2 * math.pi * sector / sectors
                label = pin_label(s, ring, sector)
                place[label] = (length * s / slices, radius * math.cos(angle),
                                radius * math.sin(angle))
                pin_nodes.append(node_line(label, place[label]))
    wedges, bricks = [], []
    for s in range(slices):
        for sector in range(sectors):
            face = [(0, 0), (1, sector), (1, sector + 1)]
            nodes = [pin_label(s, *c) for c in face] + [pin_label(s + 1, *c) for c in face]
            assert volume_is_positive([place[n] for n in nodes])
            wedges.append(element_line(1 + s * 2 * sectors + sector, nodes))
        for sector in range(sectors):
            face = [(1, sector), (2, sector), (2, sector + 1), (1, sector + 1)]
            nodes = [pin_label(s, *c) for c in face] + [pin_label(s + 1, *c) for c in face]
            assert volume_is_positive([place[n] for n in nodes])
            bricks.append(element_line(1 + s * 2 * sectors + sectors + sector, nodes))
    per_slice = 2 * sectors
    last = per_slice * (slices - 1)

    out = ["*HEADING",
           "Two steel plates on a spacer pin, the upper one turned by 30 degrees",
           "** Units: mm, N, tonne, s, MPa.",
           "**",
           "** ---- parts",
           "**",
           "*PART, NAME=PLATE",
           "** 50 x 40 x 10 mm, one corner at the origin",
           "*NODE", *plate_nodes,
           "*ELEMENT, TYPE=C3D8R, ELSET=BODY", *plate_elements,
           "*ELSET, ELSET=LOWER, GENERATE", f"1, {layer}, 1",
           "*ELSET, ELSET=UPPER, GENERATE", f"{layer + 1}, {2 * layer}, 1",
           "*NSET, NSET=SHORT-EDGE, GENERATE",
           f"{plate_label(0, 0, 0)}, {plate_label(0, ny, 0)}, {nx + 1}",
           "*SURFACE, TYPE=ELEMENT, NAME=BOTTOM", "LOWER, S1",
           "*SURFACE, TYPE=ELEMENT, NAME=TOP", "UPPER, S2",
           "*SOLID SECTION, ELSET=BODY, MATERIAL=STEEL", ",",
           "*END PART",
           "**",
           "*PART, NAME=PIN",
           "** 10 mm across and 40 mm long, along x",
           "*NODE, NSET=ALL", *pin_nodes,
           "*ELEMENT, TYPE=C3D6, ELSET=CORE", *wedges,
           "*ELEMENT, TYPE=C3D8R, ELSET=RING", *bricks,
           "*ELSET, ELSET=BODY", "CORE, RING",
           "*ELSET, ELSET=FIRST-SLICE, GENERATE", f"1, {per_slice}, 1",
           "*ELSET, ELSET=LAST-SLICE, GENERATE", f"{last + 1}, {last + per_slice}, 1",
           "*NSET, NSET=AXIS, GENERATE",
           f"{pin_label(0, 0, 0)}, {pin_label(slices, 0, 0)}, {stride}",
           "*SURFACE, TYPE=ELEMENT, NAME=FOOT", "FIRST-SLICE, S1",
           "*SURFACE, TYPE=ELEMENT, NAME=HEAD", "LAST-SLICE, S2",
           "*SOLID SECTION, ELSET=BODY, MATERIAL=BRONZE", ",",
           "*END PART",
           "**",
           "** ---- assembly",
           "**",
           "*ASSEMBLY, NAME=STACK",
           "*INSTANCE, NAME=PLATE-1, PART=PLATE",
           "*END INSTANCE",
           "** The upper plate: lifted by the pin's length, turned 30 degrees about the pin's axis",
           "*INSTANCE, NAME=PLATE-2, PART=PLATE",
           "0., 0., 50.",
           "25., 20., 50., 25., 20., 51., 30.",
           "** A set of this instance alone: where the load is put in",
           "*NSET, NSET=PAD",
           *label_lines(plate_label(i, j, nz) for j in (3, 4, 5) for i in (4, 5, 6)),
           "*END INSTANCE",
           "** The pin stands up: a turn of -90 degrees about y after the move",
           "*INSTANCE, NAME=PIN-1, PART=PIN",
           "25., 20., 10.",
           "25., 20., 10., 25., 21., 10., -90.",
           "*END INSTANCE",
           "**",
           "** A reference point below the lower plate that carries its support",
           "*NODE", "1, 25., 20., -20.",
           "*NSET, NSET=GROUND", "1,",
           "*NSET, NSET=CLAMPED, INSTANCE=PLATE-1, GENERATE",
           f"{plate_label(0, 0, 0)}, {plate_label(nx, ny, 0)}, 1",
           "*ELSET, ELSET=MIDDLE, INSTANCE=PIN-1, GENERATE",
           f"{per_slice * (slices // 2) + 1}, {per_slice * (slices // 2 + 1)}, 1",
           "** Members of several instances by their scoped names",
           "*NSET, NSET=CORNERS",
           f"PLATE-1.{plate_label(0, 0, 0)}, PLATE-1.{plate_label(nx, ny, 0)}, "
           f"PLATE-2.{plate_label(0, 0, nz)}, PLATE-2.{plate_label(nx, ny, nz)}",
           "*NSET, NSET=EDGES", "PLATE-1.SHORT-EDGE, PLATE-2.SHORT-EDGE",
           "*ELSET, ELSET=PLATES", "PLATE-1.BODY, PLATE-2.BODY",
           "*SURFACE, TYPE=NODE, NAME=SUPPORT", "CLAMPED, 1.",
           "*TIE, NAME=PIN-FOOT, ADJUST=YES", "PIN-1.FOOT, PLATE-1.TOP",
           "*TIE, NAME=PIN-HEAD, ADJUST=YES", "PIN-1.HEAD, PLATE-2.BOTTOM",
           "*COUPLING, CONSTRAINT NAME=BASE, REF NODE=GROUND, SURFACE=SUPPORT", "*KINEMATIC",
           "*END ASSEMBLY",
           "**",
           "** ---- materials",
           "**",
           "*MATERIAL, NAME=STEEL",
           "*DENSITY", "7.85E-9,", "*ELASTIC", "210000., 0.3",
           "*MATERIAL, NAME=BRONZE",
           "*DENSITY", "8.8E-9,", "*ELASTIC", "110000., 0.34", "*PLASTIC",
           "180., 0.", "250., 0.05", "310., 0.2",
           "**",
           "** ---- history",
           "**",
           "*BOUNDARY", "GROUND, ENCASTRE",
           "*AMPLITUDE, NAME=UP-AND-DOWN, DEFINITION=TABULAR", "0., 0., 0.5, 1., 1., 0.",
           "*STEP, NAME=PRESS, NLGEOM=YES, INC=100",
           "Press the upper plate down and let go",
           "*STATIC", "0.05, 1., 1.E-6, 0.1",
           "*CLOAD, AMPLITUDE=UP-AND-DOWN", "PLATE-2.PAD, 3, -800.",
           "*OUTPUT, FIELD, FREQUENCY=2",
           "*NODE OUTPUT", "U,",
           "*ELEMENT OUTPUT, ELSET=MIDDLE", "S, PEEQ",
           "*OUTPUT, HISTORY",
           "*NODE OUTPUT, NSET=CORNERS", "U1, U2, U3",
           "*END STEP"]
    write("assembly.inp", out)


# ---------------------------------------------------------------------------------------------
# The lower panel of a swept, tapered wing: a curved laminate skin on three blade stringers. The
# skin's axes follow its generators; between the thick root and the thin tip its thickness falls
# element by element.

def wing_panel():
    span, chord, tip, sweep, camber = 1800.0, 600.0, 360.0, 240.0, 40.0
    along, across, blade, height = 24, 12, 2, 45.0
    stringers = (3, 6, 9)  # rows of skin nodes that they stand on

    def place(s, t):
        """At s along the span and t across the chord, both from 0 to 1."""
        width = chord + (tip - chord) * s
        return (sweep * s + width * (t - 0.5), span * s, -camber * (1 - s / 3) * 4 * t * (1 - t))

    def skin_node(i, j):
        return 100 * (i + 1) + j + 1

    nodes, skin, zones, webs, axes, taper = [], [], {}, [], [], []
    for i in range(along + 1):
        for j in range(across + 1):
            nodes.append(node_line(skin_node(i, j), place(i / along, j / across)))
    blade_nodes = []
    for n, j in enumerate(stringers):
        for i in range(along + 1):
            x, y, z = place(i / along, j / across)
            for k in range(1, blade + 1):
                blade_nodes.append(node_line(10000 * (n + 1) + 10 * (i + 1) + k,
                                             (x, y, z + height * k / blade)))
    for i in range(along):
        for j in range(across):
            label = 100 * (i + 1) + j + 1
            skin.append(element_line(label, (skin_node(i, j), skin_node(i, j + 1),
                                             skin_node(i + 1, j + 1), skin_node(i + 1, j))))
            zone = ("ROOT", "TAPER", "TIP")[i * 3 // along]
            zones.setdefault(zone, []).append(label)
            t = (j + 0.5) / across
            a, b = place(i / along, t), place((i + 1) / along, t)
            c, d = place((i + 0.5) / along, j / across), place((i + 0.5) / along, (j + 1) / across)
            axes.append(f"{label:6d}, " + ", ".join(number(q - p) for p, q in zip(a, b)) + ", "
                        + ", ".join(number(q - p) for p, q in zip(c, d)))
            if zone == "TAPER":
                step = (i - along // 3 + 0.5) / (along // 3)
                taper.append(f"{label}, {number(3.0 - 1.0 * step)}")
    for n, j in enumerate(stringers):
        def web_node(i, k):
            return skin_node(i, j) if k == 0 else 10000 * (n + 1) + 10 * (i + 1) + k
        for i in range(along):
            for k in range(blade):
                webs.append(element_line(10000 * (n + 1) + 10 * (i + 1) + k, (
                    web_node(i, k), web_node(i + 1, k), web_node(i + 1, k + 1), web_node(i, k + 1))))

    def plies(angles, thickness):
        return [f"{thickness}, 3, CARBON-EPOXY, {angle}., PLY-{n + 1}"
                for n, angle in enumerate(angles)]

    root = [skin_node(0, j) for j in range(across + 1)]
    root += [10000 * (n + 1) + 10 + k for n in range(len(stringers)) for k in range(1, blade + 1)]
    out = ["*HEADING",
           "Lower panel of a swept wing: a laminate skin of three zones on three blade stringers",
           "**",
           "** Units: mm, N, tonne, s, MPa.  y runs along the span, x aft, z up; the root is y = 0.",
           "*NODE, NSET=SKIN-NODES", *nodes,
           "*NODE, NSET=BLADE-NODES", *blade_nodes,
           "*ELEMENT, TYPE=S4R, ELSET=SKIN", *skin,
           "*ELEMENT, TYPE=S4R, ELSET=STRINGERS", *webs]
    for zone, labels in zones.items():
        out += [f"*ELSET, ELSET=SKIN-{zone}", *label_lines(labels)]
    out += ["*NSET, NSET=ROOT-NODES", *label_lines(root),
            "**",
            "** The skin's axes: 1 along its generators, 2 across, both as vectors",
            "*DISTRIBUTION TABLE, NAME=AXES", "COORD3D, COORD3D",
            "*DISTRIBUTION, NAME=GENERATORS, LOCATION=ELEMENT, TABLE=AXES",
            ", 0., 1., 0., 1., 0., 0.", *axes,
            "*ORIENTATION, NAME=ALONG-SKIN", "GENERATORS", "3, 0.",
            "*ORIENTATION, NAME=ALONG-BLADE, SYSTEM=RECTANGULAR",
            f"{number(sweep)}, {number(span)}, 0., 0., 0., 1.", "3, 0.",
            "** From 3 mm at the root zone down to 2 mm at the tip zone",
            "*DISTRIBUTION TABLE, NAME=LENGTHS", "LENGTH",
            "*DISTRIBUTION, NAME=TAPERED, LOCATION=ELEMENT, TABLE=LENGTHS", ", 3.", *taper,
            "**",
            "*MATERIAL, NAME=CARBON-EPOXY",
            "*DENSITY", "1.6E-9,",
            "*ELASTIC, TYPE=LAMINA", "138000., 9000., 0.3, 5200., 5200., 3200.",
            "*EXPANSION, TYPE=ORTHO", "-0.3E-6, 28.E-6, 28.E-6",
            "*FAIL STRESS", "1500., -1200., 50., -200., 70., 0.",
            "*MATERIAL, NAME=FOAM",
            "*DENSITY", "7.5E-11,",
            "*ELASTIC", "92., 0.3",
            "**",
            "** Half of each layup, from below; its mirror image follows",
            "*SHELL SECTION, ELSET=SKIN-ROOT, COMPOSITE, SYMMETRIC, ORIENTATION=ALONG-SKIN, "
            "LAYUP=ROOT", *plies((45, -45, 0, 0, 90, 0), 0.25),
            "** Shares of the thickness that the distribution gives",
            "*SHELL SECTION, ELSET=SKIN-TAPER, COMPOSITE, SYMMETRIC, ORIENTATION=ALONG-SKIN, "
            "SHELL THICKNESS=TAPERED, LAYUP=TAPER", *plies((45, -45, 0, 90), 0.125),
            "*SHELL SECTION, ELSET=SKIN-TIP, COMPOSITE, SYMMETRIC, ORIENTATION=ALONG-SKIN, "
            "LAYUP=TIP", *plies((45, -45, 0, 90), 0.25),
            "** A sandwich",
            "*SHELL SECTION, ELSET=STRINGERS, COMPOSITE, ORIENTATION=ALONG-BLADE, OFFSET=0.",
            "0.5, 3, CARBON-EPOXY, 45., LEFT", "4., 3, FOAM, , CORE",
            "0.5, 3, CARBON-EPOXY, -45., RIGHT",
            "*TRANSVERSE SHEAR STIFFNESS", "160., 160., 0.",
            "**",
            "*BOUNDARY", "ROOT-NODES, ENCASTRE",
            "*STEP, NAME=GUST", "Suction on the skin", "*STATIC", "1., 1.",
            "*DLOAD", "SKIN, P, -0.004",
            "*OUTPUT, FIELD", "*NODE OUTPUT", "U,", "*ELEMENT OUTPUT", "S, CFAILURE",
            "*END STEP"]
    write("wing_panel.inp", out)


# ---------------------------------------------------------------------------------------------
# A two-storey steel frame on springs: columns of I, girders of boxes, braces of pipes, purlins of
# angles; machines as masses.

def frame():
    bay, depth, storey, parts = 6.0, 5.0, 4.0, 4  # metres, elements of a member
    points, elements = {}, {"COLUMNS": [], "GIRDERS": [], "BRACES": [], "PURLINS": []}

    def node(x, y, z):
        return points.setdefault((round(x, 6), round(y, 6), round(z, 6)), len(points) + 1)

    def member(group, a, b, count=parts):
        for n in range(count):
            ends = [node(*(p + (q - p) * k / count for p, q in zip(a, b))) for k in (n, n + 1)]
            elements[group].append(ends)

    corners = [(x, y) for x in (0.0, bay, 2 * bay) for y in (0.0, depth)]
    for level in (0, 1):
        low, high = level * storey, (level + 1) * storey
        for x, y in corners:
            member("COLUMNS", (x, y, low), (x, y, high))
        for x in (0.0, bay):
            for y in (0.0, depth):
                member("GIRDERS", (x, y, high), (x + bay, y, high))
        for x in (0.0, bay, 2 * bay):
            member("GIRDERS", (x, 0.0, high), (x, depth, high))
        for y in (0.0, depth):
            member("BRACES", (0.0, y, low), (bay, y, high), 1)
    for n in range(1, parts):
        for x in (0.0, bay):
            member("PURLINS", (x, depth * n / parts, 2 * storey),
                   (x + bay, depth * n / parts, 2 * storey), 2)
    feet = [node(x, y, 0.0) for x, y in corners]
    machines = [node(bay, depth * 0.5, storey), node(bay, depth * 0.5, 2 * storey)]
    out = ["*HEADING",
           "Two-storey steel frame on ground springs, with machines on its floors",
           "**",
           "** Units: m, N, kg, s.  x along the bays, y across, z up.",
           "*NODE, NSET=ALL",
           *(node_line(label, place) for place, label in points.items())]
    label = 0
    for group, members in elements.items():
        out.append(f"*ELEMENT, TYPE=B31, ELSET={group}")
        for ends in members:
            label += 1
            out.append(element_line(label, ends))
    out += ["*NSET, NSET=FEET", ", ".join(map(str, feet)),
            "** Points of their own: a foot's springs along x, y and z, the machines",
            "*ELEMENT, TYPE=SPRING1, ELSET=SIDEWAYS", *(f"{1001 + n}, {f}" for n, f in enumerate(feet)),
            "*ELEMENT, TYPE=SPRING1, ELSET=LENGTHWAYS", *(f"{1101 + n}, {f}" for n, f in enumerate(feet)),
            "*ELEMENT, TYPE=SPRING1, ELSET=UPRIGHT", *(f"{1201 + n}, {f}" for n, f in enumerate(feet)),
            "*ELEMENT, TYPE=DASHPOT1, ELSET=SOIL", *(f"{1301 + n}, {f}" for n, f in enumerate(feet)),
            "** A tie across the ground, slack until it is pulled",
            "*ELEMENT, TYPE=SPRINGA, ELSET=TIES",
            *(f"{1401 + n}, {feet[2 * n]}, {feet[2 * n + 1]}" for n in range(3)),
            "*ELEMENT, TYPE=MASS, ELSET=MACHINES", *(f"{1501 + n}, {m}" for n, m in enumerate(machines)),
            "*ELEMENT, TYPE=ROTARYI, ELSET=ROTORS", *(f"{1601 + n}, {m}" for n, m in enumerate(machines)),
            "**",
            "*MATERIAL, NAME=S355",
            "*DENSITY", "7850.,",
            "*ELASTIC", "2.1E11, 0.3",
            "*PLASTIC", "3.55E8, 0.", "4.7E8, 0.15",
            "** Webs of columns lie across the bays; l, h, b1, b2, t1, t2, t3",
            "*BEAM SECTION, ELSET=COLUMNS, MATERIAL=S355, SECTION=I",
            "0.15, 0.3, 0.3, 0.3, 0.019, 0.019, 0.011", "1., 0., 0.",
            "** a, b and four walls",
            "*BEAM SECTION, ELSET=GIRDERS, MATERIAL=S355, SECTION=BOX",
            "0.15, 0.25, 0.008, 0.01, 0.008, 0.01", "0., 0., 1.",
            "** Outer radius and wall; points around and across for the output",
            "*BEAM SECTION, ELSET=BRACES, MATERIAL=S355, SECTION=PIPE",
            "0.057, 0.005", "0., 1., 0.", "8,",
            "*BEAM SECTION, ELSET=PURLINS, MATERIAL=S355, SECTION=L",
            "0.08, 0.08, 0.008, 0.008", "0., 0., 1.",
            "**",
            "*SPRING, ELSET=SIDEWAYS", "1,", "4.E7,",
            "*SPRING, ELSET=LENGTHWAYS", "2,", "4.E7,",
            "*SPRING, ELSET=UPRIGHT", "3,", "2.5E8,",
            "*DASHPOT, ELSET=SOIL", "3,", "3.E5,",
            "** Force and elongation",
            "*SPRING, ELSET=TIES, NONLINEAR", "", "0., -1.", "0., 0.", "5.E4, 0.005",
            "*MASS, ELSET=MACHINES", "2400.,",
            "*ROTARY INERTIA, ELSET=ROTORS", "310., 310., 520., 0., 0., 0.",
            "**",
            "*STEP, NAME=MODES", "*FREQUENCY, EIGENSOLVER=LANCZOS", "20,",
            "*OUTPUT, FIELD", "*NODE OUTPUT", "U,",
            "*END STEP"]
    write("frame.inp", out)


if __name__ == "__main__":
    bracket()
    plate()
    assembly()
    wing_panel()
    frame()
