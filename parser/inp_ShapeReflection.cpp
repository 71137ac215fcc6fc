#include "parser/inp_ShapeReflection.h"

#include <algorithm>
#include <vector>

namespace {

using Order = std::vector<unsigned char>;

// Searches the renumberings of one shape. Node numbers index m_order from 1; 0 is not yet given.
class ReflectionSearch {
public:
  ReflectionSearch(const inp_Shape& shape, int nodes) : m_shape(shape), m_nodes(nodes) {
    for (const inp_ShapeList& edge : shape.edges)
      m_corners.insert(m_corners.end(), edge.nodes.begin(), edge.nodes.begin() + 2);
    std::sort(m_corners.begin(), m_corners.end());
    m_corners.erase(std::unique(m_corners.begin(), m_corners.end()), m_corners.end());
  }

  Order Find() {
    m_order.assign(static_cast<std::size_t>(m_shape.nodes) + 1, 0);
    if (!GiveCorners(0)) return {};
    return {m_order.begin() + 1, m_order.begin() + 1 + m_nodes};
  }

private:
  bool GiveCorners(std::size_t next) {
    if (next == m_corners.size()) return CarriesAll();
    for (const unsigned char image : m_corners) {
      if (std::find(m_order.begin(), m_order.end(), image) != m_order.end()) continue;
      m_order[m_corners[next]] = image;
      if (KeepsEdges() && GiveCorners(next + 1)) return true;
      m_order[m_corners[next]] = 0;
    }
    return false;
  }

  bool KeepsEdges() const {
    return std::all_of(m_shape.edges.begin(), m_shape.edges.end(), [this](const auto& edge) {
      const unsigned char a = Image(edge, 0), b = Image(edge, 1);
      return a == 0 || b == 0 || FindEdge(a, b);
    });
  }

  // Once the corners have their images: gives the other nodes theirs.
  bool CarriesAll() {
    for (std::size_t node = 1; node < m_order.size(); ++node)
      if (!std::binary_search(m_corners.begin(), m_corners.end(), node)) m_order[node] = 0;
    for (const inp_ShapeList& edge : m_shape.edges)
      if (!CarryRestOf(edge, *FindEdge(Image(edge, 0), Image(edge, 1)))) return false;
    if (m_shape.dimension < 3 && !TurnsEdges()) return false;
    for (const inp_ShapeList& face : m_shape.faces) {
      const inp_ShapeList* image = FindTurned(face);
      if (!image || image->nodes.size() != face.nodes.size()) return false;
      if (&face == m_shape.faces.data() && image != &face) return false;
      // Corners and midside nodes went with the edges: what is left is the centre.
      if (m_order[face.nodes.back()] == 0) m_order[face.nodes.back()] = image->nodes.back();
    }
    for (std::size_t node = 1; node < m_order.size(); ++node) // the element's own centre
      if (m_order[node] == 0) m_order[node] = static_cast<unsigned char>(node);
    return std::all_of(m_order.begin() + 1, m_order.begin() + 1 + m_nodes,
                       [this](unsigned char node) { return node <= m_nodes; });
  }

  bool CarryRestOf(const inp_ShapeList& edge, const inp_ShapeList& image) {
    if (edge.nodes.size() != image.nodes.size()) return false;
    if (edge.nodes.size() == 3) m_order[edge.nodes[2]] = image.nodes[2];
    return true;
  }

  // The plane shapes' edges and the line itself are each the reverse of one.
  bool TurnsEdges() const {
    return std::all_of(m_shape.edges.begin(), m_shape.edges.end(), [this](const auto& edge) {
      const inp_ShapeList* image = FindEdge(Image(edge, 0), Image(edge, 1));
      return image && image->nodes[1] == Image(edge, 0);
    });
  }

  unsigned char Image(const inp_ShapeList& list, std::size_t i) const {
    return m_order[list.nodes[i]];
  }

  const inp_ShapeList* FindEdge(unsigned char a, unsigned char b) const {
    for (const inp_ShapeList& edge : m_shape.edges)
      if ((edge.nodes[0] == a && edge.nodes[1] == b) || (edge.nodes[0] == b && edge.nodes[1] == a))
        return &edge;
    return nullptr;
  }

  // The face whose corners are the images of this one's, in the opposite sense.
  const inp_ShapeList* FindTurned(const inp_ShapeList& face) const {
    Order turned;
    for (int i = face.corners; i > 0; --i)
      turned.push_back(Image(face, static_cast<std::size_t>(i) - 1));
    for (const inp_ShapeList& other : m_shape.faces) {
      if (other.corners != face.corners) continue;
      Order corners(other.nodes.begin(), other.nodes.begin() + other.corners);
      for (int i = 0; i < other.corners; ++i) {
        if (corners == turned) return &other;
        std::rotate(corners.begin(), corners.begin() + 1, corners.end());
      }
    }
    return nullptr;
  }

  const inp_Shape& m_shape;
  int m_nodes;
  Order m_corners;
  Order m_order;
};

// The orders of all shapes, by how many nodes are there.
class ReflectionTable {
public:
  ReflectionTable() {
    constexpr inp_ShapeKind kinds[] = {
#define INP_SHAPE(Name, ...) inp_ShapeKind::Name,
#include "parser/inp_shapes.def"
    };
    m_orders.resize(std::size(kinds) + 1); // without topology: none
    for (const inp_ShapeKind kind : kinds) {
      const inp_Shape& shape = inp_shape(kind);
      std::vector<Order>& orders = m_orders[static_cast<std::size_t>(kind)];
      orders.resize(static_cast<std::size_t>(shape.nodes) + 1);
      for (int nodes = LastOfEdges(shape); nodes <= shape.nodes; ++nodes)
        orders[static_cast<std::size_t>(nodes)] = ReflectionSearch(shape, nodes).Find();
    }
  }

  std::span<const unsigned char> At(inp_ShapeKind kind, int nodes) const {
    const std::vector<Order>& orders = m_orders[static_cast<std::size_t>(kind)];
    if (nodes < 0 || static_cast<std::size_t>(nodes) >= orders.size()) return {};
    return orders[static_cast<std::size_t>(nodes)];
  }

private:
  static int LastOfEdges(const inp_Shape& shape) {
    int last = shape.corners;
    for (const inp_ShapeList& edge : shape.edges)
      for (const unsigned char node : edge.nodes) last = std::max<int>(last, node);
    return last;
  }

  std::vector<std::vector<Order>> m_orders;
};

} // namespace

std::span<const unsigned char> inp_reflectedOrder(inp_ShapeKind kind, int nodes) {
  static const ReflectionTable table;
  return table.At(kind, nodes);
}
