#pragma once

#include "database/KvoObjDocument.h"

// Values of sections that vary, as fields of the store: "thickness" where a distribution or the
// nodal thickness gives it, "orientationAngle" (degrees) where a distribution does. A field is
// bound to the section, or to the ply that names the distribution: the record holds it as a member
// of Fields, and it names the record as its owner. Its data are those of the distribution; where
// that has a default line, they are resolved for all elements of the section (by node: for all
// nodes of the distribution's owner).
//
// Derived, as the section assignments are, which come before: what was derived goes, and it may run
// again at any time. Within a transaction of its own.
void inpS_deriveSectionFields(const KvoObjDocument& document);
