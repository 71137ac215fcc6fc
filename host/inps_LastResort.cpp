#include "host/inps_LastResort.h"

#include "base/utl_File.h"
#include "host/inps_Session.h"
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <new>
#include <thread>
#include <utility>

struct inps_FilesUnderWay {
  static inline const inps_FileUnderWay* s_last = nullptr;
  static inline std::atomic_flag s_busy = ATOMIC_FLAG_INIT;

  static void Lock() noexcept {
    while (s_busy.test_and_set(std::memory_order_acquire)) std::this_thread::yield();
  }
  static void Unlock() noexcept { s_busy.clear(std::memory_order_release); }

  // For good: from now on no name comes or goes until the process ends.
  static void Remove() noexcept {
    Lock();
    for (; s_last != nullptr; s_last = s_last->m_before) utl_removeFile(s_last->m_name);
  }
};

inps_FileUnderWay::inps_FileUnderWay(const std::filesystem::path& name) noexcept : m_name(name) {
  inps_FilesUnderWay::Lock();
  m_before = std::exchange(inps_FilesUnderWay::s_last, this);
  inps_FilesUnderWay::Unlock();
}

inps_FileUnderWay::~inps_FileUnderWay() {
  inps_FilesUnderWay::Lock();
  inps_FilesUnderWay::s_last = m_before;
  inps_FilesUnderWay::Unlock();
}

namespace {

// Looked at where it is: passing it on would need memory.
bool isMemoryGone() noexcept {
  if (!std::current_exception()) return false;
  try {
    throw;
  } catch (const std::bad_alloc&) {
    return true;
  } catch (...) {
    return false;
  }
}

// Takes no memory. Whatever fails in here ends the process at once; what fails on another thread
// meanwhile waits for that end.
[[noreturn]] void lastResort() noexcept {
  static std::atomic<std::thread::id> first{};
  std::thread::id nobody;
  if (!first.compare_exchange_strong(nobody, std::this_thread::get_id())) {
    if (nobody == std::this_thread::get_id()) std::_Exit(inps_ExitFailure);
    while (true) std::this_thread::sleep_for(std::chrono::hours(1));
  }
  std::fputs(isMemoryGone() ? "inps: out of memory\n"
                            : "inps: internal error: a failure that nobody could catch. This is a "
                              "fault of the program.\n",
             stderr);
  inps_FilesUnderWay::Remove();
  std::_Exit(inps_ExitFailure); // nothing half-told leaves the buffer of standard output
}

} // namespace

void inps_installLastResort() noexcept {
  std::set_terminate(lastResort);
}
