#include "inpS/geometry/inpS_ElementMeasure.h"
#include <cmath>
#include <gtest/gtest.h>
#include <numbers>

namespace {

using Kind = inp_ShapeKind;
using Functions = inpS_ShapeFunctions;

constexpr Kind kinds[] = {
#define INP_SHAPE(Name, ...) Kind::Name,
#include "parser/inp_shapes.def"
};

// Natural coordinates' lengths, areas and volumes.
double referenceMeasure(const inp_Shape& shape) {
  if (shape.dimension == 1) return 2;
  if (shape.dimension == 2) return shape.corners == 3 ? 0.5 : 4;
  if (shape.dimension == 3)
    return shape.corners == 4 ? 1.0 / 6 : shape.corners == 5 ? 4.0 / 3 : shape.corners == 6 ? 1 : 8;
  return 0;
}

std::vector<inpS_Point> placesOf(Kind kind) {
  const auto places = Functions::Of(kind).Places();
  return {places.begin(), places.end()};
}

double measureOf(Kind kind, const std::vector<inpS_Point>& nodes, std::vector<int> absent = {},
                 inpS_Space space = inpS_Space::Plane) {
  std::vector<double> coordinates = {0, 0, 0}; // of a node before the base
  std::vector<int32_t> connectivity;
  for (std::size_t n = 0; n < nodes.size(); ++n) {
    coordinates.insert(coordinates.end(), nodes[n].begin(), nodes[n].end());
    connectivity.push_back(static_cast<int32_t>(n));
  }
  for (int n : absent) connectivity[static_cast<std::size_t>(n) - 1] = -1;
  connectivity.push_back(-1); // a column that is no part of the shape
  double measure = 0;
  inpS_measureElements(kind, space, connectivity, connectivity.size(), coordinates, 1,
                       {&measure, 1});
  return measure;
}

class EveryMeasure : public testing::TestWithParam<Kind> {};

} // namespace

TEST_P(EveryMeasure, AffineImageMeasuresByTheDeterminant) {
  const inp_Shape& shape = inp_shape(GetParam());
  std::vector<inpS_Point> nodes = placesOf(GetParam());
  for (inpS_Point& node : nodes) {
    const auto [x, y, z] = node;
    if (shape.dimension == 3)
      node = {2 * x + y + 10, 3 * y + z - 20, x + z + 30}; // determinant 7
    else
      node = {2 * x + y + 10, 1.5 * x + 3 * y, 0}; // 4.5; a line grows by 2.5
  }
  const double factor = shape.dimension == 3 ? 7 : shape.dimension == 2 ? 4.5 : 2.5;
  const double wanted = factor * referenceMeasure(shape);
  EXPECT_NEAR(measureOf(GetParam(), nodes), wanted, 1e-12 * wanted);
}

TEST_P(EveryMeasure, InsideOutIsNegative) {
  const inp_Shape& shape = inp_shape(GetParam());
  if (shape.dimension < 2) return;
  std::vector<inpS_Point> nodes = placesOf(GetParam());
  for (inpS_Point& node : nodes) node[0] = -node[0];
  EXPECT_NEAR(measureOf(GetParam(), nodes), -referenceMeasure(shape), 1e-12);
}

INSTANTIATE_TEST_SUITE_P(, EveryMeasure, testing::ValuesIn(kinds),
                         [](const auto& at) { return std::string(inp_shape(at.param).name); });

// A frustum: 2 by 2 below, 1 by 1 above, height 1: (4 + 2 + 1) / 3.
TEST(ElementMeasureTest, StraightBrickOfUnequalFaces) {
  for (Kind kind : {Kind::Hex8, Kind::Hex20, Kind::Hex27}) {
    std::vector<inpS_Point> nodes = placesOf(kind);
    for (inpS_Point& node : nodes) {
      const double side = (3 - node[2]) / 4;
      node = {side * node[0], side * node[1], node[2] / 2};
    }
    EXPECT_NEAR(measureOf(kind, nodes), 7.0 / 3, 1e-13) << inp_shape(kind).name;
  }
}

// Twisted: the top turned by 90 degrees. A section at height t has the half diagonals
// (1 - t) a + t b with a ⊥ b, whose square is 1 - 2 t + 2 t²: its mean is 2/3 of the whole.
TEST(ElementMeasureTest, TwistedBrick) {
  std::vector<inpS_Point> nodes = placesOf(Kind::Hex8);
  for (std::size_t n = 4; n < 8; ++n) nodes[n] = {-nodes[n][1], nodes[n][0], 1};
  EXPECT_NEAR(measureOf(Kind::Hex8, nodes), 8 * 2.0 / 3, 1e-14);
  EXPECT_NEAR(inpS_measure(Functions::Of(Kind::Hex8), inpS_Space::Space, nodes), 8 * 2.0 / 3,
              1e-14);
}

// The edge y = -1 becomes a parabola that stands out by 0.3: 2/3 · 2 · 0.3 more.
TEST(ElementMeasureTest, BentEdges) {
  for (Kind kind : {Kind::Quad6, Kind::Quad8, Kind::Quad9, Kind::Hex20, Kind::Hex24}) {
    std::vector<inpS_Point> nodes = placesOf(kind);
    const bool isVolume = inp_shape(kind).dimension == 3;
    for (inpS_Point& node : nodes)
      if (node[0] == 0 && node[1] == -1) node[1] = -1.3;
    EXPECT_NEAR(measureOf(kind, nodes), (isVolume ? 2 : 1) * 4.4, 1e-13) << inp_shape(kind).name;
  }
  std::vector<inpS_Point> nodes = placesOf(Kind::Tri6);
  nodes[3][1] = -0.3;
  EXPECT_NEAR(measureOf(Kind::Tri6, nodes), 0.5 + 0.2, 1e-14);
}

TEST(ElementMeasureTest, AbsentNodesBendNothing) {
  std::vector<inpS_Point> nodes = placesOf(Kind::Hex27);
  for (inpS_Point& node : nodes)
    if (node[0] == 0 && node[1] == -1) node[1] = -1.3;
  nodes[20] = {9, 9, 9}; // the inside's node bends no edge, even where it is wrong
  EXPECT_NEAR(measureOf(Kind::Hex27, nodes, {21, 22, 23, 24, 25, 26, 27}), 8.8, 1e-13);
  std::vector<inpS_Point> square = placesOf(Kind::Quad8);
  square[4] = {0, -5, 0};
  EXPECT_NEAR(measureOf(Kind::Quad8, square, {5}), 4, 1e-14);
  EXPECT_TRUE(std::isnan(measureOf(Kind::Quad8, square, {2})));
}

TEST(ElementMeasureTest, AreaInSpaceHasNoSign) {
  const std::vector<inpS_Point> nodes = {{0, 0, 0}, {0, 0, 2}, {0, 3, 0}};
  EXPECT_NEAR(measureOf(Kind::Tri3, nodes, {}, inpS_Space::Space), 3, 1e-14);
}

namespace {

struct AreaCase {
  const char* name;
  Kind kind;
  std::vector<double> areas; // of the unit square or the triangle of area 1/2
};

const AreaCase areaCases[] = {
    {"Quad4", Kind::Quad4, {1. / 4, 1. / 4, 1. / 4, 1. / 4}},
    {"Quad8",
     Kind::Quad8,
     {-1. / 12, -1. / 12, -1. / 12, -1. / 12, 1. / 3, 1. / 3, 1. / 3, 1. / 3}},
    {"Quad9",
     Kind::Quad9,
     {1. / 36, 1. / 36, 1. / 36, 1. / 36, 1. / 9, 1. / 9, 1. / 9, 1. / 9, 4. / 9}},
    {"Quad6", Kind::Quad6, {1. / 12, 1. / 12, 1. / 12, 1. / 12, 1. / 3, 1. / 3}},
    {"Quad6Mid", Kind::Quad6Mid, {1. / 12, 1. / 12, 1. / 12, 1. / 12, 1. / 3, 1. / 3}},
    {"Tri3", Kind::Tri3, {1. / 6, 1. / 6, 1. / 6}},
    {"Tri6", Kind::Tri6, {0, 0, 0, 1. / 6, 1. / 6, 1. / 6}},
    {"Line2", Kind::Line2, {1. / 2, 1. / 2}},
    {"Line3", Kind::Line3, {1. / 6, 4. / 6, 1. / 6}},
};

std::vector<double> areasOf(const Functions& functions, const std::vector<inpS_Point>& nodes,
                            inpS_Depth depth = inpS_Depth::Unit, int absent = 0) {
  bool isAbsent[Functions::kMostNodes] = {};
  if (absent > 0) isAbsent[absent - 1] = true;
  std::vector<double> areas(functions.Nodes());
  inpS_nodalAreas(functions, depth, nodes, areas, {isAbsent, functions.Nodes()});
  return areas;
}

void expectAreas(const std::vector<double>& areas, const std::vector<double>& wanted) {
  ASSERT_EQ(areas.size(), wanted.size());
  for (std::size_t n = 0; n < areas.size(); ++n)
    EXPECT_NEAR(areas[n], wanted[n], 1e-14) << "node " << n + 1;
}

} // namespace

TEST(NodalAreasTest, OfFlatFaces) {
  for (const AreaCase& c : areaCases) {
    SCOPED_TRACE(c.name);
    std::vector<inpS_Point> nodes = placesOf(c.kind);
    const bool isTriangle = c.kind == Kind::Tri3 || c.kind == Kind::Tri6;
    for (inpS_Point& node : nodes) // upright, so that nothing depends on its place
      node = isTriangle ? inpS_Point{5, node[0], node[1]} : inpS_Point{5, node[0] / 2, node[1] / 2};
    expectAreas(areasOf(Functions::Of(c.kind), nodes), c.areas);
  }
}

// Nodes come in the order of the face's list: the side 1-5-6-2 of a brick with nodes in the middle
// of its upright edges, and the one with them above and below.
TEST(NodalAreasTest, OfFacesWithSomeMidsideNodes) {
  for (const auto& [kind, face] :
       {std::pair{Kind::Hex12, 2}, {Kind::Hex18, 2}, {Kind::Wedge12, 2}, {Kind::Wedge9, 2}}) {
    SCOPED_TRACE(inp_shape(kind).name);
    const auto number = static_cast<std::size_t>(face);
    const inp_ShapeList& list = inp_shape(kind).faces[number];
    std::vector<inpS_Point> nodes;
    for (unsigned char node : list.nodes) nodes.push_back(placesOf(kind)[node - 1u]);
    const auto areas = areasOf(Functions::OfFace(kind, number), nodes);
    const double area = list.nodes.size() && inp_shape(kind).corners == 8 ? 4 : 2;
    expectAreas(areas, {area / 12, area / 12, area / 12, area / 12, area / 3, area / 3});
  }
}

TEST(NodalAreasTest, AbsentMidsideNodeGivesToItsEdge) {
  std::vector<inpS_Point> nodes = placesOf(Kind::Quad8);
  for (inpS_Point& node : nodes) node = {node[0] / 2, node[1] / 2, 0};
  nodes[7] = {7, 7, 7};
  expectAreas(areasOf(Functions::Of(Kind::Quad8), nodes, inpS_Depth::Unit, 8),
              {1. / 12, -1. / 12, -1. / 12, 1. / 12, 1. / 3, 1. / 3, 1. / 3, 0});
}

// From r = 1 to 3: 2π ∫ N r dr.
TEST(NodalAreasTest, OfRings) {
  const double pi = std::numbers::pi;
  expectAreas(areasOf(Functions::Of(Kind::Line2), {{1, 4, 0}, {3, 4, 0}}, inpS_Depth::Ring),
              {10 * pi / 3, 14 * pi / 3});
  expectAreas(
      areasOf(Functions::Of(Kind::Line3), {{1, 4, 0}, {2, 4, 0}, {3, 4, 0}}, inpS_Depth::Ring),
      {2 * pi / 3, 16 * pi / 3, 2 * pi});
}
