#pragma once

#include "parser/inp_Keyword.h"

class inp_Visitor;

// Whether the field variable that the keyword is about can be one: they are numbered from 1 on. One
// that cannot is told, and the keyword is about nothing.
bool inpS_hasVariable(const inp_Keyword& keyword, inp_Visitor& messages);
