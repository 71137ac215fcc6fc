#include "inpS/framework/inpS_Visitor.h"
#include "parser/inp_DeckParameters.h"
#include "parser/inp_Utils.h"
#include <array>

void inpS_Visitor::Visit(const inp_Keyword& keyword) {
  if (keyword.Kind() == inp_UnknownKeyword) return;
  inp_Visitor::Visit(keyword);
}

void inpS_Visitor::ReportUnreferredParameters(const inp_KeywordList& keywords,
                                              const cow_List<inp_KeywordEnm>& kinds) {
  std::array<bool, inp_KeywordEnd> ours{};
  for (const inp_KeywordEnm kind : kinds) ours[static_cast<std::size_t>(kind)] = true;
  for (const inp_Keyword& keyword : keywords) {
    if (keyword.IsInstanceCopy()) continue; // its original in the part has been judged
    const auto isOurs = [&](inp_KeywordEnm kind) {
      return kind < inp_KeywordEnd && ours[static_cast<std::size_t>(kind)];
    };
    if (!isOurs(keyword.Kind())) continue;
    // What a step has of the model's keywords is kept as text, but for what has its name there.
    if (keyword.Scope().kind == inp_Scope::Kind::Step && keyword.Kind() != inp_KwAmplitude &&
        keyword.Kind() != inp_KwNset && keyword.Kind() != inp_KwElset)
      continue;
    // Under a keyword of another subject it is that one's to read.
    if (keyword.IsSuboption() && !isOurs(keyword.ParentKind())) continue;
    for (const inp_Parameter& parameter : keyword.Parameters()) {
      if (parameter.referred || !inp_findReference(parameter.name).empty()) continue;
      AddWarning(inp_Utils::MessageAtParameter(
          keyword, parameter.name,
          "Parameter \"" + parameter.name +
              (parameter.told
                   ? "\" is left out: the model holds what keywords of this kind give, not "
                     "the keywords."
                   : "\" is not used; ignored.")));
    }
  }
}

void inpS_Visitor::Error(const inp_Keyword& keyword, cow_String text) {
  AddError(inp_Utils::MessageInKeyword(keyword, std::move(text)));
}

void inpS_Visitor::Warning(const inp_Keyword& keyword, cow_String text) {
  AddWarning(inp_Utils::MessageInKeyword(keyword, std::move(text)));
}
