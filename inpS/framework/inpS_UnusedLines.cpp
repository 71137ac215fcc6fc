#include "inpS/framework/inpS_UnusedLines.h"
#include "parser/inp_KeywordTable.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"
#include <algorithm>

namespace {

// The first data line that holds something; -1 when there is none.
long long firstGivenRow(const inp_DataArray& data) {
  for (long long row = 0; row < data.Rows(); ++row)
    for (int col = 0, cols = data.Cols(row); col < cols; ++col)
      if (data.HasValue(row, col)) return row;
  return -1;
}

} // namespace

void inpS_reportUnusedLines(const inp_KeywordList& keywords, const cow_List<inp_KeywordEnm>& kinds,
                            inp_Visitor& messages) {
  for (const inp_Keyword& keyword : keywords) {
    if (keyword.IsInstanceCopy() || keyword.Data().Rows() == 0) continue;
    if (std::find(kinds.begin(), kinds.end(), keyword.Kind()) == kinds.end()) continue;
    const inp_KeywordRow* row = inp_KeywordTable::Instance().Row(keyword.Kind());
    if (!row || row->data != inp_DataKind::None) continue;
    const long long given = firstGivenRow(keyword.Data());
    if (given < 0) continue;
    messages.AddWarning(inp_Utils::MessageAtRow(
        keyword, given,
        "*" + keyword.Name() + " takes no data lines; from here on they are left out."));
    messages.LeaveOut("data line", keyword.Data().Rows() - given);
  }
}
