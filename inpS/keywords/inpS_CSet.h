#pragma once

#include "base/aio_ostream.h"
#include "base/cow_Value.h"
#include "database/KvoSimCSet.h"

class inpS_ArrayInt;
class inpS_Collection;

// A handle on one component set of the database. Sets made from a collection are stored in it.
class inpS_CSet {
public:
  explicit inpS_CSet(const KvoSimCSetID& id);
  explicit inpS_CSet(const KvoSimCSet& set) : m_set(set) {}
  inpS_CSet(const inpS_Collection& collection, const cow_List<int>& members); // in this order
  inpS_CSet(const inpS_Collection& collection, int first, int count);
  inpS_CSet(const inpS_Collection& collection, const inpS_CSet& other); // the same members

  long long Size() const { return m_set.Size(); }
  KvoSimCSetID ID() const { return m_set.ID(); } // null while it is not stored
  const KvoSimCSet& Set() const { return m_set; }

  void GetMembers(cow_List<int>& members) const; // in the set's order
  void GetMembers(inpS_ArrayInt& members) const;
  // The members in one piece; valid as long as this handle.
  const int* GetMembersPtr() const;

  // Of one collection; ascending, and not stored until asked for their extension's ID.
  inpS_CSet Union(const inpS_CSet& other) const;
  inpS_CSet Intersection(const inpS_CSet& other) const;
  // The stored set of these members and the other's: this one when the other adds none.
  KvoSimCSetID GetExtensionSetID(const inpS_CSet& other) const;

  void Print(aio_ostream& out, const cow_String& title) const;

private:
  KvoSimCSet m_set;
  mutable cow_List<int> m_members; // made by GetMembersPtr
};
