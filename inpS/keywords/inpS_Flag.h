#pragma once

#include <string_view>

class inp_Keyword;
class inp_Visitor;

// Whether a parameter that says yes by being there is given and not taken back by NO or OFF. A
// value that is neither YES, ON, NO nor OFF is told and counts as yes.
bool inpS_readFlag(const inp_Keyword& keyword, std::string_view name, inp_Visitor& messages);
