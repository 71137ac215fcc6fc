#pragma once

#include "base/cow_Value.h"

class inp_Keyword;
class inp_Visitor;

// A field of a data line that gave no value though something stands in it: a word where a number
// belongs, or the first field of a line that its record has no room for.
struct inpS_UnreadField {
  long long row;
  int col;
  bool surplus; // no fault: what is read stands before it
};

// How many fields of the row have a value from this column on.
long long inpS_countGiven(const inp_Keyword& keyword, long long row, int col);

// One message per field, at its place, that says what was done: a warning of what is left over, an
// error for what is no number. leftOver: what is done with that.
void inpS_reportUnreadFields(const inp_Keyword& keyword, const cow_List<inpS_UnreadField>& fields,
                             inp_Visitor& messages, const char* leftOver = "kept, but not used");
