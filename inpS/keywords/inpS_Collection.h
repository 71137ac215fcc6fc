#pragma once

#include "base/cow_Value.h"
#include "database/KvoSimCollection.h"

class KvoObjDocument;
class inpS_ArrayInt;
class inpS_CSet;

// A handle on a database collection: the domain that component sets are subsets of.
class inpS_Collection {
public:
  explicit inpS_Collection(const KvoSimCollection& collection) : m_collection(collection) {}

  const KvoSimCollection& Collection() const { return m_collection; }

  // Stored ordered sets that hold the members in the given order.
  inpS_CSet CreateCSet(const cow_List<int>& members) const;
  inpS_CSet CreateCSet(const inpS_ArrayInt& members) const;
  inpS_CSet CreateCSetStrided(int first, int count, int stride = 1) const;

  KvoSimCSetID BiggestCSetID() const; // all members, those added later as well
  long long Space() const;
  long long ExtendSpace(long long count); // returns the first new member

  // The stored set of the components of a vector of 1 to 3 dimensions, from "C_1" on, in the
  // document's context.
  static KvoSimCSetID VectorComponentsCSet(const KvoObjDocument& document, int numDim);

private:
  KvoSimCollection m_collection;
};
