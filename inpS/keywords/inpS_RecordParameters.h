#pragma once

#include "database/eds_ModelReader.h"
#include "inpS/keywords/inpS_ParameterBinding.h"
#include "parser/inp_KeywordEnm.h"

// Parameters that are bound to the fields of a record kind by their columns' names: the column
// "number_backstresses" holds NUMBER BACKSTRESSES, and its type tells how the value is written. A
// text for which the language has words takes one of them only.

// The fields of a record kind that stand for parameters of the keyword, in the order of the fields.
inpS_ParameterBindings inpS_bindParameters(inp_KeywordEnm keyword, eds_RecordKind kind);

// The parameter that the field of this number stands for.
inpS_ParameterBinding inpS_bindParameter(inp_KeywordEnm keyword, const eds_FieldInfo& field,
                                         int number);

// The flag of a record that stands for a sub-option without data: the Bool field named as the
// keyword ("no_compression"); -1 when there is none.
int inpS_flagField(eds_RecordKind kind, inp_KeywordEnm suboption);
