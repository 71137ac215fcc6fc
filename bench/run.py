#!/usr/bin/env python3
"""Measures inps against the bare limit program and prints the table of docs/performance.md.

Both programs run in turn on the same decks, processors and file system; the best of several rounds
counts, whole process. Fails only when something does not run, never for being slow."""
import argparse
import json
import os
import pathlib
import platform
import re
import shutil
import struct
import subprocess
import sys
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
BEGIN, END = "<!-- bench: begin -->", "<!-- bench: end -->"
GENERATED_BYTES = {True: 1_000_000_000, False: 3_500_000_000}  # by quick: deck, model and deck again


class Failed(Exception):
    pass


class Run:
    """One process: wall time, processor time and peak resident memory."""

    def __init__(self, command, processors=None):
        environment = dict(os.environ)
        if processors:
            environment["INPS_THREADS"] = str(len(processors))
        own = os.sched_getaffinity(0)
        with tempfile.TemporaryFile() as out:
            # The child has it from us. Work of ours between fork and exec would copy this process,
            # which takes longer than a small model does.
            if processors:
                os.sched_setaffinity(0, processors)
            try:
                start = time.perf_counter()
                process = subprocess.Popen([str(word) for word in command], stdout=out, stderr=out,
                                           env=environment)
                _, status, usage = os.wait4(process.pid, 0)
                self.seconds = time.perf_counter() - start
            finally:
                os.sched_setaffinity(0, own)
            process.returncode = os.waitstatus_to_exitcode(status)
            out.seek(0)
            text = out.read().decode(errors="replace")
        if process.returncode != 0:
            raise Failed(f"{' '.join(map(str, command))}\nended with {process.returncode}:\n"
                         f"{text[-2000:]}")
        self.output = text
        self.cpu = usage.ru_utime + usage.ru_stime
        self.peak = usage.ru_maxrss * 1024


class Best:
    def __init__(self):
        self.seconds = self.cpu = float("inf")
        self.peak = 0

    def add(self, run):
        self.seconds = min(self.seconds, run.seconds)
        self.cpu = min(self.cpu, run.cpu)
        self.peak = max(self.peak, run.peak)


class Bench:
    def __init__(self, binaries, folder, rounds):
        self.inps = binaries / "inps"
        self.limit = binaries / "limit_program"
        self.generator = binaries / "mesh_generator"
        self.surface_times = binaries / "surface_times"
        self.table_times = binaries / "table_times"
        self.folder = folder
        self.rounds = rounds
        self.rows = []
        self.written = 0  # bytes of the last deck written back

    def deck(self, *words):
        path = self.folder / "deck.inp"
        say("deck " + " ".join(map(str, words)))
        Run([self.generator, words[0], words[1], path, *words[2:]])
        if " warning: " in Run([self.inps, "check", path]).output:  # to tell them takes time
            raise Failed("a deck that is measured has warnings: " + " ".join(map(str, words)))
        return path

    def convert(self, deck, processors, sizes=None):
        """Best of both programs on one deck, in turn: (limit, inps). The sizes, nodes and
        elements, are what the limit program must find; without them it does not run."""
        model, bare = self.folder / "model.sim", self.folder / "bare.sim"
        limit, inps = Best(), Best()
        for _ in range(self.rounds):
            if sizes:
                bare.unlink(missing_ok=True)
                run = Run([self.limit, "convert", deck, bare, "--threads", len(processors),
                           "--sync"], processors)
                counts = json.loads(run.output)
                if (counts["nodes"], counts["elements"]) != sizes:
                    raise Failed(f"the limit program read {counts}, not {sizes}")
                limit.add(run)
            model.unlink(missing_ok=True)
            inps.add(Run([self.inps, "convert", deck, "-o", model, "--quiet"], processors))
        return limit, inps

    def write(self, processors, bare=True):
        """The way back, of the models that convert left: (limit, inps)."""
        out = self.folder / "written.inp"
        limit, inps = Best(), Best()
        for _ in range(self.rounds):
            commands = [(inps, [self.inps, "write", self.folder / "model.sim", "-o", out])]
            if bare:
                commands.insert(0, (limit, [self.limit, "write", self.folder / "bare.sim", out,
                                            "--threads", len(processors)]))
            for best, command in commands:
                out.unlink(missing_ok=True)
                best.add(Run(command, processors))
        self.written = out.stat().st_size
        out.unlink()
        return limit, inps

    def export(self, processors):
        """The model that convert left as a VTK file: bytes of its arrays, the best of writing as
        many bytes plainly, and by compressor the best of inps and the size of the file."""
        out, plain = self.folder / "mesh.vtu", Best()
        exports = {how: Best() for how in ("lz4", "zlib", "none")}
        sizes = {}
        for _ in range(self.rounds):
            for how, best in exports.items():
                out.unlink(missing_ok=True)
                best.add(Run([self.inps, "export", self.folder / "model.sim", out, "--compress",
                              how, "--quiet"], processors))
                sizes[how] = out.stat().st_size
            raw = array_bytes(out)  # of the one that lies plainly
            out.unlink()
            plain.add(Run(["dd", "if=/dev/zero", f"of={out}", "bs=1M", f"count={raw >> 20}"],
                          processors))
        out.unlink()
        return raw, plain, {how: (best, sizes[how]) for how, best in exports.items()}

    def in_memory(self, deck, processors):
        """Seconds of the deck's conversion into a model in memory and of the bare decode of the fields
        of its largest keyword, in turn, the best of each."""
        converted = decoded = float("inf")
        for _ in range(self.rounds):
            bare = Run([self.limit, "columns", deck, "--threads", len(processors)], processors)
            whole = Run([self.table_times, deck], processors)
            decoded = min(decoded, json.loads(bare.output)["decode_seconds"])
            converted = min(converted, json.loads(whole.output)["convert_seconds"])
        return converted, decoded

    def surfaces(self, processors):
        """Free faces and nodal areas of the model that convert left: best times, face counts and
        the greatest memory."""
        times, peak = {}, 0
        for _ in range(self.rounds):
            run = Run([self.surface_times, self.folder / "model.sim"], processors)
            for what, value in json.loads(run.output).items():
                times[what] = min(times.get(what, value), value)
            peak = max(peak, run.peak)
        return times, peak

    def row(self, what, measured, wanted):
        self.rows.append((what, measured, wanted))
        say(f"  {what}: {measured}" + (f" (wanted: {wanted})" if wanted else ""))


def array_bytes(path):
    """Of all arrays of a VTK file with appended data that is not compressed. Read by the piece: what
    this process has held counts as its children's peak memory."""
    with open(path, "rb") as file:
        head = file.read(1 << 20)
        begin = head.index(b'_', head.index(b'<AppendedData')) + 1
        total = 0
        for offset in re.findall(rb'offset="(\d+)"', head[:begin]):
            file.seek(begin + int(offset))
            total += struct.unpack("<Q", file.read(8))[0]
        return total


def say(text):
    print(text, file=sys.stderr, flush=True)


def threads_text(count):
    return f"{count} thread{'s' if count > 1 else ''}"


def ratio(best, reference):
    return (f"{best.seconds / reference.seconds:.2f} times "
            f"({best.seconds:.3f} s to {reference.seconds:.3f} s; "
            f"processor time {best.cpu / reference.cpu:.2f} times)")


def memory(best, nodes, elements):
    arrays = 24 * nodes + 4 * (nodes + elements) + 4 * 8 * elements
    allowed = 1.25 * arrays + 64e6
    return f"{best.peak / 1e6:.0f} MB, {best.peak / allowed:.2f} of the {allowed / 1e6:.0f} MB allowed"


def measure_bricks(bench, sizes, processor_sets):
    # Starting a process and syncing a file cost the same for any deck: linear is what comes on top.
    per_node, start, surfaces = {}, {}, {}
    deck = bench.deck("bricks", 1)
    for processors in processor_sets:
        _, inps = bench.convert(deck, processors)
        _, back = bench.write(processors, bare=False)
        start[len(processors)] = (inps.seconds, back.seconds)
    for size in sizes:
        deck = bench.deck("bricks", size)
        nodes, elements, name = (size + 1) ** 3, size ** 3, f"{size}³ bricks"
        for processors in processor_sets:
            threads = threads_text(len(processors))
            limit, inps = bench.convert(deck, processors, (nodes, elements))
            bench.row(f"{name}, convert, {threads}", ratio(inps, limit), "1.5 times")
            back_limit, back = bench.write(processors)
            bench.row(f"{name}, write, {threads}", ratio(back, back_limit), "1.5 times")
            once, once_back = start[len(processors)]
            per_node.setdefault(len(processors), {})[size] = (
                (inps.seconds - once) / nodes, (back.seconds - once_back) / nodes)
        surfaces[size] = bench.surfaces(processor_sets[-1])
        bench.row(f"{name}, convert, peak memory", memory(inps, nodes, elements), "1.00 of it")
        bench.row(f"{name}, write, peak memory", memory(back, nodes, elements), "1.00 of it")
    least, most = sizes[0], sizes[-1]
    for count, times in per_node.items():
        for place, direction in enumerate(("convert", "write")):
            small, large = times[least][place], times[most][place]
            bench.row(f"{direction}, time a node on top of a one-brick deck's, {least}³ to {most}³, "
                      f"{threads_text(count)}",
                      f"{small * 1e9:.0f} ns to {large * 1e9:.0f} ns, "
                      f"{100 * (large / small - 1):+.0f} %", "within 15 %")
    tell_surfaces(bench, surfaces, threads_text(len(processor_sets[-1])))


def tell_surfaces(bench, surfaces, threads):
    """By size, what Bench.surfaces gave. The searches of all sizes cost the same for an element."""
    each = {}
    for size, (times, peak) in surfaces.items():
        if times["free"] != 6 * size ** 2:
            raise Failed(f"{times['free']} free faces of {size}³ bricks")
        each[size] = times["free_seconds"] / size ** 3
        bench.row(f"{size}³ bricks, free faces, {threads}",
                  f"{times['free_seconds']:.2f} s, {each[size] * 1e9:.0f} ns an element, "
                  f"{peak / 1e6:.0f} MB",
                  "3 s, 2000 MB" if size == 200 else "")
        bench.row(f"{size}³ bricks, areas of as many faces by node, {threads}",
                  f"{times['area_seconds'] / size ** 3 * 1e6:.2f} s for a million", "1 s")
    small, *_, large = each.values()
    bench.row(f"free faces, time an element, {min(each)}³ to {max(each)}³",
              f"{100 * (large / small - 1):+.0f} %", "within 20 %")


def measure_labels(bench, processors):
    for labels in ("shuffled", "sparse"):
        limit, inps = bench.convert(bench.deck("bricks", 128, labels), processors,
                                    (129 ** 3, 128 ** 3))
        bench.row(f"128³ bricks, {labels} labels, convert", ratio(inps, limit), "2.5 times")


def measure_export(bench, processor_sets):
    bench.convert(bench.deck("bricks", 128), processor_sets[-1])
    for processors in processor_sets:
        raw, plain, exports = bench.export(processors)
        for how, (inps, size) in exports.items():
            wanted = "600 MB/s, at least" if how == "lz4" and len(processors) == 2 else ""
            bench.row(f"128³ bricks, export --compress {how}, {threads_text(len(processors))}",
                      f"{raw / inps.seconds / 1e6:.0f} MB/s of {raw / 1e6:.0f} MB into "
                      f"{size / 1e6:.0f} MB, written plainly {raw / plain.seconds / 1e6:.0f} MB/s; "
                      f"{inps.peak / 1e6:.0f} MB of memory", wanted)


def measure_keywords(bench, processors):
    count = 100_000
    _, inps = bench.convert(bench.deck("keywords", count), processors)
    bench.row("100,000 small keywords, each", f"{inps.seconds / count * 1e6:.1f} µs", "20 µs")


def measure_small(bench, processors, runs):
    """A deck of one node. Beside the program's own start, which reads no deck, its cost is what
    every deck pays: it must not grow with the number of keywords and record kinds that there are.
    The model goes where syncing costs nothing, if there is such a place."""
    deck = bench.folder / "one.inp"
    deck.write_text("*NODE\n1, 0., 0., 0.\n")
    memory_disk = pathlib.Path("/dev/shm")
    unsynced = memory_disk.is_dir() and os.access(memory_disk, os.W_OK)
    start, check, convert = Best(), Best(), Best()
    with tempfile.TemporaryDirectory(dir=memory_disk if unsynced else bench.folder) as folder:
        model = pathlib.Path(folder) / "one.sim"
        for _ in range(runs):
            start.add(Run([bench.inps, "--version"], processors))
            check.add(Run([bench.inps, "check", deck, "--quiet"], processors))
            model.unlink(missing_ok=True)
            convert.add(Run([bench.inps, "convert", deck, "-o", model, "--quiet"], processors))
        size = model.stat().st_size
    bench.row("one node, check", f"{check.seconds * 1e3:.1f} ms", "6 ms")
    bench.row("one node, check to the program's start",
              f"{check.seconds / start.seconds:.2f} times ({start.seconds * 1e3:.1f} ms)", "2 times")
    bench.row("one node, convert" + (", sync apart" if unsynced else ""),
              f"{convert.seconds * 1e3:.1f} ms", "15 ms")
    bench.row("one node, model file", f"{size / 1e3:.0f} KB", "150 KB")


def measure_materials(bench, processors, count):
    """Ten behaviours and the material itself are a keyword each."""
    _, inps = bench.convert(bench.deck("materials", count), processors)
    _, back = bench.write(processors, bare=False)
    for what, best in (("convert", inps), ("write", back)):
        bench.row(f"{what} {count} materials of ten behaviours, a keyword",
                  f"{best.seconds / (11 * count) * 1e6:.1f} µs", "20 µs")


def measure_steps(bench, processors, count):
    """A step is its procedure and what stands in the history for it, too. Memory is flat when a later
    step takes no more of it than an earlier one."""
    best, peaks = {}, {"convert": [], "write": []}
    for steps in (count, 2 * count, 4 * count):
        _, inps = bench.convert(bench.deck("steps", steps), processors)
        _, back = bench.write(processors, bare=False)
        for what, run in (("convert", inps), ("write", back)):
            peaks[what].append(run.peak)
            best.setdefault(what, run)
    for what, (once, twice, fourfold) in peaks.items():
        row = f"{what} {count} steps of five procedures"
        bench.row(f"{row}, a step", f"{best[what].seconds / count * 1e6:.1f} µs", "30 µs")
        bench.row(f"{row}, memory a step", f"{(fourfold - once) / (3 * count) / 1e3:.1f} KB", "4 KB")
        bench.row(f"{row}, memory of a step among {4 * count} to one among {2 * count}",
                  f"{(fourfold - twice) / 2 / (twice - once):.2f} times", "1.1 times")


def measure_table(bench, processors, rows):
    run = Run([bench.table_times, bench.deck("table", rows)], processors)
    times = json.loads(run.output)
    bench.row(f"convert a table of {rows} rows to the bare decode of its numbers",
              f"{times['convert_seconds'] / times['bare_seconds']:.2f}", "2 times")


def measure_columns(bench, processors, rows):
    """Lines of target, integer and real in one keyword, beside the bare decode of their fields."""
    for targets in ("order", "names"):
        deck = bench.deck("columns", rows, targets)
        what = f"{rows} lines of {'set' if targets == 'names' else 'label'}, integer, value"
        converted, decoded = bench.in_memory(deck, processors)
        bench.row(f"{what}: conversion in memory to the bare decode of the fields",
                  f"{converted / decoded:.2f}", "2 times")
        _, inps = bench.convert(deck, processors)
        _, back = bench.write(processors, bare=False)
        allowed = 1.25 * 16 * rows + 64e6
        for direction, best in (("convert", inps), ("write", back)):
            bench.row(f"{what}, {direction}, whole process",
                      f"{best.seconds:.2f} s, {best.peak / 1e6:.0f} MB, {best.peak / allowed:.2f} of "
                      f"the {allowed / 1e6:.0f} MB allowed", "1.00 of it")


def measure_acting(bench, processors, rows):
    """Loads, conditions and temperatures by label, beside the bare decode of their fields, to the same
    nodes without them; printed as fast as the nodes are."""
    deck = bench.deck("acting", 1, "none")
    bench.convert(deck, processors)
    _, start = bench.write(processors, bare=False)
    deck = bench.deck("acting", rows, "none")
    nodes, _ = bench.in_memory(deck, processors)
    bench.convert(deck, processors)
    _, nodes_back = bench.write(processors, bare=False)
    nodes_bytes = bench.written
    nodes_rate = nodes_bytes / (nodes_back.seconds - start.seconds)
    for keyword, columns in (("cload", 16), ("boundary", 20), ("temperature", 12)):
        deck = bench.deck("acting", rows, keyword)
        what = f"{rows} lines of *{keyword.upper()} by label"
        converted, decoded = bench.in_memory(deck, processors)
        bench.row(f"{what}: conversion in memory to the bare decode of the fields",
                  f"{(converted - nodes) / decoded:.2f}", "2 times")
        _, inps = bench.convert(deck, processors)
        _, back = bench.write(processors, bare=False)
        rate = (bench.written - nodes_bytes) / max(back.seconds - nodes_back.seconds, 1e-6)
        bench.row(f"{what}, write: time a byte to that of nodes", f"{nodes_rate / rate:.2f}",
                  "2 times")
        allowed = 1.25 * (columns + 24) * rows + 64e6
        for direction, best in (("convert", inps), ("write", back)):
            bench.row(f"{what}, {direction}, peak memory",
                      f"{best.peak / 1e6:.0f} MB, {best.peak / allowed:.2f} of the "
                      f"{allowed / 1e6:.0f} MB allowed", "1.00 of it")


def measure_distribution(bench, processors, rows):
    """Rows of *DISTRIBUTION by label, beside the bare decode of their fields, to the same nodes without
    them."""
    deck = bench.deck("acting", rows, "none")
    nodes, _ = bench.in_memory(deck, processors)
    deck = bench.deck("acting", rows, "distribution")
    converted, decoded = bench.in_memory(deck, processors)
    bench.row(f"{rows} rows of *DISTRIBUTION by label: conversion in memory to the bare decode of "
              "the fields", f"{(converted - nodes) / decoded:.2f}", "2 times")


def measure_carrying(bench, processors, steps, loads):
    """Steps that carry loads and change ten in each, to the same keywords in one step and to half as
    many of either."""
    def convert(*words):
        _, best = bench.convert(bench.deck("carrying", *words), processors)
        return best, (bench.folder / "model.sim").stat().st_size

    _, one_size = convert(steps, loads, "one")
    start, _ = convert(1, 10)
    whole, size = convert(steps, loads)
    what = f"{steps} steps that carry {loads} loads and change ten"
    bench.row(f"{what}, convert", f"{whole.seconds:.2f} s, {whole.peak / 1e6:.0f} MB", "2 s, 100 MB")
    bench.row(f"{what}, model file to that of the same keywords in one step",
              f"{size / one_size:.2f} times ({size / 1e6:.1f} MB)", "1.5 times")
    _, back = bench.write(processors, bare=False)
    bench.row(f"{what}, write", f"{back.seconds:.2f} s, {back.peak / 1e6:.0f} MB", "2 s, 100 MB")
    for half, words in (("steps", (steps // 2, loads)), ("loads", (steps, loads // 2))):
        best, _ = convert(*words)
        bench.row(f"{what}, to half the {half}",
                  f"{(whole.seconds - start.seconds) / (best.seconds - start.seconds):.2f} times",
                  "2.3 times")


def measure_conditions(bench, processors, count):
    """Of ten kinds, a thousand in a step, to the same deck without them."""
    _, none = bench.convert(bench.deck("conditions", count, "none"), processors)
    _, none_back = bench.write(processors, bare=False)
    _, inps = bench.convert(bench.deck("conditions", count), processors)
    _, back = bench.write(processors, bare=False)
    for what, best, without in (("convert", inps, none), ("write", back, none_back)):
        bench.row(f"{what} {count} small conditions and loads of ten kinds, each",
                  f"{(best.seconds - without.seconds) / count * 1e6:.1f} µs", "15 µs")


def measure_axes(bench, processors, size):
    """Axes by element of a section, to the same deck whose section has none."""
    _, none = bench.convert(bench.deck("axes", size, "none"), processors)
    _, inps = bench.convert(bench.deck("axes", size), processors)
    bench.row(f"an orientation by distribution over {size ** 3} elements",
              f"{inps.seconds - none.seconds:.2f} s", "1 s")


def measure_sections(bench, processors, count):
    """Of five kinds, to the same deck without them: its mesh and sets are no part of it."""
    _, none = bench.convert(bench.deck("sections", count, "none"), processors)
    _, none_back = bench.write(processors, bare=False)
    _, inps = bench.convert(bench.deck("sections", count), processors)
    _, back = bench.write(processors, bare=False)
    for what, best, without, wanted in (("convert", inps, none, "15 µs"),
                                        ("write", back, none_back, "10 µs")):
        bench.row(f"{what} {count} sections of five kinds, each",
                  f"{(best.seconds - without.seconds) / count * 1e6:.1f} µs", wanted)


def measure_references(bench, processors, count):
    _, inps = bench.convert(bench.deck("references", count), processors)
    _, back = bench.write(processors, bare=False)
    for what, best in (("convert", inps), ("write", back)):
        bench.row(f"{what} {count} keywords that name a set, each",
                  f"{best.seconds / count * 1e6:.1f} µs", "10 µs")


def measure_instances(bench, processors, copies):
    _, flat = bench.convert(bench.deck("blocks", copies), processors)
    _, inps = bench.convert(bench.deck("instances", copies), processors)
    bench.row(f"{copies} instances of 1000 nodes to the flat mesh", ratio(inps, flat), "1.5 times")


def measure_generated(bench, processors, size):
    """A mesh that a few lines make, to the same mesh written out."""
    _, made = bench.convert(bench.deck("generated", size), processors)
    listed = bench.folder / "deck.inp"
    listed.unlink()
    Run([bench.inps, "write", bench.folder / "model.sim", "-o", listed])
    _, read = bench.convert(listed, processors)
    bench.row(f"generate/convert ratio, {size}³ bricks", ratio(made, read), "1.5 times")


def table(rows, quick):
    processor = next((line.split(":", 1)[1].strip()
                      for line in pathlib.Path("/proc/cpuinfo").read_text().splitlines()
                      if line.startswith("model name")), platform.machine())
    lines = [f"Measured on {processor}, {len(os.sched_getaffinity(0))} processors"
             f"{', quick run' if quick else ''}; best of several rounds, whole process.", "",
             "| What | Measured | Wanted, at most |", "|---|---|---|"]
    return "\n".join(lines + [f"| {a} | {b} | {c} |" for a, b, c in rows])


def record(text):
    path = ROOT / "docs" / "performance.md"
    page = path.read_text(encoding="utf-8")
    head, rest = page.split(BEGIN)
    path.write_text(f"{head}{BEGIN}\n{text}\n{END}{rest.split(END)[1]}", encoding="utf-8")
    say(f"written into {path.relative_to(ROOT)}")


def main():
    parser = argparse.ArgumentParser(prog="./inps bench", description=__doc__)
    parser.add_argument("--bin", type=pathlib.Path, default=ROOT / "build/release/bin",
                        help="folder of the built programs")
    parser.add_argument("--quick", action="store_true", help="smaller meshes, fewer rounds")
    parser.add_argument("--rounds", type=int, help="runs of each program (5, quick 3)")
    parser.add_argument("--folder", type=pathlib.Path,
                        help="where the decks go (a temporary folder)")
    parser.add_argument("--only", metavar="WORD", default="",
                        help="what has the word in its name alone: bricks, export, steps, ...")
    parser.add_argument("--record", action="store_true", help="write the table into the docs")
    parser.add_argument("--json", action="store_true", help="print the rows as JSON")
    words = parser.parse_args()
    if words.only and words.record:
        parser.error("a part is not recorded")

    processors = sorted(os.sched_getaffinity(0))
    sets = [set(processors[:1])] + ([set(processors[:2])] if len(processors) > 1 else [])
    with tempfile.TemporaryDirectory(prefix="inps-bench-", dir=words.folder) as folder:
        free = shutil.disk_usage(folder).free
        if free < GENERATED_BYTES[words.quick]:
            raise Failed(f"{folder} has {free / 1e9:.1f} GB free; the decks need "
                         f"{GENERATED_BYTES[words.quick] / 1e9:.1f} GB (--folder names another)")
        bench = Bench(words.bin, pathlib.Path(folder), words.rounds or (3 if words.quick else 5))

        def run(measure, *sizes):
            if words.only in measure.__name__:
                measure(bench, *sizes)

        run(measure_bricks, (64, 128) if words.quick else (64, 128, 200), sets)
        run(measure_labels, sets[-1])
        run(measure_export, sets)
        run(measure_keywords, sets[-1])
        run(measure_small, sets[-1], 20 if words.quick else 50)
        run(measure_materials, sets[-1], 5000 if words.quick else 20_000)
        run(measure_steps, sets[-1], 10_000)
        run(measure_table, sets[-1], 1_000_000)
        run(measure_columns, sets[-1], 1_000_000)
        run(measure_acting, sets[-1], 1_000_000)
        run(measure_distribution, sets[-1], 1_000_000)
        run(measure_carrying, sets[-1], 1000, 10_000)
        run(measure_conditions, sets[-1], 100_000)
        run(measure_axes, sets[-1], 50 if words.quick else 100)
        run(measure_sections, sets[-1], 100_000)
        run(measure_references, sets[-1], 200_000)
        run(measure_instances, sets[-1], 1000 if words.quick else 10_000)
        run(measure_generated, sets[-1], 128 if words.quick else 170)
    text = table(bench.rows, words.quick)
    print(json.dumps(bench.rows, ensure_ascii=False) if words.json else text)
    if words.record:
        record(text)


if __name__ == "__main__":
    try:
        main()
    except Failed as failure:
        say(f"bench: {failure}")
        sys.exit(3)
