#pragma once

#include "base/cow_Value.h"
#include <string_view>

// Puts a name into double quotes where the deck language needs them: when it holds an underscore, a
// blank or a period, and also when it would not read back as itself bare (lower case letters,
// commas and other separators). Any other name is left as it is.
cow_String& QuotedName(cow_String& name);
// The same, and for a name that is a number: in front of a dot it would not be one name any more.
cow_String inpS_quoted(cow_String name);

// A value that is a word or a name of the deck's own kind, as the store keeps it: folded, with its
// quotes only where it would be another thing without them: "5" is a name, 5 a label, "A.1" is one
// name, A.1 what A has.
cow_String inpS_textOf(std::string_view asWritten);
// As a deck has it. What such a text says without quotes is written without them.
cow_String inpS_textInDeck(const cow_String& text);
