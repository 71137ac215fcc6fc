#!/usr/bin/env python3
"""Fails every call of the system in turn and sums up what came of it (docs/reliability.md)."""
import argparse
import collections
import os
import re
import resource
import subprocess
import sys

LINE = re.compile(r"^(\d+) calls, (\d+) tried: (\d+) ended with a message, (\d+) were done all the "
                  r"same, (\d+) left a part$")
NAME = re.compile(r"^\[ RUN +\] .*/(\w+?)(File[A-Z][a-z]+|Read|Write|Sync|Open|Truncate|Delete|EngineMemory|Memory|"
                  r"Buffer|AnyMemory)(Once|FromThenOn)$")
KINDS = ["Read", "Write", "Sync", "Open", "Truncate", "Delete", "FileOpen", "FileCreate",
         "FileWrite", "FileSync", "FileRename", "FileRemove", "EngineMemory", "Memory", "Buffer",
         "AnyMemory"]


def start(program, part, parts, words):
    environment = dict(os.environ, INPS_EVERY_FAULT=f"{part}/{parts}")
    if "TMPDIR" not in environment and os.path.isdir("/dev/shm"):
        environment["TMPDIR"] = "/dev/shm"  # syncing costs nothing there
    return subprocess.Popen([program, *words], env=environment, text=True,
                            stdout=subprocess.PIPE, stderr=subprocess.STDOUT)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--program", required=True, help="test_faults")
    parser.add_argument("--processes", type=int, default=os.cpu_count())
    parser.add_argument("words", nargs="*", help="for the program, as --gtest_filter=…")
    arguments = parser.parse_args()

    running = [start(arguments.program, part, arguments.processes, arguments.words)
               for part in range(1, arguments.processes + 1)]
    sums = collections.defaultdict(lambda: [0] * 5)
    failed = False
    for number, process in enumerate(running):
        kind, once = "", True
        for line in process.stdout:
            line = line.rstrip("\n")
            if name := NAME.match(line):
                kind, once = name[2], name[3] == "Once"
            elif counts := LINE.match(line):
                values = [int(value) for value in counts.groups()]
                if number > 0 or not once:
                    values[0] = 0  # the same calls for all processes, and both ways of failing
                sums[kind] = [a + b for a, b in zip(sums[kind], values)]
            elif not line.startswith("["):
                print(line, flush=True)
        failed |= process.wait() != 0
    print("| What fails | Calls | Failed in turn | Ended with a message | Done all the same | Left a part |")
    print("|---|---|---|---|---|---|")
    for kind in KINDS:
        print(f"| {kind} | " + " | ".join(str(value) for value in sums[kind]) + " |")
    used = resource.getrusage(resource.RUSAGE_CHILDREN)
    print(f"{sum(values[1] for values in sums.values())} failures, "
          f"{(used.ru_utime + used.ru_stime) / 60:.0f} CPU minutes: "
          + ("some did not end as promised" if failed else "each one ended as promised"))
    return 1 if failed else 0


sys.exit(main())
