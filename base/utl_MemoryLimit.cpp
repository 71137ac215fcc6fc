#include "base/utl_MemoryLimit.h"
#include "base/cow_Value.h"
#include <algorithm>
#include <fstream>
#include <limits>

#ifdef _WIN32
#define NOMINMAX
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#else
#include <sys/resource.h>
#include <unistd.h>
#endif

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define UTL_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer) ||                         \
    __has_feature(memory_sanitizer)
#define UTL_SANITIZED 1
#endif
#endif

namespace {

[[maybe_unused]] constexpr std::uint64_t none = std::numeric_limits<std::uint64_t>::max();

#ifdef UTL_SANITIZED
constexpr bool isSanitized = true;
#else
constexpr bool isSanitized = false;
#endif

#ifdef _WIN32

// One job for this process, made at the first wish.
HANDLE ownJob() {
  static const HANDLE job = [] {
    const HANDLE made = CreateJobObjectW(nullptr, nullptr);
    if (made && AssignProcessToJobObject(made, GetCurrentProcess())) return made;
    if (made) CloseHandle(made);
    return HANDLE{nullptr};
  }();
  return job;
}

std::uint64_t systemMemory() {
  MEMORYSTATUSEX status{};
  status.dwLength = sizeof status;
  return GlobalMemoryStatusEx(&status) ? status.ullTotalPhys : 0;
}

// A job around ours bounds us as well; the system sees to that.
void limitSystem(std::uint64_t bytes) {
  JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
  limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_PROCESS_MEMORY;
  limits.ProcessMemoryLimit = static_cast<SIZE_T>(bytes);
  if (const HANDLE job = ownJob())
    SetInformationJobObject(job, JobObjectExtendedLimitInformation, &limits, sizeof limits);
}

std::uint64_t systemLimit() {
  JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
  if (!QueryInformationJobObject(nullptr, JobObjectExtendedLimitInformation, &limits, sizeof limits,
                                 nullptr))
    return 0;
  const bool limited =
      (limits.BasicLimitInformation.LimitFlags & JOB_OBJECT_LIMIT_PROCESS_MEMORY) != 0;
  return limited ? limits.ProcessMemoryLimit : 0;
}

#else

// The number in a file of one line; `none` when there is none ("max", or no such file).
std::uint64_t numberIn(const cow_String& path) {
  std::ifstream file(path);
  std::uint64_t number = none;
  return file >> number ? number : none;
}

// The least that a control group or one around it allows.
std::uint64_t leastAbove(const cow_String& root, cow_String group, const char* file) {
  std::uint64_t least = numberIn(root + '/' + file);
  while (group.size() > 1) {
    least = std::min(least, numberIn(root + group + '/' + file));
    group.erase(group.rfind('/'));
  }
  return least;
}

// A line of the list names a hierarchy's number, its controllers and our group in it.
std::uint64_t groupMemory() {
  std::ifstream list("/proc/self/cgroup");
  std::uint64_t least = none;
  for (cow_String line; std::getline(list, line);) {
    const std::size_t slash = line.find(":/");
    if (slash == cow_String::npos) continue;
    const cow_String group = line.substr(slash + 1);
    if (line.starts_with("0::"))
      least = std::min(least, leastAbove("/sys/fs/cgroup", group, "memory.max"));
    else if (line.find(":memory:") != cow_String::npos)
      least = std::min(least, leastAbove("/sys/fs/cgroup/memory", group, "memory.limit_in_bytes"));
  }
  return least;
}

std::uint64_t systemMemory() {
  const long pages = sysconf(_SC_PHYS_PAGES);
  const long pageSize = sysconf(_SC_PAGESIZE);
  const bool known = pages > 0 && pageSize > 0;
  const std::uint64_t whole =
      known ? static_cast<std::uint64_t>(pages) * static_cast<std::uint64_t>(pageSize) : none;
  const std::uint64_t least = std::min(whole, groupMemory());
  return least == none ? 0 : least;
}

void limitSystem(std::uint64_t bytes) {
  rlimit limit{};
  if (getrlimit(RLIMIT_DATA, &limit) != 0) return;
  limit.rlim_cur = static_cast<rlim_t>(std::min<std::uint64_t>(bytes, limit.rlim_max));
  setrlimit(RLIMIT_DATA, &limit);
}

std::uint64_t systemLimit() {
  rlimit limit{};
  if (getrlimit(RLIMIT_DATA, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY) return 0;
  return limit.rlim_cur;
}

#endif

} // namespace

std::uint64_t utl_machineMemory() {
  return systemMemory();
}

void utl_limitMemory(std::uint64_t bytes) {
  if (!isSanitized) limitSystem(bytes);
}

std::uint64_t utl_memoryLimit() {
  return systemLimit();
}

std::uint64_t utl_addressLimit() {
#ifdef _WIN32
  return 0;
#else
  rlimit limit{};
  if (getrlimit(RLIMIT_AS, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY) return 0;
  return limit.rlim_cur;
#endif
}
