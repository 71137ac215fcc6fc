#pragma once

#include "inpS/properties/inpS_ElementNodes.h"
#include "inpS/properties/inpS_OrientationDataWriter.h"
#include "inpS/properties/inpS_OrientationSystems.h"
#include "inpS/sets/inpS_SetVisitor.h"
#include <optional>
#include <utility>

// The second pass over orientations, for those that vary: what names an orientation, itself or in
// the lines of its plies, says over which elements, and these get axes of their own.
class inpS_OrientationFixupVisitor : public inpS_SetVisitor {
public:
  using NameMap = cow_Map<cow_String, cow_String>; // orientation to distribution

  inpS_OrientationFixupVisitor(KvoObjLabeler& nodes, KvoObjLabeler& elements,
                               const inpS_Inventory& inventory, const NameMap& ori2DistName)
      : inpS_SetVisitor(nodes, elements, inventory), m_ori2DistName(ori2DistName),
        m_systems(inventory, nodes), m_writer(inventory),
        m_nodes(inventory.GetDocument().GetMesh()) {}

  void Visit(const inp_Keyword& keyword) override;

private:
  using Place = inpS_OrientationSystems::Place;

  void FixOrientation(const inp_Keyword& keyword, const cow_String& orientation,
                      const cow_String& elset);
  // Whether the distributions have what an orientation needs; what they lack is told.
  bool CheckDistributions(const inp_Keyword& keyword, const KvoSimPosition& orientation);
  KvoSimPosition SystemFor(const KvoSimPosition& orientation, const Place& place);
  struct Lacking { // elements without axes
    long long count = 0;
    long long first = 0; // ordinal of the holder
    const char* fault = "";
  };
  // elements: flat ordinals; first: that of the holder's element 0.
  Lacking Fix(const KvoSimPosition& orientation, const Place& place, const eds_MemberSet& elements,
              long long first);
  Found Find(const cow_String& asWritten) const; // an orientation, as seen from here

  const NameMap& m_ori2DistName;
  inpS_OrientationSystems m_systems;
  inpS_OrientationDataWriter m_writer;
  inpS_ElementNodes m_nodes;
  // By what is given and the instance; made when first asked for.
  std::optional<cow_Map<std::pair<uint64_t, uint64_t>, KvoSimPosition>> m_madeBy;
};
