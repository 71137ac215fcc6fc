#pragma once

#include "database/KvoSimPosition.h"
#include "inpS/framework/inpS_System.h"
#include "inpS/mesh/inpS_ElementConnectivity.h"
#include "inpS/mesh/inpS_NodeList.h"
#include "inpS/sets/inpS_SetDefinition.h"

// The mesh of one owner as the deck gives it: the flat model or the assembly (the root), a part, or
// what an instance holds of its own besides its part's.
struct inpS_MeshScope {
  enum class Kind : unsigned char { Root, Part, Instance };
  Kind kind = Kind::Root;
  cow_String name;
  KvoSimPosition owner;                  // its record
  const inpS_MeshScope* part = nullptr;  // of an instance
  inpS_System placement;                 // of an instance
  inpS_System system;                    // *SYSTEM in force for the nodes that follow
  int nodeOccurrence = -1;               // in the node labeler
  int elementOccurrence = -1;
  inpS_NodeList nodes;
  inpS_ElementConnectivity elements;
  inpS_SetTable sets;
  long long generatedFrom = -1; // ordinal from which nodes were generated, not given; -1: none
  long long nodeBase = 0;       // flat ordinals of its first node and element
  long long elementBase = 0;
  long long nodeCount = 0;      // with the part's
  long long elementCount = 0;
};
