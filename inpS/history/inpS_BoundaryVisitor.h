#pragma once

#include "inpS/forms/inpS_FormVisitor.h"

// What holds nodes, as the deck gives it: conditions within steps.
class inpS_BoundaryVisitor : public inpS_FormVisitor {
public:
  inpS_BoundaryVisitor(KvoObjLabeler& nodes, KvoObjLabeler& elements,
                       const inpS_Inventory& inventory, inpS_Ledger& ledger)
      : inpS_FormVisitor(inpS_Phase::Boundaries, nodes, elements, inventory, ledger) {}
};
