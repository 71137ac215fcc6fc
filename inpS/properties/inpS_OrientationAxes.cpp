#include "inpS/properties/inpS_OrientationAxes.h"
#include "base/utl_Assert.h"
#include "inpS/framework/inpS_System.h"
#include <algorithm>
#include <cmath>

namespace {

constexpr double kRadiansPerDegree = 3.141592653589793 / 180;
constexpr double kCleaned = 2.220446049250313e-16;
// Sine of the angle below which two directions are one: well above what rounding leaves of unit
// vectors, well below what the digits of a deck mean.
constexpr double kParallel = 1e-12;

void cross(const double a[3], const double b[3], double result[3]) {
  result[0] = a[1] * b[2] - a[2] * b[1];
  result[1] = a[2] * b[0] - a[0] * b[2];
  result[2] = a[0] * b[1] - a[1] * b[0];
}

double dot(const double a[3], const double b[3]) {
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

} // namespace

bool inpS_OrientationAxes::Normalize(double v[3]) {
  const double length = std::hypot(v[0], v[1], v[2]);
  if (!std::isnormal(length)) return false;
  for (int i = 0; i < 3; ++i) v[i] /= length;
  return true;
}

void inpS_OrientationAxes::ZeroSmallerThanTolerance(double v[3]) {
  const double largest = std::max({std::abs(v[0]), std::abs(v[1]), std::abs(v[2])});
  for (int i = 0; i < 3; ++i)
    if (std::abs(v[i]) < kCleaned * largest) v[i] = 0.0;
}

const char* inpS_OrientationAxes::Make(const double toA[3], const double toB[3], bool isZ,
                                       inpS_OrientationAxes& axes) {
  double a[3] = {toA[0], toA[1], toA[2]};
  double b[3] = {toB[0], toB[1], toB[2]};
  if (!Normalize(a)) return "point A coincides with the origin";
  if (!Normalize(b)) return "point B coincides with the origin";
  double normal[3];
  cross(a, b, normal);
  if (std::hypot(normal[0], normal[1], normal[2]) < kParallel)
    return dot(a, b) > 0 ? "points A and B lie in the same direction from the origin"
                         : "points A and B lie in opposite directions from the origin";
  Normalize(normal);
  double third[3];
  cross(normal, a, third);
  Normalize(third);
  const auto set = [](double to[3], const double from[3]) { std::copy(from, from + 3, to); };
  set(isZ ? axes.z : axes.x, a);
  set(isZ ? axes.y : axes.z, normal);
  set(isZ ? axes.x : axes.y, third);
  return nullptr;
}

// The axes are made again of what the 1- and the 2-axis become, so that they stay at right angles
// whatever rounding did.
void inpS_OrientationAxes::Rotate(int axis, double degrees) {
  utl_ASSERT(axis >= 1 && axis <= 3);
  if (degrees == 0.0) return;
  const double local[3] = {axis == 1   ? x[0]
                           : axis == 2 ? y[0]
                                       : z[0],
                           axis == 1   ? x[1]
                           : axis == 2 ? y[1]
                                       : z[1],
                           axis == 1   ? x[2]
                           : axis == 2 ? y[2]
                                       : z[2]};
  inpS_System rotation;
  rotation.SetRotation(local, degrees * kRadiansPerDegree);
  double newX[3] = {x[0], x[1], x[2]};
  double newY[3] = {y[0], y[1], y[2]};
  rotation.TransformVector(newX[0], newX[1], newX[2]);
  rotation.TransformVector(newY[0], newY[1], newY[2]);
  const char* fault = Make(newX, newY, false, *this);
  utl_ASSERT(fault == nullptr);
}

cow_List<double> inpS_OrientationAxes::Quaternion() const {
  inpS_System system;
  system.SetRotationVectors(x, y, z);
  cow_List<double> quat = system.GetRotationQuaternion();
  if (quat.size() != 4) utl_assertionFailed("quat.Length() == 4");
  return quat;
}
