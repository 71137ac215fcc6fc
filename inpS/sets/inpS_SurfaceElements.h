#pragma once

#include "database/KvoObjMesh.h"
#include "database/KvoObjSurface.h"
#include "parser/inp_ElementInfo.h"
#include <array>

// The elements of each owner by runs of one type, and the faces each type has.
class inpS_SurfaceElements {
public:
  struct Run {
    long long first = 0; // ordinals as the owner's surfaces count them
    long long count = 0;
    unsigned faces = 0;        // a bit for each face the elements have
    bool hasFreeFaces = false; // solid or plane: without an identifier its free faces are meant
    const KvoMeshElementBlock* block = nullptr;
    cow_String type;
    bool Has(eds_SurfaceFace face) const { return faces >> static_cast<int>(face) & 1; }
  };

  explicit inpS_SurfaceElements(const KvoObjMesh& mesh);

  // Ascending; of a part its own, of everybody else those of the flat mesh.
  const cow_List<Run>& RunsOf(const KvoSimPosition& owner) const;
  // The members that lie in runs for which `belongs` holds, in their order; the very same set when
  // all do.
  template <class Belongs>
  static eds_MemberSet Select(const cow_List<Run>& runs, const eds_MemberSet& members,
                              Belongs belongs);
  static const Run* RunAt(const cow_List<Run>& runs, long long element); // null: none

private:
  cow_List<KvoMeshElementBlock> m_blocks;
  cow_List<Run> m_flat;
  cow_Map<unsigned long long, cow_List<Run>> m_ofParts;
};

// The faces of a type as bits.
unsigned inpS_facesOf(const inp_ElementInfo& info);
bool inpS_hasFreeFaces(const inp_ElementInfo& info);

template <class Belongs>
eds_MemberSet inpS_SurfaceElements::Select(const cow_List<Run>& runs, const eds_MemberSet& members,
                                           Belongs belongs) {
  long long in = 0;
  for (const Run& run : runs) in += belongs(run);
  if (in == static_cast<long long>(runs.size())) return members;
  if (in == 0) return {};
  std::vector<int> selected;
  const Run* run = nullptr;
  bool taken = false;
  for (long long n = 0; n < members.Size(); ++n) {
    const int element = members[n];
    if (!run || element < run->first || element >= run->first + run->count) {
      run = RunAt(runs, element);
      taken = run && belongs(*run);
    }
    if (taken) selected.push_back(element);
  }
  if (static_cast<long long>(selected.size()) == members.Size()) return members;
  return eds_MemberSet::Ordered(std::move(selected));
}
