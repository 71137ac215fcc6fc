#pragma once

#include "database/KvoObjDocument.h"
#include "host/inps_FlatMesh.h"
#include "host/inps_LocalAxes.h"

// The axes along which nodes have their degrees of freedom, where transforms give them their own.
class inps_NodeAxes {
public:
  inps_NodeAxes(const inps_FlatMesh& mesh, const KvoObjDocument& document);

  // Components along the axes of a node become global ones; where it has none they are.
  void MakeGlobal(int32_t node, std::span<double, 3> vector) const;

private:
  const inps_FlatMesh& m_mesh;
  cow_List<inps_LocalAxes> m_systems;
  std::vector<int32_t> m_systemOf; // by node, -1: none; empty without transforms
};
