#include "inpS/forms/inpS_ColumnStore.h"
#include "database/KvoSimDataRecord.h"
#include "parser/inp_BulkColumns.h"
#include <algorithm>
#include <bit>

namespace {

constexpr std::size_t kFewBytes = 512; // of a column that is kept as bytes

// All of them looked at, several at once; blank reals are the same, too.
template <class T> bool areAll(std::span<const T> values, T one) {
  using Bits = std::conditional_t<std::is_same_v<T, double>, uint64_t, uint32_t>;
  Bits differs = 0;
  for (const T value : values) differs |= std::bit_cast<Bits>(value) ^ std::bit_cast<Bits>(one);
  return differs == 0;
}

} // namespace

inpS_ColumnStore::inpS_ColumnStore(const KvoSimPosition& record, const eds_FormItem& item,
                                   int perRow)
    : m_record(record), m_item(item), m_perRow(perRow), m_isOne(perRow == 1) {}

template <class T>
void inpS_ColumnStore::Take(std::span<const T> values, cow_List<T>& few, T& first) {
  if (values.empty()) return;
  if (m_rows == 0) first = values.front();
  if (m_isOne && !areAll(values, first)) {
    m_isOne = false;
    Spread(few, first);
  }
  if (!m_isOne) AppendTo(values, few);
  m_rows += static_cast<long long>(values.size()) / m_perRow;
}

template <class T>
void inpS_ColumnStore::TakeBlank(std::size_t rows, T blank, cow_List<T>& few, T& first) {
  if (rows == 0) return;
  if (!m_isOne || (m_rows > 0 && !areAll(std::span<const T>(&first, 1), blank)))
    return Take(std::span<const T>(cow_List<T>(rows * static_cast<std::size_t>(m_perRow), blank)),
                few, first);
  first = blank;
  m_rows += static_cast<long long>(rows);
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
    m_array.emplace(m_record, eds_valueTypeOf<T>(), m_perRow);
    m_array->Append(std::span<const T>(few));
    few.clear();
  }
  m_array->Append(values);
}

void inpS_ColumnStore::Append(std::span<const int> values) {
  Take(values, m_ints, m_firstInt);
}

void inpS_ColumnStore::Append(std::span<const double> values) {
  Take(values, m_reals, m_firstReal);
}

void inpS_ColumnStore::AppendBlank(std::size_t rows) {
  if (IsReal())
    TakeBlank(rows, inp_blankReal, m_reals, m_firstReal);
  else
    TakeBlank(rows, inp_blankInt, m_ints, m_firstInt);
}

void inpS_ColumnStore::Finish() {
  KvoSimDataRecord record = m_record.DataRecord();
  const int field = m_item.alternatives.front().field;
  if (m_item.perRowField >= 0) record.SetInt(m_item.perRowField, m_perRow);
  if (m_rows == 0) return;
  if (m_isOne && IsReal()) return record.SetDouble(field, m_firstReal);
  if (m_isOne) return record.SetInt(field, m_firstInt);
  if (m_array) return record.SetReference(m_item.arrayField, m_array->Finish().Position());
  const auto bytes =
      IsReal() ? std::as_bytes(std::span(m_reals)) : std::as_bytes(std::span(m_ints));
  record.SetString(m_item.fewField, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}
