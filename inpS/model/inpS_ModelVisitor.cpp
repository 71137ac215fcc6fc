#include "inpS/model/inpS_ModelVisitor.h"
#include "database/KvoObjDocument.h"
#include "database/KvoObjModel.h"
#include "database/KvoSimDataRecord.h"
#include "database/KvoSimTransaction.h"
#include "inpS/keywords/inpS_KeptParts.h"
#include "inpS/messages/inpS_LocatedText.h"

void inpS_ModelVisitor::VisitHeading(const inp_Keyword& keyword) {
  if (keyword.IsInstanceCopy() || keyword.Scope().kind == inp_Scope::Kind::Step) return;
  if (m_hasHeading)
    Warning(keyword, "A deck has one heading; this one takes the place of the first.");
  m_hasHeading = true;
  m_ledger.Take(keyword);
  inpS_tellControls(keyword, *this);
  inpS_tellOtherParameters(keyword, *this);
  const cow_String parameters = inpS_takeOtherParameters(keyword);
  if (parameters.empty() && m_headingPart.IsNull()) return;
  const KvoObjDocument& document = m_inventory.GetDocument();
  KvoSimTransaction transaction(document.ContextID());
  if (m_headingPart.IsNull())
    m_headingPart = inpS_keepPart(document.GetModel().Position(), {0, parameters, {}});
  else
    m_headingPart.DataRecord().SetString(eds_KeptPart_Parameters, parameters);
  transaction.Commit();
}

void inpS_ModelVisitor::VisitPart(const inp_Keyword& keyword) {
  m_part = {};
  const inp_Item* name = keyword.Find("name");
  if (!name || name->AsString().empty()) {
    Error(keyword, inpS_messageText(inpS_model_PartNameMissing));
    m_ledger.LeaveOut(keyword);
    return LeaveOut("part");
  }
  const KvoObjDocument& document = m_inventory.GetDocument();
  const KvoSimPosition model = document.GetModel().Position();
  if (!model.FollowStringKey(eds_Member::Parts, name->AsString()).IsNull()) {
    Error(keyword, inpS_messageText(inpS_model_PartNameTaken, {name->AsString()}));
    m_ledger.LeaveOut(keyword);
    return LeaveOut("part");
  }
  KvoSimTransaction transaction(document.ContextID());
  const KvoSimPosition part = model.CreateDataRecord(eds_RecordKind::Part);
  part.DataRecord().SetString(eds_Part_Name, name->AsString());
  model.AssociateStringKey(eds_Member::Parts, name->AsString(), part);
  inpS_keepUnused(keyword, part, *this);
  m_ledger.Take(keyword, part);
  transaction.Commit();
  m_part = part;
}

void inpS_ModelVisitor::VisitEndPart(const inp_Keyword& keyword) {
  if (m_part.IsNull()) return m_ledger.LeaveOut(keyword); // refused
  KvoSimTransaction transaction(m_inventory.GetDocument().ContextID());
  inpS_keepUnused(keyword, m_part, *this, inpS_closingRow);
  m_ledger.Take(keyword);
  transaction.Commit();
  m_part = {};
}
