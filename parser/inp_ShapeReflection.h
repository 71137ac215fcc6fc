#pragma once

#include "parser/inp_Shape.h"

// The order in which the mirror image of an element takes the images of its nodes, so that it does
// not turn inside out: place i of the image is taken by node order[i] of the element (from 1).
//
// It renumbers the shape's nodes such that edges stay edges and faces stay faces, midside and
// centre nodes with them, while everything turns the other way round: solids and plane elements
// keep a positive volume, the normal of a surface in space is the mirrored one, and a line changes
// its ends. Face S1 stays where it is, because gaskets, cohesive elements and continuum shells
// stack from there, and infinite elements have no other; of the orders left, the first one in the
// sequence of numbers.
//
// nodes: how many of the shape's nodes the element has. Those that may be missing are centres of
// faces, the last ones; the order then carries those that are there among themselves. Empty for a
// shape without topology, and where nodes of edges are missing.
std::span<const unsigned char> inp_reflectedOrder(inp_ShapeKind kind, int nodes);
