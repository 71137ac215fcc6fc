// Times the search for the free faces of all elements of a model: reading the connectivity,
// searching, and the sets of elements face by face. Prints one line of JSON.

#include "database/KvoObjDocument.h"
#include "database/KvoObjMesh.h"
#include "inpS/sets/inpS_FreeFaces.h"
#include <chrono>
#include <cstdio>
#include <exception>

int main(int count, char** words) try {
  if (count != 2) {
    std::fprintf(stderr, "usage: free_faces MODEL.sim\n");
    return 2;
  }
  const KvoObjDocument document = KvoObjDocument::Open(words[1], KvoAccess::ReadOnly);
  const KvoObjMesh mesh = document.GetMesh();
  const auto start = std::chrono::steady_clock::now();
  const inpS_SurfaceElements elements(mesh);
  const int64_t all = mesh.GetElementCollection().Space();
  const cow_List<inpS_FaceSet> sets =
      inpS_freeFaces(elements.RunsOf({}), eds_MemberSet::Strided(0, all));
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
  int64_t faces = 0;
  for (const inpS_FaceSet& set : sets) faces += set.elements.Size();
  std::printf("{\"elements\": %lld, \"faces\": %lld, \"seconds\": %.4f}\n",
              static_cast<long long>(all), static_cast<long long>(faces), seconds.count());
  return 0;
} catch (const std::exception& problem) {
  std::fprintf(stderr, "free_faces: %s\n", problem.what());
  return 3;
}
