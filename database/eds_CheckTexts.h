#pragma once

#include "database/eds_ModelReader.h"

// Whether a deck may hold a field's text where the writer puts it: what a stranger's model says
// shall not become keyword lines of a deck, nor anything that a terminal obeys.
//
// - A name, and any text that stands on a line with others, has no control character.
// - Data lines kept as text, and the deck's heading, have no keyword line among them.
// - A keyword kept as text is that one keyword: its first line begins with an asterisk and the name
//   that the record gives, and no other line is a keyword line.
//
// Returns what is wrong, "" when nothing is. `keyword`: what the record says the text to be, for
// the text of a verbatim_keyword.
cow_String eds_textFault(eds_RecordKind kind, const eds_FieldInfo& field, std::string_view text,
                         std::string_view keyword);
