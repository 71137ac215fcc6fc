#pragma once

#include "database/KvoObjLabeler.h"
#include "database/KvoObjMesh.h"
#include "database/KvoSimPosition.h"

// One owner of mesh and keywords as the deck shows it: the flat model, a part, an instance or the
// assembly.
struct inpS_DeckScope {
  KvoSimPosition owner;
  int nodes = -1; // occurrences in the labelers
  int elements = -1;
  bool isPart = false;
  long long flatNode = 0; // flat ordinals of its first node and element
  long long flatElement = 0;
  long long partNodes = 0; // how many of them are its part's and stand there
  long long partElements = 0;
};

// What the printers of mesh blocks need: loaded once before any block is printed, so that each
// reference to a node or an element costs one look-up.
struct inpS_DeckLabels {
  KvoObjMesh mesh;
  KvoObjLabeler nodes;
  KvoObjLabeler elements;
  // By occurrence of either labeler, quoted where needed; empty: not an instance.
  cow_List<cow_String> nodeInstances;
  cow_List<cow_String> elementInstances;
  cow_Map<unsigned long long, cow_String> elementTypes; // names, by the packed record

  const cow_String& TypeOf(const KvoMeshElementBlock& block) const {
    return elementTypes.at(block.spec.Object().Packed());
  }
  const cow_String& InstanceOf(bool nodes, int occurrence) const {
    return (nodes ? nodeInstances : elementInstances)[static_cast<std::size_t>(occurrence)];
  }
};
