#pragma once

#include "inpS/forms/inpS_FormVisitor.h"

// The initial conditions phase, with the boundary conditions of the model.
class inpS_InitialConditionVisitor : public inpS_FormVisitor {
public:
  inpS_InitialConditionVisitor(KvoObjLabeler& nodes, KvoObjLabeler& elements,
                               const inpS_Inventory& inventory, inpS_Ledger& ledger)
      : inpS_FormVisitor(inpS_Phase::InitialConditions, nodes, elements, inventory, ledger) {}

protected:
  bool IsErrorToLack(inp_KeywordEnm kind) const override { return kind == inp_KwBoundary; }
  bool ReadColumns(const inp_Keyword& keyword, const eds_FormInfo& form,
                   const KvoSimPosition& record) override;
};
