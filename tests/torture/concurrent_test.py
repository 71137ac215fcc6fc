#!/usr/bin/env python3
"""Several processes on one model file: who converts into it, who reads it meanwhile.

Of conversions into the same new file at once one wins and the others say that the file exists or is
taken; with --force each of them either wins or says so. Whatever is left is one of the models,
whole, and no temporary file stays. Of those who write one deck under one name one wins as well. A reader beside a conversion sees no model, the old one or the
new one, or says why it cannot read."""
import argparse
import pathlib
import subprocess
import sys
import tempfile

NODES = (20_000, 20_001, 20_002, 20_003)


def write_deck(path, nodes):
    path.write_text("*NODE, NSET=ALL\n" + "".join(f"{n}, {n}.5, 0.25, 1.\n"
                                                  for n in range(1, nodes + 1)), encoding="ascii")


def start(program, *words):
    return subprocess.Popen([program, *map(str, words)], stdout=subprocess.PIPE,
                            stderr=subprocess.PIPE, text=True)


def ended(process):
    out, err = process.communicate(timeout=120)
    return process.returncode, out + err


def nodes_in(program, model):
    """The nodes of a model that passes the check, or what is wrong with it."""
    code, text = ended(start(program, "check", model))
    if code != 0:
        return f"check: {text[-300:]}"
    code, text = ended(start(program, "info", model))
    return next((n for n in NODES if f"\n{n} nodes" in text), f"info: {text[-300:]}")


def left_over(folder):
    return [path.name for path in folder.iterdir()
            if path.suffix != ".inp" and path.name != "model.sim"]


def race(program, folder, forced):
    """Four conversions at once, some of them by force; the faults and how many of them won."""
    model = folder / "model.sim"
    runs = [start(program, "convert", folder / f"deck{i}.inp", "-o", model, "--quiet",
                  *(["--force"] if i in forced else [])) for i in range(len(NODES))]
    answers = [ended(run) for run in runs]
    faults = [f"ends with {code}: {text[-300:]}" for code, text in answers
              if code < 0 or "internal error" in text or (code != 0 and "model.sim" not in text)]
    winners = [NODES[i] for i, (code, _) in enumerate(answers) if code == 0]
    if not winners or (not forced and len(winners) != 1):
        faults.append(f"{len(winners)} winners: {answers}")
    found = nodes_in(program, model)
    if found not in winners:
        faults.append(f"the model has {found}, the winners {winners}")
    return faults + [f"{name} is left" for name in left_over(folder)], len(winners)


def race_to_add(program, folder):
    """Four restarts that replace their one base: what a winner added is there in the end."""
    model = folder / "model.sim"
    decks = [folder / f"more{i}.inp" for i in range(4)]
    for i, deck in enumerate(decks):
        deck.write_text(f"*DESIGN PARAMETER\nADDED{i}\n", encoding="ascii")
    answers = [ended(run) for run in [start(program, "convert", deck, "--restart", model, "--force",
                                            "--quiet") for deck in decks]]
    faults = [f"a restart ends with {code}: {text[-300:]}" for code, text in answers
              if code not in (0, 3) or (code == 3 and "model.sim" not in text)]
    written = ended(start(program, "write", model))[1]
    for i, (code, _) in enumerate(answers):
        if (code == 0) != (f"ADDED{i}" in written):
            faults.append(f"restart {i} ends with {code}, and what it adds is "
                          f"{'' if f'ADDED{i}' in written else 'not '}there")
    if all(code != 0 for code, _ in answers):
        faults.append("no restart wins")
    return faults + [f"{name} is left" for name in left_over(folder)]


def race_to_print(program, folder):
    """Four decks from one model under one name, of which one is the first and whole."""
    out, alone = folder / "out.txt", folder / "alone.txt"
    ended(start(program, "write", folder / "model.sim", "-o", alone, "--force"))
    answers = [ended(run) for run in [start(program, "write", folder / "model.sim", "-o", out)
                                      for _ in range(4)]]
    faults = [f"write ends with {code}: {text[-300:]}" for code, text in answers
              if code not in (0, 3) or (code == 3 and "out.txt" not in text)]
    if sum(code == 0 for code, _ in answers) != 1:
        faults.append(f"of four that write one deck not one wins: {answers}")
    if out.read_bytes() != alone.read_bytes():
        faults.append("the deck that won is not whole")
    out.unlink()
    alone.unlink()
    return faults + [f"{name} is left" for name in left_over(folder)]


def read_beside(program, folder, force):
    """Readers while a model is made, or replaced; the faults and how many got an answer."""
    model = folder / "model.sim"
    if not force:
        model.unlink()
    words = ["--force"] if force else []
    writer = start(program, "convert", folder / "deck0.inp", "-o", model, "--quiet", *words)
    faults, answered = [], 0
    while writer.poll() is None:
        code, text = ended(start(program, "info", model))
        answered += code == 0
        if code < 0 or "internal error" in text or (code != 0 and "model.sim" not in text):
            faults.append(f"a reader ends with {code}: {text[-300:]}")
        unfinished = not force and "not finished" in text
        if code == 0 and not unfinished and not any(f"\n{n} nodes" in text for n in NODES):
            faults.append(f"a reader sees a part of a model: {text[-300:]}")
    code, text = ended(writer)
    if code != 0:
        faults.append(f"beside readers the conversion ends with {code}: {text[-300:]}")
    elif nodes_in(program, model) != NODES[0]:
        faults.append("the model beside readers is not that of its deck")
    return faults, answered


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--program", required=True)
    parser.add_argument("--rounds", type=int, default=100)
    words = parser.parse_args()
    faults, winners, answered = [], 0, 0
    with tempfile.TemporaryDirectory(prefix="inps-concurrent-") as name:
        folder = pathlib.Path(name)
        for i, nodes in enumerate(NODES):
            write_deck(folder / f"deck{i}.inp", nodes)
        for number in range(words.rounds):
            (folder / "model.sim").unlink(missing_ok=True)
            faults += [f"round {number}: {fault}" for fault in race(words.program, folder, ())[0]]
            found, count = race(words.program, folder, range(len(NODES)))
            faults += [f"round {number}, by force: {fault}" for fault in found]
            winners += count
            (folder / "model.sim").unlink()
            faults += [f"round {number}, some by force: {fault}"
                       for fault in race(words.program, folder, (1, 3))[0]]
            faults += [f"round {number}: {fault}" for fault in race_to_add(words.program, folder)]
            faults += [f"round {number}: {fault}" for fault in
                       race_to_print(words.program, folder)]
            for force in False, True:
                found, count = read_beside(words.program, folder, force)
                faults += [f"round {number}: {fault}" for fault in found]
                answered += count
    for fault in faults[:20]:
        print(fault)
    print(f"{words.rounds} rounds of four conversions: one winner each, by force "
          f"{winners / max(words.rounds, 1):.1f}; {answered} readers answered meanwhile; "
          f"{len(faults)} faults")
    sys.exit(1 if faults else 0)


if __name__ == "__main__":
    main()
