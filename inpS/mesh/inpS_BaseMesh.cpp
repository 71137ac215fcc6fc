#include "inpS/mesh/inpS_BaseMesh.h"
#include "base/utl_Assert.h"
#include "database/KvoObjLabeler.h"
#include "database/KvoObjMesh.h"
#include "database/KvoSimDataRecord.h"
#include <algorithm>

inpS_BaseMesh::inpS_BaseMesh(KvoObjMesh mesh, const KvoSimPosition& owner, long long nodes)
    : m_mesh(std::move(mesh)), m_owner(owner), m_nodeCount(nodes) {}

// ---- nodes

const double* inpS_BaseMesh::Point(long long ordinal) {
  LoadNodes();
  return &m_points[3 * static_cast<std::size_t>(ordinal)];
}

const double* inpS_BaseMesh::Normal(long long ordinal) {
  LoadNodes();
  const int at = m_normalAt[static_cast<std::size_t>(ordinal)];
  return at < 0 ? nullptr : &m_normals[3 * static_cast<std::size_t>(at)];
}

void inpS_BaseMesh::LoadNodes() {
  if (!m_points.IsEmpty()) return;
  const auto count = static_cast<std::size_t>(m_nodeCount);
  m_points.Resize(3 * count);
  m_normalAt.Resize(count);
  std::fill(m_normalAt.begin(), m_normalAt.end(), -1);
  for (const KvoMeshNodeBlock& block : m_mesh.NodeBlocks(m_owner)) {
    const std::span<double> points(m_points);
    eds_ArrayReader(block.coordinates)
        .ReadPiece(0, points.subspan(3 * static_cast<std::size_t>(block.first),
                                     3 * static_cast<std::size_t>(block.count)));
    if (block.normals.IsNull()) continue;
    eds_ArrayReader ordinals(block.normalOrdinals);
    const int64_t len = ordinals.Count() * ordinals.Width() * eds_sizeOf(ordinals.ValueType());
    const auto n = static_cast<std::size_t>(ordinals.Count());
    if (n * sizeof(int) != static_cast<std::size_t>(len))
      utl_assertionFailed("n*sizeof(int) == len");
    utl_Buffer<int> with(n);
    ordinals.ReadPiece(0, std::span<int>(with));
    const std::size_t first = m_normals.Size();
    m_normals.Resize(first + 3 * with.Size());
    eds_ArrayReader(block.normals).ReadPiece(0, std::span<double>(m_normals).subspan(first));
    for (std::size_t i = 0; i < n; ++i)
      m_normalAt[static_cast<std::size_t>(block.first + with[i])] = static_cast<int>(first / 3 + i);
  }
}

// ---- elements

void inpS_BaseMesh::LoadElements(const TypeOf& typeOf) {
  if (m_mesh.IsNull() || !m_elements.Blocks().empty()) return;
  for (const KvoMeshElementBlock& stored : m_mesh.ElementBlocks(m_owner)) {
    if (stored.spec.IsNull()) continue;
    const Type type =
        typeOf(stored.spec.DataRecord().ReturnString(eds_ElementSpec_Name), stored.width);
    inpS_ElementBlock& block = m_elements.Blocks().emplace_back();
    block.spec = type.spec;
    block.width = stored.width;
    block.topology = type.topology;
    block.referenceNode = type.referenceNode;
    block.first = stored.first;
    block.count = stored.count;
    block.source = stored.source;
    block.offset = stored.offset;
    block.plane = type.plane;
    block.completed = true;
    block.array = stored.connectivity;
    m_isGasket.push_back(type.isGasket);
  }
}

void inpS_BaseMesh::LoadLabels(const KvoObjLabeler& nodes, int occurrence) {
  if (m_elements.Blocks().empty()) return;
  std::vector<bool> generated(static_cast<std::size_t>(m_nodeCount));
  for (const KvoMeshNodeBlock& block : m_mesh.NodeBlocks(m_owner))
    std::fill_n(generated.begin() + block.first + block.count - block.generated, block.generated,
                true);
  for (std::size_t n = 0; n < m_elements.Blocks().size(); ++n) {
    inpS_ElementBlock& block = m_elements.Blocks()[n];
    if (block.held || block.array.IsNull()) continue;
    block.held = true;
    block.nodes.Resize(static_cast<std::size_t>(block.count) *
                       static_cast<std::size_t>(block.width));
    eds_ArrayReader(block.array).ReadPiece(0, std::span<int>(block.nodes));
    for (int& node : block.nodes) {
      // Nodes that a gasket was completed with are made for its copies anew.
      if (m_isGasket[n] && node >= 0 && generated[static_cast<std::size_t>(node)]) node = -1;
      block.ragged = block.ragged || node < 0;
      node = node < 0 ? 0 : nodes.GetInstanceLabel(occurrence, node);
    }
  }
}
