#pragma once

#include "base/cow_Value.h"
#include "database/eds_Type.h"
#include "parser/inp_KeywordEnm.h"
#include <span>

// The blocks of a written deck (inpS_blocks.def), read by the writer, by the phases that convert
// forms, and by what keeps text in its place.

enum class inpS_Phase : unsigned char {
  None,
  ConnectorBehaviors,
  Distributions,
  Orientations,
  Constraints,
  Sections,
  Steps,
  TimePoints,
  InteractionProperties,
  Interactions,
  Boundaries,
  Loads,
  InitialConditions
};

struct inpS_Block {
  int number;
  const char* name;
  const char* mark; // null: printed without marks
  inpS_Phase phase;
  eds_Member member;
  bool HasForms() const { return phase != inpS_Phase::None; }
};

inline constexpr inpS_Block inpS_blockRows[] = {
#define INPS_BLOCK(number, Name, mark, Phase, Member)                                              \
  {number, #Name, mark, inpS_Phase::Phase, eds_Member::Member},
#include "inpS/forms/inpS_blocks.def"
};

// The phase that converts a keyword within a step.
constexpr inpS_Phase inpS_stepPhaseOf(inp_KeywordEnm keyword) {
  switch (keyword) {
#define INPS_STEP_PHASE(Keyword, Phase)                                                            \
  case inp_Kw##Keyword:                                                                            \
    return inpS_Phase::Phase;
#include "inpS/forms/inpS_stepPhases.def"
  default:
    return inpS_Phase::Steps;
  }
}

// The member by which an owner holds a keyword of the block.
constexpr eds_Member inpS_memberOf(const inpS_Block& block, inp_KeywordEnm keyword) {
#define INPS_BLOCK_MEMBER(Keyword, Block, Member)                                                  \
  if (keyword == inp_Kw##Keyword) return eds_Member::Member;
#include "inpS/forms/inpS_blocks.def"
  return block.member;
}

// All members that the block prints.
inline cow_List<eds_Member> inpS_membersOf(const inpS_Block& block) {
  cow_List<eds_Member> members{block.member};
#define INPS_BLOCK_MEMBER(Keyword, Block, Member)                                                  \
  if (block.number == Block && members.back() != eds_Member::Member)                               \
    members.push_back(eds_Member::Member);
#include "inpS/forms/inpS_blocks.def"
  return members;
}

inline constexpr int inpS_blockCount = static_cast<int>(std::size(inpS_blockRows));
inline constexpr const inpS_Block& inpS_block(int number) {
  return inpS_blockRows[number - 1];
}
