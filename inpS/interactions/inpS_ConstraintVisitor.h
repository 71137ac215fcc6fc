#pragma once

#include "inpS/forms/inpS_FormVisitor.h"

// The constraints phase. What has no form yet is kept as text.
class inpS_ConstraintVisitor : public inpS_FormVisitor {
public:
  inpS_ConstraintVisitor(KvoObjLabeler& nodes, KvoObjLabeler& elements,
                         const inpS_Inventory& inventory, inpS_Ledger& ledger)
      : inpS_FormVisitor(inpS_Phase::Constraints, nodes, elements, inventory, ledger) {}
};
