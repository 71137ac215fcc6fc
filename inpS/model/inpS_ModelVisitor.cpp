#include "inpS/model/inpS_ModelVisitor.h"
#include "database/KvoObjDocument.h"
#include "database/KvoObjModel.h"
#include "database/KvoSimDataRecord.h"
#include "database/KvoSimTransaction.h"
#include "inpS/messages/inpS_LocatedText.h"

void inpS_ModelVisitor::VisitHeading(const inp_Keyword& keyword) {
  if (keyword.IsInstanceCopy() || keyword.Scope().kind == inp_Scope::Kind::Step) return;
  if (m_hasHeading)
    Warning(keyword, "A deck has one heading; this one takes the place of the first.");
  m_hasHeading = true;
}

void inpS_ModelVisitor::VisitPart(const inp_Keyword& keyword) {
  const inp_Item* name = keyword.Find("name");
  if (!name || name->AsString().empty()) {
    Error(keyword, inpS_messageText(inpS_model_PartNameMissing));
    return;
  }
  const KvoObjDocument& document = m_inventory.GetDocument();
  const KvoSimPosition model = document.GetModel().Position();
  if (!model.FollowStringKey(eds_Member::Parts, name->AsString()).IsNull()) {
    Error(keyword, inpS_messageText(inpS_model_PartNameTaken, {name->AsString()}));
    return;
  }
  KvoSimTransaction transaction(document.ContextID());
  const KvoSimPosition part = model.CreateDataRecord(eds_RecordKind::Part);
  part.DataRecord().SetString(eds_Part_Name, name->AsString());
  model.AssociateStringKey(eds_Member::Parts, name->AsString(), part);
  transaction.Commit();
}
