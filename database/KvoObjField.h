#pragma once

#include "database/KvoSimDistribution.h"
#include "database/KvoSimPosition.h"

// What a field is laid over; the numbers are those of the vocabulary.
enum class KvoGridType { None, Node, Element, ElementNode, ElementFace, WholeModel };

// A named quantity with data over parts of the model.
class KvoObjField {
public:
  KvoObjField() = default;
  explicit KvoObjField(const KvoSimPosition& position) : m_position(position) {}

  // Creates the field's record.
  void Register(const KvoSimContext& context, const cow_String& name, const cow_String& quantity);
  bool IsNull() const { return m_position.IsNull(); }
  const KvoSimPosition& Position() const { return m_position; }
  cow_String Name() const;
  cow_String Quantity() const;
  void SetGridType(KvoGridType type);
  KvoGridType GetGridType() const;

  void AddData(const KvoSimDistribution& distribution);
  std::vector<KvoSimDistribution> GetData() const;
  KvoSimDistribution GetDistribution(int index = 0) const; // null when there is none

protected:
  void RegisterAs(eds_RecordKind kind, const KvoSimContext& context, const cow_String& name,
                  const cow_String& quantity);
  KvoSimPosition m_position;
};
