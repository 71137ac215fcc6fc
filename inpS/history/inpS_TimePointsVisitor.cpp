#include "inpS/history/inpS_TimePointsVisitor.h"
#include "database/KvoObjModel.h"
#include "database/schema/eds_FormKind.h"
#include "inpS/history/inpS_TimePointTables.h"
#include "inpS/keywords/inpS_Flag.h"
#include "parser/inp_Utils.h"
#include <algorithm>

namespace {

bool isGenerated(const inp_Keyword& keyword) {
  return keyword.Kind() == inp_KwTimePoints && inpS_saysYes(keyword, "generate");
}

bool hasValueBehind(const inp_DataArray& data, long long row, int col) {
  for (++col; col < data.Cols(row); ++col)
    if (data.HasValue(row, col)) return true;
  return false;
}

} // namespace

// The amplitude is there, whoever's definition it has. What is told of it is text already, and what
// an earlier definition had is left out.
void inpS_TimePointsVisitor::VisitAmplitude(const inp_Keyword& keyword) {
  if (IsNaming() || keyword.IsInstanceCopy() || Ledger().TextOf(keyword)) return;
  const KvoSimPosition amplitude =
      Model().FollowStringKey(eds_Member::Amplitudes, keyword.StringOf("name", ""));
  if (amplitude.IsNull()) return;
  for (const inp_Keyword& suboption : keyword.Suboptions())
    if (!Ledger().TextOf(suboption) && !Ledger().IsSettled(suboption))
      Convert(suboption, amplitude, eds_Member::Suboptions, &keyword);
}

bool inpS_TimePointsVisitor::MayConvert(const inp_Keyword& keyword, const inpS_Form&) {
  m_keyword = keyword;
  m_times = 0;
  return true;
}

cow_String inpS_TimePointsVisitor::FaultOfLine(const KvoSimPosition& line) {
  return FaultOfTimes(m_keyword, line, m_times);
}

cow_String inpS_TimePointsVisitor::FaultOfTimes(const inp_Keyword& keyword,
                                                const KvoSimPosition& line, long long& count) {
  return isGenerated(keyword) ? inpS_faultOfTimes(line, count) : cow_String();
}

void inpS_TimePointsVisitor::CheckTimes(const inp_Keyword& keyword, inp_Visitor& messages) {
  constexpr int generating = 3; // start, end, increment
  const inp_DataArray& data = keyword.Data();
  const bool generates = isGenerated(keyword);
  bool isFirst = true;
  double before = 0;
  if (data.Rows() == 0)
    messages.AddWarning(
        inp_Utils::MessageInKeyword(keyword, "*TIME POINTS tells no times; it is kept as given."));
  for (long long row = 0; row < data.Rows(); ++row) {
    for (int col = 0, cols = data.Cols(row); col < cols; ++col) {
      if (!generates && col > 0 && !data.HasValue(row, col) && hasValueBehind(data, row, col))
        return messages.AddWarning(inp_Utils::MessageAtRow(
            keyword, row, "A time is left out between others; the line is kept as given."));
      if (!data.HasValue(row, col) || !data.IsNumber(row, col)) continue;
      if (generates && col >= generating)
        return messages.AddWarning(inp_Utils::MessageAtField(
            keyword, row, col,
            "Time points are generated of a start, an end and an increment; what stands behind "
            "them means nothing and is kept."));
      const double time = data.AsDouble(row, col);
      if (!generates && !isFirst && time <= before)
        return messages.AddWarning(inp_Utils::MessageAtField(
            keyword, row, col, "Time points must rise; this one does not. It is kept as given."));
      before = time;
      isFirst = false;
    }
  }
}

void inpS_TimePointsVisitor::Converted(const inp_Keyword& keyword, const inpS_Form& form,
                                       const KvoSimPosition&) {
  if (form.kind == eds_FormKind::CyclicSymmetryModel) CheckCyclicSymmetry(keyword);
  if (form.kind == eds_FormKind::TimePoints) CheckTimes(keyword, *this);
}

// A point alone is an axis in the plane: it stands on it.
void inpS_TimePointsVisitor::CheckCyclicSymmetry(const inp_Keyword& keyword) {
  constexpr int coordinates = 3;
  if (const inp_Item* sectors = keyword.Find("n");
      sectors && sectors->IsNumber() && sectors->AsInt() <= 0)
    AddWarning(inp_Utils::MessageAtParameter(keyword, "n",
                                             "N=" + sectors->AsString() +
                                                 " is no number of sectors; it is kept as given."));
  const inp_DataArray& data = keyword.Data();
  if (data.Rows() == 0) return;
  double points[2 * coordinates] = {};
  bool isInSpace = false;
  for (int col = 0; col < std::min(data.Cols(0), 2 * coordinates); ++col) {
    if (!data.HasValue(0, col)) continue;
    points[col] = data.AsDouble(0, col);
    isInSpace = isInSpace || col >= coordinates - 1;
  }
  if (!isInSpace || !std::equal(points, points + coordinates, points + coordinates)) return;
  AddWarning(inp_Utils::MessageAtRow(
      keyword, 0, "The two points of the axis of symmetry are one; the axis is kept as given."));
}
