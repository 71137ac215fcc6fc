#!/usr/bin/env python3
"""Decks that ask for too much: each is converted or refused, in bounded time and memory.

A conversion may end with exit code 0 (nothing wrong) or 1 (the deck is at fault, told at its
place), or with 3 when it says that the memory does not suffice; never by a signal, never with an
internal error. Where a deck passes a limit, the message has to say which one."""
import argparse
import pathlib
import resource
import subprocess
import sys
import tempfile
import time

BRICK = ("*NODE, NSET=ALL\n1, 0., 0., 0.\n2, 1., 0., 0.\n3, 1., 1., 0.\n4, 0., 1., 0.\n"
         "5, 0., 0., 1.\n6, 1., 0., 1.\n7, 1., 1., 1.\n8, 0., 1., 1.\n"
         "*ELEMENT, TYPE=C3D8, ELSET=SOLID\n1, 1, 2, 3, 4, 5, 6, 7, 8\n")


def write(folder, pieces, name="deck.inp"):
    with open(folder / name, "w", encoding="ascii") as file:
        for piece in pieces:
            file.write(piece)


def keywords(folder, scale):
    """Keywords of one line, which the store keeps as text."""
    write(folder, [BRICK, *("*DESIGN GRADIENT\n" for _ in range(scale))])


def sets(folder, scale):
    """Sets with one member each."""
    write(folder, [BRICK, *(f"*NSET, NSET=S{n}\n{1 + n % 8}\n" for n in range(scale))])


def materials(folder, scale):
    write(folder, [BRICK, *(f"*MATERIAL, NAME=M{n}\n*ELASTIC\n2.1e5, 0.3\n" for n in range(scale))])


def deep_sets(folder, scale):
    """Each set is the one before and nothing else."""
    write(folder, [BRICK, "*NSET, NSET=S0\n1\n",
                   *(f"*NSET, NSET=S{n}\nS{n - 1}\n" for n in range(1, scale))])


def deep_sets_backwards(folder, scale):
    """Each set is the one behind it in the deck."""
    write(folder, [BRICK, *(f"*NSET, NSET=S{n}\nS{n + 1}\n" for n in range(scale)),
                   f"*NSET, NSET=S{scale}\n1\n"])


def circle_of_sets(folder, scale):
    write(folder, [BRICK, *(f"*NSET, NSET=S{n}\nS{(n + 1) % scale}\n" for n in range(scale))])


def set_of_itself(folder, _):
    write(folder, [BRICK, "*NSET, NSET=A\n1, A\n*ELSET, ELSET=B\nB\n"])


def includes(folder, scale):
    """Each file includes the next."""
    write(folder, [BRICK, "*INCLUDE, INPUT=f0.inp\n"])
    for n in range(scale):
        write(folder, [f"*INCLUDE, INPUT=f{n + 1}.inp\n"], f"f{n}.inp")
    write(folder, ["*NSET, NSET=LAST\n1\n"], f"f{scale}.inp")


def include_of_itself(folder, _):
    write(folder, [BRICK, "*INCLUDE, INPUT=deck.inp\n"])


def instance_of_instance(folder, _):
    write(folder, ["*PART, NAME=P\n", BRICK, "*END PART\n*ASSEMBLY, NAME=A\n"
                   "*INSTANCE, NAME=I, PART=P\n*END INSTANCE\n"
                   "*INSTANCE, NAME=J, PART=I\n*END INSTANCE\n*END ASSEMBLY\n"])


def instances(folder, scale):
    write(folder, ["*PART, NAME=P\n", BRICK, "*END PART\n*ASSEMBLY, NAME=A\n",
                   *(f"*INSTANCE, NAME=I{n}, PART=P\n{n}., 0., 0.\n*END INSTANCE\n"
                     for n in range(scale)), "*END ASSEMBLY\n"])


def huge_instances(folder, scale):
    """More nodes in all than can be counted."""
    write(folder, ["*PART, NAME=P\n", BRICK, "*NODE\n10000000, 1.\n*NGEN\n8, 10000000\n"
                   "*END PART\n*ASSEMBLY, NAME=A\n",
                   *(f"*INSTANCE, NAME=I{n}, PART=P\n*END INSTANCE\n" for n in range(scale)),
                   "*END ASSEMBLY\n"])


def labels_by_generate(folder, _):
    write(folder, [BRICK, "*NSET, NSET=A, GENERATE\n1, 2147483647, 1\n"])


def labels_many_times(folder, scale):
    write(folder, [BRICK, "*NSET, NSET=A, GENERATE, UNSORTED\n", "1, 999999999, 1\n" * scale])


def contradictions(folder, scale):
    """One node over and over, and many once more, each with another value than before."""
    yes_and_no = "1, 1, 1, 0.\n1, 1, 1, 1.\n" * (scale // 4)
    lists = [f"{node}, 2, 2, {value}.\n" for value in (0, 1) for node in range(1, scale // 4 + 1)]
    nodes = f"*NODE\n1, 0.\n{scale}, 1.\n*NGEN\n1, {scale}\n"
    write(folder, [nodes, "*BOUNDARY\n", yes_and_no, *lists])


def labels_at_the_limits(folder, _):
    write(folder, [BRICK, "*NODE\n999999999, 1.\n0, 1.\n-1, 1.\n1000000000, 1.\n2147483647, 1.\n"
                   "2147483648, 1.\n9223372036854775807, 1.\n9223372036854775808, 1.\n"
                   "*NSET, NSET=A\n999999999, 1000000000, 2147483648, -2147483649\n"])


def endless(begin, piece):
    """What a deck begins with, then one piece again and again, so many bytes of it."""
    def make(folder, scale):
        with open(folder / "deck.inp", "wb") as file:
            file.write(begin.encode("ascii"))
            step = (piece * (1_000_000 // len(piece))).encode("latin-1")
            for _ in range(scale // len(step)):
                file.write(step)
    return make


def unknown_keywords(folder, scale):
    """Each with another name, near to one that is known."""
    write(folder, [BRICK, *(f"*NODEE{n}\n1, 2\n" for n in range(scale))])


def unknown_parameters(folder, scale):
    write(folder, [BRICK, *("*NSET, NSET=A" + "".join(f", GENERATT{n}-{k}" for k in range(900))
                            + "\n1\n" for n in range(scale // 900))])


def unknown_members(folder, scale):
    """Of a set, each of which is told."""
    write(folder, [BRICK, "*NSET, NSET=A\n", *(f"X{n}, {n + 9}\n" for n in range(scale))])


def long_names(folder, scale):
    """Sets with names as long as a keyword line may be."""
    write(folder, [BRICK, *(f"*NSET, NSET=A{n:0>60000}\n1\n" for n in range(scale))])


def open_quotes(folder, scale):
    write(folder, [BRICK, *(f'*NSET, NSET="A{n}\n1, "B\n' for n in range(scale))])


def parts_that_stay_open(folder, scale):
    write(folder, [f"*PART, NAME=P{n}\n*NODE\n1, 0.\n" for n in range(scale)])


def steps(folder, scale):
    write(folder, [BRICK, *("*STEP\n*STATIC\n1., 1.\n*END STEP\n" for _ in range(scale))])


def suboptions(folder, scale):
    """Of one material, with the same behavior again and again."""
    write(folder, [BRICK, "*MATERIAL, NAME=M\n", *(f"*ELASTIC\n2.1e5, 0.3\n*PLASTIC, RATE={n}.\n1., 0.\n"
                                                   for n in range(scale))])


def many_dependencies(folder, _):
    write(folder, [BRICK, "*MATERIAL, NAME=M\n*ELASTIC, DEPENDENCIES=2147483647\n2.1e5, 0.3\n"
                   "*DENSITY, DEPENDENCIES=2147483648\n1.\n"])


def deep_expression(folder, scale):
    write(folder, [BRICK, "*PARAMETER\na = ", "(" * scale, "1", ")" * scale, "\n*NODE\n9, <a>\n"])


def chain_of_parameters(folder, scale):
    write(folder, [BRICK, "*PARAMETER\np0 = 1\n",
                   *(f"p{n} = p{n - 1} + 1\n" for n in range(1, scale)),
                   f"*NODE\n9, <p{scale - 1}>\n"])


def growing_line(folder, scale):
    """A long text put into one line again and again."""
    write(folder, [BRICK, f'*PARAMETER\na = "{"x" * scale}"\n*DESIGN GRADIENT\n', "<a>," * scale,
                   "\n"])


def amplitude(folder, scale):
    """So many numbers on lines of some megabytes."""
    lines = ("".join(f"{n}., 1., " for n in range(k, k + 400_000)) + "\n"
             for k in range(0, scale // 2, 400_000))
    write(folder, [BRICK, "*AMPLITUDE, NAME=A\n", *lines])


def amplitudes(folder, scale):
    write(folder, [BRICK, *(f"*AMPLITUDE, NAME=A{n}\n0., 0., 1., 1.\n" for n in range(scale))])


def surfaces(folder, scale):
    write(folder, [BRICK, *(f"*SURFACE, NAME=S{n}\nSOLID, S{1 + n % 6}\n" for n in range(scale))])


def one_name_for_all(folder, scale):
    """Sets and materials that are given again and again."""
    write(folder, [BRICK, *("*NSET, NSET=A\n1\n*ELSET, ELSET=SOLID\n1\n*MATERIAL, NAME=M\n"
                            for _ in range(scale))])


def nodes_by_doubling(folder, scale):
    """Each line below the limit of a line, all of them beyond any machine."""
    write(folder, [BRICK, "*NSET, NSET=N0\nALL\n",
                   *(f"*NCOPY, OLD SET=N{n}, CHANGE NUMBER={2 ** (n + 3)}, SHIFT, NEW SET=C{n}\n"
                     f"1., 0., 0.\n\n*NSET, NSET=N{n + 1}\nN{n}, C{n}\n" for n in range(scale))])


def tree_of_includes(folder, scale):
    """Each file includes the next one twice."""
    write(folder, [BRICK, "*INCLUDE, INPUT=f0.inp\n"])
    for n in range(scale):
        write(folder, [f"*INCLUDE, INPUT=f{n + 1}.inp\n" * 2], f"f{n}.inp")
    write(folder, ["** the last one\n"], f"f{scale}.inp")


def parts_times_instances(folder, scale):
    """Keywords that no phase converts, in each of many instances."""
    write(folder, ["*PART, NAME=P\n", BRICK, *("*DESIGN GRADIENT\n" for _ in range(scale)),
                   "*END PART\n*ASSEMBLY, NAME=A\n",
                   *(f"*INSTANCE, NAME=I{n}, PART=P\n*END INSTANCE\n" for n in range(scale)),
                   "*END ASSEMBLY\n"])


def elgen(folder, _):
    write(folder, [BRICK, "*ELGEN, ELSET=E\n1, 10000, 1, 1, 10000, 1, 10000, 10000, 1, 100000000\n"])


def elgen_that_fits(folder, _):
    write(folder, [BRICK, "*ELGEN, ELSET=E\n1, 999999999, 0, 1\n"])


def nodes_by_nfill(folder, _):
    write(folder, [BRICK, "*NFILL\n1, 2, 999999998, 1\n"])


def nodes_by_ngen(folder, _):
    write(folder, [BRICK, "*NODE\n999999999, 9., 9., 9.\n*NGEN\n1, 999999999, 1\n"])


def nodes_between_sets(folder, scale):
    """Every pair fills the same labels."""
    first = (f"{n + 1}, {n}., 0., 0.\n" for n in range(scale))
    last = (f"{n + 2000001}, {n}., 1., 0.\n" for n in range(scale))
    write(folder, ["*NODE, NSET=A\n", *first, "*NODE, NSET=B\n", *last,
                   "*NFILL\nA, B, 900000000, 1\n"])


def nodes_by_offset(folder, _):
    write(folder, [BRICK, "*NCOPY, OLD SET=ALL, CHANGE NUMBER=999999999, SHIFT\n1., 0., 0.\n"])


LINE = (20_000_000, 100_000_000, 4_300_000_000)
LABELS = "*NSET, NSET=A\n"

# What a deck asks for, how much of it (small, usual, on request), what has to be said; None: it is
# converted without an error.
CASES = [
    (keywords, (20_000, 1_000_000, 10_000_000), None),
    (sets, (5_000, 100_000, 1_000_000), None),
    (materials, (2_000, 100_000, 1_000_000), None),
    (amplitudes, (2_000, 100_000, 1_000_000), None),
    (surfaces, (2_000, 100_000, 1_000_000), None),
    (steps, (2_000, 100_000, 1_000_000), None),
    (suboptions, (2_000, 100_000, 1_000_000), "at most 1000 *PLASTIC"),
    (one_name_for_all, (2_000, 100_000, 1_000_000), "has already been defined"),
    (deep_sets, (1_000, 10_000, 100_000), None),
    (deep_sets_backwards, (1_000, 10_000, 100_000), None),
    (circle_of_sets, (1_000, 10_000, 100_000), "holds itself"),
    (set_of_itself, (1, 1, 1), "\"A\" holds itself"),
    (huge_instances, (300, 300, 300), "2147483647"),
    (includes, (200, 1_000, 10_000), "deeper than 100 files"),
    (include_of_itself, (1, 1, 1), "includes itself"),
    (tree_of_includes, (30, 90, 90), "100000 includes"),
    (instance_of_instance, (1, 1, 1), "Part \"I\" is not defined"),
    (instances, (300, 5_000, 100_000), None),
    (parts_times_instances, (100, 1_000, 10_000), None),
    (parts_that_stay_open, (2_000, 100_000, 1_000_000), "*END PART is missing"),
    (unknown_keywords, (20_000, 100_000, 1_000_000), "NODEE0"),
    (unknown_parameters, (20_000, 100_000, 1_000_000), "GENERATT0-0"),
    (unknown_members, (20_000, 1_000_000, 10_000_000), "X0"),
    (long_names, (100, 2_000, 20_000), None),
    (open_quotes, (2_000, 100_000, 1_000_000), "quote"),
    (many_dependencies, (1, 1, 1), "DEPENDENCIES"),
    (deep_expression, (100_000, 1_000_000, 4_000_000), "200"),
    (chain_of_parameters, (20_000, 200_000, 1_000_000), None),
    (growing_line, (20_000, 60_000, 1_000_000), "8388608"),
    (amplitude, (1_000_000, 10_000_000, 100_000_000), None),
    (labels_by_generate, (1, 1, 1), "999999999"),
    (labels_many_times, (10, 10_000, 1_000_000), None),
    (contradictions, (2_000, 200_000, 1_000_000), "Duplicate Boundary condition"),
    (labels_at_the_limits, (1, 1, 1), "999999999"),
    ("one_data_line", endless(BRICK + LABELS, "1, 2, 3, 4, "), LINE, "8388608"),
    ("one_line_alone", endless("", "1, 2, 3, 4, "), LINE, "8388608"),
    ("one_quoted_text", endless(BRICK + LABELS + '"', "A"), LINE, "8388608"),
    ("one_keyword_line", endless(BRICK + "*NSET, NSET=", "A"), LINE, "65536"),
    ("one_comment", endless(BRICK + "**", " *"), LINE, None),
    ("zero_bytes", endless("", "\0"), LINE, "binary data"),
    ("other_bytes", endless(BRICK + LABELS, "\xff"), LINE, "8388608"),
    ("blanks", endless(BRICK + LABELS, " "), LINE, "8388608"),
    ("blank_lines", endless(BRICK + LABELS, "\n"), LINE, None),
    ("blank_lines_alone", endless("", "\r\n"), LINE, "no keyword"),
    ("kept_text", endless(BRICK + "*DESIGN GRADIENT\n", "1, 2, 3, 4, 5, 6, 7, 8\n"), LINE,
     "DESIGN GRADIENT is not converted"),
    ("comments", endless(BRICK + LABELS, "**\n"), LINE, None),
    (elgen, (1, 1, 1), "999999999"),
    (elgen_that_fits, (1, 1, 1), "100000000"),
    (nodes_by_nfill, (1, 1, 1), "100000000"),
    (nodes_by_ngen, (1, 1, 1), "100000000"),
    (nodes_between_sets, (1_000, 100_000, 1_000_000), "100000000"),
    (nodes_by_offset, (1, 1, 1), "999999999"),
    (nodes_by_doubling, (30, 30, 30), "--memory"),
]
def limited(memory):
    def limit():
        resource.setrlimit(resource.RLIMIT_AS, (memory, memory))
        resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    return limit


class Limits:
    def __init__(self, memory, seconds):
        self.memory = int(memory * 2 ** 30)  # that the program gives itself
        self.seconds = seconds

    def run(self, folder, words):
        """(what was wrong or None, exit code, seconds, those of processors, megabytes at most,
        what was said)"""
        said, peak = folder / "said", 0
        # The pages of files do not count for the program, their addresses do for the system.
        mapped = sum(file.stat().st_size for file in folder.iterdir())
        words = [*words, "--memory", f"{self.memory // 2 ** 20}M"]
        begin, before = time.perf_counter(), processors()
        with open(said, "wb") as file:
            process = subprocess.Popen(words, stdout=file, stderr=file, cwd=folder,
                                       preexec_fn=limited(self.memory + mapped + 2 ** 30))
            while process.poll() is None and time.perf_counter() - begin < self.seconds:
                time.sleep(0.01)
                peak = peak_of(process.pid, peak)
            late = process.poll() is None
            if late:
                process.kill()
                process.wait()
        took = time.perf_counter() - begin
        with open(said, "rb") as file:
            text = file.read(4_000_000)
            file.seek(max(file.tell(), said.stat().st_size - 4000))
            text = (text + file.read()).decode(errors="replace")
        code = process.returncode
        wrong = None
        if late:
            wrong = f"does not end within {self.seconds} s"
        elif code not in (0, 1, 3) or "internal error" in text.lower():
            wrong = f"ends with {code}"
        elif code == 3 and "memory" not in text and "is not finished" not in text:
            wrong = "fails without a word of why"
        said.unlink()
        return wrong, code, took, processors() - before, peak, text


def processors():
    """Seconds that all ended runs took of them."""
    used = resource.getrusage(resource.RUSAGE_CHILDREN)
    return used.ru_utime + used.ru_stime


def peak_of(pid, before):
    """Megabytes that are no file's; the larger of the two."""
    try:
        for line in pathlib.Path(f"/proc/{pid}/status").read_text(encoding="ascii").splitlines():
            if line.startswith("RssAnon:"):
                return max(before, int(line.split()[1]) // 1024)
    except OSError:
        pass
    return before


RESTART = "*HEADING\nanother step\n*RESTART, READ, STEP=1\n*AMPLITUDE, NAME=R\n0., 0., 1., 1.\n"


def commands_on(folder, program):
    """What else is done with a model: a name and the words of each."""
    write(folder, [RESTART], "restart.inp")
    return [("write", [program, "write", "model.sim", "-o", "written.inp"]),
            ("info", [program, "info", "model.sim"]),
            ("check", [program, "check", "model.sim"]),
            ("dump", [program, "dump", "model.sim"]),
            ("diff", [program, "diff", "model.sim", "model.sim"]),
            ("restart", [program, "convert", "restart.inp", "--restart", "model.sim", "-o",
                         "next.sim"]),
            ("deck again", [program, "convert", "written.inp", "-o", "again.sim"])]


def try_deck(words, name, make, scale, needed):
    """Faults found."""
    limits, faults = Limits(words.memory, words.seconds), 0

    def tell(what, count, result):
        wrong, code, took, used, peak, text = result
        print(f"{what:22}{count:>14}{took:>9.2f}{used:>9.2f}{peak:>7}{code:>5}"
              + (f"  FAULT: {wrong}" if wrong else ""), flush=True)
        if wrong or words.show:
            print(text[:1500])
        return 1 if wrong else 0

    with tempfile.TemporaryDirectory(prefix="inps-hostile-", dir=words.folder) as where:
        folder = pathlib.Path(where)
        make(folder, scale)
        wrong, code, *measured, text = limits.run(
            folder, [words.program, "convert", "deck.inp", "-o", "model.sim"])
        if not wrong and needed and needed not in text:
            wrong = f"does not say {needed}"
        if not wrong and not needed and code != 0:
            wrong = "is not converted"
        if not wrong and code == 3 and list(folder.glob("*.tmp")):
            wrong = "leaves a temporary file"
        faults += tell(name, scale, (wrong, code, *measured, text))
        if words.commands and not wrong and (folder / "model.sim").exists():
            for what, line in commands_on(folder, words.program):
                if (folder / line[2]).exists():
                    faults += tell("  " + what, "", limits.run(folder, line))
    return faults


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--program", required=True, type=pathlib.Path)
    parser.add_argument("--size", choices=("small", "usual", "large"), default="usual")
    parser.add_argument("--only", nargs="+", help="the names of some decks")
    parser.add_argument("--memory", type=float, default=8, help="GB that the program may take")
    parser.add_argument("--seconds", type=float, default=300, help="for each run")
    parser.add_argument("--commands", action="store_true", help="every command on each model")
    parser.add_argument("--folder", help="where the decks go for the moment")
    parser.add_argument("--show", action="store_true", help="what the program says")
    words = parser.parse_args()
    words.program = words.program.resolve()
    size = ("small", "usual", "large").index(words.size)
    faults = 0
    print(f"{'deck':22}{'how many':>14}{'seconds':>9}{'CPU':>9}{'MB':>7}{'exit':>5}")
    for case in CASES:
        name, make, scales, needed = case if len(case) == 4 else (case[0].__name__, *case)
        if not words.only or name in words.only:
            faults += try_deck(words, name, make, scales[size], needed)
    print(f"{faults} faults" if faults else "every deck got its answer")
    sys.exit(1 if faults else 0)


if __name__ == "__main__":
    main()
