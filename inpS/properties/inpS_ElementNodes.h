#pragma once

#include "database/KvoObjMesh.h"
#include "inpS/framework/inpS_ArrayItems.h"

// Where the nodes of single elements are in the flat mesh. Elements are told by their flat
// ordinals; those asked for one after the other should be neighbours. It looks at the mesh as it is
// when first asked.
class inpS_ElementNodes {
public:
  explicit inpS_ElementNodes(const KvoObjMesh& mesh) : m_mesh(mesh) {}

  // number: of the node among those of the element, from 1. False when the element has no such
  // node.
  bool ReadNode(int64_t element, long long number, double point[3]);
  // The mean of its nodes, and the largest magnitude among their coordinates.
  bool ReadMiddle(int64_t element, double point[3], double& magnitude);

private:
  const KvoMeshElementBlock* BlockOf(int64_t element);
  bool ReadPoint(int64_t node, double point[3]); // by flat ordinal
  void ReadBlocks();

  KvoObjMesh m_mesh;
  bool m_isRead = false;
  cow_List<KvoMeshElementBlock> m_elements; // of the flat mesh, ascending
  cow_List<KvoMeshNodeBlock> m_nodes;
  const KvoMeshElementBlock* m_block = nullptr; // of the element asked for last
  const KvoMeshNodeBlock* m_nodeBlock = nullptr;
  inpS_ArrayItems<int32_t> m_connectivity;
  inpS_ArrayItems<double> m_coordinates;
};
