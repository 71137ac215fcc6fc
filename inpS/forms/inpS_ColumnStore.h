#pragma once

#include "database/KvoSimPosition.h"
#include "database/eds_Array.h"
#include "database/schema/eds_Form.h"
#include <optional>

// One bulk column as it grows: a value while all rows have the same, then some values, then an
// array. A repeated item has its values row by row, and is never one value unless its rows are.
class inpS_ColumnStore {
public:
  inpS_ColumnStore(const KvoSimPosition& record, const eds_FormItem& item, int perRow = 1);

  void Append(std::span<const int> values);
  void Append(std::span<const double> values);
  void AppendBlank(std::size_t rows);
  void Finish(); // sets the fields of the record

private:
  template <class T> void Take(std::span<const T> values, cow_List<T>& few, T& first);
  template <class T> void TakeBlank(std::size_t rows, T blank, cow_List<T>& few, T& first);
  template <class T> void Spread(cow_List<T>& few, T first);
  template <class T> void AppendTo(std::span<const T> values, cow_List<T>& few);
  bool IsReal() const { return m_item.alternatives.front().type == eds_FormType::Real; }

  KvoSimPosition m_record;
  const eds_FormItem& m_item;
  int m_perRow;
  long long m_rows = 0;
  bool m_isOne; // all rows have the first value
  int m_firstInt = 0;
  double m_firstReal = 0;
  cow_List<int> m_ints;
  cow_List<double> m_reals;
  std::optional<eds_ArrayWriter> m_array;
};
