#include "parser/inp_Doubts.h"
#include "parser/inp_KeywordTable.h"
#include "parser/inp_TextLines.h"
#include "parser/inp_Utf8Text.h"
#include "parser/inp_Utils.h"
#include <algorithm>
#include <span>

namespace {

constexpr std::size_t kShown = 80;

cow_String quoted(std::string_view text) {
  return '"' + inp_printable(text, kShown) + '"';
}

cow_String listed(std::span<const std::string_view> words) {
  cow_String text;
  for (const std::string_view word : words) text += (text.empty() ? "" : ", ") + cow_String(word);
  return text;
}

} // namespace

cow_String inp_doubtOf(const inp_KeywordBody& body, const inp_Parameter& parameter) {
  const std::string_view token(parameter.at, static_cast<std::size_t>(parameter.width));
  const inp_KeywordTable& table = inp_KeywordTable::Instance();
  if (parameter.value.Verbatim().empty()) {
    const std::string_view spelt =
        inp_trim(token.data(), token.data() + std::min(token.find('='), token.size()));
    const auto words = table.WordsOf(body.kind, parameter.name);
    return "parameter " + quoted(spelt) + " has no value behind its equal sign" +
           (words.empty() ? "" : "; it is one of " + listed(words));
  }
  const inp_WordMatch match =
      table.ResolveWord(body.kind, parameter.name, parameter.value.AsString());
  const bool isAmbiguous = match.kind == inp_WordMatch::Kind::Ambiguous;
  return quoted(token) + " of *" + body.name + (isAmbiguous ? " may stand for " : " is none of ") +
         listed(match.candidates);
}

void inp_takeDoubts(const inp_Keyword& keyword, cow_List<wip_Message>& messages) {
  for (const inp_Parameter& parameter : keyword.Parameters())
    if (parameter.doubted)
      messages.push_back(inp_Utils::MessageAtParameter(keyword, parameter.name, {}));
}
