#!/usr/bin/env python3
"""Plots decks, opens the pages in a browser and reads the curves back from what it drew.

The drawn places are turned into numbers by the ticks beside them, so axes, curves and labels are
held against the deck together."""
import argparse
import html.parser
import math
import pathlib
import re
import subprocess
import sys
import tempfile

import browser

ODD_NAME = "<img src=x onerror=document.title=1>&amp; </script>"
DECK = f"""*MATERIAL, NAME=STEEL
*DENSITY
7.85E-9,
*ELASTIC, TYPE=LAMINA
100., 10., 0.3, 5., 4., 3., 20.
 90.,  8., 0.3, 4., 3., 2., 120.
*PLASTIC
300., 0., 20.
400., 0.1, 20.
450., 0.25, 20.
150., 0., 500.
200., 0.2, 500.
*PLASTIC, RATE=10.
350., 0., 20.
500., 0.2, 20.
*MATERIAL, NAME=RUBBER
*HYPERELASTIC, MARLOW
*UNIAXIAL TEST DATA
0., 0.
1., 0.5
3., 0.8
*VISCOELASTIC, TIME=PRONY
0.25, , 0.01
0.35, , 10.
*MATERIAL, NAME="{ODD_NAME}"
*EXPANSION
1.E-5, 0.
3.E-5, 100.
*AMPLITUDE, NAME=STEPS, DEFINITION=SMOOTH STEP
0., 0., 2., 8.
*AMPLITUDE, NAME=WAVE, DEFINITION=PERIODIC
2, 3.14159265358979, 0., 1.
2., 0., 0., 3.
*AMPLITUDE, NAME=FADE, DEFINITION=DECAY
1., 4., 0., 2.
*AMPLITUDE, NAME=BEAT, DEFINITION=MODULATED
0., 2., 0., 6.28318530717959, 1.57079632679490
*AMPLITUDE, NAME=SPIKE
"""
SPIKE_POINTS = 20000

# Chart, label of its line, points drawn (None: any), {x: y}.
CURVES = [
    ("Yield stress over plastic strain", "plastic strain rate 0, temperature 20", 3,
     {0: 300, 0.1: 400, 0.25: 450}),
    ("Yield stress over plastic strain", "plastic strain rate 0, temperature 500", 2,
     {0: 150, 0.2: 200}),
    ("Yield stress over plastic strain", "plastic strain rate 10, temperature 20", 2,
     {0: 350, 0.2: 500}),
    ("E over temperature", "E₁", 2, {20: 100, 120: 90}),
    ("E over temperature", "E₂", 2, {20: 10, 120: 8}),
    ("ν₁₂ over temperature", "", 2, {20: 0.3, 120: 0.3}),
    ("G over temperature", "G₂₃", 2, {20: 3, 120: 2}),
    ("Nominal stress over nominal strain", "", 3, {0: 0, 0.5: 1, 0.8: 3}),
    # 1 - 0.25 - 0.35 is left; at the shorter time 1 - 0.25 (1 - 1/e), the longer not begun.
    ("Shear relaxation over time", "", None, {0.0001: 1, 0.01: 1 - 0.25 * (1 - 1 / math.e), 1000: 0.4}),
    ("α over temperature", "", 2, {0: 1e-5, 100: 3e-5}),
    ("STEPS", "", None, {0: 0, 0.5: 8 * 0.103515625, 1: 4, 2: 8}),  # s = 1/4: 1/64 (10 - 15/4 + 6/16)
    ("WAVE", "", None, {0: 3, 1: -1, 0.25: 1 + 2 * math.sqrt(0.5) + 3, 4: 3}),
    ("FADE", "", None, {0: 5, 2: 1 + 4 / math.e, 10: 1 + 4 * math.exp(-5)}),
    ("BEAT", "", None, {0: 0, 0.25: 2 * math.sin(math.pi / 8), 1.25: 2 * math.sin(math.pi * 0.625)}),
    ("SPIKE", "", None, {12345: 9, 0: 0, SPIKE_POINTS - 1: 0}),
]


class Page(html.parser.HTMLParser):
    """The charts of a drawn page."""

    def __init__(self, text):
        super().__init__()
        self.charts = {}  # by title: {"ticks": [(x, y, anchor, text)], "lines": {label: d}}
        self.entries = {"a": [], "span": []}
        self.tags = set()
        self.open = []
        self.chart = None
        self.line = ""
        self.feed(text)

    def handle_starttag(self, tag, attributes):
        self.tags.add(tag)
        at = dict(attributes)
        if tag == "article":
            self.chart = {"ticks": [], "lines": {}}
        elif tag == "g":
            self.line = at["data-series"]
        elif tag == "path":
            self.chart["lines"][self.line] = at["d"]
        if tag not in ("meta", "input", "img", "line", "circle", "path"):
            self.open.append((tag, at))

    def handle_endtag(self, tag):
        while self.open and self.open.pop()[0] != tag:
            pass

    def handle_data(self, text):
        if not self.open:
            return
        tag, at = self.open[-1]
        if tag == "h3" and self.chart is not None:
            self.charts.setdefault(text, self.chart)
        elif tag == "text":
            self.chart["ticks"].append((float(at["x"]), float(at["y"]), at, text))
        elif tag in self.entries and any(name == "nav" for name, _ in self.open):
            self.entries[tag].append(text)


def value_of(text):
    """The number that a tick says; None for other texts."""
    raised = re.fullmatch("10([⁻⁰¹²³⁴⁵⁶⁷⁸⁹]+)", text)
    if raised:
        return 10.0 ** int(raised[1].translate(str.maketrans("⁻⁰¹²³⁴⁵⁶⁷⁸⁹", "-0123456789")))
    plain = text.replace("\u2009", "").replace("−", "-")
    return float(plain) if re.fullmatch(r"-?[\d.]+", plain) else None


def axis(ticks, names):
    """From a place to a number, by the first and the last tick of an axis."""
    known = [(place, value_of(text)) for place, text in ticks if value_of(text) is not None]
    factor = next((10.0 ** int(m[1].translate(str.maketrans("⁻⁰¹²³⁴⁵⁶⁷⁸⁹", "-0123456789")))
                   for m in (re.search("×10([⁻⁰¹²³⁴⁵⁶⁷⁸⁹]+)", name) for name in names) if m), 1)
    (p0, v0), (p1, v1) = known[0], known[-1]
    if all(text.startswith("10") and value_of(text) for _, text in ticks) and v1 / v0 > 100:
        return lambda place: v0 * (v1 / v0) ** ((place - p0) / (p1 - p0))
    return lambda place: factor * (v0 + (v1 - v0) * (place - p0) / (p1 - p0))


def points_of(chart, label):
    texts = chart["ticks"]
    names = [t for t in texts if t[2].get("class") == "name"]
    upright = [t[3] for t in names if "transform" not in t[2]]
    turned = [t[3] for t in names if "transform" in t[2]]
    ticks = [t for t in texts if t[2].get("class") != "name"]
    x = axis([(t[0], t[3]) for t in ticks if t[2]["text-anchor"] == "middle"], upright)
    y = axis([(t[1] - 4, t[3]) for t in ticks if t[2]["text-anchor"] == "end"], turned)
    places = [tuple(map(float, pair.split())) for pair in re.split("[ML]", chart["lines"][label])[1:]]
    return [(x(px), y(py)) for px, py in places]


def plot(program, folder, deck, *names):
    (folder / "d.inp").write_text(deck)
    page = folder / "d.html"
    for words in (["convert", folder / "d.inp", "-o", folder / "d.sim", "--force", "-q"],
                  ["plot", folder / "d.sim", *names, "-o", page, "--force"]):
        done = subprocess.run([program, *words], capture_output=True, text=True)
        if done.returncode != 0:
            sys.exit(f"inps {words[0]} ended with {done.returncode}: {done.stderr}")
    return page


def check_curve(page, title, label, count, values):
    faults = []
    chart = page.charts.get(title)
    if chart is None or label not in chart["lines"]:
        return [f"{title}: no line \"{label}\" among {chart and list(chart['lines'])}"]
    points = points_of(chart, label)
    if count is not None and len(points) != count:
        faults.append(f"{title}, {label}: {len(points)} points instead of {count}")
    width = max(p[0] for p in points) - min(p[0] for p in points)
    height = max(abs(p[1]) for p in points)
    for x, y in values.items():
        near = min(points, key=lambda p: abs(p[0] - x) / width + abs(p[1] - y) / height)
        if abs(near[0] - x) > 0.02 * width or abs(near[1] - y) > 0.02 * height:
            faults.append(f"{title}, {label}: at {x} the curve is {near}, not {y}")
    return faults


def main():
    arguments = argparse.ArgumentParser(description=__doc__)
    arguments.add_argument("--program", required=True)
    program = arguments.parse_args().program
    faults = []
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        spike = "".join(f"{n}., {9 if n == 12345 else 0}.\n" for n in range(SPIKE_POINTS))
        file = plot(program, folder, DECK + spike)
        page = Page(browser.run(file, "--dump-dom"))
        for curve in CURVES:
            faults += check_curve(page, *curve)
        drawn = page.charts["SPIKE"]["lines"][""].count("L") + 1
        if drawn > 1000:
            faults.append(f"SPIKE: {drawn} points are drawn")
        if ODD_NAME not in page.entries["a"] or "img" in page.tags:
            faults.append("an odd name is not shown as the text that it is")
        text = file.read_text()  # the name of SVG itself is no address
        if "://" in text.replace("http://www.w3.org/2000/svg", "") or "<link" in text or " src=\"" in text:
            faults.append("the page names something on the network")

        many = "".join(f"*MATERIAL, NAME=M{n}\n*EXPANSION\n1., 0.\n{n}., 9.\n" for n in range(1000))
        page = Page(browser.run(plot(program, folder, many), "--dump-dom"))
        if (len(page.entries["a"]), len(page.entries["span"])) != (300, 700):
            faults.append("of 1000 materials 300 should be drawn and 700 be listed")
        page = Page(browser.run(plot(program, folder, many, "M777"), "--dump-dom"))
        faults += check_curve(page, "α over temperature", "", 2, {0: 1, 9: 777})
        if page.entries["a"] != ["M777"]:
            faults.append(f"only M777 should be drawn, not {page.entries['a']}")
    print("\n".join(faults) or f"{len(CURVES) + 1} curves are drawn as they should be")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
