#pragma once

#include "database/schema/eds_Form.h"
#include "inpS/keywords/inpS_ParameterBinding.h"
#include "parser/inp_Keyword.h"

// One form as the conversion uses it: its row, the keyword it is of, what chooses it, and how each
// parameter and its field become each other.
struct inpS_Form {
  // A parameter whose value belongs to the row: TYPE=LAMINA, or a bare COMPOSITE.
  struct Selector {
    cow_String key;   // as the parser delivers it
    cow_String name;  // as it is printed
    cow_String text;  // the word as it is printed; empty: a bare parameter
    cow_String alias; // another word for it, bare
    bool isDefault = false;
  };
  struct Parameter {
    inpS_ParameterBinding binding; // of what is no reference
    const eds_FormItem* item = nullptr;
    bool IsReference() const { return item->alternatives.front().referable != nullptr; }
  };
  const eds_FormInfo* info = nullptr;
  inp_KeywordEnm keyword = inp_NullKeyword; // null: of another form's lines
  cow_List<Selector> selectors;
  cow_List<Parameter> parameters;

  bool Matches(const inp_Keyword& deckKeyword) const;
};

// All forms, each made when it is first asked for.
class inpS_FormTable {
public:
  static const inpS_FormTable& Instance();

  // The keywords that have forms, in the order of the rows.
  const cow_List<inp_KeywordEnm>& Keywords() const { return m_keywords; }
  bool Knows(inp_KeywordEnm keyword) const { return !KindsOf(keyword).empty(); }
  std::span<const eds_RecordKind> KindsOf(inp_KeywordEnm keyword) const;
  const inpS_Form* Find(eds_RecordKind kind) const;          // null: no form's
  const inpS_Form* Select(const inp_Keyword& keyword) const; // the first that it meets, or null

private:
  inpS_FormTable();

  cow_List<inp_KeywordEnm> m_keywords;
  cow_List<cow_List<eds_RecordKind>> m_byKeyword;
};
