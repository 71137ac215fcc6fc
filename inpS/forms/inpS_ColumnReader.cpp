#include "inpS/forms/inpS_ColumnReader.h"
#include "base/utl_Assert.h"
#include "base/utl_Controls.h"
#include "database/KvoSimDataRecord.h"
#include "inpS/forms/inpS_FormWords.h"
#include "inpS/keywords/inpS_KeywordReader.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"
#include <algorithm>

namespace {

bool isTarget(const eds_FormItem& item) {
  const eds_FormType type = item.alternatives.front().type;
  return type == eds_FormType::Node || type == eds_FormType::Element ||
         type == eds_FormType::Reference;
}

inp_ColumnType typeOf(const eds_FormItem& item) {
  switch (item.alternatives.front().type) {
  case eds_FormType::Node:
  case eds_FormType::Element:
    return inp_ColumnType::Target;
  case eds_FormType::Int: // a number of nothing, or a word
    return item.wordsField >= 0 ? inp_ColumnType::Target : inp_ColumnType::Int;
  case eds_FormType::Real:
    return inp_ColumnType::Real;
  case eds_FormType::Text:
  case eds_FormType::Reference:
    return inp_ColumnType::Word;
  default:
    utl_assertionFailed("a column holds targets, words, integers or reals");
  }
}

// Of a number that stands where a word may: below 0 it would be a place in the list of words.
constexpr bool isNegative(int code) {
  return code < 0 && code != inp_blankInt && !inp_isNameCode(code);
}

} // namespace

inpS_ColumnReader::inpS_ColumnReader(const inp_Keyword& keyword, const eds_FormInfo& form,
                                     const KvoSimPosition& record, const inpS_FormNames& names,
                                     inp_Visitor& messages, inpS_LineCheck* check)
    : m_keyword(keyword), m_form(form), m_names(names), m_record(record), m_messages(messages),
      m_sets(record), m_targets(form.columnItems.size()), m_words(form.columnItems.size()),
      m_check(check), m_isErrorToRefuse(check && check->IsErrorToRefuse()),
      m_endsInTexts(inpS_endsInTexts(form.columnItems)) {
  for (std::size_t c = 0; c < form.columnItems.size(); ++c) {
    const eds_FormItem& item = form.columnItems[c];
    m_types.push_back(typeOf(item));
    if (isTarget(item)) m_targets[c].emplace(item, names, m_sets);
    if (item.wordsField >= 0) m_words[c].emplace();
    m_columns.emplace_back(record, item);
  }
  if (m_endsInTexts && m_words.back()) m_words.back()->PassOverNumbers();
}

bool inpS_ColumnReader::Read() {
  inp_streamColumns(
      m_keyword.Data(), m_types, [&](const Piece& piece) { Translate(piece); },
      [&](const Piece& piece) { Take(piece); });
  for (inpS_ColumnStore& column : m_columns) column.Finish();
  for (std::size_t c = 0; c < m_words.size(); ++c)
    if (m_words[c]) m_words[c]->Store(m_record.DataRecord(), m_form.columnItems[c].wordsField);
  m_record.DataRecord().SetInt(m_form.rowsField, m_rows);
  if (m_endsInTexts && m_words.back() && m_words.back()->HasPassedOver()) m_isWhole = false;
  if (!m_isWhole || m_hasFaults) TellFaults();
  return m_isWhole;
}

void inpS_ColumnReader::Translate(const Piece& piece) const {
  for (std::size_t c = 0; c < m_types.size(); ++c)
    if (m_targets[c]) m_targets[c]->Translate(piece.columns[c].ints.first(piece.count));
}

void inpS_ColumnReader::Take(const Piece& piece) {
  for (std::size_t c = 0; c < m_types.size(); ++c) {
    if (m_targets[c]) m_targets[c]->TranslateNames(piece, piece.columns[c].ints.first(piece.count));
    if (m_words[c] && m_types[c] == inp_ColumnType::Target)
      for (int& code : piece.columns[c].ints.first(piece.count))
        if (isNegative(code)) code = inpS_noTarget;
    if (m_words[c]) m_words[c]->TranslateNames(piece, piece.columns[c].ints.first(piece.count));
  }
  if (FindFaults(piece)) {
    m_isWhole = false;
    return Drop(piece, m_isFaulty);
  }
  for (std::size_t c = 0; c < m_types.size(); ++c) {
    if (c >= piece.given)
      m_columns[c].AppendBlank(piece.count);
    else if (m_types[c] == inp_ColumnType::Real)
      m_columns[c].Append(std::span<const double>(piece.columns[c].reals.first(piece.count)));
    else
      m_columns[c].Append(std::span<const int>(piece.columns[c].ints.first(piece.count)));
  }
  m_rows += static_cast<long long>(piece.count);
}

// Which rows cannot be taken; false: all can, as nearly always, and nothing is put down of them.
bool inpS_ColumnReader::FindFaults(const Piece& piece) {
  bool isAny = false;
  const auto note = [&](auto values, auto isFault) {
    bool isOne = false;
    for (std::size_t n = 0; n < piece.count; ++n) isOne |= isFault(values[n]);
    if (!isOne) return;
    if (!isAny) m_isFaulty.assign(piece.count, 0);
    isAny = true;
    for (std::size_t n = 0; n < piece.count; ++n) m_isFaulty[n] |= isFault(values[n]);
  };
  for (std::size_t c = 0; c < m_types.size(); ++c) {
    const bool isRequired = m_form.columnItems[c].isRequired;
    const bool isNamed = m_targets[c] || m_words[c];
    const auto& [ints, reals] = piece.columns[c];
    if (c >= piece.given && !isRequired) continue;
    if (m_types[c] == inp_ColumnType::Real) {
      if (isRequired && inp_hasBlank(reals.first(piece.count))) note(reals, inp_isBlankReal);
    } else if (isRequired || isNamed) {
      const int blank = isRequired ? inp_blankInt : inpS_noTarget;
      const int none = isNamed ? inpS_noTarget : inp_blankInt;
      note(ints, [=](int value) { return (value == blank) | (value == none); });
    }
  }
  if (!isAny && !piece.odd.empty()) m_isFaulty.assign(piece.count, 0);
  for (const inp_OddRow& odd : piece.odd) {
    const auto slot = static_cast<std::size_t>(odd.slot);
    m_isFaulty[slot] = !TakeOdd(piece, slot, odd.row);
  }
  isAny = isAny || !piece.odd.empty();
  if (m_check && !m_check->IsSound(piece, m_words)) {
    if (!isAny) m_isFaulty.assign(piece.count, 0);
    isAny = true;
    MarkRefused(piece);
  }
  return isAny && std::ranges::count(m_isFaulty, 0) != static_cast<std::ptrdiff_t>(piece.count);
}

// The sound rows of a piece.
void inpS_ColumnReader::Drop(const Piece& piece, std::span<const char> isFaulty) {
  const auto sound = [&](auto values, auto& kept) {
    for (std::size_t n = 0; n < piece.count; ++n)
      if (!isFaulty[n]) kept.push_back(values[n]);
  };
  for (std::size_t c = 0; c < m_types.size(); ++c) {
    if (m_types[c] == inp_ColumnType::Real) {
      cow_List<double> kept;
      sound(piece.columns[c].reals, kept);
      m_columns[c].Append(std::span<const double>(kept));
    } else {
      cow_List<int> kept;
      sound(piece.columns[c].ints, kept);
      m_columns[c].Append(std::span<const int>(kept));
    }
  }
  m_rows += std::ranges::count(isFaulty, 0);
}

bool inpS_ColumnReader::TakeOdd(const Piece& piece, std::size_t slot, long long row) {
  int col = 0;
  if (!FaultOf(row, col).empty()) return false;
  const inp_DataArray& data = m_keyword.Data();
  for (std::size_t c = 0; c < m_types.size(); ++c) {
    col = ColOf(c, row);
    const bool isBlank = col >= data.Cols(row) || !data.HasValue(row, col);
    if (m_types[c] == inp_ColumnType::Real)
      piece.columns[c].reals[slot] = isBlank ? inp_blankReal : data.AsDouble(row, col);
    else
      piece.columns[c].ints[slot] = SlotOf(c, row);
  }
  m_isWhole = m_isWhole && SurplusOf(row) < 0;
  return true;
}

int inpS_ColumnReader::SlotOf(std::size_t column, long long row) {
  const inp_DataArray& data = m_keyword.Data();
  const int col = ColOf(column, row);
  if (col >= data.Cols(row) || !data.HasValue(row, col)) return inp_blankInt;
  if (m_types[column] == inp_ColumnType::Int) return data.AsInt(row, col);
  if (IsNumberOfWords(column, data, row)) {
    const int number = data.AsInt(row, col);
    return isNegative(number) ? inpS_noTarget : number;
  }
  if (m_words[column]) return m_words[column]->Of(data.AsStringVerbatim(row, col));
  return m_targets[column]->Of(data, row, col);
}

// A line that ends in a word where a real should be has its last field there.
int inpS_ColumnReader::ColOf(std::size_t column, long long row) const {
  const inp_DataArray& data = m_keyword.Data();
  const int last = static_cast<int>(m_types.size()) - 1;
  const int col = static_cast<int>(column);
  if (!m_endsInTexts || col < last - 1 || last - 1 >= data.Cols(row) ||
      data.Type(row, last - 1) != inp_FieldType::String ||
      (last < data.Cols(row) && data.HasValue(row, last)))
    return col;
  return col == last ? last - 1 : last;
}

// Of a piece with lines that the subject's check has something against.
void inpS_ColumnReader::MarkRefused(const Piece& piece) {
  long long row = piece.firstRow;
  for (std::size_t slot = 0; slot < piece.count; ++slot, ++row) {
    while (inpS_KeywordReader::IsBlankRow(m_keyword.Data(), row)) ++row;
    int col = 0;
    if (m_isFaulty[slot] || !FaultOf(row, col).empty()) continue;
    const std::optional<inpS_LineFault> fault = CheckedFaultOf(row);
    if (!fault) continue;
    m_hasFaults = true;
    m_isFaulty[slot] = fault->isRefused;
  }
}

// A number where a word may stand as well.
bool inpS_ColumnReader::IsNumberOfWords(std::size_t column, const inp_DataArray& data,
                                        long long row) const {
  return m_words[column] && m_types[column] == inp_ColumnType::Target &&
         data.Type(row, static_cast<int>(column)) == inp_FieldType::Integer;
}

// ---- what cannot be taken

// Once more over the lines, now that it is known that there are such.
void inpS_ColumnReader::TellFaults() {
  const inp_DataArray& data = m_keyword.Data();
  for (long long row = 0; row < data.Rows(); ++row) {
    if (inpS_KeywordReader::IsBlankRow(data, row)) continue;
    int col = 0;
    cow_String text = FaultOf(row, col);
    if (text.empty()) {
      if (const int surplus = SurplusOf(row); surplus >= 0)
        TellFault(row, {surplus,
                        "The line has more values than it can have; they are kept as they stand.",
                        false, false});
      if (!m_hasFaults) continue;
      if (const auto fault = CheckedFaultOf(row)) TellFault(row, *fault);
      continue;
    }
    if (GoesOn(row)) {
      TellFault(row, {-1, "The line goes on with the values of the one before.", false, true});
      continue;
    }
    const auto c = static_cast<std::size_t>(col);
    const bool isMissing = m_check && c < m_types.size() && m_targets[c] && col < data.Cols(row) &&
                           data.HasValue(row, col) &&
                           m_targets[c]->Of(data, row, col) == inpS_noTarget;
    if (isMissing) {
      const cow_String name = data.AsStringVerbatim(row, col);
      const bool isNumber = data.Type(row, col) != inp_FieldType::String;
      const bool isLabel = isNumber || m_targets[c]->IsLabel(name);
      if (m_check->TakeMissing(isLabel, name)) {
        m_refused.push_back(row);
        continue;
      }
      const cow_String own = isLabel ? "" : m_check->TextOfMissing(inp_Utils::Fold(name));
      if (!own.empty()) text = own;
    }
    TellFault(row, {col, text, m_isErrorToRefuse, true});
  }
}

// What becomes of a refused line stands behind a text of our own, and in a note of one that users
// know to the letter.
void inpS_ColumnReader::TellFault(long long row, const inpS_LineFault& fault) {
  if (fault.isRefused) m_refused.push_back(row);
  cow_String text = fault.text;
  cow_String kept = "The line is kept as it stands, and nothing is made of it.";
  const bool isOwn = text.ends_with('.');
  if (fault.isRefused && isOwn) text += " " + kept;
  wip_Message message = fault.col >= 0 && fault.col < m_keyword.Data().Cols(row)
                            ? inp_Utils::MessageAtField(m_keyword, row, fault.col, std::move(text))
                            : inp_Utils::MessageAtRow(m_keyword, row, std::move(text));
  if (fault.isRefused && !isOwn) message.notes.push_back({std::move(kept), {}});
  if (fault.isError)
    m_messages.AddError(std::move(message));
  else
    m_messages.AddWarning(std::move(message));
}

std::optional<inpS_LineFault> inpS_ColumnReader::CheckedFaultOf(long long row) {
  m_line.assign(m_types.size(), inp_blankInt);
  for (std::size_t c = 0; c < m_types.size(); ++c)
    if (m_types[c] != inp_ColumnType::Real) m_line[c] = SlotOf(c, row);
  return m_check->FaultOf({m_keyword.Data(), row, m_line});
}

cow_String inpS_ColumnReader::FaultOf(long long row, int& col) {
  const inp_DataArray& data = m_keyword.Data();
  for (std::size_t c = 0; c < m_types.size(); ++c) {
    col = ColOf(c, row);
    const eds_FormItem& item = m_form.columnItems[c];
    if (col >= data.Cols(row) || !data.HasValue(row, col)) {
      if (!item.isRequired) continue;
      return inpS_textOfLack(item, col);
    }
    const cow_String text = data.AsStringVerbatim(row, col);
    const inp_FieldType type = data.Type(row, col);
    const bool isNumber = type == inp_FieldType::Integer || type == inp_FieldType::Double;
    if (m_types[c] == inp_ColumnType::Real && !isNumber) return "\"" + text + "\" is no number.";
    const bool mayBeWord = m_words[c] && item.alternatives.front().type == eds_FormType::Int;
    if ((m_types[c] == inp_ColumnType::Int && type != inp_FieldType::Integer) ||
        (mayBeWord && type == inp_FieldType::Double))
      return "\"" + text + "\" is no integer.";
    if (mayBeWord && type == inp_FieldType::Integer && data.AsInt(row, col) < 0)
      return "\"" + text + "\" is negative.";
    if (m_words[c] && utl_findControl(text) != cow_String::npos)
      return "The text holds a control character.";
    if (!m_targets[c] || m_targets[c]->Of(data, row, col) != inpS_noTarget) continue;
    return TextOfMissing(item, text, isNumber || m_targets[c]->IsLabel(text));
  }
  return {};
}

// The first value of a line that has more than it can have; -1: it has not.
int inpS_ColumnReader::SurplusOf(long long row) const {
  const inp_DataArray& data = m_keyword.Data();
  const int last = static_cast<int>(m_types.size()) - 1;
  if (m_endsInTexts && last < data.Cols(row) && data.HasValue(row, last) &&
      inpS_ColumnWords::IsNumber(data.AsStringVerbatim(row, last)))
    return last; // and no text
  for (int col = last + 1; col < data.Cols(row); ++col)
    if (data.HasValue(row, col)) return col;
  return -1;
}

// A node or an element is no real number, and the line before it is full of values.
bool inpS_ColumnReader::GoesOn(long long row) const {
  constexpr int full = 8;
  const inp_DataArray& data = m_keyword.Data();
  if (row == 0 || m_types.size() != full || data.Type(row, 0) != inp_FieldType::Double)
    return false;
  const bool isValues = std::ranges::count(m_types, inp_ColumnType::Real) == full - 1;
  return isValues && data.Cols(row - 1) == full && data.HasValue(row - 1, full - 1);
}

cow_String inpS_ColumnReader::TextOfMissing(const eds_FormItem& item, const cow_String& name,
                                            bool isNumber) const {
  if (!isNumber)
    for (const eds_FormItem::Alternative& one : item.alternatives)
      if (one.referable) return m_names.TextOfMissing(*one.referable, inp_Utils::Fold(name));
  return (item.alternatives.front().type == eds_FormType::Node ? "Node " : "Element ") + name +
         " does not exist.";
}
