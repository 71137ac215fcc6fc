#pragma once

#include "base/cow_Value.h"
#include <functional>

class eds_Store;

// The keywords kept among the steps begin and end them in turn, as a deck must have them: otherwise
// what a stranger's model says would put the keywords of one step into another, or into none. The
// last step may be open in a file that was never finished: whoever wrote it died in the middle.
void eds_checkSteps(eds_Store& store, const std::function<void(const cow_String&)>& tell);
