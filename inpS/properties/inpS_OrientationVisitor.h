#pragma once

#include "inpS/forms/inpS_FormVisitor.h"

// The orientations phase: coordinate systems of sets (*TRANSFORM). What has no form yet is kept as
// text.
class inpS_OrientationVisitor : public inpS_FormVisitor {
public:
  inpS_OrientationVisitor(KvoObjLabeler& nodes, KvoObjLabeler& elements,
                          const inpS_Inventory& inventory, inpS_Ledger& ledger)
      : inpS_FormVisitor(inpS_Phase::Orientations, nodes, elements, inventory, ledger) {}
};
