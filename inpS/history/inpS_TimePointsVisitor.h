#pragma once

#include "inpS/forms/inpS_FormVisitor.h"

// Lists of time points, read before the steps, and the model of cyclic symmetry beside them. Those
// that stand in a step are the step's.
class inpS_TimePointsVisitor : public inpS_FormVisitor {
public:
  inpS_TimePointsVisitor(KvoObjLabeler& nodes, KvoObjLabeler& elements,
                         const inpS_Inventory& inventory, inpS_Ledger& ledger)
      : inpS_FormVisitor(inpS_Phase::TimePoints, nodes, elements, inventory, ledger) {}

protected:
  void Converted(const inp_Keyword& keyword, const inpS_Form& form,
                 const KvoSimPosition& record) override;

private:
  void CheckCyclicSymmetry(const inp_Keyword& keyword);
};
