#include "inpS/keywords/inpS_CSet.h"
#include "inpS/keywords/inpS_ArrayInt.h"
#include "inpS/keywords/inpS_Collection.h"
#include <ostream>

namespace {

KvoSimCSet ordered(const inpS_Collection& collection, const cow_List<int>& members) {
  KvoSimCollection target = collection.Collection();
  return target.CreateOrderedCSet(members);
}

KvoSimCSet strided(const inpS_Collection& collection, int first, int count) {
  KvoSimCollection target = collection.Collection();
  return target.CreateCSetStrided(first, count);
}

KvoSimCSet copied(const inpS_Collection& collection, const inpS_CSet& other) {
  KvoSimCollection target = collection.Collection();
  return target.CreateCSet(other.Set().Set());
}

} // namespace

inpS_CSet::inpS_CSet(const KvoSimCSetID& id) : m_set(id) {}

inpS_CSet::inpS_CSet(const inpS_Collection& collection, const cow_List<int>& members)
    : m_set(ordered(collection, members)) {}

inpS_CSet::inpS_CSet(const inpS_Collection& collection, int first, int count)
    : m_set(strided(collection, first, count)) {}

inpS_CSet::inpS_CSet(const inpS_Collection& collection, const inpS_CSet& other)
    : m_set(copied(collection, other)) {}

void inpS_CSet::GetMembers(cow_List<int>& members) const {
  members = m_set.OrderedMembers();
}

void inpS_CSet::GetMembers(inpS_ArrayInt& members) const {
  members = inpS_ArrayInt(m_set, static_cast<int>(Size()));
}

const int* inpS_CSet::GetMembersPtr() const {
  if (m_members.empty()) GetMembers(m_members);
  return m_members.data();
}

inpS_CSet inpS_CSet::Union(const inpS_CSet& other) const {
  return inpS_CSet(m_set.Union(other.m_set));
}

inpS_CSet inpS_CSet::Intersection(const inpS_CSet& other) const {
  return inpS_CSet(m_set.Intersection(other.m_set));
}

KvoSimCSetID inpS_CSet::GetExtensionSetID(const inpS_CSet& other) const {
  KvoSimCSet both = m_set.Union(other.m_set);
  const bool addsNothing = both.Size() == m_set.AscendingSet().Size();
  return addsNothing && !ID().IsNull() ? ID() : both.NewID();
}

void inpS_CSet::Print(aio_ostream& out, const cow_String& title) const {
  out << title << " (" << Size() << " members):";
  for (const int member : m_set.OrderedMembers()) out << ' ' << member;
  out << '\n';
}
