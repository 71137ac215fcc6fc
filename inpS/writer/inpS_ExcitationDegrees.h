#pragma once

#include "inpS/history/inpS_ExcitationKind.h"

// The way back from what an excitation is about to degrees of freedom (bits of inpS_Degrees): of
// the field "U_R" and the components "C_1 C_3" 4 and 6, of "NT" and "0" 11. Of a vector without
// components all three. 0: the keyword has none.
uint64_t inpS_degreesOf(const inpS_ExcitationKind& kind, const cow_String& field,
                        const cow_String& components);
cow_String inpS_restraintName(int restraint); // PINNED and so on
