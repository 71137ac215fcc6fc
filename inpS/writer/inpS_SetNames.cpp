#include "inpS/writer/inpS_SetNames.h"
#include "database/KvoObjElementSet.h"
#include "database/KvoObjNodeSet.h"
#include "database/KvoObjSurface.h"

namespace {

cow_String madeName(const eds_MeshSet& set, const char* kind, eds_Member named,
                    eds_Member internal) {
  const KvoSimPosition owner = set.Owner();
  cow_String name = kind + ("-" + std::to_string(set.Position().ID()));
  while (!owner.FollowStringKey(named, name).IsNull() ||
         !owner.FollowStringKey(internal, name).IsNull())
    name += "-1";
  return name;
}

} // namespace

cow_String NsetName(const KvoSimPosition& nodeSet) {
  const KvoObjNodeSet set(nodeSet);
  const cow_String name = set.Name();
  if (!name.empty()) return name;
  return madeName(set, "NSET", eds_Member::NodeSets, eds_Member::InternalNodeSets);
}

cow_String ElsetName(const KvoSimPosition& elementSet) {
  const KvoObjElementSet set(elementSet);
  const cow_String name = set.Name();
  if (!name.empty()) return name;
  return madeName(set, "ELSET", eds_Member::ElementSets, eds_Member::InternalElementSets);
}

cow_String SetName(const KvoSimPosition& set) {
  return set.IsA(eds_RecordKind::NodeSet) ? NsetName(set) : ElsetName(set);
}

cow_String GetSurfaceName(const KvoSimPosition& surface) {
  return KvoObjSurface(surface).Name();
}
