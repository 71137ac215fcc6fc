#pragma once

#include "database/KvoObjDocument.h"

// The layers of every shell section of the model as columns (thickness, integration points,
// material, angle), for programs that read hundreds of thousands of them. Derived: the sections'
// own records stay what the deck gave, and what was derived before goes.
void inpS_writeBulkShellSections(const KvoObjDocument& document);
