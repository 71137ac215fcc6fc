#include "inpS/geometry/inpS_ShapeFunctions.h"
#include "base/utl_Assert.h"
#include <algorithm>
#include <cmath>
#include <numeric>

struct inpS_ShapeFunctions::Part {
  double value = 1;
  inpS_Point by{}; // derivatives

  // The product with a factor that depends on what `derivative` says.
  void Times(double factor, const inpS_Point& derivative) {
    for (std::size_t n = 0; n < 3; ++n) by[n] = by[n] * factor + value * derivative[n];
    value *= factor;
  }
};

// ---- the table of all shapes, their faces and edges

class inpS_ShapeFunctions::Table {
public:
  Table() {
    static constexpr inp_ShapeKind kinds[] = {
        inp_ShapeKind::None,
#define INP_SHAPE(Name, ...) inp_ShapeKind::Name,
#include "parser/inp_shapes.def"
    };
    for (inp_ShapeKind kind : kinds) {
      const inp_Shape& shape = inp_shape(kind);
      m_shapes.push_back(inpS_ShapeFunctions(shape));
      auto& faces = m_faces.emplace_back();
      for (const inp_ShapeList& list : shape.faces)
        faces.push_back(inpS_ShapeFunctions(shape, list));
      auto& edges = m_edges.emplace_back();
      for (const inp_ShapeList& list : shape.edges)
        edges.push_back(inpS_ShapeFunctions(shape, list));
    }
  }
  static const Table& Instance() {
    static const Table table;
    return table;
  }

  std::vector<inpS_ShapeFunctions> m_shapes; // by kind
  std::vector<std::vector<inpS_ShapeFunctions>> m_faces;
  std::vector<std::vector<inpS_ShapeFunctions>> m_edges;
};

const inpS_ShapeFunctions& inpS_ShapeFunctions::Of(inp_ShapeKind kind) {
  return Table::Instance().m_shapes[static_cast<std::size_t>(kind)];
}

const inpS_ShapeFunctions& inpS_ShapeFunctions::OfFace(inp_ShapeKind kind, std::size_t face) {
  const auto& faces = Table::Instance().m_faces[static_cast<std::size_t>(kind)];
  utl_ASSERT(face < faces.size());
  return faces[face];
}

const inpS_ShapeFunctions& inpS_ShapeFunctions::OfEdge(inp_ShapeKind kind, std::size_t edge) {
  const auto& edges = Table::Instance().m_edges[static_cast<std::size_t>(kind)];
  utl_ASSERT(edge < edges.size());
  return edges[edge];
}

// ---- where the nodes are

inpS_ShapeFunctions::Family inpS_ShapeFunctions::FamilyOf(int dimension, int corners) {
  switch (dimension) {
  case 1:
    return Family::Line;
  case 2:
    return corners == 3 ? Family::Triangle : Family::Quad;
  case 3:
    return corners == 4   ? Family::Tet
           : corners == 5 ? Family::Pyramid
           : corners == 6 ? Family::Wedge
                          : Family::Hex;
  default:
    return Family::Point;
  }
}

std::span<const inpS_Point> inpS_ShapeFunctions::CornersOf(Family family) {
  static constexpr inpS_Point line[] = {{-1}, {1}};
  static constexpr inpS_Point triangle[] = {{0, 0}, {1, 0}, {0, 1}};
  static constexpr inpS_Point quad[] = {{-1, -1}, {1, -1}, {1, 1}, {-1, 1}};
  static constexpr inpS_Point tet[] = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
  static constexpr inpS_Point pyramid[] = {{-1, -1}, {1, -1}, {1, 1}, {-1, 1}, {0, 0, 1}};
  static constexpr inpS_Point wedge[] = {{0, 0, -1}, {1, 0, -1}, {0, 1, -1},
                                         {0, 0, 1},  {1, 0, 1},  {0, 1, 1}};
  static constexpr inpS_Point hex[] = {{-1, -1, -1}, {1, -1, -1}, {1, 1, -1}, {-1, 1, -1},
                                       {-1, -1, 1},  {1, -1, 1},  {1, 1, 1},  {-1, 1, 1}};
  static constexpr inpS_Point point[] = {{0}};
  switch (family) {
  case Family::Line:
    return line;
  case Family::Triangle:
    return triangle;
  case Family::Quad:
    return quad;
  case Family::Tet:
    return tet;
  case Family::Pyramid:
    return pyramid;
  case Family::Wedge:
    return wedge;
  case Family::Hex:
    return hex;
  case Family::Point:
    break;
  }
  return point;
}

// At the mean of nodes already placed.
void inpS_ShapeFunctions::PlaceBetween(std::span<const std::size_t> corners, std::size_t node) {
  inpS_Point mean{};
  for (std::size_t corner : corners)
    for (std::size_t n = 0; n < 3; ++n)
      mean[n] += m_places[corner][n] / static_cast<double>(corners.size());
  m_places[node] = mean;
}

namespace {

// What a list has behind its corners: midside nodes, each of the edge between two of its corners,
// and a centre.
template <class Place>
void placeBehindCorners(const inp_Shape& shape, const inp_ShapeList& list, Place place) {
  const auto corners = static_cast<std::size_t>(list.corners);
  const auto isIn = [](const auto& nodes, unsigned char node) {
    return std::find(nodes.begin(), nodes.end(), node) != nodes.end();
  };
  for (std::size_t n = corners; n < list.nodes.size(); ++n) {
    const unsigned char node = list.nodes[n];
    std::vector<std::size_t> between;
    for (const inp_ShapeList& edge : shape.edges)
      if (isIn(edge.nodes.subspan(2), node))
        for (std::size_t c = 0; c < corners; ++c)
          if (isIn(edge.nodes.first(2), list.nodes[c])) between.push_back(c);
    if (between.size() != 2) {
      between.resize(corners);
      std::iota(between.begin(), between.end(), std::size_t{0});
    }
    place(std::span<const std::size_t>(between), n);
  }
}

} // namespace

inpS_ShapeFunctions::inpS_ShapeFunctions(const inp_Shape& shape)
    : m_family(FamilyOf(shape.dimension, shape.corners)), m_dimension(shape.dimension),
      m_places(static_cast<std::size_t>(shape.nodes)) {
  if (shape.nodes == 0) return;
  const std::span<const inpS_Point> corners = CornersOf(m_family);
  // Lines alone do not number their corners first; what no edge or face has is the inside's node.
  std::vector<std::size_t> at(corners.size());
  std::iota(at.begin(), at.end(), std::size_t{0});
  if (shape.dimension == 1)
    for (std::size_t n = 0; n < 2; ++n) at[n] = shape.edges[0].nodes[n] - 1u;
  for (std::size_t n = 0; n < corners.size(); ++n) m_places[at[n]] = corners[n];
  if (m_places.size() > corners.size())
    for (std::size_t n = 0; n < m_places.size(); ++n)
      if (std::find(at.begin(), at.end(), n) == at.end()) PlaceBetween(at, n);
  for (const auto& lists : {shape.faces, shape.edges})
    for (const inp_ShapeList& list : lists)
      placeBehindCorners(shape, list, [&](std::span<const std::size_t> between, std::size_t n) {
        std::vector<std::size_t> nodes;
        for (std::size_t corner : between) nodes.push_back(list.nodes[corner] - 1u);
        PlaceBetween(nodes, list.nodes[n] - 1u);
      });
  Finish();
}

inpS_ShapeFunctions::inpS_ShapeFunctions(const inp_Shape& shape, const inp_ShapeList& list)
    : m_family(list.corners == 2 ? Family::Line : FamilyOf(2, list.corners)),
      m_dimension(list.corners == 2 ? 1 : 2), m_places(list.nodes.size()) {
  const std::span<const inpS_Point> corners = CornersOf(m_family);
  std::copy(corners.begin(), corners.end(), m_places.begin());
  placeBehindCorners(shape, list, [&](std::span<const std::size_t> between, std::size_t n) {
    PlaceBetween(between, n);
  });
  Finish();
}

// ---- the functions

namespace {

// Along one direction from -1 to 1: of a node at an end, or of the one in the middle.
void timesAlong(auto& part, double node, std::size_t direction, double at) {
  inpS_Point derivative{};
  derivative[direction] = node == 0 ? -2 * at : node / 2;
  part.Times(node == 0 ? 1 - at * at : (1 + node * at) / 2, derivative);
}

// Of a triangle's or tetrahedron's node: the coordinate of the corner it is at, or four times the
// product of the two it is between.
void timesOfSimplex(auto& part, const inpS_Point& node, std::size_t directions,
                    const inpS_Point& at) {
  double rest = 1, restOfNode = 1;
  inpS_Point ofRest{};
  bool isBetween = false;
  const auto use = [&](double nodes, double coordinate, const inpS_Point& derivative) {
    if (nodes == 0) return;
    part.Times(coordinate, derivative);
    isBetween = isBetween || nodes != 1;
  };
  for (std::size_t n = 0; n < directions; ++n) {
    inpS_Point derivative{};
    derivative[n] = 1;
    ofRest[n] = -1;
    rest -= at[n];
    restOfNode -= node[n];
    use(node[n], at[n], derivative);
  }
  use(restOfNode, rest, ofRest);
  if (isBetween) part.Times(4, {});
}

// A pyramid's narrow towards its top: with a = 1 - t, (a + r·node) or (a² - r²).
void timesAcross(auto& part, double node, std::size_t direction, const inpS_Point& at) {
  const double a = 1 - at[2];
  inpS_Point derivative{};
  derivative[2] = node == 0 ? -2 * a : -1;
  derivative[direction] = node == 0 ? -2 * at[direction] : node;
  part.Times(node == 0 ? a * a - at[direction] * at[direction] : a + node * at[direction],
             derivative);
}

void timesOfPyramid(auto& part, const inpS_Point& node, const inpS_Point& at) {
  const double a = 1 - at[2];
  if (node[2] > 0) part.Times(at[2], {0, 0, 1}); // the top, or between it and the base
  if (node[2] == 1) return;
  if (a == 0) { // at the top all others vanish
    part.Times(0, {});
    return;
  }
  const bool isUpright = node[2] > 0;
  const auto sign = [](double x) { return x == 0 ? 0.0 : x < 0 ? -1.0 : 1.0; };
  timesAcross(part, sign(node[0]), 0, at);
  timesAcross(part, sign(node[1]), 1, at);
  part.Times(1 / a, {0, 0, 1 / (a * a)});
  const bool isMidside = node[0] == 0 || node[1] == 0;
  part.Times(isUpright ? 1 : isMidside ? 0.5 : 0.25, {});
}

} // namespace

// Before it is diminished by what lies between: 1 at its node, 0 at all of the same or a lower
// level.
inpS_ShapeFunctions::Part inpS_ShapeFunctions::OwnFunction(std::size_t node,
                                                           const inpS_Point& at) const {
  Part part;
  const inpS_Point& place = m_places[node];
  switch (m_family) {
  case Family::Point:
    break;
  case Family::Line:
  case Family::Quad:
  case Family::Hex:
    for (std::size_t n = 0; n < static_cast<std::size_t>(m_dimension); ++n)
      timesAlong(part, place[n], n, at[n]);
    break;
  case Family::Triangle:
  case Family::Tet:
    timesOfSimplex(part, place, static_cast<std::size_t>(m_dimension), at);
    break;
  case Family::Wedge:
    timesOfSimplex(part, place, 2, at);
    timesAlong(part, place[2], 2, at[2]);
    break;
  case Family::Pyramid:
    timesOfPyramid(part, place, at);
    break;
  }
  return part;
}

void inpS_ShapeFunctions::Evaluate(const inpS_Point& at, std::span<double> values,
                                   std::span<inpS_Point> derivatives) const {
  const std::size_t nodes = Nodes();
  utl_ASSERT(values.size() == nodes && derivatives.size() == nodes);
  for (std::size_t i : m_inside) {
    Part part = OwnFunction(i, at);
    for (std::size_t j = 0; j < nodes; ++j) {
      const double elsewhere = m_elsewhere[i * nodes + j];
      if (elsewhere == 0) continue;
      part.value -= elsewhere * values[j];
      for (std::size_t n = 0; n < 3; ++n) part.by[n] -= elsewhere * derivatives[j][n];
    }
    values[i] = part.value;
    derivatives[i] = part.by;
  }
}

void inpS_ShapeFunctions::Finish() {
  ReadLevels();
  const std::size_t nodes = Nodes();
  m_elsewhere.assign(nodes * nodes, 0);
  for (std::size_t i = 0; i < nodes; ++i)
    for (std::size_t j = 0; j < nodes; ++j)
      if (m_levels[j] > m_levels[i]) m_elsewhere[i * nodes + j] = OwnFunction(i, m_places[j]).value;
  ReadShares();
  MakeQuadrature();
}

// A node's level is the number of directions in which it lies between others.
void inpS_ShapeFunctions::ReadLevels() {
  const auto between = [&](const inpS_Point& place, std::size_t first) {
    int count = 0;
    for (std::size_t n = first; n < static_cast<std::size_t>(m_dimension); ++n)
      count += place[n] == 0;
    return count;
  };
  const auto isHalf = [](const inpS_Point& place) {
    return std::any_of(place.begin(), place.end(), [](double x) { return std::abs(x) == 0.5; });
  };
  for (const inpS_Point& place : m_places) {
    int level = 0;
    switch (m_family) {
    case Family::Point:
      break;
    case Family::Line:
    case Family::Quad:
    case Family::Hex:
      level = between(place, 0);
      break;
    case Family::Triangle:
    case Family::Tet:
      level = isHalf(place);
      break;
    case Family::Wedge:
      level = isHalf(place) + between(place, 2);
      break;
    case Family::Pyramid:
      level = isHalf(place) || (place[2] == 0 && (place[0] == 0 || place[1] == 0));
      break;
    }
    m_levels.push_back(level);
    m_isQuadratic = m_isQuadratic || level > 0;
  }
  m_inside.resize(Nodes());
  std::iota(m_inside.begin(), m_inside.end(), std::size_t{0});
  std::stable_sort(m_inside.begin(), m_inside.end(),
                   [&](std::size_t a, std::size_t b) { return m_levels[a] > m_levels[b]; });
}

// A place is the sum of own functions, each times what its node stands out of those of lower
// levels. Absent is what stands out by nothing.
void inpS_ShapeFunctions::ReadShares() {
  const std::size_t nodes = Nodes();
  m_shares.assign(nodes * nodes, 0);
  std::vector<double> standsOut(nodes * nodes, 0); // by node and the nodes it depends on
  for (auto i = m_inside.rbegin(); i != m_inside.rend(); ++i) {
    for (std::size_t j = 0; j < nodes; ++j)
      for (std::size_t k = 0; k < nodes; ++k)
        m_shares[*i * nodes + k] += m_elsewhere[j * nodes + *i] * standsOut[j * nodes + k];
    for (std::size_t k = 0; k < nodes; ++k)
      standsOut[*i * nodes + k] = (k == *i) - m_shares[*i * nodes + k];
  }
}

// ---- quadrature

void inpS_ShapeFunctions::MakeQuadrature() {
  static constexpr double one[] = {0};
  static const double two[] = {-1 / std::sqrt(3.0), 1 / std::sqrt(3.0)};
  static const double three[] = {-std::sqrt(0.6), 0, std::sqrt(0.6)};
  static constexpr double weights[3][3] = {{2}, {1, 1}, {5.0 / 9, 8.0 / 9, 5.0 / 9}};
  static const double* const placesOf[] = {one, two, three};
  const std::size_t order = m_family == Family::Point ? 1 : m_isQuadratic ? 3 : 2;
  const double* const places = placesOf[order - 1];
  std::size_t points = 1;
  for (int n = 0; n < m_dimension; ++n) points *= order;
  for (std::size_t point = 0; point < points; ++point) {
    inpS_Point at{};
    double weight = 1;
    for (std::size_t n = 0, rest = point; n < static_cast<std::size_t>(m_dimension); ++n) {
      at[n] = places[rest % order];
      weight *= weights[order - 1][rest % order];
      rest /= order;
    }
    if (m_family == Family::Triangle || m_family == Family::Wedge || m_family == Family::Tet) {
      const double r = (1 + at[0]) / 2, s = (1 + at[1]) / 2, t = (1 + at[2]) / 2;
      if (m_family == Family::Tet) {
        at = {r * (1 - s) * (1 - t), s * (1 - t), t};
        weight *= (1 - s) * (1 - t) * (1 - t) / 8;
      } else {
        at = {r * (1 - s), s, at[2]};
        weight *= (1 - s) / 4;
      }
    } else if (m_family == Family::Pyramid) {
      const double t = (1 + at[2]) / 2;
      at = {at[0] * (1 - t), at[1] * (1 - t), t};
      weight *= (1 - t) * (1 - t) / 2;
    }
    m_quadrature.push_back(at);
    m_weights.push_back(weight);
  }
  m_values.resize(points * Nodes());
  m_derivatives.resize(points * Nodes());
  for (std::size_t point = 0; point < points; ++point)
    Evaluate(m_quadrature[point], {&m_values[point * Nodes()], Nodes()},
             {&m_derivatives[point * Nodes()], Nodes()});
}
