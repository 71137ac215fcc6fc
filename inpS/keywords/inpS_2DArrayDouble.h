#pragma once

#include "inpS/keywords/inpS_ArrayDouble.h"
#include "inpS/keywords/inpS_FlatTable.h"

// A table of doubles by row and column in one row-major buffer. Cells nobody set are 0.0.
class inpS_2DArrayDouble {
public:
  inpS_2DArrayDouble() = default;
  inpS_2DArrayDouble(int rows, int cols, double fill = 0.0);

  int Rows() const { return static_cast<int>(m_table.Rows()); }
  int Cols() const { return static_cast<int>(m_table.Cols()); }
  double& Get(int row, int col);
  double ConstGet(int row, int col) const;
  inpS_ArrayDouble Column(int col) const;
  std::span<const double> Values() const { return m_table.Values(); }

  // The row or column takes these values; the table grows columns or rows where it is too small,
  // and cells the values do not reach become 0.0.
  void setRow(int row, const inpS_ArrayDouble& values);
  void setColumn(int col, const inpS_ArrayDouble& values);
  // Puts a value behind the last one that the row was given; the table grows a column when the row
  // is full.
  void AddToRow(int row, double value);
  void Resize(int rows);

private:
  void GrowTo(int rows, int cols);
  void Touch(int row, int length);

  inpS_FlatTable<double> m_table;
  std::vector<int> m_lengths; // of each row: how far it was given values
};
