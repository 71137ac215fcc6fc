#include "inpS/history/inpS_TimePointsVisitor.h"
#include "database/schema/eds_FormKind.h"
#include "parser/inp_Utils.h"
#include <algorithm>

void inpS_TimePointsVisitor::Converted(const inp_Keyword& keyword, const inpS_Form& form,
                                       const KvoSimPosition&) {
  if (form.kind == eds_FormKind::CyclicSymmetryModel) CheckCyclicSymmetry(keyword);
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
