#include "host/inps_MeshQuality.h"
#include "base/utl_BlockSize.h"

#include "base/utl_Threads.h"
#include "host/inps_DuplicateNodes.h"
#include "host/inps_ElementVolumes.h"
#include "host/inps_FlatMesh.h"
#include "host/inps_NodeSelection.h"
#include "host/inps_Reporter.h"
#include <algorithm>
#include <nlohmann/json.hpp>
#include <ostream>

namespace {

using Quality = inps_MeshQuality;

constexpr std::size_t mostNamed = 5;
constexpr int64_t entriesPerPiece = 64 << 10;

// Calls take(block, first element, nodes) for pieces of all blocks, one after the other.
template <class Take> void forElements(const inps_FlatMesh& mesh, Take take) {
  std::vector<int32_t> nodes;
  for (std::size_t b = 0; b < mesh.ElementBlocks().size(); ++b) {
    const KvoMeshElementBlock& block = mesh.ElementBlocks()[b].block;
    const int64_t perPiece =
        std::max<int64_t>(1, utl_blockSize(entriesPerPiece) / std::max(1, block.width));
    for (int64_t first = 0; first < block.count; first += perPiece) {
      const int64_t count = std::min(perPiece, block.count - first);
      nodes.resize(static_cast<std::size_t>(count * block.width));
      mesh.ReadConnectivity(b, first, nodes);
      take(b, first, std::span<const int32_t>(nodes));
    }
  }
}

Quality::Finding findFreeNodes(const inps_FlatMesh& mesh) {
  auto used = inps_NodeSelection::None(mesh.NodeCount());
  forElements(mesh, [&](std::size_t, int64_t, std::span<const int32_t> nodes) {
    for (const int32_t node : nodes)
      if (node >= 0) used.Add(node);
  });
  used.Number();
  Quality::Finding free;
  free.count = mesh.NodeCount() - used.Count();
  const std::size_t named = std::min(mostNamed, static_cast<std::size_t>(free.count));
  for (int32_t node = 0; free.first.size() < named; ++node)
    if (!used.Has(node)) free.first.push_back(mesh.NodeName(node));
  return free;
}

Quality::Finding findDuplicates(const inps_FlatMesh& mesh) {
  const inps_DuplicateNodes found = inps_findDuplicateNodes(mesh, mostNamed);
  Quality::Finding duplicates{found.count, {}};
  for (const auto& [node, other] : found.first)
    duplicates.first.push_back(mesh.NodeName(node) + " at " + mesh.NodeName(other));
  return duplicates;
}

Quality::Finding named(const inps_FlatMesh& mesh, const inps_ElementVolumes::Finding& found) {
  Quality::Finding finding{found.count, {}};
  for (const int32_t element : found.first) finding.first.push_back(mesh.ElementName(element));
  return finding;
}

struct Row {
  const char* key;
  const char* noun;
  const char* none; // what is said when there is none
  const char* what;
  Quality::Finding Quality::*finding;
};
constexpr Row rows[] = {
    {"negativeVolumes", "element", "no element with a negative volume", "with a negative volume",
     &Quality::negativeVolumes},
    {"zeroVolumes", "element", "no element without volume", "without volume",
     &Quality::zeroVolumes},
    {"freeNodes", "node", "no free node", "of no element", &Quality::freeNodes},
    {"duplicateNodes", "node", "no node in the place of another", "in the place of another",
     &Quality::duplicateNodes},
};

} // namespace

Quality inps_assessMesh(const KvoObjDocument& document) {
  const inps_FlatMesh mesh(document);
  const inps_ElementVolumes volumes = inps_findBadVolumes(mesh, mostNamed);
  return {named(mesh, volumes.negative), named(mesh, volumes.zero), findFreeNodes(mesh),
          findDuplicates(mesh)};
}

void inps_printQuality(aio_ostream& out, const Quality& quality) {
  out << "mesh quality:\n";
  for (const Row& row : rows) {
    const Quality::Finding& finding = quality.*row.finding;
    if (finding.count == 0) {
      out << "  " << row.none << '\n';
      continue;
    }
    out << "  " << inps_counted(finding.count, row.noun) << ' ' << row.what << ": ";
    for (std::size_t i = 0; i < finding.first.size(); ++i)
      out << (i ? ", " : "") << finding.first[i];
    out << (static_cast<std::size_t>(finding.count) > finding.first.size() ? ", …\n" : "\n");
  }
}

inps_Json inps_jsonOf(const Quality& quality) {
  inps_Json object = inps_Json::object();
  for (const Row& row : rows)
    object[row.key] = {{"count", (quality.*row.finding).count},
                       {"first", (quality.*row.finding).first}};
  return object;
}
