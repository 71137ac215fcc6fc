#pragma once

#include "base/aio_ostream.h"
#include "parser/inp_DataArray.h"
#include "parser/inp_Item.h"
#include "parser/inp_KeywordEnm.h"
#include <memory>

// Where a keyword stands: the part, instance, assembly or step that is open around it. The keywords
// that open and close a scope stand outside of it: *PART and *END PART at model level, *INSTANCE in
// the assembly.
struct inp_Scope {
  enum class Kind : unsigned char { Model, Part, Instance, Assembly, Step };
  Kind kind = Kind::Model;
  cow_String name;     // part, instance, assembly or step name; empty at model level
  cow_String partName; // of an instance: its part
  int ordinal = 0;     // of a step: 1, 2, …
};
using inp_ScopePtr = std::shared_ptr<const inp_Scope>;

struct inp_Parameter {
  cow_String name; // canonical: lower case, blanks removed, abbreviations resolved
  inp_Item value;
  const char* at = nullptr; // where it stands in the keyword's text
  int width = 0;
  mutable bool referred = false; // some reader looked at it, and took it
  mutable bool told = false;     // what is wrong with it has been said
  // Its value is empty, or none of its words, which nobody has said yet: that is for who knows what
  // it costs. A message at the parameter begins with it.
  mutable bool doubted = false;
};

class inp_Keyword;
using inp_KeywordList = cow_List<inp_Keyword>;

// What the deck says of one keyword; shared by every copy of it (instances share their part's).
struct inp_KeywordBody {
  inp_KeywordEnm kind = inp_NullKeyword;
  cow_String name;                    // upper case, single blanks, no asterisk
  cow_List<inp_Parameter> parameters; // in deck order
  int dataFile = -1;                  // the parameter whose file the data lines come from
  inp_DataArray data;
  inp_DeckTextPtr text;        // of the keyword line
  const char* begin = nullptr; // the asterisk
  const char* end = nullptr;   // behind the last (continued) keyword line
  long long line = 0;
  inp_KeywordEnm parent = inp_NullKeyword;     // the keyword it is a sub-option of
  std::shared_ptr<inp_KeywordList> suboptions; // attached sub-options in deck order; may be null
  cow_List<cow_String> comments; // comment lines right above, when the parser keeps them
};

// A handle on one keyword of the deck. Copying it is cheap; the body is shared.
class inp_Keyword {
public:
  inp_Keyword() = default;
  explicit inp_Keyword(cow_String name); // one that no deck holds: no data, no place
  inp_Keyword(std::shared_ptr<inp_KeywordBody> body, inp_ScopePtr scope);

  inp_KeywordEnm Kind() const { return m_kind; }
  const cow_String& Name() const;

  // Parameters, by canonical name. Every look-up marks the parameter as referred.
  const inp_Item* Find(std::string_view name) const;
  bool HasParameter(std::string_view name) const { return Find(name) != nullptr; }
  cow_String StringOf(std::string_view name,
                      const cow_String& absent) const; // a default may be a temporary
  const cow_List<inp_Parameter>& Parameters() const;
  // The parameter's value was not taken; false when what is wrong with it has been said before.
  bool LeaveUnread(std::string_view name) const;
  bool IsDoubted(std::string_view name) const;
  cow_String TakeDoubt(std::string_view name) const; // the text of it, once; empty: there is none
  void ReferAll() const; // the whole keyword has been dealt with (kept verbatim)

  const inp_DataArray& Data() const;

  const inp_Scope& Scope() const;
  const inp_ScopePtr& ScopePtr() const { return m_scope; }
  bool IsInstanceCopy() const { return m_instanceCopy; } // shared from the instance's part
  inp_Keyword CopyInto(inp_ScopePtr instance) const;
  inp_Keyword Become(inp_KeywordEnm kind) const; // the body changes, for all its handles to come
  void MakeNull();                               // emptied by expansion or reorganisation

  bool hasSuboption(inp_KeywordEnm kind) const;
  const inp_KeywordList& Suboptions() const;
  bool IsSuboption() const;
  inp_KeywordEnm ParentKind() const;

  const cow_String& FileName() const;
  long long Line() const;
  wip_Place Place() const;
  wip_Place PlaceOfParameter(std::string_view name) const; // the keyword's own when absent

  // The keyword as deck text: keyword line (continuations joined to one line, else as written) and
  // data lines, line ends \n, comments left out. Data lines taken from another file stand in the
  // text, and the parameter that named the file does not. Read again, it gives the same text.
  cow_String Text() const;
  cow_String HeadText() const; // of the keyword line
  void Print(aio_ostream& out) const;

  const std::shared_ptr<inp_KeywordBody>& Body() const { return m_body; }

private:
  std::shared_ptr<inp_KeywordBody> m_body; // null: the null keyword
  inp_ScopePtr m_scope;
  // The body's. Every phase walks all keywords to find its own: that must not fetch every body.
  inp_KeywordEnm m_kind = inp_NullKeyword;
  bool m_instanceCopy = false;
};
