#pragma once

#include "database/KvoObjLabeler.h"
#include "database/KvoObjMesh.h"
#include "inpS/framework/inpS_System.h"
#include <optional>
#include <unordered_map>

// Where what an owner (model, part, instance, assembly) defines comes to stand in the flat mesh,
// and where the nodes are that it knows by label. It looks at the model as it is when first asked.
class inpS_OrientationPlaces {
public:
  struct Place {
    KvoSimPosition owner;    // whose nodes labels mean
    KvoSimPosition instance; // null: it stands where it is defined
    inpS_System system;      // from the axes it is defined in to the global ones
    bool turns = false;      // the system's rotation is none of nothing
  };

  inpS_OrientationPlaces(const KvoObjDocument& document, const KvoObjLabeler& nodes)
      : m_document(document), m_nodes(nodes) {}

  // Of a part one for each of its instances, of any other owner one.
  const cow_List<Place>& Of(const KvoSimPosition& owner);
  // The owner's node, or the instance's of that name. Of a part the part's coordinates, else those
  // in the flat mesh. False when there is none.
  bool ReadCoordinatesForNodeLabel(const KvoSimPosition& owner, const cow_String& instance,
                                   long long label, double point[3]);
  // By which labels are known of what the model holds beside an assembly: that one's.
  KvoSimPosition OwnerOfLabels(const KvoSimPosition& owner) const;

private:
  static Place PlaceOf(const KvoSimPosition& instance);
  const KvoMeshNodeBlock* BlockOf(const KvoSimPosition& part, int64_t ordinal);

  KvoObjDocument m_document;
  const KvoObjLabeler& m_nodes;
  std::unordered_map<unsigned long long, cow_List<Place>> m_places; // by owner
  // By owner for parts, by 0 for the flat mesh; each ascending.
  std::unordered_map<unsigned long long, cow_List<KvoMeshNodeBlock>> m_blocks;
  std::optional<eds_ArrayReader> m_reader; // of the array read last
  int64_t m_array = 0;
};
