#pragma once

#include "base/cow_Value.h"
#include <cstdint>

class inps_FlatMesh;

// Elements whose volume, area or length is not what it should be, as flat ordinals. Asked are those
// that fill space by their nature: gaskets, cohesive elements, springs, connectors and contact may
// well have no thickness.
struct inps_ElementVolumes {
  struct Finding {
    int64_t count = 0;
    cow_List<int32_t> first;
  };
  Finding negative; // volumes turned inside out, plane shapes that turn clockwise
  Finding zero;     // less than inps_noVolume of a box as large as the element's greatest extent
};
inline constexpr double inps_noVolume = 1e-10;

// Linear in the number of elements. Holds the coordinates of nodes whose ordinals lie close
// together; all coordinates when elements join nodes from all over the mesh.
inps_ElementVolumes inps_findBadVolumes(const inps_FlatMesh& mesh, std::size_t mostNamed);
