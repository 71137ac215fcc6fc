#include "host/inps_LocalAxes.h"

#include "database/KvoSimDataRecord.h"
#include "database/KvoSimDistribution.h"
#include "database/eds_Array.h"
#include "inpS/geometry/inpS_CurvedAxes.h"
#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

inps_Vector minus(const inps_Vector& a, const inps_Vector& b) {
  return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}
inps_Vector scaled(const inps_Vector& a, double by) {
  return {a[0] * by, a[1] * by, a[2] * by};
}
bool normalize(inps_Vector& a) {
  const double length = std::sqrt(inps_dot(a, a));
  if (!(length > 0)) return false;
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
    if (!normalize(m_axis)) return;
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
  inps_PlaceAxes e;
  const bool has = m_kind == Kind::Cylindrical ? inpS_cylindricalAxes(m_a, m_axis, place, e)
                                               : inpS_sphericalAxes(m_a, m_axis, place, e);
  if (!has) return false;
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
