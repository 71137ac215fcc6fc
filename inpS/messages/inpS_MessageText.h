#pragma once

#include "base/cow_Value.h"
#include "inpS/messages/inpS_MsgArg.h"
#include <string_view>

// What is done to message texts on their way to people.

inline constexpr int inpS_messageWidth = 80;
inline constexpr std::string_view inpS_messageIndentation = "           "; // 11 blanks

// Breaks a text into lines of at most `width` characters, the indentation of the lines after the
// first not counted. A line is broken behind its last blank, which may be one past the width and is
// not the line's first character; without one, at the width. Line ends of the text stay and are
// indented too. Characters are UTF-8 characters and are never cut.
cow_String inpS_wrapText(std::string_view text, int width, std::string_view indentation);

// The text with every "%n$s" that has an argument replaced by it, n counting from 1.
cow_String inpS_substitutePlaceholders(std::string_view text, const cow_List<inpS_MsgArg>& args);

// The text with every byte that is part of no UTF-8 character written out: "\xe4".
cow_String inpS_toUtf8(std::string_view text);
