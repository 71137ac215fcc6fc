#pragma once

#include "host/inps_ExportCells.h"
#include "host/inps_VtuFile.h"

// The grids that an export writes. They refer to what they are made of, which outlives them.

// Elements or faces with the nodes of the selection as points, their labels, and what they belong
// to.
inps_VtuGrid inps_cellGrid(const inps_FlatMesh& mesh, const inps_ExportCells& cells,
                           const inps_NodeSelection& nodes);
// The nodes of the selection, each a vertex.
inps_VtuGrid inps_nodeGrid(const inps_FlatMesh& mesh, const inps_NodeSelection& nodes);

// A record over the flat mesh. What a part defines counts from the part's first node or element and
// stands in every instance.
template <class Record> struct inps_Placed {
  Record record;
  int32_t shift = 0; // of its members, to flat ordinals
};

// A user's set or surface, "BOLTS" or "PLATE-1.BOLTS". An instance may have more members of a set
// of its part.
struct inps_NamedSet {
  cow_String name;
  cow_List<inps_Placed<KvoSimPosition>> sets;
};
struct inps_NamedSurface {
  cow_String name;
  inps_Placed<KvoObjSurface> surface;
};
cow_List<inps_NamedSet> inps_nodeSetsOf(const inps_FlatMesh& mesh);
cow_List<inps_NamedSet> inps_elementSetsOf(const inps_FlatMesh& mesh);
cow_List<inps_NamedSurface> inps_surfacesOf(const inps_FlatMesh& mesh);

// Its flat ordinals, ascending.
eds_MemberSet inps_membersOf(const inps_NamedSet& set);

// The flat ordinals of a set of nodes or elements, ascending; of a part's in that instance.
eds_MemberSet inps_flatMembers(const KvoSimPosition& set, const KvoSimPosition& instance);

// An array that tells of every node (element) of the whole mesh whether it is in the set.
inps_VtuArray inps_setArray(const inps_NamedSet& set, int64_t items);
