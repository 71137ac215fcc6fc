#pragma once

#include "base/aio_ostream.h"
#include "base/cow_Value.h"
#include "host/inps_Json.h"

class KvoObjDocument;

// What is likely to be wrong with a mesh, in brief.
struct inps_MeshQuality {
  // How many there are, and the first few by their labels.
  struct Finding {
    int64_t count = 0;
    cow_List<cow_String> first;
  };
  Finding negativeVolumes; // elements turned inside out
  Finding zeroVolumes;
  Finding freeNodes;      // that no element has
  Finding duplicateNodes; // "12 at 7": that stand where another one stands
};

// Reads the whole mesh.
inps_MeshQuality inps_assessMesh(const KvoObjDocument& document);

void inps_printQuality(aio_ostream& out, const inps_MeshQuality& quality);
inps_Json inps_jsonOf(const inps_MeshQuality& quality);
