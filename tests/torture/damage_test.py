#!/usr/bin/env python3
"""Flips random bytes in copies of models and has every reading command look at them.

A command must end with an answer or with one clear line that names the file: never by a signal,
never with an internal error, never late. An answer must be the one that the sound model gets, word
for word: every page has a checksum, so damage is either where nobody reads or refused."""
import argparse
import collections
import pathlib
import random
import subprocess
import sys
import tempfile

PATIENCE = 60  # seconds for one command; a whole model takes a few hundredths
FAULTS_FOUND = {"check": 1, "diff": 1}  # by these, as an exit code of their own


def commands(model, deck):
    yield "info", [model]
    yield "dump", [model]
    yield "write", [model, "-o", deck, "--force"]
    yield "check", [model]


PAGE = 16384


def torn(data, moments):
    """What a copy that stopped, or a file system that lost blocks, leaves."""
    pages = [data[at:at + PAGE] for at in range(0, len(data), PAGE)]
    a, b = moments.randrange(len(pages)), moments.randrange(len(pages))
    way = moments.randrange(4)
    if way == 0:
        return data[:moments.randrange(len(data))]
    if way == 1:
        pages[a] = bytes(len(pages[a]))
    elif way == 2:
        pages[a], pages[b] = pages[b], pages[a]
    else:
        pages[a] = pages[a][:moments.randrange(PAGE)].ljust(PAGE, b"\0")
    return b"".join(pages)


def damage(data, moments):
    """One to sixteen bytes changed: anywhere, or where the file is not empty, or close together; of
    eight copies one is torn."""
    if moments.randrange(8) == 0:
        return torn(data, moments)
    changed = bytearray(data)
    way = moments.randrange(3)
    start = moments.randrange(len(data))
    for _ in range(2 ** moments.randrange(5)):
        at = moments.randrange(len(data))
        if way == 1:
            while data[at] == 0:
                at = moments.randrange(len(data))
        elif way == 2:
            at = (start + moments.randrange(64)) % len(data)
        changed[at] ^= 1 << moments.randrange(8) if moments.random() < 0.5 else moments.randint(1, 255)
    return bytes(changed)


def complaint(command, code, errors, copy):
    """What is wrong with how a command ended, or None."""
    last = errors.strip().splitlines()[-1] if errors.strip() else ""
    if code not in (0, 3, FAULTS_FOUND.get(command)):
        return f"exit {code}: {errors[-300:]}"
    if "internal error" in errors:
        return last
    if code == 3 and f'"{copy}"' not in last:
        return f"no clear refusal: {last!r}"
    return None


class Test:
    def __init__(self, program, folder):
        self.program, self.folder = program, folder
        self.copied = folder / "copy.sim"
        self.faults, self.ends, self.answers = [], collections.Counter(), {}

    def convert(self, deck):
        model = self.folder / f"{deck.stem}.sim"
        subprocess.run([self.program, "convert", deck, "-o", model, "--quiet"], check=True,
                       stdout=subprocess.DEVNULL)
        # Under the same name as its copies, for answers tell it.
        self.copied.write_bytes(model.read_bytes())
        written = self.folder / "written.inp"
        for command, words in commands(self.copied, written):
            code, said, errors = self.run([command, *words])
            if code != 0:
                raise SystemExit(f"{command} of the sound model ended with {code}: {errors}")
            self.answers[model, command] = said
            if command == "write":
                self.answers[model, "written"] = written.read_bytes()
        return model

    def run(self, words):
        """(exit code or None, what was said, errors)"""
        try:
            done = subprocess.run([self.program, *words], stdout=subprocess.PIPE,
                                  stderr=subprocess.PIPE, timeout=PATIENCE)
        except subprocess.TimeoutExpired:
            return None, b"", f"no end after {PATIENCE} s"
        return done.returncode, done.stdout, done.stderr.decode(errors="replace")

    def look_at(self, name, original):
        written = self.folder / "written.inp"
        for command, words in commands(self.copied, written):
            code, said, errors = self.run([command, *words])
            self.ends[command, code] += 1
            wrong = complaint(command, code, errors, self.copied)
            if code == 0 and said != self.answers[original, command]:
                wrong = "another answer than the sound model's"
            if code == 0 and command == "write" and (
                    written.read_bytes() != self.answers[original, "written"]):
                wrong = "another deck than the sound model's"
            if wrong:
                self.faults.append(f"{name}: {command}: {wrong}")
        code, _, errors = self.run(["diff", original, self.copied])
        self.ends["diff", code] += 1
        if wrong := complaint("diff", code, errors, self.copied):
            self.faults.append(f"{name}: diff: {wrong}")
        if code == 1:
            self.faults.append(f"{name}: diff: reads a model that is not the sound one")

    def copy(self, number, original, seed, keep):
        self.copied.write_bytes(damage(original.read_bytes(), random.Random(f"{seed} {number}")))
        before = len(self.faults)
        self.look_at(f"copy {number} of {original.stem}", original)
        if keep and len(self.faults) > before:
            keep.mkdir(parents=True, exist_ok=True)
            self.copied.rename(keep / f"{original.stem}-{seed}-{number}.sim")
        for journal in self.folder.glob("copy.sim-*"):
            journal.unlink()


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--program", required=True)
    parser.add_argument("--copies", type=int, default=200)
    parser.add_argument("--seed", type=int, default=random.randrange(10 ** 6))
    parser.add_argument("--keep", type=pathlib.Path, help="a folder for the copies with faults")
    parser.add_argument("decks", type=pathlib.Path, nargs="+")
    words = parser.parse_args()
    with tempfile.TemporaryDirectory(prefix="inps-damage-") as folder:
        test = Test(words.program, pathlib.Path(folder))
        models = [test.convert(deck) for deck in words.decks]
        print(f"{words.copies} copies of {len(models)} models, seed {words.seed}")
        for number in range(words.copies):
            test.copy(number, models[number % len(models)], words.seed, words.keep)
    for (command, code), count in sorted(test.ends.items(), key=str):
        print(f"{command:6} ended {count} times with {code}")
    for fault in test.faults:
        print(fault)
    print(f"{len(test.faults)} faults" if test.faults else "every damage got an answer or a refusal")
    sys.exit(1 if test.faults else 0)


if __name__ == "__main__":
    main()
