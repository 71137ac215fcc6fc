#pragma once

#include "database/KvoObjSurface.h"
#include "database/KvoSimCSet.h"
#include "database/KvoSimCollection.h"
#include <array>

// The faces of a surface as sets of elements by face, in one form for equal surfaces: each set
// ascending, and both sides of a shell are FACE_WHOLE wherever both are in it.
class inpS_FaceSets {
public:
  void Add(eds_SurfaceFace face, const KvoSimCSet& elements); // keeps the stored set it is
  void Add(eds_SurfaceFace face, eds_MemberSet elements);
  void Settle(); // brings what was added into the one form

  // Of settled ones.
  bool IsEmpty() const;
  const eds_MemberSet& Elements(eds_SurfaceFace face) const;
  inpS_FaceSets Union(const inpS_FaceSets& other) const;
  inpS_FaceSets Intersection(const inpS_FaceSets& other) const;
  inpS_FaceSets Difference(const inpS_FaceSets& other) const;

  void Save(KvoObjSurface& surface, KvoSimCollection collection) const;

private:
  struct Entry {
    eds_MemberSet members;
    KvoSimCSet stored; // null: not stored yet
    const eds_MemberSet& Set() const { return stored.IsNull() ? members : stored.Set(); }
  };
  template <class Operation>
  inpS_FaceSets Combined(const inpS_FaceSets& other, Operation operation) const;
  eds_MemberSet Side(eds_SurfaceFace face) const; // of a side: with the elements that have both

  std::array<cow_List<Entry>, eds_surfaceFaceCount> m_entries; // one at most once settled
};

eds_MemberSet inpS_difference(const eds_MemberSet& from, const eds_MemberSet& other);
eds_MemberSet inpS_unionOf(const cow_List<const eds_MemberSet*>& sets);
