#pragma once

#include "inpS/forms/inpS_FormVisitor.h"
#include "inpS/history/inpS_LoadedElements.h"
#include <optional>

// The interactions phase: impedances and incident waves. What has no form yet is kept as text.
class inpS_InteractionVisitor : public inpS_FormVisitor {
public:
  inpS_InteractionVisitor(KvoObjLabeler& nodes, KvoObjLabeler& elements,
                          const inpS_Inventory& inventory, inpS_Ledger& ledger)
      : inpS_FormVisitor(inpS_Phase::Interactions, nodes, elements, inventory, ledger) {}

protected:
  // Conditions that the analysis would go without.
  bool IsErrorToLack(inp_KeywordEnm) const override { return true; }
  bool MayConvert(const inp_Keyword& keyword, const inpS_Form& form) override;
  bool ReadColumns(const inp_Keyword& keyword, const eds_FormInfo& form,
                   const KvoSimPosition& record) override;

private:
  std::optional<inpS_LoadedElements> m_elements; // once an impedance of elements is met
};
