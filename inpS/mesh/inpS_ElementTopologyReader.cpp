#include "inpS/mesh/inpS_ElementTopologyReader.h"
#include "parser/inp_BulkDecode.h"
#include "parser/inp_Keyword.h"
#include <algorithm>

inpS_ElementTopologyReader::inpS_ElementTopologyReader(const inpS_ElementParameters& type,
                                                       inp_Visitor& messages)
    : m_type(type), m_messages(messages), m_extra(type.CarriesReferenceNode() ? 1 : 0) {}

void inpS_ElementTopologyReader::Read(const inp_Keyword& keyword, bool scopedNodes) {
  inp_ElementRows rows;
  inp_decodeElements(keyword.Data(), m_type.Form(), rows);
  if (rows.odd.empty())
    TakeRegular(rows);
  else
    Rebuild(keyword, rows, scopedNodes);
  m_topology = m_type.TopologyNodes(m_width);
  m_faulty.Report(keyword, m_type, m_messages);
}

void inpS_ElementTopologyReader::TakeRegular(inp_ElementRows& rows) {
  m_width = rows.width;
  m_labels = std::move(rows.labels);
  m_nodes = std::move(rows.nodes);
  m_ragged = !rows.counts.IsEmpty();
  const bool allGood = !m_ragged && m_width > 0 &&
                       m_width >= m_type.MinNodesPerElement() + m_extra &&
                       m_width <= m_type.MaxNodesPerElement() + m_extra;
  for (std::size_t n = 0; !allGood && n < m_labels.Size(); ++n)
    m_faulty.Count(m_labels[n], m_ragged ? rows.counts[n] : m_width, m_type, m_extra);
  if (std::find(m_nodes.begin(), m_nodes.end(), 0) == m_nodes.end()) return;
  for (std::size_t n = 0; n < m_labels.Size(); ++n)
    MarkZeros(m_nodes.Data() + n * static_cast<std::size_t>(m_width),
              m_ragged ? rows.counts[n] : m_width);
}

// Some lines could not be read by the bulk road (a text, a blank field, a label out of range):
// those are read field by field and the whole is put together in deck order.
void inpS_ElementTopologyReader::Rebuild(const inp_Keyword& keyword, const inp_ElementRows& rows,
                                         bool scopedNodes) {
  struct Read {
    long long slot;
    bool usable;
    std::size_t firstScoped;
    cow_List<int> fields; // label, nodes
  };
  const inp_ElementForm form = m_type.Form();
  cow_List<Read> reads;
  m_width = rows.width;
  for (const inp_OddRow& odd : rows.odd) {
    Read& read = reads.emplace_back(Read{odd.slot, false, m_scopedNodes.size(), {}});
    read.usable = inpS_readElementFields(keyword, form, m_type, odd.row, read.fields,
                                         scopedNodes ? &m_scopedNodes : nullptr, m_messages);
    const auto nodes = static_cast<long long>(read.fields.size()) - 1;
    if (read.usable && nodes > m_type.MaxNodesPerElement() + m_extra)
      read.usable = m_faulty.Count(read.fields[0], nodes, m_type, m_extra);
    if (!read.usable) m_scopedNodes.resize(read.firstScoped);
    const inp_DataArray& data = keyword.Data();
    const int onFirst = data.Cols(odd.row) - 1 - (data.HasRowContinuation(odd.row) ? 1 : 0);
    if (read.usable && form.firstLineNodes > 0 && onFirst > form.firstLineNodes &&
        nodes > m_type.MinNodesPerElement()) // less are given without midside nodes
      m_faulty.NoteFirstLine(read.fields[0]);
    if (read.usable) m_width = std::max(m_width, static_cast<int>(nodes));
  }
  std::size_t next = 0, scoped = 0;
  for (std::size_t n = 0; n < rows.labels.Size(); ++n) {
    if (next == reads.size() || reads[next].slot != static_cast<long long>(n)) {
      const int count = rows.counts.IsEmpty() ? rows.width : rows.counts[n];
      Add(rows.labels[n], rows.nodes.Data() + n * static_cast<std::size_t>(rows.width), count);
      continue;
    }
    const Read& read = reads[next++];
    if (!read.usable) continue;
    const std::size_t until = next < reads.size() ? reads[next].firstScoped : m_scopedNodes.size();
    for (; scoped < until; ++scoped)
      m_scopedNodes[scoped].element = static_cast<long long>(m_labels.Size());
    Add(read.fields[0], read.fields.data() + 1, static_cast<int>(read.fields.size()) - 1);
  }
}

// A zero stands for a node that is not there: one that the deck gives must be told from it.
void inpS_ElementTopologyReader::MarkZeros(int* nodes, int count) const {
  if (!m_type.IsConnectorElement()) std::replace(nodes, nodes + count, 0, -1);
}

void inpS_ElementTopologyReader::Add(int label, const int* nodes, int count) {
  m_faulty.Count(label, count, m_type, m_extra);
  if (count < m_width) m_ragged = true;
  m_labels.Append(label);
  const std::size_t first = m_nodes.Size();
  m_nodes.Resize(first + static_cast<std::size_t>(m_width));
  std::copy_n(nodes, count, m_nodes.Data() + first);
  MarkZeros(m_nodes.Data() + first, count);
  std::fill(m_nodes.Data() + first + count, m_nodes.Data() + first + m_width, 0);
}

// What an element with too many nodes has made wider is narrow again.
long long inpS_ElementTopologyReader::Keep(const std::function<bool(int label)>& isKept) {
  const auto width = static_cast<std::size_t>(m_width);
  cow_List<std::size_t> kept;
  int widest = 0;
  for (std::size_t n = 0; n < m_labels.Size(); ++n) {
    if (m_faulty.Has(m_labels[n]) || !isKept(m_labels[n])) continue;
    kept.push_back(n);
    int count = m_width;
    while (count > 0 && m_nodes[n * width + static_cast<std::size_t>(count) - 1] == 0) --count;
    widest = std::max(widest, count);
  }
  const auto leftOut = static_cast<long long>(m_labels.Size() - kept.size());
  if (leftOut == 0) return 0;
  Select(kept, std::min(std::max(widest, m_type.MinNodesPerElement()), m_width));
  m_ragged = std::find(m_nodes.begin(), m_nodes.end(), 0) != m_nodes.end();
  m_topology = m_type.TopologyNodes(m_width);
  return leftOut;
}

inpS_ElementTopologyReader
inpS_ElementTopologyReader::TakeOut(std::span<const std::size_t> places) {
  inpS_ElementTopologyReader taken(m_type, m_messages);
  taken.m_width = m_width;
  taken.m_topology = m_topology;
  taken.m_ragged = m_ragged;
  taken.m_labels = m_labels.Copy();
  taken.m_nodes = m_nodes.Copy();
  taken.m_scopedNodes = m_scopedNodes;
  taken.Select({places.begin(), places.end()}, m_width);
  cow_List<std::size_t> left;
  for (std::size_t n = 0, next = 0; n < m_labels.Size(); ++n) {
    if (next < places.size() && places[next] == n)
      ++next;
    else
      left.push_back(n);
  }
  Select(left, m_width);
  return taken;
}

void inpS_ElementTopologyReader::Select(const cow_List<std::size_t>& kept, int width) {
  const auto old = static_cast<std::size_t>(m_width);
  const auto narrow = static_cast<std::size_t>(width);
  utl_Buffer<int> labels(kept.size()), nodes(kept.size() * narrow);
  for (std::size_t i = 0; i < kept.size(); ++i) {
    labels[i] = m_labels[kept[i]];
    std::copy_n(m_nodes.Data() + kept[i] * old, width, nodes.Data() + i * narrow);
  }
  cow_List<inpS_ScopedNode> scoped;
  for (inpS_ScopedNode node : m_scopedNodes) {
    const auto at =
        std::lower_bound(kept.begin(), kept.end(), static_cast<std::size_t>(node.element));
    if (at == kept.end() || *at != static_cast<std::size_t>(node.element)) continue;
    node.element = at - kept.begin();
    scoped.push_back(std::move(node));
  }
  m_labels = std::move(labels);
  m_nodes = std::move(nodes);
  m_scopedNodes = std::move(scoped);
  m_width = width;
}

bool inpS_ElementTopologyReader::HasReferenceNodes() const {
  return HasExtraNodes() && m_type.CarriesReferenceNode();
}

void inpS_ElementTopologyReader::Widen(utl_Buffer<int> nodes, int width) {
  m_nodes = std::move(nodes);
  m_width = m_topology = width;
}
