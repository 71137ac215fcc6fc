#pragma once

#include "database/KvoSimDataRecord.h"
#include "database/eds_DamagedModel.h"
#include "database/schema/eds_Form.h"
#include "inpS/forms/inpS_SharedReader.h"
#include <algorithm>
#include <cstring>
#include <optional>
#include <string_view>

// A bulk column of a record, by the piece: one value for all rows (`one`), bytes, or an array. One
// that has other rows than the record is told as damage of the file.
template <class T> class inpS_StoredColumn {
public:
  inpS_StoredColumn(const KvoSimDataRecord& record, const eds_FormItem& item, long long rows,
                    int perRow, T one, std::mutex& guard)
      : m_one(one), m_perRow(perRow) {
    if (const KvoSimPosition array = record.GetReference(item.arrayField); !array.IsNull()) {
      m_array.emplace(eds_ArrayID{array.Store(), array.ID()}, guard);
      Check(record, m_array->Count(), rows);
      if (m_array->Width() != perRow)
        eds_tellDamaged(record.Pos(), "a column has " + std::to_string(m_array->Width()) +
                                          " values in a row and not " + std::to_string(perRow));
    } else if (!record.IsMemberNull(item.fewField)) {
      const std::string_view bytes = record.GetString(item.fewField);
      Check(record, static_cast<long long>(bytes.size() / sizeof(T)), rows * perRow);
      m_few.resize(bytes.size() / sizeof(T));
      std::memcpy(m_few.data(), bytes.data(), m_few.size() * sizeof(T));
    }
  }

  bool IsOne() const { return !m_array && m_few.empty(); } // value for all rows

  void Read(long long first, std::span<T> out) {
    if (m_array) return m_array->Read(first, out);
    if (m_few.empty())
      std::ranges::fill(out, m_one);
    else
      std::copy_n(m_few.begin() + first * m_perRow, out.size(), out.begin());
  }

private:
  static void Check(const KvoSimDataRecord& record, long long has, long long rows) {
    if (has != rows)
      eds_tellDamaged(record.Pos(), "a column has " + std::to_string(has) + " values for " +
                                        std::to_string(rows) + " rows");
  }

  T m_one;
  int m_perRow;
  cow_List<T> m_few;
  std::optional<inpS_SharedReader<T>> m_array;
};
