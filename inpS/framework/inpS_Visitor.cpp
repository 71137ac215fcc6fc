#include "inpS/framework/inpS_Visitor.h"
#include "parser/inp_KeywordTable.h"
#include "parser/inp_Utils.h"
#include <algorithm>

void inpS_Visitor::Visit(const inp_Keyword& keyword) {
  if (keyword.Kind() == inp_UnknownKeyword) return;
  inp_Visitor::Visit(keyword);
}

namespace {

// A name that the keyword does not have was told when the deck was read.
bool toldByParser(const inp_Keyword& keyword, const inp_Parameter& parameter) {
  using Kind = inp_ParameterMatch::Kind;
  const inp_KeywordTable& table = inp_KeywordTable::Instance();
  const inp_KeywordRow* row = table.Row(keyword.Kind());
  const Kind kind = table.ResolveParameter(keyword.Kind(), parameter.name).kind;
  const bool unknown = kind == Kind::Ambiguous || kind == Kind::Unknown;
  return unknown && row && !row->openParameters;
}

} // namespace

void inpS_Visitor::ReportUnreferredParameters(const inp_KeywordList& keywords,
                                              const cow_List<inp_KeywordEnm>& kinds) {
  for (const inp_Keyword& keyword : keywords) {
    if (keyword.IsInstanceCopy()) continue; // its original in the part has been judged
    if (std::find(kinds.begin(), kinds.end(), keyword.Kind()) == kinds.end()) continue;
    for (const inp_Parameter& parameter : keyword.Parameters()) {
      if (parameter.referred || toldByParser(keyword, parameter)) continue;
      AddWarning(inp_Utils::MessageAtParameter(
          keyword, parameter.name, "Parameter \"" + parameter.name + "\" is not used; ignored."));
    }
  }
}

void inpS_Visitor::Error(const inp_Keyword& keyword, cow_String text) {
  AddError(inp_Utils::MessageInKeyword(keyword, std::move(text)));
}

void inpS_Visitor::Warning(const inp_Keyword& keyword, cow_String text) {
  AddWarning(inp_Utils::MessageInKeyword(keyword, std::move(text)));
}
