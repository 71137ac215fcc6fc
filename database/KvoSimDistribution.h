#pragma once

#include "database/KvoSimGrid.h"
#include "database/eds_Array.h"

// Values laid over a grid. They lie in drawers: each holds the values of a component set of the
// grid's first collection, one item per member, in one array.
class KvoSimDistribution {
public:
  KvoSimDistribution() = default;
  KvoSimDistribution(eds_Store* store, int64_t id) : m_store(store), m_id(id) {}

  bool IsNull() const { return m_id == 0; }
  bool IsEmpty() const { return NumDrawers() == 0; }
  int64_t ID() const { return m_id; }
  int64_t GetTableID() const { return m_id; }
  eds_Store* Store() const { return m_store; }
  KvoSimPosition Position() const;
  KvoSimGrid Grid() const;
  KvoSimRangeType RangeType() const;
  int NumDimensions() const;

  int64_t NumDrawers() const;
  std::vector<int64_t> DrawerIDArray() const;
  // The drawers that hold any member of the set.
  std::vector<int64_t> QueryDrawers(const KvoSimCSet& over) const;
  KvoSimCSet DrawerCSet(int64_t drawer) const;
  eds_ArrayID DrawerArray(int64_t drawer) const;
  // A drawer on an array that exists: instances refer to what their part has written.
  int64_t AddDrawer(const KvoSimCSetID& over, const eds_ArrayID& array);

private:
  eds_Store* m_store = nullptr;
  int64_t m_id = 0;
};

// Distributions over one grid under one name.
class KvoSimDSet {
public:
  KvoSimDSet() = default;
  KvoSimDSet(eds_Store* store, int64_t id) : m_store(store), m_id(id) {}

  bool IsNull() const { return m_id == 0; }
  bool IsEmpty() const { return Representation().empty(); }
  int64_t ID() const { return m_id; }
  int64_t GetTableID() const { return m_id; }
  KvoSimPosition Position() const;
  KvoSimGrid Grid() const;

  void Collect(const KvoSimDistribution& distribution); // adds it
  std::vector<KvoSimDistribution> Representation() const;
  // The distributions that hold any member of the set.
  std::vector<KvoSimDistribution> Select(const KvoSimCSet& over) const;

private:
  eds_Store* m_store = nullptr;
  int64_t m_id = 0;
};
