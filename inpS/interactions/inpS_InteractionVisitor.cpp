#include "inpS/interactions/inpS_InteractionVisitor.h"
#include "inpS/forms/inpS_ColumnReader.h"
#include "inpS/history/inpS_ConditionParameters.h"
#include "inpS/history/inpS_ExcitationKind.h"
#include "inpS/history/inpS_LoadLines.h"

bool inpS_InteractionVisitor::MayConvert(const inp_Keyword& keyword, const inpS_Form& form) {
  if (inpS_ExcitationKind::Of(form.kind))
    inpS_checkConditionParameters(keyword, form, Names(), *this);
  return true;
}

bool inpS_InteractionVisitor::ReadColumns(const inp_Keyword& keyword, const eds_FormInfo& form,
                                          const KvoSimPosition& record) {
  if (!inpS_hasLoadLabels(keyword.Kind()))
    return inpS_FormVisitor::ReadColumns(keyword, form, record);
  if (!m_elements) m_elements.emplace(Inventory().GetDocument());
  inpS_LoadLines lines(keyword, record, Inventory().NumberSpatialDimensions(), *m_elements);
  return inpS_ColumnReader(keyword, form, record, Names(), *this, &lines).Read();
}
