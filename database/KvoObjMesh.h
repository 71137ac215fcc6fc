#pragma once

#include "database/KvoObjElementSet.h"
#include "database/KvoObjNodeSet.h"
#include "database/KvoSimDistribution.h"
#include "database/KvoSimPosition.h"

class KvoObjDocument;

// A run of nodes of one owner (part, instance, assembly, or the model of a flat deck). Ordinals
// count from 0 within the owner; their labels are in the owner's label space (KvoObjLabeler).
struct KvoMeshNodeBlock {
  KvoSimPosition owner;
  int64_t first = 0; // ordinal within the owner
  int64_t count = 0;
  int64_t flatFirst = -1;     // ordinal in the flat mesh; -1 for a part, which is only a pattern
  int64_t generated = 0;      // the last ones of it: not given, elements brought them along
  int coordinateCount = 3;    // coordinates as given in the deck; stored are always 3
  eds_ArrayID coordinates;    // width 3, one item per node; may be another block's
  eds_ArrayID normalOrdinals; // int32, ordinals within the block, ascending; null = no normals
  eds_ArrayID normals;        // width 3, one item per normal ordinal
  // Of nodes that the deck lists inside a placed instance: as listed, before the placement.
  eds_ArrayID localCoordinates;
  eds_ArrayID localNormals;
};

// A run of elements of one type and width. Connectivity entries count from `nodeBase` in the flat
// mesh (in a part: from its node 0); -1 is an absent node. So instances share their part's array.
struct KvoMeshElementBlock {
  KvoSimPosition owner;
  KvoSimPosition spec; // the element type's record
  int64_t first = 0;
  int64_t count = 0;
  int64_t flatFirst = -1;
  int64_t nodeBase = 0;
  int width = 0;            // nodes per element
  int offset = 0;           // the deck's OFFSET for these elements
  cow_String source;        // keyword parameters kept for the writer
  eds_ArrayID connectivity; // int32, `width` per element; may be another block's
};

// The mesh: its collections, its fields and its blocks of nodes and elements.
class KvoObjMesh {
public:
  KvoObjMesh() = default;
  explicit KvoObjMesh(const KvoSimPosition& position) : m_position(position) {}

  // Creates the mesh's record in the document.
  void Register(const KvoObjDocument& document);
  bool IsNull() const { return m_position.IsNull(); }
  const KvoSimPosition& Position() const { return m_position; }

  KvoSimCollection GetNodeCollection() const;
  void SetNodeCollection(const KvoSimCollection& collection);
  KvoSimCollection GetElementCollection() const;
  void SetElementCollection(const KvoSimCollection& collection);
  // The collection in which an owner's sets lie: a part's own one, made on first use, or the
  // mesh's.
  KvoSimCollection CollectionOf(const KvoSimPosition& owner, bool nodes) const;
  KvoSimDSet GetConnectivity() const;
  void SetConnectivity(const KvoSimDSet& dset);
  KvoSimDistribution GetCoordinates() const;
  void SetCoordinates(const KvoSimDistribution& distribution);
  KvoSimDistribution GetNodeNormals() const;
  void SetNodeNormals(const KvoSimDistribution& distribution);
  KvoSimDistribution GetElementNormals() const;
  void SetElementNormals(const KvoSimDistribution& distribution);
  KvoSimDistribution GetElementSpecAssignment() const;
  void SetElementSpecAssignment(const KvoSimDistribution& distribution);
  KvoSimDistribution GetBeamOrientationExtraNodes() const;
  void SetBeamOrientationExtraNodes(const KvoSimDistribution& distribution);
  KvoSimDistribution GetSurfaceNodalAreas() const;
  void SetSurfaceNodalAreas(const KvoSimDistribution& distribution);
  KvoSimDistribution GetIrsDragchainRefNodes() const;
  void SetIrsDragchainRefNodes(const KvoSimDistribution& distribution);
  KvoSimPosition GetCyclicSymmetry() const;
  void SetCyclicSymmetry(const KvoSimPosition& position);

  // The sets of all nodes, all elements, and of those the user has defined.
  KvoSimPosition GetNodes() const;
  void SetNodes(const KvoObjNodeSet& nodes);
  void UnsetNodes();
  KvoSimPosition GetElements() const;
  void SetElements(const KvoObjElementSet& elements);
  void UnsetElements();
  KvoSimPosition GetUserNodes() const;
  void SetUserNodes(const KvoObjNodeSet& nodes);
  void UnsetUserNodes();
  KvoSimPosition GetUserElements() const;
  void SetUserElements(const KvoObjElementSet& elements);
  void UnsetUserElements();
  // A set over a strided run of flat element ordinals, not entered anywhere yet.
  KvoObjElementSet CreateElementsSet(const cow_String& name, int32_t first, int64_t count);

  // Stores a block. In the flat mesh it also extends the node (element) collection to hold the
  // block and enters its array as a drawer of the coordinates (connectivity). Returns the block's
  // record.
  KvoSimPosition AddNodes(const KvoMeshNodeBlock& block);
  KvoSimPosition AddElements(const KvoMeshElementBlock& block);
  // In the order in which they were added; a null owner gives all.
  std::vector<KvoMeshNodeBlock> NodeBlocks(const KvoSimPosition& owner = {}) const;
  std::vector<KvoMeshElementBlock> ElementBlocks(const KvoSimPosition& owner = {}) const;
  // Node or element sets of one owner by name, in the order in which they were added.
  std::vector<KvoSimPosition> NodeSets(const KvoSimPosition& owner, bool internal = false) const;
  std::vector<KvoSimPosition> ElementSets(const KvoSimPosition& owner, bool internal = false) const;

private:
  KvoSimDistribution WidthDistribution(KvoSimDSet connectivity, int width);

  KvoSimPosition m_position;
};
