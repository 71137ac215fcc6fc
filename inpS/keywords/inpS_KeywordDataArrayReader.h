#pragma once

#include "inpS/keywords/inpS_UnreadField.h"
#include "parser/inp_DataArray.h"

// Assembles records of numbers that may go on over several data lines, at most 8 numbers a line. An
// empty field behind a line's last comma is no field.
class inpS_KeywordDataArrayReader {
public:
  static constexpr int mostFieldsPerLine = 8;

  // rows: the lines to read from, counted from the first of the data; all of them when negative.
  explicit inpS_KeywordDataArrayReader(const inp_DataArray& data, long long rows = -1);

  // What empty fields of these columns (counted across the record from 0) read as, instead of 0.0.
  void SetDefaultData(const cow_List<int>& columns, const cow_List<double>& values);

  // Reads the record of `count` numbers that starts on a line, in the given column of it. `minimum`
  // are enough when the next line looks like the next record. The result holds what was there.
  const cow_List<double>& ReadDoubleData(long long row, int firstColumn, int minimum, int count);
  // Reads from one line only, padded with 0.0 to `count`.
  const cow_List<double>& ReadDoubleDataInRow(long long row, int firstColumn, int count);

  // Which numbers of the last record stood in a field of their own.
  const cow_List<char>& Given() const { return m_given; }
  long long RowsConsumed() const { return m_rowsConsumed; }             // by all records
  const cow_List<inpS_UnreadField>& Unread() const { return m_unread; } // of all records

  // Numbers of all records that are nearer to zero than they can be held.
  const cow_List<inpS_UnreadField>& Tiny() const { return m_tiny; }

private:
  int FieldCount(long long row) const;
  void ReadLine(long long row, int firstColumn, int target);
  void ReadFields(long long row, int begin, int end);
  bool IsComplete(long long nextRow, int minimum, int target) const;
  double DefaultOf(std::size_t column) const;

  inp_DataArray m_data;
  long long m_rows;
  long long m_rowsConsumed = 0;
  cow_List<int> m_defaultDataCols;
  cow_List<double> m_defaultDataVals;
  cow_List<double> m_record;
  cow_List<char> m_given;
  cow_List<inpS_UnreadField> m_unread;
  cow_List<inpS_UnreadField> m_tiny;
};
