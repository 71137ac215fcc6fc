#pragma once

#include "database/eds_ModelReader.h"
#include "host/inps_Tolerance.h"
#include <unordered_set>

// Nodes and elements of two models that are the same, but cut into other blocks: which keywords, or
// which restart, brought them tells nothing of a mesh.
struct inps_MeshCut {
  std::unordered_set<uint64_t> a; // blocks, and the drawers over them
  std::unordered_set<uint64_t> b;
};

inps_MeshCut inps_compareMeshCut(const eds_ModelReader& a, const eds_ModelReader& b,
                                 const inps_Tolerance& tolerance);
