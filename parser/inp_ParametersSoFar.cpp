#include "parser/inp_ParametersSoFar.h"
#include "parser/inp_TextLines.h"
#include "parser/inp_Utils.h"
#include <algorithm>

cow_String
inp_ParametersSoFar::FileName(const inp_KeywordList& keywords, const inp_KeywordBody* open,
                              const cow_List<inp_DataSegment>& lines, const inp_KeywordBody& body,
                              const inp_Parameter& parameter, cow_List<wip_Message>& errors) {
  const std::string_view token(parameter.at, static_cast<std::size_t>(parameter.width));
  if (token.find('<') == token.npos) return parameter.value.AsString();
  for (; m_taken < keywords.size(); ++m_taken) {
    const inp_KeywordBody& past = *keywords[m_taken].Body();
    if (&past == open) break;
    Define(past, past.data, m_parameters);
  }
  inp_DeckParameters parameters = m_parameters;
  if (open) Define(*open, inp_DataArray(lines), parameters);

  inp_KeywordLine line;
  line.deck = body.text.get();
  line.text = token;
  line.number = body.line + std::count(body.begin, parameter.at, '\n');
  cow_String text;
  if (!parameters.Substitute(line, body.name, text, errors)) return parameter.value.AsString();
  return inp_Utils::RemoveQuotes(text.substr(text.find('=') + 1));
}

void inp_ParametersSoFar::Define(const inp_KeywordBody& body, const inp_DataArray& data,
                                 inp_DeckParameters& parameters) {
  if (body.kind != inp_KwParameter) return;
  const auto isOther = [](const inp_Parameter& parameter) {
    return parameter.name == "dependent" || parameter.name == "table";
  };
  if (std::any_of(body.parameters.begin(), body.parameters.end(), isOther)) return;
  const auto copy = std::make_shared<inp_KeywordBody>(body);
  copy->data = data;
  cow_List<wip_Message> errors, warnings;
  parameters.Define(inp_Keyword(copy, {}), errors, warnings);
}
