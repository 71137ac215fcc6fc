#pragma once

#include "inpS/forms/inpS_FormVisitor.h"

// The constraints phase. What has no form yet is kept as text.
class inpS_ConstraintVisitor : public inpS_FormVisitor {
public:
  inpS_ConstraintVisitor(KvoObjLabeler& nodes, KvoObjLabeler& elements,
                         const inpS_Inventory& inventory, inpS_Ledger& ledger)
      : inpS_FormVisitor(inpS_Phase::Constraints, nodes, elements, inventory, ledger) {}

protected:
  // What ties two surfaces ties them whatever its discretization, and what spreads a motion does so
  // whatever its weights.
  bool MayLack(const inpS_Form& form, const eds_FormItem& item) const override {
    return (form.keyword == inp_KwTie && item.name == "type") || form.keyword == inp_KwDistributing;
  }
  bool ReadColumns(const inp_Keyword& keyword, const eds_FormInfo& form,
                   const KvoSimPosition& record) override;
  cow_String FaultOfLine(const KvoSimPosition& line) override;
  void Converted(const inp_Keyword& keyword, const inpS_Form& form,
                 const KvoSimPosition& record) override;
};
