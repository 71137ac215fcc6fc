#pragma once

#include "parser/inp_Keyword.h"

class inp_Visitor;

// Warns of data lines behind keywords of some kinds that take none.
void inpS_reportUnusedLines(const inp_KeywordList& keywords, const cow_List<inp_KeywordEnm>& kinds,
                            inp_Visitor& messages);
