#pragma once

#include "parser/inp_DeckParameters.h"
#include "parser/inp_Visitor.h"

// Expands a deck before it is converted:
// - values of deck parameters (*PARAMETER) take the place of <name> in the keyword lines and data
//   lines behind their definition. The keywords change in place; *PARAMETER itself becomes null.
//   What we do not evaluate is an error at its place. Data that is kept as text (a heading, the
//   title of a step) is left alone, and so are texts between quotes. Names of keywords and of their
//   parameters, and what kind of line a line is, cannot come from a value.
// - the keywords of a part are copied into each of its instances, right behind the *INSTANCE:
//   handles that share all the part's keywords hold. The part keeps its own.
// Decks without *PARAMETER pay one look at each keyword line; data lines are not read.
class inp_KeywordExpansionVisitor : public inp_Visitor {
public:
  // The folder hosts expand in. Nothing that is expanded today names a file: the parser has read
  // them all.
  void SetDirectory(cow_String directory) { m_directory = std::move(directory); }
  const cow_String& Directory() const { return m_directory; }
  // Set, parts are not copied into their instances. Clear at first.
  void SetFlag(bool keepParts) { m_keepParts = keepParts; }

  void VisitList(inp_KeywordListRef keywords) override;
  void Visit(const inp_Keyword& keyword) override;

  const inp_KeywordList& Keywords() const { return m_keywords; } // the expanded list
  bool IsFeatureEnhanced() const { return m_hasParts; } // it is organised in parts and instances

private:
  void DefineParameters(const inp_Keyword& keyword);
  void Substitute(inp_Keyword& keyword);
  bool HasComputedName(const inp_Keyword& keyword);
  bool HasComputedParameter(const inp_Keyword& keyword);
  void SubstituteInLine(const inp_Keyword& keyword);
  void CheckParameters(const inp_Keyword& keyword, const cow_List<inp_Parameter>& old);
  void CopyParts();

  cow_String m_directory;
  bool m_keepParts = false;
  bool m_hasParts = false;
  bool m_scopesRenamed = false;
  inp_DeckParameters m_parameters;
  inp_KeywordList m_keywords;
};
