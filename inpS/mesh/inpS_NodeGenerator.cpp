#include "inpS/mesh/inpS_NodeGenerator.h"
#include "inpS/framework/inpS_System.h"
#include "inpS/messages/inpS_LocatedText.h"
#include "parser/inp_Keyword.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"
#include <algorithm>
#include <cmath>

namespace {

constexpr double kRadians = 3.141592653589793 / 180.0;
constexpr double kZeroBelow = 1e-12;
constexpr double kUnitLength = 1e-14;
constexpr double kShort = 1e-300;
constexpr double kLong = 1e300;

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

void inpS_NodeGenerator::ReadLocalSystem(const inp_Keyword& keyword, inp_Visitor& messages) {
  const inp_Item* system = keyword.Find("system");
  if (!system) return;
  const cow_String& value = system->AsString();
  SetCylindricalSystem(value == "C");
  SetSphericalSystem(value == "S");
  if (value != "C" && value != "S" && value != "R")
    messages.AddWarning(
        inp_Utils::MessageAtParameter(keyword, "system",
                                      inpS_messageText(inpS_app_InvalidParameterValue, {"system"}) +
                                          " The coordinates are taken as rectangular."));
}

// Where the length itself is out of range, or has lost its digits, it is taken of the vector
// brought near 1 by a power of two.
bool inpS_NodeGenerator::ToUnitLength(double vector[3]) {
  double length = std::hypot(vector[0], vector[1], vector[2]);
  if (length < kShort || length > kLong) {
    const double largest =
        std::max({std::fabs(vector[0]), std::fabs(vector[1]), std::fabs(vector[2])});
    if (!(largest > 0) || !inpS_isFinite({vector, 3})) return false;
    const int exponent = std::ilogb(largest);
    for (int i = 0; i < 3; ++i) vector[i] = std::ldexp(vector[i], -exponent);
    length = std::hypot(vector[0], vector[1], vector[2]);
  }
  if (!(length > 0)) return false; // not a number
  if (std::fabs(length - 1.0) > kUnitLength)
    for (int i = 0; i < 3; ++i) vector[i] /= length;
  return true;
}

void inpS_NodeGenerator::NoteOverflow(int label) {
  if (m_overflows++ == 0) m_firstOverflow = label;
}

void inpS_NodeGenerator::TellOverflows(const inp_Keyword& keyword, inp_Visitor& messages) {
  if (m_overflows > 0)
    messages.AddError(inp_Utils::MessageInKeyword(
        keyword,
        inp_Utils::Format("The numbers are too large to reckon with: there is no finite place for "
                          "%lld of the nodes, the first of them %d; they are neither made nor "
                          "moved.",
                          m_overflows, m_firstOverflow)));
  m_overflows = 0;
}
