#pragma once

#include "base/cow_Value.h"
#include <string_view>

class utl_Stream;

// Control characters in text that stands on a line with others (names, values): those below a
// blank, the one of code 127, and in UTF-8 those from 128 to 159. No deck can hold them in a name,
// and a terminal obeys them.

// Where the first stands from `from` on; npos: nowhere.
std::size_t utl_findControl(std::string_view text, std::size_t from = 0);

// The text without them; what parts words (a tab, a line end) becomes a blank.
cow_String utl_withoutControls(std::string_view text);

// The same of whole lines, in which tabs and line feeds stay. A question mark stands for one that
// keeps an asterisk from beginning its line.
std::size_t utl_findControlInLines(std::string_view lines, std::size_t from = 0);
void utl_dropControlsInLines(cow_String& lines);
// Of data lines: a question mark stands for each, so that a line that was refused for one is
// refused again when it is read back.
void utl_maskControlsInLines(cow_String& lines);
void utl_printLines(utl_Stream& out, std::string_view lines); // without them
