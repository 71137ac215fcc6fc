#include "inpS/forms/inpS_FormRows.h"
#include "inpS/forms/inpS_LackOfLines.h"
#include "inpS/forms/inpS_PropertyUtils.h"
#include "inpS/forms/inpS_TableCheck.h"
#include "inpS/messages/inpS_LocatedText.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"
#include <algorithm>

namespace {

using Column = inpS_TableColumns::Column;

inpS_ExtraColumns extraColumns(const cow_List<Column>& columns, Column::Role role) {
  inpS_ExtraColumns extra;
  for (std::size_t n = 0; n < columns.size(); ++n) {
    if (columns[n].role != role) continue;
    extra.numbers.push_back(static_cast<int>(n));
    extra.names.push_back(columns[n].tableName);
  }
  return extra;
}

cow_List<cow_String> namesOf(const cow_List<Column>& columns) {
  cow_List<cow_String> names;
  for (const Column& column : columns) names.push_back(column.name);
  return names;
}

// Whether the parameters that say how many values there are can be right.
bool checkCounts(const inp_Keyword& keyword, const inpS_Form& form, inp_Visitor& messages) {
  if (form.columns.IsFixed()) return true;
  const cow_List<cow_String> counts = form.columns.Parameters();
  const long long least = form.MayLackRows() && !form.HasTemperature() ? 0 : 1;
  for (const inpS_ParameterBinding& binding : form.parameters) {
    const inp_Item* item = keyword.Find(binding.key);
    if (!item || std::ranges::find(counts, binding.key) == counts.end()) continue;
    if (item->IsInteger() && item->AsInt() >= least) continue;
    messages.AddError(inp_Utils::MessageAtParameter(
        keyword, binding.key,
        inpS_messageText(inpS_app_InvalidParameterValue, {binding.name}) +
            " It must be a whole number from " + std::to_string(least) +
            " on; the keyword is kept as text."));
    return false;
  }
  return true;
}

} // namespace

bool inpS_FormRows::Read(const inp_Keyword& keyword, const inpS_Form& form, inp_Visitor& messages,
                         cow_List<Column> columns) {
  constexpr long long mostValues = 100000; // of a row; beyond, the number is a slip of the pen
  if (!checkCounts(keyword, form, messages)) return false;
  const auto count = inpS_Form::CountIn(keyword);
  const long long size =
      columns.empty() ? form.columns.Size(count) : static_cast<long long>(columns.size());
  const auto first = static_cast<long long>(form.info->lines.size());
  const long long lines = std::max(0LL, keyword.Data().Rows() - first);
  if (size == 0 && !inpS_isWithoutLines(keyword, first)) {
    messages.AddError(inp_Utils::MessageInKeyword(
        keyword, "*" + keyword.Name() + " does not tell how many values its data lines hold; it " +
                     "is kept as text."));
    return false;
  }
  // Nothing but the data lines can say how many values there are.
  if (size > mostValues || size > 8 * lines + 8) {
    if (lines > 0 || (!form.MayLackRows() && size > mostValues))
      messages.AddError(inp_Utils::MessageInKeyword(
          keyword, "*" + keyword.Name() + " asks for " + std::to_string(size) +
                       " values, more than its data lines can hold; it is kept as text."));
    return form.MayLackRows() && lines == 0;
  }
  m_columns = columns.empty() ? form.columns.Expand(count) : std::move(columns);
  m_table = inpS_KeywordDataTable(keyword, static_cast<int>(size), first, form.HasTemperature());
  if (size == 0) return true;
  m_table.Read();
  m_table.ReportUnread(messages);
  for (std::size_t n = 0; n < m_columns.size(); ++n)
    if (m_columns[n].absent != 0) m_table.SetUnspecified(static_cast<int>(n), m_columns[n].absent);
  inpS_checkTable(keyword, m_table, m_columns, messages);
  m_table.RemoveTempColumnIfIndependent();
  return m_table.NumRows() > 0 || form.MayLackRows();
}

void inpS_FormRows::Store(const KvoSimPosition& record) {
  const int kind = inpS_PropertyUtils::TableKindOf(record.Object().RecordKind());
  inpS_PropertyUtils::CreateProperty(
      record, kind, kind, std::move(m_table), extraColumns(m_columns, Column::Role::Dependent),
      extraColumns(m_columns, Column::Role::Independent), namesOf(m_columns));
}
