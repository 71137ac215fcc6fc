#pragma once

#include "parser/inp_Keyword.h"

// What is wrong with a parameter's value: it is empty, or none of the words that the language has
// for it.
cow_String inp_doubtOf(const inp_KeywordBody& body, const inp_Parameter& parameter);

// For who converts nothing: messages of all that nobody has said.
void inp_takeDoubts(const inp_Keyword& keyword, cow_List<wip_Message>& messages);
