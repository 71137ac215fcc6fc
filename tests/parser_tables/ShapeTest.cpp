#include "parser/inp_Shape.h"
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

} // namespace
