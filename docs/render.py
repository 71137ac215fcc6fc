#!/usr/bin/env python3
"""Renders examples to docs/pictures with VTK, off the screen, and puts the decks of the generated ones
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
# example, step, where the camera stands, its upward direction, how near it comes
LOADED = ("bracket", 1, (0.85, -1.0, 0.5), (0, 0, 1), 1.12)
SUPPORT, FORCE = (0.2, 0.55, 0.35), (0.8, 0.2, 0.18)


def export(program, name, folder, *words):
    for command in (("convert", ROOT / "examples" / f"{name}.inp", "-o", folder / f"{name}.sim"),
                    ("export", folder / f"{name}.sim", folder / f"{name}.vtu", *words)):
        subprocess.run([program, *map(str, command), "--quiet"], check=True)
    return folder / f"{name}.vtu"


def read(file):
    from vtkmodules.vtkIOXML import vtkXMLUnstructuredGridReader
    reader = vtkXMLUnstructuredGridReader()
    reader.SetFileName(str(file))
    reader.Update()
    return reader.GetOutput()


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


def glyphs(nodes, source, along, length, transform=None):
    """The source at each node, along a vector if it has one there."""
    from vtkmodules.vtkCommonDataModel import vtkDataObject
    from vtkmodules.vtkFiltersCore import vtkGlyph3D
    made = vtkGlyph3D()
    made.SetInputData(nodes)
    made.SetSourceConnection(source.GetOutputPort())
    made.SetScaleModeToDataScalingOff()
    made.SetScaleFactor(length)
    if along:
        made.SetInputArrayToProcess(1, 0, 0, vtkDataObject.FIELD_ASSOCIATION_POINTS, along)
        made.SetVectorModeToUseVector()
        made.OrientOn()
    if transform:
        made.SetSourceTransform(transform)
    made.Update()
    return made.GetOutput()


def chosen_nodes(nodes, array):
    """Those whose array is not zero."""
    from vtkmodules.vtkCommonCore import vtkPoints
    from vtkmodules.vtkCommonDataModel import vtkPolyData
    data = nodes.GetPointData().GetArray(array)
    points, vectors = vtkPoints(), data.NewInstance()
    vectors.SetName(array)
    vectors.SetNumberOfComponents(data.GetNumberOfComponents())
    for n in range(nodes.GetNumberOfPoints()):
        if any(data.GetTuple(n)):
            points.InsertNextPoint(nodes.GetPoint(n))
            vectors.InsertNextTuple(data.GetTuple(n))
    some = vtkPolyData()
    some.SetPoints(points)
    some.GetPointData().AddArray(vectors)
    return some


def signs(folder, name):
    """What acts: a cube at each node that is held, an arrow that ends at each one with a force."""
    from vtkmodules.vtkCommonTransforms import vtkTransform
    from vtkmodules.vtkFiltersSources import vtkArrowSource, vtkCubeSource
    nodes = read(folder / name / "nodes-1-Nodes.vtu")
    arrow = vtkArrowSource()
    arrow.SetTipResolution(24)
    arrow.SetShaftResolution(24)
    back = vtkTransform()
    back.Translate(-1, 0, 0)
    size = nodes.GetLength()
    return (actor(glyphs(chosen_nodes(nodes, "FixedDofs"), vtkCubeSource(), None, size / 30), SUPPORT, False),
            actor(glyphs(chosen_nodes(nodes, "Force"), arrow, "Force", size / 6, back), FORCE, False))


def actor(grid, colour, with_edges=True, opacity=1):
    import vtkmodules.vtkRenderingOpenGL2  # noqa: F401 (what draws; actors before it are none)
    from vtkmodules.vtkRenderingCore import vtkActor, vtkDataSetMapper
    mapper = vtkDataSetMapper()
    mapper.SetInputData(grid)
    mapper.ScalarVisibilityOff()
    shown = vtkActor()
    shown.SetMapper(mapper)
    look = shown.GetProperty()
    look.SetColor(*colour)
    look.SetOpacity(opacity)
    look.SetEdgeVisibility(with_edges)
    look.SetEdgeColor(*LINES)
    look.SetLineWidth(1.0)
    look.SetAmbient(0.25)
    look.SetDiffuse(0.8)
    return shown


def render(actors, direction, up, zoom, picture):
    from vtkmodules.vtkIOImage import vtkPNGWriter
    from vtkmodules.vtkRenderingCore import (vtkRenderer, vtkRenderWindow,
                                             vtkWindowToImageFilter)
    renderer = vtkRenderer()
    renderer.SetBackground(*BACKGROUND)
    for one in actors:
        renderer.AddActor(one)
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


def save(actors, name, *view):
    picture = ROOT / "docs" / "pictures" / f"{name}.png"
    picture.parent.mkdir(exist_ok=True)
    render(actors, *view, picture)
    print(f"{picture.relative_to(ROOT)}: {picture.stat().st_size // 1000} kB")


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
    with tempfile.TemporaryDirectory(prefix="inps-pictures-") as name:
        folder = pathlib.Path(name)
        for name, chosen, *view in PICTURES:
            grid = read(export(program, name, folder))
            save([actor(threshold(grid, f"Set {chosen}", value), colour)
                  for value, colour in ((0, STEEL), (1, ACCENT))], name, *view)
        name, step, *view = LOADED
        grid = read(export(program, name, folder, "--step", step))
        save([actor(grid, STEEL, opacity=0.35), *signs(folder, name)], f"loaded_{name}", *view)
    gallery = ROOT / "docs" / "gallery.md"
    gallery.write_text(put_decks(gallery.read_text(encoding="utf-8")), encoding="utf-8")


if __name__ == "__main__":
    main()
