#pragma once

#include "database/schema/eds_FormKind.h"
#include "inpS/forms/inpS_FormVisitor.h"
#include "inpS/history/inpS_DuplicateReport.h"
#include "parser/inp_Utils.h"
#include <optional>

// The initial conditions phase, with the boundary conditions of the model.
class inpS_InitialConditionVisitor : public inpS_FormVisitor {
public:
  inpS_InitialConditionVisitor(KvoObjLabeler& nodes, KvoObjLabeler& elements,
                               const inpS_Inventory& inventory, inpS_Ledger& ledger)
      : inpS_FormVisitor(inpS_Phase::InitialConditions, nodes, elements, inventory, ledger) {}

  // Where conditions of nodes outside the steps are given; lives longer than this.
  void SetPlaces(inpS_DuplicateReport& places) { m_places = &places; }

protected:
  // What the analysis would begin without.
  bool IsErrorToLack(inp_KeywordEnm) const override { return true; }
  const inpS_Form* Choose(const inp_Keyword& keyword, const inp_Keyword* parent) override;
  bool MayConvert(const inp_Keyword& keyword, const inpS_Form& form) override;
  bool MayLack(const inpS_Form& form, const eds_FormItem& item) const override;
  bool ReadColumns(const inp_Keyword& keyword, const eds_FormInfo& form,
                   const KvoSimPosition& record) override;
  cow_String FaultOfLine(const KvoSimPosition& line) override;
  void Converted(const inp_Keyword& keyword, const inpS_Form& form,
                 const KvoSimPosition& record) override {
    if (m_places && keyword.Kind() == inp_KwBoundary)
      m_places->Add(record, keyword, std::exchange(m_refused, {}));
    CheckNames(keyword, record);
    inpS_FormVisitor::Converted(keyword, form, record);
  }

private:
  cow_String FaultOfAxis(const KvoSimPosition& line) const;
  bool HasBackStresses(const inp_Keyword& keyword);
  void CheckNames(const inp_Keyword& keyword, const KvoSimPosition& record);
  long long StateVariables();

  inpS_DuplicateReport* m_places = nullptr;
  std::optional<long long> m_stateVariables;
  cow_List<long long> m_refused; // of the condition at hand: its lines that are no rows
};
