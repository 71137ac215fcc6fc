#pragma once

#include <string_view>

// Whether it is a type of connections that connector sections name, basic or assembled; a word in
// upper case without blanks.
bool inpS_isConnectorType(std::string_view word);
