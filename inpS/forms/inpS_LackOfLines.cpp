#include "inpS/forms/inpS_LackOfLines.h"
#include "inpS/keywords/inpS_KeywordReader.h"
#include <algorithm>

bool inpS_isWithoutLines(const inp_Keyword& keyword, long long first) {
  const inp_DataArray& data = keyword.Data();
  for (long long row = first; row < data.Rows(); ++row)
    if (!inpS_KeywordReader::IsBlankRow(data, row)) return false;
  return true;
}

bool inpS_lacksLines(const inp_Keyword& keyword, const eds_FormInfo& form) {
  if (!inpS_isWithoutLines(keyword)) return false;
  const auto hasUsual = [](const cow_List<eds_FormItem>& items) {
    return std::ranges::any_of(items, [](const eds_FormItem& item) { return !item.isOptional; });
  };
  if (!form.lines.empty()) return hasUsual(form.lines.front());
  if (form.data == eds_FormData::Records) return hasUsual(eds_formOf(form.record)->lines.front());
  return form.data == eds_FormData::Columns && hasUsual(form.columnItems);
}

const char* inpS_reasonWithoutRows(const inp_Keyword& keyword, const eds_FormInfo& form) {
  if (!inpS_isWithoutLines(keyword, std::ssize(form.lines))) return "";
  return inpS_isWithoutLines(keyword) ? "has no data lines" : "has no data lines behind the first";
}
