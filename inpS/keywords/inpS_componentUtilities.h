#pragma once

#include "base/cow_Value.h"
#include "database/KvoObjDocument.h"
#include "database/KvoSimCSet.h"
#include "database/KvoSimPosition.h"

// Degree-of-freedom numbers of the deck and the types and component sets of the database they stand
// for: 1 to 3 are displacements, 4 to 6 rotations. Anything else is a programming error here:
// whoever reads a deck has tested it before.

KvoSimPosition inpS_getComponentAsDofType(const KvoObjDocument& document, int number);
KvoSimPosition inpS_getComponentAsDofType(const KvoObjDocument& document,
                                          const cow_String& symbolName);

// The set of at most 6 different components in the given order. stored: the set is written to the
// file; otherwise it lives as long as the document is open.
KvoSimCSetID inpS_getComponentsAsCSet(const KvoObjDocument& document,
                                      const cow_List<int>& components, bool stored);

int inpS_getComponentAsInt(const KvoSimPosition& dofType);
// The numbers of a component set's members, in the set's order. Only stored sets have a position.
cow_List<int> inpS_getComponentsAsListInt(const KvoSimPosition& componentSet);
cow_List<int> inpS_getComponentsAsListInt(const KvoSimCSetID& componentSet);

// New stored sets: C_1, C_2 (and C_3); C_QUAT1 to C_QUAT4.
KvoSimCSetID inpS_get2DVectorComponentCSet(const KvoObjDocument& document);
KvoSimCSetID inpS_get3DVectorComponentCSet(const KvoObjDocument& document);
KvoSimCSetID inpS_getQuaternionComponentCSet(const KvoObjDocument& document);
// The components whose names are the prefix and 1, 2 … `count`.
KvoSimCSetID inpS_getNamedComponentCSet(const KvoObjDocument& document, const cow_String& prefix,
                                        int count);
