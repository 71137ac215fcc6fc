#pragma once

#include <span>
#include <string_view>

// A topological shape: order of nodes, edges and faces. Faces are numbered as the deck language
// numbers them (S1 is face 0 here). Local node numbers count from 1.
enum class inp_ShapeKind : unsigned char {
  None, // no fixed topology
#define INP_SHAPE(Name, ...) Name,
#include "parser/inp_shapes.def"
};

struct inp_ShapeList {
  std::span<const unsigned char> nodes; // corners in order, then midside nodes in the same order
  int corners;
};

struct inp_Shape {
  inp_ShapeKind kind;
  std::string_view name;
  int dimension; // 0 point, 1 line, 2 surface, 3 volume
  int nodes;     // that the shape needs
  int corners;
  std::span<const inp_ShapeList> edges;
  std::span<const inp_ShapeList> faces;
};

const inp_Shape& inp_shape(inp_ShapeKind kind);
