#include "inpS/mesh/inpS_NodeGenerator.h"
#include "base/utl_Threads.h"
#include "inpS/framework/inpS_System.h"
#include <algorithm>
#include <cmath>

namespace {

constexpr double kRadians = 3.141592653589793 / 180.0;
constexpr double kZeroBelow = 1e-12;

double snapped(double value) { return std::fabs(value) < kZeroBelow ? 0.0 : value; }

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

void inpS_NodeGenerator::ConvertCoordinates(const inpS_System& system) {
  const bool rectangular = !m_cylindrical && !m_spherical;
  if (rectangular && system.IsIdentity()) return;
  constexpr std::size_t kBlock = 1 << 14;
  const std::size_t nodes = m_labels.Size();
  utl_parallelFor((nodes + kBlock - 1) / kBlock, [&](std::size_t block) {
    const std::size_t end = std::min(nodes, (block + 1) * kBlock);
    for (std::size_t n = block * kBlock; n < end; ++n) {
      double* point = m_coordinates.Data() + 3 * n;
      ToRectangular(point);
      if (!system.IsIdentity()) system.TransformPoint(point[0], point[1], point[2]);
    }
  });
}

utl_Buffer<int> inpS_NodeGenerator::NormalLabels() const {
  utl_Buffer<int> labels;
  for (const long long position : m_normalPositions)
    labels.Append(m_labels[static_cast<std::size_t>(position)]);
  return labels;
}
