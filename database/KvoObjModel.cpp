#include "database/KvoObjModel.h"

KvoObjMesh KvoObjModel::GetMesh() const {
  return KvoObjMesh(m_position.Follow(eds_Member::Mesh));
}

void KvoObjModel::SetMesh(const KvoObjMesh& mesh) {
  m_position.SetPosition(eds_Member::Mesh, mesh.Position());
}

cow_Map<cow_String, KvoSimPosition> KvoObjModel::RetrieveOccurences() const {
  return m_position.GetMap(eds_Member::Occurrences);
}

std::vector<KvoSimPosition> KvoObjModel::Occurences() const {
  return m_position.FollowMap(eds_Member::Occurrences);
}

void KvoObjModel::AppendOccurence(const cow_String& name, const KvoSimPosition& instance) {
  m_position.AssociateStringKey(eds_Member::Occurrences, name, instance);
}

KvoSimPosition KvoObjModel::GetOccurence(const cow_String& name) const {
  return m_position.FollowStringKey(eds_Member::Occurrences, name);
}

std::vector<KvoSimPosition> KvoObjModel::Parts() const {
  return m_position.FollowMap(eds_Member::Parts);
}

void KvoObjModel::AppendPart(const cow_String& name, const KvoSimPosition& part) {
  m_position.AssociateStringKey(eds_Member::Parts, name, part);
}

KvoSimPosition KvoObjModel::GetPart(const cow_String& name) const {
  return m_position.FollowStringKey(eds_Member::Parts, name);
}

KvoSimPosition KvoObjModel::GetAssembly() const {
  return m_position.Follow(eds_Member::Assembly);
}

void KvoObjModel::SetAssembly(const KvoSimPosition& assembly) {
  m_position.SetPosition(eds_Member::Assembly, assembly);
}

KvoObjField KvoObjModel::GetField(const cow_String& name) const {
  for (const KvoObjField& field : GetFields())
    if (field.Name() == name) return field;
  return {};
}

std::vector<KvoObjField> KvoObjModel::GetFields() const {
  std::vector<KvoObjField> fields;
  for (const KvoSimPosition& position : m_position.GetVector(eds_Member::Fields))
    fields.emplace_back(position);
  return fields;
}

void KvoObjModel::AppendField(const KvoObjField& field) {
  m_position.Associate(eds_Member::Fields, field.Position());
}

KvoObjField KvoObjModel::GetNodalThicknessField() const {
  return KvoObjField(m_position.Follow(eds_Member::NodalThicknessField));
}

void KvoObjModel::SetNodalThicknessField(const KvoObjField& field) {
  m_position.SetPosition(eds_Member::NodalThicknessField, field.Position());
}

std::vector<KvoSimPosition> KvoObjModel::GetRegions() const {
  return m_position.FollowMap(eds_Member::Regions);
}

KvoSimCollection KvoObjModel::GetRegionCollection() const {
  return m_position.GetCollection(eds_Member::RegionCollection);
}

KvoSimCollection KvoObjModel::GetCouplingConstraintCollection() const {
  return m_position.GetCollection(eds_Member::CouplingConstraintCollection);
}

void KvoObjModel::SetCouplingConstraintCollection(const KvoSimCollection& collection) {
  m_position.SetPosition(eds_Member::CouplingConstraintCollection, collection.Position());
}
