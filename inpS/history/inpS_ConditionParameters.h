#pragma once

#include "parser/inp_Keyword.h"

struct inpS_Form;
class inp_Visitor;
class inpS_FormNames;

// What parameters of conditions and loads must be beside their types.

// Whether the field variable that the keyword is about can be one: they are numbered from 1 on. One
// that cannot is told, and the keyword is about nothing.
bool inpS_hasVariable(const inp_Keyword& keyword, inp_Visitor& messages);

// Tells REAL beside IMAGINARY, numbers of load cases and modes that are none, a reference node that
// is not there, what is said of a file that is not given, and data lines that are missing.
void inpS_checkConditionParameters(const inp_Keyword& keyword, const inpS_Form& form,
                                   const inpS_FormNames& names, inp_Visitor& messages);
