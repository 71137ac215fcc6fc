#pragma once

#include <span>
#include <string_view>

enum class inp_ShapeKind : unsigned char {
  None, // no fixed topology
#define INP_SHAPE(Name, ...) Name,
#include "parser/inp_shapes.def"
};

// The local node numbers, from 1, of an edge or a face: its corners in order, then its midside
// nodes in the same order, then its centre node.
struct inp_ShapeList {
  std::span<const unsigned char> nodes;
  int corners = 0;
};

// A topological shape; inp_shapes.def tells the orders and directions. Face S1 is faces[0].
struct inp_Shape {
  inp_ShapeKind kind = inp_ShapeKind::None;
  std::string_view name;
  int dimension = 0; // 0 point, 1 line, 2 surface, 3 volume
  int nodes = 0;
  int corners = 0;
  std::span<const inp_ShapeList> edges;
  std::span<const inp_ShapeList> faces; // of a plane shape: its edges
};

const inp_Shape& inp_shape(inp_ShapeKind kind);
