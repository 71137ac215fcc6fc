#pragma once

#include "inpS/forms/inpS_FormVisitor.h"

// The constraints phase. What has no form yet is kept as text.
class inpS_ConstraintVisitor : public inpS_FormVisitor {
public:
  inpS_ConstraintVisitor(KvoObjLabeler& nodes, KvoObjLabeler& elements,
                         const inpS_Inventory& inventory, inpS_Ledger& ledger)
      : inpS_FormVisitor(inpS_Phase::Constraints, nodes, elements, inventory, ledger) {}

protected:
  // What ties two surfaces ties them whatever its discretization.
  bool MayLack(const inpS_Form& form, const eds_FormItem& item) const override {
    return form.keyword == inp_KwTie && item.name == "type";
  }
};
