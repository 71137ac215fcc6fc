#include "inpS/keywords/inpS_KeywordReader.h"

inpS_KeywordReader::inpS_KeywordReader(const inp_Keyword& keyword)
    : m_keyword(keyword), m_rows(keyword.Data().Rows()) {}

inpS_KeywordReader::~inpS_KeywordReader() = default;

bool inpS_KeywordReader::ReadItem() {
  return false;
}

void inpS_KeywordReader::End() {}

bool inpS_KeywordReader::ReadValidItem() {
  while (!IsTheLastRow()) {
    const bool valid = ReadItem();
    ++m_row;
    if (valid) return true;
  }
  End();
  return false;
}

bool inpS_KeywordReader::IsBlankRow(const inp_DataArray& data, long long row) {
  const int cols = data.Cols(row);
  return cols == 0 || (cols == 1 && data.IsNone(row, 0));
}

void inpS_KeywordReader::SkipTrailingBlankLines() {
  while (m_rows > 0 && IsBlankRow(Data(), m_rows - 1)) --m_rows;
}
