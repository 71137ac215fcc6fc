#pragma once

#include "database/KvoSimPosition.h"
#include <array>

using inps_Vector = std::array<double, 3>;

inline double inps_dot(const inps_Vector& a, const inps_Vector& b) {
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

// The axes of a local system in one place: three unit vectors in global components.
using inps_PlaceAxes = std::array<inps_Vector, 3>;

// Turned by the quaternion x, y, z, w, the global axes are the local ones.
inps_PlaceAxes inps_axesOfQuaternion(const double quaternion[4]);

// What a local system (the axes that an orientation or a transform comes to) says of a place. One
// whose axes vary by element is unknown here.
class inps_LocalAxes {
public:
  explicit inps_LocalAxes(const KvoSimPosition& localSystem);

  bool IsKnown() const { return m_kind != Kind::Unknown; }
  bool IsConstant() const { return m_kind == Kind::Constant; }
  // False: it has none there, as on its axis or in its centre, or is unknown.
  bool At(const inps_Vector& place, inps_PlaceAxes& axes) const;

private:
  enum class Kind : unsigned char { Constant, Cylindrical, Spherical, Unknown };

  Kind m_kind = Kind::Unknown;
  inps_PlaceAxes m_constant{};
  inps_Vector m_a{};
  inps_Vector m_axis{}; // from a on, a unit vector
  std::size_t m_turnAxis = 0;
  double m_turn = 0; // radians
};
