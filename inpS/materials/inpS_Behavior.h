#pragma once

#include "inpS/keywords/inpS_RecordParameters.h"
#include "inpS/materials/inpS_BehaviorColumns.h"
#include <span>

// What the data lines of a behaviour hold.
enum class inpS_DataForm : unsigned char {
  None,     // there are none
  Table,    // rows of values, then the temperature, then the field variables
  Plain,    // rows of values, then the field variables
  Optional, // as Table; the behaviour stands without any row too
  Bare,     // as Plain; the behaviour stands without any row too
  Text,     // lines kept as they stand, in the field "lines"
};

// How often one material may have a behaviour.
enum class inpS_Repeat : unsigned char {
  Once,   // one of this keyword, whatever its kind
  Beside, // one of this kind, beside others of the keyword
  Many,
};

// One row: a keyword in one of its variants, and the property record it is kept as. It serves both
// directions: what reads the keyword selects the row by its parameters, what prints the record
// finds it by its kind.
struct inpS_Behavior {
  // A parameter whose value belongs to the row: TYPE=LAMINA, or a bare USER.
  struct Selector {
    cow_String key;  // as the parser delivers it
    cow_String name; // as it is printed
    cow_String word; // bare; empty: a flag
    cow_String text; // the word as it is printed
    bool isDefault = false;
    bool isField = false; // its value is kept: any value chooses the row
    bool IsPrinted() const { return !isDefault && !isField; }
  };
  eds_RecordKind kind = eds_RecordKind::None;
  inp_KeywordEnm keyword = inp_NullKeyword;
  inp_KeywordEnm parent = inp_NullKeyword; // only as its sub-option; null: wherever it may stand
  cow_List<Selector> parentSelectors;      // of that keyword
  cow_List<Selector> selectors;
  inpS_DataForm form = inpS_DataForm::None;
  inpS_Repeat repeat = inpS_Repeat::Once;
  inpS_BehaviorColumns columns{""};
  inpS_ParameterBindings parameters; // with the fields of the record
  int linesField = -1;               // of the form Text
  int othersField = -1;              // for parameters that have no field of their own

  bool HasTable() const { return form != inpS_DataForm::None && form != inpS_DataForm::Text; }
  bool HasTemperature() const {
    return form == inpS_DataForm::Table || form == inpS_DataForm::Optional;
  }
  bool MayLackRows() const {
    return form == inpS_DataForm::Optional || form == inpS_DataForm::Bare;
  }
  // parent: the keyword it is a sub-option of; null for one that stands in a material.
  bool Matches(const inp_Keyword& keyword, const inp_Keyword* parent) const;
  bool Binds(const cow_String& parameter) const; // some field holds it
  // How often a group of columns is repeated, from the keyword or from the record.
  static inpS_BehaviorColumns::Count CountIn(const inp_Keyword& keyword);
  inpS_BehaviorColumns::Count CountIn(const KvoSimDataRecord& record) const;
};

// All rows, of inpS_behaviors.def.
class inpS_BehaviorTable {
public:
  static const inpS_BehaviorTable& Instance();

  const cow_List<inpS_Behavior>& Rows() const { return m_rows; }
  const cow_List<inp_KeywordEnm>& Keywords() const { return m_keywords; }
  bool Knows(inp_KeywordEnm keyword) const;
  const inpS_Behavior* Find(eds_RecordKind kind) const;
  // The first row whose selectors the keyword meets; null when there is none.
  const inpS_Behavior* Select(const inp_Keyword& keyword,
                              const inp_Keyword* parent = nullptr) const;
  // The parameter by whose value no row of the keyword can be selected; empty when it is none.
  cow_String UnknownChoice(const inp_Keyword& keyword) const;

  // The condition that fails when a value nobody checked reaches the conversion, when a keyword has
  // a sub-option that it cannot have, and when it belongs to nothing; empty: passed over.
  static std::string_view AssertionOf(inp_KeywordEnm keyword);
  static std::string_view SuboptionAssertionOf(inp_KeywordEnm keyword);
  static std::string_view OwnerAssertionOf(inp_KeywordEnm keyword);

private:
  inpS_BehaviorTable();
  std::span<const int> RowsOf(inp_KeywordEnm keyword) const;

  cow_List<inpS_Behavior> m_rows;
  cow_List<inp_KeywordEnm> m_keywords;
  cow_List<cow_List<int>> m_byKeyword; // rows, by keyword
  cow_Map<eds_RecordKind, int> m_byKind;
};
