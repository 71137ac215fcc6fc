#pragma once

#include "database/KvoSimCollection.h"
#include "database/eds_Type.h"

// The collections over which values are laid, first the one that distinguishes items.
class KvoSimGrid {
public:
  KvoSimGrid() = default;
  KvoSimGrid(std::initializer_list<KvoSimCollection> collections) : m_collections(collections) {}
  explicit KvoSimGrid(std::vector<KvoSimCollection> collections)
      : m_collections(std::move(collections)) {}

  int NumDimensions() const { return static_cast<int>(m_collections.size()); }
  const std::vector<KvoSimCollection>& Collections() const { return m_collections; }
  KvoSimCollection operator[](int i) const { return m_collections[static_cast<size_t>(i)]; }
  bool IsNull() const { return m_collections.empty(); }

private:
  std::vector<KvoSimCollection> m_collections;
};

// The type of the values and how many of them each item of the grid has.
class KvoSimRangeType {
public:
  KvoSimRangeType() = default;
  KvoSimRangeType(eds_ValueType type, int values) : m_type(type), m_values(values) {}
  eds_ValueType ValueType() const { return m_type; }
  int NumValues() const { return m_values; }
  int64_t ItemSize() const { return eds_sizeOf(m_type) * m_values; }

private:
  eds_ValueType m_type = eds_ValueType::Double;
  int m_values = 1;
};
