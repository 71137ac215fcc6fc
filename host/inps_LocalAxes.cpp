#include "host/inps_LocalAxes.h"

#include "database/KvoSimDataRecord.h"
#include "database/KvoSimDistribution.h"
#include "database/eds_Array.h"
#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

inps_Vector minus(const inps_Vector& a, const inps_Vector& b) {
  return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}
inps_Vector cross(const inps_Vector& a, const inps_Vector& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}
inps_Vector scaled(const inps_Vector& a, double by) {
  return {a[0] * by, a[1] * by, a[2] * by};
}
// Nothing of a vector that is as good as zero beside `scale`.
bool normalize(inps_Vector& a, double scale) {
  const double length = std::sqrt(inps_dot(a, a));
  if (!(length > 1e-12 * scale)) return false;
  a = scaled(a, 1 / length);
  return true;
}

inps_Vector pointOf(const KvoSimPosition& distribution) {
  inps_Vector point{};
  if (distribution.IsNull()) return point;
  for (const int64_t drawer : distribution.AsDistribution().DrawerIDArray()) {
    eds_ArrayReader reader(distribution.AsDistribution().DrawerArray(drawer));
    if (reader.Count() * reader.Width() == 3) reader.ReadPiece(0, std::span<double>(point));
  }
  return point;
}

} // namespace

inps_PlaceAxes inps_axesOfQuaternion(const double q[4]) {
  const double x = q[0], y = q[1], z = q[2], w = q[3];
  return {{{1 - 2 * (y * y + z * z), 2 * (x * y + z * w), 2 * (x * z - y * w)},
           {2 * (x * y - z * w), 1 - 2 * (x * x + z * z), 2 * (y * z + x * w)},
           {2 * (x * z + y * w), 2 * (y * z - x * w), 1 - 2 * (x * x + y * y)}}};
}

inps_LocalAxes::inps_LocalAxes(const KvoSimPosition& localSystem) {
  const KvoSimDataRecord data = localSystem.DataRecord();
  const cow_String system = data.ReturnString(eds_LocalSystem_System);
  if (!data.GetReference(eds_LocalSystem_Orient).IsNull()) return;
  if (system == "CYLINDRICAL" || system == "SPHERICAL") {
    m_a = pointOf(data.GetReference(eds_LocalSystem_PointA));
    m_axis = minus(pointOf(data.GetReference(eds_LocalSystem_PointB)), m_a);
    if (!normalize(m_axis, 0)) return;
    m_kind = system == "SPHERICAL" ? Kind::Spherical : Kind::Cylindrical;
    m_turnAxis = static_cast<std::size_t>(
        std::clamp<int64_t>(data.GetInt64(eds_LocalSystem_Axis), 1, 3) - 1);
    m_turn = data.GetDouble(eds_LocalSystem_Angle) * std::numbers::pi / 180;
  } else if (system == "RECTANGULAR" || system == "Z RECTANGULAR") {
    double quaternion[4];
    for (int i = 0; i < 4; ++i) quaternion[i] = data.GetDouble(eds_LocalSystem_QuaternionX + i);
    m_constant = inps_axesOfQuaternion(quaternion);
    m_kind = Kind::Constant;
  }
}

bool inps_LocalAxes::At(const inps_Vector& place, inps_PlaceAxes& axes) const {
  if (m_kind == Kind::Unknown) return false;
  if (m_kind == Kind::Constant) {
    axes = m_constant;
    return true;
  }
  inps_Vector away = minus(place, m_a);
  const double distance = std::sqrt(inps_dot(away, away));
  inps_PlaceAxes e;
  if (m_kind == Kind::Cylindrical) { // away from the axis, about it, along it
    e[2] = m_axis;
    e[0] = minus(away, scaled(m_axis, inps_dot(away, m_axis)));
    if (!normalize(e[0], distance)) return false;
    e[1] = cross(e[2], e[0]);
  } else { // away from the centre, along the circles of latitude, along the meridian
    e[0] = away;
    if (!normalize(e[0], 0)) return false;
    e[1] = cross(m_axis, e[0]);
    if (!normalize(e[1], 1)) return false;
    e[2] = cross(e[0], e[1]);
  }
  if (m_turn != 0) {
    inps_Vector& u = e[(m_turnAxis + 1) % 3];
    inps_Vector& v = e[(m_turnAxis + 2) % 3];
    const inps_Vector before = u;
    for (std::size_t i = 0; i < 3; ++i) {
      u[i] = std::cos(m_turn) * before[i] + std::sin(m_turn) * v[i];
      v[i] = std::cos(m_turn) * v[i] - std::sin(m_turn) * before[i];
    }
  }
  axes = e;
  return true;
}
