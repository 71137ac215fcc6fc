"""What a model file says is in force in each step: the view v_in_force, its sets and columns read
out into single nodes and degrees, by docs/database.md and with nothing of the program."""
import collections
import functools
import sqlite3
import struct

from rules import BLANK_DEGREES, KINDS, OF_ONE, RESTRAINTS, Fact, kind_of

FIRST_DEGREES = {"D": 1, "R": 4, "W": 7, "HP": 8, "EPOT": 9, "NT": 11, "HFLM": 11} | {
    str(degree): degree for degree in (8, 9, 10)}
MANNERS = {"U": "DISPLACEMENT", "V": "VELOCITY", "A": "ACCELERATION"}
GROUPS = (range(1, 4), range(4, 7), (7,), (8,), (9,), (10,), range(11, 31))
# The first of a keyword is its magnitude.
REALS = ("magnitude", "value", "area", "sink", "ambient", "velocity", "factor", "size")
ABOUT = ("first", "dof", "component", "label", "case")
BLANK = -2147483648


class Model:
    def __init__(self, path):
        self.db = sqlite3.connect(f"file:{path}?mode=ro", uri=True)
        self.db.row_factory = sqlite3.Row
        self.flat = {"NSET": self._labels("NODE_LABELS"), "ELSET": self._labels("ELEMENT_LABELS")}
        self.tables = dict(map(tuple, self.rows("SELECT name, table_name FROM schema_record")))
        self.records = {}

    def rows(self, sql, *values):
        return self.db.execute(sql, values).fetchall()

    # ---- numbers as they are kept

    def array(self, number):
        (kind, width), = self.rows("SELECT value_type, width FROM v_array WHERE id = ?", number)
        chunks = self.rows("SELECT data FROM chunk WHERE array = ? ORDER BY number", number)
        code = {"INT32": "i", "INT64": "q", "DOUBLE": "d", "BYTE": "B"}[kind]
        values = struct.iter_unpack(f"<{width}{code}", b"".join(data for data, in chunks))
        return [value for item in values for value in item]

    def numbers(self, first, stride, count, few, many):
        if few or many:
            return self.array(many) if many else [n for n, in struct.iter_unpack("<i", few)]
        return [first + k * stride for k in range(count)]

    def _labels(self, kind):
        """Flat ordinal: (instance, label)."""
        spaces = self.rows("SELECT owner_name, flat_first, first, stride, count, few, array "
                           "FROM v_labels WHERE kind = ?", kind)
        instances = {name for name, in self.rows("SELECT n.name FROM v_name n JOIN schema_record r "
                                                 "ON r.number = n.kind WHERE r.name = 'Instance'")}
        return {start + k: (owner if owner in instances else None, label)
                for owner, start, *run in spaces for k, label in enumerate(self.numbers(*run))}

    def column(self, record, name, count):
        few, many = record[f"{name}_few"], record[f"{name}_array"]
        if few or many:
            code = "d" if name in REALS else "i"
            return self.array(many) if many else [n for n, in struct.iter_unpack(f"<{code}", few)]
        return [record[name]] * count

    # ---- what is acted on

    @functools.cache
    def in_set(self, kind, name, instance):
        """Members of a set: one of a part has the part's own ordinals."""
        part = None
        if instance:
            (part,), = self.rows("SELECT part_name FROM v_instance WHERE name = ?", instance)
        run, = self.rows("SELECT first, stride, count, few, array FROM v_sets WHERE kind = ? AND "
                         "name = ? AND (owner_kind = 'Part') = ? AND ? IN (owner_name, '')",
                         {"NSET": "NodeSet", "ELSET": "ElementSet"}[kind], name, bool(part),
                         part or "")
        offset = 0
        if instance:
            labels = {"NSET": "NODE_LABELS", "ELSET": "ELEMENT_LABELS"}[kind]
            (offset,), = self.rows("SELECT flat_first FROM v_labels WHERE kind = ? AND "
                                   "owner_name = ?", labels, instance)
        return {self.flat[kind][offset + n] for n in self.numbers(*run)}

    def left(self, kind, members):
        run, = self.rows("SELECT first, stride, count, members, array FROM cset WHERE id = ?",
                         members)
        return {self.flat[kind][n] for n in self.numbers(*(n or 0 for n in run))}

    def targets(self, row, kind):
        if kind is None:
            return [None]
        if row["target"] is not None:
            return [(row["instance"], row["target"])]
        if kind == "SURFACE":
            return [(None, ".".join(filter(None, (row["instance"], row["region"]))))]
        whole = (self.in_set(kind, row["region"], row["instance"]) if row["region"] else
                 set(self.flat[kind].values()))
        if row["members"] is None:
            return whole
        left = self.left(kind, row["members"])
        if not left < whole:
            raise RuntimeError(f"{len(left)} members are left of {len(whole)}: {dict(row)}")
        return left

    def columns(self, row):
        """Target, what it is about (degrees, or a word) and value of each row of a record."""
        key = row["given_kind"], row["given"]
        if key not in self.records:
            record, = self.rows(f'SELECT * FROM "{self.tables[key[0]]}" WHERE id = ?', key[1])
            count, names = record["rows"], record.keys()
            about = next((name for name in ABOUT if name in names), None)
            first = self.column(record, about, count) if about else [None] * count
            last = self.column(record, "last", count) if "last" in names else [BLANK] * count
            words = (record[f"{about}_words"] if f"{about}_words" in names else "") or ""
            value = next(name for name in REALS if name in names)
            self.records[key] = list(zip(
                self.column(record, "target", count),
                [words.split(",")[-1 - a] if a is not None and BLANK < a < 0 else
                 range(a, (a if b in (BLANK, None) else b) + 1) if a not in (BLANK, None) else None
                 for a, b in zip(first, last)],
                self.column(record, value, count)))
        return self.records[key]

    def is_elsewhere(self, row):
        """Whether a routine has the values of a keyword's many rows."""
        record, = self.rows(f'SELECT * FROM "{self.tables[row["given_kind"]]}" WHERE id = ?',
                            row["given"])
        by_user = "user" in record.keys() and record["user"]
        return not row["restraint"] and (by_user or (row["label"] or "").endswith("NU"))

    def transformed(self, excitation):
        """Nodes of the one transform that the decks have, if the excitation is along its axes."""
        (one,), = self.rows("SELECT transform FROM excitation WHERE name = ?", excitation)
        found = self.rows("SELECT nset_name, nset_instance_name FROM v_transform") if \
            self.rows("SELECT 1 FROM sqlite_schema WHERE name = 'v_transform'") else []
        return one is not None, self.in_set("NSET", *found[0]) if found else set()

    def run(self, row, degrees):
        """Those of many rows that are of the excitation: (target, value)."""
        kind = KINDS[kind_name(row)][0]
        group = next((group for group in GROUPS if degrees[0] in group), ())
        turned, nodes = self.transformed(row["excitation"])
        # What has axes that a transform turns.
        is_vector = row["given_kind"] in ("Boundary", "ConcentratedLoad", "Motion") and (
            row["restraint"] not in ("NOWARP", "NOOVAL", "NODEFORM") if row["restraint"] else
            degrees[0] <= 6)
        made = []
        for target, about, value in self.columns(row)[row["first_row"]:]:
            if isinstance(about, range):
                about = [degree for degree in about if degree in group]
            elif about in RESTRAINTS:
                about = [about] if about == row["restraint"] else []
            elif about is None:
                about = [BLANK_DEGREES.get(row["keyword"])]
            else:
                about = [about]
            word = row["restraint"] or row["label"]
            of = [word] if word else [None] if degrees == ["ROTATION"] else degrees
            if target is None or target < 0 or about != of:
                continue
            target = self.flat[kind][target]
            if is_vector and turned != (target in nodes):
                continue
            is_none = value is None or value != value or row["restraint"]
            made.append((target, None if self.is_elsewhere(row) else 0.0 if is_none else value))
            if len(made) == row["rows"]:
                return made
        raise RuntimeError(f"{len(made)} of {row['rows']} rows: {dict(row)}")


def kind_name(row):
    types = ("Node", "Element", "Surface", "Physical")
    kind = row["given_kind"].removeprefix("FluidBoundary")
    return f"{row['keyword']} {kind.upper()}" if kind in types else row["keyword"]


def degrees_of(row):
    """Degrees or label of what one row of the view is about, and the manner of a motion."""
    keyword, field = row["keyword"], row["field"] or ""
    components = (row["components"] or "").split()
    manner = None
    if row["given_kind"] == "MotionRotation":
        return ["ROTATION"], MANNERS[field[0]]
    if keyword == "BASE MOTION":
        degree = (1 if field.endswith("_D") else 4) - 1 + int(components[0][2:])
        return [(degree, row["base"]) if row["base"] else degree], None
    if keyword == "FLUID BOUNDARY":
        return [tuple(filter(None, (kind_name(row).split()[-1], row["label"])))], None
    if keyword in ("BOUNDARY", "CONNECTOR MOTION", "MOTION"):
        manner = MANNERS.get(field.removeprefix("C")[:1], "DISPLACEMENT") if "_" in field else \
            "DISPLACEMENT"
    if row["restraint"]:
        held = RESTRAINTS[row["restraint"]]
        return [int(name[2:]) for name in components] or held, manner
    if row["label"]:
        return [row["label"]], manner
    first = FIRST_DEGREES.get(field.rpartition("_")[2])
    if keyword in OF_ONE or first is None:
        return [None], manner
    if not components:
        return [first], manner
    if components[0].startswith("C_"):
        return [first - 1 + int(name[2:]) for name in components], manner
    return [first + int(number) for number in components], manner


def facts(path):
    model = Model(path)
    made = collections.Counter()
    acting = model.rows("SELECT * FROM v_in_force")
    for row in acting:
        keyword = row["keyword"]
        kind = KINDS[kind_name(row)][0]
        family = f"FIELD {row['field'][2:]}" if keyword == "FIELD" else keyword
        degrees, manner = degrees_of(row)
        if row["fixed"]:
            manner = "FIXED"
        rest = (*((row[name] or row[f"{name}_ended"], bool(row[f"{name}_ended"]))
                  for name in ("amplitude", "film_amplitude")),
                row["from_step"], row["how"], row["load_case"])
        part = bool(row["imaginary"]), row["load_case_number"], row["cyclic_mode"]
        if keyword == "INERTIA RELIEF":
            degrees = [0]

        def add(target, degree, value):
            made[Fact(row["step"], family, target, degree, part, manner, value, *rest)] += 1

        if row["rows"] == 1:
            for target in model.targets(row, kind):
                for degree in degrees:
                    add(target, degree, 0.0 if row["restraint"] else row["magnitude"])
            continue
        for target, value in model.run(row, degrees):
            for degree in degrees:
                add(target, degree, row["magnitude"] if row["fixed"] else value)
    model.db.close()
    # Two lines of a condition that say the same are both there, and are one.
    for fact in made:
        if kind_of(fact.family)[1] != "both":
            made[fact] = 1
    return made
