#include "inpS/keywords/inpS_2DArrayDouble.h"

namespace {

std::size_t index(int i) {
  return static_cast<std::size_t>(i);
}

} // namespace

inpS_2DArrayDouble::inpS_2DArrayDouble(int rows, int cols, double fill) {
  utl_ASSERT(rows >= 0 && cols >= 0);
  m_table = {index(rows), index(cols), fill};
  m_lengths.assign(index(rows), cols);
}

double& inpS_2DArrayDouble::Get(int row, int col) {
  utl_ASSERT(row >= 0 && row < Rows() && col >= 0 && col < Cols());
  Touch(row, col + 1);
  return m_table.At(index(row), index(col));
}

double inpS_2DArrayDouble::ConstGet(int row, int col) const {
  utl_ASSERT(row >= 0 && row < Rows() && col >= 0 && col < Cols());
  return m_table.At(index(row), index(col));
}

inpS_ArrayDouble inpS_2DArrayDouble::Column(int col) const {
  utl_ASSERT(col >= 0 && col < Cols());
  inpS_ArrayDouble column(Rows(), 0.0);
  for (int row = 0; row < Rows(); ++row) column[row] = m_table.At(index(row), index(col));
  return column;
}

void inpS_2DArrayDouble::setRow(int row, const inpS_ArrayDouble& values) {
  utl_ASSERT(row >= 0);
  GrowTo(row + 1, values.Size());
  const std::span<double> cells = m_table.Row(index(row));
  const auto behind = std::copy(values.AsList().begin(), values.AsList().end(), cells.begin());
  std::fill(behind, cells.end(), 0.0);
  m_lengths[index(row)] = values.Size();
}

void inpS_2DArrayDouble::setColumn(int col, const inpS_ArrayDouble& values) {
  utl_ASSERT(col >= 0);
  GrowTo(values.Size(), col + 1);
  for (int row = 0; row < Rows(); ++row) {
    m_table.At(index(row), index(col)) = row < values.Size() ? values[row] : 0.0;
    if (row < values.Size()) Touch(row, col + 1);
  }
}

void inpS_2DArrayDouble::AddToRow(int row, double value) {
  utl_ASSERT(row >= 0 && row < Rows());
  const int col = m_lengths[index(row)];
  GrowTo(Rows(), col + 1);
  Get(row, col) = value;
}

void inpS_2DArrayDouble::Resize(int rows) {
  utl_ASSERT(rows >= 0);
  m_table.ResizeRows(index(rows), 0.0);
  m_lengths.resize(index(rows), 0);
}

void inpS_2DArrayDouble::GrowTo(int rows, int cols) {
  if (cols > Cols()) m_table.InsertColumns(m_table.Cols(), index(cols) - m_table.Cols(), 0.0);
  if (rows > Rows()) Resize(rows);
}

void inpS_2DArrayDouble::Touch(int row, int length) {
  m_lengths[index(row)] = std::max(m_lengths[index(row)], length);
}
