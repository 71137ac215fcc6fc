#pragma once

#include "inpS/forms/inpS_FormValue.h"
#include "parser/inp_Keyword.h"

// The lines of *FOUNDATION: their labels are those of the table of loads.
bool inpS_isFoundationLabel(std::string_view label);
// Tells of elements that have no such face, or for which the label is not.
void inpS_checkFoundations(const inp_Keyword& keyword, const inpS_SetVisitor& place,
                           const KvoObjDocument& document, inp_Visitor& messages);
