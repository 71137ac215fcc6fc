#include "inpS/mesh/inpS_ElementConnectivity.h"
#include "base/utl_BlockSize.h"
#include "base/utl_Threads.h"
#include "database/KvoObjLabeler.h"
#include "database/KvoSimPosition.h"
#include "inpS/mesh/inpS_ElementSearch.h"
#include "inpS/mesh/inpS_MadeElements.h"
#include "inpS/messages/inpS_LocatedText.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"
#include <algorithm>
#include <mutex>
#include <vector>

namespace {

constexpr std::size_t kEntries = 6 << 10; // labels translated at a time: 24 KiB, in the first cache
constexpr long long kStoredEntries = 1 << 18; // read and written again at a time

} // namespace

std::span<const int> inpS_ElementBlock::NodesOf(long long element) const {
  const auto size = static_cast<std::size_t>(width);
  return {nodes.Data() + static_cast<std::size_t>(element) * size, size};
}

std::span<const inpS_ScopedNode> inpS_ElementBlock::ScopedOf(long long element) const {
  const auto begin = std::partition_point(scoped.begin(), scoped.end(),
                                          [&](const auto& node) { return node.element < element; });
  const auto end = std::partition_point(begin, scoped.end(),
                                        [&](const auto& node) { return node.element == element; });
  return {begin, end};
}

bool inpS_ElementBlock::ImpliesPlanes(long long element) const {
  if (offset == 0 || plane == 0 || !ScopedOf(element).empty()) return false;
  const std::span<const int> labels = NodesOf(element);
  for (int n = plane; n < width; ++n) {
    const long long first = labels[static_cast<std::size_t>(n % plane)];
    const long long further = n / plane;
    if (labels[static_cast<std::size_t>(n)] != first + further * offset) return false;
  }
  return true;
}

// ---- while the deck is read

void inpS_ElementConnectivity::CloseLast() {
  if (!m_writer) return;
  m_blocks.back().array = m_writer->Finish();
  m_writer.reset();
}

bool inpS_ElementConnectivity::Continues(const Kind& kind) const {
  if (m_blocks.empty()) return false;
  const inpS_ElementBlock& last = m_blocks.back();
  return last.spec == kind.spec && last.width == kind.width && last.held == kind.held &&
         last.source == kind.source && last.offset == kind.offset;
}

inpS_ElementBlock& inpS_ElementConnectivity::BlockFor(const Kind& kind, long long first,
                                                      const inp_Keyword& keyword,
                                                      const KvoSimPosition& owner) {
  if (!Continues(kind)) {
    CloseLast();
    inpS_ElementBlock& block = m_blocks.emplace_back();
    block.spec = kind.spec;
    block.width = block.topology = kind.width;
    block.source = kind.source;
    block.held = kind.held;
    block.offset = kind.offset;
    block.plane = kind.plane;
    block.first = first;
    if (!kind.held) m_writer.emplace(owner, eds_ValueType::Int32, kind.width);
  }
  inpS_ElementBlock& block = m_blocks.back();
  block.from.push_back({keyword, block.count, first, kind.form});
  return block;
}

void inpS_ElementConnectivity::AppendStreamed(std::span<const int> ordinals,
                                              std::span<const inpS_OpenEntry> open) {
  inpS_ElementBlock& block = m_blocks.back();
  for (const inpS_OpenEntry& entry : open)
    block.open.push_back({block.count * block.width + entry.entry, entry.label, entry.element});
  m_writer->Append(ordinals);
  block.count += static_cast<long long>(ordinals.size()) / block.width;
}

void inpS_ElementConnectivity::AppendHeld(inpS_ElementBlock& block,
                                          inpS_ElementTopologyReader& reader, bool ragged) {
  block.topology = reader.TopologyNodes();
  block.referenceNode = reader.HasReferenceNodes();
  block.ragged = block.ragged || ragged;
  for (inpS_ScopedNode node : reader.ScopedNodes()) {
    node.element += block.count;
    block.scoped.push_back(std::move(node));
  }
  block.count += reader.Count();
  if (block.nodes.IsEmpty())
    block.nodes = std::move(reader.Nodes());
  else
    block.nodes.Append(std::span<const int>(reader.Nodes()));
}

void inpS_ElementConnectivity::AppendMade(inpS_ElementBlock& block, const inpS_MadeElements& made) {
  block.topology = made.topology;
  block.referenceNode = made.referenceNode;
  block.ragged = block.ragged || made.ragged;
  for (inpS_ScopedNode node : made.scoped) {
    node.element += block.count;
    block.scoped.push_back(std::move(node));
  }
  const auto width = static_cast<std::size_t>(block.width);
  if (width > 0) { // elements without nodes were told
    const std::size_t perPiece = std::max<std::size_t>(1, utl_blockSize(kEntries) / width);
    const auto count = static_cast<std::size_t>(made.count);
    int* to = block.nodes.AppendSpace(count * width);
    utl_parallelFor((count + perPiece - 1) / perPiece, [&](std::size_t piece) {
      const std::size_t first = piece * perPiece;
      const std::size_t size = std::min(perPiece, count - first);
      made.nodes(static_cast<long long>(first), {to + first * width, size * width});
    });
  }
  block.count += made.count;
}

const inpS_ElementBlock* inpS_ElementConnectivity::BlockOf(long long element) const {
  const auto holds = [element](const inpS_ElementBlock& block) {
    return element >= block.first && element < block.first + block.count;
  };
  if (m_lastFound < m_blocks.size() && holds(m_blocks[m_lastFound])) return &m_blocks[m_lastFound];
  const auto behind =
      std::upper_bound(m_blocks.begin(), m_blocks.end(), element,
                       [](long long n, const inpS_ElementBlock& block) { return n < block.first; });
  if (behind == m_blocks.begin() || !holds(*(behind - 1))) return nullptr;
  m_lastFound = static_cast<std::size_t>(behind - m_blocks.begin()) - 1;
  return &m_blocks[m_lastFound];
}

utl_Buffer<int> inpS_ElementConnectivity::ExtraNodes(bool reference) const {
  utl_Buffer<int> pairs;
  for (const inpS_ElementBlock& block : m_blocks) {
    if (block.width <= block.topology || block.referenceNode != reference) continue;
    for (long long n = 0; n < block.count; ++n) {
      const int node = block.nodes[static_cast<std::size_t>(n * block.width + block.topology)];
      if (node < 0) continue;
      pairs.Append(static_cast<int>(block.first + n));
      pairs.Append(node);
    }
  }
  return pairs;
}

// Elements whose label was taken have got no ordinal of their own, so blocks are not asked for
// their count here.
const inpS_ElementBlock::From* inpS_ElementConnectivity::DefinitionOf(long long ordinal) const {
  const auto block =
      std::upper_bound(m_blocks.begin(), m_blocks.end(), ordinal,
                       [](long long n, const inpS_ElementBlock& other) { return n < other.first; });
  if (block == m_blocks.begin()) return nullptr;
  const auto& from = (block - 1)->from;
  const auto next = std::upper_bound(
      from.begin(), from.end(), ordinal,
      [](long long n, const inpS_ElementBlock::From& other) { return n < other.firstOrdinal; });
  return next == from.begin() ? nullptr : &*(next - 1);
}

void inpS_ElementConnectivity::Hold(inpS_ElementBlock& block, const KvoObjLabeler& nodes,
                                    int occurrence) {
  if (block.held) return;
  if (&block == &m_blocks.back()) CloseLast();
  block.nodes.Resize(static_cast<std::size_t>(block.count * block.width));
  eds_ArrayReader(block.array).ReadPiece(0, std::span<int>(block.nodes));
  for (int& node : block.nodes) {
    if (node < 0) block.ragged = true; // a place without a node, if it is not open
    node = node < 0 ? 0 : static_cast<int>(nodes.GetInstanceLabel(occurrence, node));
  }
  for (const inpS_OpenEntry& open : block.open) // zero is told from the place of no node
    block.nodes[static_cast<std::size_t>(open.entry)] = open.label == 0 ? -1 : open.label;
  block.open = {};
  block.array.Position().Remove();
  block.array = {};
  block.held = true;
}

// ---- once it is read

void inpS_ElementConnectivity::Resolve(const KvoObjLabeler& nodes, int occurrence,
                                       const KvoObjLabeler& elements, int elementOccurrence,
                                       inp_Visitor& messages) {
  CloseLast();
  Unresolved unresolved;
  for (inpS_ElementBlock& block : m_blocks) {
    if (block.held)
      ResolveHeld(block, nodes, occurrence);
    else
      ResolveOpen(block, nodes, occurrence);
    GatherOpen(block, elements, elementOccurrence, unresolved, messages);
    block.open = {};
  }
  unresolved.Report(messages);
}

// Entry by entry in blocks that stay in the cache, so that random look-ups do not stall a scan.
void inpS_ElementConnectivity::ResolveHeld(inpS_ElementBlock& block, const KvoObjLabeler& nodes,
                                           int occurrence) {
  for (const inpS_ScopedNode& node : block.scoped) // looked up in their instance afterwards
    block.nodes[static_cast<std::size_t>(node.element * block.width + node.index)] = 0;
  std::mutex guard;
  const std::size_t most = utl_blockSize(kEntries);
  const std::size_t pieces = (block.nodes.Size() + most - 1) / most;
  utl_parallelFor(pieces, [&](std::size_t piece) {
    int labels[kEntries];
    const std::size_t at = piece * most;
    const std::size_t size = std::min(most, block.nodes.Size() - at);
    const std::span<int> entries(block.nodes.Data() + at, size);
    std::copy(entries.begin(), entries.end(), labels);
    nodes.ConvertInstanceLabels(occurrence, std::span<const int>(labels, size), entries);
    for (std::size_t n = 0; n < size; ++n) {
      // Nodes may be labelled zero or below, but no element can refer to one of those.
      if (labels[n] <= 0) entries[n] = -1;
      if (entries[n] >= 0) continue;
      // Where elements have different numbers of nodes, a zero is the place of one that is not
      // there.
      if (labels[n] == 0 && (block.ragged || !block.scoped.empty())) continue;
      const std::lock_guard<std::mutex> lock(guard);
      block.open.push_back({static_cast<long long>(at + n), labels[n]});
    }
  });
  std::sort(block.open.begin(), block.open.end(),
            [](const auto& a, const auto& b) { return a.entry < b.entry; });
}

// Nodes may stand behind the elements that refer to them. Open entries come in the order of the
// array, so each stored piece is read and written once.
void inpS_ElementConnectivity::ResolveOpen(inpS_ElementBlock& block, const KvoObjLabeler& nodes,
                                           int occurrence) {
  if (block.open.empty()) return;
  const auto width = static_cast<long long>(block.width);
  const long long perPiece = std::max(1LL, utl_blockSize(kStoredEntries) / width);
  std::vector<int> piece;
  std::size_t left = 0;
  for (std::size_t n = 0; n < block.open.size();) {
    const long long first = block.open[n].entry / width / perPiece * perPiece;
    const long long size = std::min(perPiece, block.count - first);
    piece.resize(static_cast<std::size_t>(size * width));
    eds_ArrayReader(block.array).ReadPiece(first, std::span<int>(piece));
    for (; n < block.open.size() && block.open[n].entry < (first + size) * width; ++n) {
      const inpS_OpenEntry open = block.open[n];
      const int ordinal = open.label > 0 ? nodes.ConvertInstanceLabel(occurrence, open.label) : -1;
      piece[static_cast<std::size_t>(open.entry - first * width)] = ordinal;
      if (ordinal < 0) block.open[left++] = open;
    }
    eds_updateArray(block.array, first, std::as_bytes(std::span<const int>(piece)));
  }
  block.open.resize(left);
}

void inpS_ElementConnectivity::Unresolved::Report(inp_Visitor& messages) {
  const auto report = [&](int node, cow_String text) {
    const inpS_ElementSearch search(from->keyword, from->form);
    auto at = search.OfNode(node);
    if (at.row < 0 && node == -1) at = search.OfNode(0); // held apart from nodes not there
    messages.AddError(inp_Utils::MessageAtField(from->keyword, at.row, at.col, std::move(text)));
  };
  if (!unknown.empty())
    report(firstUnknown,
           inp_Utils::MessageWithItems("Elements refer to nodes that do not exist: ",
                                       cow_List<int>(unknown.begin(), unknown.end())));
  if (!faulty.empty())
    report(firstFaulty, inpS_messageText(inpS_mesh_ConnectivityNotPositive,
                                         {inp_Utils::MessageWithItems(
                                             "", cow_List<int>(faulty.begin(), faulty.end()))}));
  unknown.clear();
  faulty.clear();
}

// One keyword may make elements of several blocks, which then follow each other.
void inpS_ElementConnectivity::GatherOpen(const inpS_ElementBlock& block,
                                          const KvoObjLabeler& elements, int elementOccurrence,
                                          Unresolved& unresolved, inp_Visitor& messages) {
  std::size_t next = 0;
  for (std::size_t n = 0; n < block.from.size() && next < block.open.size(); ++n) {
    const long long end = n + 1 < block.from.size() ? block.from[n + 1].firstElement : block.count;
    if (block.open[next].entry >= end * block.width) continue;
    const inpS_ElementBlock::From& from = block.from[n];
    if (unresolved.from && unresolved.from->keyword.Body() != from.keyword.Body())
      unresolved.Report(messages);
    unresolved.from = &from;
    auto& [at, unknown, faulty, firstUnknown, firstFaulty] = unresolved;
    for (; next < block.open.size() && block.open[next].entry < end * block.width; ++next) {
      const auto& [entry, label, known] = block.open[next];
      const long long element = block.first + entry / block.width;
      if (m_faulty.empty() || m_faulty.back() != element) NoteFaulty(element);
      if (label > 0) {
        if (unknown.empty()) firstUnknown = label;
        unknown.insert(label);
      } else if (known != 0 || element < elements.Size(elementOccurrence)) {
        if (faulty.empty()) firstFaulty = label;
        faulty.insert(known != 0 ? known : elements.GetInstanceLabel(elementOccurrence, element));
      }
    }
  }
}

void inpS_ElementConnectivity::StoreHeld(const KvoSimPosition& owner) {
  for (inpS_ElementBlock& block : m_blocks) {
    if (!block.held || block.count == 0 || block.width == 0) continue; // without nodes: a fault
    eds_ArrayWriter writer(owner, eds_ValueType::Int32, block.width);
    writer.Append(std::span<const int>(block.nodes));
    block.array = writer.Finish();
  }
}

void inpS_ElementConnectivity::Discard() {
  CloseLast();
  for (inpS_ElementBlock& block : m_blocks) {
    if (!block.array.IsNull()) block.array.Position().Remove();
    block.array = {};
  }
}
