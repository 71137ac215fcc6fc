#include "inpS/properties/inpS_DistributionTableVisitor.h"
#include "database/KvoSimDataRecord.h"
#include "inpS/properties/inpS_DistributionTable.h"

void inpS_DistributionTableVisitor::Visit(const inp_Keyword& keyword) {
  if (keyword.Kind() == inp_KwDistribution)
    inpS_SetVisitor::Visit(keyword);
  else
    inpS_FormVisitor::Visit(keyword);
}

void inpS_DistributionTableVisitor::Converted(const inp_Keyword&, const inpS_Form& form,
                                              const KvoSimPosition& record) {
  record.DataRecord().SetInt(eds_formField(form.kind, "components"),
                             inpS_DistributionTable(record).TotalNumComponents());
}
