#include "inpS/history/inpS_InForce.h"
#include <algorithm>
#include <tuple>

// ---- what is left of a row

inpS_InForce::Pieces::Pieces(inpS_InForce& all) : m_all(all) {
  std::ranges::stable_sort(
      m_all.m_cuts, {}, [](const Cut& cut) { return std::tuple(cut.source, cut.row, cut.step); });
}

bool inpS_InForce::Pieces::AreWhole(std::size_t source) {
  const cow_List<Cut>& cuts = m_all.m_cuts;
  const auto sourceOf = [](const Cut& cut) { return static_cast<std::size_t>(cut.source); };
  while (m_next < cuts.size() && sourceOf(cuts[m_next]) < source) ++m_next;
  return (m_next == cuts.size() || sourceOf(cuts[m_next]) > source) &&
         m_all.m_sources[source].gaps.empty();
}

const cow_List<inpS_InForce::Piece>* inpS_InForce::Pieces::Of(std::size_t source, long long row,
                                                              const inpS_ConditionRow& what,
                                                              inpS_ConditionTargets& targets) {
  const cow_List<Cut>& cuts = m_all.m_cuts;
  const auto isBefore = [&](const Cut& cut) {
    return std::pair(static_cast<std::size_t>(cut.source), cut.row) < std::pair(source, row);
  };
  while (m_next < cuts.size() && isBefore(cuts[m_next])) ++m_next;
  std::size_t end = m_next;
  while (end < cuts.size() && static_cast<std::size_t>(cuts[end].source) == source &&
         cuts[end].row == row)
    ++end;
  const Source& from = m_all.m_sources[source];
  if (end == m_next && from.gaps.empty()) return nullptr;
  Build(source, what, end, m_all.RegionOf(*from.kind, what.target, targets).members);
  m_next = end;
  return &m_timeline.Pieces();
}

// What each step takes, its members together where they lose the same degrees.
void inpS_InForce::Pieces::Build(std::size_t place, const inpS_ConditionRow& what, std::size_t end,
                                 const eds_MemberSet* region) {
  const Source& source = m_all.m_sources[place];
  const cow_List<Cut>& cuts = m_all.m_cuts;
  long long losses = 0;
  for (std::size_t n = m_next; n < end; ++n)
    losses += n == m_next || cuts[n].step != cuts[n - 1].step;
  m_timeline.Begin(source.firstStep, what.degrees, region, losses);
  for (std::size_t n = m_next; n < end;) {
    const int step = cuts[n].step;
    const bool isGap = cuts[n].isGap;
    cow_Map<uint64_t, cow_List<int32_t>> gone;
    for (; n < end && cuts[n].step == step; ++n) {
      cow_List<int32_t>& nodes = gone[cuts[n].degrees];
      if (cuts[n].node >= 0) nodes.push_back(cuts[n].node);
      if (cuts[n].set < 0) continue;
      const cow_List<int32_t> members =
          m_all.m_sets[static_cast<std::size_t>(cuts[n].set)].Members();
      nodes.insert(nodes.end(), members.begin(), members.end());
    }
    inpS_RowTimeline::Losses losses;
    for (auto& [degrees, nodes] : gone) losses.Add(degrees, std::move(nodes));
    m_timeline.Lose(step, losses, isGap);
  }
  m_timeline.End(source.lastStep, source.gaps);
}
