#pragma once

#include "inpS/forms/inpS_FormVisitor.h"

// What acts on the model within steps, as the deck gives it.
class inpS_LoadVisitor : public inpS_FormVisitor {
public:
  inpS_LoadVisitor(KvoObjLabeler& nodes, KvoObjLabeler& elements, const inpS_Inventory& inventory,
                   inpS_Ledger& ledger)
      : inpS_FormVisitor(inpS_Phase::Loads, nodes, elements, inventory, ledger) {}
};
