"""Chromium without a window, on a page of ours."""
import pathlib
import shutil
import subprocess
import sys
import tempfile


def run(page, *words, size=(1440, 1100)):
    """What the browser prints. Ends the process when there is none."""
    program = shutil.which("chromium") or shutil.which("chromium-browser")
    if not program:
        sys.exit("chromium is missing: ./inps test installs it")
    with tempfile.TemporaryDirectory() as profile:
        done = subprocess.run(
            [program, "--headless", "--no-sandbox", "--disable-gpu", "--hide-scrollbars",
             f"--user-data-dir={profile}", f"--window-size={size[0]},{size[1]}",
             "--virtual-time-budget=3000", *words, pathlib.Path(page).resolve().as_uri()],
            capture_output=True, text=True, timeout=120)
    if done.returncode != 0:
        sys.exit(f"chromium ended with {done.returncode}:\n{done.stderr[-2000:]}")
    return done.stdout
