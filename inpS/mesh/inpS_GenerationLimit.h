#pragma once

#include "base/cow_Value.h"
#include "parser/inp_Utils.h"

// What one line of generation may make. A few characters can ask for more nodes or elements than
// any machine holds, and those who do have mistyped a count; so they are told before memory is
// taken. The largest meshes that are worked with have a tenth of it.
inline constexpr long long inpS_mostGenerated = 100000000;

// For one line that would make `count` of them, "nodes" or "elements".
inline cow_String inpS_tooManyGenerated(long long count, const char* what) {
  return inp_Utils::Format("The line makes %lld %s; one line may make at most %lld.", count, what,
                           inpS_mostGenerated);
}
