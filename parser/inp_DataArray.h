#pragma once

#include "parser/inp_DeckText.h"
#include <cstdint>

enum class inp_FieldType : unsigned char { None, Integer, Double, String };

// A stretch of data lines in one text: whole lines, comment lines still among them.
struct inp_DataSegment {
  inp_DeckTextPtr text;
  const char* begin = nullptr;
  const char* end = nullptr;
  long long firstLine = 0; // line number of begin in its file
  long long rows = 0;      // lines that are no comment
  bool ascii = true;       // no byte above 127
};

// The data lines of one keyword as a ragged table of fields: a view of the deck's text. No object
// per field; copies share everything. Rows and columns count from 0. Reading past Rows() or Cols()
// is a programming error (utl_Assertion).
// A line of blanks is a row without fields; "1, 2," has three fields, the last one empty.
// Reading moves a cursor that all copies share, so one thread at a time reads an array and its
// copies; Rows() and Segments() may be asked by any number of threads.
class inp_DataArray {
public:
  inp_DataArray() = default;
  // wholeLines: the lines are text taken as it stands (*HEADING), one field each.
  explicit inp_DataArray(cow_List<inp_DataSegment> segments, bool wholeLines = false);

  long long Rows() const;
  bool HasWholeLines() const;
  int Cols(long long row) const; // an empty field after a trailing comma included
  inp_FieldType Type(long long row, int col) const;
  bool IsNone(long long row, int col) const;
  bool HasValue(long long row, int col) const;
  bool IsNumber(long long row, int col) const;
  // A number without a fraction, however it is spelled: 3, 3. or 3.0.
  bool IsInteger(long long row, int col) const;
  int AsInt(long long row, int col) const; // 0 for what is no number; clamped to int
  long long AsInt64(long long row, int col) const;
  double AsDouble(long long row, int col) const;     // 0 for what is no number
  cow_String AsString(long long row, int col) const; // upper case, blanks removed unless quoted
  cow_String AsStringVerbatim(long long row, int col) const; // trimmed, quotes kept
  std::string_view FieldText(long long row, int col) const;  // trimmed, as written
  bool HasRowContinuation(long long row) const;

  // The line as written without its line end, and everything with line ends made \n and comment
  // lines left out.
  std::string_view RowText(long long row) const;
  cow_String Text() const;

  wip_Place PlaceOf(long long row, int col) const;
  wip_Place PlaceOfRow(long long row) const;

  bool SharesTextWith(const inp_DataArray& other) const; // same view: decode once, use twice
  const void* Identity() const; // equal for copies of one array; null when empty
  const cow_List<inp_DataSegment>& Segments() const;

private:
  struct Impl;
  std::shared_ptr<Impl> m_impl; // the row index in it is made on first use
};
