#include "inpS/mesh/inpS_ElementStream.h"
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
  cow_List<Found> found(utl_slotCount());
  inp_streamElements(
      keyword.Data(), form,
      [&](const inp_ElementPiece& piece) {
        Translate(piece, nodes, occurrence, found[piece.slot]);
      },
      [&](const inp_ElementPiece& piece) { Take(keyword, piece, found[piece.slot], sink); });
  m_faulty.Report(keyword, m_type, m_messages);
}

void inpS_ElementStream::Translate(const inp_ElementPiece& piece, const KvoObjLabeler& nodes,
                                   int occurrence, Found& found) const {
  found.open.clear();
  if (piece.width != m_type.MaxNodesPerElement() || !piece.odd.empty()) return;
  found.labels.resize(kEntries);
  for (std::size_t at = 0; at < piece.nodes.size(); at += kEntries) {
    const std::span<int> entries =
        piece.nodes.subspan(at, std::min(kEntries, piece.nodes.size() - at));
    const std::span<int> labels(found.labels.data(), entries.size());
    std::copy(entries.begin(), entries.end(), labels.begin());
    const long long unknown = nodes.ConvertInstanceLabels(occurrence, labels, entries);
    int least = 1;
    for (const int label : labels) least = std::min(least, label);
    if (unknown == 0 && least > 0) continue;
    for (std::size_t n = 0; n < labels.size(); ++n) {
      // Nodes may be labelled zero or below, but no element can refer to one of those.
      if (labels[n] <= 0) entries[n] = -1;
      if (entries[n] < 0) found.open.push_back({static_cast<long long>(at + n), labels[n]});
    }
  }
}

void inpS_ElementStream::Take(const inp_Keyword& keyword, const inp_ElementPiece& piece,
                              const Found& found, const Sink& sink) {
  if (piece.labels.empty()) return;
  if (piece.width == m_type.MaxNodesPerElement() && piece.odd.empty())
    sink({piece.labels, piece.nodes, found.open});
  else
    Report(keyword, piece);
}

// A piece with a fault fails the mesh, so its good elements need not go on.
void inpS_ElementStream::Report(const inp_Keyword& keyword, const inp_ElementPiece& piece) {
  const inp_ElementForm form = m_type.Form();
  std::size_t next = 0;
  for (std::size_t n = 0; n < piece.labels.size(); ++n) {
    if (next < piece.odd.size() && piece.odd[next].slot == static_cast<long long>(n)) {
      cow_List<int> fields;
      if (inpS_readElementFields(keyword, form, m_type, piece.odd[next++].row, fields, nullptr,
                                 m_messages))
        m_faulty.Count(fields[0], static_cast<long long>(fields.size()) - 1, m_type, 0);
      continue;
    }
    m_faulty.Count(piece.labels[n], piece.counts[n], m_type, 0);
  }
}
