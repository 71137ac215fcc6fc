// What holds behaviours, materials and gasket behaviours, and the constants of the model.

#include "database/KvoObjModel.h"
#include "database/KvoSimDataRecord.h"
#include "database/schema/eds_FormKind.h"
#include "inpS/keywords/inpS_KeptParts.h"
#include "inpS/keywords/inpS_RecordParameters.h"
#include "inpS/materials/inpS_MaterialVisitor.h"
#include "parser/inp_Utils.h"

// A record under the keyword's name in a map of the model; null, with a message, when it has that
// name already.
KvoSimPosition inpS_MaterialVisitor::OpenNamed(const inp_Keyword& keyword, eds_RecordKind kind,
                                               eds_Member member) {
  const inp_Item* name = keyword.Find("name");
  if (!name || name->AsString().empty()) {
    TellOfNoName(keyword);
    return {};
  }
  const KvoSimPosition model = m_document.GetModel().Position();
  if (!model.FollowStringKey(member, name->AsString()).IsNull()) {
    const char* text = kind == eds_RecordKind::Material
                           ? "Material with name \"%s\" has already been defined"
                           : "Gasket behavior with name \"%s\" has already been defined";
    Error(keyword, inp_Utils::Format(text, name->AsString().c_str()));
    LeaveOut("material keyword");
    return {};
  }
  KvoSimTransaction transaction(m_document.ContextID());
  const KvoSimPosition opened = model.CreateDataRecord(kind);
  KvoSimDataRecord record = opened.DataRecord();
  record.SetString(0, name->AsString());
  model.AssociateStringKey(member, name->AsString(), opened);
  if (kind == eds_RecordKind::Material)
    CreateMaterialRegularization(keyword, opened);
  else
    inpS_readParameters(keyword, inpS_bindParameters(keyword.Kind(), kind), record, *this);
  KeepParts(keyword, opened, {0, {}, inpS_takeUnusedLines(keyword, *this)});
  transaction.Commit();
  return opened;
}

// How tables that depend on rates are regularized, and how they go on beyond their ends: the
// parameters of *MATERIAL as they are given.
void inpS_MaterialVisitor::CreateMaterialRegularization(const inp_Keyword& keyword,
                                                        const KvoSimPosition& material) {
  inpS_readParameters(keyword, inpS_bindParameters(keyword.Kind(), eds_RecordKind::Material),
                      material.DataRecord(), *this);
}

// Without a name nothing is opened: what follows belongs to the one before it.
void inpS_MaterialVisitor::TellOfNoName(const inp_Keyword& keyword) {
  const bool isMaterial = keyword.Kind() == inp_KwMaterial;
  const cow_String kind = isMaterial ? "material" : "gasket behavior";
  const bool isFirst = (isMaterial ? m_material : m_gasket).IsNull();
  Warning(keyword, "*" + keyword.Name() + " has no name and opens nothing; " +
                       (isFirst ? "no " + kind + " is before it that could take what follows."
                                : "what follows is taken for the " + kind + " before it."));
}

void inpS_MaterialVisitor::Settle(const inp_Keyword& keyword, const KvoSimPosition& opened) {
  if (opened.IsNull()) return m_ledger.LeaveOut(keyword);
  m_ledger.Take(keyword, opened);
}

void inpS_MaterialVisitor::VisitMaterial(const inp_Keyword& keyword) {
  const KvoSimPosition opened = OpenNamed(keyword, eds_RecordKind::Material, eds_Member::Materials);
  if (!opened.IsNull()) m_material = opened;
  m_owner = m_material;
  Settle(keyword, opened);
}

void inpS_MaterialVisitor::VisitGasketBehavior(const inp_Keyword& keyword) {
  const KvoSimPosition opened =
      OpenNamed(keyword, eds_FormKind::GasketBehavior, eds_Member::GasketBehaviors);
  if (!opened.IsNull()) m_gasket = opened;
  m_owner = m_gasket;
  Settle(keyword, opened);
}

// There is one set of constants, written as one keyword: of each the first value holds.
void inpS_MaterialVisitor::VisitPhysicalConstants(const inp_Keyword& keyword) {
  KvoSimTransaction transaction(m_document.ContextID());
  const KvoSimPosition model = m_document.GetModel().Position();
  KvoSimPosition constants = model.Follow(eds_Member::PhysicalConstants);
  if (constants.IsNull()) {
    constants = model.CreateDataRecord(eds_FormKind::PhysicalConstants);
    model.SetPosition(eds_Member::PhysicalConstants, constants);
  }
  m_ledger.Take(keyword, constants);
  const int field = eds_formOf(eds_FormKind::PhysicalConstants)->othersField;
  const cow_String former = constants.DataRecord().ReturnString(field);
  inpS_ParameterBindings fresh;
  for (const auto& binding : inpS_bindParameters(keyword.Kind(), eds_FormKind::PhysicalConstants)) {
    const inp_Item* item = keyword.Find(binding.key);
    if (!item) continue;
    const KvoSimDataRecord record = constants.DataRecord();
    if (inpS_holdsParameter(former, binding.name))
      keyword.LeaveUnread(binding.key);
    else if (record.IsMemberNull(binding.field))
      fresh.push_back(binding);
    else if (!item->IsNumber() || item->AsDouble() != record.GetDouble(binding.field))
      inpS_tellRepeated(keyword, binding.key, *this);
  }
  inpS_readParameters(keyword, fresh, constants.DataRecord(), *this);
  if (const cow_String lines = inpS_takeUnusedLines(keyword, *this); !lines.empty()) {
    m_constantsLines += lines; // one keyword is written for all
    if (m_constantsPart.IsNull())
      m_constantsPart = inpS_keepPart(constants, {0, {}, m_constantsLines});
    else
      m_constantsPart.DataRecord().SetString(eds_KeptPart_Lines, m_constantsLines);
  }
  inpS_dropRepeated(keyword, former, *this);
  TellUnknown(keyword);
  if (const cow_String others = inpS_takeOtherParameters(keyword); !others.empty()) {
    constants.DataRecord().SetString(field, former + others);
  }
  transaction.Commit();
}
