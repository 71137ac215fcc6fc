#pragma once

#include "base/cow_Value.h"

// What a conversion kept as text instead of modelling it, one row per kind of keyword.
struct inpS_NotModelled {
  cow_String keyword;
  long long count = 0;
  cow_String file; // first place
  long long line = 0;
  bool known = true; // false: a word that the vocabulary does not know
};
