#pragma once

#include "base/cow_Value.h"

// Puts a name into double quotes where the deck language needs them: when it holds an underscore, a
// blank or a period, and also when it would not read back as itself bare (lower case letters,
// commas and other separators). Any other name is left as it is.
cow_String& QuotedName(cow_String& name);
// The same, and for a name that is a number: in front of a dot it would not be one name any more.
cow_String inpS_quoted(cow_String name);
