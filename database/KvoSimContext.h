#pragma once

#include "base/cow_Value.h"
#include "database/eds_Type.h"
#include <vector>

class eds_Store;
class KvoSimPosition;
class KvoSimDataRecord;
class KvoSimCollection;
class KvoSimCSetID;
class KvoSimCSet;
class KvoSimDSet;
class KvoSimDistribution;
class KvoSimGrid;
class KvoSimRangeType;

// Names one open store. Valid while a document on it is open.
struct KvoSimContextID {
  eds_Store* store = nullptr;
  bool IsNull() const { return store == nullptr; }
  friend bool operator==(const KvoSimContextID&, const KvoSimContextID&) = default;
};

// The store's unit of access: a light handle, copied freely. Like every handle of the store it does
// not keep the document open.
class KvoSimContext {
public:
  KvoSimContext() = default;
  explicit KvoSimContext(KvoSimContextID id) : m_store(id.store) {}

  KvoSimContextID ID() const { return {m_store}; }
  bool IsNull() const { return m_store == nullptr; }
  bool IsReadOnly() const;

  // The version of the schema this file was written with.
  int Schema() const;

  KvoSimCollection CreateCollection(eds_TypeID type, const cow_String& name = {}) const;
  KvoSimDSet CreateDSet(eds_TypeID type, const KvoSimGrid& grid) const;
  // Replaces the grid of a data set.
  void UpdateDSet(const KvoSimDSet& dset, const KvoSimGrid& grid) const;
  KvoSimDistribution CreateDistribution(eds_TypeID type, const KvoSimGrid& grid,
                                        const KvoSimRangeType& range) const;

  KvoSimDataRecord GetRecord(eds_TypeID kind, int64_t id) const; // null when there is none
  std::vector<KvoSimPosition> GetRecords(eds_TypeID kind) const; // in creation order
  int64_t GetCollectionID(const KvoSimCSetID& cset) const;
  // The index of a record or symbol in its collection, -1 when it is no member.
  int32_t GetCMemberIndex(const KvoSimCollection& collection, const KvoSimPosition& member) const;
  KvoSimCSet GetCMembership(const KvoSimCSetID& cset) const;

  // Makes everything committed so far physical.
  void Save() const;

private:
  eds_Store* m_store = nullptr;
};
