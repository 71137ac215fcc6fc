#pragma once

#include "parser/inp_Keyword.h"
#include "parser/inp_KeywordTable.h"
#include <set>

// Reads one keyword line with its continuation lines: name, parameters, and what is wrong with
// them.
class inp_KeywordReader {
public:
  inp_KeywordReader(cow_List<wip_Message>& errors, cow_List<wip_Message>& warnings);

  struct Result {
    std::shared_ptr<inp_KeywordBody> body; // the name is empty when the line has none
    const char* next = nullptr;            // the line behind
    long long lines = 0;                   // lines read
    long long comments = 0;                // comment lines among them
  };
  // asterisk: of a keyword line; line: its number from 1.
  Result Read(const inp_DeckTextPtr& text, const char* asterisk, long long line);

  // Data lines may stand in a file of their own that INPUT names; on keywords of the mesh FILE says
  // the same. On others FILE is a file of results, and so it is on *USER ELEMENT.
  static bool NamesDataFile(inp_KeywordEnm kind, std::string_view parameter);
  // The first parameter of the keyword that does; -1: it has none.
  static int DataFileOf(const inp_KeywordBody& body);
  // Whether its value is the name of any file.
  static bool NamesFile(std::string_view parameter);

private:
  struct Line { // a piece of a physical line and where that line is
    const char* begin;
    const char* end;
    const char* lineBegin;
    long long number;
  };
  void ReadName(Line& line);
  bool ReadParameters(const Line& line);
  void ReadParameter(std::string_view token, const Line& line);
  void Add(inp_Parameter parameter, std::string_view spelt, const Line& line);
  cow_String CanonicalName(std::string_view spelt, const Line& line, bool& told);
  void CompleteValue(inp_Parameter& parameter);
  void CheckCharacters(const Line& line);
  std::string_view Spelt(std::string_view name) const;
  bool FindContinuation(Line& line);
  bool IsTooLong(const Line& line);
  const char* TokenEnd(const Line& line, const char* p, const char*& openQuote) const;
  wip_Message Message(cow_String text, std::string_view at, const Line& line) const;
  void WarnUnknownKeyword(const Line& line, std::string_view spelt);

  cow_List<wip_Message>& m_errors;
  cow_List<wip_Message>& m_warnings;
  const inp_KeywordTable& m_table;
  std::set<cow_String> m_unknown; // names already warned of

  Result m_result; // of the line being read
  inp_KeywordBody* m_body = nullptr;
  const char* m_textEnd = nullptr;
  bool m_tooMany = false;
};
