#pragma once

#include "inpS/forms/inpS_FormVisitor.h"

// The initial conditions phase. What has no form yet is kept as text.
class inpS_InitialConditionVisitor : public inpS_FormVisitor {
public:
  inpS_InitialConditionVisitor(KvoObjLabeler& nodes, KvoObjLabeler& elements,
                               const inpS_Inventory& inventory, inpS_Ledger& ledger)
      : inpS_FormVisitor(inpS_Phase::InitialConditions, nodes, elements, inventory, ledger) {}
};
