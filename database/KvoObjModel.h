#pragma once

#include "database/KvoObjMesh.h"
#include "database/KvoObjMeshedField.h"
#include "database/KvoSimPosition.h"

// The model: owner of the mesh, the fields, the parts and their occurrences (instances), the
// regions.
class KvoObjModel {
public:
  KvoObjModel() = default;
  explicit KvoObjModel(const KvoSimPosition& position) : m_position(position) {}

  bool IsNull() const { return m_position.IsNull(); }
  const KvoSimPosition& Position() const { return m_position; }
  KvoSimDataRecord DataRecord() const { return m_position.DataRecord(); }

  KvoObjMesh GetMesh() const;
  void SetMesh(const KvoObjMesh& mesh);

  // Occurrences by name; the list keeps the order in which they were appended.
  cow_Map<cow_String, KvoSimPosition> RetrieveOccurences() const;
  std::vector<KvoSimPosition> Occurences() const;
  void AppendOccurence(const cow_String& name, const KvoSimPosition& instance);
  KvoSimPosition GetOccurence(const cow_String& name) const;

  std::vector<KvoSimPosition> Parts() const;
  void AppendPart(const cow_String& name, const KvoSimPosition& part);
  KvoSimPosition GetPart(const cow_String& name) const;
  KvoSimPosition GetAssembly() const;
  void SetAssembly(const KvoSimPosition& assembly);

  KvoObjField GetField(const cow_String& name) const; // null when there is none
  std::vector<KvoObjField> GetFields() const;
  void AppendField(const KvoObjField& field);
  KvoObjField GetNodalThicknessField() const;
  void SetNodalThicknessField(const KvoObjField& field);

  std::vector<KvoSimPosition> GetRegions() const;
  KvoSimCollection GetRegionCollection() const;
  KvoSimCollection GetCouplingConstraintCollection() const;
  void SetCouplingConstraintCollection(const KvoSimCollection& collection);

private:
  KvoSimPosition m_position;
};
