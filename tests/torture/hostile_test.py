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


def labels_at_the_limits(folder, _):
    write(folder, [BRICK, "*NODE\n999999999, 1.\n0, 1.\n-1, 1.\n1000000000, 1.\n2147483647, 1.\n"
                   "2147483648, 1.\n9223372036854775807, 1.\n9223372036854775808, 1.\n"
                   "*NSET, NSET=A\n999999999, 1000000000, 2147483648, -2147483649\n"])


def one_line(folder, scale):
    """A data line of so many bytes."""
    with open(folder / "deck.inp", "w", encoding="ascii") as file:
        file.write(BRICK + "*NSET, NSET=A\n")
        for _ in range(scale // 1000):
            file.write("1, 2, 3, 4," * 90 + " " * 10)


def one_name(folder, scale):
    """A keyword line of so many bytes."""
    with open(folder / "deck.inp", "w", encoding="ascii") as file:
        file.write(BRICK + "*NSET, NSET=")
        for _ in range(scale // 1000):
            file.write("A" * 1000)


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


# What a deck asks for, how much of it (small, usual, on request), what has to be said.
CASES = [
    (keywords, (20_000, 1_000_000, 10_000_000), None),
    (sets, (5_000, 100_000, 1_000_000), None),
    (materials, (2_000, 100_000, 1_000_000), None),
    (deep_sets, (1_000, 10_000, 100_000), None),
    (deep_sets_backwards, (1_000, 10_000, 100_000), None),
    (circle_of_sets, (1_000, 10_000, 100_000), "S"),
    (set_of_itself, (1, 1, 1), "A"),
    (huge_instances, (300, 300, 300), "2147483647"),
    (includes, (200, 1_000, 10_000), "nclude"),
    (include_of_itself, (1, 1, 1), "nclude"),
    (instance_of_instance, (1, 1, 1), "I"),
    (instances, (300, 5_000, 100_000), None),
    (labels_by_generate, (1, 1, 1), "999999999"),
    (labels_many_times, (10, 10_000, 1_000_000), None),
    (labels_at_the_limits, (1, 1, 1), "999999999"),
    (one_line, (5_000_000, 100_000_000, 4_300_000_000), None),
    (one_name, (5_000_000, 100_000_000, 4_300_000_000), "65536"),
    (elgen, (1, 1, 1), "999999999"),
    (elgen_that_fits, (1, 1, 1), "100000000"),
    (nodes_by_nfill, (1, 1, 1), "100000000"),
    (nodes_by_ngen, (1, 1, 1), "100000000"),
    (nodes_between_sets, (1_000, 100_000, 1_000_000), "100000000"),
    (nodes_by_offset, (1, 1, 1), "999999999"),
]


def limited(memory):
    def limit():
        resource.setrlimit(resource.RLIMIT_AS, (memory, memory))
        resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    return limit


def run(program, folder, memory, seconds):
    """(what was wrong or None, exit code, seconds, megabytes at most, all that was said)"""
    said, peak = folder / "said", 0
    begin = time.perf_counter()
    with open(said, "wb") as file:
        process = subprocess.Popen([program, "convert", folder / "deck.inp", "-o",
                                    folder / "model.sim"], stdout=file, stderr=file,
                                   preexec_fn=limited(memory))
        while process.poll() is None and time.perf_counter() - begin < seconds:
            time.sleep(0.01)
            peak = peak_of(process.pid, peak)
        late = process.poll() is None
        if late:
            process.kill()
            process.wait()
    took = time.perf_counter() - begin
    text = said.read_bytes()[:4_000_000].decode(errors="replace")
    code = process.returncode
    wrong = None
    if late:
        wrong = f"does not end within {seconds} s"
    elif code not in (0, 1, 3) or "internal error" in text.lower():
        wrong = f"ends with {code}"
    elif code == 3 and "memory" not in text:
        wrong = "fails without a word of memory"
    return wrong, code, took, peak, text


def peak_of(pid, before):
    """Megabytes; the larger of the two."""
    try:
        for line in pathlib.Path(f"/proc/{pid}/status").read_text(encoding="ascii").splitlines():
            if line.startswith("VmHWM:"):
                return max(before, int(line.split()[1]) // 1024)
    except OSError:
        pass
    return before


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--program", required=True)
    parser.add_argument("--size", choices=("small", "usual", "large"), default="usual")
    parser.add_argument("--only", help="the name of one deck")
    parser.add_argument("--memory", type=float, default=8, help="address space in GB")
    parser.add_argument("--seconds", type=float, default=300, help="for each deck")
    parser.add_argument("--show", action="store_true", help="what the program says")
    words = parser.parse_args()
    size = ("small", "usual", "large").index(words.size)
    faults = 0
    print(f"{'deck':22}{'how many':>14}{'seconds':>10}{'MB':>8}{'exit':>6}")
    for make, scales, needed in CASES:
        if words.only and make.__name__ != words.only:
            continue
        with tempfile.TemporaryDirectory(prefix="inps-hostile-") as name:
            folder = pathlib.Path(name)
            make(folder, scales[size])
            wrong, code, took, peak, text = run(words.program, folder,
                                                int(words.memory * 2 ** 30), words.seconds)
        if not wrong and needed and (code == 0 or needed not in text):
            wrong = f"does not say {needed}"
        if wrong:
            faults += 1
        print(f"{make.__name__:22}{scales[size]:>14}{took:>10.2f}{peak:>8}{code:>6}"
              + (f"  FAULT: {wrong}" if wrong else ""), flush=True)
        if wrong or words.show:
            print(text[:1500])
    print(f"{faults} faults" if faults else "every deck got its answer")
    sys.exit(1 if faults else 0)


if __name__ == "__main__":
    main()
