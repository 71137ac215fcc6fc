"""What is in force in each step of a deck, found the plain way: read it line by line, give every
node and degree its own entry, and copy all of them from step to step. Slow, and meant to be seen to
be right; it shares nothing with the program. Of the deck language it knows what decks.py writes.
The rules are those of docs/carrying.md."""
import collections

RESTRAINTS = {"ENCASTRE": (1, 2, 3, 4, 5, 6), "PINNED": (1, 2, 3), "XSYMM": (1, 5, 6),
              "YSYMM": (2, 4, 6), "ZSYMM": (3, 4, 5), "XASYMM": (2, 3, 4), "YASYMM": (1, 3, 5),
              "ZASYMM": (1, 2, 6), "NOWARP": ("NOWARP",), "NOOVAL": ("NOOVAL",),
              "NODEFORM": ("NODEFORM",)}
# What its targets are; what the same thing twice in one step means: both act, the later holds, or
# the first in its keyword; how it lasts: by general steps, held in perturbation steps, too, or in
# its own step.
KINDS = {"BOUNDARY": ("NSET", "first", "held"), "CONNECTOR MOTION": ("ELSET", "later", "held"),
         "TEMPERATURE": ("NSET", "later", "held"), "FIELD": ("NSET", "later", "held"),
         "PRESSURE STRESS": ("NSET", "later", "held"), "CLOAD": ("NSET", "both", "carried"),
         "CFLUX": ("NSET", "both", "carried"), "CECURRENT": ("NSET", "both", "carried"),
         "DLOAD": ("ELSET", "both", "carried"), "DFLUX": ("ELSET", "both", "carried"),
         "DSLOAD": ("SURFACE", "both", "carried"), "DSFLUX": ("SURFACE", "both", "carried"),
         "CONNECTOR LOAD": ("ELSET", "both", "carried"), "FILM": ("ELSET", "later", "carried"),
         "SFILM": ("SURFACE", "later", "carried"), "CFILM": ("NSET", "later", "carried"),
         "INERTIA RELIEF": (None, "later", "carried"), "BASE MOTION": (None, "later", "own"),
         "FLUID BOUNDARY": (None, "later", "carried"),  # its types below
         "FLUID BOUNDARY NODE": ("NSET", "first", "carried"),
         "FLUID BOUNDARY ELEMENT": ("ELSET", "first", "carried"),
         "FLUID BOUNDARY SURFACE": ("SURFACE", "later", "carried"),
         "FLUID BOUNDARY PHYSICAL": ("SURFACE", "later", "carried"),
         "FLUID FLUX": ("NSET", "both", "carried"), "CFLOW": ("NSET", "both", "carried"),
         "DFLOW": ("ELSET", "both", "carried"), "DSFLOW": ("SURFACE", "both", "carried"),
         "FLOW": ("ELSET", "both", "carried"), "SFLOW": ("SURFACE", "both", "carried"),
         "CECHARGE": ("NSET", "both", "carried"), "DECHARGE": ("ELSET", "both", "carried"),
         "DSECHARGE": ("SURFACE", "both", "carried"), "DECURRENT": ("ELSET", "both", "carried"),
         "DSECURRENT": ("SURFACE", "both", "carried"), "SLOAD": ("ELSET", "both", "carried"),
         "INCIDENT WAVE": ("SURFACE", "both", "carried"),
         "MASS FLOW RATE": ("NSET", "later", "held"), "MOTION": ("NSET", "later", "carried"),
         "D EM POTENTIAL": ("SURFACE", "later", "held"),
         "TRANSPORT VELOCITY": ("NSET", "later", "carried"),
         "RADIATE": ("ELSET", "later", "carried"), "SRADIATE": ("SURFACE", "later", "carried"),
         "CRADIATE": ("NSET", "later", "carried"), "IMPEDANCE": ("ELSET", "later", "carried"),
         "SIMPEDANCE": ("SURFACE", "later", "carried"),
         "ACOUSTIC FLOW VELOCITY": ("NSET", "later", "carried")}
MOTIONS = ("BOUNDARY", "CONNECTOR MOTION", "MOTION")  # displacements, velocities, accelerations
OF_ONE = ("TEMPERATURE", "FIELD", "PRESSURE STRESS", "CFILM", "CRADIATE", "FLUID FLUX",
          "MASS FLOW RATE", "TRANSPORT VELOCITY", "SIMPEDANCE", "INCIDENT WAVE",
          "ACOUSTIC FLOW VELOCITY")  # neither degree nor label
BLANK_DEGREES = {"CFLUX": 11, "CECURRENT": 9, "CECHARGE": 9, "CFLOW": 8}
# Procedures: whether they are general when *STEP does not say otherwise.
PROCEDURES = {"STATIC": True, "DYNAMIC": True, "VISCO": True, "HEAT TRANSFER": True,
              "FREQUENCY": False, "BUCKLE": False, "STEADY STATE DYNAMICS": False}

# An entry is what one thing says: where is (kind, target, degree or label, part), value the
# magnitude (None: a routine or a file has it), of motions with their manner. A target is
# (instance, label), or (None, surface), a part whether it is imaginary, and the numbers of its load
# case and cyclic mode;
# an amplitude is that and the one of a film's coefficient.
Entry = collections.namedtuple("Entry", "where value amplitudes step")
# What it comes to in a step. A target is None for the whole model, an amplitude (name, is over),
# origin where it was given.
Fact = collections.namedtuple("Fact", "step family target degree part manner value amplitude "
                              "film origin how case")
Keyword = collections.namedtuple("Keyword", "name parameters lines places")


def read_deck(text):
    keywords = []
    for place, line in enumerate(text.splitlines(), 1):
        fields = [field.strip() for field in line.split(",")]
        if line.startswith("*"):
            parameters = dict((word.split("=") + [None])[:2] for word in fields[1:])
            keywords.append(Keyword(fields[0][1:], parameters, [], []))
        else:
            keywords[-1].lines.append(fields)
            keywords[-1].places.append(place)
    return keywords


class Mesh:
    """Elements; sets of the model, the assembly (None) or a part; instances with their part."""

    def __init__(self, keywords):
        self.elements, self.parts = [], {}
        self.sets = collections.defaultdict(list)  # (owner, kind, name): members
        self.nodes = []
        part, in_part = None, []
        for keyword in keywords:
            name, words, lines, _ = keyword
            if name == "PART":
                part = words["NAME"]
            elif name == "END PART":
                part = None
            elif name == "INSTANCE":
                self.parts[words["NAME"]] = words["PART"]  # the decks have one part
                self.elements += [(words["NAME"], label) for label in in_part]
            elif name == "NODE":
                self.nodes += [int(fields[0]) for fields in lines]
            elif name == "NGEN":  # those at its ends are there
                self.nodes += range(int(lines[0][0]) + 1, int(lines[0][1]))
            elif name == "ELEMENT":
                labels = [int(fields[0]) for fields in lines]
                self.sets[part, "ELSET", words["ELSET"]] += [(None, label) for label in labels]
                if part:
                    in_part += labels
                else:
                    self.elements += [(None, label) for label in labels]
            elif name in ("NSET", "ELSET"):
                self._gather(keyword, part)

    def _gather(self, keyword, part):
        members = self.sets[part, keyword.name, keyword.parameters[keyword.name]]
        instance = keyword.parameters.get("INSTANCE")
        for fields in keyword.lines:
            if "GENERATE" in keyword.parameters:
                first, last, stride = map(int, fields)
                members += [(instance, n) for n in range(first, last + 1, stride)]
            else:
                members += [(instance, int(field)) for field in fields]

    def find(self, text, kind):
        """The members of what a field names: a label or a set, or all there are."""
        if not text and kind == "NSET":
            return {(instance, node) for instance in self.parts or [None] for node in self.nodes}
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
        return f"FIELD {keyword.parameters.get('VARIABLE', 1)}"
    return keyword.name


def kind_of(entry_family):
    return KINDS["FIELD" if entry_family.startswith("FIELD") else entry_family]


def kind_name(keyword):
    """Types of fluid boundaries are told apart, but for what takes them back."""
    return " ".join(filter(None, (keyword.name, keyword.parameters.get("TYPE")))) \
        if keyword.name == "FLUID BOUNDARY" else keyword.name


def read_line(mesh, keyword, fields):
    """The targets of one line, its degrees or labels, and its value."""
    name = keyword.name
    kind = KINDS[kind_name(keyword)][0]
    if kind is None:
        degree = int(keyword.parameters.get("DOF") or 0)
        base = keyword.parameters.get("BASE NAME")
        return [None], [(degree, base) if base else degree], None
    if not fields:  # a file has them all
        return mesh.find("", kind), [None], None
    targets = [(None, fields[0])] if kind == "SURFACE" else mesh.find(fields[0], kind)
    if name in OF_ONE:
        return targets, [None], float(fields[1])
    if name == "FLUID BOUNDARY":
        words = keyword.parameters["TYPE"], fields[1]
        if words[0] == "PHYSICAL":
            return targets, [words[:1]], None
        return targets, [words], float(fields[2])
    if name == "MOTION" and "ROTATION" in keyword.parameters:
        return targets, ["ROTATION"], float(fields[1])
    if name in ("BOUNDARY", "MOTION"):
        if fields[1] in RESTRAINTS:
            return targets, RESTRAINTS[fields[1]], 0.0
        fields = fields + [""] * (4 - len(fields))
        first = int(fields[1])
        degrees = range(first, int(fields[2] or first) + 1)
        return targets, degrees, float(fields[3] or 0)
    what = fields[1]
    if name in BLANK_DEGREES:
        what = what or str(BLANK_DEGREES[name])
    if what.isdigit():
        what = int(what)
    return targets, [what], float(fields[2] or 0)


def is_given_elsewhere(keyword, fields):
    """A routine gives the values, whatever the line says."""
    label = fields[1] if len(fields) > 1 and keyword.name not in OF_ONE else ""
    return "USER" in keyword.parameters or label.endswith("NU")


def meeting(where):
    """What meets: of flows a routine, VELXNU, prescribes what VELX does."""
    family_name, target, degree, part = where
    if family_name == "FLUID BOUNDARY" and len(degree) > 1 and degree[1].endswith("NU"):
        degree = degree[0], degree[1].removesuffix("NU")
    return family_name, target, degree, part


def entries_of(mesh, keyword, step):
    """What a keyword says, and where a condition is not what it said before: (line, label)."""
    words, said, twice = keyword.parameters, {}, set()
    manner = "FIXED" if "FIXED" in words else words.get("TYPE", "DISPLACEMENT")
    of, rule, _ = KINDS[kind_name(keyword)]
    numbers = (int(words[name]) if name in words else None for name in ("LOAD CASE", "CYCLIC MODE"))
    part = "IMAGINARY" in words, *numbers
    amplitudes = tuple(words.get(name) for name in ("AMPLITUDE", "FILM AMPLITUDE"))
    if keyword.name == "INCIDENT WAVE":
        amplitudes = words.get("PRESSURE AMPLITUDE") or words.get("ACCELERATION AMPLITUDE"), None
    without_lines = keyword.name in OF_ONE and ("FILE" in words or "USER" in words)
    alone = not of or (without_lines and not keyword.lines)
    no_values = {"USER", "FILE", "SUBMODEL", "FIXED"} & words.keys()  # the lines' are not what holds
    values = {}  # of the lines that hold
    for fields, place in [([], 0)] if alone else zip(keyword.lines, keyword.places):
        targets, degrees, value = read_line(mesh, keyword, fields)
        written = value, fields and is_given_elsewhere(keyword, fields)
        if is_given_elsewhere(keyword, fields):
            value = None
        if keyword.name in MOTIONS:
            value = (manner, None if manner == "FIXED" else value)
        for target in targets:
            for degree in degrees:
                entry = Entry((family(keyword), target, degree, part), value, amplitudes, step)
                where = meeting(entry.where)
                if where not in said or rule == "later":
                    said[where] = [entry]
                elif rule == "both":
                    said[where].append(entry)
                elif values[where] != written and not no_values:  # the first holds
                    twice.add((place, target[1]))
                values.setdefault(where, written)
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
            if KINDS[kind_name(keyword)][1] == "both":
                given[where] = given.get(where, []) + entries
            else:
                given[where] = entries
    return given, twice


def steps_of(keywords):
    """Before the first step, then of each: its keywords, its load cases', whether it perturbs."""
    steps, case, perturbs = [([], {}, False)], None, False
    for keyword in keywords:
        own, cases, _ = steps[-1]
        if keyword.name == "STEP":
            perturbs = perturbs or "PERTURBATION" in keyword.parameters
            steps.append(([], {}, perturbs))
        elif keyword.name == "LOAD CASE":
            case = keyword.parameters["NAME"]
            cases[case] = []
        elif keyword.name == "END LOAD CASE":
            case = None
        elif keyword.name in KINDS:
            (cases[case] if case else own).append(keyword)
        elif keyword.name in PROCEDURES:  # without one, what *STEP says holds for the next one, too
            perturbs = False
            steps[-1] = (own, cases, steps[-1][2] or not PROCEDURES[keyword.name])
    return steps


def in_force(text):
    """For each step a list of (how, load case, entry); (line, label) of what is given twice."""
    keywords = read_deck(text)
    mesh = Mesh(keywords)
    outside, *steps = steps_of(keywords)
    state, told = act(mesh, outside[0], 0)
    found, twice = [], set(told)
    for number, (own, cases, perturbs) in enumerate(steps, 1):
        gone = [n for n, word in enumerate(own) if "REMOVE" in word.parameters]
        own_left = [word for n, word in enumerate(own)
                    if word.name != "INERTIA RELIEF" or n > max(gone, default=-1)]
        given, told = act(mesh, own_left, number)
        renewed = {family(word) for word in own if word.parameters.get("OP") == "NEW"}
        renewed |= {family(word) for word in own if "REMOVE" in word.parameters}
        kept = without(state, renewed)
        if perturbs:
            kept = {where: some for where, some in kept.items() if kind_of(where[0])[2] == "held"}
        kept = {where: some for where, some in kept.items() if where not in given}
        how = "held" if perturbs else "carried"
        acting = [(how, None, entry) for some in kept.values() for entry in some]
        acting += [("given", None, entry) for some in given.values() for entry in some]
        for case, inside in cases.items():
            only, same = act(mesh, inside, number)
            twice |= same
            acting += [("given", case, entry) for some in only.values() for entry in some]
        found.append(acting)
        twice |= told
        if not perturbs:
            state = without({**kept, **given}, {"BASE MOTION"})
    return found, twice


def facts(text):
    """What acts, step by step, and what is told to be given twice."""
    keywords = read_deck(text)
    through = {word.parameters["NAME"] for word in keywords
               if word.name == "AMPLITUDE" and word.parameters.get("TIME") == "TOTAL TIME"}
    made = collections.Counter()
    steps, twice = in_force(text)
    general = [n for n, (_, _, perturbs) in enumerate(steps_of(keywords)[1:], 1) if not perturbs]
    for step, acting in enumerate(steps, 1):
        for how, case, entry in acting:
            manner, value = entry.value if isinstance(entry.value, tuple) else (None, entry.value)
            runs = [(name, bool(name) and name not in through and step > (entry.step or min(general, default=step)))
                    for name in entry.amplitudes]
            made[Fact(step, *entry.where, manner, value, *runs, entry.step, how, case)] += 1
    return made, twice
