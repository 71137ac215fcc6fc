#pragma once

#include "inpS/forms/inpS_FormVisitor.h"

// The sections phase. What has no form yet is kept as text.
class inpS_SectionVisitor : public inpS_FormVisitor {
public:
  inpS_SectionVisitor(KvoObjLabeler& nodes, KvoObjLabeler& elements,
                      const inpS_Inventory& inventory, inpS_Ledger& ledger)
      : inpS_FormVisitor(inpS_Phase::Sections, nodes, elements, inventory, ledger) {}
};
