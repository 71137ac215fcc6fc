#include "inpS/keywords/inpS_KeywordDataArrayReader.h"
#include "base/utl_Assert.h"
#include "base/utl_Number.h"
#include "base/utl_TinyNumber.h"
#include <algorithm>

inpS_KeywordDataArrayReader::inpS_KeywordDataArrayReader(const inp_DataArray& data, long long rows)
    : m_data(data), m_rows(rows < 0 ? data.Rows() : std::min(rows, data.Rows())) {}

void inpS_KeywordDataArrayReader::SetDefaultData(const cow_List<int>& columns,
                                                 const cow_List<double>& values) {
  if (columns.size() != values.size())
    utl_assertionFailed("m_defaultDataCols.Length() == m_defaultDataVals.Length()");
  m_defaultDataCols = columns;
  m_defaultDataVals = values;
}

double inpS_KeywordDataArrayReader::DefaultOf(std::size_t column) const {
  for (std::size_t i = 0; i < m_defaultDataCols.size(); ++i)
    if (m_defaultDataCols[i] == static_cast<int>(column)) return m_defaultDataVals[i];
  return 0.0;
}

int inpS_KeywordDataArrayReader::FieldCount(long long row) const {
  const int cols = m_data.Cols(row);
  return cols > 0 && m_data.IsNone(row, cols - 1) ? cols - 1 : cols;
}

void inpS_KeywordDataArrayReader::ReadFields(long long rowNum, int begin, int endPos) {
  if (endPos > m_data.Cols(rowNum)) utl_assertionFailed("endPos <= m_data.Cols(rowNum)");
  for (int col = begin; col < endPos; ++col) {
    const utl_Field field = utl_classifyField(m_data.FieldText(rowNum, col));
    const bool empty = field.kind == utl_FieldKind::None;
    if (field.kind == utl_FieldKind::String) m_unread.push_back({rowNum, col, false});
    if (utl_isTinyNumber(field.text, field.real) && field.kind == utl_FieldKind::Double)
      m_tiny.push_back({rowNum, col, false});
    m_record.push_back(empty ? DefaultOf(m_record.size()) : field.IsNumber() ? field.real : 0.0);
    m_given.push_back(empty ? 0 : 1);
  }
}

void inpS_KeywordDataArrayReader::ReadLine(long long row, int firstColumn, int target) {
  const int fields = FieldCount(row);
  const int missing = target - static_cast<int>(m_record.size());
  const int room = std::min(mostFieldsPerLine, firstColumn + missing);
  const int end = std::min(fields, room);
  ReadFields(row, firstColumn, end);
  for (int col = std::max(firstColumn, end); col < fields; ++col) {
    if (m_data.IsNone(row, col)) continue;
    m_unread.push_back({row, col, true});
    break; // the first tells it all
  }
}

// Whether a record that holds its minimum ends before the next line.
bool inpS_KeywordDataArrayReader::IsComplete(long long nextRow, int minimum, int target) const {
  const int values = static_cast<int>(m_record.size());
  if (values >= target) return true;
  if (values < minimum) return false;
  return target < mostFieldsPerLine || m_data.Cols(nextRow) + values > target + 1;
}

const cow_List<double>& inpS_KeywordDataArrayReader::ReadDoubleData(long long row, int firstColumn,
                                                                    int minimum, int count) {
  m_record.clear();
  m_given.clear();
  const int target = std::max(minimum, count);
  const long long mostLines = (static_cast<long long>(target) + 7) / mostFieldsPerLine;
  long long lines = 0;
  while (lines < mostLines && row + lines < m_rows) {
    ReadLine(row + lines, lines == 0 ? firstColumn : 0, target);
    ++lines;
    const long long next = row + lines;
    if (next < m_rows && lines < mostLines && IsComplete(next, minimum, target)) break;
  }
  m_rowsConsumed += lines;
  return m_record;
}

const cow_List<double>&
inpS_KeywordDataArrayReader::ReadDoubleDataInRow(long long row, int firstColumn, int count) {
  m_record.clear();
  m_given.clear();
  if (row < m_rows) {
    ReadLine(row, firstColumn, count);
    ++m_rowsConsumed;
  }
  m_record.resize(static_cast<std::size_t>(count), 0.0);
  m_given.resize(static_cast<std::size_t>(count), 0);
  return m_record;
}
