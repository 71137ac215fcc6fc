#pragma once

#include "inpS/history/inpS_ExcitationKind.h"
#include "inpS/writer/inpS_DeckScope.h"

// The data lines of conditions and loads, piece by piece.
namespace inpS_ConditionLines {
// "17", "PLATE-1.17"
cow_String Label(const inpS_DeckLabels& labels, bool nodes, int64_t flat);
// The runs of consecutive degrees: 1 to 30.
cow_List<std::pair<int, int>> Runs(uint64_t degrees);
// Up to the last field that is given. One that goes on has eight fields to a line, and all.
void Add(cow_String& lines, const cow_List<cow_String>& fields, bool goesOn = false);
bool IsOfNodes(const inpS_ExcitationKind& kind);
} // namespace inpS_ConditionLines
