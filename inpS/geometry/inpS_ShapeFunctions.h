#pragma once

#include "parser/inp_Shape.h"
#include <array>
#include <span>
#include <vector>

using inpS_Point = std::array<double, 3>;

// The functions that interpolate over an element of one shape, or over one of its faces or edges,
// and a quadrature rule over it. They are made once from the order of nodes of inp_shapes.def.
//
// Natural coordinates: -1 to 1 in each direction of a line, quadrilateral or brick; of a triangle
// or tetrahedron 0 to 1, its node 1 at the origin; of a wedge those of the triangle, then -1 to 1;
// of a pyramid the base's -1 to 1 at height 0, its top at height 1.
//
// The functions belong to elements with a variable number of nodes (K.-J. Bathe, Finite Element
// Procedures, 5.3; T. J. R. Hughes, The Finite Element Method, 3.7): a node between others has the
// function of its edge, face or inside, and the functions of the nodes around it are diminished by
// what they have there. With all midside nodes that gives the serendipity functions, with all
// centres too the Lagrangian ones (O. C. Zienkiewicz, R. L. Taylor, The Finite Element Method,
// vol. 1, 8), with some of them those of a transition element. Pyramids: G. Bedrosian, Int. J.
// Numer. Meth. Engng. 35 (1992) 95-108.
class inpS_ShapeFunctions {
public:
  static constexpr int kMostNodes = 27;

  static const inpS_ShapeFunctions& Of(inp_ShapeKind kind);
  // Nodes in the order of the shape's list; `face` and `edge` count from 0.
  static const inpS_ShapeFunctions& OfFace(inp_ShapeKind kind, std::size_t face);
  static const inpS_ShapeFunctions& OfEdge(inp_ShapeKind kind, std::size_t edge);

  int Dimension() const { return m_dimension; }
  std::size_t Nodes() const { return m_places.size(); }
  std::span<const inpS_Point> Places() const { return m_places; } // natural, of the nodes

  // All functions, and their derivatives by the natural coordinates, at one place. A pyramid's
  // derivatives have no value at its top.
  void Evaluate(const inpS_Point& at, std::span<double> values,
                std::span<inpS_Point> derivatives) const;

  // Exact for what bent edges make of the volume (Gauss-Legendre, along the directions of a
  // collapsed cube for triangles and what has them: A. H. Stroud, D. Secrest, Gaussian Quadrature
  // Formulas, 1966).
  std::size_t QuadraturePoints() const { return m_weights.size(); }
  double Weight(std::size_t point) const { return m_weights[point]; }
  const inpS_Point& QuadraturePlace(std::size_t point) const { return m_quadrature[point]; }
  std::span<const double> Values(std::size_t point) const {
    return {&m_values[point * Nodes()], Nodes()};
  }
  std::span<const inpS_Point> Derivatives(std::size_t point) const {
    return {&m_derivatives[point * Nodes()], Nodes()};
  }

  // Where a node that is absent would be if it bent nothing: the share of each node that is less
  // between others than it (0 for the rest, and for the corners).
  std::span<const double> Shares(std::size_t node) const {
    return {&m_shares[node * Nodes()], Nodes()};
  }
  // Corners come first, then edges' nodes, then faces', then the inside's.
  int Level(std::size_t node) const { return m_levels[node]; }

private:
  enum class Family : unsigned char { Point, Line, Triangle, Quad, Tet, Pyramid, Wedge, Hex };
  struct Part; // value and derivatives of one function
  class Table;

  explicit inpS_ShapeFunctions(const inp_Shape& shape);
  inpS_ShapeFunctions(const inp_Shape& shape, const inp_ShapeList& list);
  static Family FamilyOf(int dimension, int corners);
  static std::span<const inpS_Point> CornersOf(Family family);
  void PlaceBetween(std::span<const std::size_t> corners, std::size_t node);
  void Finish();
  void ReadLevels();
  void ReadShares();
  void MakeQuadrature();
  Part OwnFunction(std::size_t node, const inpS_Point& at) const;

  Family m_family = Family::Point;
  int m_dimension = 0;
  bool m_isQuadratic = false;
  std::vector<inpS_Point> m_places;
  std::vector<int> m_levels;
  std::vector<std::size_t> m_inside; // nodes from the highest level to the lowest
  // What each node's own function has at nodes of higher levels: node · nodes + other.
  std::vector<double> m_elsewhere;
  std::vector<double> m_shares;
  std::vector<inpS_Point> m_quadrature;
  std::vector<double> m_weights;
  std::vector<double> m_values;
  std::vector<inpS_Point> m_derivatives;
};
