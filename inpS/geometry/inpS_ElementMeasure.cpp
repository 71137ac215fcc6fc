#include "inpS/geometry/inpS_ElementMeasure.h"
#include "base/utl_Assert.h"
#include "base/utl_BlockSize.h"
#include "base/utl_Threads.h"
#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace {

constexpr std::size_t kMostNodes = inpS_ShapeFunctions::kMostNodes;

inpS_Point minus(const inpS_Point& a, const inpS_Point& b) {
  return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

inpS_Point plus(const inpS_Point& a, const inpS_Point& b) {
  return {a[0] + b[0], a[1] + b[1], a[2] + b[2]};
}

inpS_Point cross(const inpS_Point& a, const inpS_Point& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

double dot(const inpS_Point& a, const inpS_Point& b) {
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

double determinant(const inpS_Point& a, const inpS_Point& b, const inpS_Point& c) {
  return dot(a, cross(b, c));
}

// What a unit of natural volume comes to at a quadrature point.
double density(const inpS_ShapeFunctions& functions, inpS_Space space, std::size_t point,
               const inpS_Point* nodes) {
  inpS_Point by[3] = {};
  const std::span<const inpS_Point> derivatives = functions.Derivatives(point);
  for (std::size_t n = 0; n < derivatives.size(); ++n)
    for (std::size_t direction = 0; direction < 3; ++direction)
      for (std::size_t axis = 0; axis < 3; ++axis)
        by[direction][axis] += derivatives[n][direction] * nodes[n][axis];
  switch (functions.Dimension()) {
  case 1:
    return std::sqrt(dot(by[0], by[0]));
  case 2: {
    const inpS_Point normal = cross(by[0], by[1]);
    return space == inpS_Space::Plane ? normal[2] : std::sqrt(dot(normal, normal));
  }
  case 3:
    return determinant(by[0], by[1], by[2]);
  default:
    return 0;
  }
}

double integrate(const inpS_ShapeFunctions& functions, inpS_Space space, const inpS_Point* nodes) {
  double sum = 0;
  for (std::size_t point = 0; point < functions.QuadraturePoints(); ++point)
    sum += functions.Weight(point) * density(functions, space, point, nodes);
  return sum;
}

// The volume of a brick of eight nodes in closed form (J. Grandy, Efficient computation of volume
// of hexahedral cells, UCRL-ID-128886, 1997).
double brickVolume(const inpS_Point* x) {
  const inpS_Point a = minus(x[6], x[1]), b = minus(x[7], x[0]), c = minus(x[6], x[3]),
                   d = minus(x[2], x[0]), e = minus(x[5], x[0]), f = minus(x[6], x[4]);
  return (determinant(plus(a, b), c, d) + determinant(b, plus(c, e), f) +
          determinant(a, e, plus(f, d))) /
         12;
}

double measure(inp_ShapeKind kind, const inpS_ShapeFunctions& functions, inpS_Space space,
               const inpS_Point* nodes) {
  switch (kind) {
  case inp_ShapeKind::Tet4:
    return determinant(minus(nodes[1], nodes[0]), minus(nodes[2], nodes[0]),
                       minus(nodes[3], nodes[0])) /
           6;
  case inp_ShapeKind::Hex8:
    return brickVolume(nodes);
  default:
    return integrate(functions, space, nodes);
  }
}

// Puts absent nodes where they bend nothing; false when a corner is absent.
bool fill(const inpS_ShapeFunctions& functions, inpS_Point* nodes, const bool* isAbsent) {
  for (int level = 0; level <= 3; ++level)
    for (std::size_t n = 0; n < functions.Nodes(); ++n) {
      if (!isAbsent[n] || functions.Level(n) != level) continue;
      if (level == 0) return false;
      const std::span<const double> shares = functions.Shares(n);
      nodes[n] = {};
      for (std::size_t other = 0; other < shares.size(); ++other)
        for (std::size_t axis = 0; shares[other] != 0 && axis < 3; ++axis)
          nodes[n][axis] += shares[other] * nodes[other][axis];
    }
  return true;
}

bool any(std::span<const bool> flags) {
  return std::find(flags.begin(), flags.end(), true) != flags.end();
}

constexpr std::size_t kElementsOfPiece = 4096;

} // namespace

double inpS_measure(const inpS_ShapeFunctions& functions, inpS_Space space,
                    std::span<const inpS_Point> nodes, std::span<const bool> isAbsent) {
  utl_ASSERT(nodes.size() == functions.Nodes());
  if (!any(isAbsent)) return integrate(functions, space, nodes.data());
  inpS_Point filled[kMostNodes];
  std::copy(nodes.begin(), nodes.end(), filled);
  if (!fill(functions, filled, isAbsent.data())) return std::numeric_limits<double>::quiet_NaN();
  return integrate(functions, space, filled);
}

void inpS_measureElements(inp_ShapeKind kind, inpS_Space space,
                          std::span<const int32_t> connectivity, std::size_t width,
                          std::span<const double> coordinates, int64_t nodeBase,
                          std::span<double> measures) {
  const inpS_ShapeFunctions& functions = inpS_ShapeFunctions::Of(kind);
  const std::size_t used = functions.Nodes();
  utl_ASSERT(used <= width && connectivity.size() == measures.size() * width);
  const std::size_t perPiece = utl_blockSize(kElementsOfPiece);
  const std::size_t pieces = (measures.size() + perPiece - 1) / perPiece;
  utl_parallelFor(pieces, [&](std::size_t piece) {
    const std::size_t end = std::min((piece + 1) * perPiece, measures.size());
    inpS_Point nodes[kMostNodes] = {};
    bool isAbsent[kMostNodes];
    for (std::size_t element = piece * perPiece; element < end; ++element) {
      bool whole = used > 0;
      for (std::size_t n = 0; n < used; ++n) {
        const int64_t entry = connectivity[element * width + n];
        isAbsent[n] = entry < 0;
        whole &= entry >= 0;
        if (entry < 0) continue;
        const auto at = static_cast<std::size_t>(3 * (entry + nodeBase));
        nodes[n] = {coordinates[at], coordinates[at + 1], coordinates[at + 2]};
      }
      measures[element] = whole || (used > 0 && fill(functions, nodes, isAbsent))
                              ? measure(kind, functions, space, nodes)
                              : std::numeric_limits<double>::quiet_NaN();
    }
  });
}

void inpS_nodalAreas(const inpS_ShapeFunctions& functions, inpS_Depth depth,
                     std::span<const inpS_Point> nodes, std::span<double> areas,
                     std::span<const bool> isAbsent) {
  const std::size_t count = functions.Nodes();
  utl_ASSERT(nodes.size() == count && areas.size() == count && functions.Dimension() <= 2);
  std::fill(areas.begin(), areas.end(), functions.Dimension() == 0 ? 1.0 : 0.0);
  if (functions.Dimension() == 0) return;
  inpS_Point filled[kMostNodes];
  const inpS_Point* at = nodes.data();
  const bool isPartial = any(isAbsent);
  if (isPartial) {
    std::copy(nodes.begin(), nodes.end(), filled);
    if (!fill(functions, filled, isAbsent.data())) return;
    at = filled;
  }
  for (std::size_t point = 0; point < functions.QuadraturePoints(); ++point) {
    double area = functions.Weight(point) * density(functions, inpS_Space::Space, point, at);
    const std::span<const double> values = functions.Values(point);
    if (depth == inpS_Depth::Ring) {
      double radius = 0;
      for (std::size_t n = 0; n < count; ++n) radius += values[n] * at[n][0];
      area *= 2 * std::numbers::pi * radius;
    }
    for (std::size_t n = 0; n < count; ++n) areas[n] += values[n] * area;
  }
  // What absent nodes got, from the inside outwards.
  for (int level = isPartial ? 3 : 0; level > 0; --level)
    for (std::size_t n = 0; n < count; ++n) {
      if (!isAbsent[n] || functions.Level(n) != level) continue;
      const std::span<const double> shares = functions.Shares(n);
      for (std::size_t other = 0; other < count; ++other) areas[other] += shares[other] * areas[n];
      areas[n] = 0;
    }
}
