#include "base/utl_File.h"
#include "base/utl_FileCalls.h"
#include "base/utl_MappedFile.h"

#include <atomic>
#include <cstdlib>
#include <system_error>

#ifdef _WIN32
#define NOMINMAX
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
// after windows.h
#include <psapi.h>
#else
#include <sys/resource.h>
#include <unistd.h>
#endif

namespace fs = std::filesystem;
namespace calls = utl_fileCalls;

// ---- texts -------------------------------------------------------------------------------------

cow_String utl_pathText(const fs::path& path) {
  const std::u8string text = path.u8string();
  return {reinterpret_cast<const char*>(text.data()), text.size()};
}

fs::path utl_pathOf(std::string_view utf8) {
  return std::u8string(reinterpret_cast<const char8_t*>(utf8.data()), utf8.size());
}

namespace {

cow_String fileFault(const cow_String& action, const fs::path& path, const cow_String& reason) {
  const cow_String name = path.empty() ? "" : " \"" + utl_pathText(path) + "\"";
  return action + name + ": " + reason;
}

} // namespace

utl_FileException::utl_FileException(const cow_String& action, const fs::path& path,
                                     const cow_String& reason)
    : std::runtime_error(fileFault(action, path, reason)), m_path(path), m_reason(reason) {}

namespace {

[[noreturn]] void fail(const char* action, const fs::path& path) {
  throw utl_FileException(action, path, calls::lastFailure());
}

unsigned long processNumber() {
#ifdef _WIN32
  return GetCurrentProcessId();
#else
  return static_cast<unsigned long>(getpid());
#endif
}

} // namespace

// ---- names and folders -------------------------------------------------------------------------

bool utl_exists(const fs::path& path) {
  std::error_code ignored;
  return fs::exists(path, ignored);
}

bool utl_isDirectory(const fs::path& path) {
  std::error_code ignored;
  return fs::is_directory(path, ignored);
}

bool utl_isTaken(const fs::path& path) {
  std::error_code ignored;
  return fs::exists(fs::symlink_status(path, ignored));
}

void utl_requireReadable(const fs::path& path) {
  const calls::Handle handle = calls::openToRead(path);
  if (handle == calls::noHandle) fail("cannot read", path);
  calls::close(handle);
}

fs::path utl_temporaryBeside(const fs::path& path) {
  static std::atomic<unsigned> counter{0};
  constexpr std::size_t longestStem = 200; // file systems end names at 255
  fs::path::string_type stem = path.filename().native();
  if (stem.size() > longestStem) stem.resize(longestStem);
  while (true) {
    fs::path name(stem);
    name += "." + std::to_string(processNumber()) + "-" + std::to_string(++counter) + ".tmp";
    fs::path candidate = path.parent_path() / name;
    if (!utl_isTaken(candidate)) return candidate;
  }
}

void utl_renameFile(const fs::path& from, const fs::path& to, utl_IfExists ifExists) {
  const bool done = ifExists == utl_IfExists::Replace ? calls::renameOver(from, to)
                                                      : calls::renameToNew(from, to);
  if (!done) fail("cannot create", to);
}

bool utl_removeFile(const fs::path& path) noexcept {
  return calls::remove(path);
}

cow_String utl_fileFailure() {
  return calls::lastFailure();
}

void utl_makeFolder(const fs::path& path) {
  if (!calls::makeFolder(path)) fail("cannot create", path);
}

void utl_syncFile(const fs::path& path) {
  if (!calls::syncFile(path)) fail("cannot write", path);
}

void utl_syncFolderOf(const fs::path& path) {
  const fs::path folder = path.has_parent_path() ? path.parent_path() : fs::path(".");
  if (!calls::syncFolder(folder)) fail("cannot write", folder);
}

#ifdef _WIN32

std::size_t utl_peakMemory() {
  PROCESS_MEMORY_COUNTERS counters{};
  if (!GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters)) return 0;
  return counters.PeakWorkingSetSize;
}

#else

// The system's resource usage would count what the process that started this one had resident, so
// it is second choice.
std::size_t utl_peakMemory() {
  try {
    const utl_MappedFile status("/proc/self/status");
    constexpr std::string_view label = "VmHWM:";
    const std::size_t at = status.Text().find(label);
    if (at != std::string_view::npos)
      return std::strtoull(cow_String(status.Text().substr(at + label.size(), 40)).c_str(), nullptr,
                           10) *
             1024;
  } catch (const utl_FileException&) {
  }
  struct rusage usage {};
  if (getrusage(RUSAGE_SELF, &usage) != 0) return 0;
  return static_cast<std::size_t>(usage.ru_maxrss) * 1024;
}

#endif
