#pragma once

#include "base/cow_Value.h"
#include "database/eds_Type.h"
#include "parser/inp_KeywordEnm.h"

class inp_Keyword;
class inp_Visitor;
class KvoSimDataRecord;
class utl_Stream;

// One parameter of a keyword and the field of a record that holds its value: what reads the one
// into the other and what prints it back.
//
// A field is bound by its column's name: "number_backstresses" holds NUMBER BACKSTRESSES. Its type
// tells how the value is written: a number, a flag (a bare name; or YES and NO), a text. A text
// with a vocabulary (inpS_words.def) takes one of its words only. A field that was never set is a
// parameter that was not given.
struct inpS_ParameterBinding {
  int field = 0;
  eds_FieldType type = eds_FieldType::Int;
  cow_String key;                   // as the parser delivers it
  cow_String name;                  // as it is printed
  cow_List<std::string_view> words; // as they are printed; none: any text
};
using inpS_ParameterBindings = cow_List<inpS_ParameterBinding>;

// The fields of a record kind that stand for parameters of the keyword, in the order of the fields.
inpS_ParameterBindings inpS_bindParameters(inp_KeywordEnm keyword, eds_RecordKind kind);

// Sets a field for every parameter that the keyword carries. Values that cannot be read are
// reported at their place and their fields left unset.
void inpS_readParameters(const inp_Keyword& keyword, const inpS_ParameterBindings& bindings,
                         KvoSimDataRecord record, inp_Visitor& messages);

// ", NAME=VALUE" for every field that is set.
void inpS_printParameters(utl_Stream& out, const inpS_ParameterBindings& bindings,
                          const KvoSimDataRecord& record);

// The flag of a record that stands for a sub-option without data: the Bool field named as the
// keyword ("no_compression"); -1 when there is none.
int inpS_flagField(eds_RecordKind kind, inp_KeywordEnm suboption);

// "NUMBERBACKSTRESSES" for "Number Back_Stresses": how values are compared.
cow_String inpS_bareWord(std::string_view text);
