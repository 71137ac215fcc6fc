#pragma once

#include "base/cow_Value.h"

// The three axes of a rectangular local system: unit vectors in global components, each at right
// angles to the other two.
struct inpS_OrientationAxes {
  double x[3] = {1, 0, 0};
  double y[3] = {0, 1, 0};
  double z[3] = {0, 0, 1};

  // From the directions to points A and B, which need not have unit length. A gives the 1-axis and
  // B the 1-2 plane; isZ: A gives the 3-axis and B the 3-1 plane. What is degenerate; null when
  // nothing is.
  static const char* Make(const double toA[3], const double toB[3], bool isZ,
                          inpS_OrientationAxes& axes);
  // About one of these axes (1, 2 or 3), in degrees by the right-hand rule.
  void Rotate(int axis, double degrees);
  // Rotation from the global axes to these: x, y, z, w.
  cow_List<double> Quaternion() const;

  // False when it has no length, or one that is no number.
  static bool Normalize(double v[3]);
  // Components below 2.2e-16 of the largest one become 0: what a rotation leaves of a zero.
  static void ZeroSmallerThanTolerance(double v[3]);
};
