#!/usr/bin/env python3
"""Runs the program on a disk that is too small: convert, write, export and plot.

Each run must end with exit code 3 and one clear message, and leave nothing half-written under the
final name. The disk is a small file system of its own when we may mount one, and a limit on the
size of files otherwise; the test says which."""
import argparse
import contextlib
import pathlib
import resource
import subprocess
import sys
import tempfile

import kill_test

REASONS = ("no space left", "file too large")


@contextlib.contextmanager
def small_disk(folder, size, mount):
    """The folder as a file system of so many bytes; false where we may not mount one."""
    folder.mkdir()
    mounted = mount and subprocess.run(["mount", "-t", "tmpfs", "-o", f"size={size}", "tmpfs", folder],
                             capture_output=True).returncode == 0
    try:
        yield mounted
    finally:
        if mounted:
            subprocess.run(["umount", folder], check=True)


def run(words, limit=None):
    def restrict():
        resource.setrlimit(resource.RLIMIT_FSIZE, (limit, limit))
    return subprocess.run(list(map(str, words)), capture_output=True, text=True, errors="replace",
                          preexec_fn=restrict if limit else None)


def fault_of(done, words, target):
    said = [line for line in done.stderr.splitlines() if line.startswith("inps: ") and
            not line.startswith("inps: warning: ")]
    if done.returncode != 3 or len(said) != 1:
        return f"{words[1]} ended with {done.returncode} and said: {done.stderr[-500:]!r}"
    print(f"  {words[1]}: {said[0]}")
    if str(target) not in said[0] or not any(why in said[0].lower() for why in REASONS):
        return f"{words[1]} does not say what is full: {said[0]}"
    return None


def left_behind(folder, words, target, before):
    """What is wrong in the folder: converted models must be sound, anything else be as it was."""
    now = {path.name: path.read_bytes() for path in folder.iterdir()}
    if words[1] == "convert" and "--force" not in words:
        now.pop(target.name, None)  # looked at by the caller
    if now != before:
        return f"{words[1]} left {sorted(now)} in place of {sorted(before)}"
    return None


def jobs(program, source, disk):
    deck, model, materials = source / "deck.inp", source / "model.sim", source / "materials.sim"
    target = disk / "model.sim"
    yield [program, "convert", deck, "-o", target, "-q"], target, None
    yield [program, "convert", deck, "-o", target, "-q", "--force"], target, b"\0"
    yield [program, "convert", source / "more.inp", "--restart", model, "-o", target, "-q"], target, None
    for name, words in (("written.inp", ["write", model, "-o"]), ("mesh.vtu", ["export", model]),
                        ("page.html", ["plot", materials, "-o"])):
        for old in (None, b"of old"):
            yield ([program, *words, disk / name] + (["--force"] if old else []), disk / name, old)


def try_job(words, target, old, limit, source):
    folder = target.parent
    for path in folder.iterdir():
        path.unlink()
    if old == b"\0":  # a model to be replaced
        old = (source / "small.sim").read_bytes()
    if old:
        target.write_bytes(old)
    before = {path.name: path.read_bytes() for path in folder.iterdir()}
    done = run(words, limit)
    fault = fault_of(done, words, target)
    if not fault and not old and words[1] == "convert" and target.exists():
        fault = kill_test.fault_in(words[0], target, source)[0]
        for name in (target.name + "-journal", ):  # gone once the model has been opened
            if (folder / name).exists():
                fault = fault or f"{name} is left"
    return fault or left_behind(folder, words, target, before)


def prepare(program, source):
    kill_test.write_deck(source / "deck.inp")
    (source / "more.inp").write_text("*STEP\n*STATIC\n1., 1.\n*END STEP\n")
    (source / "small.inp").write_text("*NODE\n1, 0., 0., 0.\n")
    rows = "\n".join(f"{200 + i * 0.5}, {i * 0.001}" for i in range(500))
    (source / "materials.inp").write_text(
        "\n".join(f"*MATERIAL, NAME=M{i}\n*PLASTIC\n{rows}" for i in range(20)) + "\n")
    for name in ("model", "deck"), ("small", "small"), ("materials", "materials"):
        done = run([program, "convert", source / f"{name[1]}.inp", "-o", source / f"{name[0]}.sim", "-q"])
        if done.returncode != 0:
            raise SystemExit(f"a whole conversion failed: {done.stderr}")


def torture(program, source, disk, mount):
    tried, faults = 0, []
    # The page of plots is small, so its disk is smaller still; a model has 1 MB before the deck.
    for size, wanted in ((64 << 10, ("convert", "write", "export", "plot")),
                         (2 << 20, ("convert", "write", "export")), (5 << 20, ("convert",))):
        with small_disk(disk, size, mount) as mounted:
            what = "a file system" if mounted else "no mount: files"
            print(f"{what} of {size >> 10} KB")
            for words, target, old in jobs(program, source, disk):
                fits = old != b"\0" or size > (1 << 20)  # the model to be replaced
                if words[1] in wanted and fits:
                    tried += 1
                    faults.append(try_job(words, target, old, None if mounted else size, source))
            for path in disk.iterdir():
                path.unlink()
        disk.rmdir()
    return tried, [fault for fault in faults if fault]


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--program", required=True)
    parser.add_argument("--no-mount", action="store_true", help="limit the size of files all the same")
    words = parser.parse_args()
    with tempfile.TemporaryDirectory(prefix="inps-full-") as folder:
        source = pathlib.Path(folder) / "source"
        source.mkdir()
        prepare(words.program, source)
        tried, faults = torture(words.program, source, pathlib.Path(folder) / "disk",
                               not words.no_mount)
    for fault in faults:
        print(fault)
    print(f"{tried} runs, " + (f"{len(faults)} faults" if faults else "all told and left clean"))
    sys.exit(1 if faults else 0)


if __name__ == "__main__":
    main()
