#!/usr/bin/env python3
"""Renders examples to docs/pictures with VTK, off the screen, and puts the decks of the generated ones
into docs/gallery.md. Run by ./inps pictures; needs python3-vtk9 and, without a display, xvfb-run."""
import math
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
# example, where the camera stands, its upward direction, how near it comes
LAMINATE = ("wing_panel", (0.6, -0.3, 0.9), (0, 0, 1), 1.58, (640, 390))
SCALE = ((0.98, 0.92, 0.65), (0.45, 0.74, 0.66), (0.2, 0.47, 0.66), (0.2, 0.22, 0.45))
FAINT = (0.5, 0.53, 0.58)
SECTIONS = ((0.55, 0.68, 0.83), (0.95, 0.8, 0.5), (0.6, 0.78, 0.62), (0.93, 0.66, 0.72))


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


def axis_lines(grid, axis):
    """A rod in the middle of each cell, along an axis of it."""
    from vtkmodules.vtkCommonCore import vtkPoints
    from vtkmodules.vtkCommonDataModel import vtkCellArray, vtkPolyData
    from vtkmodules.vtkFiltersCore import vtkTubeFilter
    vectors = grid.GetCellData().GetArray(axis)
    points, lines = vtkPoints(), vtkCellArray()
    for n in range(grid.GetNumberOfCells()):
        low, high = zip(*(grid.GetCell(n).GetBounds()[2 * i:2 * i + 2] for i in range(3)))
        middle = [(a + b) / 2 for a, b in zip(low, high)]
        half = 0.25 * math.sqrt(grid.GetCell(n).GetLength2())
        lines.InsertNextCell(2)
        for sign in (-half, half):
            lines.InsertCellPoint(points.InsertNextPoint(
                [at + sign * along for at, along in zip(middle, vectors.GetTuple(n))]))
    made = vtkPolyData()
    made.SetPoints(points)
    made.SetLines(lines)
    rods = vtkTubeFilter()
    rods.SetInputData(made)
    rods.SetRadius(grid.GetLength() / 1200)
    rods.SetNumberOfSides(12)
    rods.Update()
    return rods.GetOutput()


def texts(grid, name):
    data = grid.GetFieldData().GetAbstractArray(name)
    return [data.GetValue(n) for n in range(data.GetNumberOfValues())]


def in_letters(look, size=15):
    look.SetFontSize(size)
    look.SetFontFamilyToArial()
    look.SetColor(*LINES)
    look.BoldOff()
    look.ItalicOff()
    look.ShadowOff()


def legend(entries, size):
    """A square of each colour and its name, one below the other in the corner above to the left."""
    import vtkmodules.vtkRenderingFreeType  # noqa: F401 (what draws letters)
    from vtkmodules.vtkFiltersSources import vtkPlaneSource
    from vtkmodules.vtkRenderingCore import vtkActor2D, vtkPolyDataMapper2D, vtkTextActor
    shown = []
    for n, (name, colour) in enumerate(entries):
        below = size[1] - 34 - 24 * n
        square = vtkPlaneSource()
        square.SetOrigin(20, below, 0)
        square.SetPoint1(36, below, 0)
        square.SetPoint2(20, below + 14, 0)
        mapper = vtkPolyDataMapper2D()
        mapper.SetInputConnection(square.GetOutputPort())
        patch = vtkActor2D()
        patch.SetMapper(mapper)
        patch.GetProperty().SetColor(*colour)
        letters = vtkTextActor()
        letters.SetInput(name)
        letters.SetPosition(46, below)
        in_letters(letters.GetTextProperty())
        shown += [patch, letters]
    return shown


def actor(grid, colour, with_edges=True, opacity=1, edges=LINES):
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
    look.SetEdgeColor(*edges)
    look.SetLineWidth(1.0)
    look.SetAmbient(0.25)
    look.SetDiffuse(0.8)
    return shown


def coloured(grid, array, title):
    """Cells in the colours of an array's numbers, and the bar that tells them."""
    from vtkmodules.vtkRenderingAnnotation import vtkScalarBarActor
    from vtkmodules.vtkRenderingCore import vtkColorTransferFunction
    colours = vtkColorTransferFunction()
    low, high = grid.GetCellData().GetArray(array).GetRange()
    for n, colour in enumerate(SCALE):
        colours.AddRGBPoint(low + (high - low) * n / (len(SCALE) - 1), *colour)
    shown = actor(grid, STEEL, edges=FAINT)
    mapper = shown.GetMapper()
    mapper.ScalarVisibilityOn()
    mapper.SetScalarModeToUseCellFieldData()
    mapper.SelectColorArray(array)
    mapper.SetLookupTable(colours)
    mapper.UseLookupTableScalarRangeOn()
    bar = vtkScalarBarActor()
    bar.SetLookupTable(colours)
    bar.SetTitle(title)
    bar.SetNumberOfLabels(4)
    bar.SetTextPositionToPrecedeScalarBar()
    bar.SetBarRatio(0.3)
    bar.SetLabelFormat("%.3g")
    bar.SetOrientationToHorizontal()
    bar.SetPosition(0.03, 0.82)
    bar.SetWidth(0.4)
    bar.SetHeight(0.15)
    bar.SetUnconstrainedFontSize(True)
    in_letters(bar.GetTitleTextProperty())
    in_letters(bar.GetLabelTextProperty(), 13)
    return shown, bar


def render(actors, picture, direction, up, zoom, size=SIZE):
    from vtkmodules.vtkIOImage import vtkPNGWriter
    from vtkmodules.vtkRenderingCore import (vtkRenderer, vtkRenderWindow,
                                             vtkWindowToImageFilter)
    renderer = vtkRenderer()
    renderer.SetBackground(*BACKGROUND)
    for one in actors:
        renderer.AddViewProp(one)
    window = vtkRenderWindow()
    window.SetOffScreenRendering(1)
    window.SetMultiSamples(8)
    window.SetSize(*size)
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
    render(actors, picture, *view)
    print(f"{picture.relative_to(ROOT)}: {picture.stat().st_size // 1000} kB")


def put(page, name, text):
    """Between the marks of that name."""
    mark = re.compile(f"(<!-- {name}: begin -->\n).*?(<!-- {name}: end -->)", re.S)
    return mark.sub(lambda match: f"{match[1]}{text}\n{match[2]}", page)


def indented(lines):
    return "\n".join("    " + line if line else "" for line in lines)


def put_decks(page):
    """The decks as they stand in examples, without their heading."""
    for name, *_ in PICTURES:
        deck = (ROOT / "examples" / f"{name}.inp").read_text(encoding="utf-8")
        page = put(page, name, indented(deck.rstrip().split("\n")[2:]))
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
        name, *view = LAMINATE
        grid = read(export(program, name, folder, "--axes"))
        names = texts(grid, "SectionNames")
        save([*(actor(threshold(grid, "Section", n), SECTIONS[n], edges=FAINT) for n in range(len(names))),
              actor(axis_lines(grid, "Axis1"), LINES, False),
              *legend(list(zip(names, SECTIONS)), view[-1])], f"{name}_sections", *view)
        save(coloured(grid, "Thickness", "Thickness, mm"), f"{name}_thickness", *view)
        told = subprocess.run([program, "info", folder / f"{LAMINATE[0]}.sim", "--sections"],
                              check=True, capture_output=True, text=True).stdout
    gallery = ROOT / "docs" / "gallery.md"
    page = put_decks(gallery.read_text(encoding="utf-8"))
    gallery.write_text(put(page, LAMINATE[0], indented(told.rstrip().split("\n"))), encoding="utf-8")


if __name__ == "__main__":
    main()
