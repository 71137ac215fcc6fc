#include "inpS/writer/inpS_MeshPrinter.h"
#include "base/utl_BlockSize.h"
#include "base/utl_Buffer.h"
#include "base/utl_Stream.h"
#include "database/KvoObjModel.h"
#include "database/KvoSimCSet.h"
#include "database/KvoSimContext.h"
#include "database/KvoSimDataRecord.h"
#include "database/eds_DamagedModel.h"
#include "database/eds_LabelMap.h"
#include "inpS/forms/inpS_SharedReader.h"
#include "inpS/mesh/inpS_MeshDimensions.h"
#include "inpS/writer/inpS_PrintPrimitives.h"
#include <algorithm>
#include <memory>
#include <vector>

namespace {

constexpr long long kNodesPerPiece = 8 << 10;
constexpr long long kEntriesPerPiece = 32 << 10;
constexpr int kFieldsPerLine = 16;
constexpr int kGasketFirstLine = 10; // label and nine nodes
constexpr int kGasketNodes = 18;
constexpr std::size_t kSeparatorRoom = 2;

char* separate(char* p) {
  p[0] = ',';
  p[1] = ' ';
  return p + 2;
}

// The normals of a node block, few and sparse, looked up by ordinal.
struct Normals {
  std::vector<int> ordinals;
  std::vector<double> values;

  explicit Normals(const KvoMeshNodeBlock& block) {
    if (block.normalOrdinals.IsNull()) return;
    eds_ArrayReader reader(block.normalOrdinals);
    ordinals.resize(static_cast<std::size_t>(reader.Count()));
    reader.ReadPiece(0, std::span<int>(ordinals));
    values.resize(3 * ordinals.size());
    eds_ArrayReader(inpS_asListed(block.localNormals, block.normals))
        .ReadPiece(0, std::span<double>(values));
  }
  std::size_t From(long long ordinal) const {
    return static_cast<std::size_t>(std::lower_bound(ordinals.begin(), ordinals.end(), ordinal) -
                                    ordinals.begin());
  }
};

} // namespace

// ---- nodes

// A model may be three-dimensional though nothing of its mesh says so: its deck had its plane nodes
// in a local system, or has moved them since. The global axes given by three points say it again.
void inpS_MeshPrinter::PrintSpace(const inpS_DeckScope& scope) {
  const KvoSimContext context = m_labels.mesh.Position().Context();
  const auto models = context.GetRecords(eds_RecordKind::Model);
  if (models.empty() || models[0].DataRecord().GetInt(eds_Model_Dimensions) != 3) return;
  const KvoSimPosition assembly = KvoObjModel(models[0]).GetAssembly();
  const bool isRoot = assembly.IsNull() ? scope.owner.IsA(eds_RecordKind::Model)
                                        : scope.owner.IsA(eds_RecordKind::Assembly);
  if (isRoot && !inpS_tellsThreeDimensions(m_labels.mesh))
    m_out << "*SYSTEM\n0., 0., 0., 1., 0., 0.\n0., 1., 0.\n";
}

void inpS_MeshPrinter::PrintNodes(const inpS_DeckScope& scope) {
  PrintSpace(scope);
  bool first = true;
  for (const KvoMeshNodeBlock& block : m_labels.mesh.NodeBlocks(scope.owner)) {
    if (block.first < scope.partNodes) continue;  // stands in the part
    if (block.generated == block.count) continue; // come with their elements again
    if (first) m_out << "*NODE\n";
    first = false;
    PrintNodeBlock(scope, block);
  }
}

void inpS_MeshPrinter::PrintNodeBlock(const inpS_DeckScope& scope, const KvoMeshNodeBlock& block) {
  std::mutex guard;
  inpS_SharedReader<double> coordinates(inpS_asListed(block.localCoordinates, block.coordinates),
                                        guard);
  const Normals normals(block);
  const eds_LabelMap& labels = m_labels.nodes.Labels(scope.nodes);
  constexpr std::size_t kLine = utl_intTextRoom + 6 * (utl_doubleTextRoom + kSeparatorRoom) + 1;
  const long long given = block.count - block.generated;
  const long long perPiece = utl_blockSize(kNodesPerPiece);
  const long long pieces = (given + perPiece - 1) / perPiece;
  utl_printBlocks(m_out, static_cast<std::size_t>(pieces),
                  kLine * static_cast<std::size_t>(perPiece), [&](std::size_t piece, char* out) {
                    const long long begin = static_cast<long long>(piece) * perPiece;
                    const long long count = std::min(perPiece, given - begin);
                    thread_local std::vector<double> points;
                    points.resize(static_cast<std::size_t>(3 * count));
                    coordinates.Read(begin, std::span<double>(points));
                    std::size_t normal = normals.From(begin);
                    for (long long n = 0; n < count; ++n) {
                      out = utl_printInt(out, labels.Label(block.first + begin + n));
                      const double* point = points.data() + 3 * n;
                      for (int i = 0; i < 3; ++i) out = utl_printDouble(separate(out), point[i]);
                      if (normal < normals.ordinals.size() &&
                          normals.ordinals[normal] == begin + n) {
                        const double* direction = normals.values.data() + 3 * normal++;
                        for (int i = 0; i < 3; ++i)
                          out = utl_printDouble(separate(out), direction[i]);
                      }
                      *out++ = '\n';
                    }
                    return out;
                  });
}

// ---- elements

namespace {

// Prints the elements of one block; entries are ordinals, -1 where an element has no node.
class ElementLines {
public:
  ElementLines(const inpS_DeckLabels& labels, const inpS_DeckScope& scope,
               const KvoMeshElementBlock& block, bool gasket)
      : m_labels(labels), m_block(block), m_nodes(labels.nodes.Labels(scope.nodes)),
        m_elements(labels.elements.Labels(scope.elements)), m_own(m_nodes.Size()),
        m_firstLine(gasket ? kGasketFirstLine : kFieldsPerLine),
        m_plane(block.spec.DataRecord().GetInt(eds_ElementSpec_MinNodes)) {
    for (const KvoMeshNodeBlock& nodes : labels.mesh.NodeBlocks(scope.owner))
      if (nodes.generated > 0)
        m_generated.emplace_back(nodes.first + nodes.count - nodes.generated,
                                 nodes.first + nodes.count);
    for (const cow_String& name : labels.nodeInstances)
      m_longestName = std::max(m_longestName, name.size());
  }

  std::size_t Room() const {
    return utl_intTextRoom + 2 +
           static_cast<std::size_t>(m_block.width) *
               (utl_intTextRoom + kSeparatorRoom + 1 + m_longestName + 1);
  }

  char* Print(char* out, long long element, const int* nodes) const {
    const int count = CountOf(nodes);
    out = utl_printInt(out, m_elements.Label(m_block.first + element));
    int room = m_firstLine - 1;
    for (int n = 0; n < count; ++n) {
      out = separate(out);
      if (room-- == 0) {
        out[-1] = '\n'; // the comma before it tells that the line goes on
        room = kFieldsPerLine - 1;
      }
      if (nodes[n] >= 0) out = PrintNode(out, nodes[n]);
    }
    *out++ = '\n';
    return out;
  }

private:
  // Nodes that the element implies are left out: they come with it again.
  int CountOf(const int* nodes) const {
    int count = m_block.width;
    while (count > 0 && nodes[count - 1] < 0) --count;
    if (m_block.offset != 0 && count == m_block.width && ImpliesPlanes(nodes)) return m_plane;
    if (m_firstLine != kGasketFirstLine || count != kGasketNodes) return count;
    const bool implied = IsGenerated(nodes[count - 2]) && IsGenerated(nodes[count - 1]);
    return implied ? count - 2 : count;
  }

  bool ImpliesPlanes(const int* nodes) const {
    for (int n = 0; n < m_block.width; ++n) {
      if (nodes[n] < 0 || nodes[n] >= m_own) return false;
      if (n >= m_plane &&
          m_nodes.Label(nodes[n]) - m_nodes.Label(nodes[n - m_plane]) != m_block.offset)
        return false;
    }
    return true;
  }

  bool IsGenerated(int ordinal) const {
    return std::any_of(m_generated.begin(), m_generated.end(), [ordinal](const auto& range) {
      return ordinal >= range.first && ordinal < range.second;
    });
  }

  char* PrintNode(char* out, int ordinal) const {
    if (ordinal < m_own) return utl_printInt(out, m_nodes.Label(ordinal));
    int64_t local = 0; // an element of the assembly may join nodes of its instances
    const int occurrence = m_labels.nodes.OccurrenceOfFlat(ordinal, local);
    if (occurrence < 0) { // the file says so: connectivity is looked at here for the first time
      eds_tellDamaged(m_labels.mesh.Position(), "an element refers to node " +
                                                    std::to_string(ordinal) +
                                                    " of the mesh, which has none");
    }
    const cow_String& name = m_labels.InstanceOf(true, occurrence);
    out = std::copy(name.begin(), name.end(), out);
    *out++ = '.';
    return utl_printInt(out, m_labels.nodes.GetInstanceLabel(occurrence, local));
  }

  const inpS_DeckLabels& m_labels;
  const KvoMeshElementBlock& m_block;
  const eds_LabelMap& m_nodes;
  const eds_LabelMap& m_elements;
  long long m_own;
  int m_firstLine;
  int m_plane;                                              // nodes of an element's first plane
  std::vector<std::pair<long long, long long>> m_generated; // ordinals from, to before
  std::size_t m_longestName = 0;
};

} // namespace

void inpS_MeshPrinter::PrintElements(const inpS_DeckScope& scope) {
  for (const KvoMeshElementBlock& block : m_labels.mesh.ElementBlocks(scope.owner))
    if (block.first >= scope.partElements) PrintElementBlock(scope, block);
}

void inpS_MeshPrinter::PrintElementBlock(const inpS_DeckScope& scope,
                                         const KvoMeshElementBlock& block) {
  const cow_String& type = m_labels.TypeOf(block);
  m_out << "*ELEMENT, TYPE=" << type;
  if (!block.source.empty()) m_out << ", " << block.source;
  if (block.offset != 0) m_out << ", OFFSET=" << block.offset;
  m_out << '\n';
  const bool gasket = type == "GK3D18" || type == "GK3D18N";
  const ElementLines lines(m_labels, scope, block, gasket);
  std::mutex guard;
  inpS_SharedReader<int> connectivity(block.connectivity, guard);
  constexpr std::size_t kMostRoom = std::size_t{16} << 20; // names of instances may be long
  const long long perPiece =
      std::max(1LL, std::min(utl_blockSize(kEntriesPerPiece) / std::max(1, block.width),
                             static_cast<long long>(kMostRoom / lines.Room())));
  const long long pieces = (block.count + perPiece - 1) / perPiece;
  utl_printBlocks(m_out, static_cast<std::size_t>(pieces),
                  lines.Room() * static_cast<std::size_t>(perPiece),
                  [&](std::size_t piece, char* out) {
                    const long long begin = static_cast<long long>(piece) * perPiece;
                    const long long count = std::min(perPiece, block.count - begin);
                    thread_local std::vector<int> nodes;
                    nodes.resize(static_cast<std::size_t>(count * block.width));
                    connectivity.Read(begin, std::span<int>(nodes));
                    for (long long n = 0; n < count; ++n)
                      out = lines.Print(out, begin + n, nodes.data() + n * block.width);
                    return out;
                  });
}
