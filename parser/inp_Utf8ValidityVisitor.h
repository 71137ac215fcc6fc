#pragma once

#include "parser/inp_Keyword.h"
#include "parser/inp_Visitor.h"

// Sees to it that keywords hold valid UTF-8. Comments do not matter, and keywords of ASCII text
// cost a look at their keyword line.
//
// What a wrong byte means is decided for each file as a whole:
// - a file without a single valid multi-byte character, whose bytes all are letters and signs of
// the
//   Windows-1252 code (Latin-1 with some more signs), is taken to be written in it: its keywords
//   are converted in place and the file gets one warning;
// - else the bytes are damage in a UTF-8 file, or no text at all: errors, one per keyword, with the
//   first places and a count.
class inp_Utf8ValidityVisitor : public inp_Visitor {
public:
  void VisitList(inp_KeywordListRef keywords) override;

  const inp_KeywordList& Keywords() const { return m_keywords; } // converted where need be

private:
  struct Wrong { // bytes of one file that are no UTF-8
    bool hasCharacters = false;
    bool isOtherCode = true; // the bytes are text in Windows-1252
    bool warned = false;
  };
  // By file: a file's text and stretches rewritten from it are one.
  using Files = cow_Map<cow_String, Wrong>;

  void Judge(const inp_Keyword& keyword);
  void Treat(const inp_Keyword& keyword);
  void Convert(const inp_Keyword& keyword);
  void ReportWrong(const inp_Keyword& keyword);

  Files m_files;
  inp_KeywordList m_suspects; // keywords with wrong bytes
  inp_KeywordList m_keywords;
};
