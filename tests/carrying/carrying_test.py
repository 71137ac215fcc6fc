#!/usr/bin/env python3
"""What is in force in each step: the database against a plain model of the rules (rules.py), on the
decks of docs/carrying.md, whose tables were made by hand, and on decks made by chance.

--decks N, --seed S (the first deck's; each has one of its own), --keep FOLDER (decks that fail)."""
import argparse
import collections
import concurrent.futures
import functools
import json
import os
import pathlib
import random
import re
import subprocess
import sys
import tempfile

import decks
import database
import rules

ROOT = pathlib.Path(__file__).resolve().parents[2]
MESH = """*NODE
1, 0., 0., 0.
2, 1., 0., 0.
3, 1., 1., 0.
4, 0., 1., 0.
5, 0., 0., 1.
6, 1., 0., 1.
7, 1., 1., 1.
8, 0., 1., 1.
*ELEMENT, TYPE=C3D8, ELSET=BODY
1, 1, 2, 3, 4, 5, 6, 7, 8
*NSET, NSET=LEFT, GENERATE
1, 4, 1
*NSET, NSET=RIGHT, GENERATE
4, 6, 1
*AMPLITUDE, NAME=RAMP
0., 0., 1., 1.
"""
# There are steps without a procedure, perturbation steps of any, motions of any base, and a restart's
# base may have been given something twice.
NO_MATTER = ("procedure|is no linear perturbation|makes a base named|made from a deck with errors|"
             "makes no sense on elements")


def examples(page):
    """Of each deck of the page what its table says: (step, keyword, degree, on, value, how)."""
    for deck, table in re.findall(r"```\n(\*.*?)```\n\n(\|.*?)\n\n", page, re.S):
        wanted = collections.Counter()
        for line in table.splitlines()[2:]:
            step, keyword, degrees, targets, value, how = (
                cell.strip() for cell in line.strip("|").split("|"))
            for degree in degrees.split() or [""]:
                for target in targets.split():
                    wanted[int(step), keyword, degree, target, float(value or 0), how] += 1
        yield MESH + deck, wanted


def in_words(facts, twice):
    """Facts as the tables of the page have them."""
    made = collections.Counter(
        (fact.step, fact.family, "" if fact.degree in (None, 0) else str(fact.degree),
         str(fact.target[1]) if fact.target else "all", fact.value or 0.0, fact.how)
        for fact in facts.elements())
    return made, twice


class Faults:
    def __init__(self, keep):
        self.keep = keep
        self.count = 0

    def compare(self, what, deck, found, wanted, most=12):
        """Facts and what is told of a deck, found and wanted."""
        wrong = [(fact, "missing", n) for fact, n in (wanted[0] - found[0]).items()]
        wrong += [(fact, "too much", n) for fact, n in (found[0] - wanted[0]).items()]
        wrong += [(place, "not told", 1) for place in wanted[1] - found[1]]
        wrong += [(place, "told", 1) for place in found[1] - wanted[1]]
        if not wrong:
            return
        self.count += 1
        print(f"{what}: {len(wrong)} entries differ")
        for fact, how, times in sorted(wrong, key=lambda one: one[0][0])[:most]:
            print(f"  {how}{f' {times} times' if times > 1 else ''}: {fact}")
        if self.keep:
            self.keep.mkdir(parents=True, exist_ok=True)
            (self.keep / f"{what}.inp").write_text(deck, encoding="utf-8")


def convert(program, deck, folder, name, base=None):
    """What acts by the model of a deck; (line, label) of what is told to be given twice. With a
    base, the deck goes on from what that one's model has."""
    path, model = folder / f"{name}.inp", folder / f"{name}.sim"
    path.write_text(deck, encoding="utf-8")
    words = [program, "convert", path, "-o", model, "-q", "--json"]
    if base:
        before, old = folder / f"{name}-base.inp", folder / f"{name}-base.sim"
        before.write_text(base, encoding="utf-8")
        subprocess.run([program, "convert", before, "-o", old, "-q"], capture_output=True)
        words += ["--restart", old]
    run = subprocess.run(words, capture_output=True, text=True)
    if run.returncode > 1:
        raise RuntimeError(f"{name}: exit code {run.returncode}\n{run.stderr}")
    told = set()
    for message in json.loads(run.stdout)["messages"]:
        text = message["text"]
        labels = re.fullmatch(r"Duplicate Boundary condition specified for "
                              r"(?:face \d+ element )?([-\d, ]+)\.", text)
        if labels:
            told |= {(message["line"], int(label)) for label in labels[1].split(", ")}
        elif not re.search(NO_MATTER, text):
            raise RuntimeError(f"{name}: {text}")
    found = database.facts(model)
    for one in (path, model, *((before, old) if base else ())):
        one.unlink()
    return found, told


def both(program, folder, seed):
    """A deck made by chance, what acts by the database, and what by the rules."""
    deck = decks.Maker(random.Random(seed)).text()
    wanted = rules.facts(deck)
    found = convert(program, deck, folder, f"deck-{seed}")
    if seed % 20 == 0 and found == wanted:  # its steps from one on, as a restart
        at = random.Random(seed).choice([step.start() for step in re.finditer(r"\*STEP", deck)])
        facts, _ = convert(program, deck[at:], folder, f"deck-{seed}", deck[:at])
        found = facts, found[1]
    return seed, deck, found, wanted


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--program", required=True)
    parser.add_argument("--decks", type=int, default=2000)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--keep", type=pathlib.Path)
    words = parser.parse_args()
    faults = Faults(words.keep)
    page = (ROOT / "docs/carrying.md").read_text(encoding="utf-8")
    shared = pathlib.Path("/dev/shm")  # syncing costs nothing there
    with tempfile.TemporaryDirectory(dir=shared if os.access(shared, os.W_OK) else None) as name:
        folder = pathlib.Path(name)
        shown = list(examples(page))
        if len(shown) < 5:
            raise RuntimeError("the page has lost its examples")
        for number, (deck, wanted) in enumerate(shown, 1):
            by_rules = in_words(*rules.facts(deck))
            faults.compare(f"rules-{number}", deck, by_rules, (wanted, by_rules[1]))
            found = in_words(*convert(words.program, deck, folder, f"example-{number}"))
            faults.compare(f"example-{number}", deck, found, by_rules)

        with concurrent.futures.ProcessPoolExecutor(2) as pool:
            seeds = range(words.seed, words.seed + words.decks)
            for seed, deck, found, wanted in pool.map(
                    functools.partial(both, words.program, folder), seeds, chunksize=20):
                faults.compare(f"deck-{seed}", deck, found, wanted)
    print(f"{words.decks} decks, {faults.count} that differ")
    return 1 if faults.count else 0


if __name__ == "__main__":
    sys.exit(main())
