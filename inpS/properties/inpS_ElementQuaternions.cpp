#include "inpS/properties/inpS_ElementQuaternions.h"
#include "inpS/geometry/inpS_CurvedAxes.h"
#include <algorithm>
#include <cmath>

using Data = inpS_OrientationData;

namespace {

constexpr double kOnAxis = 1e-12; // of the element's largest coordinate

}

inpS_ElementQuaternions::inpS_ElementQuaternions(const Data& data,
                                                 const inpS_OrientationPlaces::Place& place,
                                                 const double points[3][3],
                                                 inpS_ElementNodes& nodes)
    : m_data(data), m_place(place), m_nodes(nodes) {
  std::copy_n(&points[0][0], 6, &m_points[0][0]);
}

void inpS_ElementQuaternions::Turn(double v[3]) const {
  if (!m_place.turns) return;
  inpS_OrientationAxes::Normalize(v);
  m_place.system.TransformVector(v[0], v[1], v[2]);
  inpS_OrientationAxes::ZeroSmallerThanTolerance(v);
}

// Nodes of the flat mesh stand where their instance has them. Decided here: an origin that is not
// given is that of the coordinates, as where points are given by nodes or coordinates.
const char* inpS_ElementQuaternions::ReadNodes(int64_t element, double points[2][3]) {
  double origin[3] = {};
  m_place.system.TransformPoint(origin[0], origin[1], origin[2]);
  double* const to[] = {points[0], points[1], origin};
  for (int n = 0; n < Data::kPoints; ++n)
    if (m_data.nodes[n].isGiven && !m_nodes.ReadNode(element, m_data.nodes[n].label, to[n]))
      return "it does not have the nodes";
  if (!m_data.IsRectangular()) return nullptr;
  for (int n = 0; n < 2; ++n) {
    for (int i = 0; i < 3; ++i) points[n][i] -= origin[i];
    if (m_place.turns) inpS_OrientationAxes::ZeroSmallerThanTolerance(points[n]);
  }
  return nullptr;
}

const char* inpS_ElementQuaternions::MakeCurved(int64_t element, const double points[2][3],
                                                inpS_OrientationAxes& axes) {
  inpS_Point a, axis, middle;
  for (std::size_t i = 0; i < 3; ++i) {
    a[i] = points[0][i];
    axis[i] = points[1][i] - points[0][i];
  }
  if (!inpS_OrientationAxes::Normalize(axis.data())) return "points A and B are the same";
  double magnitude = 0;
  if (!m_nodes.ReadMiddle(element, middle.data(), magnitude)) return "it has no nodes";
  std::array<inpS_Point, 3> local;
  constexpr const char* onAxis = "its middle lies on the axis of the system";
  // What rounding leaves of no distance from the axis has a direction, but none that means any.
  if (!inpS_cylindricalAxes(a, axis, middle, local)) return onAxis;
  double distance = 0;
  for (std::size_t i = 0; i < 3; ++i) distance += (middle[i] - a[i]) * local[0][i];
  if (distance < kOnAxis * magnitude) return onAxis;
  if (m_data.system == Data::System::Spherical && !inpS_sphericalAxes(a, axis, middle, local))
    return onAxis;
  std::ranges::copy(local[0], axes.x);
  std::ranges::copy(local[1], axes.y);
  std::ranges::copy(local[2], axes.z);
  return nullptr;
}

const char* inpS_ElementQuaternions::Make(int64_t element, const double* own, double angle,
                                          double quat[4]) {
  double points[2][3];
  std::copy_n(own ? own : &m_points[0][0], 6, &points[0][0]);
  if (std::isnan(angle) || (own && std::isnan(*own)))
    return "the distribution has no values for it";
  if (!std::isfinite(angle)) return "its angle is too large a number";
  const bool isByOffset = m_data.definition == Data::Definition::OffsetToNodes;
  if (const char* fault = isByOffset ? ReadNodes(element, points) : nullptr) return fault;
  if (own)
    for (double* point : points) Turn(point);
  inpS_OrientationAxes axes;
  const bool isZ = m_data.system == Data::System::ZRectangular;
  const char* fault = m_data.IsRectangular()
                          ? inpS_OrientationAxes::Make(points[0], points[1], isZ, axes)
                          : MakeCurved(element, points, axes);
  if (fault) return fault;
  axes.Rotate(m_data.axis, angle);
  std::ranges::copy(axes.Quaternion(), quat);
  return nullptr;
}
