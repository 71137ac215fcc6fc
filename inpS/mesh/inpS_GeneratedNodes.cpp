#include "inpS/mesh/inpS_GeneratedNodes.h"
#include "database/KvoObjLabeler.h"
#include "inpS/mesh/inpS_BaseMesh.h"
#include "inpS/mesh/inpS_ElementParameters.h"
#include "inpS/messages/inpS_LocatedText.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"
#include <algorithm>

namespace {

constexpr int kDefaultOffset = 100000;
constexpr int kGivenGasketNodes = 16;
constexpr int kGasketNodes = 18;
constexpr int kMaxLabel = 999999999;

// Corners and middles of the bottom and of the top face among the 16 nodes given.
constexpr int kFaces[2][8] = {{0, 1, 2, 3, 8, 9, 10, 11}, {4, 5, 6, 7, 12, 13, 14, 15}};

const double* pointOf(inpS_MeshScope& scope, const KvoObjLabeler& labeler, int label) {
  const int ordinal = labeler.ConvertInstanceLabel(scope.nodeOccurrence, label);
  if (ordinal < 0) return nullptr;
  if (scope.isStored && ordinal < scope.storedNodes) return scope.base->Point(ordinal);
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

// Where the nodes of one gasket after the other lie: those of its owner, and those that it names by
// their instance, which has its place in the assembly.
class GasketPoints {
public:
  GasketPoints(inpS_MeshScopes& scopes, inpS_MeshScope& scope, const KvoObjLabeler& labeler,
               const inpS_ElementBlock& block)
      : m_scopes(scopes), m_scope(scope), m_labeler(labeler), m_scoped(block.scoped) {}

  // In ascending order.
  void Take(long long element) {
    std::fill(std::begin(m_owners), std::end(m_owners), &m_scope);
    for (; m_next < m_scoped.size() && m_scoped[m_next].element <= element; ++m_next)
      if (m_scoped[m_next].element == element)
        m_owners[m_scoped[m_next].index] = m_scopes.FindInstance(m_scoped[m_next].instance);
  }

  // The middle of an eight-node face: minus a quarter of each corner, half of each middle node.
  bool MiddleOf(const int* nodes, const int (&face)[8], double (&middle)[3]) const {
    std::fill(middle, middle + 3, 0.0);
    for (int n = 0; n < 8; ++n) {
      double point[3];
      if (!Find(face[n], nodes[face[n]], point)) return false;
      for (int i = 0; i < 3; ++i) middle[i] += (n < 4 ? -0.25 : 0.5) * point[i];
    }
    return inpS_isFinite(middle);
  }

private:
  bool Find(int index, int label, double point[3]) const {
    inpS_MeshScope* owner = m_owners[index];
    const double* at = owner ? pointOf(*owner, m_labeler, label) : nullptr;
    if (!at) return false;
    std::copy_n(at, 3, point);
    if (owner != &m_scope) owner->placement.TransformPoint(point[0], point[1], point[2]);
    return true;
  }

  inpS_MeshScopes& m_scopes;
  inpS_MeshScope& m_scope;
  const KvoObjLabeler& m_labeler;
  const cow_List<inpS_ScopedNode>& m_scoped;
  std::size_t m_next = 0;
  inpS_MeshScope* m_owners[kGasketNodes] = {}; // null: an instance that does not exist
};

// The nodes of further planes lie where those of the first one do.
void addImpliedNodes(inpS_MeshScope& scope, const inpS_ElementBlock& block, KvoObjLabeler& labeler,
                     int& largestLabel) {
  const auto plane = static_cast<std::size_t>(block.plane);
  for (long long element = 0; element < block.count; ++element) {
    if (!block.ImpliesPlanes(element)) continue;
    const std::span<const int> labels = block.NodesOf(element);
    for (std::size_t n = plane; n < labels.size(); ++n) {
      if (labeler.HasInstanceLabel(scope.nodeOccurrence, labels[n])) continue;
      const double* at = pointOf(scope, labeler, labels[n % plane]);
      if (!at) continue; // reported when the element is resolved
      const double point[3] = {at[0], at[1], at[2]};
      largestLabel = std::max(largestLabel, labels[n]);
      addNode(scope, labeler, labels[n], point);
    }
  }
}

// Labels above the largest of the deck, as long as there are any.
int newLabel(const inpS_MeshScope& scope, const KvoObjLabeler& labeler, int& largestLabel) {
  if (largestLabel < kMaxLabel) return ++largestLabel;
  int label = kMaxLabel;
  while (labeler.HasInstanceLabel(scope.nodeOccurrence, label)) --label;
  return label;
}

// Elements given with all their nodes may stand among those to be completed.
void completeGaskets(inpS_MeshScopes& scopes, inpS_MeshScope& scope, inpS_ElementBlock& block,
                     KvoObjLabeler& labeler, int& largestLabel) {
  GasketPoints points(scopes, scope, labeler, block);
  const auto elements = static_cast<std::size_t>(block.count);
  const auto width = static_cast<std::size_t>(block.width);
  utl_Buffer<int> nodes(elements * kGasketNodes);
  for (std::size_t n = 0; n < elements; ++n) {
    const int* given = block.nodes.Data() + n * width;
    int* all = nodes.Data() + n * kGasketNodes;
    std::fill(std::copy_n(given, width, all), all + kGasketNodes, 0);
    points.Take(static_cast<long long>(n));
    for (int face = 0; face < 2; ++face) {
      double middle[3];
      int& label = all[kGivenGasketNodes + face];
      // A node that is missing is reported when the element is resolved.
      if (label != 0 || !points.MiddleOf(given, kFaces[face], middle)) continue;
      label = newLabel(scope, labeler, largestLabel);
      addNode(scope, labeler, label, middle);
    }
  }
  block.nodes = std::move(nodes);
  block.width = block.topology = kGasketNodes;
}

bool isGasketOf18(const cow_String& type) {
  return type == "GK3D18" || type == "GK3D18N";
}

bool isGasketToComplete(const inpS_ElementBlock& block, const cow_List<cow_String>& types) {
  // Others have been told to have too few or too many nodes.
  return isGasketOf18(types[static_cast<std::size_t>(block.spec)]) && block.held &&
         !block.completed && block.width >= kGivenGasketNodes && block.width <= kGasketNodes;
}

long long countOf(const int* nodes, long long width) {
  while (width > 0 && nodes[width - 1] == 0) --width;
  return width;
}

} // namespace

int inpS_GeneratedNodes::OffsetOf(const inp_Keyword& keyword, inp_Visitor& messages) {
  const inp_Item* item = keyword.Find("offset");
  if (!item) return kDefaultOffset;
  if (item->IsInteger()) return item->AsInt();
  messages.AddError(inp_Utils::MessageAtParameter(
      keyword, "offset", inpS_messageText(inpS_app_InvalidParameterValue, {"offset"})));
  return kDefaultOffset;
}

inpS_GeneratedNodes::Planes
inpS_GeneratedNodes::AddFourierPlanes(const inpS_ElementParameters& type,
                                      inpS_ElementTopologyReader& reader) {
  const int offset = type.Offset();
  const int plane = type.MinNodesPerElement(), width = type.MaxNodesPerElement();
  const auto elements = static_cast<std::size_t>(reader.Count());
  const auto given = static_cast<std::size_t>(reader.Width());
  const auto isPlane = [&](std::size_t n) {
    return countOf(reader.Nodes().Data() + n * given, reader.Width()) == plane;
  };
  bool any = false;
  for (std::size_t n = 0; n < elements && !any; ++n) any = isPlane(n);
  Planes planes;
  if (!any || reader.Width() > width) return planes; // too many nodes were told
  planes.offset = offset;
  utl_Buffer<int> nodes(elements * static_cast<std::size_t>(width));
  for (std::size_t n = 0; n < elements; ++n) {
    const int* base = reader.Nodes().Data() + n * given;
    int* all = nodes.Data() + n * static_cast<std::size_t>(width);
    std::fill(std::copy_n(base, given, all), all + width, 0);
    if (!isPlane(n)) continue;
    for (int i = plane; i < width; ++i) {
      const int from = base[i % plane];
      const long long label = from + static_cast<long long>(i / plane) * offset;
      if (label > kMaxLabel || label <= 0) {
        planes.tooFar.push_back(reader.Labels()[n]);
        std::fill(all + i, all + width, base[0]); // told once; the mesh fails
        break;
      }
      all[i] = static_cast<int>(label);
    }
  }
  reader.Widen(std::move(nodes), width);
  return planes;
}

bool inpS_GeneratedNodes::IsCompleted(const cow_String& type) {
  return isGasketOf18(type);
}

cow_List<int> inpS_GeneratedNodes::AcrossInstances(const inpS_ElementParameters& type,
                                                   inpS_ElementTopologyReader& reader) {
  cow_List<int> elements;
  const long long given = reader.Width();
  for (const inpS_ScopedNode& node : reader.ScopedNodes()) {
    const long long count = countOf(reader.Nodes().Data() + node.element * given, given);
    const bool leavesNodes = count == type.MinNodesPerElement();
    const int label = reader.Labels()[static_cast<std::size_t>(node.element)];
    if (leavesNodes && (elements.empty() || elements.back() != label)) elements.push_back(label);
  }
  return elements;
}

bool inpS_GeneratedNodes::TakesNewLabels(const inpS_MeshScope& scope,
                                         const cow_List<cow_String>& types) {
  const auto& blocks = scope.elements.Blocks();
  return std::any_of(blocks.begin(), blocks.end(),
                     [&](const auto& block) { return isGasketToComplete(block, types); });
}

void inpS_GeneratedNodes::Complete(inpS_MeshScopes& scopes, inpS_MeshScope& scope,
                                   const cow_List<cow_String>& types, KvoObjLabeler& labeler,
                                   int& largestLabel) {
  for (const inpS_ElementBlock& block : scope.elements.Blocks())
    if (block.offset != 0 && block.held) addImpliedNodes(scope, block, labeler, largestLabel);
  for (inpS_ElementBlock& block : scope.elements.Blocks()) {
    if (isGasketToComplete(block, types))
      completeGaskets(scopes, scope, block, labeler, largestLabel);
    block.completed = true;
  }
  scope.nodes.FinishGenerated();
}
