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

constexpr inpS_Subject inpS_subjectOf(inp_KeywordEnm keyword) {
  switch (keyword) {
#define INPS_OWN_KEYWORD(Subject, Keyword)                                                         \
  case inp_Kw##Keyword:                                                                            \
    return inpS_Subject::Subject;
#include "inpS/framework/inpS_ownKeywords.def"
  default:
    return inpS_Subject::None;
  }
}

// All, or those of one subject.
inline cow_List<inp_KeywordEnm> inpS_ownKeywords(inpS_Subject of = inpS_Subject::None) {
  cow_List<inp_KeywordEnm> keywords;
#define INPS_OWN_KEYWORD(Subject, Keyword)                                                         \
  if (of == inpS_Subject::None || of == inpS_Subject::Subject) keywords.push_back(inp_Kw##Keyword);
#include "inpS/framework/inpS_ownKeywords.def"
  return keywords;
}
