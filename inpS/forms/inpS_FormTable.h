#pragma once

#include "database/schema/eds_Form.h"
#include "inpS/forms/inpS_TableColumns.h"
#include "inpS/keywords/inpS_ParameterBinding.h"
#include "parser/inp_Keyword.h"

class KvoSimDataRecord;
class inp_Visitor;

// One form as the conversion uses it: its row, the keyword it is of, what chooses it, and how each
// parameter and its field become each other. It serves both directions: what reads a keyword
// selects the form by its parameters, what prints a record finds it by its kind.
struct inpS_Form {
  // A parameter whose value belongs to the row: TYPE=LAMINA, or a bare USER.
  struct Selector {
    cow_String key;   // as the parser delivers it
    cow_String name;  // as it is printed
    cow_String word;  // bare; empty: a flag
    cow_String text;  // the word as it is printed
    cow_String alias; // another word for it, bare
    bool isDefault = false;
    bool isField = false; // its value is kept: any value chooses the row
    bool IsFlag() const { return word.empty() && !isField; }
    // kept: the parameters kept beside the record, which may have it with a value of its own.
    bool IsPrinted(std::string_view kept) const;
  };
  const eds_FormInfo* info = nullptr;
  eds_RecordKind kind = eds_RecordKind::None;
  inp_KeywordEnm keyword = inp_NullKeyword; // null: of another form's lines
  inp_KeywordEnm parent = inp_NullKeyword;  // only as its sub-option; null: wherever it may stand
  cow_List<Selector> parentSelectors;       // of that keyword
  cow_List<Selector> selectors;
  inpS_TableColumns columns{""};
  inpS_ParameterBindings parameters;   // in the order of the row
  cow_List<const eds_FormItem*> items; // of the parameters

  bool HasTable() const {
    return info->data == eds_FormData::Table || info->data == eds_FormData::Plain;
  }
  bool HasTemperature() const { return info->data == eds_FormData::Table; }
  bool MayLackRows() const { return info->mayLackRows; }
  // parent: the keyword it is a sub-option of; null for one that stands in an owner.
  bool Matches(const inp_Keyword& keyword, const inp_Keyword* parent) const;
  bool Binds(const cow_String& parameter) const; // some field holds it
  // Behind the form's other parameters: of those that choose it by being there, a value that is
  // neither yes nor no is told and left unread, to be kept.
  void LeaveOddChoices(const inp_Keyword& keyword, inp_Visitor& messages) const;
  // What no field holds and no choice asks for counts as unread, whoever has looked at it to tell
  // of it: it is to be kept. hasRows: the table has some, and says itself on how many field
  // variables they depend.
  void LeaveForeign(const inp_Keyword& keyword, bool hasRows) const;
  bool IsChosenBy(const cow_String& parameter) const; // a selector has it
  // How often a group of columns is repeated, from the keyword or from the record.
  static inpS_TableColumns::Count CountIn(const inp_Keyword& keyword);
  inpS_TableColumns::Count CountIn(const KvoSimDataRecord& record) const;
};

// All forms, each made when it is first asked for, by whatever thread.
class inpS_FormTable {
public:
  static const inpS_FormTable& Instance();

  // The keywords that have forms, in the order of the rows.
  const cow_List<inp_KeywordEnm>& Keywords() const { return m_keywords; }
  bool Knows(inp_KeywordEnm keyword) const { return !KindsOf(keyword).empty(); }
  std::span<const eds_RecordKind> KindsOf(inp_KeywordEnm keyword) const;
  const inpS_Form* Find(eds_RecordKind kind) const; // null: no form's
  // The first whose selectors the keyword meets; null when there is none. Of a procedure a word
  // that nobody knows counts as absent.
  const inpS_Form* Select(const inp_Keyword& keyword, const inp_Keyword* parent = nullptr) const;
  // What the keyword's NAME makes known to others; null: nothing.
  const eds_Referable* Named(inp_KeywordEnm keyword) const;
  inp_KeywordEnm DefinerOf(const eds_Referable& referable) const; // null: no keyword's NAME
  // Whether some form of the keyword is chosen by the parameter.
  bool IsChoice(inp_KeywordEnm keyword, const cow_String& parameter) const;
  // The parameter by whose value no form of the keyword can be selected; empty when it is none.
  cow_String UnknownChoice(const inp_Keyword& keyword) const;

private:
  inpS_FormTable();
  const inpS_Form* SelectForLack(const inp_Keyword& keyword) const;

  cow_List<inp_KeywordEnm> m_keywords;
  cow_List<cow_List<eds_RecordKind>> m_byKeyword;
  cow_List<short> m_places; // of forms, by kind; -1: none
};
