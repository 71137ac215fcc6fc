#include "database/KvoObjField.h"
#include "database/KvoObjMeshedField.h"

// Fields and meshed fields number their fields alike.
static_assert(eds_Field_Name == int(eds_MeshedField_Name));
static_assert(eds_Field_Quantity == int(eds_MeshedField_Quantity));
static_assert(eds_Field_GridType == int(eds_MeshedField_GridType));

void KvoObjField::RegisterAs(eds_RecordKind kind, const KvoSimContext& context,
                             const cow_String& name, const cow_String& quantity) {
  m_position = KvoSimPosition(context).CreateDataRecord(kind);
  m_position.DataRecord().SetString(eds_Field_Name, name);
  m_position.DataRecord().SetString(eds_Field_Quantity, quantity);
}

void KvoObjField::Register(const KvoSimContext& context, const cow_String& name,
                           const cow_String& quantity) {
  RegisterAs(eds_RecordKind::Field, context, name, quantity);
}

void KvoObjMeshedField::Register(const KvoSimContext& context, const cow_String& name,
                                 const cow_String& quantity, KvoGridType type) {
  RegisterAs(eds_RecordKind::MeshedField, context, name, quantity);
  SetGridType(type);
}

cow_String KvoObjField::Name() const {
  return m_position.DataRecord().ReturnString(eds_Field_Name);
}

cow_String KvoObjField::Quantity() const {
  return m_position.DataRecord().ReturnString(eds_Field_Quantity);
}

void KvoObjField::SetGridType(KvoGridType type) {
  m_position.DataRecord().SetSymb(eds_Field_GridType, static_cast<int>(type));
}

KvoGridType KvoObjField::GetGridType() const {
  return static_cast<KvoGridType>(m_position.DataRecord().GetSymb(eds_Field_GridType));
}

void KvoObjField::AddData(const KvoSimDistribution& distribution) {
  m_position.Associate(eds_Member::Data, distribution.Position());
}

std::vector<KvoSimDistribution> KvoObjField::GetData() const {
  std::vector<KvoSimDistribution> data;
  for (const KvoSimPosition& position : m_position.GetVector(eds_Member::Data))
    data.push_back(position.AsDistribution());
  return data;
}

KvoSimDistribution KvoObjField::GetDistribution(int index) const {
  return m_position.FollowList(eds_Member::Data, index).AsDistribution();
}
