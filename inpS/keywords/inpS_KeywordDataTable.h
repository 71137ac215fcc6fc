#pragma once

#include "inpS/keywords/inpS_FlatTable.h"
#include "inpS/keywords/inpS_KeywordDataArrayReader.h"
#include "parser/inp_Keyword.h"
#include <optional>

class inpS_ArrayDouble;

// A property table read from a keyword's data lines. A row holds the data values, then the
// temperature when the table has one, then as many field variables as the keyword's parameter
// "dependencies" says. Rows and columns count from 0. All values lie in one row-major buffer, so a
// table of a million rows is as good as one of three.
class inpS_KeywordDataTable {
public:
  inpS_KeywordDataTable() = default; // of no keyword; cannot be read
  inpS_KeywordDataTable(const inp_Keyword& keyword, int dataColumns, long long firstDataLine,
                        bool temperature);

  // What empty fields of these columns read as, instead of 0.0.
  void SetDefaultData(const cow_List<int>& defaultDataCols,
                      const cow_List<double>& defaultDataVals);

  // Reads all records; firstColumn is where the first one starts on its line. Records are padded
  // with 0.0 to the column count. Blank lines behind the last record are none; one between records
  // is a row of zeros.
  void Read(int firstColumn = 0);

  int NumRows() const { return static_cast<int>(m_table.Rows()); }
  int NumCols() const { return static_cast<int>(m_table.Cols()); }
  int NumDataColumns() const { return m_dataColumns; }
  int NumDependencies() const { return m_dependencies; }
  bool HasTemperatureColumn() const { return m_temperature; }
  double Value(int row, int col) const;
  inpS_ArrayDouble Column(int colNum) const;
  // `length` columns from startColumn on, row by row.
  cow_List<double> Columns(int startColumn, int length) const;

  // Whether the temperature column held anything but zeros when the table was read.
  bool IsTempDependent() const { return m_tempDependent; }
  // Whether any row holds something but 0.0 in the column; a column the table has not is
  // independent.
  bool IsDependentOnColumn(int col) const;
  // Whether the deck gave this value: not padded, not an empty field.
  bool IsColumnSpecified(int row, int col) const;
  bool IsWhole() const { return !m_given; } // every value was given
  // Where the deck has the value, or where the row stands when it gave none there.
  struct Place {
    long long line = 0;
    int field = -1; // not given
  };
  Place PlaceOf(int row, int col) const;

  void RemoveColumn(int colNum);
  void KeepColumns(std::span<const char> keep); // those whose mark is not 0
  void RemoveTempColumnIfIndependent();
  void ExpandTableNumColsTo(int cols); // with 0.0
  void SetColumnToValue(int colNum, double value);
  void SetUnspecified(int colNum, double value);      // where the deck gave none
  void InsertValueToColumn(double value, int colNum); // a new column before the present one
  void SwapColumn(int a, int b);
  // The other's rows behind these; the narrower of the two is padded with 0.0.
  void Append(const inpS_KeywordDataTable& other);
  void ClearAll();

  // The rows for the database: one row-major buffer, or a pointer to each row. Both stay valid
  // until the table changes.
  std::span<const double> GetDataAsBuffer() const { return m_table.Values(); }
  cow_List<const double*> GetDataAsPtr() const;

  // Words and surplus fields met by Read, for the caller to report.
  const cow_List<inpS_UnreadField>& Unread() const { return m_unread; }
  void ReportUnread(inp_Visitor& messages) const {
    inpS_reportUnreadFields(m_keyword, m_unread, messages);
  }

private:
  void CheckColumn(int colNum) const;
  bool ReadAlikeRows();
  int MinimumPerRecord() const;
  void AppendRecord(const cow_List<double>& record, const cow_List<char>& given);

  inp_Keyword m_keyword; // null: of no keyword
  int m_dataColumns = 0;
  int m_dependencies = 0;
  bool m_temperature = false;
  bool m_tempDependent = false;
  long long m_firstDataLine = 0;
  cow_List<long long> m_lines; // where each row begins; empty: each is one line
  cow_List<int> m_defaultDataCols;
  cow_List<double> m_defaultDataVals;
  inpS_FlatTable<double> m_table;
  // The same shape as the table, 1 where the deck gave the value; none while it gave all of them.
  std::optional<inpS_FlatTable<char>> m_given;
  cow_List<inpS_UnreadField> m_unread;
};
