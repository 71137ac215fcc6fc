#include "parser/inp_ShapeReflection.h"
#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <vector>

namespace {

using Point = std::array<double, 3>;

constexpr inp_ShapeKind allShapes[] = {
#define INP_SHAPE(Name, ...) inp_ShapeKind::Name,
#include "parser/inp_shapes.def"
};

Point operator+(Point a, Point b) {
  return {a[0] + b[0], a[1] + b[1], a[2] + b[2]};
}
Point operator-(Point a, Point b) {
  return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}
double dot(Point a, Point b) {
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}
Point cross(Point a, Point b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

bool isInfinite(const inp_Shape& shape) {
  return shape.name.starts_with("Inf");
}

// Reference geometry, by the number of corners: the plane shapes count counter-clockwise, the
// solids' bottom lies at z = 0 and counts counter-clockwise seen from the top.
std::vector<Point> corners(const inp_Shape& shape) {
  const std::vector<Point> square = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}};
  const std::vector<Point> triangle = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
  const auto lifted = [](std::vector<Point> points) {
    const std::size_t bottom = points.size();
    for (std::size_t i = 0; i < bottom; ++i) points.push_back(points[i] + Point{0, 0, 1});
    return points;
  };
  if (shape.dimension == 2) return shape.corners == 3 ? triangle : square;
  switch (shape.corners) {
  case 4:
    return {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
  case 5:
    return {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0.5, 0.5, 1}};
  case 6:
    return lifted(triangle);
  default:
    return lifted(square);
  }
}

// Twice the area vector of a polygon, by the right hand.
Point areaOf(const inp_ShapeList& face, const std::vector<Point>& at) {
  Point sum{};
  for (int i = 0; i < face.corners; ++i) {
    const Point& a = at[face.nodes[static_cast<std::size_t>(i)] - 1u];
    const Point& b = at[face.nodes[static_cast<std::size_t>((i + 1) % face.corners)] - 1u];
    sum = sum + cross(a, b);
  }
  return sum;
}

TEST(Shapes, NodeNumbersAreInRangeAndDistinct) {
  for (inp_ShapeKind kind : allShapes) {
    const inp_Shape& shape = inp_shape(kind);
    EXPECT_EQ(shape.kind, kind);
    for (auto lists : {shape.edges, shape.faces})
      for (const inp_ShapeList& list : lists) {
        EXPECT_EQ(std::set(list.nodes.begin(), list.nodes.end()).size(), list.nodes.size());
        for (unsigned char node : list.nodes) {
          EXPECT_GE(node, 1) << shape.name;
          EXPECT_LE(node, shape.nodes) << shape.name;
        }
      }
  }
}

// Each midside node belongs to one edge, and edges alone hold all nodes but the centres of faces
// and of the element.
TEST(Shapes, EdgesHoldAllButTheCentres) {
  const std::map<std::string_view, int> centres = {{"Quad9", 1}, {"Wedge18", 3}, {"Hex18", 2},
                                                   {"Hex24", 4}, {"Hex27", 7},   {"InfHex18", 2}};
  for (inp_ShapeKind kind : allShapes) {
    const inp_Shape& shape = inp_shape(kind);
    if (shape.dimension == 0) continue;
    std::multiset<int> midside;
    std::set<int> held;
    for (const inp_ShapeList& edge : shape.edges) {
      ASSERT_EQ(edge.corners, 2) << shape.name;
      ASSERT_LE(edge.nodes.size(), 3u) << shape.name;
      held.insert(edge.nodes.begin(), edge.nodes.end());
      if (edge.nodes.size() == 3) midside.insert(edge.nodes[2]);
    }
    EXPECT_EQ(std::set(midside.begin(), midside.end()).size(), midside.size()) << shape.name;
    const int expected = centres.count(shape.name) ? centres.at(shape.name) : 0;
    EXPECT_EQ(shape.nodes - static_cast<int>(held.size()), expected) << shape.name;
  }
}

// A face lists its corners, then the midside nodes of its own edges in turn, then its centre.
TEST(Shapes, FacesTakeTheMidsideNodesOfTheirEdges) {
  for (inp_ShapeKind kind : allShapes) {
    const inp_Shape& shape = inp_shape(kind);
    if (shape.dimension != 3) continue;
    std::map<std::set<int>, int> middle;
    for (const inp_ShapeList& edge : shape.edges)
      middle[{edge.nodes[0], edge.nodes[1]}] = edge.nodes.size() == 3 ? edge.nodes[2] : 0;
    std::multiset<int> centres;
    for (const inp_ShapeList& face : shape.faces) {
      const auto count = static_cast<std::size_t>(face.corners);
      std::vector<int> expected(face.nodes.begin(), face.nodes.begin() + face.corners);
      for (std::size_t i = 0; i < count; ++i) {
        const auto edge = middle.find({face.nodes[i], face.nodes[(i + 1) % count]});
        ASSERT_NE(edge, middle.end()) << shape.name;
        if (edge->second) expected.push_back(edge->second);
      }
      std::vector<int> listed(face.nodes.begin(), face.nodes.end());
      if (listed.size() == expected.size() + 1) {
        centres.insert(listed.back());
        listed.pop_back();
      }
      EXPECT_EQ(listed, expected) << shape.name;
    }
    EXPECT_EQ(std::set(centres.begin(), centres.end()).size(), centres.size()) << shape.name;
  }
}

TEST(Shapes, FacesOfSolidsTurnInwardAndClose) {
  const std::map<int, std::size_t> facesByCorners = {{4, 4}, {5, 5}, {6, 5}, {8, 6}};
  for (inp_ShapeKind kind : allShapes) {
    const inp_Shape& shape = inp_shape(kind);
    if (shape.dimension != 3 || isInfinite(shape)) continue;
    EXPECT_EQ(shape.faces.size(), facesByCorners.at(shape.corners)) << shape.name;
    const std::vector<Point> at = corners(shape);
    Point centre{};
    for (const Point& point : at) centre = centre + point;
    for (double& x : centre) x /= static_cast<double>(at.size());
    Point sum{};
    std::map<std::pair<int, int>, int> walked;
    for (const inp_ShapeList& face : shape.faces) {
      const Point area = areaOf(face, at);
      sum = sum + area;
      EXPECT_GT(dot(area, centre - at[face.nodes[0] - 1u]), 0) << shape.name;
      for (int i = 0; i < face.corners; ++i)
        ++walked[{face.nodes[static_cast<std::size_t>(i)],
                  face.nodes[static_cast<std::size_t>((i + 1) % face.corners)]}];
    }
    EXPECT_NEAR(dot(sum, sum), 0, 1e-24) << shape.name;
    EXPECT_EQ(walked.size(), 2 * shape.edges.size()) << shape.name;
    for (const inp_ShapeList& edge : shape.edges) { // in two faces, once in each direction
      EXPECT_EQ((walked[{edge.nodes[0], edge.nodes[1]}]), 1) << shape.name;
      EXPECT_EQ((walked[{edge.nodes[1], edge.nodes[0]}]), 1) << shape.name;
    }
  }
}

TEST(Shapes, EdgesOfPlaneShapesCloseInTurn) {
  for (inp_ShapeKind kind : allShapes) {
    const inp_Shape& shape = inp_shape(kind);
    if (shape.dimension != 2) continue;
    ASSERT_EQ(static_cast<int>(shape.edges.size()), shape.corners) << shape.name;
    for (std::size_t i = 0; i < shape.edges.size(); ++i) {
      const inp_ShapeList& next = shape.edges[(i + 1) % shape.edges.size()];
      EXPECT_EQ(shape.edges[i].nodes[0], i + 1) << shape.name;
      EXPECT_EQ(shape.edges[i].nodes[1], next.nodes[0]) << shape.name;
    }
    for (std::size_t i = 0; i < shape.faces.size(); ++i)
      EXPECT_TRUE(std::ranges::equal(shape.faces[i].nodes, shape.edges[i].nodes)) << shape.name;
    EXPECT_EQ(shape.faces.size(), isInfinite(shape) ? 1u : shape.edges.size()) << shape.name;
  }
}

TEST(Shapes, BricksNumberTheirFacesAsDecksDo) {
  const std::vector<std::vector<int>> faces = {{1, 2, 3, 4}, {5, 8, 7, 6}, {1, 5, 6, 2},
                                               {2, 6, 7, 3}, {3, 7, 8, 4}, {4, 8, 5, 1}};
  const inp_Shape& brick = inp_shape(inp_ShapeKind::Hex8);
  for (std::size_t i = 0; i < faces.size(); ++i)
    EXPECT_TRUE(std::ranges::equal(brick.faces[i].nodes, faces[i])) << "S" << i + 1;
}

// ---- mirrored elements

// Behind the nodes of its edges a face has at most its centre.
bool hasFaceCentre(const inp_Shape& shape, const inp_ShapeList& face) {
  return shape.dimension == 3 &&
         std::ranges::none_of(shape.edges, [last = face.nodes.back()](const inp_ShapeList& edge) {
           return std::ranges::find(edge.nodes, last) != edge.nodes.end();
         });
}

// All nodes of the reference element: midside nodes halve their edges, centres those of faces.
std::vector<Point> nodesOf(const inp_Shape& shape) {
  std::vector<Point> at(static_cast<std::size_t>(shape.nodes), Point{0.5, 0.5, 0.5});
  const std::vector<Point> given = corners(shape);
  std::copy(given.begin(), given.end(), at.begin());
  const auto halve = [&at](const inp_ShapeList& list, unsigned char middle) {
    Point sum{};
    for (int i = 0; i < list.corners; ++i)
      sum = sum + at[list.nodes[static_cast<std::size_t>(i)] - 1u];
    for (double& x : sum) x /= list.corners;
    at[middle - 1u] = sum;
  };
  for (const inp_ShapeList& edge : shape.edges)
    if (edge.nodes.size() == 3) halve(edge, edge.nodes[2]);
  for (const inp_ShapeList& face : shape.faces)
    if (hasFaceCentre(shape, face)) halve(face, face.nodes.back());
  return at;
}

// How many of a shape's nodes an element may have and still be mirrored.
std::vector<int> countsOf(const inp_Shape& shape) {
  if (shape.name == "Hex27") return {20, 21, 22, 23, 24, 25, 26, 27};
  if (shape.name == "Wedge18") return {15, 16, 17, 18};
  if (shape.name == "Hex18") return {16, 17, 18};
  return {shape.nodes};
}

// The image in the plane x = 0, node by node in the order asked for.
std::vector<Point> mirrored(const inp_Shape& shape, std::span<const unsigned char> order) {
  const std::vector<Point> at = nodesOf(shape);
  std::vector<Point> image;
  for (const unsigned char node : order)
    image.push_back({-at[node - 1u][0], at[node - 1u][1], at[node - 1u][2]});
  return image;
}

// Midside nodes lie in the middle of their edges, centres in the middle of their faces.
void expectMiddles(const inp_Shape& shape, const std::vector<Point>& at) {
  const auto nodes = static_cast<int>(at.size());
  const auto isMiddle = [&](const inp_ShapeList& list) {
    Point off{};
    for (int i = 0; i < list.corners; ++i)
      off = off + at[list.nodes[static_cast<std::size_t>(i)] - 1u] - at[list.nodes.back() - 1u];
    return dot(off, off) < 1e-24;
  };
  for (const inp_ShapeList& edge : shape.edges)
    EXPECT_TRUE(edge.nodes.size() < 3 || isMiddle(edge)) << shape.name;
  for (const inp_ShapeList& face : shape.faces) {
    const bool hasCentre = hasFaceCentre(shape, face) && face.nodes.back() <= nodes;
    EXPECT_TRUE(!hasCentre || isMiddle(face)) << shape.name;
  }
}

TEST(Reflection, NoShapeTurnsInsideOut) {
  for (inp_ShapeKind kind : allShapes) {
    const inp_Shape& shape = inp_shape(kind);
    for (const int nodes : shape.dimension >= 2 ? countsOf(shape) : std::vector<int>{}) {
      const auto order = inp_reflectedOrder(kind, nodes);
      ASSERT_EQ(order.size(), static_cast<std::size_t>(nodes)) << shape.name;
      ASSERT_EQ(std::set(order.begin(), order.end()).size(), order.size()) << shape.name;
      ASSERT_LE(*std::ranges::max_element(order), nodes) << shape.name;
      const std::vector<Point> at = mirrored(shape, order);
      expectMiddles(shape, at);
      if (shape.dimension == 2) { // still counter-clockwise
        Point area{};
        for (const inp_ShapeList& edge : shape.edges)
          area = area + cross(at[edge.nodes[0] - 1u], at[edge.nodes[1] - 1u]);
        EXPECT_GT(area[2], 0) << shape.name;
        continue;
      }
      Point centre{};
      for (int i = 0; i < shape.corners; ++i) centre = centre + at[static_cast<std::size_t>(i)];
      for (double& x : centre) x /= shape.corners;
      for (const inp_ShapeList& face : shape.faces)
        EXPECT_GT(dot(areaOf(face, at), centre - at[face.nodes[0] - 1u]), 0) << shape.name;
    }
  }
}

// What is stacked, and what is infinite, begins with the same face as before.
TEST(Reflection, FirstFaceStays) {
  for (inp_ShapeKind kind : allShapes) {
    const inp_Shape& shape = inp_shape(kind);
    if (shape.faces.empty()) continue;
    std::set<int> image;
    for (const unsigned char node : shape.faces[0].nodes)
      image.insert(inp_reflectedOrder(kind, shape.nodes)[node - 1u]);
    EXPECT_EQ(image, std::set<int>(shape.faces[0].nodes.begin(), shape.faces[0].nodes.end()))
        << shape.name;
  }
}

TEST(Reflection, OrdersByHand) {
  using Kind = inp_ShapeKind;
  const std::map<Kind, std::vector<int>> orders = {
      {Kind::Point, {1}},
      {Kind::Line3, {3, 2, 1}},
      {Kind::Tri6, {2, 1, 3, 4, 6, 5}},
      {Kind::Quad8, {2, 1, 4, 3, 5, 8, 7, 6}},
      {Kind::Tet10, {1, 3, 2, 4, 7, 6, 5, 8, 10, 9}},
      {Kind::Pyramid5, {1, 4, 3, 2, 5}},
      {Kind::Wedge15, {1, 3, 2, 4, 6, 5, 9, 8, 7, 12, 11, 10, 13, 15, 14}},
      {Kind::Hex20, {1, 4, 3, 2, 5, 8, 7, 6, 12, 11, 10, 9, 16, 15, 14, 13, 17, 20, 19, 18}}};
  for (const auto& [kind, order] : orders)
    EXPECT_TRUE(std::ranges::equal(inp_reflectedOrder(kind, static_cast<int>(order.size())), order))
        << inp_shape(kind).name;
  EXPECT_TRUE(inp_reflectedOrder(Kind::None, 8).empty());
  EXPECT_TRUE(inp_reflectedOrder(Kind::Hex20, 19).empty());
}

} // namespace
