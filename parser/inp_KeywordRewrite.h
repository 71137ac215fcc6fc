#pragma once

#include "parser/inp_Keyword.h"
#include <functional>

// Keywords whose text is replaced, line by line, so that every place in the new text still is the
// place in the file.

// A line of a keyword, its line end left out.
struct inp_KeywordLine {
  const inp_DeckText* deck = nullptr;
  std::string_view text;
  long long number = 0; // in its file

  wip_Place PlaceOf(std::string_view at) const; // a piece of `text`
};

// Calls look for the lines that are no comment lines.
using inp_LineLook = std::function<void(const inp_KeywordLine&)>;
void inp_eachLine(const inp_DataSegment& segment, const inp_LineLook& look);
// The same for the keyword line and its continuation lines.
void inp_eachKeywordLine(const inp_KeywordBody& body, const inp_LineLook& look);

// Appends the line's new text to `out`; false, and nothing appended, when it stays as it is.
using inp_LineRewrite = std::function<bool(const inp_KeywordLine&, cow_String& out)>;

// Replaces the keyword line and reads it again: its parameters are those of the new text. The body
// changes in place, for all handles on it. Gives the messages that the old line did not give, and
// whether anything changed.
bool inp_rewriteKeywordLine(inp_KeywordBody& body, const inp_LineRewrite& rewrite,
                            cow_List<wip_Message>& errors, cow_List<wip_Message>& warnings);
// Replaces the data segments that `wanted` picks.
bool inp_rewriteData(inp_KeywordBody& body,
                     const std::function<bool(const inp_DataSegment&)>& wanted,
                     const inp_LineRewrite& rewrite);

// Gives scopes the names that their openers have now: NAME and PART may have been rewritten.
void inp_renewScopeNames(const inp_KeywordList& keywords);
