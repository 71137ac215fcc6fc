#include "host/inps_LastResort.h"

#include "base/utl_FileUnderWay.h"
#include "base/utl_Mapping.h"
#include "host/inps_Session.h"
#include "host/inps_Terminal.h"
#include <array>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <exception>
#include <new>
#include <string_view>
#include <thread>

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
void beTheOnlyOne() noexcept {
  static std::atomic<std::thread::id> first{};
  std::thread::id nobody;
  if (first.compare_exchange_strong(nobody, std::this_thread::get_id())) return;
  if (nobody == std::this_thread::get_id()) std::_Exit(inps_ExitFailure);
  while (true) std::this_thread::sleep_for(std::chrono::hours(1));
}

[[noreturn]] void end() noexcept {
  utl_FileUnderWay::RemoveAll();
  std::_Exit(inps_ExitFailure); // nothing half-told leaves the buffer of standard output
}

[[noreturn]] void lastResort() noexcept {
  beTheOnlyOne();
  inps_sayAtOnce(isMemoryGone() ? "inps: out of memory\n"
                                : "inps: internal error: a failure that nobody could catch. This "
                                  "is a fault of the program.\n");
  end();
}

[[noreturn]] void fileIsGone(const char* file, const char* reason) noexcept {
  beTheOnlyOne();
  static std::array<char, 5000> line; // a path has at most 4096 bytes
  std::size_t size = 0;
  for (const std::string_view part :
       {std::string_view("inps: cannot read \""), std::string_view(file), std::string_view("\": "),
        std::string_view(reason)})
    for (const char c : part) { // nothing that a terminal would obey
      const bool isPlain = static_cast<unsigned char>(c) >= ' ' && c != '\x7f';
      if (size + 1 < line.size()) line[size++] = isPlain ? c : '?';
    }
  line[size++] = '\n';
  inps_sayAtOnce({line.data(), size});
  end();
}

} // namespace

void inps_installLastResort() noexcept {
  std::set_terminate(lastResort);
  utl_onMappingFailure(fileIsGone);
}
