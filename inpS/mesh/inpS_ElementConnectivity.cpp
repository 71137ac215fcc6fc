#include "inpS/mesh/inpS_ElementConnectivity.h"
#include "base/utl_Threads.h"
#include "database/KvoObjLabeler.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"
#include <algorithm>
#include <mutex>

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
      if (labeler.ConvertInstanceLabels(occurrence, from, std::span<int>(entries, size)) == 0)
        continue;
      const std::lock_guard<std::mutex> lock(guard);
      for (std::size_t n = 0; n < size; ++n)
        if (entries[n] < 0) missing.emplace_back(static_cast<long long>(at + n), labels[n]);
    }
  });
  std::sort(missing.begin(), missing.end());
  return missing;
}

} // namespace

void inpS_ElementConnectivity::Append(inpS_ElementTopologyReader& reader, int spec, bool ragged,
                                      long long first, const inp_Keyword& keyword) {
  if (reader.Count() == 0) return;
  const bool fits = !m_blocks.empty() && m_blocks.back().spec == spec &&
                    m_blocks.back().width == reader.Width();
  if (!fits) {
    inpS_ElementBlock& block = m_blocks.emplace_back();
    block.spec = spec;
    block.width = reader.Width();
    block.topology = reader.TopologyNodes();
    block.first = first;
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
                                       inp_Visitor& messages) {
  for (inpS_ElementBlock& block : m_blocks) {
    for (const inpS_ScopedNode& node : block.scoped) // resolved in their instance afterwards
      block.nodes[static_cast<std::size_t>(node.element * block.width + node.index)] = 0;
    Missing missing = translate(block.nodes, nodes, occurrence);
    // A zero is the place of a node that the element does not have.
    std::erase_if(missing, [](const auto& entry) { return entry.second == 0; });
    ReportMissing(block, missing, messages);
  }
}

void inpS_ElementConnectivity::ReportMissing(const inpS_ElementBlock& block, const Missing& missing,
                                             inp_Visitor& messages) {
  std::size_t next = 0;
  for (std::size_t n = 0; n < block.from.size() && next < missing.size(); ++n) {
    const long long end =
        n + 1 < block.from.size() ? block.from[n + 1].firstElement : block.Count();
    cow_List<int> labels;
    for (; next < missing.size() && missing[next].first < end * block.width; ++next)
      labels.push_back(missing[next].second);
    if (labels.empty()) continue;
    std::sort(labels.begin(), labels.end());
    labels.erase(std::unique(labels.begin(), labels.end()), labels.end());
    messages.AddError(inp_Utils::MessageInKeyword(
        block.from[n].keyword, "Elements refer to nodes that do not exist: ", labels));
  }
}
