#!/usr/bin/env python3
"""Runs the fuzz targets for some seconds each and tells what they found.

Decks are tried with a dictionary of all keywords, parameters and element types, beginning from every
deck of the tests and examples. What a run learns stays in the work folder for the next one; a run that
begins with a seed (--seed) begins afresh and leaves nothing behind, so that two machines try much the
same."""
import argparse
import base64
import concurrent.futures
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
TARGETS = {"fuzz_parser": True, "fuzz_conversion": True, "fuzz_database": False}  # takes decks?
LONGEST_EDITS = 512  # bytes of input: some fifty edits of a model
# Three times the executions of the sanitizer's own defaults; a finding is run again with those.
QUICK = "quarantine_size_mb=4:malloc_context_size=0"


def write_dictionary(path):
    """The words of the deck language, from its own tables."""
    words = {"**", "*", ", ", "=", "1.E-3", "-1", "2147483647", "GENERATE", "TYPE=", "NAME="}
    table = (ROOT / "parser/inp_keywords.def").read_text()
    for name, parameters in re.findall(r'^INP_KEYWORD\(\w+,\s*"([^"]+)".*?"([^"]*)"\)', table,
                                       re.MULTILINE | re.DOTALL):
        words.add("*" + name)
        words.update(f", {word.upper()}=" for word in parameters.split() if word != "*")
    types = (ROOT / "parser/inp_elements.def").read_text()
    words.update(re.findall(r"^INP_ELEMENT\((\w+)", types, re.MULTILINE))
    path.write_text("".join(f'"{word}"\n' for word in sorted(words)))
    return len(words)


def gather_decks(folder):
    """Every deck under one name: the fuzzer takes a flat folder."""
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    decks = sorted([*ROOT.glob("tests/decks/**/*.inp"), *ROOT.glob("examples/**/*.inp")])
    for deck in decks:
        name = "-".join(deck.relative_to(ROOT).parts)
        (folder / name).write_bytes(deck.read_bytes())
    return len(decks)


LIMITS = ["-timeout=60", "-rss_limit_mb=4096"]


def command(words, target, decks, scratch):
    learnt = scratch / "learnt" if words.seed else words.work / "learnt" / target
    learnt.mkdir(parents=True, exist_ok=True)
    line = [words.bin / target, f"-max_total_time={words.seconds}", f"-seed={words.seed}", *LIMITS,
            "-entropic=0", "-mutate_depth=2",
            "-print_final_stats=1", "-verbosity=0",
            f"-artifact_prefix={words.findings}/{target}-", learnt]
    if TARGETS[target]:
        return line + [decks, f"-dict={words.work}/words.dict"]
    return line + [f"-max_len={LONGEST_EDITS}"]


def show_findings(words, target, findings, log):
    """Each input as it can be read from a log, and what it does under the sanitizer's own defaults."""
    if not findings:
        print("\n".join(log.splitlines()[-40:]), flush=True)
    for path in findings:
        print(f"--- {path}, in base64:\n{base64.b64encode(path.read_bytes()).decode()}", flush=True)
        try:
            again = subprocess.run([words.bin / target, *LIMITS, path], capture_output=True, text=True,
                                   errors="replace", timeout=120)
            print("\n".join(again.stderr.splitlines()[:40]), flush=True)
        except subprocess.TimeoutExpired:
            print("does not end within two minutes", flush=True)


def run(words, target, decks):
    """True when nothing was found."""
    log = words.work / f"{target}.log"
    started = time.time()
    with tempfile.TemporaryDirectory(prefix="inps-fuzz-", dir=words.scratch) as scratch, \
            open(log, "wb") as out:
        process = subprocess.Popen(command(words, target, decks, pathlib.Path(scratch)), stdout=out,
                                   stderr=subprocess.STDOUT,
                                   env={**os.environ, "TMPDIR": scratch, "ASAN_OPTIONS": QUICK})
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
    text = log.read_text(errors="replace")
    count = re.search(r"stat::number_of_executed_units:\s*(\d+)", text)
    print(f"{target}: {count[1] if count else 'unknown'} executions, "
          f"{usage.ru_utime + usage.ru_stime:.0f} s of processor time: "
          f"{'nothing found' if process.returncode == 0 else 'A FINDING'}", flush=True)
    if process.returncode == 0:
        return True
    print(f"{target}: the log is {log}")
    findings = [path for path in sorted(words.findings.glob(f"{target}-*"))
                if path.stat().st_mtime >= started]
    show_findings(words, target, findings, text)
    return False


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--bin", type=pathlib.Path, required=True)
    parser.add_argument("--work", type=pathlib.Path, required=True)
    parser.add_argument("--seconds", type=int, default=60)
    parser.add_argument("--seed", type=int, default=0, help="0: any, and go on from the last run")
    parser.add_argument("--targets", nargs="+", choices=TARGETS, default=list(TARGETS))
    words = parser.parse_args()
    words.work = words.work.resolve()
    memory = pathlib.Path("/dev/shm")  # files of a moment
    words.scratch = memory if os.access(memory, os.W_OK) else None
    words.findings = words.work / "findings"
    words.findings.mkdir(parents=True, exist_ok=True)
    decks = words.work / "decks"
    print(f"{gather_decks(decks)} decks, {write_dictionary(words.work / 'words.dict')} words, "
          f"{words.seconds} s for each target", flush=True)
    # Side by side as far as there are processors, for each has its time by the clock.
    with concurrent.futures.ThreadPoolExecutor(max_workers=os.cpu_count()) as lanes:
        good = list(lanes.map(lambda target: run(words, target, decks), words.targets))
    sys.exit(0 if all(good) else 1)


if __name__ == "__main__":
    main()
