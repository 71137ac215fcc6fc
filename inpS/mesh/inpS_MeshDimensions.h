#pragma once

#include "database/eds_Array.h"

class KvoObjMesh;

// True when a deck that lists this mesh is three-dimensional by its nodes and elements alone: an
// element of a three-dimensional type, or a node of the model or of a part out of the plane z = 0.
// Nodes of the assembly and its instances do not tell. Reads node blocks up to the first such node.
bool inpS_tellsThreeDimensions(const KvoObjMesh& mesh);

// What *NODE lists: the values in the local system they were given in, if there was one.
const eds_ArrayID& inpS_asListed(const eds_ArrayID& local, const eds_ArrayID& placed);
