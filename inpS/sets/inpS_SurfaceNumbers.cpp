#include "inpS/sets/inpS_SurfaceNumbers.h"
#include "inpS/keywords/inpS_BlankLine.h"
#include "inpS/keywords/inpS_TinyNumber.h"
#include "inpS/messages/inpS_LocatedText.h"
#include "parser/inp_Keyword.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"
#include <algorithm>
#include <cmath>

namespace {

constexpr double kCoincident = 1e-6;      // of the largest coordinate
constexpr double kRadiusTolerance = 1e-3; // of the radius; decks give few digits

double distance(const double* a, const double* b) {
  return std::hypot(b[0] - a[0], b[1] - a[1], b[2] - a[2]);
}

} // namespace

bool inpS_SurfaceNumbers::Fault(long long row, cow_String text) {
  text += m_consequence;
  m_messages.AddError(row < m_keyword.Data().Rows()
                          ? inp_Utils::MessageAtRow(m_keyword, row, std::move(text))
                          : inp_Utils::MessageInKeyword(m_keyword, std::move(text)));
  return false;
}

bool inpS_SurfaceNumbers::BeginsWithSegments() const {
  const inp_DataArray& data = m_keyword.Data();
  long long row = 0;
  while (row < data.Rows() && inpS_isBlank(data, row)) ++row;
  if (row == data.Rows()) return false;
  const std::span<const inpS_SegmentRow> kinds = inpS_segmentRows();
  return std::any_of(kinds.begin(), kinds.end(), [&](const inpS_SegmentRow& kind) {
    return kind.word == data.AsString(row, 0);
  });
}

// A coordinate that is not given is zero, as long as one on the line is.
bool inpS_SurfaceNumbers::ReadNumbers(long long row, int firstCol, int count, double* numbers) {
  const inp_DataArray& data = m_keyword.Data();
  for (int col = firstCol, cols = data.Cols(row); col < cols; ++col) {
    if (!data.HasValue(row, col)) continue;
    if (col - firstCol < count && data.IsNumber(row, col)) {
      numbers[col - firstCol] = data.AsDouble(row, col);
      if (auto tiny = inpS_tinyNumberMessage(m_keyword, row, col))
        m_messages.AddWarning(std::move(*tiny));
      continue;
    }
    if (col - firstCol >= count) {
      m_isWhole = false;
      m_messages.AddWarning(inp_Utils::MessageAtField(
          m_keyword, row, col,
          inp_Utils::Format("%d numbers are expected here, not more; those beyond are kept, but "
                            "not used.",
                            count)));
      return true;
    }
    m_messages.AddError(inp_Utils::MessageAtField(m_keyword, row, col,
                                                  "\"" + data.AsStringVerbatim(row, col) +
                                                      "\" is no number." + m_consequence));
    return false;
  }
  return true;
}

bool inpS_SurfaceNumbers::ReadPoints(const inpS_PointLines& lines, int optionalLines,
                                     long long& row, cow_List<double>& coordinates) {
  const inp_DataArray& data = m_keyword.Data();
  for (int n = 0; n < lines.lines; ++n) {
    if (row >= data.Rows() || inpS_isBlank(data, row)) {
      if (n >= lines.lines - optionalLines) return true;
      return Fault(row, inpS_messageText(inpS_mesh_IncompleteData));
    }
    double numbers[6] = {};
    if (!ReadNumbers(row, 0, lines.numbers[n], numbers)) return false;
    coordinates.insert(coordinates.end(), numbers, numbers + lines.numbers[n]);
    ++row;
  }
  return true;
}

void inpS_SurfaceNumbers::TellUnused(long long row) {
  const inp_DataArray& data = m_keyword.Data();
  while (row < data.Rows() && inpS_isBlank(data, row)) ++row;
  if (row >= data.Rows()) return;
  m_isWhole = false;
  m_messages.AddWarning(inp_Utils::MessageAtRow(
      m_keyword, row,
      "This line and those behind it have no meaning here; they are kept, but not "
      "used."));
}

bool inpS_SurfaceNumbers::CheckPoints(eds_SurfaceType type, const cow_List<double>& points) {
  if (points.empty()) return true;
  double scale = 0;
  for (const double value : points) scale = std::max(scale, std::fabs(value));
  const double near = kCoincident * scale;
  const double* const a = points.data();
  if (type == eds_SurfaceType::Cutting) {
    if (std::hypot(a[3], a[4], a[5]) > 0) return true;
    return Fault(0, "The normal of the cutting plane has no length.");
  }
  if (distance(a, a + 3) <= near) return Fault(0, "The two points of the axis are coincident.");
  if (points.size() < 9) return true;
  double d[3], e[3];
  for (int i = 0; i < 3; ++i) {
    d[i] = a[3 + i] - a[i];
    e[i] = a[6 + i] - a[i];
  }
  const double area =
      std::hypot(d[1] * e[2] - d[2] * e[1], d[2] * e[0] - d[0] * e[2], d[0] * e[1] - d[1] * e[0]);
  if (area > near * distance(a, a + 3)) return true;
  return Fault(1, "The three points of the surface's axes lie on a line.");
}

// Zeros alone turn nothing, as if they were not given.
bool inpS_SurfaceNumbers::CheckBox(long long row, const cow_List<double>& box) {
  if (box.size() < 12) return true;
  const double* const a = box.data() + 6;
  const double* const b = box.data() + 9;
  const double lengths = std::hypot(a[0], a[1], a[2]) * std::hypot(b[0], b[1], b[2]);
  const double area =
      std::hypot(a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]);
  if (area > kCoincident * lengths) return true;
  if (std::all_of(a, a + 6, [](double value) { return value == 0; })) return true;
  return Fault(row, "The two points that turn the box lie on a line with the origin.");
}

bool inpS_SurfaceNumbers::ReadSegments(long long row, bool aroundAxis, cow_List<double>& segments) {
  const inp_DataArray& data = m_keyword.Data();
  const std::span<const inpS_SegmentRow> kinds = inpS_segmentRows();
  cow_List<long long> rows; // the data row of each segment
  for (; row < data.Rows(); ++row) {
    if (inpS_isBlank(data, row)) continue;
    const cow_String word = data.AsString(row, 0);
    const auto kind = std::find_if(kinds.begin(), kinds.end(), [&](const inpS_SegmentRow& known) {
      return known.word == word;
    });
    if (kind == kinds.end())
      return Fault(row, "\"" + word + "\" is no segment (START, LINE, CIRCL, PARAB).");
    if ((kind->kind == eds_SegmentKind::Start) != rows.empty())
      return Fault(row, rows.empty() ? "The first segment must be START."
                                     : "START can be the first segment only.");
    if (data.Cols(row) <= kind->numbers || !data.HasValue(row, kind->numbers))
      return Fault(row, inpS_messageText(inpS_mesh_IncompleteData));
    double numbers[eds_segmentWidth] = {static_cast<double>(kind->kind)};
    if (!ReadNumbers(row, 1, kind->numbers, numbers + 1)) return false;
    segments.insert(segments.end(), numbers, numbers + eds_segmentWidth);
    rows.push_back(row);
  }
  if (rows.size() < 2) return Fault(row, "An analytical surface needs START and a segment.");

  double scale = 0;
  for (std::size_t n = 0; n < segments.size(); ++n)
    if (n % eds_segmentWidth) scale = std::max(scale, std::fabs(segments[n]));
  bool good = true;
  Point from;
  for (std::size_t n = 0; n < rows.size(); ++n) {
    const double* const numbers = segments.data() + n * eds_segmentWidth;
    const inpS_SegmentRow& kind = kinds[static_cast<std::size_t>(numbers[0])];
    good = CheckSegment(rows[n], kind, numbers + 1, from, scale) && good;
    const bool last = kind.kind == eds_SegmentKind::Parabola; // its middle point stands first
    from = {numbers[last ? 3 : 1], numbers[last ? 4 : 2]};
    if (aroundAxis && from.x < 0)
      good = Fault(rows[n], "A surface of revolution has no radius below zero.");
  }
  return good;
}

bool inpS_SurfaceNumbers::CheckSegment(long long row, const inpS_SegmentRow& kind,
                                       const double* numbers, Point from, double scale) {
  const Point first{numbers[0], numbers[1]};
  const Point second{numbers[2], numbers[3]};
  const auto coincide = [&](Point a, Point b) {
    return std::hypot(b.x - a.x, b.y - a.y) <= kCoincident * scale;
  };
  switch (kind.kind) {
  case eds_SegmentKind::Start:
    return true;
  case eds_SegmentKind::Line:
    return !coincide(from, first) || Fault(row, "The ends of the segment are coincident.");
  case eds_SegmentKind::Arc:
    return CheckArc(row, from, first, second, scale);
  case eds_SegmentKind::Parabola:
    if (!coincide(from, first) && !coincide(first, second) && !coincide(from, second)) return true;
    return Fault(row, "Two of the three points of the parabola are coincident.");
  }
  return true;
}

bool inpS_SurfaceNumbers::CheckArc(long long row, Point from, Point to, Point centre,
                                   double scale) {
  const Point a{from.x - centre.x, from.y - centre.y};
  const Point b{to.x - centre.x, to.y - centre.y};
  const double ra = std::hypot(a.x, a.y), rb = std::hypot(b.x, b.y);
  if (std::min(ra, rb) <= kCoincident * scale)
    return Fault(row, inpS_messageText(inpS_mesh_ArcEndAtCenter));
  if (std::fabs(ra - rb) > kRadiusTolerance * std::max(ra, rb))
    return Fault(row, inp_Utils::Format("The centre of the arc is %g away from its start and %g "
                                        "from its end.",
                                        ra, rb));
  const double cross = a.x * b.y - a.y * b.x;
  const double dot = a.x * b.x + a.y * b.y;
  const double tiny = kCoincident * ra * rb;
  if (std::fabs(cross) > tiny) return true; // the way round below 180 degrees is meant
  return Fault(row, dot < 0 ? "The angle of an arc must be below 180 degrees; split the arc."
                            : "The ends of the segment are coincident.");
}
