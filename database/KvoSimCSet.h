#pragma once

#include "database/KvoSimContext.h"
#include "database/eds_MemberSet.h"
#include <memory>

// Names a stored component set. Negative numbers are temporary: they live as long as the document
// is open and are never written.
class KvoSimCSetID {
public:
  KvoSimCSetID() = default;
  KvoSimCSetID(eds_Store* store, int64_t number) : m_store(store), m_number(number) {}
  bool IsNull() const { return m_number == 0; }
  int64_t Number() const { return m_number; }
  eds_Store* Store() const { return m_store; }
  int64_t CollectionID() const;
  friend bool operator==(const KvoSimCSetID&, const KvoSimCSetID&) = default;

private:
  eds_Store* m_store = nullptr;
  int64_t m_number = 0;
};

// An ordered or ascending set of members of one collection, as a value; large lists are shared, not
// copied, and read from the file when first asked for.
class KvoSimCSet {
public:
  KvoSimCSet() = default;
  explicit KvoSimCSet(const KvoSimCSetID& id);
  KvoSimCSet(const KvoSimCollection& collection, eds_MemberSet members);
  KvoSimCSet(const KvoSimCollection& collection, int32_t first, int64_t count, int32_t stride = 1);

  bool IsNull() const { return m_members == nullptr; }
  KvoSimCSetID ID() const { return m_id; } // null until registered
  int64_t CollectionID() const { return m_collection; }
  KvoSimPosition Position() const; // the stored set

  const eds_MemberSet& Set() const&; // lives as long as this does
  eds_MemberSet Set() const&&;       // a copy, of one that does not last
  int64_t Size() const { return Set().Size(); }
  bool IsEmpty() const { return Size() == 0; }
  bool IsMember(int32_t member) const { return Set().IsMember(member); }
  bool IsAscending() const { return Set().IsAscending(); }
  std::vector<int32_t> Members() const;                                   // ascending
  std::vector<int32_t> OrderedMembers() const { return Set().Members(); } // as given
  KvoSimCSet Union(const KvoSimCSet& other) const;                        // of one collection
  KvoSimCSet Intersection(const KvoSimCSet& other) const;                 // of one collection
  bool SameSet(const KvoSimCSet& other) const;
  bool SameMembers(const KvoSimCSet& other) const;
  KvoSimCSet AscendingSet() const;
  KvoSimCSetID AscendingID() const; // registers the ascending form when this is not it
  std::vector<bool> AsBitVector() const;

  // Stores the set under a new number.
  KvoSimCSetID NewID();
  KvoSimCSetID RegisterWithCollection() { return NewID(); }
  KvoSimCSetID RegisterWithTempCollection();

private:
  friend class KvoSimCollection;
  eds_Store* m_store = nullptr;
  int64_t m_collection = 0;
  KvoSimCSetID m_id;
  std::shared_ptr<const eds_MemberSet> m_members;
};
