#!/usr/bin/env python3
"""Renders the generated examples to docs/pictures with VTK, off the screen, and puts their decks
into docs/gallery.md. Run by ./inps pictures; needs python3-vtk9 and, without a display, xvfb-run."""
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
SIZE = (640, 450)
STEEL, ACCENT, LINES, BACKGROUND = (0.62, 0.72, 0.83), (0.93, 0.62, 0.27), (0.15, 0.2, 0.28), (1, 1, 1)

# example, the element set in a colour of its own, where the camera stands, its upward direction,
# how near it comes
PICTURES = (
    ("generated_plate", "RIM", (-0.35, -0.75, 0.9), (0, 0, 1), 1.35),
    ("generated_bracket", "LEFT", (0.7, 0.45, 1.0), (0, 1, 0), 1.05),
    ("generated_horn", "BELL", (0.15, -0.55, 1.0), (0, 1, 0), 1.35),
)


def export(program, name, folder):
    for command in (("convert", ROOT / "examples" / f"{name}.inp", "-o", folder / f"{name}.sim"),
                    ("export", folder / f"{name}.sim", folder / f"{name}.vtu")):
        subprocess.run([program, *map(str, command), "--quiet"], check=True)
    return folder / f"{name}.vtu"


def threshold(grid, array, value):
    from vtkmodules.vtkCommonDataModel import vtkDataObject
    from vtkmodules.vtkFiltersCore import vtkThreshold
    part = vtkThreshold()
    part.SetInputData(grid)
    part.SetInputArrayToProcess(0, 0, 0, vtkDataObject.FIELD_ASSOCIATION_CELLS, array)
    part.SetLowerThreshold(value)
    part.SetUpperThreshold(value)
    part.SetThresholdFunction(vtkThreshold.THRESHOLD_BETWEEN)
    part.Update()
    return part.GetOutput()


def actor(grid, colour):
    from vtkmodules.vtkRenderingCore import vtkActor, vtkDataSetMapper
    mapper = vtkDataSetMapper()
    mapper.SetInputData(grid)
    mapper.ScalarVisibilityOff()
    shown = vtkActor()
    shown.SetMapper(mapper)
    look = shown.GetProperty()
    look.SetColor(*colour)
    look.EdgeVisibilityOn()
    look.SetEdgeColor(*LINES)
    look.SetLineWidth(1.0)
    look.SetAmbient(0.25)
    look.SetDiffuse(0.8)
    return shown


def render(file, chosen, direction, up, zoom, picture):
    import vtkmodules.vtkRenderingOpenGL2  # noqa: F401 (what draws)
    from vtkmodules.vtkIOImage import vtkPNGWriter
    from vtkmodules.vtkIOXML import vtkXMLUnstructuredGridReader
    from vtkmodules.vtkRenderingCore import (vtkRenderer, vtkRenderWindow,
                                             vtkWindowToImageFilter)
    reader = vtkXMLUnstructuredGridReader()
    reader.SetFileName(str(file))
    reader.Update()
    renderer = vtkRenderer()
    renderer.SetBackground(*BACKGROUND)
    for value, colour in ((0, STEEL), (1, ACCENT)):
        renderer.AddActor(actor(threshold(reader.GetOutput(), f"Set {chosen}", value), colour))
    window = vtkRenderWindow()
    window.SetOffScreenRendering(1)
    window.SetMultiSamples(8)
    window.SetSize(*SIZE)
    window.AddRenderer(renderer)
    camera = renderer.GetActiveCamera()
    camera.SetPosition(*direction)
    camera.SetFocalPoint(0, 0, 0)
    camera.SetViewUp(*up)
    renderer.ResetCamera()
    camera.Zoom(zoom)
    renderer.ResetCameraClippingRange()
    window.Render()
    image = vtkWindowToImageFilter()
    image.SetInput(window)
    image.ReadFrontBufferOff()
    writer = vtkPNGWriter()
    writer.SetFileName(str(picture))
    writer.SetInputConnection(image.GetOutputPort())
    writer.Write()


def put_decks(page):
    """The decks as they stand in examples, without their heading."""
    for name, *_ in PICTURES:
        deck = (ROOT / "examples" / f"{name}.inp").read_text(encoding="utf-8")
        lines = deck.rstrip().split("\n")[2:]
        text = "\n".join("    " + line if line else "" for line in lines)
        mark = re.compile(f"(<!-- {name}: begin -->\n).*?(<!-- {name}: end -->)", re.S)
        page = mark.sub(lambda match, text=text: f"{match[1]}{text}\n{match[2]}", page)
    return page


def main():
    program = sys.argv[1] if len(sys.argv) > 1 else str(ROOT / "build/release/bin/inps")
    if not os.environ.get("DISPLAY") and shutil.which("xvfb-run"):
        os.execvp("xvfb-run", ["xvfb-run", "-a", sys.executable, __file__, program])
    with tempfile.TemporaryDirectory(prefix="inps-pictures-") as folder:
        for name, *view in PICTURES:
            picture = ROOT / "docs" / "pictures" / f"{name}.png"
            picture.parent.mkdir(exist_ok=True)
            render(export(program, name, pathlib.Path(folder)), *view, picture)
            print(f"{picture.relative_to(ROOT)}: {picture.stat().st_size // 1000} kB")
    gallery = ROOT / "docs" / "gallery.md"
    gallery.write_text(put_decks(gallery.read_text(encoding="utf-8")), encoding="utf-8")


if __name__ == "__main__":
    main()
