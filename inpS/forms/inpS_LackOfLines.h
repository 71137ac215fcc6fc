#pragma once

#include "database/schema/eds_Form.h"
#include "parser/inp_Keyword.h"

// Whether all data lines of the keyword from one on are blank, or there are none.
bool inpS_isWithoutLines(const inp_Keyword& keyword, long long first = 0);
// Whether it is so where the form has values that are mostly given: an item without "?" on its
// first line, or on that of the records that its lines are. Rows of a table are told of by who
// reads them.
bool inpS_lacksLines(const inp_Keyword& keyword, const eds_FormInfo& form);
// Why a keyword that lacks the rows of its table is kept as text; empty: it has some.
const char* inpS_reasonWithoutRows(const inp_Keyword& keyword, const eds_FormInfo& form);
