#pragma once

#include "base/utl_Stream.h"
#include "database/KvoObjDocument.h"
#include "inpS/driver/inpS_Inp2Sim.h"
#include "inpS/keywords/inpS_Flag.h"
#include "inpS/writer/inpS_Sim2Inp.h"
#include "parser/inp_KeywordTable.h"
#include "parser/inp_Parser.h"
#include "tests/host/ProgramRun.h"
#include <algorithm>
#include <cstdlib>

// Whether whatever parameter a keyword has is in the deck that is written.

// One parameter of the vocabulary as a deck may have it: bare, with a number, with a word.
struct DeckParameter {
  std::string_view name;
  cow_String value; // empty: bare
  cow_String Text() const {
    cow_String text = ", " + inp_KeywordTable::BareWord(name);
    return value.empty() ? text : text + "=" + value;
  }
};

// Words that say what holds without them, and are not written.
inline bool goesWithoutSaying(inp_KeywordEnm keyword, std::string_view name,
                              std::string_view word) {
  return (keyword == inp_KwElastic && name == "moduli" && word == "LONG TERM") ||
         (keyword == inp_KwAmplitude && name == "time" && word == "STEP TIME");
}

// Those that the keyword line does not have yet.
inline cow_List<DeckParameter> furtherParameters(inp_KeywordEnm keyword, const cow_String& line) {
  const inp_KeywordTable& table = inp_KeywordTable::Instance();
  inp_Parser parser(line + "\n", {}, {}, "line", false, false, false);
  const inp_KeywordList given = parser.Parse(false);
  cow_List<DeckParameter> further;
  for (const std::string_view name : table.Row(keyword)->parameters) {
    if (name == "input" || given.at(0).HasParameter(name)) continue; // lines of a file
    const auto words = table.WordsOf(keyword, name);
    // Of an amplitude's TIME any other word is told, and written as what it counts for.
    if (keyword != inp_KwAmplitude || name != "time")
      for (const char* value : {"", "7", "OTHER"}) further.push_back({name, value});
    for (const std::string_view word : words)
      if (word != "..." && !goesWithoutSaying(keyword, name, word))
        further.push_back({name, cow_String(word)});
  }
  return further;
}

inline cow_String convertedAndWritten(const cow_String& deckPath) {
  const KvoObjDocument document = KvoObjDocument::InMemory();
  inpS_Inp2Sim driver(deckPath, "");
  const bool readable = driver.Parse() && driver.CheckUtf8Compliance() && driver.Expand() &&
                        driver.Reorganize() && driver.BuildInventory();
  if (!readable) return {};
  driver.Convert(document);
  cow_String deck;
  utl_Stream out(&deck);
  std::ostringstream diagnostics;
  inpS_Sim2Inp(document, 1, false, "", nullptr, diagnostics).Print(out);
  out.Flush();
  return deck;
}

inline bool isSame(const inp_Item& item, const cow_String& value) {
  if (item.IsFlag()) return value.empty() || value == "YES" || value == "ON";
  if (item.IsNumber())
    return item.AsString() == value || item.AsDouble() == std::atof(value.c_str());
  const auto said = inpS_flagValue(item);
  if (value.empty()) return said == std::optional(true);
  if (said && inpS_flagValue(inp_Item(value)) == said) return true;
  return inp_KeywordTable::BareWord(item.AsString()) == inp_KeywordTable::BareWord(value);
}

// The deck has the keyword once with each of the parameters.
inline void expectKept(const cow_String& deckPath, inp_KeywordEnm keyword,
                       std::span<const DeckParameter> parameters, const cow_String& form) {
  const cow_String once = convertedAndWritten(deckPath);
  inp_Parser parser(once, {}, {}, "written", false, false, false);
  const inp_KeywordList keywords = parser.Parse(false);
  for (const DeckParameter& one : parameters) {
    const bool isThere = std::ranges::any_of(keywords, [&](const inp_Keyword& written) {
      const inp_Item* item = written.Kind() == keyword ? written.Find(one.name) : nullptr;
      return item && isSame(*item, one.value);
    });
    EXPECT_TRUE(isThere) << "*" << inp_KeywordTable::Instance().Row(keyword)->name << one.Text()
                         << " of " << form << " is not in the deck that is written";
  }
  writeFile(utl_pathOf(deckPath), once);
  EXPECT_EQ(convertedAndWritten(deckPath), once) << form;
}
