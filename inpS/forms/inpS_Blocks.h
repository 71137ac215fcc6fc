#pragma once

#include "database/eds_Type.h"
#include "parser/inp_KeywordEnm.h"
#include <span>

// The blocks of a written deck (inpS_blocks.def), read by the writer, by the phases that convert
// forms, and by what keeps text in its place.

enum class inpS_Phase : unsigned char {
  None,
  Distributions,
  Orientations,
  Constraints,
  Sections,
  Steps,
  TimePoints,
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

inline constexpr int inpS_blockCount = static_cast<int>(std::size(inpS_blockRows));
inline constexpr const inpS_Block& inpS_block(int number) {
  return inpS_blockRows[number - 1];
}
