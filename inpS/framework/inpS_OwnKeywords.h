#pragma once

#include "base/cow_Value.h"
#include "parser/inp_KeywordEnm.h"

// The keywords that are converted without a form (inpS_ownKeywords.def), by who takes them.

enum class inpS_Subject : unsigned char {
  None,
  Preparation,
  Skeleton,
  Amplitudes,
  Materials,
  Mesh,
  Surfaces,
  Steps
};

inpS_Subject inpS_subjectOf(inp_KeywordEnm keyword);
// Those of one subject; None: all.
cow_List<inp_KeywordEnm> inpS_ownKeywords(inpS_Subject of = inpS_Subject::None);
