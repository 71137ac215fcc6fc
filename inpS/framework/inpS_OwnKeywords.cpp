#include "inpS/framework/inpS_OwnKeywords.h"

inpS_Subject inpS_subjectOf(inp_KeywordEnm keyword) {
  switch (keyword) {
#define INPS_OWN_KEYWORD(Subject, Keyword)                                                         \
  case inp_Kw##Keyword:                                                                            \
    return inpS_Subject::Subject;
#include "inpS/framework/inpS_ownKeywords.def"
  default:
    return inpS_Subject::None;
  }
}

cow_List<inp_KeywordEnm> inpS_ownKeywords(inpS_Subject of) {
  cow_List<inp_KeywordEnm> keywords;
#define INPS_OWN_KEYWORD(Subject, Keyword)                                                         \
  if (of == inpS_Subject::None || of == inpS_Subject::Subject) keywords.push_back(inp_Kw##Keyword);
#include "inpS/framework/inpS_ownKeywords.def"
  return keywords;
}
