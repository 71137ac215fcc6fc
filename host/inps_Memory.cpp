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
  constexpr double mega = 1024.0 * 1024.0;
  constexpr double giga = 1024.0 * mega;
  const std::uint64_t own = utl_memoryLimit();
  const std::uint64_t outer = utl_addressLimit();
  const bool isOuter = outer > 0 && (own == 0 || outer <= own); // the one that was hit
  const auto limit = static_cast<double>(isOuter ? outer : own);
  if (limit > 0) {
    std::array<char, 160> hint{};
    const int length = std::snprintf(
        hint.data(), hint.size(),
        isOuter ? "; this run was started with %.*f %s of addresses for everything, mapped files "
                  "too (ulimit -v)"
                : "; this run may have %.*f %s, \"--memory SIZE\" gives it another bound",
        limit < giga ? 0 : 2, limit / (limit < giga ? mega : giga), limit < giga ? "MB" : "GB");
    session.err << std::string_view(hint.data(), static_cast<std::size_t>(length));
  }
  session.err << '\n' << std::flush;
}
