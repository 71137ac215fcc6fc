#include "inpS/forms/inpS_ColumnReader.h"
#include "base/utl_Assert.h"
#include "database/KvoSimDataRecord.h"
#include "inpS/keywords/inpS_KeywordReader.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"
#include <algorithm>
#include <bit>
#include <cstring>

namespace {

constexpr std::size_t kFewBytes = 512; // of a column that is kept as bytes

bool isTarget(const eds_FormItem& item) {
  const eds_FormType type = item.alternatives.front().type;
  return type == eds_FormType::Node || type == eds_FormType::Element;
}

inp_ColumnType typeOf(const eds_FormItem& item) {
  switch (item.alternatives.front().type) {
  case eds_FormType::Node:
  case eds_FormType::Element:
    return inp_ColumnType::Target;
  case eds_FormType::Int:
    return inp_ColumnType::Int;
  case eds_FormType::Real:
    return inp_ColumnType::Real;
  default:
    utl_assertionFailed("a column holds targets, integers or reals");
  }
}

template <class T> bool isSame(T a, T b) {
  if constexpr (std::is_same_v<T, double>)
    return std::bit_cast<uint64_t>(a) == std::bit_cast<uint64_t>(b);
  else
    return a == b;
}

} // namespace

// ---- a column

inpS_ColumnStore::inpS_ColumnStore(const KvoSimPosition& record, const eds_FormItem& item)
    : m_record(record), m_item(item) {}

template <class T>
void inpS_ColumnStore::Take(std::span<const T> values, cow_List<T>& few, T& first) {
  if (values.empty()) return;
  if (m_rows == 0) first = values.front();
  if (m_isOne && !std::ranges::all_of(values, [&](T value) { return isSame(value, first); })) {
    m_isOne = false;
    Spread(few, first);
  }
  if (!m_isOne) AppendTo(values, few);
  m_rows += static_cast<long long>(values.size());
}

// What all rows had so far, row by row.
template <class T> void inpS_ColumnStore::Spread(cow_List<T>& few, T first) {
  constexpr long long block = 8192;
  cow_List<T> same;
  for (long long done = 0; done < m_rows; done += block) {
    same.assign(static_cast<std::size_t>(std::min(block, m_rows - done)), first);
    AppendTo(std::span<const T>(same), few);
  }
}

template <class T> void inpS_ColumnStore::AppendTo(std::span<const T> values, cow_List<T>& few) {
  if (!m_array && (few.size() + values.size()) * sizeof(T) <= kFewBytes) {
    few.insert(few.end(), values.begin(), values.end());
    return;
  }
  if (!m_array) {
    m_array.emplace(m_record, eds_valueTypeOf<T>(), 1);
    m_array->Append(std::span<const T>(few));
    few.clear();
  }
  m_array->Append(values);
}

void inpS_ColumnStore::Finish() {
  KvoSimDataRecord record = m_record.DataRecord();
  const int field = m_item.alternatives.front().field;
  if (m_rows == 0) return;
  if (m_isOne && IsReal()) return record.SetDouble(field, m_firstReal);
  if (m_isOne) return record.SetInt(field, m_firstInt);
  if (m_array) return record.SetReference(m_item.arrayField, m_array->Finish().Position());
  const auto bytes =
      IsReal() ? std::as_bytes(std::span(m_reals)) : std::as_bytes(std::span(m_ints));
  record.SetString(m_item.fewField, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

// ---- all of them

inpS_ColumnReader::inpS_ColumnReader(const inp_Keyword& keyword, const eds_FormInfo& form,
                                     const KvoSimPosition& record, const inpS_FormNames& names,
                                     inp_Visitor& messages)
    : m_keyword(keyword), m_form(form), m_record(record), m_names(names), m_messages(messages),
      m_targets(form.columnItems.size()), m_codes(form.columnItems.size()) {
  for (const eds_FormItem& item : form.columnItems) {
    m_types.push_back(typeOf(item));
    m_spaces.push_back(isTarget(item) ? names.Labels(item) : inpS_LabelSpaceView());
    m_columns.emplace_back(record, item);
  }
}

bool inpS_ColumnReader::Read() {
  inp_streamColumns(
      m_keyword.Data(), m_types, [&](const Piece& piece) { Translate(piece); },
      [&](const Piece& piece) { Take(piece); });
  for (inpS_ColumnStore& column : m_columns) column.Finish();
  m_record.DataRecord().SetInt(m_form.rowsField, m_rows);
  if (!m_isWhole) TellFaults();
  return m_isWhole;
}

// Names keep their codes, which are far below all ordinals; a label that is not there is blank.
void inpS_ColumnReader::Translate(const Piece& piece) const {
  thread_local cow_List<int> ordinals;
  for (std::size_t c = 0; c < m_types.size(); ++c) {
    if (m_types[c] != inp_ColumnType::Target) continue;
    const std::span<int> slots = piece.columns[c].ints.first(piece.count);
    ordinals.resize(piece.count);
    if (m_spaces[c].labels)
      m_spaces[c].labels->Ordinals(slots, ordinals);
    else
      std::ranges::fill(ordinals, -1);
    const int offset = static_cast<int>(m_spaces[c].offset);
    for (std::size_t n = 0; n < piece.count; ++n) {
      if (ordinals[n] >= 0)
        slots[n] = ordinals[n] + offset;
      else if (!inp_isNameCode(slots[n]))
        slots[n] = inp_blankInt;
    }
  }
}

void inpS_ColumnReader::Take(const Piece& piece) {
  m_isFaulty.assign(piece.count, 0);
  bool isAny = false;
  TakeNames(piece);
  for (std::size_t c = 0; c < m_types.size(); ++c) {
    const eds_FormItem& item = m_form.columnItems[c];
    if (m_types[c] == inp_ColumnType::Real) {
      if (!item.isRequired) continue;
      for (std::size_t n = 0; n < piece.count; ++n)
        isAny |= (m_isFaulty[n] |= inp_isBlankReal(piece.columns[c].reals[n])) != 0;
      continue;
    }
    if (m_types[c] == inp_ColumnType::Int && !item.isRequired) continue;
    for (std::size_t n = 0; n < piece.count; ++n)
      isAny |= (m_isFaulty[n] |= piece.columns[c].ints[n] == inp_blankInt) != 0;
  }
  for (const inp_OddRow& odd : piece.odd) {
    const auto slot = static_cast<std::size_t>(odd.slot);
    m_isFaulty[slot] = !TakeOdd(piece, slot, odd.row);
    isAny |= m_isFaulty[slot] != 0;
  }
  if (isAny) {
    m_isWhole = false;
    return Drop(piece, m_isFaulty);
  }
  for (std::size_t c = 0; c < m_types.size(); ++c) {
    if (m_types[c] == inp_ColumnType::Real)
      m_columns[c].Append(std::span<const double>(piece.columns[c].reals.first(piece.count)));
    else
      m_columns[c].Append(std::span<const int>(piece.columns[c].ints.first(piece.count)));
  }
  m_rows += static_cast<long long>(piece.count);
}

void inpS_ColumnReader::TakeNames(const Piece& piece) {
  if (piece.names.empty()) return;
  for (std::size_t c = 0; c < m_types.size(); ++c) {
    if (m_types[c] != inp_ColumnType::Target) continue;
    cow_List<int>& codes = m_codes[c];
    codes.assign(piece.names.size(), 0);
    for (std::size_t n = 0; n < codes.size(); ++n) codes[n] = TargetOf(c, piece.names[n]);
    for (int& slot : piece.columns[c].ints.first(piece.count))
      if (inp_isNameCode(slot)) slot = codes[static_cast<std::size_t>(inp_namePlace(slot))];
  }
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
    col = static_cast<int>(c);
    const bool isBlank = col >= data.Cols(row) || !data.HasValue(row, col);
    if (m_types[c] == inp_ColumnType::Real)
      piece.columns[c].reals[slot] = isBlank ? inp_blankReal : data.AsDouble(row, col);
    else if (isBlank)
      piece.columns[c].ints[slot] = inp_blankInt;
    else if (m_types[c] == inp_ColumnType::Int || data.Type(row, col) == inp_FieldType::Integer)
      piece.columns[c].ints[slot] = data.AsInt(row, col);
    else
      piece.columns[c].ints[slot] = TargetOf(c, data.AsStringVerbatim(row, col));
    if (m_types[c] == inp_ColumnType::Target && !isBlank &&
        data.Type(row, col) == inp_FieldType::Integer)
      piece.columns[c].ints[slot] = m_spaces[c].labels->Ordinal(piece.columns[c].ints[slot]) +
                                    static_cast<int>(m_spaces[c].offset);
  }
  return true;
}

// A set, or "instance.label".
int inpS_ColumnReader::TargetOf(std::size_t column, std::string_view name) {
  if (const auto known = m_targets[column].find(name); known != m_targets[column].end())
    return known->second;
  const auto known = m_targets[column].emplace(name, inp_blankInt).first;
  const eds_FormItem& item = m_form.columnItems[column];
  long long ordinal = -1;
  if (m_names.FindLabel(item, known->first, ordinal)) {
    if (ordinal >= 0) known->second = static_cast<int>(ordinal);
    return known->second;
  }
  for (const eds_FormItem::Alternative& one : item.alternatives) {
    if (!one.referable) continue;
    const inpS_SetVisitor::Found found = m_names.Find(*one.referable, known->first);
    if (!found.set.IsNull()) return known->second = PlaceOf(found.set, found.instance);
  }
  return known->second;
}

int inpS_ColumnReader::PlaceOf(const KvoSimPosition& set, const KvoSimPosition& instance) {
  const auto [known, isNew] = m_places.try_emplace(
      {set.Object().Packed(), instance.Object().Packed()}, -1 - static_cast<int>(m_places.size()));
  if (isNew) {
    const KvoSimPosition target = m_record.CreateDataRecord(eds_RecordKind::Target);
    target.DataRecord().SetReference(eds_Target_Set, set);
    if (!instance.IsNull()) target.DataRecord().SetReference(eds_Target_Instance, instance);
    m_record.Associate(eds_Member::Targets, target);
  }
  return known->second;
}

// ---- what cannot be taken

// Once more over the lines, now that it is known that there are such.
void inpS_ColumnReader::TellFaults() {
  const inp_DataArray& data = m_keyword.Data();
  for (long long row = 0; row < data.Rows(); ++row) {
    if (inpS_KeywordReader::IsBlankRow(data, row)) continue;
    int col = 0;
    const cow_String fault = FaultOf(row, col);
    if (fault.empty()) continue;
    const cow_String text = fault + " The line is kept as it stands, and nothing is made of it.";
    m_messages.AddWarning(col < data.Cols(row)
                              ? inp_Utils::MessageAtField(m_keyword, row, col, text)
                              : inp_Utils::MessageAtRow(m_keyword, row, text));
  }
}

cow_String inpS_ColumnReader::FaultOf(long long row, int& col) {
  const inp_DataArray& data = m_keyword.Data();
  const int cols = static_cast<int>(m_types.size());
  for (col = 0; col < cols; ++col) {
    const auto c = static_cast<std::size_t>(col);
    const eds_FormItem& item = m_form.columnItems[c];
    if (col >= data.Cols(row) || !data.HasValue(row, col)) {
      if (!item.isRequired && !isTarget(item)) continue;
      return "The line does not tell its " + item.name + ".";
    }
    const cow_String text = data.AsStringVerbatim(row, col);
    const inp_FieldType type = data.Type(row, col);
    const bool isNumber = type == inp_FieldType::Integer || type == inp_FieldType::Double;
    if (m_types[c] == inp_ColumnType::Real && !isNumber) return "\"" + text + "\" is no number.";
    if (m_types[c] == inp_ColumnType::Int && type != inp_FieldType::Integer)
      return "\"" + text + "\" is no integer.";
    if (m_types[c] != inp_ColumnType::Target) continue;
    if (isNumber) {
      const bool isThere = type == inp_FieldType::Integer && m_spaces[c].labels &&
                           m_spaces[c].labels->Ordinal(data.AsInt(row, col)) >= 0;
      const bool isNode = item.alternatives.front().type == eds_FormType::Node;
      if (!isThere) return (isNode ? "Node " : "Element ") + text + " does not exist.";
    } else if (TargetOf(c, text) == inp_blankInt) {
      for (const eds_FormItem::Alternative& one : item.alternatives)
        if (one.referable)
          return inp_Utils::Format(cow_String(one.referable->missing).c_str(),
                                   inp_Utils::Fold(text).c_str());
    }
  }
  for (; col < data.Cols(row); ++col)
    if (data.HasValue(row, col)) return "The line has more values than it can have.";
  return {};
}
