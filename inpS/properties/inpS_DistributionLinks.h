#pragma once

#include "database/KvoObjDocument.h"
#include "inpS/forms/inpS_DistributedProperty.h"

class inp_Visitor;

// Once distributions are read: each property that names one is linked to its record (ValuesFrom),
// and its line is kept no longer. A material belongs to the whole model, so the name is looked for
// in the model, and then in all that distributions may belong to; one that is in several of these,
// or kept as text, or whose table has other columns than the property's rows, is told, and the line
// stays.
void inpS_linkDistributions(const cow_List<inpS_DistributedProperty>& properties,
                            const KvoObjDocument& document, inp_Visitor& messages);
