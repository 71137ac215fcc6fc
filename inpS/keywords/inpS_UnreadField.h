#pragma once

#include "base/wip_Message.h"

class inp_Keyword;

// A field of a data line that gave no value though something stands in it: a word where a number
// belongs, or the first field of a line that its record has no room for.
struct inpS_UnreadField {
  long long row;
  int col;
  bool surplus;
};

// One message per field, at its place, that says what was done.
cow_List<wip_Message> inpS_unreadFieldMessages(const inp_Keyword& keyword,
                                               const cow_List<inpS_UnreadField>& fields);
