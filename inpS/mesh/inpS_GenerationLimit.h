#pragma once

#include "base/cow_Value.h"
#include "parser/inp_Utils.h"

// What one line of generation may make, what one set may hold and all sets of a deck together. A
// few characters can ask for more nodes or elements than any machine holds, and those who do have
// mistyped a count or a name; so they are told before memory is taken. The largest meshes that are
// worked with have a tenth of it.
#ifdef FUZZING_BUILD_MODE_UNSAFE_FOR_PRODUCTION
inline constexpr long long inpS_mostGenerated =
    100000; // the fuzzer tries thousands of decks a minute
#else
inline constexpr long long inpS_mostGenerated = 100000000;
#endif
// Members are counted as often as a set's lines name them. Those of one run in even steps take no
// room and do not count.
inline constexpr long long inpS_mostMembers = inpS_mostGenerated;
inline constexpr long long inpS_mostMembersInAll = 10 * inpS_mostMembers;

// For one line that would make `count` of them, "nodes" or "elements".
inline cow_String inpS_tooManyGenerated(long long count, const char* what) {
  return inp_Utils::Format("The line makes %lld %s; one line may make at most %lld.", count, what,
                           inpS_mostGenerated);
}
