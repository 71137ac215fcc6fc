#include "inpS/sets/inpS_SurfaceNodalAreas.h"
#include "base/utl_Assert.h"
#include "base/utl_BlockSize.h"
#include "base/utl_Threads.h"
#include "database/KvoSimGrid.h"
#include "inpS/framework/inpS_System.h"
#include "parser/inp_KeywordTable.h"
#include <algorithm>
#include <numeric>

namespace {

using Run = inpS_SurfaceElements::Run;

constexpr std::size_t kFacesOfPiece = 4096;

// How much longer than the list of entries a table of all nodes between the first and the last may
// be.
constexpr int64_t kSparse = 32;

std::vector<int> columnsOf(std::span<const unsigned char> nodes) {
  std::vector<int> columns;
  for (unsigned char node : nodes) columns.push_back(node - 1);
  return columns;
}

} // namespace

inpS_SurfaceNodalAreas::inpS_SurfaceNodalAreas(const KvoObjMesh& mesh)
    : m_mesh(mesh), m_elements(mesh) {
  for (const KvoMeshNodeBlock& block : mesh.NodeBlocks())
    (block.flatFirst < 0 ? m_ofParts[block.owner.Object().Packed()] : m_flat).push_back(block);
  std::sort(m_flat.begin(), m_flat.end(),
            [](const auto& a, const auto& b) { return a.flatFirst < b.flatFirst; });
  for (auto& [owner, blocks] : m_ofParts)
    std::sort(blocks.begin(), blocks.end(),
              [](const auto& a, const auto& b) { return a.first < b.first; });
}

const cow_List<KvoMeshNodeBlock>&
inpS_SurfaceNodalAreas::NodesOf(const KvoSimPosition& owner) const {
  static const cow_List<KvoMeshNodeBlock> none;
  if (!owner.IsA(eds_RecordKind::Part)) return m_flat;
  const auto known = m_ofParts.find(owner.Object().Packed());
  return known == m_ofParts.end() ? none : known->second;
}

// ---- the faces' nodes

inpS_SurfaceNodalAreas::Face inpS_SurfaceNodalAreas::FaceOf(const inp_ElementInfo& info,
                                                            eds_SurfaceFace face) {
  using F = eds_SurfaceFace;
  using Functions = inpS_ShapeFunctions;
  const inp_Shape& shape = inp_shape(info.shape);
  const int n = static_cast<int>(face);
  if (face >= F::S1 && face <= F::S8) {
    const auto at = static_cast<std::size_t>(n - static_cast<int>(F::S1));
    if (at >= shape.faces.size()) return {};
    return {&Functions::OfFace(info.shape, at), columnsOf(shape.faces[at].nodes)};
  }
  if (face >= F::E1 && face <= F::E4) {
    const auto at = static_cast<std::size_t>(n - static_cast<int>(F::E1));
    if (at >= shape.edges.size()) return {};
    return {&Functions::OfEdge(info.shape, at), columnsOf(shape.edges[at].nodes)};
  }
  if (face == F::End1 || face == F::End2) {
    if (info.dimension != 1 || shape.edges.empty()) return {};
    const std::size_t end = face == F::End1 ? 0 : 1;
    return {&Functions::Of(inp_ShapeKind::Point), {shape.edges[0].nodes[end] - 1}};
  }
  if (info.dimension == 3 || shape.nodes == 0) return {}; // has faces, not sides
  Face whole{&Functions::Of(info.shape), std::vector<int>(static_cast<std::size_t>(shape.nodes))};
  std::iota(whole.columns.begin(), whole.columns.end(), 0);
  return whole;
}

void inpS_SurfaceNodalAreas::AddGroup(const Run& run, const Face& face, const inp_ElementInfo& info,
                                      const eds_MemberSet& elements, int64_t first, int64_t end) {
  Group group;
  group.functions = face.functions;
  const bool isRing = info.Is(inp_ElemAxisymmetric) && face.functions->Dimension() == 1;
  group.depth = isRing ? inpS_Depth::Ring : inpS_Depth::Unit;
  group.first = m_entries.Size();
  group.count = static_cast<std::size_t>(end - first);
  m_entries.Resize(group.first + group.count * face.columns.size());
  m_groups.push_back(group);
  const auto base = static_cast<int32_t>(run.block->nodeBase);
  int32_t* out = m_entries.Data() + group.first;
  for (int64_t n = first; n < end; ++n) {
    const int32_t* nodes = m_connectivity.Item(run.block->connectivity, elements[n] - run.first);
    for (int column : face.columns) {
      const int32_t node = column < run.block->width ? nodes[column] : -1;
      *out++ = node < 0 ? -1 : node + base;
    }
  }
}

void inpS_SurfaceNodalAreas::Gather(const KvoSurfaceFaces& faces, const cow_List<Run>& runs) {
  const eds_MemberSet& elements = faces.elements;
  utl_ASSERT(elements.IsAscending());
  for (int64_t n = 0; n < elements.Size();) {
    const Run* run = inpS_SurfaceElements::RunAt(runs, elements[n]);
    utl_ASSERT(run != nullptr);
    const int64_t first = n;
    while (n < elements.Size() && elements[n] < run->first + run->count) ++n;
    const inp_ElementInfo* info = inp_KeywordTable::Instance().FindElement(run->type);
    if (!info) continue; // a user element has no known faces
    const Face face = FaceOf(*info, faces.face);
    if (face.functions) AddGroup(*run, face, *info, elements, first, n);
  }
}

// The nodes of all faces, each once; entries become their places among them.
void inpS_SurfaceNodalAreas::NumberNodes(Areas& areas) {
  int32_t least = std::numeric_limits<int32_t>::max(), most = -1;
  for (int32_t node : m_entries) {
    if (node >= 0) least = std::min(least, node);
    most = std::max(most, node);
  }
  if (most < 0) return;
  std::vector<int32_t>& nodes = areas.nodes;
  const int64_t space = int64_t{most} - least + 1;
  if (space > kSparse * static_cast<int64_t>(m_entries.Size())) {
    nodes.assign(m_entries.begin(), m_entries.end());
    std::sort(nodes.begin(), nodes.end());
    nodes.erase(std::unique(nodes.begin(), nodes.end()), nodes.end());
    if (nodes.front() < 0) nodes.erase(nodes.begin());
    for (int32_t& node : m_entries)
      if (node >= 0)
        node = static_cast<int32_t>(std::lower_bound(nodes.begin(), nodes.end(), node) -
                                    nodes.begin());
    return;
  }
  std::vector<int32_t> placeOf(static_cast<std::size_t>(space), -1);
  for (int32_t node : m_entries)
    if (node >= 0) placeOf[static_cast<std::size_t>(node - least)] = 0;
  for (std::size_t n = 0; n < placeOf.size(); ++n) {
    if (placeOf[n] < 0) continue;
    placeOf[n] = static_cast<int32_t>(nodes.size());
    nodes.push_back(least + static_cast<int32_t>(n));
  }
  for (int32_t& node : m_entries)
    if (node >= 0) node = placeOf[static_cast<std::size_t>(node - least)];
}

void inpS_SurfaceNodalAreas::ReadCoordinates(const cow_List<KvoMeshNodeBlock>& blocks,
                                             std::span<const int32_t> nodes) {
  m_places.resize(nodes.size());
  const auto firstOf = [](const KvoMeshNodeBlock& block) {
    return block.flatFirst < 0 ? block.first : block.flatFirst;
  };
  auto block = blocks.begin();
  for (std::size_t n = 0; n < nodes.size(); ++n) {
    if (block == blocks.end() || nodes[n] >= firstOf(*block) + block->count)
      block = std::upper_bound(blocks.begin(), blocks.end(), nodes[n],
                               [&](int32_t node, const auto& b) { return node < firstOf(b); }) -
              1;
    const double* at = m_coordinates.Item(block->coordinates, nodes[n] - firstOf(*block));
    std::copy_n(at, 3, m_places[n].begin());
  }
}

// ---- areas

void inpS_SurfaceNodalAreas::MeasureFaces(const Group& group) {
  const std::size_t width = group.functions->Nodes();
  const std::size_t perPiece = utl_blockSize(kFacesOfPiece);
  const std::size_t pieces = (group.count + perPiece - 1) / perPiece;
  utl_parallelFor(pieces, [&](std::size_t piece) {
    inpS_Point nodes[inpS_ShapeFunctions::kMostNodes] = {};
    bool isAbsent[inpS_ShapeFunctions::kMostNodes];
    const std::size_t end = std::min((piece + 1) * perPiece, group.count);
    for (std::size_t face = piece * perPiece; face < end; ++face) {
      const std::size_t first = group.first + face * width;
      for (std::size_t n = 0; n < width; ++n) {
        const int32_t place = m_entries[first + n];
        isAbsent[n] = place < 0;
        if (place >= 0) nodes[n] = m_places[static_cast<std::size_t>(place)];
      }
      inpS_nodalAreas(*group.functions, group.depth, {nodes, width},
                      {m_shares.Data() + first, width}, {isAbsent, width});
    }
  });
}

inpS_SurfaceNodalAreas::Areas
inpS_SurfaceNodalAreas::Measure(const KvoSimPosition& owner,
                                const cow_List<KvoSurfaceFaces>& surface) {
  Areas areas;
  m_groups.clear();
  m_entries.Clear();
  for (const KvoSurfaceFaces& faces : surface) Gather(faces, m_elements.RunsOf(owner));
  NumberNodes(areas);
  ReadCoordinates(NodesOf(owner), areas.nodes);
  m_shares.Resize(m_entries.Size());
  for (const Group& group : m_groups) MeasureFaces(group);
  areas.areas.assign(areas.nodes.size(), 0);
  for (std::size_t n = 0; n < m_entries.Size(); ++n)
    if (m_entries[n] >= 0) areas.areas[static_cast<std::size_t>(m_entries[n])] += m_shares[n];
  return areas;
}

// ---- the store

KvoSimDistribution inpS_SurfaceNodalAreas::DistributionOf(const KvoSimPosition& owner) {
  const bool isPart = owner.IsA(eds_RecordKind::Part);
  KvoSimDistribution known =
      isPart ? owner.GetDistribution(eds_Member::SurfaceNodalAreas) : m_mesh.GetSurfaceNodalAreas();
  if (!known.IsNull()) return known;
  const KvoSimGrid byNode{m_mesh.CollectionOf(owner, true)};
  const KvoSimDistribution made = owner.Context().CreateDistribution(
      eds_DataType::SurfaceNodalAreas, byNode, {eds_ValueType::Double, 1});
  if (isPart)
    owner.SetPosition(eds_Member::SurfaceNodalAreas, made.Position());
  else
    m_mesh.SetSurfaceNodalAreas(made);
  return made;
}

cow_List<KvoObjSurface> inpS_SurfaceNodalAreas::Save() {
  cow_List<KvoObjSurface> leftOut;
  for (const KvoSimPosition& position :
       m_mesh.Position().Context().GetRecords(eds_RecordKind::Surface)) {
    KvoObjSurface surface(position);
    if (surface.Type() != eds_SurfaceType::Element || surface.HasNodalAreas()) continue;
    const KvoSimPosition owner = surface.Owner();
    Areas areas = Measure(owner, surface.Faces());
    if (areas.nodes.empty()) continue;
    if (!inpS_isFinite(areas.areas)) {
      leftOut.push_back(surface);
      continue;
    }
    eds_ArrayWriter array(position, eds_ValueType::Double, 1);
    array.Append(std::span<const double>(areas.areas));
    const KvoSimCSet nodes =
        m_mesh.CollectionOf(owner, true).CreateCSet(eds_MemberSet::Ordered(std::move(areas.nodes)));
    surface.SetNodalAreas(DistributionOf(owner), nodes.ID(), array.Finish());
  }
  return leftOut;
}
