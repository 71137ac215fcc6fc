#pragma once

#include "base/wip_Message.h"
#include <string_view>

class inp_Keyword;

// Services on deck names and messages.
class inp_Utils {
public:
  // A text placed in its keyword: at the keyword line, at one of its parameters, or in its data.
  static wip_Message MessageInKeyword(const inp_Keyword& keyword, cow_String text);
  static wip_Message MessageInKeyword(const inp_Keyword& keyword, cow_String text,
                                      const cow_List<cow_String>& items);
  static wip_Message MessageInKeyword(const inp_Keyword& keyword, cow_String text,
                                      const cow_List<int>& items);
  // Begins with what is wrong with the parameter's value, if nobody has said it yet.
  static wip_Message MessageAtParameter(const inp_Keyword& keyword, std::string_view parameter,
                                        cow_String text);
  static wip_Message MessageAtRow(const inp_Keyword& keyword, long long row, cow_String text);
  static wip_Message MessageAtField(const inp_Keyword& keyword, long long row, int col,
                                    cow_String text);
  // The text followed by the items, each once, separated by ", "; long lists end in a count of the
  // rest.
  static cow_String MessageWithItems(const cow_String& text, const cow_List<cow_String>& items);
  static cow_String MessageWithItems(const cow_String& text, const cow_List<int>& items);

  // Scoped names: instance name, dot, set name (or number).
  static cow_List<cow_String> SplitScopedSet(const cow_String& name);
  // The same of a field or a value as it is written: dots within quotes belong to a name. The
  // pieces are folded.
  static cow_List<cow_String> SplitScopedField(std::string_view asWritten);
  static bool IsScopedSetName(const cow_List<cow_String>& parts);
  static bool IsScopedSetId(const cow_List<cow_String>& parts); // the last piece is a number
  static cow_String CreateFlattenedName(const cow_String& scope, const cow_String& name);

  // Upper case (ASCII), blanks removed; quoted text keeps both and loses its quotes.
  static cow_String Fold(std::string_view text);
  static cow_String RemoveQuotes(const cow_String& name);

  static cow_String Format(const char* printf, ...); // printf conversions into a string
};
