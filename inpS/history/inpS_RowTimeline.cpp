#include "inpS/history/inpS_RowTimeline.h"
#include <algorithm>

namespace {

eds_MemberSet without(const eds_MemberSet& members, const eds_MemberSet& gone) {
  cow_List<int32_t> left;
  left.reserve(static_cast<std::size_t>(members.Size()));
  for (long long n = 0; n < members.Size(); ++n)
    if (!gone.IsMember(members[n])) left.push_back(members[n]);
  return eds_MemberSet::Ascending(std::move(left));
}

} // namespace

void inpS_RowTimeline::Losses::Add(uint64_t degrees, cow_List<int32_t> members) {
  eds_MemberSet set = eds_MemberSet::Ascending(std::move(members));
  const auto same =
      std::ranges::find_if(m_all, [&](const auto& one) { return one.second.SameMembers(set); });
  if (same != m_all.end())
    same->first |= degrees;
  else
    m_all.emplace_back(degrees, std::move(set));
}

void inpS_RowTimeline::Begin(int firstStep, uint64_t degrees, const eds_MemberSet* region) {
  m_region = region;
  m_pieces.clear();
  m_sets.clear();
  m_states.assign(1, {degrees, firstStep, nullptr});
}

void inpS_RowTimeline::Tell(const State& state, int lastStep) {
  if (lastStep >= state.firstStep)
    m_pieces.push_back({state.firstStep, lastStep, state.degrees, state.members});
}

// False: the states have nothing of it.
bool inpS_RowTimeline::Take(cow_List<State>& states, int step, uint64_t degrees,
                            const eds_MemberSet& gone, bool tells) {
  bool isAny = false;
  cow_List<State> left;
  for (const State& state : states) {
    const uint64_t both = state.degrees & degrees;
    const eds_MemberSet* rest = nullptr;
    bool isMet = both != 0;
    if (isMet && m_region) {
      const eds_MemberSet& members = state.members ? *state.members : *m_region;
      m_sets.push_back(std::make_unique<eds_MemberSet>(without(members, gone)));
      rest = m_sets.back().get();
      isMet = rest->Size() < members.Size();
    }
    if (!isMet) {
      left.push_back(state);
      continue;
    }
    isAny = true;
    if (tells) Tell(state, step - 1);
    const int first = std::max(state.firstStep, step);
    if ((state.degrees & ~both) != 0) left.push_back({state.degrees & ~both, first, state.members});
    if (rest && !rest->IsEmpty()) left.push_back({both, first, rest});
  }
  states = std::move(left);
  return isAny;
}

void inpS_RowTimeline::Lose(int step, const Losses& losses, bool isGap) {
  if (!isGap) {
    for (const auto& [degrees, members] : losses.All())
      Take(m_states, step, degrees, members, true);
    return;
  }
  for (State& state : m_states) {
    cow_List<State> within{{state.degrees, step, state.members}};
    bool isAny = false;
    for (const auto& [degrees, members] : losses.All())
      isAny |= Take(within, step, degrees, members, false);
    if (!isAny) continue;
    Tell(state, step - 1);
    for (const State& one : within) Tell(one, step);
    state.firstStep = step + 1;
  }
}

void inpS_RowTimeline::End(int lastStep, const cow_List<int>& gaps) {
  for (const State& state : m_states) Tell(state, lastStep);
  for (const int step : gaps) LeaveOut(step);
}

void inpS_RowTimeline::LeaveOut(int step) {
  cow_List<Piece> left;
  for (const Piece& piece : m_pieces) {
    if (step < piece.firstStep || step > piece.lastStep) {
      left.push_back(piece);
      continue;
    }
    if (step > piece.firstStep)
      left.push_back({piece.firstStep, step - 1, piece.degrees, piece.members});
    if (step < piece.lastStep)
      left.push_back({step + 1, piece.lastStep, piece.degrees, piece.members});
  }
  m_pieces = std::move(left);
}
