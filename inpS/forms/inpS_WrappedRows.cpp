#include "inpS/forms/inpS_WrappedRows.h"
#include "database/KvoSimDataRecord.h"
#include "database/schema/eds_FormKind.h"
#include "inpS/forms/inpS_FormWords.h"
#include "inpS/keywords/inpS_Flag.h"
#include "inpS/keywords/inpS_KeywordReader.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"
#include <algorithm>

namespace {

namespace Kind = eds_FormKind;
constexpr std::pair<eds_RecordKind, eds_RecordKind> atPoints[] = {
    {Kind::TemperatureField, Kind::TemperatureAtPoints},
    {Kind::PredefinedField, Kind::FieldAtPoints},
    {Kind::InitialTemperature, Kind::InitialTemperatureAtPoints},
    {Kind::InitialField, Kind::InitialFieldAtPoints}};

// Lines are looked at up to here: where all nodes have as many, the first ones tell, be it that
// nothing goes on in them, as in the decks that we write: a blank line behind eight fields. One
// that goes on further behind is told, and kept.
constexpr long long mostLooks = 4096;

bool hasLinesThatGoOn(const inp_DataArray& data, int full) {
  const long long rows = std::min(data.Rows(), mostLooks);
  for (long long row = 1; row < rows; ++row) {
    if (data.Cols(row - 1) < full) continue;
    if (inpS_KeywordReader::IsBlankRow(data, row)) return true;
    if (data.HasValue(row - 1, full - 1) && data.Type(row, 0) == inp_FieldType::Double) return true;
  }
  return false;
}

// Nothing but the lines gives one.
bool needsValue(const inp_Keyword& keyword, const eds_FormInfo& info) {
  const inpS_Form& form = *inpS_FormTable::Instance().Find(info.kind);
  return !(form.Binds("user") && inpS_saysYes(keyword, "user")) &&
         !(form.Binds("file") && keyword.HasParameter("file"));
}

// Behind the target; null: values stand there.
const eds_FormItem* keyOf(const eds_FormInfo& form) {
  const eds_FormItem& second = form.columnItems[1];
  return second.alternatives.front().type == eds_FormType::Real ? nullptr : &second;
}

} // namespace

inpS_WrappedRows::inpS_WrappedRows(const inp_Keyword& keyword, const eds_FormInfo& form,
                                   const KvoSimPosition& record, const inpS_FormNames& names,
                                   inp_Visitor& messages)
    : m_keyword(keyword), m_form(form), m_names(names), m_record(record), m_messages(messages),
      m_sets(record), m_targets(form.columnItems.front(), names, m_sets), m_keyItem(keyOf(form)),
      m_hasWords(m_keyItem && m_keyItem->wordsField >= 0), m_keys(m_keyItem ? 1 : 0),
      m_singles(form.columnItems.size() - 2 - m_keys),
      m_perLine(static_cast<std::size_t>(form.columnItems.back().perLine)),
      m_fields(m_perLine > 0 ? 1 + m_keys + m_singles + m_perLine : kFields),
      m_needsValue(needsValue(keyword, form)) {}

// Rows that would need more lines than there are have no values to make room for.
void inpS_WrappedRows::SetLinesPerRow(long long count, cow_String said) {
  m_linesPerRow = count;
  m_said = std::move(said);
  const long long most = std::max(1LL, std::min(count, m_keyword.Data().Rows()));
  m_width = m_singles + m_perLine * static_cast<std::size_t>(most);
}

const inpS_Form* inpS_WrappedRows::FormOf(const inp_Keyword& keyword, const inpS_Form& form) {
  const auto known =
      std::ranges::find(atPoints, form.kind, &std::pair<eds_RecordKind, eds_RecordKind>::first);
  if (known == std::end(atPoints) || !hasLinesThatGoOn(keyword.Data(), static_cast<int>(kFields)))
    return &form;
  return inpS_FormTable::Instance().Find(known->second);
}

bool inpS_WrappedRows::Read() {
  if (!IsCounted()) Stream(Pass::Measure);
  const std::size_t more = std::max<std::size_t>(m_width, m_singles + 1) - m_singles;
  m_values.reserve(m_singles + more);
  for (const eds_FormItem& item : m_form.columnItems)
    m_columns.emplace_back(m_record, item, item.isRepeated ? static_cast<int>(more) : 1);
  m_width = m_singles + more;
  m_rowReals.resize(m_columns.size() - 1 - m_keys);
  Stream(Pass::Store);
  for (inpS_ColumnStore& column : m_columns) column.Finish();
  if (m_hasWords) m_words.Store(m_record.DataRecord(), m_keyItem->wordsField);
  m_record.DataRecord().SetInt(m_form.rowsField, m_rows);
  if (m_hasFaults) {
    m_pass = Pass::Tell;
    const inp_DataArray& data = m_keyword.Data();
    for (long long row = 0; row < data.Rows(); ++row)
      if (!inpS_KeywordReader::IsBlankRow(data, row)) AddLine(ReadLine(row));
    CloseRow();
  }
  return m_isWhole;
}

void inpS_WrappedRows::Stream(Pass pass) {
  m_pass = pass;
  inp_ColumnType types[kFields];
  std::ranges::fill(types, inp_ColumnType::Real);
  types[0] = inp_ColumnType::TargetOrReal;
  if (m_keyItem) types[1] = inp_ColumnType::TargetOrReal;
  inp_streamColumns(
      m_keyword.Data(), std::span(types).first(m_fields),
      [&](const Piece& piece) {
        m_targets.Translate(piece.columns.front().ints.first(piece.count));
      },
      [&](const Piece& piece) { Take(piece); });
  CloseRow();
  Flush();
}

void inpS_WrappedRows::Take(const Piece& piece) {
  m_targets.TranslateNames(piece, piece.columns.front().ints.first(piece.count));
  if (m_hasWords) m_seen.TranslateNames(piece, piece.columns[1].ints.first(piece.count));
  auto odd = piece.odd.begin();
  Line line;
  std::ranges::fill(line.values, inp_blankReal);
  long long row = piece.firstRow; // of the line `slot`; known where it is asked for
  std::size_t slot = 0;
  const auto rowOf = [&](std::size_t n) {
    const inp_DataArray& data = m_keyword.Data();
    for (;; ++row) {
      if (inpS_KeywordReader::IsBlankRow(data, row)) continue;
      if (slot == n) return row;
      ++slot;
    }
  };
  for (std::size_t n = 0; n < piece.count; ++n) {
    if (odd != piece.odd.end() && odd->slot == static_cast<long long>(n)) {
      AddLine(ReadLine(odd->row));
      ++odd;
      continue;
    }
    line.target = piece.columns[0].ints[n];
    line.first = piece.columns[0].reals[n];
    if (m_keyItem) line.key = piece.columns[1].ints[n];
    for (std::size_t c = 1; c < m_fields; ++c) line.values[c - 1] = piece.columns[c].reals[n];
    line.isBehindFields =
        !IsCounted() && line.IsReal() && m_isOpen && !m_isFull && HasAllFields(rowOf(n));
    const bool isNumber = !inp_isBlankReal(line.values[0]); // and may be a name all the same
    line.row = m_hasWords && isNumber && !GoesOn(line) ? rowOf(n) : -1;
    AddLine(line);
  }
  Flush();
}

// By the general road.
inpS_WrappedRows::Line inpS_WrappedRows::ReadLine(long long row) {
  const inp_DataArray& data = m_keyword.Data();
  const auto has = [&](int col) { return col < data.Cols(row) && data.HasValue(row, col); };
  Line line;
  line.row = row;
  line.isBehindFields = HasAllFields(row);
  if (has(0) && data.IsNumber(row, 0)) line.first = data.AsDouble(row, 0);
  if (has(0) && data.Type(row, 0) != inp_FieldType::Double)
    line.target = m_targets.Of(data, row, 0);
  std::ranges::fill(line.values, inp_blankReal);
  for (int col = 1; col < static_cast<int>(m_fields); ++col) {
    const bool isNumber = has(col) && data.IsNumber(row, col);
    if (isNumber) line.values[col - 1] = data.AsDouble(row, col);
    const bool isKey = m_keyItem && col == 1;
    if (has(col) && !isNumber && !isKey && line.wordAt < 0) line.wordAt = col;
  }
  if (m_keyItem && has(1) && data.Type(row, 1) == inp_FieldType::Integer)
    line.key = data.AsInt(row, 1);
  else if (m_keyItem && has(1) && !data.IsNumber(row, 1))
    line.key = m_hasWords ? m_seen.Of(data.AsStringVerbatim(row, 1)) : inpS_noTarget;
  for (int col = static_cast<int>(m_fields); col < data.Cols(row) && line.surplusAt < 0; ++col)
    if (has(col)) line.surplusAt = col;
  return line;
}

bool inpS_WrappedRows::HasAllFields(long long row) const {
  const inp_DataArray& data = m_keyword.Data();
  while (--row >= 0 && inpS_KeywordReader::IsBlankRow(data, row)) continue;
  return row >= 0 && data.Cols(row) >= static_cast<int>(kFields);
}

bool inpS_WrappedRows::IsBlank(const Line& line) {
  return line.wordAt < 0 && line.surplusAt < 0 && std::ranges::all_of(line.values, inp_isBlankReal);
}

int inpS_WrappedRows::FieldBehind(const Line& line, std::size_t fields) {
  for (std::size_t col = std::max<std::size_t>(1, fields); col < kFields; ++col)
    if (!inp_isBlankReal(line.values[col - 1])) return static_cast<int>(col);
  return line.surplusAt;
}

bool inpS_WrappedRows::GoesOn(const Line& line) const {
  if (!m_isOpen || (m_hasWords && line.HasWord())) return false;
  if (IsCounted()) {
    const bool isLabel = line.IsNumber() && line.target != inp_blankInt;
    const bool isOfNext = line.IsName() || (isLabel && FieldBehind(line, m_perLine) >= 0);
    return m_lines < m_linesPerRow && !isOfNext;
  }
  if (line.IsReal()) return m_isFull || line.isBehindFields;
  if (line.target == inp_blankInt) return m_isFull || IsBlank(line); // all rows have as many lines
  if (!m_isFull || m_singles != 0 || !line.IsNumber()) return false;
  return m_perRow > 0 ? m_values.size() < m_perRow : !m_head.IsNumber();
}

void inpS_WrappedRows::AddLine(const Line& line) {
  std::size_t begin = 0;
  std::size_t end = m_fields - 1;
  int wordAt = line.wordAt;
  int surplusAt = line.surplusAt;
  if (GoesOn(line)) {
    m_values.push_back(line.first);
    if (IsCounted()) {
      end = m_perLine - 1;
      surplusAt = FieldBehind(line, m_perLine);
    }
    if (line.HasWord()) wordAt = 1;
    ++m_lines;
  } else {
    CloseRow();
    m_isOpen = true;
    m_head = line;
    m_key = KeyOf(line);
    m_values.clear();
    m_wordRow = m_surplusRow = -1;
    m_wordAt = m_surplusAt = -1;
    begin = m_keys;
    m_lines = line.IsReal() ? m_linesPerRow : 1; // what is no target has no further lines either
  }
  m_values.insert(m_values.end(), line.values + begin, line.values + end);
  m_isFull = line.IsFull();
  if (wordAt >= 0 && m_wordAt < 0) {
    m_wordAt = wordAt;
    m_wordRow = line.row;
  }
  if (surplusAt >= 0 && m_surplusAt < 0) {
    m_surplusAt = surplusAt;
    m_surplusRow = line.row;
  }
}

// The name of a rebar may be a number; the number of a point is a whole one.
int inpS_WrappedRows::KeyOf(const Line& head) {
  const bool isNumber = m_keyItem && !inp_isBlankReal(head.values[0]);
  if (isNumber && m_hasWords) return m_seen.Of(m_keyword.Data().AsStringVerbatim(head.row, 1));
  return isNumber && head.key == inp_blankInt ? inpS_noTarget : head.key;
}

cow_String inpS_WrappedRows::FaultOfKey() const {
  if (!m_keyItem) return {};
  if (m_key == inp_blankInt)
    return m_keyItem->isRequired ? inpS_textOfLack(*m_keyItem, 1) : cow_String();
  if (m_hasWords) return m_key == inpS_noTarget ? "The text holds a control character." : "";
  const auto text = [&] { return m_keyword.Data().AsStringVerbatim(m_head.row, 1); };
  if (m_key == inpS_noTarget) return "\"" + text() + "\" is no integer.";
  return m_key < 1 ? text() + " is none: section points are numbered from 1 on." : cow_String();
}

bool inpS_WrappedRows::HasKeyFault() const {
  if (!m_keyItem) return false;
  if (m_key == inp_blankInt) return m_keyItem->isRequired;
  return m_key == inpS_noTarget || (!m_hasWords && m_key < 1);
}

bool inpS_WrappedRows::IsRefused() const {
  return m_wordAt >= 0 || m_head.target == inp_blankInt || m_head.target == inpS_noTarget ||
         IsShort() || HasKeyFault();
}

void inpS_WrappedRows::CloseRow() {
  if (!m_isOpen) return;
  m_isOpen = false;
  std::size_t given = m_values.size();
  while (given > 0 && inp_isBlankReal(m_values[given - 1])) --given;
  if (m_pass == Pass::Measure && !IsRefused()) m_width = std::max(m_width, given);
  m_values.resize(given);
  if (m_pass == Pass::Tell) return TellRow();
  if (m_pass == Pass::Measure) return;
  m_isWhole = m_isWhole && !IsRefused() && m_surplusAt < 0;
  m_hasFaults =
      m_hasFaults || IsRefused() || m_surplusAt >= 0 || (m_needsValue && m_values.empty());
  if (!IsRefused()) StoreRow();
}

void inpS_WrappedRows::StoreRow() {
  constexpr long long fewRows = 256; // more than a record holds: arrays are made in their order,
                                     // whatever the pieces
  m_values.resize(m_width, inp_blankReal);
  m_rowTargets.push_back(m_head.target);
  if (m_keyItem) m_rowKeys.push_back(StoredKey());
  for (std::size_t n = 0; n < m_values.size(); ++n)
    m_rowReals[std::min(n, m_singles)].push_back(m_values[n]);
  if (++m_rows <= fewRows) Flush();
}

int inpS_WrappedRows::StoredKey() {
  if (!m_hasWords || m_key == inp_blankInt) return m_key;
  const auto place = static_cast<std::size_t>(-1 - m_key);
  if (place >= m_wordOf.size()) m_wordOf.resize(m_seen.All().size());
  if (m_wordOf[place] == 0) m_wordOf[place] = m_words.Of(m_seen.All()[place]);
  return m_wordOf[place];
}

void inpS_WrappedRows::Flush() {
  if (m_rowTargets.empty()) return;
  m_columns.front().Append(std::span<const int>(m_rowTargets));
  m_rowTargets.clear();
  if (m_keyItem) m_columns[1].Append(std::span<const int>(m_rowKeys));
  m_rowKeys.clear();
  for (std::size_t c = 0; c < m_rowReals.size(); ++c) {
    m_columns[c + 1 + m_keys].Append(std::span<const double>(m_rowReals[c]));
    m_rowReals[c].clear();
  }
}

// ---- what cannot be taken

void inpS_WrappedRows::TellRow() {
  const inp_DataArray& data = m_keyword.Data();
  if (m_head.target == inpS_noTarget || m_head.target == inp_blankInt) {
    const bool isBlank = data.Cols(m_head.row) == 0 || !data.HasValue(m_head.row, 0);
    return TellFault(m_head.row, isBlank ? -1 : 0, FaultOfTarget(), true);
  }
  if (HasKeyFault()) return TellFault(m_head.row, 1, FaultOfKey(), true);
  if (m_wordAt >= 0)
    return TellFault(m_wordRow, m_wordAt,
                     "\"" + data.AsStringVerbatim(m_wordRow, m_wordAt) + "\" is no number.", true);
  if (IsShort())
    return TellFault(m_head.row, -1,
                     m_said + " gives each element or set " + std::to_string(m_linesPerRow) +
                         " lines; here it has " + std::to_string(m_lines) + ".",
                     true);
  if (m_surplusAt >= 0)
    TellFault(m_surplusRow, m_surplusAt,
              "The line has more values than it can have; they are kept as they stand.", false);
  if (m_needsValue && m_values.empty())
    TellFault(m_head.row, -1, "The line gives no value, which is 0.", false);
}

cow_String inpS_WrappedRows::FaultOfTarget() const {
  const inp_DataArray& data = m_keyword.Data();
  if (data.Cols(m_head.row) == 0 || !data.HasValue(m_head.row, 0))
    return "The line does not tell its target.";
  if (IsCounted() && m_head.IsReal())
    return m_said + " gives each element or set " + std::to_string(m_linesPerRow) +
           (m_linesPerRow == 1 ? " line" : " lines") + "; this one is none of theirs.";
  const eds_FormItem& item = m_form.columnItems.front();
  const cow_String name = data.AsStringVerbatim(m_head.row, 0);
  if (!m_head.IsNumber() && !m_targets.IsLabel(name))
    return m_names.TextOfMissing(*item.alternatives.back().referable, inp_Utils::Fold(name));
  const bool isNode = item.alternatives.front().type == eds_FormType::Node;
  return (isNode ? "Node " : "Element ") + name + " does not exist.";
}

void inpS_WrappedRows::TellFault(long long row, int col, cow_String text, bool isRefused) {
  if (isRefused) text += " The line is kept as it stands, and nothing is made of it.";
  wip_Message message = col >= 0 ? inp_Utils::MessageAtField(m_keyword, row, col, std::move(text))
                                 : inp_Utils::MessageAtRow(m_keyword, row, std::move(text));
  if (isRefused && m_isErrorToRefuse)
    m_messages.AddError(std::move(message));
  else
    m_messages.AddWarning(std::move(message));
}
