#pragma once

#include "inpS/forms/inpS_FormVisitor.h"

// Second half of the distributions phase: the values. What a record is given is kept as bulk
// columns; the store's distribution is made of it (inpS_Distribution).
class inpS_DistributionVisitor : public inpS_FormVisitor {
public:
  inpS_DistributionVisitor(KvoObjLabeler& nodes, KvoObjLabeler& elements,
                           const inpS_Inventory& inventory, inpS_Ledger& ledger)
      : inpS_FormVisitor(inpS_Phase::Distributions, nodes, elements, inventory, ledger) {}

  void Visit(const inp_Keyword& keyword) override;

protected:
  const inpS_Form* Choose(const inp_Keyword& keyword, const inp_Keyword* parent) override;
  bool ReadColumns(const inp_Keyword& keyword, const eds_FormInfo& form,
                   const KvoSimPosition& record) override;
  void Converted(const inp_Keyword& keyword, const inpS_Form& form,
                 const KvoSimPosition& record) override;
  cow_List<inpS_TableColumns::Column> ColumnsOf(const inp_Keyword& keyword,
                                                const inpS_Form& form) override;
};
