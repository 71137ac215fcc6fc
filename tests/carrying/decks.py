"""Decks made by chance, of up to eight steps that give, change and take back conditions and loads:
flat or of two instances, with sets that overlap, single nodes of sets given anew, things twice."""

LABELS = {"DLOAD": ("P1", "P2", "BX", "P1NU"), "DFLUX": ("BF", "S1", "S2"), "DSLOAD": ("P", "PNU"),
          "DSFLUX": ("S",), "FILM": ("F1", "F2"), "SFILM": ("F",), "DFLOW": ("S1", "S1NU"),
          "DSFLOW": ("S",), "FLOW": ("Q1", "Q2"), "SFLOW": ("Q",), "DECHARGE": ("EBF", "ES1"),
          "DSECHARGE": ("ES",), "DECURRENT": ("CBF", "CS1"), "DSECURRENT": ("CS",),
          "D EM POTENTIAL": ("MVP",), "RADIATE": ("R1", "R2"), "SRADIATE": ("R",),
          "IMPEDANCE": ("I1", "I2"), "SLOAD": ("UP", "DOWN")}
WORDS = ("ENCASTRE", "PINNED", "XSYMM", "YSYMM", "ZSYMM", "XASYMM", "YASYMM", "ZASYMM", "NOWARP",
         "NOOVAL", "NODEFORM")
PROCEDURES = ("*STATIC", "*STATIC", "*STATIC", "*DYNAMIC", "*VISCO, CETOL=0.1", "*HEAT TRANSFER")
PERTURBING = ("*FREQUENCY\n5", "*BUCKLE\n3", "*STEADY STATE DYNAMICS, DIRECT\n1., 10., 5")
KINDS = ("BOUNDARY", "CLOAD", "DLOAD", "TEMPERATURE", "CONNECTOR MOTION", "FIELD", "DSLOAD",
         "CONNECTOR LOAD", "CFLUX", "DFLUX", "DSFLUX", "BASE MOTION", "INERTIA RELIEF",
         "PRESSURE STRESS", "CECURRENT", "FILM", "SFILM", "CFILM", "FLUID BOUNDARY",
         "FLUID BOUNDARY", "FLUID FLUX", "MASS FLOW RATE", "TRANSPORT VELOCITY", "CFLOW", "DFLOW",
         "DSFLOW", "FLOW", "SFLOW", "CECHARGE", "DECHARGE", "DSECHARGE", "DECURRENT", "DSECURRENT",
         "D EM POTENTIAL", "RADIATE", "SRADIATE", "CRADIATE", "IMPEDANCE", "SIMPEDANCE", "SLOAD",
         "INCIDENT WAVE", "ACOUSTIC FLOW VELOCITY", "MOTION")
COMMON = 18  # the first ones
AT_NODES = {"TEMPERATURE": "", "FIELD": "", "PRESSURE STRESS": "", "FLUID FLUX": "",
            "MASS FLOW RATE": "", "TRANSPORT VELOCITY": "", "CFILM": ", 20., 0.5",
            "CRADIATE": ", 20., 0.5", "ACOUSTIC FLOW VELOCITY": ", 1., 0."}
WITHOUT_AMPLITUDE = ("IMPEDANCE", "SIMPEDANCE", "SLOAD")
USERS = ("BOUNDARY", "CLOAD", "TEMPERATURE", "FIELD", "FILM", "MASS FLOW RATE")


class Maker:
    def __init__(self, random):
        self.random = random
        self.lines = []
        self.instances = random.choice(((), (), ("ONE", "TWO")))
        self.chains = random.randint(1, 3)  # bricks in a row
        self.wide = self.chance(0.01)  # sets of more than a thousand nodes
        self.long = self.chance(0.02)  # keywords of hundreds of lines

    def chance(self, share):
        return self.random.random() < share

    def add(self, *lines):
        self.lines += lines

    def text(self):
        self.mesh()
        among = KINDS[:COMMON] if self.chance(0.5) else KINDS
        kinds = ["BOUNDARY"] + self.random.sample(among, self.random.randint(1, 4))
        if self.chance(0.7):
            for _ in range(self.random.randint(1, 3)):
                self.keyword("BOUNDARY", number=0, perturbs=False)
        for number in range(1, self.random.randint(1, 8) + 1):
            self.step(number, kinds)
        return "\n".join(self.lines) + "\n"

    # ---- what there is to act on

    def mesh(self):
        random = self.random
        count = 4 * (self.chains + 1)
        gap = random.choice((1, 1, 7))
        self.nodes = [3 + gap * n + (random.randrange(gap) if gap > 1 else 0) for n in range(count)]
        self.bricks = [20 - 3 * n for n in range(self.chains)]
        self.links = [50, 41]
        if self.instances:
            self.add("*PART, NAME=BAR")
        self.add("*NODE")
        for n, label in enumerate(self.nodes):
            self.add(f"{label}, {n % 2}., {n // 2 % 2}., {n // 4}.")
        if self.wide:
            self.add("1001, 0., 1., 1.", "2300, 1., 1., 1.", "*NGEN", "1001, 2300, 1")
        self.add("*ELEMENT, TYPE=C3D8, ELSET=BRICKS")
        for n, label in enumerate(self.bricks):
            ring = [self.nodes[4 * n + k] for k in (0, 1, 3, 2, 4, 5, 7, 6)]
            self.add(", ".join(map(str, [label] + ring)))
        self.add("*ELEMENT, TYPE=CONN3D2, ELSET=LINKS")
        for n, label in enumerate(self.links):
            self.add(f"{label}, {self.nodes[n]}, {self.nodes[-1 - n]}")
        self.sets("IN", "")
        self.add("*SURFACE, NAME=FRONT", "BRICKS, S1", "*SURFACE, NAME=BACK", "BRICKS, S2")
        scopes = ("",) + tuple(f"{name}." for name in self.instances)
        if self.instances:
            self.add("*END PART", "*ASSEMBLY, NAME=ALL")
            for name in self.instances:
                self.add(f"*INSTANCE, NAME={name}, PART=BAR", f"{random.randint(0, 9)}., 0., 0.",
                         "*END INSTANCE")
            for name in self.instances:
                self.sets("OUT", f", INSTANCE={name}")
            self.add("*END ASSEMBLY")
        self.scopes = scopes
        for place in scopes[-1:] if self.chance(0.2) else ():
            self.add(f"*TRANSFORM, NSET={place}IN1", "0., 1., 0., -1., 0., 0.")
        self.add("*AMPLITUDE, NAME=OWN", "0., 0., 1., 1.",
                 "*AMPLITUDE, NAME=THROUGH, TIME=TOTAL TIME", "0., 0., 9., 1.",
                 "*INCIDENT WAVE PROPERTY, NAME=WAVE, TYPE=PLANE", "0., 0., 0.", "1., 0., 0.")

    def sets(self, prefix, instance):
        random = self.random
        for number in range(1, 4):
            some = random.sample(self.nodes, random.randint(2, len(self.nodes)))
            if self.chance(0.3):
                some += some[:2]
            order = ", UNSORTED" if self.chance(0.2) else ""
            self.add(f"*NSET, NSET={prefix}{number}{order}{instance}")
            self.add(*(", ".join(map(str, some[n:n + 8])) for n in range(0, len(some), 8)))
            if self.wide:
                first = random.randint(1001, 1100)
                last = random.choice((first + 150, 2300 - random.randint(0, 99)))
                self.add(f"*NSET, NSET={prefix}{number}, GENERATE{instance}", f"{first}, {last}, 1")
            pool, name = (self.links, "L") if number == 3 else (self.bricks, "B")
            some = random.sample(pool, random.randint(1, len(pool)))
            self.add(f"*ELSET, ELSET={prefix}{name}{number}{instance}", ", ".join(map(str, some)))

    def target(self, labels, prefix, single=0.4):
        scope = self.random.choice(self.scopes)
        if self.instances and not scope:
            return f"OUT{prefix}"
        name = self.random.choice(labels) if self.chance(single) else f"IN{prefix}"
        return f"{scope}{name}"

    def node(self):
        return self.target(self.nodes, self.random.randint(1, 3))

    def brick(self):
        return self.target(self.bricks, f"B{self.random.randint(1, 2)}")

    def link(self):
        return self.target(self.links, "L3")

    def surface(self):
        scope = f"{self.random.choice(self.instances)}." if self.instances else ""
        return scope + self.random.choice(("FRONT", "BACK"))

    # ---- what acts

    def step(self, number, kinds):
        random = self.random
        perturbs = self.chance(0.3)
        procedure = random.choice(PROCEDURES)
        if perturbs:
            procedure = random.choice(PERTURBING + ("*STATIC",) * 3)
        flag = ", PERTURBATION" if procedure == "*STATIC" and perturbs or (
            perturbs and self.chance(0.5)) else ""
        self.add(f"*STEP{flag}", *([] if self.chance(0.02) else [procedure]))
        chosen = random.choices(kinds, k=random.choice((0, 1, 2, 3, 4)))
        for kind in chosen:
            self.keyword(kind, number, perturbs, procedure)
        if procedure == "*STATIC" and perturbs and self.chance(0.5):
            self.cases(kinds)
        self.add("*END STEP")

    def cases(self, kinds):
        inside = [kind for kind in kinds if kind in ("BOUNDARY", "CLOAD", "DLOAD", "DSLOAD")]
        for case in ("UP", "DOWN"):
            self.add(f"*LOAD CASE, NAME={case}")
            for kind in self.random.choices(inside, k=self.random.randint(1, 2)):
                self.keyword(kind, None, True)
            self.add("*END LOAD CASE")

    def words(self, kind, number, perturbs, procedure):
        """Parameters: none of them inside a load case (number None), few before the steps (0)."""
        words = ""
        if kind == "FIELD":
            words += self.random.choice(("", ", VARIABLE=1", ", VARIABLE=2"))
        if kind == "BASE MOTION":
            words += f", DOF={self.random.randint(1, 3)}, AMPLITUDE=OWN"
            words += self.random.choice(("", ", BASE NAME=SECOND"))
        if kind == "INERTIA RELIEF" and self.chance(0.4):
            words += ", REMOVE"
        if kind == "FLUID BOUNDARY":
            words += f", TYPE={self.random.choice(('NODE', 'ELEMENT', 'SURFACE', 'PHYSICAL'))}"
        if kind == "MOTION":
            words += self.random.choice((", TRANSLATION", ", ROTATION"))
            words += self.random.choice((", TYPE=VELOCITY", ", TYPE=DISPLACEMENT"))
        if kind == "INCIDENT WAVE":
            words += ", PROPERTY=WAVE"
        if number == 0 and self.chance(0.2):
            words += ", AMPLITUDE=OWN"
        if not number:
            return words
        if kind in ("BOUNDARY", "CLOAD", "BASE MOTION") and procedure.startswith("*STEADY"):
            words += self.random.choice(("", ", IMAGINARY"))
        elif kind in ("BOUNDARY", "CLOAD", "DLOAD") and self.chance(0.1):
            words += f", LOAD CASE={self.random.randint(1, 2)}"
        elif kind == "CLOAD" and self.chance(0.1):
            words += f", CYCLIC MODE={self.random.randint(0, 1)}"
        if kind in ("BASE MOTION", "INERTIA RELIEF"):
            return words
        words += self.random.choice(("", "", "", ", OP=MOD", ", OP=NEW"))
        if kind in WITHOUT_AMPLITUDE or "PHYSICAL" in words:
            return words
        for name in ("FILM AMPLITUDE", "AMPLITUDE") if "FILM" in kind else ("AMPLITUDE",):
            if kind == "INCIDENT WAVE":
                name = self.random.choice(("PRESSURE AMPLITUDE", "ACCELERATION AMPLITUDE"))
            if self.chance(0.3) and not perturbs:
                words += f", {name}={self.random.choice(('OWN', 'THROUGH'))}"
        return words

    def keyword(self, kind, number, perturbs, procedure=""):
        words, manner = self.words(kind, number, perturbs, procedure), ""
        if kind in ("BOUNDARY", "CONNECTOR MOTION") and number and not perturbs:
            choice = [""] * 6 + ["TYPE=VELOCITY", "TYPE=ACCELERATION", "FIXED"]
            manner = self.random.choice(choice)
        if kind in USERS and number and not manner and self.chance(0.1):
            words += ", USER"
        from_file = kind == "TEMPERATURE" and "USER" not in words and self.chance(0.1)
        if from_file:
            words += ", FILE=before"
        self.add(f"*{kind}{words}{', ' if manner else ''}{manner}")
        if kind in ("BASE MOTION", "INERTIA RELIEF") or from_file:
            return
        none = "OP=NEW" in words and self.chance(0.4)
        count = self.random.randint(200, 350) if self.long and self.chance(0.5) else \
            self.random.randint(1, 4)
        lines = [self.line(kind, words, manner) for _ in range(0 if none else count)]
        if self.chance(0.2):  # said over again, in any order
            lines += self.random.choices(lines, k=len(lines)) if lines else []
            self.random.shuffle(lines)
        self.add(*lines)

    def fluid(self, words, value):
        if "PHYSICAL" in words:
            return f"{self.surface()}, {self.random.choice(('WALL', 'SLIP'))}"
        if "NODE" in words:
            return f"{self.node()}, {self.random.choice(('VELX', 'VELY', 'VELXNU'))}, {value}"
        if "ELEMENT" in words:
            return f"{self.brick()}, {self.random.choice(('P1', 'P2', 'VELX1'))}, {value}"
        return f"{self.surface()}, {self.random.choice(('VELX', 'P'))}, {value}"

    def line(self, kind, words, manner):
        random = self.random
        value = random.choice((0.5, 1.0, 2.0, -4.25))
        if kind == "BOUNDARY":
            return self.boundary(words + manner, random.choice((0, 0, value)))
        if kind == "CLOAD":
            return f"{self.node()}, {random.randint(1, 6)}, {value}"
        degrees = {"CFLUX": ("", 11, 12), "CECURRENT": ("", 9), "CECHARGE": ("", 9), "CFLOW": ("", 8)}
        if kind in degrees:
            return f"{self.node()}, {random.choice(degrees[kind])}, {value}"
        if kind in AT_NODES:
            return f"{self.node()}, {value}{AT_NODES[kind]}"
        if kind == "FLUID BOUNDARY":
            return self.fluid(words, value)
        if kind in ("SIMPEDANCE", "INCIDENT WAVE"):
            return f"{self.surface()}, {value}"
        if kind == "MOTION" and "ROTATION" in words:
            return f"{self.node()}, {value}, 0., 0., 0., 0., 0., 1."
        if kind == "MOTION":
            first = random.randint(1, 3)
            return f"{self.node()}, {first}, {random.randint(first, 3)}, {value}"
        if kind.startswith("CONNECTOR"):
            return f"{self.link()}, {random.randint(1, 3)}, {'' if manner == 'FIXED' else value}"
        label = random.choice(LABELS[kind])
        if "FILM" in kind or kind in ("FLOW", "SFLOW", "RADIATE", "SRADIATE"):
            value = f"{value}, 0.5"
        if kind == "D EM POTENTIAL":
            value = f"{value}, 1., 0., 0."
        if kind.startswith("DS") or kind in ("SFILM", "SFLOW", "SRADIATE", "D EM POTENTIAL"):
            return f"{self.surface()}, {label}, {value}"
        if kind == "DLOAD" and self.chance(0.3):
            place = "" if self.chance(0.6) else self.brick()
            return f"{place}, GRAV, {value}, 0., 0., -1."
        return f"{self.brick()}, {label}, {value}"

    def boundary(self, words, value):
        is_plain = not any(word in words for word in ("TYPE", "FIXED", "USER"))
        if is_plain and self.chance(0.3):
            return f"{self.node()}, {self.random.choice(WORDS)}"
        first = self.random.randint(1, 6)
        if is_plain and self.chance(0.1):
            first = self.random.choice((1, 7, 8, 9, 10, 11))
            last = self.random.choice(("", self.random.randint(first, 12)))
            return f"{self.node()}, {first}, {last}, {value}"
        last = self.random.choice(("", self.random.randint(first, 6)))
        return f"{self.node()}, {first}, {last}" + ("" if "FIXED" in words else f", {value}")
