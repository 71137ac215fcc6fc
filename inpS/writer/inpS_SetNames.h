#pragma once

#include "database/KvoSimPosition.h"

// The names under which a deck shows sets and surfaces, not quoted yet. A set without a name, which
// another program may have made, gets one that no other set of its owner has.
cow_String NsetName(const KvoSimPosition& nodeSet);
cow_String ElsetName(const KvoSimPosition& elementSet);
cow_String SetName(const KvoSimPosition& set); // of nodes or of elements
cow_String GetSurfaceName(const KvoSimPosition& surface);
