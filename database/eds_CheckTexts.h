#pragma once

#include "database/eds_ModelReader.h"

// What a verbatim_keyword says of its text, and where it stands.
struct eds_KeptPlace {
  std::string_view keyword;
  bool isAmongSteps = false; // in the model's own last block
};

// Whether a deck may hold a field's text where the writer puts it: what a stranger's model says
// shall not become keyword lines of a deck, nor anything that a terminal obeys.
//
// - A name, and any text that stands on a line with others, has no control character.
// - Data lines kept as text, and the deck's heading, have no keyword line among them.
// - A keyword kept as text is that one keyword: its first line begins with an asterisk and the name
//   that the record gives, and no other line is a keyword line. It is none that is always converted
//   (*INCLUDE, *PARAMETER, what begins and ends parts, instances and the assembly), and steps begin
//   and end among the steps only.
// - In either of these a carriage return stands before a line feed only.
//
// Returns what is wrong, "" when nothing is. `place`: of a verbatim_keyword.
cow_String eds_textFault(eds_RecordKind kind, const eds_FieldInfo& field, std::string_view text,
                         const eds_KeptPlace& place);

// What a keyword of that name, however it is spelt, does to the steps of a deck.
enum class eds_StepRole : unsigned char { None, Begin, End };
eds_StepRole eds_stepRole(std::string_view keyword);
