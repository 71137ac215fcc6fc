#include "inpS/properties/inpS_OrientationAxes.h"
#include <cmath>
#include <gtest/gtest.h>

using Axes = inpS_OrientationAxes;

// What a rotation leaves of a zero goes, exactly; what a deck may mean stays.
TEST(OrientationAxes, RoundingIsCleaned) {
  const double one = 1.0;
  const struct {
    double value, kept;
  } cases[] = {{1e-17, 0.0}, {-1.2246467991473532e-16, 0.0}, {2.3e-16, 2.3e-16}, {-1e-15, -1e-15}};
  for (const auto& [value, kept] : cases) {
    double v[3] = {one, value, -3.0 * value};
    Axes::ZeroSmallerThanTolerance(v);
    EXPECT_EQ(v[0], 1.0);
    EXPECT_EQ(v[1], kept);
  }
  double large[3] = {1e-3, 1e20, -1e3};
  Axes::ZeroSmallerThanTolerance(large);
  EXPECT_EQ(large[0], 0.0);
  EXPECT_EQ(large[2], 0.0);
}

// Half a turn about z: with the cleaned directions it is exact, to the last digit.
TEST(OrientationAxes, HalfATurnIsExact) {
  double a[3] = {-1.0, 1.2246467991473532e-16, 0.0};
  double b[3] = {-1.2246467991473532e-16, -1.0, 0.0};
  Axes::ZeroSmallerThanTolerance(a);
  Axes::ZeroSmallerThanTolerance(b);
  Axes axes;
  ASSERT_EQ(Axes::Make(a, b, false, axes), nullptr);
  EXPECT_EQ(axes.Quaternion(), cow_List<double>({0.0, 0.0, 1.0, 0.0}));
}

// However long the directions are and whatever the size of the model; what differs by rounding
// alone is one direction.
TEST(OrientationAxes, LengthsDoNotMatter) {
  for (const double size : {1e-150, 1e-9, 1.0, 1e9, 1e150}) {
    Axes axes;
    const double a[3] = {0.0, 2 * size, 0.0};
    const double b[3] = {0.0, size, size};
    ASSERT_EQ(Axes::Make(a, b, false, axes), nullptr) << size;
    EXPECT_DOUBLE_EQ(axes.x[1], 1.0);
    EXPECT_DOUBLE_EQ(axes.y[2], 1.0); // B lies in the 1-2 plane
    EXPECT_DOUBLE_EQ(axes.z[0], 1.0);
    const double same[3] = {0.1 * size, 0.2 * size, 0.3 * size};
    const double longer[3] = {0.7 * size, 1.4 * size, 2.1 * size};
    EXPECT_NE(Axes::Make(same, longer, false, axes), nullptr) << size;
  }
}

// Four quarter turns about any axis, and a turn by nothing, which changes no digit.
TEST(OrientationAxes, TurnsAddUp) {
  const double a[3] = {1.0, 2.0, 3.0};
  const double b[3] = {-1.0, 1.0, 0.5};
  for (int axis = 1; axis <= 3; ++axis) {
    Axes axes;
    ASSERT_EQ(Axes::Make(a, b, false, axes), nullptr);
    const Axes before = axes;
    axes.Rotate(axis, 0.0);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(axes.x[i], before.x[i]);
    axes.Rotate(axis, 90.0);
    // 1 -> 2 about 3, 2 -> 3 about 1, 3 -> 1 about 2
    const double* turned[] = {axes.y, axes.z, axes.x};
    const double* next[] = {before.z, before.x, before.y};
    for (int i = 0; i < 3; ++i) EXPECT_NEAR(turned[axis - 1][i], next[axis - 1][i], 1e-15);
    for (int turn = 0; turn < 3; ++turn) axes.Rotate(axis, 90.0);
    for (int i = 0; i < 3; ++i) {
      EXPECT_NEAR(axes.x[i], before.x[i], 1e-15);
      EXPECT_NEAR(axes.z[i], before.z[i], 1e-15);
    }
  }
}
