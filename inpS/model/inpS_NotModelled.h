#pragma once

#include "base/cow_Value.h"

// What a conversion did not model, one row per kind: a keyword kept as text, or a parameter of a
// converted keyword that nothing reads ("NODE, PARAMETER").
struct inpS_NotModelled {
  cow_String keyword;
  long long count = 0;
  cow_String file; // first place
  long long line = 0;
  bool known = true; // false: a word that the vocabulary does not know
  bool kept = true;  // as text; false: the parameter is left out
};
