#include "inpS/sets/inpS_SurfaceElements.h"
#include "database/KvoSimDataRecord.h"
#include "parser/inp_KeywordTable.h"
#include <algorithm>

namespace {

using Face = eds_SurfaceFace;

constexpr unsigned bit(Face face) {
  return 1u << static_cast<int>(face);
}

// `count` faces from one on.
constexpr unsigned bits(Face first, std::size_t count) {
  return ((1u << count) - 1) << static_cast<int>(first);
}

// Shells, membranes, rigid faces: what has two sides to be told apart.
bool isSheet(const inp_ElementInfo& info) {
  return info.dimension == 2 && (info.Is(inp_ElemShell) || info.Is(inp_ElemMembrane) ||
                                 info.Is(inp_ElemRigid) || info.space == 3);
}

// Elements between points that have no surface of their own.
bool isLink(const inp_ElementInfo& info) {
  return info.Is(inp_ElemConnector) || info.Is(inp_ElemSpring) || info.Is(inp_ElemMass) ||
         info.Is(inp_ElemCoupling);
}

} // namespace

bool inpS_hasFreeFaces(const inp_ElementInfo& info) {
  return (info.dimension == 3 || (info.dimension == 2 && !isSheet(info))) && !isLink(info) &&
         !inp_shape(info.shape).faces.empty();
}

unsigned inpS_facesOf(const inp_ElementInfo& info) {
  if (isLink(info)) return 0;
  const inp_Shape& shape = inp_shape(info.shape);
  const std::size_t edges = std::min<std::size_t>(shape.edges.size(), 4);
  if (info.dimension == 3) {
    if (shape.faces.empty()) return 0;
    return bits(Face::S1, shape.faces.size()) | bit(Face::Whole);
  }
  if (isSheet(info))
    return edges == 0 ? 0
                      : bit(Face::Whole) | bit(Face::SPos) | bit(Face::SNeg) |
                            bits(Face::E1, edges) | bit(Face::Edge);
  if (info.dimension == 2)
    return shape.faces.empty()
               ? 0
               : bits(Face::S1, shape.faces.size()) | bits(Face::E1, edges) | bit(Face::Whole);
  if (info.dimension == 1 && shape.nodes > 0)
    return bit(Face::Whole) | bit(Face::SPos) | bit(Face::SNeg) | bit(Face::End1) | bit(Face::End2);
  return 0;
}

inpS_SurfaceElements::inpS_SurfaceElements(const KvoObjMesh& mesh)
    : m_blocks(mesh.ElementBlocks()) {
  for (const KvoMeshElementBlock& block : m_blocks) {
    Run run;
    run.count = block.count;
    run.block = &block;
    if (!block.spec.IsNull()) run.type = block.spec.DataRecord().ReturnString(eds_ElementSpec_Name);
    if (const inp_ElementInfo* info = inp_KeywordTable::Instance().FindElement(run.type)) {
      run.faces = inpS_facesOf(*info);
      run.hasFreeFaces = inpS_hasFreeFaces(*info);
    }
    const bool ofPart = block.flatFirst < 0;
    run.first = ofPart ? block.first : block.flatFirst;
    (ofPart ? m_ofParts[block.owner.Object().Packed()] : m_flat).push_back(std::move(run));
  }
  const auto earlier = [](const Run& a, const Run& b) { return a.first < b.first; };
  std::sort(m_flat.begin(), m_flat.end(), earlier);
  for (auto& [owner, runs] : m_ofParts) std::sort(runs.begin(), runs.end(), earlier);
}

const cow_List<inpS_SurfaceElements::Run>&
inpS_SurfaceElements::RunsOf(const KvoSimPosition& owner) const {
  static const cow_List<Run> none;
  if (!owner.IsA(eds_RecordKind::Part)) return m_flat;
  const auto known = m_ofParts.find(owner.Object().Packed());
  return known == m_ofParts.end() ? none : known->second;
}

const inpS_SurfaceElements::Run* inpS_SurfaceElements::RunAt(const cow_List<Run>& runs,
                                                             long long element) {
  auto at = std::upper_bound(runs.begin(), runs.end(), element,
                             [](long long n, const Run& run) { return n < run.first; });
  if (at == runs.begin()) return nullptr;
  --at;
  return element < at->first + at->count ? &*at : nullptr;
}
