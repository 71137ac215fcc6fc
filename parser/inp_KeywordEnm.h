#pragma once

// The kind of a keyword. Its numbers are not stored anywhere: they follow the order of the table.
enum inp_KeywordEnm : int {
  inp_NullKeyword = 0, // emptied by expansion or reorganisation
#define INP_KEYWORD(Suffix, ...) inp_Kw##Suffix,
#include "parser/inp_keywords.def"
  inp_KeywordEnd,             // one past the last keyword of the vocabulary
  inp_UnknownKeyword = 10005, // not in the vocabulary; conversion visitors never see it
};

static_assert(inp_KeywordEnd < inp_UnknownKeyword);
