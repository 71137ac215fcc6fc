#!/usr/bin/env python3
"""Fills the parts of pages that the program itself says: examples, keywords, labels of loads."""
import pathlib
import re
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
EXAMPLE = ("convert examples/bracket.inp -o {}/bracket.sim", "info {}/bracket.sim",
           "write {}/bracket.sim -o {}/written.inp")
MATERIALS = ("convert examples/materials.inp -o {}/materials.sim -q",
             "info {}/materials.sim --materials")


def said(program, words):
    done = subprocess.run([program, *words], cwd=ROOT, capture_output=True, text=True)
    if done.returncode != 0:
        sys.exit(f"inps {' '.join(words)} ended with {done.returncode}:\n{done.stderr}")
    return done.stdout, done.stderr


def example(program, commands):
    lines = []
    with tempfile.TemporaryDirectory() as folder:
        for command in commands:
            shown = command.replace("{}/", "")
            words = [word.replace("{}", folder) for word in command.split()]
            output = said(program, words)[0].replace(folder + "/", "")  # messages aside
            lines += [f"$ ./inps {shown}", *output.splitlines(), ""]
    return "\n".join("    " + line if line else "" for line in lines).rstrip()


def put(page, mark, text):
    pattern = re.compile(f"(<!-- {mark}: begin -->\n).*?(<!-- {mark}: end -->)", re.S)
    return pattern.sub(lambda match: f"{match[1]}{text.rstrip()}\n{match[2]}", page)


def main():
    program = sys.argv[1] if len(sys.argv) > 1 else str(ROOT / "build/release/bin/inps")
    path = ROOT / "README.md"
    page = put(path.read_text(encoding="utf-8"), "example", example(program, EXAMPLE))
    page = put(page, "materials", example(program, MATERIALS))
    page = put(page, "keywords", said(program, ["keywords", "--markdown"])[0])
    path.write_text(page, encoding="utf-8")
    path = ROOT / "docs/loads.md"
    loads = said(program, ["keywords", "--loads", "--markdown"])[0]
    path.write_text(put(path.read_text(encoding="utf-8"), "loads", loads), encoding="utf-8")


if __name__ == "__main__":
    main()
