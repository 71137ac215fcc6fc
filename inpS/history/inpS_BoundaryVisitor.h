#pragma once

#include "inpS/forms/inpS_FormVisitor.h"
#include "inpS/history/inpS_DuplicateReport.h"

// What holds nodes, as the deck gives it: conditions within steps.
class inpS_BoundaryVisitor : public inpS_FormVisitor {
public:
  inpS_BoundaryVisitor(KvoObjLabeler& nodes, KvoObjLabeler& elements,
                       const inpS_Inventory& inventory, inpS_Ledger& ledger)
      : inpS_FormVisitor(inpS_Phase::Boundaries, nodes, elements, inventory, ledger) {}

  // Where conditions of nodes are given; lives longer than this.
  void SetPlaces(inpS_DuplicateReport& places) { m_places = &places; }

protected:
  void Converted(const inp_Keyword& keyword, const inpS_Form& form,
                 const KvoSimPosition& record) override {
    if (m_places && keyword.Kind() == inp_KwBoundary) m_places->Add(record, keyword);
    inpS_FormVisitor::Converted(keyword, form, record);
  }

private:
  inpS_DuplicateReport* m_places = nullptr;
};
