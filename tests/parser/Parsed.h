#pragma once

#include "parser/inp_Doubts.h"
#include "parser/inp_Parser.h"

// A deck given as text, and what the parser says of it.
struct Parsed {
  explicit Parsed(const cow_String& deck, bool isFile = false, bool keepComments = false,
                  const cow_String& directory = {}, const cow_List<cow_String>& searchPaths = {}) {
    inp_Parser parser(deck, directory, searchPaths, isFile ? "" : "deck.inp", true, true,
                      keepComments);
    keywords = parser.Parse(isFile);
    files = parser.FileErrors();
    errors = parser.SyntaxErrors();
    errors.insert(errors.end(), parser.Slips().begin(), parser.Slips().end());
    warnings = parser.Warnings();
    for (const inp_Keyword& keyword : keywords) inp_takeDoubts(keyword, warnings);
  }

  inp_KeywordList keywords;
  cow_List<wip_Message> files, errors, warnings;
};

// "NSET nset=A generate": names with their folded values, flags bare.
inline cow_String shown(const inp_Keyword& keyword) {
  cow_String out = keyword.Name();
  for (const inp_Parameter& parameter : keyword.Parameters()) {
    out += " " + parameter.name;
    if (!parameter.value.IsFlag()) out += "=" + parameter.value.AsString();
  }
  return out;
}

inline cow_String shown(const inp_KeywordList& keywords) {
  cow_String out;
  for (const inp_Keyword& keyword : keywords) out += (out.empty() ? "" : "; ") + shown(keyword);
  return out;
}

// "line:column text", one per line.
inline cow_String shown(const cow_List<wip_Message>& messages) {
  cow_String out;
  for (const wip_Message& message : messages)
    out += std::to_string(message.place.line) + ":" + std::to_string(message.place.column) + " " +
           message.text + "\n";
  return out;
}
