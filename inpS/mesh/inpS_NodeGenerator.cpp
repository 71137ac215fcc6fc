#include "inpS/mesh/inpS_NodeGenerator.h"
#include "inpS/framework/inpS_System.h"
#include <cmath>

namespace {

constexpr double kRadians = 3.141592653589793 / 180.0;
constexpr double kZeroBelow = 1e-12;

double snapped(double value) {
  return std::fabs(value) < kZeroBelow ? 0.0 : value;
}

} // namespace

void inpS_NodeGenerator::CylindricalToRectangular(double point[3]) {
  const double r = point[0], theta = point[1] * kRadians;
  point[0] = r * snapped(std::cos(theta));
  point[1] = r * snapped(std::sin(theta));
}

void inpS_NodeGenerator::SphericalToRectangular(double point[3]) {
  const double r = point[0], theta = point[1] * kRadians, phi = point[2] * kRadians;
  point[0] = r * std::cos(phi) * std::cos(theta);
  point[1] = r * std::cos(phi) * std::sin(theta);
  point[2] = r * std::sin(phi);
}

void inpS_NodeGenerator::ToRectangular(double point[3]) const {
  if (m_cylindrical) CylindricalToRectangular(point);
  if (m_spherical) SphericalToRectangular(point);
}

void inpS_NodeGenerator::ConvertPoints(std::span<double> coordinates,
                                       const inpS_System& system) const {
  if (m_cylindrical || m_spherical)
    for (std::size_t n = 0; n + 2 < coordinates.size(); n += 3) ToRectangular(&coordinates[n]);
  system.Transform(coordinates);
}
