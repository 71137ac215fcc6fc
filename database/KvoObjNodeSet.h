#pragma once

#include "database/KvoSimCollection.h"
#include "database/KvoSimPosition.h"

// What node sets and element sets share: a named record with one component set as its membership,
// entered by name with its owner (a part, an instance, the assembly, the model).
class eds_MeshSet {
public:
  bool IsNull() const { return m_position.IsNull(); }
  const KvoSimPosition& Position() const { return m_position; }
  cow_String Name() const;
  KvoSimPosition Owner() const;
  bool IsInternal() const;
  bool IsUnsorted() const;
  void SetUnsorted(bool unsorted);
  KvoSimCSet Membership() const; // null when none was set

  // Enters the set with its owner; a set of that name is replaced there. Internal sets have names
  // of their own.
  void Bind(const KvoSimPosition& owner, bool internal = false);
  // Members as ordinals of the collection: ascending without repeats, in the given order, or a
  // range.
  void SetMembership(KvoSimCollection collection, std::span<const int32_t> ordinals);
  void SetOrderedMembership(KvoSimCollection collection, std::span<const int32_t> ordinals);
  void SetMembershipStrided(KvoSimCollection collection, int32_t first, int64_t count,
                            int32_t stride = 1);
  void SetMembership(const KvoSimCSetID& cset);

protected:
  eds_MeshSet() = default;
  eds_MeshSet(const KvoSimPosition& position, eds_RecordKind kind);
  eds_MeshSet(const KvoSimContext& context, std::string_view name, eds_RecordKind kind);

private:
  KvoSimPosition m_position;
};

class KvoObjNodeSet : public eds_MeshSet {
public:
  KvoObjNodeSet() = default;
  explicit KvoObjNodeSet(const KvoSimPosition& position)
      : eds_MeshSet(position, eds_RecordKind::NodeSet) {}
  // A new set, bound to nothing yet.
  KvoObjNodeSet(const KvoSimContext& context, std::string_view name)
      : eds_MeshSet(context, name, eds_RecordKind::NodeSet) {}
};
