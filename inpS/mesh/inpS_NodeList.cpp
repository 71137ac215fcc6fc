#include "inpS/mesh/inpS_NodeList.h"
#include "base/utl_BlockSize.h"
#include "database/KvoObjLabeler.h"
#include "database/KvoSimPosition.h"
#include "inpS/mesh/inpS_NodeGenerator.h"
#include "inpS/sets/inpS_SetDefinition.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"
#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

constexpr long long kMostNamed = 10;
constexpr std::size_t kMostMoved = std::size_t{1} << 20; // 32 MB

} // namespace

void inpS_NodeList::Open(const KvoSimPosition& owner) {
  if (!m_writer) m_writer.emplace(owner, eds_ValueType::Double, 3);
}

void inpS_NodeList::Merge(const inpS_NodePiece& nodes, KvoObjLabeler& labeler, int occurrence,
                          const KvoSimPosition& owner, inpS_SetDefinition* set,
                          cow_List<int>& refused) {
  if (nodes.labels.empty()) return;
  Open(owner);
  m_ordinals.Resize(nodes.labels.size());
  const std::span<int> ordinals(m_ordinals);
  const long long before = labeler.Size(occurrence);
  const auto fresh = labeler.AddInstanceLabels(occurrence, nodes.labels, ordinals);
  const bool allNew = fresh == static_cast<long long>(nodes.labels.size());
  if (allNew) {
    AppendPoints(nodes.coordinates);
    m_count += fresh;
    if (set) inpS_addRun(*set, before, fresh);
  } else {
    Scatter(nodes, ordinals, set, refused);
  }
  MergeNormals(nodes, ordinals, allNew);
}

void inpS_NodeList::AppendPoints(std::span<const double> points) {
  if (m_keep)
    m_points.Append(points);
  else
    m_writer->Append(points);
}

void inpS_NodeList::Scatter(const inpS_NodePiece& nodes, std::span<const int> ordinals,
                            inpS_SetDefinition* set, cow_List<int>& refused) {
  for (std::size_t n = 0; n < ordinals.size(); ++n) {
    const long long at = ordinals[n] - m_base;
    if (at < 0) {
      refused.push_back(nodes.labels[n]);
      continue;
    }
    if (set) inpS_addRun(*set, ordinals[n], 1);
    const std::span<const double> point = nodes.coordinates.subspan(3 * n, 3);
    if (at == m_count) {
      AppendPoints(point);
      ++m_count;
    } else if (m_keep) {
      double* const known = m_points.Data() + 3 * at;
      Compare(known, point.data(), static_cast<int>(at), KeywordNumber());
      std::copy(point.begin(), point.end(), known);
    } else {
      m_moved.push_back({static_cast<int>(at), KeywordNumber(), {point[0], point[1], point[2]}});
    }
  }
  if (m_moved.size() > utl_blockSize(kMostMoved)) FlushMoved();
}

void inpS_NodeList::FlushMoved() {
  std::stable_sort(m_moved.begin(), m_moved.end(),
                   [](const Moved& a, const Moved& b) { return a.at < b.at; });
  for (const Moved& node : m_moved) {
    double known[3];
    m_writer->ReadItem(node.at, std::span<double>(known));
    Compare(known, node.point, node.at, node.keyword);
    m_writer->Overwrite(node.at, std::span<const double>(node.point));
  }
  m_moved.clear();
}

// ---- nodes that are defined again

void inpS_NodeList::SetKeyword(const inp_Keyword& keyword, double tolerance) {
  m_keyword = keyword;
  m_tolerance = tolerance;
  m_keywordNumber = -1;
}

int inpS_NodeList::KeywordNumber() {
  if (m_keywordNumber < 0 && m_tolerance >= 0) {
    m_keywordNumber = static_cast<int>(m_redefined.size());
    m_redefined.push_back({m_keyword, m_tolerance, 0, {}});
  }
  return m_keywordNumber;
}

void inpS_NodeList::Compare(const double old[3], const double given[3], int at, int keyword) {
  if (keyword < 0) return;
  Redefined& redefined = m_redefined[static_cast<std::size_t>(keyword)];
  double largest = 0, change = 0;
  for (int i = 0; i < 3; ++i) {
    largest = std::max({largest, std::fabs(old[i]), std::fabs(given[i])});
    change = std::max(change, std::fabs(given[i] - old[i]));
  }
  if (change <= redefined.tolerance * largest) return;
  if (redefined.count++ < kMostNamed) redefined.some.push_back(at);
}

void inpS_NodeList::TellRedefined(const KvoObjLabeler& labeler, int occurrence,
                                  inp_Visitor& messages) {
  for (const Redefined& redefined : m_redefined) {
    if (redefined.count == 0) continue;
    cow_List<cow_String> labels;
    for (const int at : redefined.some)
      labels.push_back(std::to_string(labeler.GetInstanceLabel(occurrence, m_base + at)));
    messages.AddWarning(inp_Utils::MessageInKeyword(
        redefined.keyword,
        inp_Utils::Format("Nodes are defined again in another place (%lld); the last definition of "
                          "each holds: ",
                          redefined.count),
        labels));
  }
  m_redefined.clear();
  m_keywordNumber = -1;
}

void inpS_NodeList::MergeNormals(const inpS_NodePiece& nodes, std::span<const int> ordinals,
                                 bool allNew) {
  const bool mayClear = !allNew && !m_normalOrdinals.IsEmpty();
  if (nodes.normalAt.empty() && !mayClear) return;
  const auto add = [&](std::size_t row, const double* normal) {
    if (ordinals[row] < m_base) return;
    m_normalOrdinals.Append(static_cast<int>(ordinals[row] - m_base));
    m_normals.Append({normal, 3});
  };
  constexpr double none[3] = {};
  std::size_t next = 0;
  for (std::size_t row = 0; mayClear && row < ordinals.size(); ++row) {
    const bool hasNormal = next < nodes.normalAt.size() && nodes.normalAt[next] == row;
    add(row, hasNormal ? &nodes.normals[3 * next++] : none);
  }
  for (; next < nodes.normalAt.size(); ++next) add(nodes.normalAt[next], &nodes.normals[3 * next]);
}

// ---- the end

void inpS_NodeList::Finish() {
  if (!m_writer) return;
  FlushMoved();
  if (m_keep) m_writer->Append(std::span<const double>(m_points));
  m_keep = false;
  m_points = {};
  m_normalAt = {};
  m_indexedNormals = 0;
  m_array = m_writer->Finish();
  m_writer.reset();
  m_moved = {};
  m_ordinals = {};
  m_given = m_count;
  SortNormals();
}

void inpS_NodeList::LoadPoints() {
  if (m_keep || !m_points.IsEmpty() || m_count == 0) return;
  m_points.Resize(3 * static_cast<std::size_t>(m_count));
  eds_ArrayReader(m_array).ReadPiece(0, std::span<double>(m_points));
}

const double* inpS_NodeList::Point(long long ordinal) {
  LoadPoints();
  return m_points.Data() + 3 * static_cast<std::size_t>(ordinal - m_base);
}

// Only what came since the last call is looked at: generators and nodes may take turns.
void inpS_NodeList::IndexNormals() {
  const std::size_t before = m_normalAt.Size();
  m_normalAt.Resize(static_cast<std::size_t>(m_count));
  std::fill(m_normalAt.begin() + before, m_normalAt.end(), -1);
  for (; m_indexedNormals < m_normalOrdinals.Size(); ++m_indexedNormals)
    m_normalAt[static_cast<std::size_t>(m_normalOrdinals[m_indexedNormals])] =
        static_cast<int>(m_indexedNormals);
}

const double* inpS_NodeList::Normal(long long ordinal) {
  if (m_normalOrdinals.IsEmpty()) return nullptr;
  if (m_indexedNormals < m_normalOrdinals.Size() ||
      m_normalAt.Size() < static_cast<std::size_t>(m_count))
    IndexNormals();
  const int at = m_normalAt[static_cast<std::size_t>(ordinal - m_base)];
  const double* normal = at < 0 ? nullptr : m_normals.Data() + 3 * static_cast<std::size_t>(at);
  const bool cleared = normal && normal[0] == 0 && normal[1] == 0 && normal[2] == 0;
  return cleared ? nullptr : normal;
}

void inpS_NodeList::AddGenerated(const double point[3], const KvoSimPosition& owner) {
  if (m_array.IsNull()) {
    Open(owner); // everything else stands in the part
    m_array = m_writer->Finish();
    m_writer.reset();
  }
  LoadPoints();
  m_points.Append({point, 3});
  ++m_count;
}

void inpS_NodeList::FinishGenerated() {
  if (m_count > m_given)
    eds_updateArray(m_array, m_given,
                    std::as_bytes(std::span<const double>(m_points).subspan(
                        3 * static_cast<std::size_t>(m_given))));
  m_given = m_count;
  m_points = {};
}

void inpS_NodeList::Discard() {
  if (!m_array.IsNull()) m_array.Position().Remove();
  m_array = {};
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
    const bool last =
        n + 1 == order.size() || m_normalOrdinals[order[n + 1]] != m_normalOrdinals[at];
    const double* normal = m_normals.Data() + 3 * at;
    if (!last || (normal[0] == 0 && normal[1] == 0 && normal[2] == 0)) continue;
    ordinals.Append(m_normalOrdinals[at]);
    normals.Append({normal, 3});
  }
  m_normalOrdinals = std::move(ordinals);
  m_normals = std::move(normals);
}
