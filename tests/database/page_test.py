#!/usr/bin/env python3
"""The page on the model file, as a stranger reads it: its example runs, and finds what the deck says.

The numbers are the deck's own (examples/assembly.inp), turned and moved by hand."""
import argparse
import math
import pathlib
import re
import runpy
import sqlite3
import struct
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parents[2]
FAULTS = []
# Forces on 300 nodes, moments between them, and one line that takes a node from a set.
LOADS = ("*NODE\n" + "".join(f"{n}, {n}., 0., 0.\n" for n in range(1, 305)) +
         "*NSET, NSET=BASE\n1, 2\n*NSET, NSET=TOP\n3, 4\n*BOUNDARY\nBASE, PINNED\n"
         "*STEP\n*STATIC\n*CLOAD\nTOP, 3, -5.\n*END STEP\n*STEP\n*STATIC\n*CLOAD\n4, 3, 7.\n*CLOAD\n" +
         "".join(f"{n + 5}, 1, {n}.\n{n + 5}, 4, 0.5\n" for n in range(300)) + "*END STEP\n")

# Four steps: two of the sequence, a task and an event; and times that are generated.
HISTORY = ("*NODE\n1, 0.\n*TIME POINTS, NAME=TENTHS, GENERATE\n0., 0.3, 0.1\n1., 2.2, 0.5\n"
           "*TIME POINTS, NAME=FEW\n0.5, 2.\n*STEP\n*STATIC\n0.1, 2.\n*END STEP\n"
           "*STEP, PERTURBATION\n*STATIC\n*END STEP\n*STEP\n*FREQUENCY\n7, , 50.\n*END STEP\n"
           "*STEP, NLGEOM, INC=9\n*STATIC, RIKS\n, 3.\n*END STEP\n*STEP\n*STATIC, DIRECT\n"
           "0.25, 4.\n*END STEP\n*STEP\n*STATIC\n0.1, -5.\n*END STEP\n")


def same(what, found, wanted):
    if found != wanted:
        FAULTS.append(f"{what}: {found}, not {wanted}")


def run_example(page, model, folder):
    code = re.findall(r"```python\n(.*?)```", page, re.S)
    same("examples in the page", len(code), 2)
    (folder / "example.py").write_text("\n".join(code), encoding="utf-8")
    sys.argv = ["example.py", str(model)]
    return runpy.run_path(str(folder / "example.py"))


def check_assembly(found):
    # Node 199 of the plate is (0, 0, 10); the upper plate is lifted by 50 and turned by 30 degrees
    # about the line through (25, 20) along z.
    c, s = math.cos(math.radians(30)), math.sin(math.radians(30))
    wanted = (25 - 25 * c + 20 * s, 20 - 25 * s - 20 * c, 60)
    here = found["xyz"]["PLATE-2", 199]
    same("place of node 199", max(abs(a - b) for a, b in zip(here, wanted)) < 1e-9, True)
    same("place of node 11", found["xyz"]["PLATE-1", 11], (50.0, 0.0, 0.0))
    same("nodes", len(found["xyz"]), 297 + 297 + 153 + 1)
    ring = [2, 10, 11, 3, 19, 27, 28, 20]
    same("element 9", found["nodes"]["PIN-1", 9], ("C3D8R", [("PIN-1", n) for n in ring]))
    core = [1, 2, 3, 18, 19, 20]
    same("element 1", found["nodes"]["PIN-1", 1], ("C3D6", [("PIN-1", n) for n in core]))
    corners = [("PLATE-1", 1), ("PLATE-1", 99), ("PLATE-2", 199), ("PLATE-2", 297)]
    same("CORNERS", found["sets"]["CORNERS"], corners)
    same("CLAMPED", found["sets"]["CLAMPED"], [("PLATE-1", n) for n in range(1, 100)])
    edges = [(plate, n) for plate in ("PLATE-1", "PLATE-2") for n in range(1, 90, 11)]
    same("EDGES", found["sets"]["EDGES"], edges)
    pad = found["db"].execute(
        "SELECT first, stride, count, few, array FROM v_sets WHERE name = 'PAD'").fetchone()
    same("PAD", [found["node"][n] for n in found["numbers"](*pad)],
         [("PLATE-2", row + n) for row in (236, 247, 258) for n in range(3)])
    same("ELASTIC", found["table"]("BRONZE", "ElasticIsotropic"), [{"E": 110000.0, "nu": 0.34}])
    plastic = found["table"]("BRONZE", "PlasticIsotropic")
    same("PLASTIC", plastic[1],
         {"YieldStress": 250.0, "PlasticStrain": 0.05, "PlasticStrainRate": 0.0})


def check_materials(found):
    steel = found["table"]("STEEL", "PlasticIsotropic")
    same("PLASTIC of two rates", (len(steel), steel[-1]),
         (20, {"YieldStress": 640.0, "PlasticStrain": 0.3, "PlasticStrainRate": 100.0,
               "Temperature": 20.0}))


# A flat deck: no instance, and the sets are the model's own.
def check_plate(found):
    same("nodes of the collar", [found["xyz"][None, n] for n in (1, 101)],
         [(10.0, 0.0, 0.0), (12.0, 0.0, 0.0)])
    same("element 3", found["nodes"][None, 3], ("S4R", [(None, n) for n in (3, 103, 104, 4)]))
    same("HOLE", found["sets"]["HOLE"], [(None, n) for n in range(1, 14)])
    same("HELD, as the deck orders it", found["sets"]["HELD"],
         [(None, n) for n in range(1113, 1106, -1)])
    same("ELASTIC", found["table"]("ALU-6061", "ElasticIsotropic"),
         [{"E": 68900.0, "nu": 0.33, "Temperature": 20.0},
          {"E": 62500.0, "nu": 0.33, "Temperature": 150.0}])


# What acts in step 2 by the page's own query, and the rows of a larger keyword.
def check_loads(found):
    db = found["db"]
    page = (ROOT / "docs/database.md").read_text(encoding="utf-8")
    query = re.search(r"So this is what acts in step 2.*?\n\n(.*?)\n\n", page, re.S)[1]
    same("what acts in step 2", db.execute(query).fetchall(), [
        ("BOUNDARY", None, None, "PINNED", None, "BASE", None, None, None, None, 0, "carried"),
        ("CLOAD", "CF_D", "C_3", None, None, "TOP", None, None, -5.0, None, 1, "carried"),
        ("CLOAD", "CF_D", "C_3", None, None, None, None, 4, 7.0, None, 2, "given"),
        ("CLOAD", "CF_D", "C_1", None, None, None, None, None, None, None, 2, "given"),
        ("CLOAD", "CF_R", "C_1", None, None, None, None, None, None, None, 2, "given")])
    left, = db.execute("SELECT members FROM v_in_force WHERE step = 2 AND region = 'TOP'").fetchone()
    run = db.execute("""SELECT ifnull(first, 0), ifnull(stride, 1), ifnull(count, 0), members, array
        FROM cset WHERE id = ?""", (left,)).fetchone()
    same("what is left of TOP", [found["node"][n] for n in found["numbers"](*run)], [(None, 3)])
    kind, given, first, rows = db.execute("""SELECT given_kind, given, first_row, rows FROM v_in_force
        WHERE components = 'C_1' AND field = 'CF_D'""").fetchone()
    targets, degrees, values = (found["column"](kind, given, name)
                                for name in ("target", "dof", "magnitude"))
    run = [(found["node"][target][1], value) for target, degree, value in
           list(zip(targets, degrees, values))[first:] if degree == 1][:rows]
    same("rows of the larger keyword", (rows, run[:2], run[-1]), (300, [(5, 0.0), (6, 1.0)], (304, 299.0)))
    told = set(re.findall(r"`(\w+)`", page.split("| Column of `v_in_force`")[1].split("\n\n")[0]))
    names = {one[0] for one in db.execute("SELECT * FROM v_in_force").description}
    same("columns of v_in_force that the page does not tell", names - told, set())


# The history as an analysis registers it, and times, by the page's own queries.
def check_history(found):
    db = found["db"]
    page = (ROOT / "docs/database.md").read_text(encoding="utf-8")
    query = re.search(r"\n    (SELECT place, name, collection.*?)\n\n", page, re.S)[1]
    same("the sequence of steps", db.execute(query).fetchall(),
         [(1, "Step-1", "time", 0.0, 2.0), (2, "Step-4", "arc length", 2.0, 2.0),
          (3, "Step-5", "time", 2.0, 6.0), (4, "Step-6", "time", 6.0, 6.0)])
    same("tasks and events", db.execute("""SELECT step, registration, place, collection, least, most,
         items FROM v_task WHERE registration <> 'step'""").fetchall(),
         [(2, "event", None, None, None, None, None), (3, "task", None, "mode", None, 50.0, 7)])
    same("increments", db.execute("""SELECT step, kind, initial, increments FROM v_incrementation
         """).fetchall(), [(1, "automatic", 0.1, 100), (4, "automatic arc length", 1.0, 9),
                           (5, "fixed", 0.25, 100), (6, "automatic", 0.1, 100)])
    query = re.search(r"\n    (SELECT p.name, t.rows, .*?)\n\n", page, re.S)[1]
    times = {name: struct.unpack(f"<{rows}d", few) for name, rows, few, _ in db.execute(query)}
    same("time points", {name: [round(one, 9) for one in all] for name, all in times.items()},
         {"TENTHS": [0.0, 0.1, 0.2, 0.3, 1.0, 1.5, 2.0], "FEW": [0.5, 2.0]})
    same("the end that is met", times["TENTHS"][3], 0.3)


# Of damping the page's query tells the procedure; and what may stand in a step and is kept as text
# is what the decisions name, no procedure among it.
def check_steps(program, folder):
    model = folder / "damped.sim"
    deck = folder / "damped.inp"
    words = (ROOT / "parser/inp_keywords.def").read_text(encoding="utf-8")
    procedures = re.findall(r'INP_KEYWORD\(\w+, "([^"]+)", Step, Procedure', words)
    deck.write_text("*NODE\n1, 0.\n" + "".join(f"*STEP\n*{name}\n*END STEP\n" for name in procedures)
                    + "*STEP\n*MODAL DYNAMIC\n0.1, 1.\n*MODAL DAMPING\n1, 2, 0.05\n*END STEP\n",
                    encoding="utf-8")
    subprocess.run([program, "convert", deck, "-o", model, "-q"], check=False, stderr=subprocess.DEVNULL)
    db = sqlite3.connect(model)
    same("procedures of the vocabulary that are a step's",
         db.execute("SELECT count(procedure), count(*) FROM v_history_step").fetchone(),
         (len(procedures) + 1,) * 2)
    page = (ROOT / "docs/database.md").read_text(encoding="utf-8")
    query = re.search(r"\n    (SELECT h.number, d.id.*?)\n\n", page, re.S)[1]
    same("whose damping", db.execute(query).fetchall(), [(len(procedures) + 1, 1, "ModalDynamic")])
    told = (ROOT / "docs/decisions.md").read_text(encoding="utf-8")
    table = told.split("**What may stand in a step and is kept as text?**")[1].split("\n\n")[1]
    named = set(re.findall(r"`\*([A-Z -]+)`", table))
    lines = subprocess.run([program, "keywords"], check=True, capture_output=True, text=True).stdout
    kept = {name.strip() for name, levels in re.findall(r"^\*(.*?)  +kept as text  (.*)$", lines, re.M)
            if "step" in levels.split(", ")}
    asked = {name for name in kept if name.endswith((" OUTPUT", " PRINT", " FILE", " RESPONSE"))}
    same("kept as text in steps", kept - asked, named)


# A model of next to nothing: the example finds nothing and asks for nothing that is not there.
def check_heading(found):
    same("of an empty model", [found[what] for what in ("node", "element", "xyz", "sets")], [{}] * 4)


# The views of the example are the same whether the model has what they show or not.
def check_views(models):
    views = ("v_labels", "v_flat_nodes", "v_flat_elements", "v_sets", "v_material_tables",
             "v_in_force", "v_task", "v_incrementation")
    for view in views:
        columns = {tuple(column[1] for column in sqlite3.connect(model).execute(
            f"PRAGMA table_info({view})")) for model in models}
        same(f"columns of {view}", len(columns), 1)


# What the page tells of numbers and links is what the file has.
def check_words(page, model):
    db = sqlite3.connect(model)
    for vocabulary in ("ValueType", "LabelKind", "CSetForm"):
        for number, name in db.execute(
                "SELECT number, name FROM schema_symbol WHERE vocabulary = ?", (vocabulary,)):
            same(f"{name} in the page", re.search(rf"\b{number},?\s{name}\b", page) is not None, True)
    links = page.split("### Links")[1].split("###")[0]
    told = set(re.findall(r"`([A-Z][A-Za-z]+)`", links))
    known = {name for name, in db.execute("SELECT name FROM schema_member")}
    same("members that the page tells and no file has", told - known, set())
    used = {name for name, in db.execute("SELECT DISTINCT member_name FROM v_link WHERE "
            "owner_kind IN ('Model', 'Part', 'Instance', 'Assembly', 'Surface', 'Material')")}
    same("members that the page does not tell",
         used - told - {"Annotation", "Collections", "MeshDefaults", "SurfaceNodalAreas"}, set())
    unnamed = db.execute("SELECT count(*) FROM property_table WHERE column_names IS NULL")
    same("tables without names", unnamed.fetchone()[0], 0)
    wrong = db.execute("SELECT count(*) FROM property_table WHERE columns <> "
                       "1 + length(column_names) - length(replace(column_names, ',', ''))")
    same("tables with other names than columns", wrong.fetchone()[0], 0)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--program", required=True)
    program = parser.parse_args().program
    page = (ROOT / "docs/database.md").read_text(encoding="utf-8")
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        heading = folder / "heading.inp"
        heading.write_text("*HEADING\nNothing\n", encoding="utf-8")
        loads = folder / "loads.inp"
        loads.write_text(LOADS, encoding="utf-8")
        history = folder / "history.inp"
        history.write_text(HISTORY, encoding="utf-8")
        decks = ((ROOT / "examples/assembly.inp", check_assembly),
                 (ROOT / "examples/materials.inp", check_materials),
                 (ROOT / "examples/plate.inp", check_plate), (heading, check_heading),
                 (loads, check_loads), (history, check_history))
        for deck, check in decks:
            model = folder / f"{deck.stem}.sim"
            subprocess.run([program, "convert", deck, "-o", model, "-q"], check=True)
            check(run_example(page, model, folder))
            if check not in (check_heading, check_loads, check_history):
                check_words(page, model)
        check_views(list(folder.glob("*.sim")))
        check_steps(program, folder)
    for fault in FAULTS:
        print(fault)
    return 1 if FAULTS else 0


if __name__ == "__main__":
    sys.exit(main())
