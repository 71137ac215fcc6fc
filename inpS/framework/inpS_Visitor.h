#pragma once

#include "parser/inp_Keyword.h"
#include "parser/inp_Visitor.h"

// What most conversion visitors stand on: keywords that the vocabulary does not know never reach a
// handler.
class inpS_Visitor : public inp_Visitor {
public:
  void Visit(const inp_Keyword& keyword) override;

  // A warning for each parameter of a keyword of these kinds that no reader looked at.
  void ReportUnreferredParameters(const inp_KeywordList& keywords,
                                  const cow_List<inp_KeywordEnm>& kinds);

protected:
  // Formats, places and records in one step.
  void Error(const inp_Keyword& keyword, cow_String text);
  void Warning(const inp_Keyword& keyword, cow_String text);
};
