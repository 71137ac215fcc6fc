#pragma once

#include "inpS/history/inpS_ExcitationKind.h"
#include "inpS/inpS_Export.h"

class KvoObjDocument;

// Of the excitations that another program made, with no keyword behind them: which keyword says
// what they do, and whether any does.
namespace inpS_OwnExcitations {
// Of an excitation that one of its relays, if there is any, tells the region of. Null: of a newer
// version.
const inpS_ExcitationKind* KindOf(const KvoSimDataRecord& excitation, const KvoSimPosition& relay);
bool IsPrinted(const inpS_ExcitationKind* kind, const KvoSimDataRecord& excitation,
               const KvoSimPosition& relay);
// A routine of the user has the values of all nodes: the keyword needs no lines.
bool ActsWithoutLines(const inpS_ExcitationKind& kind, const KvoSimDataRecord& excitation,
                      const KvoSimPosition& relay);
// The degree of a motion of the base; 0: none, or several.
int BaseDegree(const inpS_ExcitationKind& kind, const KvoSimDataRecord& excitation);
} // namespace inpS_OwnExcitations

// Those that no data line can say, with their keywords: "Excitation_3 (BASE MOTION)".
INPS_EXPORT cow_List<cow_String> inpS_excitationsNotPrinted(const KvoObjDocument& document);
