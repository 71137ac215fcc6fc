#pragma once

#include "database/KvoObjDocument.h"

// The history of a model: a record for each step that says what holds in it, defaults and what a
// step without a procedure leaves to the next one among it. It follows from the model alone: made
// again, it is the same.
//
// Decided here, where decks leave it open:
// - Of a step without a procedure all parameters hold in the next step that does not give them, but
//   for its name. It has no procedure, no registration, and gives its name to nobody.
// - DSA holds from the step that gives it until another one does; before the first it is off.
// - Of two procedures in a step the first one holds.
// - Frequencies go from the least bound of all ranges to the greatest, whichever stands first.
// - Where a tolerance makes increments automatic (DELTMX, DCMAX, CETOL, UTOL) and none is given,
//   increments are fixed; so they are in modal dynamics. A steady state is automatic.
// - A name that is taken makes the older step's name end in "-Old", once more for each later step
// of
//   that name; beyond fifty the number says how often.
void inpS_deriveHistory(const KvoObjDocument& document);

// The keywords of a step as the deck has them, one behind the other.
cow_List<KvoSimPosition> inpS_keywordsInOrder(const KvoSimPosition& step);

// Of a step that is kept as text; empty: it has none.
cow_String inpS_nameOfStepText(std::string_view text);
