#pragma once

#include "base/cow_Value.h"
#include <functional>

class eds_Store;

// Every link must have an owner, a member that is known, and a target of a kind to which the member
// leads; what is held by a map or a list has one holder, and is not held deeper than any reader
// follows it. Tells each fault.
void eds_checkLinks(eds_Store& store, const std::function<void(const cow_String&)>& tell);
