// Times on a model: the search for the free faces of all elements, and the areas that the nodes
// share of a surface with face S2 of every element. Both read the mesh from the file, and both go
// up to the sets and arrays that would be stored. Prints one line of JSON.

#include "bench/seconds.h"
#include "database/KvoObjDocument.h"
#include "database/KvoObjMesh.h"
#include "inpS/sets/inpS_FreeFaces.h"
#include "inpS/sets/inpS_SurfaceNodalAreas.h"
#include <cstdio>
#include <exception>

int main(int count, char** words) try {
  if (count != 2) {
    std::fprintf(stderr, "usage: surface_times MODEL.sim\n");
    return 2;
  }
  const KvoObjDocument document = KvoObjDocument::Open(words[1], KvoAccess::ReadOnly);
  const KvoObjMesh mesh = document.GetMesh();
  const eds_MemberSet all = eds_MemberSet::Strided(0, mesh.GetElementCollection().Space());
  cow_List<inpS_FaceSet> sets;
  const double search =
      secondsOf([&] { sets = inpS_freeFaces(inpS_SurfaceElements(mesh).RunsOf({}), all); });
  long long faces = 0;
  for (const inpS_FaceSet& set : sets) faces += set.elements.Size();
  double total = 0;
  const double areas = secondsOf([&] {
    inpS_SurfaceNodalAreas surfaces(mesh);
    for (double area : surfaces.Measure({}, {{eds_SurfaceFace::S2, all}}).areas) total += area;
  });
  std::printf("{\"elements\": %lld, \"free\": %lld, \"free_seconds\": %.4f, \"area\": %.6f, "
              "\"area_seconds\": %.4f}\n",
              static_cast<long long>(all.Size()), faces, search, total, areas);
  return 0;
} catch (const std::exception& problem) {
  std::fprintf(stderr, "surface_times: %s\n", problem.what());
  return 3;
}
