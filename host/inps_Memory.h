#pragma once

#include "base/cow_Value.h"
#include <string_view>

struct inps_Session;

// How much memory a run may have: by itself seven eighths of the machine's or the container's, and
// what the option says.

// For the process that is this program and nothing else, at its start. A bound that it was started
// with is left alone when it is smaller.
void inps_limitMemory();

// The bound that the option asks for, "512M" or "1.5G". Returns a usage error in words, empty when
// all is well.
cow_String inps_limitMemory(std::string_view size);

// Says what ran out of memory ("" or " with FILE"), what the bound is and how to raise it. Needs
// no memory.
void inps_tellOutOfMemory(inps_Session& session, std::string_view text);
