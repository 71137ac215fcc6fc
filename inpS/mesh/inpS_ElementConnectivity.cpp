#include "inpS/mesh/inpS_ElementConnectivity.h"
#include "base/utl_Threads.h"
#include "database/KvoObjLabeler.h"
#include "inpS/messages/inpS_LocatedText.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"
#include <algorithm>
#include <mutex>
#include <set>

namespace {

constexpr std::size_t kEntries = 6 << 10; // labels translated at a time: 24 KiB, in the first cache

using Missing = cow_List<std::pair<long long, int>>; // entry, label

// Entry by entry in blocks that stay in the cache, so that random look-ups do not stall a scan.
Missing translate(utl_Buffer<int>& nodes, const KvoObjLabeler& labeler, int occurrence) {
  Missing missing;
  std::mutex guard;
  const std::size_t blocks = (nodes.Size() + kEntries - 1) / kEntries;
  constexpr std::size_t kBatch = 64;
  utl_parallelFor((blocks + kBatch - 1) / kBatch, [&](std::size_t batch) {
    int labels[kEntries];
    const std::size_t end = std::min(nodes.Size(), (batch + 1) * kBatch * kEntries);
    for (std::size_t at = batch * kBatch * kEntries; at < end; at += kEntries) {
      const std::size_t size = std::min(kEntries, end - at);
      int* entries = nodes.Data() + at;
      std::copy_n(entries, size, labels);
      const std::span<const int> from(labels, size);
      const long long unknown =
          labeler.ConvertInstanceLabels(occurrence, from, std::span<int>(entries, size));
      int least = 1;
      for (std::size_t n = 0; n < size; ++n) least = std::min(least, labels[n]);
      if (unknown == 0 && least > 0) continue;
      const std::lock_guard<std::mutex> lock(guard);
      for (std::size_t n = 0; n < size; ++n) {
        // Nodes may be labelled zero or below, but no element can refer to one of those.
        if (labels[n] <= 0) entries[n] = -1;
        if (entries[n] < 0) missing.emplace_back(static_cast<long long>(at + n), labels[n]);
      }
    }
  });
  std::sort(missing.begin(), missing.end());
  return missing;
}

} // namespace

void inpS_ElementConnectivity::Append(inpS_ElementTopologyReader& reader, int spec, bool ragged,
                                      const cow_String& source, long long first,
                                      const inp_Keyword& keyword) {
  if (reader.Count() == 0) return;
  const bool fits = !m_blocks.empty() && m_blocks.back().spec == spec &&
                    m_blocks.back().width == reader.Width() && m_blocks.back().source == source;
  if (!fits) {
    inpS_ElementBlock& block = m_blocks.emplace_back();
    block.spec = spec;
    block.width = reader.Width();
    block.topology = reader.TopologyNodes();
    block.referenceNode = reader.HasReferenceNodes();
    block.first = first;
    block.source = source;
  }
  inpS_ElementBlock& block = m_blocks.back();
  const long long before = block.Count();
  for (inpS_ScopedNode node : reader.ScopedNodes()) {
    node.element += before;
    block.scoped.push_back(std::move(node));
  }
  block.from.push_back({keyword, before});
  block.ragged = block.ragged || ragged;
  if (before == 0)
    block.nodes = std::move(reader.Nodes());
  else
    block.nodes.Append(std::span<const int>(reader.Nodes()));
}

void inpS_ElementConnectivity::Resolve(const KvoObjLabeler& nodes, int occurrence,
                                       const KvoObjLabeler& elements, int elementOccurrence,
                                       inp_Visitor& messages) {
  for (inpS_ElementBlock& block : m_blocks) {
    for (const inpS_ScopedNode& node : block.scoped) // resolved in their instance afterwards
      block.nodes[static_cast<std::size_t>(node.element * block.width + node.index)] = 0;
    Missing missing = translate(block.nodes, nodes, occurrence);
    // There a zero is the place of a node that the element does not have.
    if (block.ragged) std::erase_if(missing, [](const auto& entry) { return entry.second == 0; });
    ReportMissing(block, missing, elements, elementOccurrence, messages);
  }
}

void inpS_ElementConnectivity::ReportMissing(const inpS_ElementBlock& block, const Missing& missing,
                                             const KvoObjLabeler& elements, int elementOccurrence,
                                             inp_Visitor& messages) {
  std::size_t next = 0;
  for (std::size_t n = 0; n < block.from.size() && next < missing.size(); ++n) {
    const long long end =
        n + 1 < block.from.size() ? block.from[n + 1].firstElement : block.Count();
    std::set<int> unknown, faulty;
    for (; next < missing.size() && missing[next].first < end * block.width; ++next) {
      const auto& [entry, label] = missing[next];
      if (label > 0)
        unknown.insert(label);
      else if (block.first + entry / block.width < elements.Size(elementOccurrence))
        faulty.insert(
            elements.GetInstanceLabel(elementOccurrence, block.first + entry / block.width));
    }
    const inp_Keyword& keyword = block.from[n].keyword;
    if (!unknown.empty())
      messages.AddError(inp_Utils::MessageInKeyword(
          keyword, "Elements refer to nodes that do not exist: ",
          cow_List<int>(unknown.begin(), unknown.end())));
    if (!faulty.empty())
      messages.AddError(inp_Utils::MessageInKeyword(
          keyword, inpS_messageText(inpS_mesh_ConnectivityNotPositive,
                                    {inp_Utils::MessageWithItems(
                                        "", cow_List<int>(faulty.begin(), faulty.end()))})));
  }
}

const inpS_ElementBlock* inpS_ElementConnectivity::BlockOf(long long element) const {
  const auto holds = [element](const inpS_ElementBlock& block) {
    return element >= block.first && element < block.first + block.Count();
  };
  if (m_lastFound < m_blocks.size() && holds(m_blocks[m_lastFound])) return &m_blocks[m_lastFound];
  const auto behind =
      std::upper_bound(m_blocks.begin(), m_blocks.end(), element,
                       [](long long n, const inpS_ElementBlock& block) { return n < block.first; });
  if (behind == m_blocks.begin() || !holds(*(behind - 1))) return nullptr;
  m_lastFound = static_cast<std::size_t>(behind - m_blocks.begin()) - 1;
  return &m_blocks[m_lastFound];
}
