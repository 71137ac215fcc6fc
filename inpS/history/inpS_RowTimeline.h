#pragma once

#include "base/cow_Value.h"
#include "database/eds_MemberSet.h"
#include <memory>

// Members of an ascending set that another one does not have.
eds_MemberSet inpS_without(const eds_MemberSet& members, const eds_MemberSet& gone);

// What is in force of one row from step to step, while later steps take degrees of some of its
// members from it. What is left of a small set is told step by step; of a set whose members go at
// many steps each member is told once, with the step at which it goes.
class inpS_RowTimeline {
public:
  struct Piece {
    int firstStep;
    int lastStep;
    uint64_t degrees;
    const eds_MemberSet* members = nullptr; // of the flat mesh; null: all of the row's
  };
  // What one step takes: degrees, and of which members.
  class Losses {
  public:
    void Add(uint64_t degrees, cow_List<int32_t> members);
    const auto& All() const { return m_all; }

  private:
    cow_List<std::pair<uint64_t, eds_MemberSet>> m_all;
  };

  // `region`: the members of the row's set; null: it is about one node, element or surface.
  // `losses`: how many steps take something.
  void Begin(int firstStep, uint64_t degrees, const eds_MemberSet* region, long long losses);
  // In ascending order of steps. `isGap`: what is lost is back in the next step.
  void Lose(int step, const Losses& losses, bool isGap);
  // `gaps`: steps in which nothing of the row is in force.
  void End(int lastStep, const cow_List<int>& gaps);
  const cow_List<Piece>& Pieces() const { return m_pieces; } // until the next Begin

private:
  struct State { // of some degrees and members
    uint64_t degrees;
    int firstStep;
    const eds_MemberSet* members; // null: all of the region
  };
  void Tell(const State& state, int lastStep);
  bool Take(cow_List<State>& states, int step, uint64_t degrees, const eds_MemberSet& gone,
            bool tells);
  void TakeApart(int step, uint64_t degrees, const eds_MemberSet& gone, bool isGap);
  const eds_MemberSet* Keep(eds_MemberSet members);
  void LeaveOut(int step);

  const eds_MemberSet* m_region = nullptr;
  bool m_isApart = false; // each member is told once
  cow_List<State> m_states;
  cow_List<Piece> m_pieces;
  cow_List<std::unique_ptr<eds_MemberSet>> m_sets; // of states and pieces
};
