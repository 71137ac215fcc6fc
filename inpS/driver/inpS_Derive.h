#pragma once

#include "database/KvoObjDocument.h"
#include "inpS/history/inpS_Excitations.h"
#include "inpS/inpS_Export.h"

// What follows from the given records of a model, in the order of a conversion. What was derived
// before goes, so that each may run at any time.

// Which elements have which section, and what of the sections varies.
void inpS_deriveSections(const KvoObjDocument& document);
// The history, and what is in force in it.
cow_List<inpS_DuplicateCondition> inpS_deriveSteps(const KvoObjDocument& document);

// All of it for a model that has changed since, with the local systems of its orientations and
// transforms. Axes of elements, which a distribution gives, stay as the conversion made them. The
// result: how many rows prescribe a degree twice with different values.
INPS_EXPORT long long inpS_deriveAgain(const KvoObjDocument& document);
