#pragma once

#include "inpS/keywords/inpS_KeywordParameterReader.h"
#include "parser/inp_Keyword.h"

// Walks the data lines of one keyword. Readers of items derive from it and say what an item is.
class inpS_KeywordReader : public inpS_KeywordParameterReader {
public:
  explicit inpS_KeywordReader(const inp_Keyword& keyword);
  virtual ~inpS_KeywordReader();

  bool IsTheLastRow() const { return IsTheLastRow(m_row); }
  bool IsTheLastRow(long long row) const { return row >= m_rows; }

  // Reads items until one is valid and leaves the current line behind it. False when the lines ran
  // out first, after End().
  bool ReadValidItem();

  // A line without a field, or with one empty field only.
  static bool IsBlankRow(const inp_DataArray& data, long long row);
  // Blank lines at the end are data no longer.
  void SkipTrailingBlankLines();

protected:
  // Reads the item that starts on the current line; may move the current line to the item's last.
  virtual bool ReadItem();
  virtual void End();

  const inp_Keyword& Keyword() const { return m_keyword; }
  const inp_DataArray& Data() const { return m_keyword.Data(); }
  long long Rows() const { return m_rows; }
  long long Row() const { return m_row; }
  void SetRow(long long row) { m_row = row; }

private:
  inp_Keyword m_keyword;
  long long m_rows;
  long long m_row = 0;
};
