#include "inpS/sets/inpS_SurfaceCrop.h"
#include "database/eds_Array.h"
#include "parser/inp_KeywordTable.h"
#include <algorithm>
#include <cmath>
#include <optional>

namespace {

using Face = eds_SurfaceFace;

constexpr double kTolerance = 1e-9; // of the box's size: nodes on its boundary are in it

// The local nodes, from 1, of a face of a shape; all of them for a side.
std::span<const unsigned char> nodesOf(const inp_Shape& shape, Face face) {
  const int n = static_cast<int>(face);
  const auto at = [](std::span<const inp_ShapeList> lists, int index) {
    return index < static_cast<int>(lists.size()) ? lists[static_cast<std::size_t>(index)].nodes
                                                  : std::span<const unsigned char>();
  };
  if (face >= Face::S1 && face <= Face::S8) return at(shape.faces, n - static_cast<int>(Face::S1));
  if (face >= Face::E1 && face <= Face::E4) return at(shape.edges, n - static_cast<int>(Face::E1));
  if (face == Face::End1) return at(shape.edges, 0).subspan(0, 1);
  if (face == Face::End2) return at(shape.edges, 0).subspan(1, 1);
  return {};
}

void cross(const double* a, const double* b, double* c) {
  for (int i = 0; i < 3; ++i)
    c[i] = a[(i + 1) % 3] * b[(i + 2) % 3] - a[(i + 2) % 3] * b[(i + 1) % 3];
}

bool normalise(double* a) {
  const double length = std::hypot(a[0], a[1], a[2]);
  if (length == 0) return false;
  for (int i = 0; i < 3; ++i) a[i] /= length;
  return true;
}

} // namespace

inpS_SurfaceCrop::inpS_SurfaceCrop(const KvoObjMesh& mesh, const KvoSimPosition& owner,
                                   const cow_List<double>& box) {
  SetBox(box);
  const bool isPart = owner.IsA(eds_RecordKind::Part);
  m_inside.resize(static_cast<std::size_t>(mesh.CollectionOf(owner, true).Space()));
  for (const KvoMeshNodeBlock& block : mesh.NodeBlocks(isPart ? owner : KvoSimPosition())) {
    const long long first = isPart ? block.first : block.flatFirst;
    if (first < 0 || block.coordinates.IsNull()) continue;
    eds_ArrayReader array(block.coordinates);
    auto node = static_cast<std::size_t>(first);
    for (int64_t chunk = 0; chunk < array.ChunkCount(); ++chunk) {
      const std::span<const double> values = array.Chunk<double>(chunk);
      for (std::size_t at = 0; at + 2 < values.size() && node < m_inside.size(); at += 3, ++node)
        m_inside[node] = IsInside(values.data() + at);
    }
  }
}

void inpS_SurfaceCrop::SetBox(const cow_List<double>& box) {
  if (box.size() >= 12) {
    double first[3] = {box[6], box[7], box[8]};
    double third[3];
    cross(first, box.data() + 9, third);
    if (normalise(first) && normalise(third)) { // else the points turn nothing
      std::copy_n(first, 3, m_axes[0]);
      std::copy_n(third, 3, m_axes[2]);
      cross(third, first, m_axes[1]);
    }
  }
  for (int i = 0; i < 3; ++i) {
    double a = 0, b = 0;
    for (int k = 0; k < 3; ++k) {
      a += m_axes[i][k] * box[static_cast<std::size_t>(k)];
      b += m_axes[i][k] * box[static_cast<std::size_t>(3 + k)];
    }
    const double slack = kTolerance * std::max({std::fabs(a), std::fabs(b), std::fabs(b - a)});
    m_low[i] = std::min(a, b) - slack;
    m_high[i] = std::max(a, b) + slack;
  }
}

bool inpS_SurfaceCrop::IsInside(const double* point) const {
  for (int i = 0; i < 3; ++i) {
    const double along =
        m_axes[i][0] * point[0] + m_axes[i][1] * point[1] + m_axes[i][2] * point[2];
    if (along < m_low[i] || along > m_high[i]) return false;
  }
  return true;
}

eds_MemberSet inpS_SurfaceCrop::Nodes(const eds_MemberSet& nodes, bool inside) const {
  std::vector<int> kept;
  for (long long n = 0; n < nodes.Size(); ++n)
    if (HasNode(nodes[n]) == inside) kept.push_back(nodes[n]);
  return eds_MemberSet::Ordered(std::move(kept));
}

inpS_FaceSets inpS_SurfaceCrop::Faces(const inpS_FaceSets& faces,
                                      const cow_List<inpS_SurfaceElements::Run>& runs,
                                      bool inside) const {
  inpS_FaceSets result;
  for (int n = 0; n < eds_surfaceFaceCount; ++n) {
    const auto face = static_cast<Face>(n);
    const eds_MemberSet& elements = faces.Elements(face);
    std::vector<int> kept;
    const inpS_SurfaceElements::Run* run = nullptr;
    std::optional<eds_ArrayReader> array;
    std::span<const unsigned char> local;
    for (long long i = 0; i < elements.Size(); ++i) {
      const int element = elements[i];
      if (!run || element >= run->first + run->count) {
        run = inpS_SurfaceElements::RunAt(runs, element);
        if (!run || run->block->connectivity.IsNull()) {
          run = nullptr;
          continue;
        }
        array.emplace(run->block->connectivity);
        const inp_ElementInfo* info = inp_KeywordTable::Instance().FindElement(run->type);
        local = info ? nodesOf(inp_shape(info->shape), face) : std::span<const unsigned char>();
      }
      const auto width = static_cast<std::size_t>(run->block->width);
      const long long at = element - run->first, perChunk = array->ItemsPerChunk();
      const std::span<const int> nodes =
          array->Chunk<int>(at / perChunk)
              .subspan(static_cast<std::size_t>(at % perChunk) * width, width);
      const auto isIn = [&](int node) { return HasNode(node + run->block->nodeBase); };
      bool all = true;
      if (local.empty())
        all = std::all_of(nodes.begin(), nodes.end(),
                          [&](int node) { return node < 0 || isIn(node); });
      for (const unsigned char node : local)
        if (node <= width) all = all && isIn(nodes[node - 1u]);
      if (all == inside) kept.push_back(element);
    }
    result.Add(face, eds_MemberSet::Ordered(std::move(kept)));
  }
  return result;
}
