#pragma once

#include "inpS/forms/inpS_ColumnWords.h"
#include <optional>

// One line of bulk columns: its text, and what its columns take of it.
struct inpS_LineView {
  const inp_DataArray& data;
  long long row;
  std::span<const int> slots; // by column, as in pieces; of no meaning where reals stand

  bool Has(int col) const { return col < data.Cols(row) && data.HasValue(row, col); }
  double Real(int col) const { return Has(col) ? data.AsDouble(row, col) : 0; }
  cow_String Text(int col) const { return Has(col) ? data.AsStringVerbatim(row, col) : ""; }
};

struct inpS_LineFault {
  int col = -1; // negative: of the line
  cow_String text;
  bool isError = true;
  bool isRefused = true; // nothing is made of the line
};

// What a subject asks of the lines of bulk columns beyond the types of their fields. Lines without
// fault cost it a look at whole columns; it looks at a line alone where that finds something.
class inpS_LineCheck {
public:
  using Words = std::span<const std::optional<inpS_ColumnWords>>; // by column

  virtual ~inpS_LineCheck() = default;
  // Of a piece whose names, labels and words are looked up: false when a line of it may be at
  // fault.
  virtual bool IsSound(const inp_ColumnPiece& piece, Words words) = 0;
  virtual std::optional<inpS_LineFault> FaultOf(const inpS_LineView& line) = 0;
  // Of a label or name that is not there: true when it is kept, to be told with others.
  virtual bool TakeMissing(bool isLabel, const cow_String& asWritten) {
    (void)isLabel, (void)asWritten;
    return false;
  }
  // Of a name that nothing has, folded; empty: as of any such name.
  virtual cow_String TextOfMissing(const cow_String& name) const {
    (void)name;
    return {};
  }
  // A line that is refused, for whatever reason.
  virtual bool IsErrorToRefuse() const { return false; }
};
