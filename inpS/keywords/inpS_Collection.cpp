#include "inpS/keywords/inpS_Collection.h"
#include "base/utl_Assert.h"
#include "inpS/keywords/inpS_ArrayInt.h"
#include "inpS/keywords/inpS_CSet.h"
#include "inpS/keywords/inpS_componentUtilities.h"

inpS_CSet inpS_Collection::CreateCSet(const cow_List<int>& members) const {
  return inpS_CSet(*this, members);
}

inpS_CSet inpS_Collection::CreateCSet(const inpS_ArrayInt& members) const {
  return inpS_CSet(*this, members.AsList());
}

inpS_CSet inpS_Collection::CreateCSetStrided(int first, int count, int stride) const {
  KvoSimCollection collection = m_collection;
  return inpS_CSet(collection.CreateCSetStrided(first, count, stride));
}

KvoSimCSetID inpS_Collection::BiggestCSetID() const {
  KvoSimCollection collection = m_collection;
  return collection.BiggestCSetID();
}

long long inpS_Collection::Space() const {
  return m_collection.Space();
}

long long inpS_Collection::ExtendSpace(long long count) {
  return m_collection.ExtendSpace(count);
}

KvoSimCSetID inpS_Collection::VectorComponentsCSet(const KvoObjDocument& document, int numDim) {
  utl_ASSERT(numDim > 0);
  utl_ASSERT(numDim < 4);
  return inpS_getNamedComponentCSet(document, "C_", numDim);
}
