"""What is in force in each step of a deck, found the plain way: read it line by line, give every node and
degree its own entry, and copy all of them from step to step. Slow, and meant to be seen to be right; it
shares nothing with the program. Of the deck language it knows what decks.py writes. The rules are those of
docs/carrying.md."""
import collections

RESTRAINTS = {"ENCASTRE": (1, 2, 3, 4, 5, 6), "PINNED": (1, 2, 3), "XSYMM": (1, 5, 6),
              "YSYMM": (2, 4, 6), "ZSYMM": (3, 4, 5), "XASYMM": (2, 3, 4), "YASYMM": (1, 3, 5),
              "ZASYMM": (1, 2, 6), "NOWARP": ("NOWARP",), "NOOVAL": ("NOOVAL",),
              "NODEFORM": ("NODEFORM",)}
# What its targets are, what the same thing twice in one step means (both act, the later holds, or the first in
# its keyword), how it lasts (by general steps; held in perturbation steps, too; in its own step).
KINDS = {"BOUNDARY": ("NSET", "first", "held"), "CONNECTOR MOTION": ("ELSET", "later", "held"),
         "TEMPERATURE": ("NSET", "later", "held"), "FIELD": ("NSET", "later", "held"),
         "PRESSURE STRESS": ("NSET", "later", "held"), "CLOAD": ("NSET", "both", "carried"),
         "CFLUX": ("NSET", "both", "carried"), "CECURRENT": ("NSET", "both", "carried"),
         "DLOAD": ("ELSET", "both", "carried"), "DFLUX": ("ELSET", "both", "carried"),
         "DSLOAD": ("SURFACE", "both", "carried"), "DSFLUX": ("SURFACE", "both", "carried"),
         "CONNECTOR LOAD": ("ELSET", "both", "carried"), "FILM": ("ELSET", "later", "carried"),
         "SFILM": ("SURFACE", "later", "carried"), "CFILM": ("NSET", "later", "carried"),
         "INERTIA RELIEF": (None, "later", "carried"), "BASE MOTION": (None, "later", "own")}
MOTIONS = ("BOUNDARY", "CONNECTOR MOTION")  # displacements, velocities, accelerations
OF_ONE = ("TEMPERATURE", "FIELD", "PRESSURE STRESS", "CFILM")  # neither degree nor label
PERTURBING = ("FREQUENCY", "BUCKLE", "STEADY STATE DYNAMICS")  # procedures that need not say so

# An entry is what one thing says: where is (kind, node or element or surface, degree or label, imaginary),
# value the magnitude with what belongs to it. An element is (instance, label), as is a node.
Entry = collections.namedtuple("Entry", "where value amplitude step")
# What it comes to in a step. A target is None for the whole model, manner that of a condition of motion,
# ended whether the amplitude is over.
Fact = collections.namedtuple("Fact", "step family target degree imaginary manner value amplitude ended "
                              "origin how case")
Keyword = collections.namedtuple("Keyword", "name parameters lines")


def read_deck(text):
    keywords = []
    for line in text.splitlines():
        fields = [field.strip() for field in line.split(",")]
        if line.startswith("*"):
            parameters = dict((word.split("=") + [None])[:2] for word in fields[1:])
            keywords.append(Keyword(fields[0][1:], parameters, []))
        else:
            keywords[-1].lines.append(fields)
    return keywords


class Mesh:
    """Labels and sets by what they belong to: None, the model or the assembly, or a part or instance."""

    def __init__(self, keywords):
        self.nodes, self.elements, self.parts = [], [], {}
        self.sets = collections.defaultdict(list)  # (owner, kind, name): members
        part = None
        in_part = collections.defaultdict(list)
        for keyword in keywords:
            name, words, lines = keyword
            if name == "PART":
                part = words["NAME"]
            elif name == "END PART":
                part = None
            elif name == "INSTANCE":
                self._place(words["NAME"], words["PART"], in_part)
            elif name in ("NODE", "ELEMENT"):
                for fields in lines:
                    self._define(name, part, int(fields[0]), words.get("ELSET"), in_part)
            elif name in ("NSET", "ELSET"):
                self._gather(keyword, part, in_part)

    def _define(self, name, part, label, into, in_part):
        if part:
            in_part[part, name].append(label)
        else:
            (self.nodes if name == "NODE" else self.elements).append((None, label))
        if into:
            self.sets[part, "ELSET", into].append((None, label))

    def _place(self, instance, part, in_part):
        self.parts[instance] = part
        self.nodes += [(instance, label) for label in in_part[part, "NODE"]]
        self.elements += [(instance, label) for label in in_part[part, "ELEMENT"]]

    def _gather(self, keyword, part, in_part):
        members = self.sets[part, keyword.name, keyword.parameters[keyword.name]]
        instance = keyword.parameters.get("INSTANCE")
        for fields in keyword.lines:
            if "GENERATE" in keyword.parameters:
                first, last, stride = map(int, fields)
                members += [(instance, n) for n in range(first, last + 1, stride)]
            else:
                members += [(instance, int(field)) for field in fields]

    def find(self, text, kind):
        """The members of what a field names: a label, a set, either behind its instance, or everything."""
        if not text:
            return set(self.elements)
        instance, _, name = text.rpartition(".")
        instance = instance or None
        if name.isdigit():
            return {(instance, int(name))}
        members = self.sets[self.parts.get(instance), kind, name]
        return {(instance or owner, label) for owner, label in members}


def family(keyword):
    """What OP of it takes back, and all that a redefinition can replace."""
    if keyword.name == "FIELD":
        return f"FIELD {keyword.parameters['VARIABLE']}"
    return keyword.name


def kind_of(entry_family):
    return KINDS["FIELD" if entry_family.startswith("FIELD") else entry_family]


def read_line(mesh, keyword, fields):
    """The targets of one line, its degrees or labels, and its value."""
    name = keyword.name
    kind = KINDS[name][0]
    if kind is None:
        return [None], [int(keyword.parameters.get("DOF") or 0)], 0.0
    targets = [(None, fields[0])] if kind == "SURFACE" else mesh.find(fields[0], kind)
    if name in OF_ONE:
        return targets, [None], float(fields[1])
    if name == "BOUNDARY":
        if fields[1] in RESTRAINTS:
            return targets, RESTRAINTS[fields[1]], 0.0
        fields = fields + [""] * (4 - len(fields))
        first = int(fields[1])
        degrees = range(first, int(fields[2] or first) + 1)
        return targets, degrees, float(fields[3] or 0)
    what = fields[1]
    if name == "CFLUX":
        what = int(what or 11)
    elif what.isdigit():
        what = int(what)
    return targets, [what], float(fields[2] or 0)


def entries_of(mesh, keyword, step):
    """What a keyword says, and the nodes of which it says two things of one degree."""
    words, said, twice = keyword.parameters, {}, set()
    manner = "FIXED" if "FIXED" in words else words.get("TYPE", "DISPLACEMENT")
    of, rule, _ = KINDS[keyword.name]
    for fields in keyword.lines if of else [[]]:
        targets, degrees, value = read_line(mesh, keyword, fields)
        if keyword.name in MOTIONS:
            value = (manner, 0.0 if manner == "FIXED" else value)
        for target in targets:
            for degree in degrees:
                where = (family(keyword), target, degree, "IMAGINARY" in words)
                entry = Entry(where, value, words.get("AMPLITUDE"), step)
                if where not in said or rule == "later":
                    said[where] = [entry]
                elif rule == "both":
                    said[where].append(entry)
                elif said[where][0].value != value:  # the first holds
                    twice.add(target)
    return said, twice


def without(state, families):
    return {where: entries for where, entries in state.items() if where[0] not in families}


def act(mesh, keywords, step):
    """What the keywords of one step, or of one load case, come to among themselves."""
    given, twice = {}, set()
    for keyword in keywords:
        said, same = entries_of(mesh, keyword, step)
        twice |= same
        for where, entries in said.items():
            if KINDS[keyword.name][1] == "both":
                given[where] = given.get(where, []) + entries
            else:
                given[where] = entries
    return given, twice


def steps_of(keywords):
    """Before the first step, then step by step: its keywords, those of its load cases, how it perturbs."""
    steps, case = [([], {}, False)], None
    for keyword in keywords:
        own, cases, _ = steps[-1]
        if keyword.name == "STEP":
            steps.append(([], {}, "PERTURBATION" in keyword.parameters))
        elif keyword.name == "LOAD CASE":
            case = keyword.parameters["NAME"]
            cases[case] = []
        elif keyword.name == "END LOAD CASE":
            case = None
        elif keyword.name in KINDS:
            (cases[case] if case else own).append(keyword)
        elif keyword.name in PERTURBING:
            steps[-1] = (own, cases, True)
    return steps


def in_force(text):
    """For each step a list of (how, load case, entry), and for each the nodes told to be given twice."""
    keywords = read_deck(text)
    mesh = Mesh(keywords)
    outside, *steps = steps_of(keywords)
    state, told = act(mesh, outside[0], 0)
    found, twice = [], [told]
    for number, (own, cases, perturbs) in enumerate(steps, 1):
        given, told = act(mesh, [word for word in own if "REMOVE" not in word.parameters], number)
        renewed = {family(word) for word in own if word.parameters.get("OP") == "NEW"}
        renewed |= {family(word) for word in own if "REMOVE" in word.parameters}
        kept = without(state, renewed)
        if perturbs:
            kept = {where: all for where, all in kept.items() if kind_of(where[0])[2] == "held"}
        kept = {where: all for where, all in kept.items() if where not in given}
        how = "held" if perturbs else "carried"
        acting = [(how, None, entry) for all in kept.values() for entry in all]
        acting += [("given", None, entry) for all in given.values() for entry in all]
        for case, inside in cases.items():
            only, same = act(mesh, inside, number)
            told |= same
            acting += [("given", case, entry) for all in only.values() for entry in all]
        found.append(acting)
        twice.append(told)
        if not perturbs:
            state = without({**kept, **given}, {"BASE MOTION"})
    return found, twice


def facts(text):
    keywords = read_deck(text)
    through = {word.parameters["NAME"] for word in keywords
               if word.name == "AMPLITUDE" and word.parameters.get("TIME") == "TOTAL TIME"}
    made = collections.Counter()
    for step, acting in enumerate(in_force(text)[0], 1):
        for how, case, entry in acting:
            manner, value = entry.value if isinstance(entry.value, tuple) else (None, entry.value)
            ended = bool(entry.amplitude) and entry.amplitude not in through and step > entry.step
            made[Fact(step, *entry.where, manner, value, entry.amplitude, ended, entry.step, how,
                      case)] += 1
    return made
