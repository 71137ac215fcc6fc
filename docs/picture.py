#!/usr/bin/env python3
"""Takes the picture of README.md: the page that `inps plot` makes of examples/materials.inp."""
import pathlib
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
sys.path.insert(0, str(ROOT / "tests/plot"))
import browser  # noqa: E402

PICTURE = ROOT / "docs/pictures/plots.png"
MOST_BYTES = 150_000


def main():
    program = sys.argv[1] if len(sys.argv) > 1 else str(ROOT / "build/release/bin/inps")
    with tempfile.TemporaryDirectory() as folder:
        model = pathlib.Path(folder) / "materials.sim"
        page = pathlib.Path(folder) / "plots.html"
        for words in (["convert", "examples/materials.inp", "-o", model, "-q"],
                      ["plot", model, "-o", page]):
            subprocess.run([program, *words], cwd=ROOT, check=True, stdout=subprocess.DEVNULL)
        PICTURE.parent.mkdir(exist_ok=True)
        browser.run(page, f"--screenshot={PICTURE}", size=(1600, 1000))
    if PICTURE.stat().st_size > MOST_BYTES:
        sys.exit(f"{PICTURE.name} has {PICTURE.stat().st_size} bytes, more than {MOST_BYTES}")


if __name__ == "__main__":
    main()
