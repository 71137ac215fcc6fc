#!/usr/bin/env python3
"""Kills `inps convert` with SIGKILL at random moments and looks at the files that are left: of a
fresh model, of one that replaces an older one by --force, and of --restart into a new model and into
the place of its base. Then it interrupts commands as the keyboard does.

An older model must be the old one or the whole new one, and the base of a restart what it was; a
restart's target is absent or whole. Of a fresh model:

The file must be absent, or open, pass the engine's integrity check, be read by the program from
end to end, and hold whole keywords only: the deck's first ones, in its order, none left out."""
import argparse
import collections
import contextlib
import os
import pathlib
import random
import shutil
import signal
import sqlite3
import statistics
import subprocess
import sys
import tempfile
import time

SIDE = 60  # nodes along an edge of the cube
SETS = 3000  # small keywords that are modelled
TEXTS = 3000  # small keywords that are kept as they stand


def set_members(number):
    """Twelve labels that tell the set's number."""
    return [1 + (number * 37 + 1009 * i) % SIDE ** 3 for i in range(12)]


def write_deck(path):
    lines = ["*HEADING", "A cube and many small keywords", "*NODE"]
    lines += [f"{1 + i + SIDE * (j + SIDE * k)}, {i}.25, {j}.5, {k}.125"
              for k in range(SIDE) for j in range(SIDE) for i in range(SIDE)]
    lines.append("*ELEMENT, TYPE=C3D8, ELSET=CUBE")
    label = 0
    for k in range(SIDE - 1):
        for j in range(SIDE - 1):
            for i in range(SIDE - 1):
                label += 1
                a = 1 + i + SIDE * (j + SIDE * k)
                ring = (a, a + 1, a + 1 + SIDE, a + SIDE)
                nodes = ring + tuple(n + SIDE * SIDE for n in ring)
                lines.append(f"{label}, " + ", ".join(map(str, nodes)))
    for number in range(1, SETS + 1):
        lines += [f"*NSET, NSET=SET{number}, UNSORTED", ", ".join(map(str, set_members(number)))]
    for number in range(1, TEXTS + 1):
        lines += ["*DESIGN PARAMETER", f"FIRST{number}, SECOND{number}"]
    path.write_text("\n".join(lines) + "\n")


def start(program, deck, model, *options):
    return subprocess.Popen([program, "convert", deck, "-o", model, "--quiet", *options],
                            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def calibrate(program, deck, model, *options):
    """Seconds of a whole conversion, the model left in place."""
    times = []
    for _ in range(3):
        model.unlink(missing_ok=True)
        begin = time.perf_counter()
        code = start(program, deck, model, *options).wait()
        times.append(time.perf_counter() - begin)
        if code != 0 or not model.exists():
            raise SystemExit(f"a whole conversion failed with {code}")
    return statistics.median(times)


def blocks_of(text, keyword):
    """(keyword line, data lines) of every such keyword of a written deck."""
    blocks, data = [], None
    for line in text.splitlines():
        if line.startswith("*") and not line.startswith("**"):
            data = [] if line.upper().startswith(keyword) else None
            if data is not None:
                blocks.append((line, data))
        elif data is not None and not line.startswith("**"):
            data.append(line)
    return blocks


def sets_kept(text):
    """How many of the deck's sets the written deck has; complains of any but the first ones."""
    kept = 0
    for line, data in blocks_of(text, "*NSET"):
        name = line.upper().split("NSET=")[1].split(",")[0].strip('" ')
        members = [int(field) for row in data for field in row.split(",") if field.strip()]
        kept += 1
        if name != f"SET{kept}":
            return f"the set behind SET{kept - 1} is {name}"
        if members != set_members(kept):
            return f"{name} does not have its members"
    return kept


def texts_kept(text):
    kept = 0
    for _, data in blocks_of(text, "*DESIGN PARAMETER"):
        kept += 1
        if [row.replace(" ", "") for row in data] != [f"FIRST{kept},SECOND{kept}"]:
            return f"in place of text {kept} stands {data}"
    return kept


def read_by_engine(model):
    with contextlib.closing(sqlite3.connect(model)) as database:
        answer = database.execute("PRAGMA integrity_check").fetchall()
    return None if answer == [("ok",)] else f"integrity check: {answer[:3]}"


def read_by_program(program, model, deck):
    for words in (["info", model], ["dump", model], ["write", model, "-o", deck]):
        done = subprocess.run([program, *words], stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
        if done.returncode != 0:
            return (f"inps {words[0]} ended with {done.returncode}: "
                    f"{done.stderr.decode(errors='replace')[-500:]}")
    return None


def fault_in(program, model, folder):
    """What is wrong with the model, or the numbers of keywords that it holds."""
    deck = folder / "written.inp"
    deck.unlink(missing_ok=True)
    fault = read_by_engine(model) or read_by_program(program, model, deck)
    if fault:
        return fault, None
    text = deck.read_text(errors="replace")
    counts = sets_kept(text), texts_kept(text)
    wrong = next((count for count in counts if isinstance(count, str)), None)
    if wrong is None and counts[1] > 0 and counts[0] < SETS:
        wrong = f"{counts[1]} texts are there before all sets are: {counts[0]}"
    return wrong, counts


def clean(folder, *kept):
    for path in folder.iterdir():
        if path.is_dir():
            shutil.rmtree(path)
        elif path not in kept:
            path.unlink()


def kill(moment, process):
    time.sleep(moment)
    process.send_signal(signal.SIGKILL)
    process.wait()


def written(program, model, deck):
    """The model as a deck, or what is wrong with it (and None)."""
    fault = read_by_engine(model) or read_by_program(program, model, deck)
    return (None, fault) if fault else (deck.read_text(errors="replace"), None)


def fault_of_replaced(program, model, old, wanted, deck, counts):
    """What is wrong with a model that is neither the old one nor the whole new one; counts both."""
    if model.exists() and model.read_bytes() == old.read_bytes():
        counts[0] += 1
        return None
    counts[1] += 1
    text, fault = written(program, model, deck)
    return fault or (None if text == wanted else "another model")


def torture_replacing(words, folder):
    """The model is an old one or the new one, at any moment."""
    deck, old, model = folder / "deck.inp", folder / "old.sim", folder / "model.sim"
    small, new = folder / "small.inp", folder / "written.inp"
    write_deck(deck)
    small.write_text("*NODE\n1, 0., 0., 0.\n")
    calibrate(words.program, small, old)
    whole = calibrate(words.program, deck, model)
    wanted, fault = written(words.program, model, new)
    if fault:
        return [f"the whole model: {fault}"]
    moments = random.Random(words.seed + 1)
    faults, counts = [], [0, 0]
    for number in range(words.kills):
        clean(folder, deck, old)
        model.write_bytes(old.read_bytes())
        moment = moments.uniform(0, 1.05 * whole)
        kill(moment, start(words.program, deck, model, "--force"))
        fault = fault_of_replaced(words.program, model, old, wanted, new, counts)
        if fault:
            faults.append(f"replacing, kill {number} after {moment:.4f} s: {fault}")
    print(f"replacing: the old model {counts[0]} times, the whole new one {counts[1]} times")
    return faults


def torture_restart(words, folder):
    """The base stays what it was to the byte; the target is absent or whole."""
    deck, base, model = folder / "deck.inp", folder / "base.sim", folder / "model.sim"
    more, new = folder / "more.inp", folder / "written.inp"
    write_deck(deck)
    more.write_text("".join(f"*DESIGN PARAMETER\nNEXT{i}, LATER{i}\n" for i in range(TEXTS)))
    calibrate(words.program, deck, base)
    bytes_of_base = base.read_bytes()
    options = ("--restart", base)
    whole = calibrate(words.program, more, model, *options)
    wanted, fault = written(words.program, model, new)
    if fault or len(blocks_of(wanted, "*DESIGN PARAMETER")) != 2 * TEXTS:
        return [f"the whole restart: {fault or 'texts are missing'}"]
    moments = random.Random(words.seed + 2)
    faults, counts = [], [0, 0]
    for number in range(words.kills):
        clean(folder, more, base)
        moment = moments.uniform(0, 1.05 * whole)
        kill(moment, start(words.program, more, model, *options))
        where = f"restart, kill {number} after {moment:.4f} s"
        if base.read_bytes() != bytes_of_base or (folder / "base.sim-journal").exists():
            return faults + [f"{where}: the base has changed"]
        counts[model.exists()] += 1
        if model.exists():
            text, fault = written(words.program, model, new)
            if fault or text != wanted:
                faults.append(f"{where}: {fault or 'another model'}")
    print(f"restart: no file {counts[0]} times, the whole model {counts[1]} times; "
          "the base as it was each time")
    return faults


def torture_restart_in_place(words, folder):
    """--force puts the new model in the place of its own base: it is the old one or the new one."""
    deck, base, saved = folder / "deck.inp", folder / "base.sim", folder / "saved.sim"
    more, model, new = folder / "more.inp", folder / "model.sim", folder / "written.inp"
    write_deck(deck)
    more.write_text("".join(f"*DESIGN PARAMETER\nNEXT{i}, LATER{i}\n" for i in range(TEXTS)))
    calibrate(words.program, deck, base)
    saved.write_bytes(base.read_bytes())
    whole = calibrate(words.program, more, model, "--restart", base)
    wanted, fault = written(words.program, model, new)
    if fault:
        return [f"the whole restart: {fault}"]
    moments = random.Random(words.seed + 3)
    faults, counts = [], [0, 0]
    for number in range(words.kills):
        clean(folder, more, saved)
        base.write_bytes(saved.read_bytes())
        moment = moments.uniform(0, 1.05 * whole)
        kill(moment, start(words.program, more, base, "--force", "--restart", base))
        fault = fault_of_replaced(words.program, base, saved, wanted, new, counts)
        if fault:
            faults.append(f"restart in place, kill {number} after {moment:.4f} s: {fault}")
    print(f"restart in place: the old model {counts[0]} times, the new one {counts[1]} times")
    return faults


def end_of_waiting(words, folder):
    """A deck that never comes."""
    deck = folder / "pipe.inp"
    os.mkfifo(deck)
    process = start(words.program, deck, folder / "model.sim")
    try:
        process.wait(0.5)
    except subprocess.TimeoutExpired:
        process.send_signal(signal.SIGTERM)
    try:
        code = process.wait(5)
    except subprocess.TimeoutExpired:
        process.kill()
        code = "no end"
    # Before the program has got to listening, the system ends it.
    return [] if code in (130, -signal.SIGTERM) else [f"waiting for a pipe, asked to end: {code}"]


def heed_the_keyboard():
    signal.signal(signal.SIGINT, signal.SIG_DFL)


def torture_asked(words, folder):
    """Ctrl-C: the program ends by itself soon, and takes what is half done with it."""
    deck, base, more = folder / "deck.inp", folder / "base.sim", folder / "more.inp"
    write_deck(deck)
    more.write_text("".join(f"*DESIGN PARAMETER\nNEXT{i}, LATER{i}\n" for i in range(TEXTS)))
    whole = calibrate(words.program, deck, base)
    old = folder / "old.sim"
    old.write_bytes(b"whatever")
    commands = [["convert", deck, "-o", old, "--force"],
                ["convert", deck, "-o", folder / "fresh.sim"],
                ["convert", more, "--restart", base, "-o", folder / "model.sim"],
                ["write", base, "-o", folder / "written.inp"],
                ["export", base, folder / "mesh.vtu", "--sets"],
                ["info", base], ["dump", base]]
    moments = random.Random(words.seed + 4)
    faults, ends = end_of_waiting(words, folder), collections.Counter()
    for number in range(words.kills):
        clean(folder, deck, base, more, old)
        old.write_bytes(b"whatever")
        command = commands[number % len(commands)]
        # A shell in the background has its children ignore the keyboard, and so do theirs.
        process = subprocess.Popen([words.program, *command], stdout=subprocess.DEVNULL,
                                   stderr=subprocess.PIPE, preexec_fn=heed_the_keyboard)
        time.sleep(moments.uniform(0.02, whole))
        process.send_signal(signal.SIGINT)
        asked = time.perf_counter()
        said = process.communicate()[1].decode(errors="replace")
        late = time.perf_counter() - asked > 10  # a busy machine; at once, otherwise
        ends[process.returncode] += 1
        where = f"{command[0]}, asked to end, number {number}"
        # Before the program has got to listening, the system ends it.
        if process.returncode not in (0, 130, -signal.SIGINT) or late:
            faults.append(f"{where}: ends with {process.returncode}{', late' * late}: {said}")
        if process.returncode == 130 and "interrupted" not in said:
            faults.append(f"{where}: says nothing of it: {said}")
        left = {path for path in folder.iterdir()} - {deck, base, more, old}
        if process.returncode == 130 and old.read_bytes() != b"whatever":
            faults.append(f"{where}: the old model is gone")
        if process.returncode == 130 and left:
            faults.append(f"{where}: leaves {', '.join(path.name for path in left)}")
    if words.kills and not ends[130]:
        faults.append("nobody heard that he was asked to end")
    print("asked to end: " + ", ".join(f"{count} times {code}" for code, count in ends.items()))
    return faults


def fault_of_next(words, folder, deck, model, number):
    """A conversion where another was killed, by force or after its model was removed."""
    again = folder / "again.sim"
    kill(random.Random(number).uniform(0, 0.1), start(words.program, deck, again))
    if number % 2 and again.exists():
        again.unlink()
    elif not again.exists():
        return None
    code = start(words.program, deck, again, *([] if number % 2 else ["--force"])).wait()
    left = [path.name for path in folder.iterdir() if path.name == "again.sim-journal"]
    fault, counts = fault_in(words.program, again, folder)
    if code != 0 or left or fault or counts != (SETS, TEXTS):
        return f"ends with {code}, {fault or counts}, {left or 'no journal'}"
    return None


def torture_fresh(words, folder):
    deck, model = folder / "deck.inp", folder / "model.sim"
    write_deck(deck)
    whole = calibrate(words.program, deck, model)
    fault, counts = fault_in(words.program, model, folder)
    if fault or counts != (SETS, TEXTS):
        return [f"the whole model: {fault or counts}"]
    print(f"a whole conversion takes {whole:.3f} s; {words.kills} kills, seed {words.seed}")
    moments = random.Random(words.seed)
    faults, absent, partial, complete = [], 0, 0, 0
    for number in range(words.kills):
        clean(folder, deck)
        moment = moments.uniform(0, 1.05 * whole)
        kill(moment, start(words.program, deck, model))
        if not model.exists():
            absent += 1
            continue
        fault, counts = fault_in(words.program, model, folder)
        if fault:
            faults.append(f"kill {number} after {moment:.4f} s: {fault}")
        complete += counts == (SETS, TEXTS)
        partial += counts != (SETS, TEXTS)
        fault = fault_of_next(words, folder, deck, model, number)
        if fault:
            faults.append(f"kill {number} after {moment:.4f} s, the next conversion: {fault}")
    print(f"no file {absent} times, a part of the model {partial} times, all of it {complete} times")
    return faults


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--program", required=True)
    parser.add_argument("--kills", type=int, default=200)
    parser.add_argument("--seed", type=int, default=random.randrange(10 ** 6))
    words = parser.parse_args()
    faults = []
    for torture in (torture_fresh, torture_replacing, torture_restart, torture_restart_in_place,
                    torture_asked):
        with tempfile.TemporaryDirectory(prefix="inps-torture-") as folder:
            faults += torture(words, pathlib.Path(folder))
    for fault in faults:
        print(fault)
    print(f"{len(faults)} faults" if faults else "every file left behind was sound")
    sys.exit(1 if faults else 0)


if __name__ == "__main__":
    main()
