#include "inpS/geometry/inpS_FaceSearch.h"
#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <set>

namespace {

using Kind = inp_ShapeKind;
using Nodes = std::vector<int32_t>;

struct Elements {
  Kind kind;
  Nodes corners;
  int64_t nodeBase = 0;
};

// The free faces of each block, S1 = 1, as pairs of element and face.
using Faces = std::vector<std::set<std::pair<int, int>>>;

Faces search(const std::vector<Elements>& blocks) {
  inpS_FaceSearch faces;
  for (const Elements& block : blocks) {
    const inp_Shape& shape = inp_shape(block.kind);
    faces.Add(shape, shape.faces, block.corners, block.nodeBase);
  }
  faces.Run();
  Faces found(blocks.size());
  for (std::size_t n = 0; n < blocks.size(); ++n) {
    const std::size_t lists = inp_shape(blocks[n].kind).faces.size();
    const auto free = faces.Free(n);
    for (std::size_t at = 0; at < free.size(); ++at)
      if (free[at])
        found[n].insert({static_cast<int>(at / lists), static_cast<int>(at % lists) + 1});
  }
  return found;
}

std::set<std::pair<int, int>> allBut(int faces, std::set<int> shared, int element = 0) {
  std::set<std::pair<int, int>> all;
  for (int face = 1; face <= faces; ++face)
    if (!shared.count(face)) all.insert({element, face});
  return all;
}

} // namespace

TEST(FaceSearchTest, NeighboursInOneBlock) {
  // The second on top of the first.
  const auto found = search({{Kind::Hex8, {0, 1, 2, 3, 4, 5, 6, 7, 4, 5, 6, 7, 8, 9, 10, 11}}});
  std::set<std::pair<int, int>> wanted = allBut(6, {2});
  wanted.merge(allBut(6, {1}, 1));
  EXPECT_EQ(found[0], wanted);
}

TEST(FaceSearchTest, NeighboursOfOtherTypesAndBases) {
  // A pyramid on the brick's top, a tetrahedron on the pyramid's face S2, a wedge at the brick's S3
  // (1-5-6-2) and an infinite brick on its bottom.
  const auto found = search({{Kind::Hex8, {0, 1, 2, 3, 4, 5, 6, 7}, 100},
                             {Kind::Pyramid5, {4, 5, 6, 7, 8}, 100},
                             {Kind::Tet4, {105, 104, 108, 120}, 0},
                             {Kind::Wedge6, {100, 121, 101, 104, 122, 105}, 0},
                             {Kind::InfHex8, {3, 2, 1, 0, 30, 31, 32, 33}, 100}});
  EXPECT_EQ(found[0], allBut(6, {1, 2, 3}));
  EXPECT_EQ(found[1], allBut(5, {1, 2}));
  EXPECT_EQ(found[2], allBut(4, {1}));
  EXPECT_EQ(found[3], allBut(5, {5}));
  EXPECT_TRUE(found[4].empty());
}

TEST(FaceSearchTest, CollapsedFaces) {
  // A brick whose edge 3-4 is one node, and 7-8 too: a wedge. S5 is no face; the bottom is a
  // triangle and meets a tetrahedron.
  const auto found = search({{Kind::Hex8, {0, 1, 2, 2, 4, 5, 6, 6}}, {Kind::Tet4, {1, 0, 2, 9}}});
  EXPECT_EQ(found[0], allBut(6, {1, 5}));
  EXPECT_EQ(found[1], allBut(4, {1}));
}

TEST(FaceSearchTest, FaceOfThreeElementsIsNotFree) {
  const auto found = search({{Kind::Tet4, {0, 1, 2, 3, 0, 1, 2, 4, 2, 1, 0, 5}}});
  for (int element = 0; element < 3; ++element) EXPECT_FALSE(found[0].count({element, 1}));
  EXPECT_EQ(found[0].size(), 9u);
}

TEST(FaceSearchTest, AbsentCornerMakesNoFace) {
  // Nor one with node 4, the last in front of the base.
  const auto found = search({{Kind::Quad4, {0, 1, -1, 3}, 5}, {Kind::Quad4, {6, 4, 9, 10}}});
  EXPECT_EQ(found[0], (std::set<std::pair<int, int>>{{0, 1}, {0, 4}}));
  EXPECT_EQ(found[1], allBut(4, {}));
}

TEST(FaceSearchTest, NothingGiven) {
  EXPECT_TRUE(search({}).empty());
  EXPECT_TRUE(search({{Kind::Hex8, {}}})[0].empty());
}

// Against a map of sorted corners: elements thrown together from few nodes share, repeat and
// collapse faces in every way, and one node has them all.
TEST(FaceSearchTest, ByChance) {
  std::mt19937 random(7);
  for (const auto& size : {std::pair{12, 40}, {60, 4000}, {2000, 8000}}) {
    const int nodes = size.first;
    const int count = size.second;
    std::vector<Elements> blocks = {
        {Kind::Hex8, {}}, {Kind::Tet4, {}}, {Kind::Wedge6, {}}, {Kind::Quad4, {}}};
    for (Elements& block : blocks) {
      const int width = inp_shape(block.kind).corners;
      for (int n = 0; n < count; ++n)
        for (int corner = 0; corner < width; ++corner)
          block.corners.push_back(
              corner == 0 && n % 2 ? 3
                                   : static_cast<int32_t>(random() % static_cast<unsigned>(nodes)));
    }
    std::map<std::set<int32_t>, int> uses;
    const auto forEachFace = [&](auto use) {
      for (std::size_t b = 0; b < blocks.size(); ++b) {
        const inp_Shape& shape = inp_shape(blocks[b].kind);
        for (int n = 0; n < count; ++n)
          for (std::size_t face = 0; face < shape.faces.size(); ++face) {
            std::set<int32_t> corners;
            for (int c = 0; c < shape.faces[face].corners; ++c)
              corners.insert(blocks[b].corners[static_cast<std::size_t>(
                  n * shape.corners + shape.faces[face].nodes[static_cast<std::size_t>(c)] - 1)]);
            if (static_cast<int>(corners.size()) >= shape.dimension)
              use(b, n, static_cast<int>(face) + 1, corners);
          }
      }
    };
    forEachFace([&](std::size_t, int, int, const auto& corners) { ++uses[corners]; });
    Faces wanted(blocks.size());
    forEachFace([&](std::size_t b, int element, int face, const auto& corners) {
      if (uses[corners] == 1) wanted[b].insert({element, face});
    });
    EXPECT_EQ(search(blocks), wanted) << nodes << " nodes";
  }
}
