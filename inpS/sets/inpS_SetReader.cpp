#include "inpS/sets/inpS_SetReader.h"
#include "inpS/keywords/inpS_UnreadField.h"
#include "inpS/sets/inpS_ScopedField.h"
#include "parser/inp_BulkDecode.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"
#include <cstdlib>

namespace {

constexpr long long kMaxLabel = 999999999;

cow_String incrementText(long long increment, long long first, long long last) {
  return inp_Utils::Format("Increment of %lld cannot be used to step from %lld to %lld.", increment,
                           first, last);
}

} // namespace

inpS_SetReader::inpS_SetReader(const inp_Keyword& keyword, inpS_SetDefinition& definition,
                               inp_Visitor& messages)
    : m_keyword(keyword), m_data(keyword.Data()), m_definition(definition), m_messages(messages) {
  m_keywordIndex = static_cast<int>(m_definition.keywords.size());
  m_definition.keywords.push_back(keyword);
}

inpS_SetEntry& inpS_SetReader::NewEntry(inpS_SetEntry::Kind kind, long long row, int col) {
  inpS_SetEntry& entry = m_definition.entries.emplace_back();
  entry.kind = kind;
  entry.keyword = m_keywordIndex;
  entry.row = row;
  entry.col = col;
  return entry;
}

inpS_SetEntry& inpS_SetReader::LabelsOf(const cow_String& instance, long long row, int col) {
  if (!m_definition.entries.empty()) {
    inpS_SetEntry& last = m_definition.entries.back();
    if (last.kind == inpS_SetEntry::Kind::Labels && last.keyword == m_keywordIndex &&
        last.instance == instance)
      return last;
  }
  inpS_SetEntry& entry = NewEntry(inpS_SetEntry::Kind::Labels, row, col);
  entry.instance = instance;
  return entry;
}

void inpS_SetReader::Read() {
  if (m_data.Rows() == 0) return;
  utl_Buffer<int> labels;
  long long badRow = 0;
  int badCol = 0;
  if (!inp_decodeLabels(m_data, labels, badRow, badCol)) {
    ReadMixed();
    return;
  }
  if (labels.IsEmpty()) return;
  inpS_SetEntry& entry = NewEntry(inpS_SetEntry::Kind::Labels, 0, 0);
  entry.instance = m_instance;
  entry.labels = std::move(labels);
}

void inpS_SetReader::ReadMixed() {
  for (long long row = 0; row < m_data.Rows(); ++row)
    for (int col = 0, cols = m_data.Cols(row); col < cols; ++col) ReadField(row, col);
}

void inpS_SetReader::ReadField(long long row, int col) {
  switch (m_data.Type(row, col)) {
  case inp_FieldType::None:
    return;
  case inp_FieldType::String:
    ReadName(row, col);
    return;
  case inp_FieldType::Integer:
  case inp_FieldType::Double:
    if (m_data.IsInteger(row, col) && std::llabs(m_data.AsInt64(row, col)) <= kMaxLabel) {
      LabelsOf(m_instance, row, col).labels.Append(m_data.AsInt(row, col));
      return;
    }
  }
  RefuseField(row, col);
}

void inpS_SetReader::RefuseField(long long row, int col) {
  m_messages.AddError(inp_Utils::MessageAtField(
      m_keyword, row, col,
      "\"" + m_data.AsStringVerbatim(row, col) +
          "\" is neither a label (an integer up to 999999999) nor the name of a set; left out."));
  m_messages.LeaveOut("set entry");
}

void inpS_SetReader::ReadName(long long row, int col) {
  const inpS_ScopedField field = inpS_scopedField(m_data.FieldText(row, col));
  inpS_reportDropped(m_keyword, row, col, field, m_messages);
  if (field.isLabel) {
    if (std::llabs(field.Label()) > kMaxLabel) return RefuseField(row, col);
    LabelsOf(field.instance, row, col).labels.Append(static_cast<int>(field.Label()));
    return;
  }
  inpS_SetEntry& entry = NewEntry(inpS_SetEntry::Kind::Set, row, col);
  entry.instance = field.IsScoped() ? field.instance : m_instance;
  entry.name = field.name;
}

void inpS_SetReader::GenerateSetIds() {
  for (long long row = 0; row < m_data.Rows(); ++row) GenerateRow(row);
}

void inpS_SetReader::GenerateRow(long long row) {
  int fields = 0;
  for (int col = 0, cols = m_data.Cols(row); col < cols; ++col)
    if (m_data.HasValue(row, col)) fields = col + 1;
  if (fields == 0) return; // a blank line says nothing
  if (fields < 2) {
    m_messages.AddError(inp_Utils::MessageAtRow(
        m_keyword, row, "Set generation start and end numbers are required."));
    m_messages.LeaveOut("set entry");
    return;
  }
  const Id first = ReadId(row, 0, {});
  const Id last = ReadId(row, 1, first);
  const cow_String& instance = first.instance.empty() ? m_instance : first.instance;
  if (!last.instance.empty() && last.instance != instance)
    AddFault(row, 1,
             "Both ends of a range must be in the same instance; the first one's is taken.");
  const long long increment = ReadIncrement(row, fields);

  const long long d = last.label - first.label;
  if (d % increment != 0 || (d != 0 && (d < 0) != (increment < 0))) {
    m_messages.AddError(
        inp_Utils::MessageAtRow(m_keyword, row, incrementText(increment, first.label, last.label)));
    m_messages.LeaveOut("set entry");
    return;
  }
  inpS_SetEntry& entry = NewEntry(inpS_SetEntry::Kind::Range, row, 0);
  entry.instance = instance;
  entry.first = first.label;
  entry.increment = increment;
  entry.count = d / increment + 1;
}

long long inpS_SetReader::ReadIncrement(long long row, int fields) {
  if (fields > 3) {
    // A set keeps its members, not its lines: nothing could bring these values back.
    const long long count = inpS_countGiven(m_keyword, row, 3);
    AddFault(row, 3,
             inp_Utils::Format("Set generation takes three numbers per line; the line is used "
                               "without the %lld %s from here on, %s left out.",
                               count, count == 1 ? "value" : "values",
                               count == 1 ? "which is" : "which are"));
    m_messages.LeaveOut("value", count);
  }
  if (fields < 3 || m_data.IsNone(row, 2)) return 1;
  if (!m_data.IsInteger(row, 2)) {
    AddFault(row, 2, "The increment must be an integer; 1 is taken.");
    return 1;
  }
  const long long increment = m_data.AsInt64(row, 2);
  return increment == 0 ? 1 : increment;
}

// Of a field that is no label it takes another one in its place.
inpS_SetReader::Id inpS_SetReader::ReadId(long long row, int col, const Id& instead) {
  Id id;
  bool isLabel = true;
  const inp_FieldType type = m_data.Type(row, col);
  const inpS_ScopedField field = inpS_scopedField(m_data.FieldText(row, col));
  if (m_data.IsInteger(row, col)) {
    id.label = m_data.AsInt64(row, col);
  } else if (type == inp_FieldType::String && field.isLabel) {
    id.label = field.Label();
    id.instance = field.instance;
    inpS_reportDropped(m_keyword, row, col, field, m_messages);
  } else {
    isLabel = false;
  }
  if (isLabel && std::llabs(id.label) <= kMaxLabel) return id;
  AddFault(row, col,
           inp_Utils::Format("Id must be an integer%s; %lld is taken.",
                             isLabel ? " (up to 999999999)" : "", instead.label));
  return {instead.label, {}};
}

void inpS_SetReader::AddFault(long long row, int col, cow_String text) {
  m_messages.AddError(inp_Utils::MessageAtField(m_keyword, row, col, std::move(text)));
}
