#pragma once

#include "inpS/geometry/inpS_ShapeFunctions.h"
#include <cstdint>

// What is measured of shapes with fewer dimensions than three.
enum class inpS_Space {
  Plane, // plane shapes lie in x and y: their area is negative when they turn clockwise
  Space, // they lie anywhere: areas are positive
};

// Volumes, areas or lengths (after the shape's dimension; 0 for a point) of elements of one shape,
// by the functions of its nodes: exact for straight edges and for polynomial ones. A volume is
// negative when the element is inside out.
//
// `connectivity` has `width` entries for each element, the shape's nodes first; entry + nodeBase is
// a node's place in `coordinates`, three for each node. A negative entry is a node that is absent:
// without a midside node an edge is straight, without a centre a face is what its edges make it.
// Without a corner, or of a shape without nodes, the measure is not a number.
void inpS_measureElements(inp_ShapeKind kind, inpS_Space space,
                          std::span<const int32_t> connectivity, std::size_t width,
                          std::span<const double> coordinates, int64_t nodeBase,
                          std::span<double> measures);

// One element; a node is absent where isAbsent says so (empty: none is).
double inpS_measure(const inpS_ShapeFunctions& functions, inpS_Space space,
                    std::span<const inpS_Point> nodes, std::span<const bool> isAbsent = {});

// How thick a face or line of nodes is that is no surface by itself.
enum class inpS_Depth {
  Unit, // areas as they are, lines one unit deep
  Ring, // lines of an axisymmetric model: the whole ring, 2πr with r = x
};

// The area of a face (a line: its length times its depth) as its nodes share it: ∫ N_i dA. A
// consistent sharing: what a constant pressure does to the face is what it gives to the nodes, so
// corners of quadratic faces get little or less than nothing. Absent nodes as above; their share
// goes to those beside them. A lone point has the area 1.
void inpS_nodalAreas(const inpS_ShapeFunctions& functions, inpS_Depth depth,
                     std::span<const inpS_Point> nodes, std::span<double> areas,
                     std::span<const bool> isAbsent = {});
