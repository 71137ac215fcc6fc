#include "inpS/mesh/inpS_MeshStore.h"
#include "base/utl_Assert.h"
#include "database/KvoObjElementSet.h"
#include "database/KvoObjLabeler.h"
#include "database/KvoObjMesh.h"
#include "database/KvoObjModel.h"
#include "database/KvoObjNodeSet.h"
#include "database/KvoSimCSet.h"
#include "database/KvoSimCollection.h"
#include "database/KvoSimDataRecord.h"
#include "database/KvoSimDistribution.h"
#include "database/KvoSimGrid.h"
#include "inpS/keywords/inpS_KeptParts.h"
#include "inpS/mesh/inpS_ElementParameters.h"
#include "inpS/mesh/inpS_SetResolver.h"
#include "inpS/sets/inpS_SetServices.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"
#include <algorithm>

namespace {

bool isPart(const inpS_MeshScope& scope) {
  return scope.kind == inpS_MeshScope::Kind::Part;
}

template <class T>
eds_ArrayID writeArray(const KvoSimPosition& anyObject, std::span<const T> values, int width) {
  eds_ArrayWriter writer(anyObject, eds_valueTypeOf<T>(), width);
  writer.Append(values);
  return writer.Finish();
}

// Points of an instance where its placement puts them. One that it would put at no finite place
// stays where it was; these are counted.
eds_ArrayID writePlaced(inpS_MeshScope& scope, const eds_ArrayID& local) {
  eds_ArrayReader reader(local);
  eds_ArrayWriter writer(scope.owner, eds_ValueType::Double, 3);
  utl_Buffer<double> moved;
  for (long long chunk = 0; chunk < reader.ChunkCount(); ++chunk) {
    const std::span<const double> from = reader.Chunk<double>(chunk);
    moved.Resize(from.size());
    scope.placement.Transform(from, moved);
    if (!inpS_isFinite(moved))
      for (std::size_t n = 0; n + 2 < from.size(); n += 3) {
        if (inpS_isFinite(std::span<const double>(moved).subspan(n, 3))) continue;
        std::copy_n(&from[n], 3, &moved[n]);
        ++scope.unplacedNodes;
      }
    writer.Append(std::span<const double>(moved));
  }
  return writer.Finish();
}

// Normals of an instance, turned with it; null when there are none.
eds_ArrayID writePlacedNormals(const inpS_MeshScope& scope, const utl_Buffer<double>& local) {
  if (local.IsEmpty()) return {};
  utl_Buffer<double> turned = local.Copy();
  for (std::size_t n = 0; n + 2 < turned.Size(); n += 3)
    scope.placement.TransformVector(turned[n], turned[n + 1], turned[n + 2]);
  return writeArray<double>(scope.owner, std::span<const double>(turned), 3);
}

// A restart meets pairs of elements that were there before; they come first.
void addStored(const KvoSimDistribution& before, utl_Buffer<int>& pairs) {
  if (before.IsNull() || before.IsEmpty()) return;
  const std::vector<int64_t> drawers = before.DrawerIDArray();
  if (drawers.size() != 1) utl_assertionFailed("drawers.Size() == 1");
  eds_ArrayReader array(before.DrawerArray(drawers.front()));
  const int64_t size = array.Count() * array.Width() * eds_sizeOf(array.ValueType());
  const auto n = static_cast<std::size_t>(2 * array.Count());
  if (n * sizeof(int) != static_cast<std::size_t>(size))
    utl_assertionFailed("n*sizeof(int) == size");
  utl_Buffer<int> all(n);
  array.ReadPiece(0, std::span<int>(all));
  all.Append(std::span<const int>(pairs));
  pairs = std::move(all);
}

// A list of pairs, with all that is its own.
void removeList(const KvoSimDistribution& list) {
  if (list.IsNull()) return;
  const KvoSimPosition position = list.Position();
  for (const KvoSimPosition& drawer : position.GetVector(eds_Member::Drawers)) {
    const KvoSimCSet over = list.DrawerCSet(drawer.Object().id);
    KvoSimCollection(position.Store(), over.CollectionID()).Position().Remove();
    for (const int field : {eds_Drawer_Array, eds_Drawer_Over})
      drawer.DataRecord().GetReference(field).Remove();
    drawer.Remove();
  }
  position.Remove();
}

} // namespace

inpS_MeshStore::inpS_MeshStore(const KvoObjDocument& document, KvoObjLabeler& nodes,
                               KvoObjLabeler& elements, inpS_MeshScopes& scopes)
    : m_document(document), m_nodes(nodes), m_elements(elements), m_scopes(scopes) {}

KvoSimPosition inpS_MeshStore::SaveElementType(const KvoObjDocument& document,
                                               const inpS_ElementParameters& type, int dimension) {
  for (const KvoSimPosition& known :
       document.Context().GetRecords(eds_RecordKind::ElementSpec)) // a restart meets old ones
    if (known.DataRecord().GetString(eds_ElementSpec_Name) == type.Name()) return known;
  const KvoSimPosition spec = document.CreateDataRecord(eds_RecordKind::ElementSpec);
  KvoSimDataRecord record = spec.DataRecord();
  record.SetString(eds_ElementSpec_Name, type.Name());
  record.SetInt(eds_ElementSpec_MinNodes, type.MinNodesPerElement());
  record.SetInt(eds_ElementSpec_MaxNodes, type.MaxNodesPerElement());
  record.SetInt(eds_ElementSpec_Dimension, dimension);
  record.SetBool(eds_ElementSpec_UserElement, type.IsUserElement());
  record.SetBool(eds_ElementSpec_Substructure, type.IsSubstructure());
  return spec;
}

void inpS_MeshStore::SaveExtraNodes() {
  KvoObjMesh mesh = m_document.GetModel().GetMesh();
  utl_Buffer<int> beams, references;
  for (const inpS_MeshScope& scope : m_scopes.All()) {
    if (isPart(scope)) continue;
    const auto gather = [&scope](const utl_Buffer<int>& own, utl_Buffer<int>& pairs) {
      for (std::size_t n = 0; n < own.Size(); n += 2) {
        pairs.Append(static_cast<int>(scope.elementBase + own[n]));
        pairs.Append(static_cast<int>(scope.nodeBase + own[n + 1]));
      }
    };
    for (const inpS_MeshScope* from : {static_cast<const inpS_MeshScope*>(scope.part), &scope}) {
      if (!from) continue;
      gather(from->elements.BeamExtraNodes(), beams);
      gather(from->elements.ReferenceNodes(), references);
    }
  }
  const auto save = [&](utl_Buffer<int> pairs, const KvoSimDistribution& before,
                        eds_DataType type) {
    addStored(before, pairs);
    KvoSimCollection list = m_document.Context().CreateCollection(eds_CollectionKind::Term);
    const auto count = static_cast<long long>(pairs.Size() / 2);
    list.ExtendSpace(count);
    KvoSimDistribution distribution = m_document.CreateTypedDistribution(
        type, KvoSimGrid{list}, KvoSimRangeType(eds_ValueType::Int32, 2));
    distribution.AddDrawer(list.CreateCSetStrided(0, count).ID(),
                           writeArray<int>(mesh.Position(), std::span<const int>(pairs), 2));
    removeList(before); // it is in the new one
    return distribution;
  };
  if (!beams.IsEmpty())
    mesh.SetBeamOrientationExtraNodes(
        save(std::move(beams), mesh.GetBeamOrientationExtraNodes(), eds_DataType::BeamExtraNodes));
  if (!references.IsEmpty())
    mesh.SetIrsDragchainRefNodes(save(std::move(references), mesh.GetIrsDragchainRefNodes(),
                                      eds_DataType::DragchainRefNodes));
}

// ---- nodes

void inpS_MeshStore::SaveNodes(inp_Visitor& messages) {
  for (inpS_MeshScope& scope : m_scopes.All()) {
    if (!isPart(scope)) m_nodes.SetFlatFirst(scope.nodeOccurrence, scope.nodeBase);
    if (scope.part && !scope.isStored) SaveCopiedNodes(scope, *scope.part);
    SaveOwnNodes(scope);
    if (scope.unplacedNodes > 0)
      messages.AddError(inp_Utils::MessageInKeyword(
          scope.keyword,
          inp_Utils::Format("The numbers are too large to reckon with: the placement has no finite "
                            "place for %lld of the nodes; they stay where the deck lists them.",
                            scope.unplacedNodes)));
  }
  SaveUserSets(true);
}

void inpS_MeshStore::SaveOwnNodes(inpS_MeshScope& scope) {
  const inpS_NodeList& nodes = scope.nodes;
  if (nodes.Count() == 0) return;
  KvoObjMesh mesh = m_document.GetModel().GetMesh();
  KvoMeshNodeBlock block;
  block.owner = scope.owner;
  block.first = scope.nodeCount - nodes.Count();
  block.count = nodes.Count();
  block.flatFirst = isPart(scope) ? -1 : scope.nodeBase + block.first;
  if (scope.generatedFrom >= 0) block.generated = scope.nodeCount - scope.generatedFrom;
  block.coordinates = nodes.Array();
  if (!nodes.NormalOrdinals().IsEmpty()) {
    block.normalOrdinals =
        writeArray<int>(scope.owner, std::span<const int>(nodes.NormalOrdinals()), 1);
    block.normals = writeArray<double>(scope.owner, std::span<const double>(nodes.Normals()), 3);
  }
  if (!scope.placement.IsIdentity()) { // the deck lists them in the instance's own coordinates
    block.localCoordinates = block.coordinates;
    block.localNormals = block.normals;
    block.coordinates = writePlaced(scope, block.localCoordinates);
    block.normals = writePlacedNormals(scope, nodes.Normals());
  }
  mesh.AddNodes(block);
  scope.normalOrdinals = block.normalOrdinals;
  scope.normals = block.normals;
}

void inpS_MeshStore::SaveCopiedNodes(inpS_MeshScope& scope, const inpS_MeshScope& part) {
  if (part.nodes.Count() == 0) return;
  KvoMeshNodeBlock block;
  block.owner = scope.owner;
  block.count = part.nodes.Count();
  block.flatFirst = scope.nodeBase;
  if (part.generatedFrom >= 0) block.generated = part.nodeCount - part.generatedFrom;
  block.coordinates = part.nodes.Array();
  block.normalOrdinals = part.normalOrdinals;
  block.normals = part.normals;
  if (!scope.placement.IsIdentity()) {
    block.coordinates = writePlaced(scope, part.nodes.Array());
    block.normals = writePlacedNormals(scope, part.nodes.Normals());
  }
  m_document.GetModel().GetMesh().AddNodes(block);
}

// ---- elements

void inpS_MeshStore::SaveElements(const cow_List<KvoSimPosition>& specs) {
  for (inpS_MeshScope& scope : m_scopes.All()) {
    if (!isPart(scope)) m_elements.SetFlatFirst(scope.elementOccurrence, scope.elementBase);
    if (scope.part && !scope.isStored) SaveSharedElements(scope, *scope.part);
    SaveOwnElements(scope, specs);
    SaveCounts(scope);
  }
  SaveUserSets(false);
}

void inpS_MeshStore::SaveOwnElements(inpS_MeshScope& scope, const cow_List<KvoSimPosition>& specs) {
  KvoObjMesh mesh = m_document.GetModel().GetMesh();
  for (inpS_ElementBlock& block : scope.elements.Blocks()) {
    KvoMeshElementBlock stored;
    stored.owner = scope.owner;
    stored.spec = specs[static_cast<std::size_t>(block.spec)];
    stored.first = block.first;
    stored.count = block.count;
    stored.flatFirst = isPart(scope) ? -1 : scope.elementBase + block.first;
    stored.nodeBase = scope.nodeBase;
    stored.width = block.width;
    stored.offset = block.offset;
    stored.source = block.source;
    stored.connectivity = block.array;
    mesh.AddElements(stored);
    scope.stored.push_back(stored);
  }
}

void inpS_MeshStore::SaveSharedElements(const inpS_MeshScope& scope, const inpS_MeshScope& part) {
  KvoObjMesh mesh = m_document.GetModel().GetMesh();
  for (KvoMeshElementBlock block : part.stored) {
    block.owner = scope.owner;
    block.flatFirst = scope.elementBase + block.first;
    block.nodeBase = scope.nodeBase;
    mesh.AddElements(block);
  }
}

void inpS_MeshStore::SaveCounts(const inpS_MeshScope& scope) {
  KvoSimDataRecord record = scope.owner.DataRecord();
  if (isPart(scope)) {
    record.SetInt(eds_Part_NodeCount, scope.nodeCount);
    record.SetInt(eds_Part_ElementCount, scope.elementCount);
  } else if (record.IsA(eds_RecordKind::Instance)) {
    record.SetInt(eds_Instance_FirstNode, scope.nodeBase);
    record.SetInt(eds_Instance_NodeCount, scope.nodeCount);
    record.SetInt(eds_Instance_FirstElement, scope.elementBase);
    record.SetInt(eds_Instance_ElementCount, scope.elementCount);
    if (!scope.isStored)
      record.SetBool(eds_Instance_Dependent,
                     scope.nodes.Count() == 0 && scope.elements.Blocks().empty());
  } else if (record.IsA(eds_RecordKind::Assembly)) {
    record.SetInt(eds_Assembly_FirstNode, scope.nodeBase);
    record.SetInt(eds_Assembly_NodeCount, scope.nodeCount);
    record.SetInt(eds_Assembly_FirstElement, scope.elementBase);
    record.SetInt(eds_Assembly_ElementCount, scope.elementCount);
  }
}

// ---- sets

namespace {

// What a restart makes larger keeps its record.
template <class Set> Set found(const KvoSimPosition& stored, const KvoSimContext& context) {
  return stored.IsNull() ? Set(context, "") : Set(stored);
}

} // namespace

// The sets of all nodes and of those the deck itself lists (generated ones are left out); likewise
// of elements, where the two are the same.
void inpS_MeshStore::SaveUserSets(bool nodes) {
  KvoObjMesh mesh = m_document.GetModel().GetMesh();
  const KvoSimContext context = m_document.Context();
  if (!nodes) {
    KvoSimCollection all = mesh.GetElementCollection();
    auto elements = found<KvoObjElementSet>(mesh.GetElements(), context);
    elements.SetMembership(all.BiggestCSetID());
    mesh.SetElements(elements);
    mesh.SetUserElements(elements);
    return;
  }
  KvoSimCollection all = mesh.GetNodeCollection();
  auto every = found<KvoObjNodeSet>(mesh.GetNodes(), context);
  every.SetMembership(all.BiggestCSetID());
  mesh.SetNodes(every);
  // From the blocks, which know of those from before a restart as well.
  const std::vector<KvoMeshNodeBlock> blocks = mesh.NodeBlocks();
  if (std::none_of(blocks.begin(), blocks.end(),
                   [](const auto& block) { return block.flatFirst >= 0 && block.generated > 0; })) {
    mesh.SetUserNodes(every);
    return;
  }
  std::vector<int> given;
  for (const KvoMeshNodeBlock& block : blocks) {
    if (block.flatFirst < 0) continue;
    for (long long n = 0; n < block.count - block.generated; ++n)
      given.push_back(static_cast<int>(block.flatFirst + n));
  }
  std::sort(given.begin(), given.end());
  const bool own = mesh.GetUserNodes() != mesh.GetNodes();
  auto user = found<KvoObjNodeSet>(own ? mesh.GetUserNodes() : KvoSimPosition(), context);
  user.SetMembership(all, given);
  mesh.SetUserNodes(user);
}

// Node sets before element sets, as a deck written back has them.
void inpS_MeshStore::SaveSets(inpS_SetResolver& resolver) {
  for (inpS_MeshScope& scope : m_scopes.All())
    for (const inpS_SetKind kind : {inpS_SetKind::Nodes, inpS_SetKind::Elements})
      for (const inpS_SetDefinition& definition : scope.sets.All())
        if (definition.kind == kind && !definition.isStored) SaveSet(scope, definition, resolver);
}

eds_Member inpS_MeshStore::MemberOf(const inpS_SetDefinition& set) {
  if (set.kind == inpS_SetKind::Nodes)
    return set.internal ? eds_Member::InternalNodeSets : eds_Member::NodeSets;
  return set.internal ? eds_Member::InternalElementSets : eds_Member::ElementSets;
}

void inpS_MeshStore::SaveSet(inpS_MeshScope& scope, const inpS_SetDefinition& definition,
                             inpS_SetResolver& resolver) {
  const KvoObjMesh mesh = m_document.GetModel().GetMesh();
  const bool nodes = definition.kind == inpS_SetKind::Nodes;
  KvoSimCollection collection = mesh.CollectionOf(scope.owner, nodes);
  const KvoSimCSetID members = collection.CreateCSet(resolver.Members(scope, definition)).ID();
  const auto save = [&](auto set) {
    set.SetUnsorted(definition.unsorted);
    set.SetMembership(members);
    const inpS_KeptPart part{0, definition.otherParameters, resolver.LinesOfText(definition)};
    if (!part.parameters.empty() || !part.lines.empty()) inpS_keepPart(set.Position(), part);
  };
  if (nodes)
    save(inpS_SetServices::InsertNodeSet(scope.owner, definition.name, definition.internal));
  else
    save(inpS_SetServices::InsertElementSet(scope.owner, definition.name, definition.internal));
}
