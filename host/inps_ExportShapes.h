#pragma once

#include "database/KvoObjSurface.h"
#include "parser/inp_Shape.h"
#include <array>
#include <cstdint>
#include <span>

// How one element or face becomes a VTK cell: the cell's type and the local nodes, from 0, that are
// its points, in order.
struct inps_CellRecipe {
  static constexpr int mostNodes = 27;

  uint8_t type = 0; // VTK's number
  int size = 0;     // points of a cell
  // Points or a line through the nodes that are present, whichever these are: `nodes` is not used.
  bool anyPresent = false;
  std::array<uint8_t, mostNodes> nodes{};

  std::span<const uint8_t> Nodes() const {
    return std::span(nodes).first(static_cast<std::size_t>(size));
  }
};

enum inps_VtkType : uint8_t {
  inps_VtkEmpty = 0,
  inps_VtkVertex = 1,
  inps_VtkPolyVertex = 2,
  inps_VtkLine = 3,
};

// By preference; empty for a shape without topology. Built once, from inps_vtkCells.def.
std::span<const inps_CellRecipe> inps_cellRecipes(inp_ShapeKind shape);
// Of a face, edge, side or end as surfaces name them. Faces of volumes are turned so that their
// normals look out of them; the negative side of a surface is turned around. By preference; empty
// when the shape has no such face.
std::span<const inps_CellRecipe> inps_faceRecipes(inp_ShapeKind shape, eds_SurfaceFace face);
// Of an element that none of the above fits: its nodes as points; a line for two nodes.
inps_CellRecipe inps_pointsRecipe(int nodesPresent);

// "wedge", "quadratic hexahedron", …: for messages.
const char* inps_vtkTypeName(uint8_t type);
