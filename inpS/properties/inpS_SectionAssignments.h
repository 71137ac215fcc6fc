#pragma once

#include "database/KvoObjDocument.h"

// Which elements have which section: derived from the sections of the model, its parts, instances
// and assembly, and from their element sets. What was derived before goes, so that it may run again
// at any time; it finds the same. A part's section is assigned once for each instance of the part.
// Within a transaction of its own.
void inpS_deriveSectionAssignments(const KvoObjDocument& document);
