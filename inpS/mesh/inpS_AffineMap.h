#pragma once

// x' = matrix x + shift: what a copy or a map does to points.
struct inpS_AffineMap {
  double matrix[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
  double shift[3] = {};

  void Apply(double point[3]) const {
    ApplyToVector(point);
    for (int i = 0; i < 3; ++i) point[i] += shift[i];
  }
  void ApplyToVector(double vector[3]) const {
    const double v[3] = {vector[0], vector[1], vector[2]};
    for (int i = 0; i < 3; ++i)
      vector[i] = matrix[i][0] * v[0] + matrix[i][1] * v[1] + matrix[i][2] * v[2];
  }

  void Fix(const double point[3]);          // the shift that leaves this point where it is
  void Follow(const inpS_AffineMap& first); // this one, behind another one
  // Right-handed about the line from a to b; false when the points coincide.
  bool SetRotation(const double a[3], const double b[3], double degrees);

  // Unit vectors from a to b, from there towards c, and across both; false when the three points
  // lie on a line.
  static bool AxesOf(const double a[3], const double b[3], const double c[3], double axes[3][3]);
};
