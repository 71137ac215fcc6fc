#pragma once

#include "inpS/forms/inpS_TableColumns.h"
#include "inpS/keywords/inpS_KeywordDataTable.h"

class inp_Visitor;

// Holds a table that has been read against what its columns may hold: rows too short, values out of
// their range, columns that do not rise. Each fault is an error at its row (a few of a kind; the
// table is kept as it was given).
void inpS_checkTable(const inp_Keyword& keyword, const inpS_KeywordDataTable& table,
                     const cow_List<inpS_TableColumns::Column>& columns, inp_Visitor& messages);
