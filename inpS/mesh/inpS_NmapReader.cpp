#include "inpS/mesh/inpS_NmapReader.h"
#include "base/utl_Assert.h"
#include "inpS/messages/inpS_LocatedText.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"
#include <algorithm>
#include <cmath>

namespace {

constexpr double kRadians = 3.141592653589793 / 180;
constexpr double kLargeFactor = 1e100;

// The cosine and sine of an angle in degrees, exact zeros where they belong.
struct Turn {
  explicit Turn(double degrees)
      : c(Snapped(std::cos(degrees * kRadians))), s(Snapped(std::sin(degrees * kRadians))) {}
  static double Snapped(double value) { return std::fabs(value) < 1e-12 ? 0.0 : value; }
  double c;
  double s;
};

} // namespace

const inpS_NmapReader::Kind* inpS_NmapReader::FindKind(const cow_String& type) {
  using This = inpS_NmapReader;
  static const Kind kinds[] = {{"RECTANGULAR", 3, &This::PrepareRectangular, &This::MapAffine},
                               {"CYLINDRICAL", 3, &This::PrepareAxes, &This::MapCylindrical},
                               {"SPHERICAL", 3, &This::PrepareAxes, &This::MapSpherical},
                               {"TOROIDAL", 3, &This::PrepareAxes, &This::MapToroidal},
                               {"DIAMOND", 4, &This::PrepareDiamond, &This::MapAffine},
                               {"TRANSLATION", 2, &This::PrepareTranslation, &This::MapAffine},
                               {"ROTATION", 2, &This::PrepareRotation, &This::MapAffine},
                               {"SCALE", 1, &This::PrepareScale, &This::MapAffine}};
  for (const Kind& kind : kinds)
    if (type == kind.name) return &kind;
  return nullptr;
}

void inpS_NmapReader::Read(const inp_Keyword& keyword, const inpS_NodeSink& sink) {
  Open(keyword, sink, nullptr);
  if (m_type == "BLENDED") utl_assertionFailed("\"NYI - *NMAP, TYPE=BLENDED\" == 0");
  const Kind* kind = FindKind(m_type);
  if (!kind) utl_assertionFailed("\"Unknown NMAP option\" == 0");
  if (m_definition != "COORDINATES" && m_definition != "NODES")
    utl_assertionFailed("\"*NMAP undefined definition type\" == 0");
  const inp_DataArray& data = keyword.Data();
  if (m_type == "SCALE") utl_ASSERT(data.Rows() > 1);
  long long row = 0;
  if (!ReadPoints(kind->points, row) || !ReadFactors(row) || !(this->*kind->prepare)()) return;
  for (long long n = 0; n < m_nodes.ordinals.Size(); ++n) {
    const long long ordinal = m_nodes.ordinals[n];
    inpS_NodeValues node = ValuesOf(ordinal);
    (this->*kind->map)(node);
    Emit(Known().LabelOf(ordinal), node);
  }
  Close();
}

// ---- the definition

bool inpS_NmapReader::ReadPoints(int count, long long& row) {
  const bool byNodes = m_definition == "NODES";
  for (int point = 0; point < count; ++point) {
    row = byNodes ? 0 : point / 2;
    const int col = byNodes ? point : 3 * (point % 2);
    const bool optional = point == 3;
    bool given = false;
    for (int i = 0; i < (byNodes ? 1 : 3); ++i) given = given || HasValue(row, col + i);
    if (!given && optional) continue;
    m_given[point] = true;
    if (!given) {
      Messages().AddError(inp_Utils::MessageInKeyword(
          Keyword(), inpS_messageText(inpS_mesh_IncompleteData) +
                         " A point that defines the map is missing; no nodes are mapped."));
      return false;
    }
    long long ordinal = 0;
    if (!byNodes) {
      if (!ReadPoint(row, col, m_points[point])) return false;
    } else if (ReadNode(row, col, ordinal)) {
      std::copy_n(Known().Point(ordinal), 3, m_points[point]);
    } else {
      return false;
    }
  }
  for (long long line = 0; line <= row; ++line)
    TellUnused(line, byNodes ? count : 3 * static_cast<int>(std::min(2LL, count - 2 * line)));
  ++row;
  return true;
}

bool inpS_NmapReader::ReadFactors(long long row) {
  if (!ReadPoint(row, 0, m_values)) return false;
  if (m_type == "ROTATION" && !HasValue(row, 0))
    Messages().AddWarning(inp_Utils::MessageInKeyword(
        Keyword(), "The angle of the rotation is missing; the nodes stay where they are."));
  const bool hasFactor = HasValue(row, 0) || HasValue(row, 1) || HasValue(row, 2);
  if (m_type == "SCALE" && !hasFactor)
    Messages().AddWarning(inp_Utils::MessageInKeyword(
        Keyword(), "The factors of the scale are missing; the nodes stay where they are."));
  TellUnused(row, 3);
  TellUnusedRows(row + 1);
  for (int i = 0; i < 3; ++i) m_factors[i] = m_values[i] == 0 ? 1.0 : m_values[i];
  return true;
}

bool inpS_NmapReader::PrepareAxes() {
  if (!inpS_AffineMap::AxesOf(m_points[0], m_points[1], m_points[2], m_axes)) {
    Messages().AddError(inp_Utils::MessageInKeyword(
        Keyword(), "The points of the map do not define its axes (they coincide or lie on one "
                   "line); no nodes are mapped."));
    return false;
  }
  m_radius = std::hypot(m_points[1][0] - m_points[0][0], m_points[1][1] - m_points[0][1],
                        m_points[1][2] - m_points[0][2]);
  return true;
}

bool inpS_NmapReader::PrepareRectangular() {
  if (!PrepareAxes()) return false;
  SetLocal(m_axes);
  return true;
}

bool inpS_NmapReader::PrepareDiamond() {
  if (!PrepareAxes()) return false;
  double axes[3][3];
  std::copy(&m_axes[0][0], &m_axes[0][0] + 9, &axes[0][0]);
  for (int point = 2; point < 4; ++point) {
    if (!m_given[point]) continue;
    double* axis = axes[point - 1];
    for (int i = 0; i < 3; ++i) axis[i] = m_points[point][i] - m_points[0][i];
    if (ToUnitLength(axis)) continue;
    Messages().AddError(inp_Utils::MessageInKeyword(
        Keyword(), "A point of the map lies at its origin; no nodes are mapped."));
    return false;
  }
  SetLocal(axes);
  return true;
}

bool inpS_NmapReader::PrepareTranslation() {
  double along[3];
  for (int i = 0; i < 3; ++i) along[i] = m_points[1][i] - m_points[0][i];
  if (m_values[0] != 0 && ToUnitLength(along))
    for (double& component : along) component *= m_values[0];
  std::copy_n(along, 3, m_map.shift);
  SetNormalMatrix();
  return true;
}

bool inpS_NmapReader::PrepareRotation() {
  if (!m_map.SetRotation(m_points[0], m_points[1], m_values[0])) {
    Messages().AddError(inp_Utils::MessageInKeyword(
        Keyword(), "The two points of the axis coincide; no nodes are mapped."));
    return false;
  }
  SetNormalMatrix();
  return true;
}

bool inpS_NmapReader::PrepareScale() {
  for (int i = 0; i < 3; ++i) m_map.matrix[i][i] = m_factors[i];
  m_map.Fix(m_points[0]);
  SetNormalMatrix();
  return true;
}

void inpS_NmapReader::SetLocal(const double axes[3][3]) {
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) m_map.matrix[i][j] = m_factors[j] * axes[j][i];
  std::copy_n(m_points[0], 3, m_map.shift);
  SetNormalMatrix();
}

// A normal stays normal to the surface that its node lies on: the inverse transpose of the map, up
// to a positive factor its cofactors with the sign of its determinant.
void inpS_NmapReader::SetNormalMatrix() {
  double m[3][3], largest = 0;
  std::copy(&m_map.matrix[0][0], &m_map.matrix[0][0] + 9, &m[0][0]);
  for (const auto& line : m)
    for (const double entry : line) largest = std::max(largest, std::fabs(entry));
  if (largest > kLargeFactor || (largest > 0 && largest < 1 / kLargeFactor))
    for (auto& line : m)
      for (double& entry : line) entry /= largest; // or products of three go out of range
  auto& cofactors = m_normalMatrix;
  for (int i = 0; i < 3; ++i) {
    const int i1 = (i + 1) % 3, i2 = (i + 2) % 3;
    for (int j = 0; j < 3; ++j) {
      const int j1 = (j + 1) % 3, j2 = (j + 2) % 3;
      cofactors[i][j] = m[i1][j1] * m[i2][j2] - m[i1][j2] * m[i2][j1];
    }
  }
  double determinant = 0;
  for (int j = 0; j < 3; ++j) determinant += m[0][j] * cofactors[0][j];
  if (determinant >= 0) return;
  for (auto& line : cofactors)
    for (double& cofactor : line) cofactor = -cofactor;
}

// ---- the maps

void inpS_NmapReader::MapAffine(inpS_NodeValues& node) const {
  m_map.Apply(node.value);
  if (!node.hasNormal) return;
  const double n[3] = {node.value[3], node.value[4], node.value[5]};
  for (int i = 0; i < 3; ++i)
    node.value[3 + i] =
        m_normalMatrix[i][0] * n[0] + m_normalMatrix[i][1] * n[1] + m_normalMatrix[i][2] * n[2];
}

void inpS_NmapReader::MapCylindrical(inpS_NodeValues& node) const {
  const double r = m_factors[0] * node.value[0];
  const Turn theta(m_factors[1] * node.value[1]);
  const double local[3] = {r * theta.c, r * theta.s, m_factors[2] * node.value[2]};
  const double frame[3][3] = {{theta.c, theta.s, 0}, {-theta.s, theta.c, 0}, {0, 0, 1}};
  Place(node, local, frame);
}

void inpS_NmapReader::MapSpherical(inpS_NodeValues& node) const {
  const double r = m_factors[0] * node.value[0];
  const Turn theta(m_factors[1] * node.value[1]), phi(m_factors[2] * node.value[2]);
  const double frame[3][3] = {{phi.c * theta.c, phi.c * theta.s, phi.s},
                              {-theta.s, theta.c, 0},
                              {-phi.s * theta.c, -phi.s * theta.s, phi.c}};
  const double local[3] = {r * frame[0][0], r * frame[0][1], r * frame[0][2]};
  Place(node, local, frame);
}

void inpS_NmapReader::MapToroidal(inpS_NodeValues& node) const {
  const double r = m_factors[0] * node.value[0];
  const Turn theta(m_factors[1] * node.value[1]), phi(m_factors[2] * node.value[2]);
  const double outward = m_radius + r * theta.c;
  const double local[3] = {outward * phi.c, outward * phi.s, r * theta.s};
  const double frame[3][3] = {{theta.c * phi.c, theta.c * phi.s, theta.s},
                              {-theta.s * phi.c, -theta.s * phi.s, theta.c},
                              {-phi.s, phi.c, 0}};
  Place(node, local, frame);
}

// A normal's components are along the lines of the curvilinear coordinates at its node: the frame.
void inpS_NmapReader::Place(inpS_NodeValues& node, const double local[3],
                            const double frame[3][3]) const {
  double normal[3] = {};
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) normal[j] += node.value[3 + i] * frame[i][j];
  for (int i = 0; i < 3; ++i) {
    node.value[i] = m_points[0][i];
    node.value[3 + i] = 0;
    for (int j = 0; j < 3; ++j) {
      node.value[i] += local[j] * m_axes[j][i];
      node.value[3 + i] += normal[j] * m_axes[j][i];
    }
  }
}
