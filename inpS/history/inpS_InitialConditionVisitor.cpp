#include "inpS/history/inpS_InitialConditionVisitor.h"
#include "inpS/history/inpS_NodalLines.h"

bool inpS_InitialConditionVisitor::ReadColumns(const inp_Keyword& keyword, const eds_FormInfo& form,
                                               const KvoSimPosition& record) {
  if (keyword.Kind() == inp_KwBoundary)
    return inpS_BoundaryLines(keyword, false).Read(form, record, Names(), *this);
  return inpS_FormVisitor::ReadColumns(keyword, form, record);
}
