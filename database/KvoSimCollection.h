#pragma once

#include "database/KvoSimCSet.h"
#include <span>

// A typed set of members with dense identifiers 0, 1, ...: positions of a space (nodes, elements),
// the symbols of a vocabulary, or the records of a kind.
class KvoSimCollection {
public:
  KvoSimCollection() = default;
  KvoSimCollection(eds_Store* store, int64_t id) : m_store(store), m_id(id) {}

  bool IsNull() const { return m_id == 0; }
  int64_t ID() const { return m_id; }
  eds_Store* Store() const { return m_store; }
  KvoSimPosition Position() const;
  eds_CollectionKind Kind() const;
  friend bool operator==(const KvoSimCollection&, const KvoSimCollection&) = default;

  int64_t Space() const; // number of members
  // Adds members at the end; returns the first new one. Only for collections of a space.
  int64_t ExtendSpace(int64_t count);

  // Stored sets. Members out of the space are an assertion.
  KvoSimCSet CreateCSet(std::span<const int32_t> members);        // kept ascending
  KvoSimCSet CreateOrderedCSet(std::span<const int32_t> members); // kept in this order
  KvoSimCSet CreateCSetStrided(int32_t first, int64_t count, int32_t stride = 1);
  KvoSimCSet CreateCSet(eds_MemberSet members);
  // The same, never written: they go with the document's handle.
  KvoSimCSet CreateTempCSet(std::span<const int32_t> members);
  KvoSimCSet CreateTempOrderedCSet(std::span<const int32_t> members);
  KvoSimCSet CreateTempCSetStrided(int32_t first, int64_t count, int32_t stride = 1);
  // Values without a number.
  KvoSimCSet CreateVolatileCSet(std::span<const int32_t> members) const;
  KvoSimCSet CreateVolatileOrderedCSet(std::span<const int32_t> members) const;
  KvoSimCSet CreateVolatileCSetStrided(int32_t first, int64_t count, int32_t stride = 1) const;

  KvoSimCSetID EmptyCSetID();
  KvoSimCSetID BiggestCSetID(); // all members, also those added later

private:
  KvoSimCSet Checked(eds_MemberSet members) const;

  eds_Store* m_store = nullptr;
  int64_t m_id = 0;
};
