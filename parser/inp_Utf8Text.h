#pragma once

#include "base/cow_Value.h"
#include <cstddef>
#include <string_view>

// Deck text on its way to people's eyes.

// Bytes of the UTF-8 character that starts at p, 0 when none does.
std::size_t inp_utf8CharLength(const char* p, const char* end);

// Characters of the text; a byte that belongs to no character counts as one.
std::size_t inp_countChars(std::string_view text);

// The text fit for a message: at most maxBytes of it (then "…"), tabs kept, other control bytes and
// bytes that are no UTF-8 replaced one by one, so that columns stay where they are.
cow_String inp_printable(std::string_view text, std::size_t maxBytes = 320);
