#pragma once

#include "database/KvoObjDocument.h"
#include "inpS/history/inpS_InForce.h"

// All conditions and loads that the deck gives, outside steps and step by step: what is in force.
inpS_InForce inpS_givenConditions(const KvoObjDocument& document);

// Whether a step of the history is about perturbations of a state: it says so, or its procedure is.
bool inpS_isPerturbation(const KvoSimDataRecord& history);
