#include "host/inps_Memory.h"

#include "base/utl_MemoryLimit.h"
#include "base/utl_Number.h"
#include "host/inps_Session.h"
#include <array>
#include <cstdio>
#include <ostream>

namespace {

// With less not even an empty model is made.
constexpr double leastSize = 32 * 1024.0 * 1024.0;
constexpr double mostSize = 1e18;

double factorOf(char unit) {
  switch (unit) {
  case 'M':
  case 'm':
    return 1024.0 * 1024.0;
  case 'G':
  case 'g':
    return 1024.0 * 1024.0 * 1024.0;
  case 'T':
  case 't':
    return 1024.0 * 1024.0 * 1024.0 * 1024.0;
  default:
    return 0;
  }
}

} // namespace

void inps_limitMemory() {
  const std::uint64_t machine = utl_machineMemory();
  if (machine == 0) return;
  // The rest is for the system and for files, whose pages do not count.
  const std::uint64_t most = machine - machine / 8;
  const std::uint64_t given = utl_memoryLimit();
  if (given == 0 || given > most) utl_limitMemory(most);
}

cow_String inps_limitMemory(std::string_view size) {
  const double factor = size.empty() ? 0 : factorOf(size.back());
  const utl_Field number =
      factor > 0 ? utl_classifyField(size.substr(0, size.size() - 1)) : utl_Field{};
  const double bytes = number.IsNumber() ? number.real * factor : 0;
  if (!(bytes >= leastSize && bytes <= mostSize))
    return "\"--memory\" needs a size from 32M on, such as 512M, 40G or 1.5T, not \"" +
           cow_String(size) + "\"";
  utl_limitMemory(static_cast<std::uint64_t>(bytes));
  return {};
}

void inps_tellOutOfMemory(inps_Session& session, std::string_view text) {
  session.err << "inps: " << text;
  const auto tell = [&](const char* before, std::uint64_t limit, const char* behind) {
    constexpr double mega = 1024.0 * 1024.0;
    constexpr double giga = 1024.0 * mega;
    const auto bytes = static_cast<double>(limit);
    std::array<char, 160> hint{}; // no string: memory may still be short
    const bool isLarge = bytes >= giga;
    const int length =
        std::snprintf(hint.data(), hint.size(), "%s%.*f %s%s", before, isLarge ? 2 : 0,
                      bytes / (isLarge ? giga : mega), isLarge ? "GB" : "MB", behind);
    session.err << std::string_view(hint.data(), static_cast<std::size_t>(length));
  };
  // Who has fewer addresses than memory ran out of those. With more, either may have been short:
  // mapped files count among addresses alone.
  const std::uint64_t memory = utl_memoryLimit();
  const std::uint64_t addresses = utl_addressLimit();
  if (memory > 0 && (addresses == 0 || memory < addresses))
    tell("; this run may have ", memory, ", \"--memory SIZE\" gives it another bound");
  if (addresses > 0)
    tell("; its addresses, with those of mapped files, are bounded to ", addresses,
         " by who started it (\"ulimit -v\")");
  session.err << '\n' << std::flush;
}
