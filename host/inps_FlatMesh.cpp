#include "host/inps_FlatMesh.h"

#include "base/utl_File.h"
#include "database/KvoObjModel.h"
#include "database/eds_Exception.h"
#include "parser/inp_KeywordTable.h"
#include <algorithm>
#include <mutex>

// The engine serves one thread at a time. A few readers stay open, each with the chunk it last
// read: blocks of instances share their part's arrays.
struct inps_FlatMesh::Readers {
  static constexpr std::size_t mostOpen = 4;
  struct Open {
    eds_ArrayID id;
    eds_ArrayReader reader;
  };

  eds_ArrayReader& Find(const eds_ArrayID& id) { // the one used last stands last
    const auto found = std::ranges::find(open, id, &Open::id);
    if (found != open.end()) {
      std::rotate(found, found + 1, open.end());
      return open.back().reader;
    }
    if (open.size() == mostOpen) open.erase(open.begin());
    open.push_back({id, eds_ArrayReader(id)});
    return open.back().reader;
  }

  std::mutex guard;
  cow_List<Open> open;
};

template <class T>
void inps_FlatMesh::ReadArray(const eds_ArrayID& array, int64_t first, std::span<T> out) const {
  const std::lock_guard<std::mutex> lock(m_readers->guard);
  m_readers->Find(array).ReadPiece(first, out);
}
template void inps_FlatMesh::ReadArray(const eds_ArrayID&, int64_t, std::span<int32_t>) const;
template void inps_FlatMesh::ReadArray(const eds_ArrayID&, int64_t, std::span<double>) const;

namespace {

[[noreturn]] void damaged(const std::filesystem::path& file, const char* what) {
  throw eds_DamagedFileException("\"" + utl_pathText(file) + "\" is damaged: " + what);
}

// By flat ordinals, without those of parts; their number.
template <class Blocks> int64_t putInOrder(const std::filesystem::path& file, Blocks& blocks) {
  std::erase_if(blocks, [](const auto& b) { return b.block.flatFirst < 0 || b.block.count == 0; });
  std::ranges::stable_sort(blocks, {}, [](const auto& b) { return b.block.flatFirst; });
  int64_t next = 0;
  for (const auto& b : blocks) {
    if (b.block.flatFirst != next) damaged(file, "the blocks of its mesh leave gaps or overlap");
    next += b.block.count;
  }
  return next;
}

template <class Blocks> std::size_t blockOf(const Blocks& blocks, int64_t flat) {
  const auto behind =
      std::ranges::upper_bound(blocks, flat, {}, [](const auto& b) { return b.block.flatFirst; });
  return static_cast<std::size_t>(behind - blocks.begin()) - 1;
}

// Calls take(block, first within it, count, done so far) for a run of flat ordinals.
template <class Blocks, class Take>
void forBlocks(const Blocks& blocks, int64_t first, int64_t count, Take take) {
  if (count == 0) return;
  int64_t done = 0;
  for (std::size_t b = blockOf(blocks, first); done < count; ++b) {
    const int64_t local = first + done - blocks[b].block.flatFirst;
    const int64_t here = std::min(count - done, blocks[b].block.count - local);
    take(blocks[b], local, here, done);
    done += here;
  }
}

template <class T> std::span<T> part(std::span<T> all, int64_t first, int64_t count) {
  return all.subspan(static_cast<std::size_t>(first), static_cast<std::size_t>(count));
}

} // namespace

inps_FlatMesh::inps_FlatMesh(const KvoObjDocument& document)
    : m_file(document.Path()), m_mesh(document.GetMesh()), m_nodeLabels(document, 0),
      m_elementLabels(document, 1), m_readers(std::make_unique<Readers>()) {
  const KvoObjModel model = document.GetModel();
  m_setOwners.push_back(model.Position());
  if (!model.GetAssembly().IsNull()) m_setOwners.push_back(model.GetAssembly());
  cow_Map<int64_t, int> parts;
  for (const KvoSimPosition& part : model.Parts()) {
    parts.emplace(part.ID(), static_cast<int>(m_partNames.size()));
    m_partNames.push_back(part.Name());
  }
  for (const KvoSimPosition& instance : model.Occurences()) {
    const KvoSimPosition part = instance.DataRecord().GetReference(eds_Instance_Part);
    const auto known = part.IsNull() ? parts.end() : parts.find(part.ID());
    Owner& owner = m_instances[instance.ID()];
    owner.instance = static_cast<int>(m_instanceNames.size());
    owner.part = known == parts.end() ? -1 : known->second;
    m_instanceNames.push_back(instance.Name());
    m_setOwners.push_back(instance);
  }
  if (m_mesh.IsNull()) return;
  m_nodeLabels.Read();
  m_elementLabels.Read();
  AddNodeBlocks();
  AddElementBlocks();
}

inps_FlatMesh::~inps_FlatMesh() = default;

inps_FlatMesh::Owner inps_FlatMesh::OwnerOf(const KvoSimPosition& position,
                                            const KvoObjLabeler& labels) {
  Owner owner;
  if (position.IsA(eds_RecordKind::Instance)) owner = m_instances[position.ID()];
  owner.labels = labels.FindOccurrence(position);
  return owner;
}

void inps_FlatMesh::AddNodeBlocks() {
  for (const KvoMeshNodeBlock& block : m_mesh.NodeBlocks())
    m_nodes.push_back({OwnerOf(block.owner, m_nodeLabels), block});
  m_nodeCount = putInOrder(m_file, m_nodes);
  for (const Nodes& nodes : m_nodes)
    if (nodes.labels < 0 || nodes.block.first + nodes.block.count > m_nodeLabels.Size(nodes.labels))
      damaged(m_file, "nodes have no labels");
}

void inps_FlatMesh::AddElementBlocks() {
  cow_Map<cow_String, int> types;
  for (const KvoMeshElementBlock& block : m_mesh.ElementBlocks()) {
    Elements elements{OwnerOf(block.owner, m_elementLabels), block};
    const cow_String name = block.spec.IsNull()
                                ? cow_String("?")
                                : block.spec.DataRecord().ReturnString(eds_ElementSpec_Name);
    const auto [type, isNew] = types.try_emplace(name, static_cast<int>(m_typeNames.size()));
    if (isNew) m_typeNames.push_back(name);
    elements.type = type->second;
    if (const inp_ElementInfo* info = inp_KeywordTable::Instance().FindElement(name))
      elements.shape = info->shape;
    const int shapeNodes = inp_shape(elements.shape).nodes;
    elements.physicalNodes = shapeNodes > 0 ? std::min(shapeNodes, block.width) : block.width;
    m_elements.push_back(std::move(elements));
  }
  m_elementCount = putInOrder(m_file, m_elements);
  for (const Elements& elements : m_elements)
    if (elements.labels < 0 ||
        elements.block.first + elements.block.count > m_elementLabels.Size(elements.labels))
      damaged(m_file, "elements have no labels");
}

std::size_t inps_FlatMesh::NodeBlockOf(int64_t flat) const {
  return blockOf(m_nodes, flat);
}

std::size_t inps_FlatMesh::ElementBlockOf(int64_t flat) const {
  return blockOf(m_elements, flat);
}

cow_List<KvoSimPosition> inps_FlatMesh::SetOwners() const {
  return m_mesh.IsNull() ? cow_List<KvoSimPosition>() : m_setOwners;
}

void inps_FlatMesh::ReadCoordinates(int64_t first, std::span<double> out) const {
  forBlocks(m_nodes, first, static_cast<int64_t>(out.size() / 3),
            [&](const Nodes& nodes, int64_t local, int64_t count, int64_t done) {
              ReadArray(nodes.block.coordinates, local, part(out, 3 * done, 3 * count));
            });
}

void inps_FlatMesh::CopyNodeLabels(int64_t first, std::span<int32_t> out) const {
  forBlocks(m_nodes, first, static_cast<int64_t>(out.size()),
            [&](const Nodes& nodes, int64_t local, int64_t count, int64_t done) {
              m_nodeLabels.Labels(nodes.labels)
                  .CopyLabels(nodes.block.first + local, part(out, done, count));
            });
}

void inps_FlatMesh::CopyElementLabels(int64_t first, std::span<int32_t> out) const {
  forBlocks(m_elements, first, static_cast<int64_t>(out.size()),
            [&](const Elements& elements, int64_t local, int64_t count, int64_t done) {
              m_elementLabels.Labels(elements.labels)
                  .CopyLabels(elements.block.first + local, part(out, done, count));
            });
}

void inps_FlatMesh::ReadConnectivity(std::size_t number, int64_t first,
                                     std::span<int32_t> out) const {
  const KvoMeshElementBlock& block = m_elements[number].block;
  ReadArray(block.connectivity, first, out);
  bool isSound = true;
  for (int32_t& node : out) {
    const int64_t flat = node < 0 ? node : node + block.nodeBase;
    isSound &= flat >= -1 && flat < m_nodeCount;
    node = static_cast<int32_t>(flat);
  }
  if (!isSound) damaged(m_file, "an element has a node that is none");
}

cow_String inps_FlatMesh::NameOf(const Owner& owner, int32_t label) const {
  const cow_String text = std::to_string(label);
  if (owner.instance < 0) return text;
  return m_instanceNames[static_cast<std::size_t>(owner.instance)] + "." + text;
}

cow_String inps_FlatMesh::NodeName(int64_t flat) const {
  int32_t label = 0;
  CopyNodeLabels(flat, std::span(&label, 1));
  return NameOf(m_nodes[NodeBlockOf(flat)], label);
}

cow_String inps_FlatMesh::ElementName(int64_t flat) const {
  int32_t label = 0;
  CopyElementLabels(flat, std::span(&label, 1));
  return NameOf(m_elements[ElementBlockOf(flat)], label);
}
