#!/usr/bin/env python3
"""Flips random bytes in copies of models and has every reading command look at them.

A command must end with an answer or with one clear line that names the file: never by a signal,
never with an internal error, never late. What `check` calls sound must hold every bulk array as it
was: arrays have checksums. Values in records have none; how often such a change passes is told."""
import argparse
import collections
import contextlib
import pathlib
import random
import sqlite3
import subprocess
import sys
import tempfile

PATIENCE = 60  # seconds for one command; a whole model takes a few hundredths
CLEAR_EXITS = {0, 1, 3}


def commands(copy, original, deck):
    yield "info", [copy]
    yield "dump", [copy]
    yield "write", [copy, "-o", deck, "--force"]
    yield "diff", [original, copy]
    yield "check", [copy]


def damage(data, moments):
    """One to sixteen bytes changed: anywhere, or where the file is not empty, or close together."""
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


def chunks(model):
    """The bytes of all bulk arrays as the engine reads them."""
    with contextlib.closing(sqlite3.connect(f"file:{model}?mode=ro", uri=True)) as database:
        return database.execute("SELECT array, number, data FROM chunk ORDER BY id").fetchall()


def complaint(code, errors, copy):
    """What is wrong with how a command ended, or None."""
    last = errors.strip().splitlines()[-1] if errors.strip() else ""
    if code not in CLEAR_EXITS:
        return f"exit {code}: {errors[-300:]}"
    if "internal error" in errors:
        return last
    if code == 3 and f'"{copy}"' not in last:
        return f"no clear refusal: {last!r}"
    return None


class Test:
    def __init__(self, program, folder):
        self.program, self.folder = program, folder
        self.faults, self.ends, self.passed = [], collections.Counter(), 0

    def convert(self, deck):
        model = self.folder / f"{deck.stem}.sim"
        subprocess.run([self.program, "convert", deck, "-o", model, "--quiet"], check=True,
                       stdout=subprocess.DEVNULL)
        return model

    def run(self, words):
        try:
            done = subprocess.run([self.program, *words], stdout=subprocess.DEVNULL,
                                  stderr=subprocess.PIPE, timeout=PATIENCE)
        except subprocess.TimeoutExpired:
            return None, f"no end after {PATIENCE} s"
        return done.returncode, done.stderr.decode(errors="replace")

    def look_at(self, name, copy, original):
        ends = {}
        for command, words in commands(copy, original, self.folder / "written.inp"):
            code, errors = self.run([command, *words])
            ends[command] = code
            self.ends[command, code] += 1
            if wrong := complaint(code, errors, copy):
                self.faults.append(f"{name}: {command}: {wrong}")
        if ends["check"] != 0 or ends["diff"] == 0:
            return
        self.passed += 1
        if chunks(copy) != chunks(original):
            self.faults.append(f"{name}: a bulk array differs and check does not see it")

    def copy(self, number, original, seed, keep):
        copy = self.folder / "copy.sim"
        copy.write_bytes(damage(original.read_bytes(), random.Random(f"{seed} {number}")))
        before = len(self.faults)
        self.look_at(f"copy {number} of {original.stem}", copy, original)
        if keep and len(self.faults) > before:
            keep.mkdir(parents=True, exist_ok=True)
            copy.rename(keep / f"{original.stem}-{seed}-{number}.sim")
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
    print(f"{test.passed} copies differ from the original and check finds them sound: values in "
          "records, which have no checksum")
    for fault in test.faults:
        print(fault)
    print(f"{len(test.faults)} faults" if test.faults else "every damage got an answer or a refusal")
    sys.exit(1 if test.faults else 0)


if __name__ == "__main__":
    main()
