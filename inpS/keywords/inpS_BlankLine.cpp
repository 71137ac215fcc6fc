#include "inpS/keywords/inpS_BlankLine.h"
#include "parser/inp_DataArray.h"

bool inpS_isBlank(const inp_DataArray& data, long long row) {
  for (int col = 0, cols = data.Cols(row); col < cols; ++col)
    if (data.HasValue(row, col)) return false;
  return true;
}

bool inpS_isBlank(const inp_DataArray& data) {
  for (long long row = 0; row < data.Rows(); ++row)
    if (!inpS_isBlank(data, row)) return false;
  return true;
}
