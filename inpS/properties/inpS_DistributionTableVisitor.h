#pragma once

#include "inpS/forms/inpS_FormVisitor.h"

// First half of the distributions phase: the tables, so that a distribution may stand before its
// table.
class inpS_DistributionTableVisitor : public inpS_FormVisitor {
public:
  inpS_DistributionTableVisitor(KvoObjLabeler& nodes, KvoObjLabeler& elements,
                                const inpS_Inventory& inventory, inpS_Ledger& ledger)
      : inpS_FormVisitor(inpS_Phase::Distributions, nodes, elements, inventory, ledger) {}

  void Visit(const inp_Keyword& keyword) override;

protected:
  void Converted(const inp_Keyword& keyword, const inpS_Form& form,
                 const KvoSimPosition& record) override;
};
