#pragma once

#include "base/cow_Value.h"
#include "database/KvoSimPosition.h"
#include <span>

// Adds global damping to a step's procedure: factors of the mass (Rayleigh alpha, 1/time), of the
// stiffness (Rayleigh beta, time) and structural ones, in this order, each for mechanical and for
// acoustic degrees of freedom. What a procedure has already is added to, with a warning; negative
// values are kept, with one. The messages are texts for the keyword's place.
void inpS_SetGlobalDamping(const KvoSimPosition& step, const KvoSimPosition& procedure,
                           std::span<const double, 6> damping, cow_List<cow_String>& messages);
