#pragma once

#include "inpS/forms/inpS_FormTable.h"

// The forms of material behaviours: those of the keywords that stand in a material or a gasket
// behaviour, or below one that does.

const cow_List<inp_KeywordEnm>& inpS_behaviorKeywords(); // in the order of the rows
const cow_List<const inpS_Form*>& inpS_behaviorForms();  // the same
bool inpS_isBehavior(inp_KeywordEnm keyword);

// The condition that fails when a value nobody checked reaches the conversion, when a keyword has a
// sub-option that it cannot have, and when it belongs to nothing; empty: passed over.
std::string_view inpS_valueAssertion(inp_KeywordEnm keyword);
std::string_view inpS_suboptionAssertion(inp_KeywordEnm keyword);
std::string_view inpS_ownerAssertion(inp_KeywordEnm keyword);
