#pragma once

#include "database/KvoSimPosition.h"
#include "inpS/forms/inpS_FormTable.h"
#include "inpS/forms/inpS_FormValue.h"

class inp_Keyword;
class inp_Visitor;

// Tells of sets and surfaces without members that the lines of a condition or load name: what is
// prescribed is in force, and acts on nothing. Each at the first line that names it.
void inpS_tellEmptyTargets(const inp_Keyword& keyword, const eds_FormInfo& form,
                           const KvoSimPosition& record, const inpS_FormNames& names,
                           inp_Visitor& messages);
