#include "inpS/mesh/inpS_ElementStream.h"
#include "base/utl_BlockSize.h"
#include "base/utl_Threads.h"
#include "database/KvoObjLabeler.h"
#include "parser/inp_BulkDecode.h"
#include <algorithm>

namespace {

constexpr std::size_t kEntries = 6 << 10; // 24 KiB: they stay in the first cache

} // namespace

bool inpS_ElementStream::Serves(const inpS_ElementParameters& type) {
  return type.MinNodesPerElement() == type.MaxNodesPerElement() && !type.CarriesReferenceNode() &&
         type.MaxNodesPerElement() <= static_cast<int>(inp_mostElementNodes);
}

void inpS_ElementStream::Read(const inp_Keyword& keyword, const KvoObjLabeler& nodes,
                              int occurrence, const Sink& sink) {
  const inp_ElementForm form = m_type.Form();
  const long long width = m_type.MaxNodesPerElement();
  cow_List<Found> found(utl_slotCount());
  inp_streamElements(
      keyword.Data(), form,
      [&](const inp_ElementPiece& piece) {
        Translate(piece, nodes, occurrence, found[piece.slot]);
      },
      [&](const inp_ElementPiece& piece) {
        Found& here = found[piece.slot];
        if (piece.labels.empty()) return;
        if (piece.width == m_type.MaxNodesPerElement() && piece.odd.empty())
          return sink({piece.labels, piece.nodes, here.open});
        Readable some = ReadFaulty(keyword, piece);
        here.open.clear();
        Translate(some.labels, some.nodes, nodes, occurrence, here);
        std::erase_if(here.open, [&](const inpS_OpenEntry& open) {
          return open.entry % width >= some.counts[static_cast<std::size_t>(open.entry / width)];
        });
        if (!some.labels.empty()) sink({some.labels, some.nodes, here.open});
      });
  m_faulty.Report(keyword, m_type, m_messages);
}

void inpS_ElementStream::Translate(const inp_ElementPiece& piece, const KvoObjLabeler& nodes,
                                   int occurrence, Found& found) const {
  found.open.clear();
  if (piece.width == m_type.MaxNodesPerElement() && piece.odd.empty())
    Translate(piece.labels, piece.nodes, nodes, occurrence, found);
}

void inpS_ElementStream::Translate(std::span<const int> elements, std::span<int> all,
                                   const KvoObjLabeler& nodes, int occurrence, Found& found) {
  const std::size_t most = utl_blockSize(kEntries);
  found.labels.resize(most);
  for (std::size_t at = 0; at < all.size(); at += most) {
    const std::span<int> entries = all.subspan(at, std::min(most, all.size() - at));
    const std::span<int> labels(found.labels.data(), entries.size());
    std::copy(entries.begin(), entries.end(), labels.begin());
    const long long unknown = nodes.ConvertInstanceLabels(occurrence, labels, entries);
    int least = 1;
    for (const int label : labels) least = std::min(least, label);
    if (unknown == 0 && least > 0) continue;
    for (std::size_t n = 0; n < labels.size(); ++n) {
      // Nodes may be labelled zero or below, but no element can refer to one of those.
      if (labels[n] <= 0) entries[n] = -1;
      if (entries[n] >= 0) continue;
      found.open.push_back({static_cast<long long>(at + n), labels[n],
                            elements[(at + n) * elements.size() / all.size()]});
    }
  }
}

// The mesh fails then; what else its elements lack is to be told in the same run.
inpS_ElementStream::Readable inpS_ElementStream::ReadFaulty(const inp_Keyword& keyword,
                                                            const inp_ElementPiece& piece) {
  const inp_ElementForm form = m_type.Form();
  Readable readable;
  const int* nodes = piece.nodes.data();
  std::size_t next = 0;
  for (std::size_t n = 0; n < piece.labels.size(); nodes += piece.counts[n++]) {
    const auto count = static_cast<std::size_t>(piece.counts[n]);
    if (next == piece.odd.size() || piece.odd[next].slot != static_cast<long long>(n)) {
      Add(piece.labels[n], {nodes, count}, readable);
      continue;
    }
    cow_List<int> fields;
    if (inpS_readElementFields(keyword, form, m_type, piece.odd[next++].row, fields, nullptr,
                               m_messages))
      Add(fields[0], std::span<const int>(fields).subspan(1), readable);
  }
  return readable;
}

// Nodes that are too many are left out, those that lack count as no node.
void inpS_ElementStream::Add(int label, std::span<const int> nodes, Readable& readable) {
  m_faulty.Count(label, static_cast<long long>(nodes.size()), m_type, 0);
  const auto width = static_cast<std::size_t>(m_type.MaxNodesPerElement());
  const std::size_t count = std::min(nodes.size(), width);
  readable.labels.push_back(label);
  readable.counts.push_back(static_cast<int>(count));
  readable.nodes.insert(readable.nodes.end(), nodes.begin(), nodes.begin() + count);
  readable.nodes.resize(readable.labels.size() * width);
}
