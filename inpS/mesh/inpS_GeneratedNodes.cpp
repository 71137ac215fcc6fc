#include "inpS/mesh/inpS_GeneratedNodes.h"
#include "database/KvoObjLabeler.h"
#include "inpS/mesh/inpS_ElementParameters.h"
#include <algorithm>

namespace {

constexpr int kDefaultOffset = 100000;
constexpr int kGivenGasketNodes = 16;
constexpr int kGasketNodes = 18;

// Corners and middles of the bottom and of the top face among the 16 nodes given.
constexpr int kFaces[2][8] = {{0, 1, 2, 3, 8, 9, 10, 11}, {4, 5, 6, 7, 12, 13, 14, 15}};

const double* pointOf(inpS_MeshScope& scope, const KvoObjLabeler& labeler, int label) {
  const int ordinal = labeler.ConvertInstanceLabel(scope.nodeOccurrence, label);
  if (ordinal < 0) return nullptr;
  const long long ofPart = scope.part ? scope.part->nodes.Count() : 0;
  return ordinal < ofPart ? scope.part->nodes.Point(ordinal) : scope.nodes.Point(ordinal);
}

void addNode(inpS_MeshScope& scope, KvoObjLabeler& labeler, int label, const double point[3]) {
  if (scope.generatedFrom < 0) scope.generatedFrom = labeler.Size(scope.nodeOccurrence);
  int ordinal = 0;
  labeler.AddInstanceLabels(scope.nodeOccurrence, std::span<const int>(&label, 1),
                            std::span<int>(&ordinal, 1));
  scope.nodes.AddGenerated(point, scope.owner);
}

// The middle of an eight-node face: minus a quarter of each corner, half of each middle node.
bool middleOf(inpS_MeshScope& scope, const KvoObjLabeler& labeler, const int* nodes,
              const int (&face)[8], double middle[3]) {
  std::fill(middle, middle + 3, 0.0);
  for (int n = 0; n < 8; ++n) {
    const double* point = pointOf(scope, labeler, nodes[face[n]]);
    if (!point) return false;
    for (int i = 0; i < 3; ++i) middle[i] += (n < 4 ? -0.25 : 0.5) * point[i];
  }
  return true;
}

void completeGasket(inpS_MeshScope& scope, inpS_ElementBlock& block, KvoObjLabeler& labeler,
                    int& largestLabel) {
  const auto elements = static_cast<std::size_t>(block.count);
  utl_Buffer<int> nodes(elements * kGasketNodes);
  for (std::size_t n = 0; n < elements; ++n) {
    const int* given = block.nodes.Data() + n * kGivenGasketNodes;
    int* all = nodes.Data() + n * kGasketNodes;
    std::copy(given, given + kGivenGasketNodes, all);
    for (int face = 0; face < 2; ++face) {
      double middle[3];
      int& label = all[kGivenGasketNodes + face];
      label = 0; // a node is missing, which is reported when the element is resolved
      if (!middleOf(scope, labeler, given, kFaces[face], middle)) continue;
      label = ++largestLabel;
      addNode(scope, labeler, label, middle);
    }
  }
  block.nodes = std::move(nodes);
  block.width = block.topology = kGasketNodes;
}

} // namespace

void inpS_GeneratedNodes::AddFourierPlanes(const inp_Keyword& keyword,
                                           const inpS_ElementParameters& type,
                                           inpS_ElementTopologyReader& reader,
                                           inpS_MeshScope& scope) {
  const inp_Item* given = keyword.Find("offset");
  const int offset = given && given->IsNumber() ? given->AsInt() : kDefaultOffset;
  const int plane = type.MinNodesPerElement(), width = type.MaxNodesPerElement();
  if (reader.Width() != plane) return; // all planes given
  const auto elements = static_cast<std::size_t>(reader.Count());
  utl_Buffer<int> nodes(elements * static_cast<std::size_t>(width));
  for (std::size_t n = 0; n < elements; ++n) {
    const int* base = reader.Nodes().Data() + n * static_cast<std::size_t>(plane);
    int* all = nodes.Data() + n * static_cast<std::size_t>(width);
    for (int i = 0; i < width; ++i) {
      const int from = base[i % plane];
      all[i] = from + i / plane * offset;
      if (i >= plane) scope.impliedNodes.Append({all[i], from});
    }
  }
  reader.Widen(std::move(nodes), width);
}

void inpS_GeneratedNodes::Complete(inpS_MeshScope& scope, const cow_List<cow_String>& types,
                                   KvoObjLabeler& labeler, int& largestLabel) {
  for (const auto& [label, from] : scope.impliedNodes) {
    if (labeler.HasInstanceLabel(scope.nodeOccurrence, label)) continue;
    const double* at = pointOf(scope, labeler, from);
    if (!at) continue; // reported when the element is resolved
    const double point[3] = {at[0], at[1], at[2]};
    largestLabel = std::max(largestLabel, label);
    addNode(scope, labeler, label, point);
  }
  scope.impliedNodes = {};
  for (inpS_ElementBlock& block : scope.elements.Blocks()) {
    const cow_String& type = types[static_cast<std::size_t>(block.spec)];
    const bool gasket = type == "GK3D18" || type == "GK3D18N";
    if (gasket && block.width == kGivenGasketNodes)
      completeGasket(scope, block, labeler, largestLabel);
  }
  scope.nodes.FinishGenerated();
}
