#include "inpS/mesh/inpS_AffineMap.h"
#include "inpS/framework/inpS_System.h"
#include <algorithm>
#include <cmath>

namespace {

constexpr double kRadians = 3.141592653589793 / 180;
constexpr double kZeroBelow = 1e-15;  // an entry of a rotation
constexpr double kInLineBelow = 1e-8; // sine of the angle between the two directions

bool direction(const double from[3], const double to[3], double unit[3]) {
  for (int i = 0; i < 3; ++i) unit[i] = to[i] - from[i];
  const double length = std::hypot(unit[0], unit[1], unit[2]);
  for (int i = 0; i < 3; ++i) unit[i] /= length;
  return length > 0;
}

} // namespace

void inpS_AffineMap::Fix(const double point[3]) {
  double moved[3] = {point[0], point[1], point[2]};
  ApplyToVector(moved);
  for (int i = 0; i < 3; ++i) shift[i] = point[i] - moved[i];
}

void inpS_AffineMap::Follow(const inpS_AffineMap& first) {
  const inpS_AffineMap own = *this;
  std::copy_n(first.shift, 3, shift);
  own.Apply(shift);
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) {
      matrix[i][j] = 0;
      for (int k = 0; k < 3; ++k) matrix[i][j] += own.matrix[i][k] * first.matrix[k][j];
    }
}

bool inpS_AffineMap::SetRotation(const double a[3], const double b[3], double degrees) {
  double axis[3];
  if (!direction(a, b, axis)) return false;
  inpS_System rotation;
  rotation.SetRotation(axis, degrees * kRadians);
  double entries[4][4];
  rotation.AsArray(entries);
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) // quarter and half turns are exact
      matrix[i][j] = std::fabs(entries[i][j]) < kZeroBelow ? 0.0 : entries[i][j];
  Fix(a);
  return true;
}

bool inpS_AffineMap::AxesOf(const double a[3], const double b[3], const double c[3],
                            double axes[3][3]) {
  double inPlane[3];
  if (!direction(a, b, axes[0]) || !direction(a, c, inPlane)) return false;
  const auto cross = [](const double u[3], const double v[3], double result[3]) {
    for (int i = 0; i < 3; ++i) {
      const int j = (i + 1) % 3, k = (i + 2) % 3;
      result[i] = u[j] * v[k] - u[k] * v[j];
    }
  };
  cross(axes[0], inPlane, axes[2]);
  const double sine = std::hypot(axes[2][0], axes[2][1], axes[2][2]);
  if (!(sine > kInLineBelow)) return false;
  for (double& component : axes[2]) component /= sine;
  cross(axes[2], axes[0], axes[1]);
  return true;
}
