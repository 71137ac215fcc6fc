#pragma once

#include "base/cow_Value.h"
#include <cstddef>
#include <string_view>

// Deck text on its way to people's eyes.

// Bytes of the UTF-8 character that starts at p, 0 when none does.
std::size_t inp_utf8CharLength(const char* p, const char* end);

// Characters of the text; a byte that belongs to no character counts as one.
std::size_t inp_countChars(std::string_view text);

// Whether one character may meet a terminal as it is: no control character but the tab, and none
// that turns the direction of the text around it. False for the empty text, which is no character.
bool inp_isPrintable(std::string_view character);

// One character, or one byte that belongs to none, in letters: "\x1b", "\u202e".
cow_String inp_escaped(std::string_view character);

inline constexpr std::size_t inp_longestShown = 320; // bytes of a line or a name

// The text fit for a message: at most maxBytes of it (then "…"), what is not printable and bytes
// that are no UTF-8 written out.
cow_String inp_printable(std::string_view text, std::size_t maxBytes = inp_longestShown);

// The text as it is, but no longer than that: columns stay where they are, and whoever shows it
// writes out what is not printable.
cow_String inp_shortened(std::string_view text, std::size_t maxBytes = inp_longestShown);
