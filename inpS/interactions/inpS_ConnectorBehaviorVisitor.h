#pragma once

#include "inpS/forms/inpS_FormVisitor.h"

// The connector behaviours phase: each becomes a record by its forms, what stands under it records
// of that one. What those cannot say: which values a row has that depend on the components of the
// lines before.
class inpS_ConnectorBehaviorVisitor : public inpS_FormVisitor {
public:
  inpS_ConnectorBehaviorVisitor(KvoObjLabeler& nodes, KvoObjLabeler& elements,
                                const inpS_Inventory& inventory, inpS_Ledger& ledger)
      : inpS_FormVisitor(inpS_Phase::ConnectorBehaviors, nodes, elements, inventory, ledger) {}

  void VisitList(inp_KeywordListRef keywords) override; // none, and nothing is walked

protected:
  cow_List<inpS_TableColumns::Column> ColumnsOf(const inp_Keyword& keyword,
                                                const inpS_Form& form) override;
  cow_String FaultOfLine(const KvoSimPosition& line) override;
  void Converted(const inp_Keyword& keyword, const inpS_Form& form,
                 const KvoSimPosition& record) override;
};
