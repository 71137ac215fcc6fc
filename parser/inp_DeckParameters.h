#pragma once

#include "parser/inp_Expression.h"
#include "parser/inp_Keyword.h"
#include "parser/inp_KeywordRewrite.h"

// The parameters a deck defines with *PARAMETER, and their values in the place of <name>.
//
// A data line is "name = expression"; '#' begins a comment. Names are found as they are spelt, else
// whatever their case when only one parameter fits. A name defined again has its new value from
// there on, with a warning.
class inp_DeckParameters {
public:
  bool IsEmpty() const { return m_values.empty(); }

  // Takes the data lines of a *PARAMETER.
  void Define(const inp_Keyword& keyword, cow_List<wip_Message>& errors,
              cow_List<wip_Message>& warnings);

  // Puts values into the line; false when it holds none. Text between two quotes stays as it is,
  // and so does every '<' that begins no <name>. Unknown names are errors and stay; a data line
  // that would become a keyword or comment line is an error and becomes an empty comment.
  bool Substitute(const inp_KeywordLine& line, const cow_String& keyword, cow_String& out,
                  cow_List<wip_Message>& errors) const;

private:
  struct Value {
    inp_ParameterValue value;
    wip_Place place;
  };
  const Value* Find(std::string_view name) const;
  void DefineLine(const inp_KeywordLine& line, const cow_String& keyword,
                  cow_List<wip_Message>& errors, cow_List<wip_Message>& warnings);

  cow_Map<cow_String, Value> m_values;                   // by the name as spelt
  cow_Map<cow_String, cow_List<cow_String>> m_spellings; // lower case to names
};

// The first <name> of a text as it stands there; empty when there is none.
std::string_view inp_findReference(std::string_view text);
