#pragma once

#include "base/cow_Value.h"
#include <cstdint>
#include <utility>

class inps_FlatMesh;

// Nodes that stand where another one stands.
struct inps_DuplicateNodes {
  int64_t count = 0; // those with another node before them at their place
  // The first few: a node and the first one at its place, as flat ordinals.
  cow_List<std::pair<int32_t, int32_t>> first;
};

// Two nodes share a place when no coordinate differs by more than this part of the model's size,
// which is twice the median distance of its nodes from the origin: nodes far away change nothing.
inline constexpr double inps_samePlace = 1e-10;

// Linear in the number of nodes; holds a few million nodes at a time, and 24 bytes for each node
// that shares its place.
inps_DuplicateNodes inps_findDuplicateNodes(const inps_FlatMesh& mesh, std::size_t mostNamed);
