#pragma once

#include "inpS/forms/inpS_FormVisitor.h"

// Properties that interactions and incident waves refer to by their names, read before them. What
// has no form yet is kept as text.
class inpS_InteractionPropertyVisitor : public inpS_FormVisitor {
public:
  inpS_InteractionPropertyVisitor(KvoObjLabeler& nodes, KvoObjLabeler& elements,
                                  const inpS_Inventory& inventory, inpS_Ledger& ledger)
      : inpS_FormVisitor(inpS_Phase::InteractionProperties, nodes, elements, inventory, ledger) {}
};
