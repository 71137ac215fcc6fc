#include "database/KvoObjMesh.h"
#include "base/utl_Assert.h"
#include "database/KvoObjDocument.h"

void KvoObjMesh::Register(const KvoObjDocument& document) {
  m_position = document.CreateDataRecord(eds_RecordKind::Mesh);
}

// ---- members

KvoSimCollection KvoObjMesh::GetNodeCollection() const {
  return m_position.GetCollection(eds_Member::NodeCollection);
}
void KvoObjMesh::SetNodeCollection(const KvoSimCollection& collection) {
  m_position.SetPosition(eds_Member::NodeCollection, collection.Position());
}
KvoSimCollection KvoObjMesh::GetElementCollection() const {
  return m_position.GetCollection(eds_Member::ElementCollection);
}
void KvoObjMesh::SetElementCollection(const KvoSimCollection& collection) {
  m_position.SetPosition(eds_Member::ElementCollection, collection.Position());
}
KvoSimCollection KvoObjMesh::CollectionOf(const KvoSimPosition& owner, bool nodes) const {
  if (!owner.IsA(eds_RecordKind::Part)) return nodes ? GetNodeCollection() : GetElementCollection();
  const eds_CollectionKind kind = nodes ? eds_CollectionKind::Node : eds_CollectionKind::Element;
  for (const KvoSimPosition& known : owner.GetVector(eds_Member::Collections))
    if (known.AsCollection().Kind() == kind) return known.AsCollection();
  const KvoSimDataRecord part = owner.DataRecord();
  const KvoSimPosition created =
      owner.CreateTypedCollection(kind, part.ReturnString(eds_Part_Name));
  owner.Associate(eds_Member::Collections, created);
  KvoSimCollection collection = created.AsCollection();
  collection.ExtendSpace(part.GetInt64(nodes ? eds_Part_NodeCount : eds_Part_ElementCount));
  return collection;
}
KvoSimDSet KvoObjMesh::GetConnectivity() const {
  return m_position.GetDSet(eds_Member::Connectivity);
}
void KvoObjMesh::SetConnectivity(const KvoSimDSet& dset) {
  m_position.SetPosition(eds_Member::Connectivity, dset.Position());
}

#define KVO_MESH_DISTRIBUTION(name)                                                                \
  KvoSimDistribution KvoObjMesh::Get##name() const {                                               \
    return m_position.GetDistribution(eds_Member::name);                                           \
  }                                                                                                \
  void KvoObjMesh::Set##name(const KvoSimDistribution& distribution) {                             \
    m_position.SetPosition(eds_Member::name, distribution.Position());                             \
  }
KVO_MESH_DISTRIBUTION(Coordinates)
KVO_MESH_DISTRIBUTION(NodeNormals)
KVO_MESH_DISTRIBUTION(ElementNormals)
KVO_MESH_DISTRIBUTION(ElementSpecAssignment)
KVO_MESH_DISTRIBUTION(BeamOrientationExtraNodes)
KVO_MESH_DISTRIBUTION(SurfaceNodalAreas)
KVO_MESH_DISTRIBUTION(IrsDragchainRefNodes)
#undef KVO_MESH_DISTRIBUTION

KvoSimPosition KvoObjMesh::GetCyclicSymmetry() const {
  return m_position.Follow(eds_Member::CyclicSymmetry);
}
void KvoObjMesh::SetCyclicSymmetry(const KvoSimPosition& position) {
  m_position.SetPosition(eds_Member::CyclicSymmetry, position);
}

#define KVO_MESH_SET(name, Type)                                                                   \
  KvoSimPosition KvoObjMesh::Get##name() const {                                                   \
    return m_position.Follow(eds_Member::name);                                                    \
  }                                                                                                \
  void KvoObjMesh::Set##name(const Type& set) {                                                    \
    m_position.SetPosition(eds_Member::name, set.Position());                                      \
  }                                                                                                \
  void KvoObjMesh::Unset##name() {                                                                 \
    m_position.UnsetPosition(eds_Member::name);                                                    \
  }
KVO_MESH_SET(Nodes, KvoObjNodeSet)
KVO_MESH_SET(Elements, KvoObjElementSet)
KVO_MESH_SET(UserNodes, KvoObjNodeSet)
KVO_MESH_SET(UserElements, KvoObjElementSet)
#undef KVO_MESH_SET

KvoObjElementSet KvoObjMesh::CreateElementsSet(const cow_String& name, int32_t first,
                                               int64_t count) {
  KvoObjElementSet set(m_position.Context(), name);
  set.SetMembershipStrided(GetElementCollection(), first, count);
  return set;
}

// ---- blocks

namespace {

// A block of the flat mesh lies at the end of its collection, or within what is there already.
KvoSimCSetID flatRange(KvoSimCollection collection, int64_t first, int64_t count) {
  const int64_t space = collection.Space();
  utl_ASSERT(first <= space);
  if (first + count > space) collection.ExtendSpace(first + count - space);
  return collection.CreateCSetStrided(static_cast<int32_t>(first), count).ID();
}

void setArray(const KvoSimDataRecord& record, int field, const eds_ArrayID& array) {
  if (array.IsNull()) return;
  KvoSimDataRecord(record).SetReference(field, array.Position());
}

// An owner knows its blocks; all blocks are all records of the kind.
std::vector<KvoSimPosition> blocksOf(const KvoSimPosition& mesh, const KvoSimPosition& owner,
                                     eds_Member member, eds_RecordKind kind) {
  return owner.IsNull() ? mesh.Context().GetRecords(kind) : owner.GetVector(member);
}

eds_ArrayID arrayOf(const KvoSimDataRecord& record, int field) {
  const KvoSimPosition array = record.GetReference(field);
  return array.IsNull() ? eds_ArrayID() : eds_ArrayID{array.Store(), array.ID()};
}

} // namespace

KvoSimPosition KvoObjMesh::AddNodes(const KvoMeshNodeBlock& block) {
  const KvoSimPosition position = m_position.CreateDataRecord(eds_RecordKind::NodeBlock);
  KvoSimDataRecord record = position.DataRecord();
  record.SetReference(eds_NodeBlock_Owner, block.owner);
  record.SetInt(eds_NodeBlock_First, block.first);
  record.SetInt(eds_NodeBlock_Count, block.count);
  record.SetInt(eds_NodeBlock_CoordinateCount, block.coordinateCount);
  if (block.generated != 0) record.SetInt(eds_NodeBlock_Generated, block.generated);
  setArray(record, eds_NodeBlock_Coordinates, block.coordinates);
  setArray(record, eds_NodeBlock_NormalOrdinals, block.normalOrdinals);
  setArray(record, eds_NodeBlock_Normals, block.normals);
  setArray(record, eds_NodeBlock_LocalCoordinates, block.localCoordinates);
  setArray(record, eds_NodeBlock_LocalNormals, block.localNormals);
  block.owner.Associate(eds_Member::NodeBlocks, position);
  if (block.flatFirst < 0) return position;
  record.SetInt(eds_NodeBlock_FlatFirst, block.flatFirst);
  const KvoSimCollection nodes = GetNodeCollection();
  if (nodes.IsNull()) return position;
  const KvoSimCSetID range = flatRange(nodes, block.flatFirst, block.count);
  KvoSimDistribution coordinates = GetCoordinates();
  if (!coordinates.IsNull() && !block.coordinates.IsNull())
    coordinates.AddDrawer(range, block.coordinates);
  return position;
}

KvoSimPosition KvoObjMesh::AddElements(const KvoMeshElementBlock& block) {
  const KvoSimPosition position = m_position.CreateDataRecord(eds_RecordKind::ElementBlock);
  KvoSimDataRecord record = position.DataRecord();
  record.SetReference(eds_ElementBlock_Owner, block.owner);
  record.SetReference(eds_ElementBlock_Spec, block.spec);
  record.SetInt(eds_ElementBlock_First, block.first);
  record.SetInt(eds_ElementBlock_Count, block.count);
  record.SetInt(eds_ElementBlock_Width, block.width);
  record.SetInt(eds_ElementBlock_NodeBase, block.nodeBase);
  if (block.offset != 0) record.SetInt(eds_ElementBlock_Offset, block.offset);
  if (!block.source.empty()) record.SetString(eds_ElementBlock_Source, block.source);
  setArray(record, eds_ElementBlock_Connectivity, block.connectivity);
  block.owner.Associate(eds_Member::ElementBlocks, position);
  if (block.flatFirst < 0) return position;
  record.SetInt(eds_ElementBlock_FlatFirst, block.flatFirst);
  const KvoSimCollection elements = GetElementCollection();
  if (elements.IsNull()) return position;
  const KvoSimCSetID range = flatRange(elements, block.flatFirst, block.count);
  KvoSimDSet connectivity = GetConnectivity();
  if (connectivity.IsNull() || block.connectivity.IsNull()) return position;
  WidthDistribution(connectivity, block.width).AddDrawer(range, block.connectivity);
  return position;
}

// The connectivity is one data set with a distribution per number of nodes.
KvoSimDistribution KvoObjMesh::WidthDistribution(KvoSimDSet connectivity, int width) {
  for (const KvoSimDistribution& distribution : connectivity.Representation())
    if (distribution.RangeType().NumValues() == width) return distribution;
  const KvoSimDistribution distribution = m_position.Context().CreateDistribution(
      eds_DataType::Connectivity, connectivity.Grid(), {eds_ValueType::Int32, width});
  connectivity.Collect(distribution);
  return distribution;
}

std::vector<KvoMeshNodeBlock> KvoObjMesh::NodeBlocks(const KvoSimPosition& owner) const {
  std::vector<KvoMeshNodeBlock> blocks;
  for (const KvoSimPosition& position :
       blocksOf(m_position, owner, eds_Member::NodeBlocks, eds_RecordKind::NodeBlock)) {
    const KvoSimDataRecord record = position.DataRecord();
    KvoMeshNodeBlock block;
    block.owner = record.GetReference(eds_NodeBlock_Owner);
    block.first = record.GetInt64(eds_NodeBlock_First);
    block.count = record.GetInt64(eds_NodeBlock_Count);
    block.flatFirst = record.GetInt64(eds_NodeBlock_FlatFirst);
    block.generated = record.GetInt64(eds_NodeBlock_Generated);
    block.coordinateCount = record.GetInt(eds_NodeBlock_CoordinateCount);
    block.coordinates = arrayOf(record, eds_NodeBlock_Coordinates);
    block.normalOrdinals = arrayOf(record, eds_NodeBlock_NormalOrdinals);
    block.normals = arrayOf(record, eds_NodeBlock_Normals);
    block.localCoordinates = arrayOf(record, eds_NodeBlock_LocalCoordinates);
    block.localNormals = arrayOf(record, eds_NodeBlock_LocalNormals);
    blocks.push_back(std::move(block));
  }
  return blocks;
}

std::vector<KvoMeshElementBlock> KvoObjMesh::ElementBlocks(const KvoSimPosition& owner) const {
  std::vector<KvoMeshElementBlock> blocks;
  for (const KvoSimPosition& position :
       blocksOf(m_position, owner, eds_Member::ElementBlocks, eds_RecordKind::ElementBlock)) {
    const KvoSimDataRecord record = position.DataRecord();
    KvoMeshElementBlock block;
    block.owner = record.GetReference(eds_ElementBlock_Owner);
    block.spec = record.GetReference(eds_ElementBlock_Spec);
    block.first = record.GetInt64(eds_ElementBlock_First);
    block.count = record.GetInt64(eds_ElementBlock_Count);
    block.flatFirst = record.GetInt64(eds_ElementBlock_FlatFirst);
    block.nodeBase = record.GetInt64(eds_ElementBlock_NodeBase);
    block.width = record.GetInt(eds_ElementBlock_Width);
    block.offset = record.GetInt(eds_ElementBlock_Offset);
    block.source = record.ReturnString(eds_ElementBlock_Source);
    block.connectivity = arrayOf(record, eds_ElementBlock_Connectivity);
    blocks.push_back(std::move(block));
  }
  return blocks;
}

std::vector<KvoSimPosition> KvoObjMesh::NodeSets(const KvoSimPosition& owner, bool internal) const {
  return owner.FollowMap(internal ? eds_Member::InternalNodeSets : eds_Member::NodeSets);
}

std::vector<KvoSimPosition> KvoObjMesh::ElementSets(const KvoSimPosition& owner,
                                                    bool internal) const {
  return owner.FollowMap(internal ? eds_Member::InternalElementSets : eds_Member::ElementSets);
}
