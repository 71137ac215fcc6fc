#include "inpS/mesh/inpS_NodeList.h"
#include "database/KvoObjLabeler.h"
#include "inpS/mesh/inpS_NodeGenerator.h"
#include <algorithm>
#include <numeric>
#include <vector>

namespace {

constexpr std::size_t kBlock = 1 << 14; // labels looked up at a time; their ordinals stay in cache

void copyPoint(const double* from, double* to) {
  if (from != to) std::copy(from, from + 3, to);
}

} // namespace

const double* inpS_NodeList::Point(long long ordinal) const {
  return m_coordinates.Data() + 3 * static_cast<std::size_t>(ordinal - m_base);
}

inpS_NodeList::Merged inpS_NodeList::Merge(inpS_NodeGenerator& nodes, KvoObjLabeler& labeler,
                                           int occurrence) {
  const std::size_t count = nodes.Labels().Size();
  Merged merged{labeler.Size(occurrence), static_cast<long long>(count), true};
  m_refused.Clear();
  labeler.Reserve(occurrence, merged.first + merged.count);
  // The first keyword's array becomes the list: what follows only moves points to the front of it.
  const bool take = m_coordinates.IsEmpty();
  if (take) m_coordinates = std::move(nodes.Coordinates());
  const double* source = take ? m_coordinates.Data() : nodes.Coordinates().Data();

  int ordinals[kBlock];
  for (std::size_t begin = 0; begin < count; begin += kBlock) {
    const std::size_t size = std::min(kBlock, count - begin);
    const std::span<const int> labels(nodes.Labels().Data() + begin, size);
    const long long before = labeler.Size(occurrence);
    const auto fresh = static_cast<std::size_t>(
        labeler.AddInstanceLabels(occurrence, labels, std::span<int>(ordinals, size)));
    const auto points = static_cast<std::size_t>(before - m_base);
    if (!take) m_coordinates.Resize(3 * (points + fresh));
    double* target = m_coordinates.Data();
    if (fresh == size) {
      if (source + 3 * begin != target + 3 * points)
        std::memmove(target + 3 * points, source + 3 * begin, size * 3 * sizeof(double));
      continue;
    }
    merged.allNew = false;
    for (std::size_t n = 0; n < size; ++n) {
      if (ordinals[n] < m_base)
        m_refused.Append(labels[n]);
      else
        copyPoint(source + 3 * (begin + n),
                  target + 3 * static_cast<std::size_t>(ordinals[n] - m_base));
    }
  }
  m_coordinates.Resize(3 * static_cast<std::size_t>(labeler.Size(occurrence) - m_base));
  MergeNormals(nodes, labeler, occurrence, merged.allNew);
  return merged;
}

void inpS_NodeList::MergeNormals(inpS_NodeGenerator& nodes, const KvoObjLabeler& labeler,
                                 int occurrence, bool allNew) {
  const bool mayClear = !allNew && !m_normalOrdinals.IsEmpty();
  if (!nodes.HasNormals() && !mayClear) return;
  std::size_t next = 0;
  const auto add = [&](std::size_t row, const double* normal) {
    const int ordinal = labeler.ConvertInstanceLabel(occurrence, nodes.Labels()[row]);
    if (ordinal < m_base) return;
    m_normalOrdinals.Append(static_cast<int>(ordinal - m_base));
    m_normals.Append({normal, 3});
  };
  constexpr double none[3] = {};
  const auto& positions = nodes.NormalPositions();
  for (std::size_t row = 0; mayClear && row < nodes.Labels().Size(); ++row) {
    const bool hasNormal = next < positions.Size() && positions[next] == static_cast<long long>(row);
    add(row, hasNormal ? nodes.Normals().Data() + 3 * next++ : none);
  }
  for (; next < positions.Size(); ++next)
    add(static_cast<std::size_t>(positions[next]), nodes.Normals().Data() + 3 * next);
}

void inpS_NodeList::SortNormals() {
  std::vector<std::size_t> order(m_normalOrdinals.Size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
    return m_normalOrdinals[a] < m_normalOrdinals[b];
  });
  utl_Buffer<int> ordinals;
  utl_Buffer<double> normals;
  for (std::size_t n = 0; n < order.size(); ++n) {
    const std::size_t at = order[n];
    const bool last = n + 1 == order.size() || m_normalOrdinals[order[n + 1]] != m_normalOrdinals[at];
    const double* normal = m_normals.Data() + 3 * at;
    if (!last || (normal[0] == 0 && normal[1] == 0 && normal[2] == 0)) continue;
    ordinals.Append(m_normalOrdinals[at]);
    normals.Append({normal, 3});
  }
  m_normalOrdinals = std::move(ordinals);
  m_normals = std::move(normals);
}
