#include "inpS/mesh/inpS_NgenReader.h"
#include "base/utl_Assert.h"
#include "inpS/messages/inpS_LocatedText.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"
#include <algorithm>
#include <cmath>

namespace {

constexpr double kPi = 3.141592653589793;
constexpr double kTwoPi = 6.283185307179586;
constexpr double kZeroBelow = 2.22e-16;  // a computed coordinate
constexpr double kOtherWayBelow = 1e-6;  // triple product of unit vectors
constexpr double kInLineBelow = 1e-8;    // sine of the angle between the radii
constexpr double kRadiiMayDiffer = 0.05; // of the mean radius

double dot(const double a[3], const double b[3]) {
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

// Of the values at -m, 0 and m that at x: whole numbers as long as they can be, and one division.
double onParabola(double a, double c, double b, double x, double m) {
  if (a == b && b == c) return a;
  return (x * (x - m) * a - 2.0 * (x - m) * (x + m) * c + x * (x + m) * b) / (2.0 * m * m);
}

void cross(const double a[3], const double b[3], double result[3]) {
  result[0] = a[1] * b[2] - a[2] * b[1];
  result[1] = a[2] * b[0] - a[0] * b[2];
  result[2] = a[0] * b[1] - a[1] * b[0];
}

} // namespace

void inpS_NgenReader::Read(const inp_Keyword& keyword, const inpS_NodeSink& sink,
                           inpS_SetDefinition* collection) {
  Open(keyword, sink, collection);
  if (m_line != "RC" && m_line != "C" && m_line != "P")
    utl_assertionFailed("\"Unknown *NGEN line type\" == 0");
  TellNoLines();
  for (long long row = 0; row < keyword.Data().Rows(); ++row) {
    if (IsBlank(row)) continue;
    Line line;
    line.row = row;
    inpS_KnownNodes::Set first, last;
    if (!ReadLine(line, first, last) || !CountFits(row, CountOf(line, first, last))) continue;
    Collect(first);
    for (long long n = 0; n < first.ordinals.Size(); ++n)
      Generate(line, first.ordinals[n], last.ordinals[n]);
    Flush(); // the next line may look at these nodes
    Collect(last);
  }
  Close();
}

bool inpS_NgenReader::ReadLine(Line& line, inpS_KnownNodes::Set& first,
                               inpS_KnownNodes::Set& last) {
  if (!ReadNodes(line.row, 0, first) || !ReadNodes(line.row, 1, last) ||
      !ReadInteger(line.row, 2, 1, line.increment))
    return false;
  if (line.increment == 0) line.increment = 1;
  TellUnused(line.row, m_line == "P" ? 7 : 10); // a straight line may carry what an arc needs
  return ArePairs(line.row, first, last) && (m_line == "RC" || ReadExtra(line));
}

bool inpS_NgenReader::ReadExtra(Line& line) {
  long long label = 0;
  if (!ReadInteger(line.row, 3, 0, label)) return false;
  bool given = HasValue(line.row, 3);
  for (int col = 4; col < 7; ++col) given = given || HasValue(line.row, col);
  if (!given)
    return Fails(line.row, inpS_messageText(inpS_mesh_IncompleteData) +
                               (m_line == "C" ? " The centre of the arc is missing; line ignored."
                                              : " The middle node is missing; line ignored."));
  if (label != 0) {
    long long ordinal = 0;
    if (!ReadNode(line.row, 3, ordinal)) return false;
    line.extra = ValuesOf(ordinal);
  } else {
    if (!ReadPoint(line.row, 4, line.extra.value)) return false;
    ConvertPoints({line.extra.value, 3}, m_system);
  }
  if (m_line != "C") return true;
  if (!ReadPoint(line.row, 7, line.axis)) return false;
  m_system.TransformVector(line.axis[0], line.axis[1], line.axis[2]);
  if (!m_threeDimensional) line.axis[0] = line.axis[1] = 0; // a planar arc turns about z
  line.hasAxis = ToUnitLength(line.axis);
  return true;
}

long long inpS_NgenReader::CountOf(const Line& line, const inpS_KnownNodes::Set& first,
                                   const inpS_KnownNodes::Set& last) {
  long long count = 0;
  for (long long n = 0; n < first.ordinals.Size(); ++n) {
    const long long span = Known().LabelOf(last.ordinals[n]) - Known().LabelOf(first.ordinals[n]);
    count += std::max(span / line.increment - 1, 0LL);
  }
  return count;
}

void inpS_NgenReader::Generate(const Line& line, long long first, long long last) {
  const long long label = Known().LabelOf(first);
  const long long span = Known().LabelOf(last) - label;
  const long long intervals = span / line.increment;
  TellRest(line, label, span);
  if (intervals <= 1 || !LabelsFit(line.row, label, line.increment, intervals - 1)) return;
  const inpS_NodeValues a = ValuesOf(first), b = ValuesOf(last);
  if (m_line == "RC") Straight(line, label, intervals, a, b);
  if (m_line == "P") Parabola(line, label, intervals, a, b);
  if (m_line == "C") Circle(line, label, intervals, a, b);
}

// Once a line, which may be of sets with thousands of nodes.
void inpS_NgenReader::TellRest(const Line& line, long long label, long long span) {
  const bool leads = span % line.increment == 0 && span / line.increment >= 0;
  if (leads || m_lastTold == line.row) return;
  m_lastTold = line.row;
  const long long intervals = span / line.increment;
  cow_String text =
      inp_Utils::Format("Increment of %lld does not lead from node %lld to node %lld; ",
                        line.increment, label, label + span);
  text += intervals > 1 ? "the way is cut into " + std::to_string(intervals) + " equal parts."
                        : cow_String("no nodes are generated.");
  Messages().AddWarning(inp_Utils::MessageAtRow(Keyword(), line.row, std::move(text)));
}

void inpS_NgenReader::Straight(const Line& line, long long label, long long intervals,
                               const inpS_NodeValues& a, const inpS_NodeValues& b) {
  inpS_NodeValues node;
  node.hasNormal = a.hasNormal && b.hasNormal;
  const auto m = static_cast<double>(intervals);
  for (long long k = 1; k < intervals; ++k) {
    for (int i = 0; i < 6; ++i)
      node.value[i] = inpS_between(a.value[i], b.value[i], static_cast<double>(k), m);
    Emit(label + k * line.increment, node);
  }
}

// Where the middle node has no normal, that of the ends' chord stands in for it.
void inpS_NgenReader::Parabola(const Line& line, long long label, long long intervals,
                               const inpS_NodeValues& a, const inpS_NodeValues& b) {
  inpS_NodeValues c = line.extra, node;
  if (!c.hasNormal)
    for (int i = 3; i < 6; ++i) c.value[i] = 0.5 * (a.value[i] + b.value[i]);
  node.hasNormal = a.hasNormal && b.hasNormal;
  const auto m = static_cast<double>(intervals);
  for (long long k = 1; k < intervals; ++k) {
    const double x = 2.0 * static_cast<double>(k) - m;
    for (int i = 0; i < 6; ++i)
      node.value[i] = onParabola(a.value[i], c.value[i], b.value[i], x, m);
    Emit(label + k * line.increment, node);
  }
}

// ---- arcs

// The radius goes from that of the first end to that of the last one in equal steps, so that an arc
// whose ends are not quite on one circle still meets both. Normals keep their direction relative to
// the arc: their radial, tangential and axial components are interpolated.
void inpS_NgenReader::Circle(const Line& line, long long label, long long intervals,
                             const inpS_NodeValues& a, const inpS_NodeValues& b) {
  Arc arc;
  if (!MakeArc(line, a, b, arc)) return;
  const auto m = static_cast<double>(intervals);
  const auto at = [&](double angle, double radial[3], double tangential[3]) {
    const double c = std::cos(angle), s = std::sin(angle);
    for (int i = 0; i < 3; ++i) {
      radial[i] = c * arc.radial[i] + s * arc.tangential[i];
      tangential[i] = c * arc.tangential[i] - s * arc.radial[i];
    }
  };
  double radial[3], tangential[3], first[3], last[3];
  at(arc.angle, radial, tangential);
  const double* normals[2] = {a.value + 3, b.value + 3};
  const double* frames[2][3] = {{arc.radial, arc.tangential, arc.normal},
                                {radial, tangential, arc.normal}};
  for (int i = 0; i < 3; ++i) {
    first[i] = dot(normals[0], frames[0][i]);
    last[i] = dot(normals[1], frames[1][i]);
  }
  inpS_NodeValues node;
  node.hasNormal = a.hasNormal && b.hasNormal;
  for (long long k = 1; k < intervals; ++k) {
    const double part = static_cast<double>(k) / m;
    const double radius = (1.0 - part) * arc.radii[0] + part * arc.radii[1];
    if (radius == 0) utl_assertionFailed("\"radius computed for *NGEN parameter is zero\" == 0");
    at(part * arc.angle, radial, tangential);
    double local[3];
    for (int i = 0; i < 3; ++i) local[i] = (1.0 - part) * first[i] + part * last[i];
    for (int i = 0; i < 3; ++i) {
      const double value = arc.centre[i] + radius * radial[i];
      node.value[i] = std::fabs(value) < kZeroBelow ? 0.0 : value;
      node.value[3 + i] =
          local[0] * radial[i] + local[1] * tangential[i] + local[2] * arc.normal[i];
    }
    if (!m_threeDimensional) node.value[2] = (1.0 - part) * arc.height[0] + part * arc.height[1];
    Emit(label + k * line.increment, node);
  }
}

bool inpS_NgenReader::MakeArc(const Line& line, const inpS_NodeValues& a, const inpS_NodeValues& b,
                              Arc& arc) {
  std::copy_n(line.extra.value, 3, arc.centre);
  arc.height[0] = a.value[2];
  arc.height[1] = b.value[2];
  double first[3], last[3];
  for (int i = 0; i < 3; ++i) {
    const bool flat = i == 2 && !m_threeDimensional; // planar: the view along z counts
    first[i] = flat ? 0.0 : a.value[i] - arc.centre[i];
    last[i] = flat ? 0.0 : b.value[i] - arc.centre[i];
  }
  arc.radii[0] = std::hypot(first[0], first[1], first[2]);
  arc.radii[1] = std::hypot(last[0], last[1], last[2]);
  if (!ToUnitLength(first) || !ToUnitLength(last))
    return Fails(line.row, inpS_messageText(inpS_mesh_ArcEndAtCenter));
  if (std::fabs(arc.radii[0] - arc.radii[1]) >
      kRadiiMayDiffer * 0.5 * (arc.radii[0] + arc.radii[1]))
    Messages().AddWarning(
        inp_Utils::MessageAtRow(Keyword(), line.row, inpS_messageText(inpS_mesh_RadiiNotEqual)));
  return OrientArc(line, first, last, arc);
}

// Of unit radius vectors, so that the size of the model does not decide which way the arc takes.
// Ends in line with the centre (an arc of 0, 180 or 360 degrees) leave the plane open: it is then
// the one that the axis stands on.
bool inpS_NgenReader::OrientArc(const Line& line, const double first[3], const double last[3],
                                Arc& arc) {
  cross(first, last, arc.normal);
  const double sine = std::hypot(arc.normal[0], arc.normal[1], arc.normal[2]);
  const double cosine = dot(first, last);
  const bool inLine = sine < kInLineBelow;
  arc.angle = !inLine ? std::atan2(sine, cosine) : cosine < 0 ? kPi : 0.0;
  const bool otherWay = line.hasAxis && dot(arc.normal, line.axis) < kOtherWayBelow;
  if (otherWay) arc.angle = kTwoPi - arc.angle;
  if (inLine) {
    const double along = dot(line.axis, first);
    for (int i = 0; i < 3; ++i) arc.normal[i] = line.axis[i] - along * first[i];
    if (!line.hasAxis ||
        std::hypot(arc.normal[0], arc.normal[1], arc.normal[2]) < inpS_System::tolerance)
      return Fails(line.row, inpS_messageText(inpS_mesh_CircleNodesInLine));
  } else if (otherWay) {
    for (double& component : arc.normal) component = -component;
  }
  ToUnitLength(arc.normal);
  std::copy_n(first, 3, arc.radial);
  cross(arc.normal, first, arc.tangential);
  return true;
}
