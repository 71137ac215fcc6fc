#pragma once

#include "inpS/forms/inpS_FormVisitor.h"
#include "inpS/history/inpS_FluidSteps.h"
#include "inpS/history/inpS_LoadedElements.h"
#include <optional>

// What acts on the model within steps, as the deck gives it.
class inpS_LoadVisitor : public inpS_FormVisitor {
public:
  inpS_LoadVisitor(KvoObjLabeler& nodes, KvoObjLabeler& elements, const inpS_Inventory& inventory,
                   inpS_Ledger& ledger);

  void VisitFilmProperty(const inp_Keyword& keyword) override;

protected:
  bool MayConvert(const inp_Keyword& keyword, const inpS_Form& form) override;
  bool IsErrorToLack(inp_KeywordEnm kind) const override;
  bool ReadColumns(const inp_Keyword& keyword, const eds_FormInfo& form,
                   const KvoSimPosition& record) override;

private:
  void CheckRelief(const inp_Keyword& keyword);
  void CheckFilmProperties(const inp_Keyword& keyword, const eds_FormInfo& form,
                           const KvoSimPosition& record);

  cow_List<cow_String> m_filmProperties;
  inpS_FluidSteps m_fluidSteps;
  std::optional<inpS_LoadedElements> m_elements; // once a load of elements is met
};
