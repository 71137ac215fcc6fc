#pragma once

#include "database/KvoObjSurface.h"
#include "database/KvoSimDataRecord.h"
#include "inpS/sets/inpS_SurfaceElements.h"

// The element types of the flat mesh, as loads of elements ask for them.
class inpS_LoadedElements {
public:
  using Type = const inp_ElementInfo*; // null: one that the table does not know

  explicit inpS_LoadedElements(const KvoObjDocument& document);

  // Each type that elements are of, once.
  const cow_List<Type>& Types() const { return m_types; }
  // The place in that list; -1: there is no such element. Neighbours cost next to nothing.
  int TypeOf(long long element);
  // Of the members of the n-th set or surface that a record names: each type once.
  const cow_List<Type>& TypesOf(const KvoSimPosition& record, std::size_t set);
  // Of the members of an element set; offset: from its ordinals to those of the flat mesh.
  cow_List<Type> TypesOf(const KvoSimDataRecord& elements, long long offset);

private:
  cow_List<Type> TypesOf(const KvoSimPosition& named, const KvoSimPosition& instance);
  cow_List<Type> TypesOf(const KvoObjSurface& surface, const KvoSimPosition& instance);
  void Mark(const eds_MemberSet& members, long long offset, cow_List<char>& isIn);
  cow_List<Type> Marked(const cow_List<char>& isIn) const;

  const KvoObjMesh m_mesh;
  inpS_SurfaceElements m_elements;
  const cow_List<inpS_SurfaceElements::Run>& m_runs;
  cow_List<int> m_ofRuns; // as m_runs
  const inpS_SurfaceElements::Run* m_last = nullptr;
  cow_List<Type> m_types;
  // Of sets and surfaces (with the instance that they are named by): many keywords name one.
  cow_Map<std::pair<unsigned long long, unsigned long long>, cow_List<Type>> m_ofTargets;
};
