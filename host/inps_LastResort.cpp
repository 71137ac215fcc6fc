#include "host/inps_LastResort.h"

#include "base/utl_File.h"
#include "host/inps_Session.h"
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <new>
#include <utility>

struct inps_FilesUnderWay {
  static inline const inps_FileUnderWay* s_last = nullptr;

  static void Remove() noexcept {
    for (; s_last != nullptr; s_last = s_last->m_before) utl_removeFile(s_last->m_name);
  }
};

inps_FileUnderWay::inps_FileUnderWay(const std::filesystem::path& name) noexcept
    : m_name(name), m_before(std::exchange(inps_FilesUnderWay::s_last, this)) {}

inps_FileUnderWay::~inps_FileUnderWay() {
  inps_FilesUnderWay::s_last = m_before;
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

// Takes no memory. Whatever fails in here, or on another thread meanwhile, ends the process.
[[noreturn]] void lastResort() noexcept {
  static std::atomic_flag isRunning = ATOMIC_FLAG_INIT;
  if (isRunning.test_and_set()) std::_Exit(inps_ExitFailure);
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
