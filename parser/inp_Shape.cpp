#include "parser/inp_Shape.h"

#include "base/utl_Assert.h"
#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>

namespace {

struct ShapeRow {
  inp_ShapeKind kind;
  std::string_view name;
  int dimension;
  int nodes;
  int corners;
  std::string_view edges;
  std::string_view faces;
};

constexpr ShapeRow shapeRows[] = {
    {inp_ShapeKind::None, "None", 0, 0, 0, "", ""},
#define INP_SHAPE(Name, Dimension, Nodes, Corners, Edges, Faces)                                   \
  {inp_ShapeKind::Name, #Name, Dimension, Nodes, Corners, Edges, Faces},
#include "parser/inp_shapes.def"
};
constexpr std::size_t shapeCount = std::size(shapeRows);

constexpr std::size_t countOf(bool lists) {
  std::size_t count = 0;
  for (const ShapeRow& row : shapeRows)
    for (std::string_view text : {row.edges, row.faces}) {
      if (text.empty()) continue;
      ++count;
      for (char c : text)
        if (c == ' ' || (!lists && c == '-')) ++count;
    }
  return count;
}

// The lists of all shapes, cut once from their texts into two flat arrays.
class ShapeTable {
public:
  ShapeTable() {
    for (std::size_t i = 0; i < shapeCount; ++i) {
      const ShapeRow& row = shapeRows[i];
      inp_Shape& shape = m_shapes[i];
      shape = {row.kind, row.name, row.dimension, row.nodes, row.corners, {}, {}};
      shape.edges = Cut(row, row.edges);
      shape.faces = Cut(row, row.faces);
    }
  }
  const inp_Shape& At(inp_ShapeKind kind) const { return m_shapes[static_cast<std::size_t>(kind)]; }

private:
  std::span<const inp_ShapeList> Cut(const ShapeRow& row, std::string_view text) {
    const std::size_t first = m_listsUsed;
    std::size_t at = 0;
    while (at < text.size()) {
      const std::size_t end = std::min(text.find(' ', at), text.size());
      m_lists[m_listsUsed++] = CutList(row, text.substr(at, end - at));
      at = end + 1;
    }
    return {&m_lists[first], m_listsUsed - first};
  }

  inp_ShapeList CutList(const ShapeRow& row, std::string_view text) {
    const std::size_t first = m_nodesUsed;
    unsigned char number = 0;
    for (char c : text) {
      if (c == '-') {
        m_nodes[m_nodesUsed++] = number;
        number = 0;
      } else {
        number = static_cast<unsigned char>(number * 10 + (c - '0'));
      }
    }
    m_nodes[m_nodesUsed++] = number;
    const std::span<const unsigned char> nodes{&m_nodes[first], m_nodesUsed - first};
    return {nodes, CornersOf(row, nodes)};
  }

  static int CornersOf(const ShapeRow& row, std::span<const unsigned char> nodes) {
    if (row.dimension == 1) return 2; // a line's own nodes: Line3 counts its middle node second
    int corners = 0;
    for (unsigned char node : nodes)
      if (node <= row.corners) ++corners;
    return corners;
  }

  std::array<inp_Shape, shapeCount> m_shapes{};
  std::array<inp_ShapeList, countOf(true) + 1> m_lists{};
  std::array<unsigned char, countOf(false) + 1> m_nodes{};
  std::size_t m_listsUsed = 0;
  std::size_t m_nodesUsed = 0;
};

} // namespace

const inp_Shape& inp_shape(inp_ShapeKind kind) {
  static const ShapeTable table;
  utl_ASSERT(static_cast<std::size_t>(kind) < shapeCount);
  return table.At(kind);
}
