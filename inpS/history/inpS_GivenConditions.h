#pragma once

#include "database/KvoObjDocument.h"
#include "inpS/history/inpS_InForce.h"

// All conditions and loads that the deck gives, outside steps and step by step: what is in force.
inpS_InForce inpS_givenConditions(const KvoObjDocument& document);
