#pragma once

#include "inpS/forms/inpS_FormVisitor.h"
#include "inpS/history/inpS_DuplicateReport.h"
#include "inpS/history/inpS_FluidSteps.h"

// What holds nodes, as the deck gives it: conditions within steps.
class inpS_BoundaryVisitor : public inpS_FormVisitor {
public:
  inpS_BoundaryVisitor(KvoObjLabeler& nodes, KvoObjLabeler& elements,
                       const inpS_Inventory& inventory, inpS_Ledger& ledger);

  // Where conditions of nodes are given; lives longer than this.
  void SetPlaces(inpS_DuplicateReport& places) { m_places = &places; }

protected:
  bool MayConvert(const inp_Keyword& keyword, const inpS_Form& form) override;
  bool IsErrorToLack(inp_KeywordEnm kind) const override;
  // A wall is one whatever way it moves.
  bool MayLack(const inpS_Form&, const eds_FormItem& item) const override {
    return item.name == "motion";
  }
  bool ReadColumns(const inp_Keyword& keyword, const eds_FormInfo& form,
                   const KvoSimPosition& record) override;
  void Converted(const inp_Keyword& keyword, const inpS_Form& form,
                 const KvoSimPosition& record) override;

private:
  bool HasDegree(const inp_Keyword& keyword);
  void CheckBase(const inp_Keyword& keyword);

  inpS_FluidSteps m_fluidSteps;
  inpS_DuplicateReport* m_places = nullptr;
  cow_List<cow_String> m_bases;  // that conditions make, by name
  cow_List<long long> m_refused; // of the condition at hand: its lines that are no rows
};
