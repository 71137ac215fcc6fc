#pragma once

#include "base/utl_Exception.h"
#include <atomic>

// The work under way ends because somebody asked for it: a user at the keyboard, a system that
// shuts down. Whoever holds half a file gives it up on the way, as after a failure.
class utl_Interruption : public utl_Exception {
public:
  utl_Interruption() : utl_Exception("interrupted") {}
};

namespace utl_interruption {
inline std::atomic<bool> g_asked{false};
static_assert(std::atomic<bool>::is_always_lock_free);
} // namespace utl_interruption

// May be called from anywhere, a signal handler too. It is for the process: whichever work comes
// past utl_stopIfAsked first ends.
inline void utl_askToStop() noexcept {
  utl_interruption::g_asked = true;
}

// For those who may not throw: what they break off asks again by utl_stopIfAsked.
inline bool utl_isAskedToStop() noexcept {
  return utl_interruption::g_asked.load(std::memory_order_relaxed);
}

// Stands where long work comes past every few milliseconds and where it may end. Throws
// utl_Interruption once for each asking: what then puts things back is not stopped itself.
inline void utl_stopIfAsked() {
  using utl_interruption::g_asked;
  if (g_asked.load(std::memory_order_relaxed) && g_asked.exchange(false)) throw utl_Interruption();
}
