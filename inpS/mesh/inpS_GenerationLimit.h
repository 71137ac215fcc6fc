#pragma once

#include "base/cow_Value.h"
#include "parser/inp_Utils.h"

// What one line of generation may make. A few characters can ask for more nodes or elements than
// any machine holds, and those who do have mistyped a count; so they are told before memory is
// taken. The largest meshes that are worked with have a tenth of it.
#ifdef FUZZING_BUILD_MODE_UNSAFE_FOR_PRODUCTION
inline constexpr long long inpS_mostGenerated =
    100000; // the fuzzer tries thousands of decks a minute
#else
inline constexpr long long inpS_mostGenerated = 100000000;
#endif

// For one line that would make `count` of them, "nodes" or "elements".
inline cow_String inpS_tooManyGenerated(long long count, const char* what) {
  return inp_Utils::Format("The line makes %lld %s; one line may make at most %lld.", count, what,
                           inpS_mostGenerated);
}
