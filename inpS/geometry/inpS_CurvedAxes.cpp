#include "inpS/geometry/inpS_CurvedAxes.h"
#include <cmath>

namespace {

using Point = inpS_Point;

Point minus(const Point& a, const Point& b) {
  return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}
double dot(const Point& a, const Point& b) {
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}
Point cross(const Point& a, const Point& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}
// Nothing of a vector that is as good as zero beside `scale`.
bool normalize(Point& a, double scale) {
  const double length = std::sqrt(dot(a, a));
  if (!(length > 1e-12 * scale)) return false;
  for (double& component : a) component /= length;
  return true;
}

} // namespace

bool inpS_cylindricalAxes(const Point& a, const Point& axis, const Point& place,
                          std::array<Point, 3>& axes) {
  const Point away = minus(place, a);
  const double along = dot(away, axis);
  axes[2] = axis;
  axes[0] = minus(away, {axis[0] * along, axis[1] * along, axis[2] * along});
  if (!normalize(axes[0], std::sqrt(dot(away, away)))) return false;
  axes[1] = cross(axes[2], axes[0]);
  return true;
}

bool inpS_sphericalAxes(const Point& a, const Point& axis, const Point& place,
                        std::array<Point, 3>& axes) {
  axes[0] = minus(place, a);
  if (!normalize(axes[0], 0)) return false;
  axes[1] = cross(axis, axes[0]);
  if (!normalize(axes[1], 1)) return false;
  axes[2] = cross(axes[0], axes[1]);
  return true;
}
