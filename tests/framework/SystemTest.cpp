#include "base/utl_Assert.h"
#include "inpS/framework/inpS_System.h"
#include "parser/inp_Parser.h"
#include <cmath>
#include <gtest/gtest.h>
#include <sstream>

using Doubles = cow_List<double>;

namespace {

const double pi = 3.141592653589793;

struct Vector {
  double v[3];
};

inp_Keyword deckKeyword(const cow_String& deck) {
  return inp_Parser(deck, "", {}, "job.inp", true, true, false).Parse(false).at(0);
}

Doubles moved(const inpS_System& system, double x, double y, double z) {
  system.TransformPoint(x, y, z);
  return {x, y, z};
}

void expectNear(const Doubles& actual, const Doubles& expected, const cow_String& what,
                double tolerance = 1e-12) {
  ASSERT_EQ(actual.size(), expected.size()) << what;
  for (std::size_t i = 0; i < actual.size(); ++i)
    EXPECT_NEAR(actual[i], expected[i], tolerance) << what << " value " << i;
}

inpS_System rotation(const Vector& axis, double degrees) {
  inpS_System system;
  system.SetRotation(axis.v, degrees * pi / 180);
  return system;
}

} // namespace

TEST(System, IdentityIsExact) {
  inpS_System system;
  EXPECT_TRUE(system.IsIdentity());
  EXPECT_TRUE(system.InverseRigidTransform().IsIdentity());
  system.SetTranslation(0, 1e-20, 0);
  EXPECT_FALSE(system.IsIdentity());
  system.FillIdentity();
  EXPECT_TRUE(system.IsIdentity());
}

// The axes a *SYSTEM gives: where the points (0,0,0), (1,0,0), (0,1,0) and (0,0,1) go to.
TEST(System, ReadsSystem) {
  const double h = std::sqrt(0.5);
  struct Case {
    const char* lines;
    bool result;
    Doubles origin, x, y, z;
  };
  const Doubles o = {0, 0, 0}, ex = {1, 0, 0}, ey = {0, 1, 0}, ez = {0, 0, 1};
  const Case cases[] = {
      {"", true, o, ex, ey, ez},
      {"0,0,0,0,0,0\n", true, o, ex, ey, ez},
      {"5,6,7\n", true, o, ex, ey, ez},                // an origin alone turns and moves nothing
      {"0,0,0,0,0,9\n", false, o, ex, ey, ez},         // x along global z
      {"1,1,1,1,1,1\n", false, o, ex, ey, ez},         // b at the origin point
      {"1,1,1,1,1.0000005,1\n", false, o, ex, ey, ez}, // and nearly so
      {"0,0,0,0,3,0\n", true, o, {0, 1, 0}, {-1, 0, 0}, {0, 0, 1}},
      {"1,2,3,1,2,3\n0,1,0\n", false, o, ex, ey, ez},
      {"0,0,0,1,0,0\n2,0,0\n", false, o, ex, ey, ez}, // c on the x axis
      {"1,0,0,1,5,0\n1,0,2\n", true, {1, 0, 0}, {1, 1, 0}, {1, 0, 1}, {2, 0, 0}},
      {"0,0,0,1,1,0\n0,9,0\n", true, o, {h, h, 0}, {-h, h, 0}, {0, 0, 1}},
      {"0,0,0,0,0,2\n7,0,0\n", true, o, {0, 0, 1}, {1, 0, 0}, {0, 1, 0}}, // as line 2 lets it
      {"0,0,0,0,5,0\n\n", true, o, {0, 1, 0}, {-1, 0, 0}, {0, 0, 1}},     // a blank line is none
      // A model some millimetres large, in metres.
      {"0,0,0,0,.004,0\n0,0,.004\n", true, o, {0, 1, 0}, {0, 0, 1}, {1, 0, 0}},
      {", , 4, 5\n",
       true,
       {0, 0, 4},
       {5 / std::sqrt(41), 0, 4 - 4 / std::sqrt(41)},
       {0, 1, 4},
       {4 / std::sqrt(41), 0, 4 + 5 / std::sqrt(41)}},
  };
  for (const Case& c : cases) {
    inpS_System system;
    system.SetTranslation(9, 9, 9); // what was there goes
    EXPECT_EQ(system.ReadSystem(deckKeyword(cow_String("*SYSTEM\n") + c.lines)), c.result)
        << c.lines;
    expectNear(moved(system, 0, 0, 0), c.origin, c.lines);
    expectNear(moved(system, 1, 0, 0), c.x, c.lines);
    expectNear(moved(system, 0, 1, 0), c.y, c.lines);
    expectNear(moved(system, 0, 0, 1), c.z, c.lines);
  }
}

TEST(System, ReadsInstance) {
  struct Case {
    const char* what;
    const char* lines;
    Doubles whole, translation, rotation; // of the point (1, 0, 0)
  };
  const Case cases[] = {
      {"nothing", "", {1, 0, 0}, {1, 0, 0}, {1, 0, 0}},
      {"translation", "1,2,3\n", {2, 2, 3}, {2, 2, 3}, {1, 0, 0}},
      // Moved to (11, 0, 0), then turned about the z axis of the assembly.
      {"translated, then turned", "10,0,0\n0,0,0, 0,0,1, 90\n", {0, 11, 0}, {11, 0, 0}, {0, 1, 0}},
      {"turned about a line beside",
       "0,0,0\n2,0,-5, 2,0,8, 180\n",
       {3, 0, 0},
       {1, 0, 0},
       {3, 0, 0}},
      {"axis of no length", "1,2,3\n4,4,4, 4,4,4, 90\n", {2, 2, 3}, {2, 2, 3}, {1, 0, 0}},
      {"blank rotation", "1,2,3\n\n", {2, 2, 3}, {2, 2, 3}, {1, 0, 0}},
      {"blank translation", "\n0,0,0, 0,0,2, -90\n", {0, -1, 0}, {1, 0, 0}, {0, -1, 0}},
  };
  for (const Case& c : cases) {
    const inp_Keyword keyword = deckKeyword(cow_String("*INSTANCE, NAME=I, PART=P\n") + c.lines);
    inpS_System whole, translation, rotation;
    whole.ReadInstance(keyword);
    translation.ReadInstanceTranslation(keyword);
    rotation.ReadInstanceRotation(keyword);
    expectNear(moved(whole, 1, 0, 0), c.whole, c.what);
    expectNear(moved(translation, 1, 0, 0), c.translation, c.what);
    expectNear(moved(rotation, 1, 0, 0), c.rotation, c.what);
  }
}

// The quaternion of a rotation by an angle about a unit axis is (axis sin(angle/2), cos(angle/2)),
// up to its sign; one case or more for each pivot.
TEST(System, QuaternionOfRotation) {
  const double t = 1 / std::sqrt(3.0);
  struct Case {
    Vector axis;
    double degrees;
    Doubles quaternion;
  };
  const double s30 = 0.5, c30 = std::sqrt(3.0) / 2, s80 = std::sin(80 * pi / 180),
               c80 = std::cos(80 * pi / 180);
  const Case cases[] = {
      {{{0, 0, 1}}, 0, {0, 0, 0, 1}},
      {{{0, 0, 1}}, 60, {0, 0, s30, c30}}, // trace
      {{{t, t, t}}, 60, {t * s30, t * s30, t * s30, c30}},
      {{{0, 0, 1}}, 90, {0, 0, std::sqrt(0.5), std::sqrt(0.5)}}, // trace and m33 tie
      {{{1, 0, 0}}, 160, {s80, 0, 0, c80}},
      {{{0, 1, 0}}, 160, {0, s80, 0, c80}},
      {{{0, 0, 1}}, 160, {0, 0, s80, c80}},
      {{{0, 0, 1}}, -160, {0, 0, s80, -c80}}, // the pivot is positive
      {{{0.8, 0.6, 0}}, 160, {0.8 * s80, 0.6 * s80, 0, c80}},
      {{{0.36, 0.8, 0.48}}, 160, {0.36 * s80, 0.8 * s80, 0.48 * s80, c80}},
      {{{0.48, -0.6, 0.64}}, 160, {0.48 * s80, -0.6 * s80, 0.64 * s80, c80}},
      {{{0, 0, 1}}, 180, {0, 0, 1, 0}},
      {{{1, 0, 0}}, 180, {1, 0, 0, 0}},
      {{{0.6, 0.8, 0}}, 180, {0.6, 0.8, 0, 0}},
      {{{t, t, t}}, 180, {t, t, t, 0}}, // the first of equal diagonals
  };
  for (const Case& c : cases)
    expectNear(rotation(c.axis, c.degrees).GetRotationQuaternion(), c.quaternion,
               "about " + std::to_string(c.axis.v[0]) + " by " + std::to_string(c.degrees));
}

TEST(System, ConcatenatesAndInverts) {
  inpS_System system = rotation({{0, 0, 1}}, 90);
  inpS_System shift;
  shift.SetTranslation(1, 2, 3);
  system.Concatenate(shift); // shifted first
  expectNear(moved(system, 0, 0, 0), {-2, 1, 3}, "shifted, then turned");
  expectNear(system.GetTranslation(), {-2, 1, 3}, "translation");
  double x = 1, y = 0, z = 5;
  system.TransformVector(x, y, z);
  expectNear({x, y, z}, {0, 1, 5}, "a vector only turns");
  system.Concatenate(system.InverseRigidTransform());
  for (const Doubles& p : {Doubles{1, 2, 3}, Doubles{-4, 0, 9}})
    expectNear(moved(system, p[0], p[1], p[2]), p, "there and back");
}

TEST(System, MatrixInRowOrder) {
  inpS_System system = rotation({{0, 0, 1}}, 90);
  system.SetTranslation(7, 8, 9);
  double m[4][4];
  system.AsArray(m);
  expectNear(Doubles(&m[0][0], &m[0][0] + 16), {0, -1, 0, 7, 1, 0, 0, 8, 0, 0, 1, 9, 0, 0, 0, 1},
             "matrix");
  std::ostringstream out;
  inpS_System().Print(out);
  EXPECT_EQ(out.str(), "1 0 0 0\n0 1 0 0\n0 0 1 0\n0 0 0 1\n");
}

TEST(System, TransformsLists) {
  inpS_System system = rotation({{0, 0, 1}}, 90);
  system.SetTranslation(10, 0, 0);
  struct Case {
    int stride;
    Doubles from, to;
  };
  const Case cases[] = {
      {3, {}, {}},
      {3, {1, 2, 3, 4, 5, 6}, {8, 1, 3, 5, 4, 6}},
      {3, {1, 2, 3, 4, 5}, {8, 1, 3, 4, 5}}, // no whole second point
      {5, {1, 2, 3, -1, -2, 4, 5, 6, -3, -4}, {8, 1, 3, -1, -2, 5, 4, 6, -3, -4}},
      {4, {1, 2, 3, -1, 4, 5, 6}, {8, 1, 3, -1, 5, 4, 6}}, // whole without its extra value
      {9, {1, 2}, {1, 2}},
  };
  for (const Case& c : cases) {
    Doubles inPlace = c.from, copied(c.from.size(), -99);
    system.Transform(inPlace, c.stride);
    system.Transform(c.from, copied, c.stride);
    expectNear(inPlace, c.to, "in place, stride " + std::to_string(c.stride));
    EXPECT_EQ(copied, inPlace) << c.stride; // the same bits
    inpS_System().Transform(c.from, copied, c.stride);
    EXPECT_EQ(copied, c.from);
  }
  Doubles list(6), shorter(5);
  EXPECT_THROW(system.Transform(list, 2), utl_Assertion);
  EXPECT_THROW(system.Transform(Doubles(6), shorter), utl_Assertion);
}
