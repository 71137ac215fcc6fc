#include "inpS/history/inpS_RowTimeline.h"
#include <algorithm>

eds_MemberSet inpS_without(const eds_MemberSet& members, const eds_MemberSet& gone) {
  constexpr long long muchLarger = 32;
  const bool looksUp = gone.Size() > members.Size() * muchLarger;
  cow_List<int32_t> left;
  left.reserve(static_cast<std::size_t>(members.Size()));
  long long at = 0;
  for (long long n = 0; n < members.Size(); ++n) {
    const int32_t member = members[n];
    while (!looksUp && at < gone.Size() && gone[at] < member) ++at;
    const bool isGone = looksUp ? gone.IsMember(member) : at < gone.Size() && gone[at] == member;
    if (!isGone) left.push_back(member);
  }
  return eds_MemberSet::Ascending(std::move(left));
}

void inpS_RowTimeline::Losses::Add(uint64_t degrees, cow_List<int32_t> members) {
  eds_MemberSet set = eds_MemberSet::Ascending(std::move(members));
  const auto same =
      std::ranges::find_if(m_all, [&](const auto& one) { return one.second.SameMembers(set); });
  if (same != m_all.end())
    same->first |= degrees;
  else
    m_all.emplace_back(degrees, std::move(set));
}

void inpS_RowTimeline::Begin(int firstStep, uint64_t degrees, const eds_MemberSet* region,
                             long long losses) {
  constexpr long long mostMembers = 4096; // told of a row, all steps together
  m_region = region;
  m_isApart = region && region->Size() * losses > mostMembers;
  m_pieces.clear();
  m_sets.clear();
  m_states.assign(1, {degrees, firstStep, nullptr});
}

void inpS_RowTimeline::Tell(const State& state, int lastStep) {
  if (lastStep < state.firstStep) return;
  const bool isWhole = !state.members || state.members->Size() == m_region->Size();
  m_pieces.push_back({state.firstStep, lastStep, state.degrees, isWhole ? nullptr : state.members});
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
      rest = Keep(inpS_without(members, gone));
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

const eds_MemberSet* inpS_RowTimeline::Keep(eds_MemberSet members) {
  m_sets.push_back(std::make_unique<eds_MemberSet>(std::move(members)));
  return m_sets.back().get();
}

// What is lost is told, from where it began; the other members and degrees go on untold.
void inpS_RowTimeline::TakeApart(int step, uint64_t degrees, const eds_MemberSet& gone,
                                 bool isGap) {
  cow_List<State> left;
  for (const State& state : m_states) {
    const uint64_t both = state.degrees & degrees;
    const eds_MemberSet& members = state.members ? *state.members : *m_region;
    if (both == 0 || state.firstStep > step) {
      left.push_back(state);
      continue;
    }
    eds_MemberSet rest = inpS_without(members, gone);
    if (rest.Size() == members.Size()) {
      left.push_back(state);
      continue;
    }
    const eds_MemberSet* lost = Keep(inpS_without(members, rest));
    Tell({both, state.firstStep, lost}, step - 1);
    if (isGap) left.push_back({both, step + 1, lost});
    if ((state.degrees & ~both) != 0)
      left.push_back({state.degrees & ~both, state.firstStep, lost});
    if (!rest.IsEmpty()) left.push_back({state.degrees, state.firstStep, Keep(std::move(rest))});
  }
  m_states = std::move(left);
}

void inpS_RowTimeline::Lose(int step, const Losses& losses, bool isGap) {
  if (m_isApart) {
    for (const auto& [degrees, members] : losses.All()) TakeApart(step, degrees, members, isGap);
    return;
  }
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
