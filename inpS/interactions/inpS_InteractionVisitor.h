#pragma once

#include "inpS/forms/inpS_FormVisitor.h"

// The interactions phase: impedances and incident waves. What has no form yet is kept as text.
class inpS_InteractionVisitor : public inpS_FormVisitor {
public:
  inpS_InteractionVisitor(KvoObjLabeler& nodes, KvoObjLabeler& elements,
                          const inpS_Inventory& inventory, inpS_Ledger& ledger)
      : inpS_FormVisitor(inpS_Phase::Interactions, nodes, elements, inventory, ledger) {}
};
