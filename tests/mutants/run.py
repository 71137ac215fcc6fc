#!/usr/bin/env python3
"""Makes small faults in the product's own code and lists those that no test notices
(docs/reliability.md). Exit code: 0 all were noticed, 1 some were not, 3 the tool could not work."""
import argparse
import fcntl
import json
import os
import signal
import subprocess
import sys
import time

sys.dont_write_bytecode = True
import equivalents
import rewrites
import source
from workshop import Trouble, Workshop


def show(mutant, out=sys.stdout):
    print(f"{mutant.path}:{mutant.line}  {mutant.rule}\n  - {mutant.before}\n  + {mutant.after}",
          file=out, flush=True)


def wanted(arguments, texts, table, last):
    """The mutants in the order in which they are tried, without those declared to be no faults."""
    declared = {(row["file"], row["before"], row["after"]) for row in table}
    drawn = rewrites.draw(texts, arguments.seed)
    if arguments.again:
        if not os.path.exists(last):
            raise Trouble("no run has left survivors to try again")
        with open(last, encoding="utf-8") as file:
            again = {tuple(one) for one in json.load(file)}
        drawn = [one for one in drawn if (one.path, one.before, one.after) in again]
    return [one for one in drawn if (one.path, one.before, one.after) not in declared
            and one.path.startswith(arguments.only)]


def run(arguments, workshop, texts, mutants, last):
    """Tries mutants until so many were built; returns the survivors, their number and the others'."""
    survivors, tried, drawn_again = [], 0, {"compiler": 0, "same": 0}
    for mutant in mutants:
        if tried == arguments.number:
            break
        start = time.monotonic()
        result = workshop.try_mutant(mutant, texts[mutant.path])
        if result in drawn_again:
            drawn_again[result] += 1
            continue
        tried += 1
        print(f"{tried}/{arguments.number} {time.monotonic() - start:.0f} s "
              + (f"noticed by {result}" if result else "SURVIVED"), end="  ", file=sys.stderr)
        show(mutant, sys.stderr)
        if not result:
            survivors.append(mutant)
        with open(last, "w", encoding="utf-8") as file:  # whoever stops the run keeps what it found
            json.dump([(one.path, one.before, one.after) for one in survivors], file)
    return survivors, tried, drawn_again


def main():
    parser = argparse.ArgumentParser(prog="inps mutants")
    parser.add_argument("--root", required=True, help="of the sources, which are only read")
    parser.add_argument("number", nargs="?", type=int, default=20, help="of mutants (20)")
    parser.add_argument("seed", nargs="?", type=int, default=1, help="what is drawn (1)")
    parser.add_argument("--only", default="", metavar="PATH", help="faults below PATH alone")
    parser.add_argument("--again", action="store_true", help="what survived the last run")
    parser.add_argument("--quick", action="store_true", help="without the tests that take long")
    parser.add_argument("--list", action="store_true", help="show what would be tried, try nothing")
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    arguments = parser.parse_args()

    place = os.path.join(arguments.root, "build", "mutants")
    last = os.path.join(place, "survivors.json")
    texts = {path: source.read(arguments.root, path) for path in source.files(arguments.root)}
    table = equivalents.rows()
    stale = equivalents.unmatched(table, texts)
    for row in stale:
        print(f"equivalent.txt: nothing in {row['file']} can be changed like this any more:\n"
              f"  - {row['before']}\n  + {row['after']}", file=sys.stderr)
    mutants = wanted(arguments, texts, table, last)
    if arguments.list:
        for mutant in mutants[:arguments.number]:
            show(mutant)
        return 3 if stale else 0

    os.makedirs(place, exist_ok=True)
    lock = open(os.path.join(place, "lock"), "w", encoding="utf-8")  # held until the end
    try:
        fcntl.flock(lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
    except OSError:
        raise Trouble("another run works in build/mutants") from None
    workshop = Workshop(arguments.root, place, arguments.jobs, arguments.quick)
    workshop.prepare()
    survivors, tried, drawn_again = run(arguments, workshop, texts, mutants, last)
    for mutant in sorted(survivors, key=lambda one: (one.path, one.line, one.start)):
        show(mutant)
    print(f"{tried} mutants, {tried - len(survivors)} noticed, {len(survivors)} survived; drawn "
          f"again: {drawn_again['compiler']} that do not compile, {drawn_again['same']} that give "
          f"the same program")
    return 3 if stale else 1 if survivors else 0


if __name__ == "__main__":
    for request in (signal.SIGINT, signal.SIGTERM):  # also when started in the background
        signal.signal(request, signal.default_int_handler)
    try:
        sys.exit(main())
    except (Trouble, ValueError, OSError, subprocess.SubprocessError) as trouble:
        print(f"inps mutants: {trouble}", file=sys.stderr)
        sys.exit(3)
    except KeyboardInterrupt:
        sys.exit(130)
