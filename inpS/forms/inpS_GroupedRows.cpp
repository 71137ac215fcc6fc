#include "inpS/forms/inpS_GroupedRows.h"
#include "database/KvoSimDataRecord.h"
#include "inpS/keywords/inpS_KeywordReader.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"
#include <algorithm>

namespace {

// More than a record holds of a column's own: arrays are made in the order of the columns.
constexpr std::size_t rowsAtOnce = 4096;

bool isReal(const eds_FormItem& item) {
  return item.alternatives.front().type == eds_FormType::Real;
}

bool isInteger(const eds_FormItem& item) {
  return item.alternatives.front().type == eds_FormType::Int;
}

} // namespace

inpS_GroupedRows::inpS_GroupedRows(const inp_Keyword& keyword, const eds_FormInfo& form,
                                   const KvoSimPosition& record, const inpS_FormNames& names,
                                   inp_Visitor& messages)
    : m_keyword(keyword), m_data(keyword.Data()), m_form(form), m_names(names),
      m_messages(messages), m_record(record), m_sets(record), m_numbers(record, form.group) {
  m_targets.resize(form.columnItems.size());
  for (std::size_t c = 0; c < form.columnItems.size(); ++c) {
    const eds_FormItem& item = form.columnItems[c];
    if (!isReal(item) && !isInteger(item)) m_targets[c].emplace(item, names, m_sets);
    m_columns.emplace_back(record, item);
  }
  for (Group* group : {&m_group, &m_stored}) {
    group->ints.resize(form.columnItems.size());
    group->reals.resize(form.columnItems.size());
  }
}

bool inpS_GroupedRows::Read() {
  for (long long line = 0; line < m_data.Rows();)
    line = inpS_KeywordReader::IsBlankRow(m_data, line) ? line + 1 : ReadGroup(line);
  Flush();
  m_numbers.Finish();
  for (inpS_ColumnStore& column : m_columns) column.Finish();
  m_record.DataRecord().SetInt(m_form.rowsField, m_rows);
  return m_isWhole;
}

// A whole number and nothing behind it.
bool inpS_GroupedRows::TellsRows(long long line) const {
  if (m_data.Cols(line) == 0 || m_data.Type(line, 0) != inp_FieldType::Integer) return false;
  for (int col = 1; col < m_data.Cols(line); ++col)
    if (m_data.HasValue(line, col)) return false;
  return true;
}

long long inpS_GroupedRows::ReadGroup(long long line) {
  m_group.line = line;
  m_group.rows = 0;
  for (auto& column : m_group.ints) column.clear();
  for (auto& column : m_group.reals) column.clear();
  bool isGood = TellsRows(line) && m_data.AsInt(line, 0) > 0;
  if (!isGood) Refuse(line, 0, "The line does not tell how many terms follow.");
  const std::size_t wanted = isGood ? static_cast<std::size_t>(m_data.AsInt(line, 0)) : 0;
  long long next = line + 1;
  for (; next < m_data.Rows() && !TellsRows(next); ++next)
    if (!inpS_KeywordReader::IsBlankRow(m_data, next)) isGood = isGood && AddRows(next, wanted);
  if (isGood && m_group.rows < wanted)
    isGood = Refuse(line, 0,
                    "Of " + std::to_string(wanted) + " terms " + std::to_string(m_group.rows) +
                        " are given.");
  if (!isGood) return next;
  if (const cow_String fault = m_check ? m_check(m_group) : cow_String(); !fault.empty())
    Refuse(line, 0, fault);
  else
    StoreGroup();
  return next;
}

bool inpS_GroupedRows::AddRows(long long line, std::size_t wanted) {
  const auto perRow = static_cast<int>(m_columns.size());
  int cols = m_data.Cols(line);
  while (cols > 0 && !m_data.HasValue(line, cols - 1)) --cols;
  for (int col = 0; col < cols; col += perRow) {
    if (m_group.rows == wanted)
      return Refuse(line, col,
                    "There are more terms than the " + std::to_string(wanted) + " told.");
    for (int n = 0; n < perRow; ++n)
      if (!AddField(line, col + n, static_cast<std::size_t>(n))) return false;
    ++m_group.rows;
  }
  return true;
}

bool inpS_GroupedRows::AddField(long long line, int col, std::size_t column) {
  const eds_FormItem& item = m_form.columnItems[column];
  if (col >= m_data.Cols(line) || !m_data.HasValue(line, col)) {
    cow_String name = item.name;
    return Refuse(line, col,
                  "A term lacks its " + (m_targets[column] ? "node or set" : name) + ".");
  }
  const cow_String text = m_data.AsStringVerbatim(line, col);
  if (isReal(item)) {
    if (!m_data.IsNumber(line, col)) return Refuse(line, col, "\"" + text + "\" is no number.");
    m_group.reals[column].push_back(m_data.AsDouble(line, col));
    return true;
  }
  if (isInteger(item)) {
    if (m_data.Type(line, col) != inp_FieldType::Integer)
      return Refuse(line, col, "\"" + text + "\" is no integer.");
    m_group.ints[column].push_back(m_data.AsInt(line, col));
    return true;
  }
  const int target = m_targets[column]->Of(m_data, line, col);
  m_group.ints[column].push_back(target);
  if (target != inpS_noTarget) return true;
  const bool isLabel =
      m_data.Type(line, col) != inp_FieldType::String || m_targets[column]->IsLabel(text);
  return Refuse(
      line, col,
      isLabel ? "Node " + text + " does not exist."
              : m_names.TextOfMissing(*item.alternatives.back().referable, inp_Utils::Fold(text)));
}

bool inpS_GroupedRows::Refuse(long long line, int col, const cow_String& fault) {
  m_isWhole = false;
  const cow_String text = fault +
                          " The lines of this one are kept as they stand, and nothing is made "
                          "of them.";
  m_messages.AddError(col < m_data.Cols(line)
                          ? inp_Utils::MessageAtField(m_keyword, line, col, text)
                          : inp_Utils::MessageAtRow(m_keyword, line, text));
  return false;
}

void inpS_GroupedRows::StoreGroup() {
  m_storedNumbers.insert(m_storedNumbers.end(), m_group.rows, m_groups++);
  for (std::size_t c = 0; c < m_columns.size(); ++c) {
    std::ranges::copy(m_group.ints[c], std::back_inserter(m_stored.ints[c]));
    std::ranges::copy(m_group.reals[c], std::back_inserter(m_stored.reals[c]));
  }
  m_rows += static_cast<long long>(m_group.rows);
  if (m_storedNumbers.size() >= rowsAtOnce) Flush();
}

void inpS_GroupedRows::Flush() {
  if (m_storedNumbers.empty()) return;
  m_numbers.Append(std::span<const int>(m_storedNumbers));
  m_storedNumbers.clear();
  for (std::size_t c = 0; c < m_columns.size(); ++c) {
    if (isReal(m_form.columnItems[c]))
      m_columns[c].Append(std::span<const double>(m_stored.reals[c]));
    else
      m_columns[c].Append(std::span<const int>(m_stored.ints[c]));
    m_stored.ints[c].clear();
    m_stored.reals[c].clear();
  }
}
