#include "base/utl_Mapping.h"
#include "base/utl_File.h"
#include "base/utl_SpinLock.h"

#include <atomic>

#ifdef _WIN32
#define NOMINMAX
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#else
#include <csignal>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

// All mappings there are, for the handler to tell its own. The lock is held for a few instructions
// that read no mapped byte, so that a handler may wait for it.
struct utl_Mappings {
  static inline utl_Mapping* s_last = nullptr;
  static inline utl_SpinLock s_lock;
  static inline std::atomic<utl_MappingFailure> s_failure{nullptr};

  static void Add(utl_Mapping& mapping) noexcept {
    const utl_SpinLock::Scope scope(s_lock);
    mapping.m_before = s_last;
    if (s_last) s_last->m_after = &mapping;
    s_last = &mapping;
  }

  static void Remove(utl_Mapping& mapping) noexcept {
    const utl_SpinLock::Scope scope(s_lock);
    (mapping.m_after ? mapping.m_after->m_before : s_last) = mapping.m_before;
    if (mapping.m_before) mapping.m_before->m_after = mapping.m_after;
  }

  // Comes back when the address lies in none of our files. The mapping stays while its reader, who
  // stands here, has not come to an end.
  static void Tell(const char* at,
                   bool (*isShorter)(const std::filesystem::path&, std::size_t)) noexcept {
    const utl_MappingFailure failure = s_failure;
    if (!failure) return;
    const utl_Mapping* found = nullptr;
    {
      const utl_SpinLock::Scope scope(s_lock);
      for (const utl_Mapping* mapping = s_last; mapping && !found; mapping = mapping->m_before)
        if (at >= mapping->begin && at < mapping->begin + mapping->size) found = mapping;
    }
    if (!found) return;
    failure(found->m_name.c_str(), isShorter(found->m_path, found->size)
                                       ? "it was cut short while it was read"
                                       : "its disk or network failed while it was read");
  }
};

utl_Mapping::utl_Mapping(const std::filesystem::path& path)
    : m_path(path), m_name(utl_pathText(path)) {}

void utl_Mapping::Show(const char* data, std::size_t length) noexcept {
  begin = data;
  size = length;
  utl_Mappings::Add(*this);
}

namespace {

// Part of a mapping that can be let go: the page the range begins in goes as a whole, the one it
// ends in stays. Whoever reads forward has done with the first and not with the last.
struct PageRange {
  std::size_t first = 0;
  std::size_t size = 0;
};
PageRange pagesOf(std::size_t offset, std::size_t length, std::size_t fileSize, std::size_t page) {
  if (offset >= fileSize) return {};
  const bool toTheEnd = length >= fileSize - offset;
  const std::size_t first = offset / page * page;
  const std::size_t end = toTheEnd ? fileSize : (offset + length) / page * page;
  return {first, end > first ? end - first : 0};
}

} // namespace

#ifdef _WIN32

std::unique_ptr<utl_Mapping> utl_Mapping::Of(std::intptr_t file,
                                             const std::filesystem::path& path) {
  const auto handle = reinterpret_cast<HANDLE>(file);
  LARGE_INTEGER length{};
  if (GetFileType(handle) != FILE_TYPE_DISK) return nullptr;
  if (!GetFileSizeEx(handle, &length) || length.QuadPart == 0) return nullptr;
  const HANDLE section = CreateFileMappingW(handle, nullptr, PAGE_READONLY, 0, 0, nullptr);
  if (!section) return nullptr;
  std::unique_ptr<utl_Mapping> mapping(new utl_Mapping(path));
  const void* data = MapViewOfFile(section, FILE_MAP_READ, 0, 0, 0);
  CloseHandle(section);
  if (!data) return nullptr;
  mapping->Show(static_cast<const char*>(data), static_cast<std::size_t>(length.QuadPart));
  return mapping;
}

utl_Mapping::~utl_Mapping() {
  if (size == 0) return;
  utl_Mappings::Remove(*this);
  UnmapViewOfFile(begin);
}

// Unlocking pages that are not locked takes them out of the working set.
void utl_Mapping::Release(std::size_t offset, std::size_t length) const {
  const PageRange pages = pagesOf(offset, length, size, 4096);
  if (pages.size > 0) VirtualUnlock(const_cast<char*>(begin) + pages.first, pages.size);
}

namespace {

bool isShorter(const std::filesystem::path& path, std::size_t size) {
  WIN32_FILE_ATTRIBUTE_DATA facts{};
  if (!GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &facts)) return false;
  return (std::uint64_t{facts.nFileSizeHigh} << 32 | facts.nFileSizeLow) < size;
}

} // namespace

bool utl_Mapping::IsAsItWas() const {
  return !isShorter(m_path, size); // by its name: there is no other way for a file that is closed
}

namespace {

// The system keeps mapped files of its own disks from being cut; those of a network it cannot.
LONG CALLBACK onException(EXCEPTION_POINTERS* exception) {
  const EXCEPTION_RECORD& record = *exception->ExceptionRecord;
  if (record.ExceptionCode == EXCEPTION_IN_PAGE_ERROR && record.NumberParameters >= 2)
    utl_Mappings::Tell(reinterpret_cast<const char*>(record.ExceptionInformation[1]), isShorter);
  return EXCEPTION_CONTINUE_SEARCH;
}

} // namespace

void utl_onMappingFailure(utl_MappingFailure failure) noexcept {
  if (!utl_Mappings::s_failure.exchange(failure)) AddVectoredExceptionHandler(1, onException);
}

#else

namespace {

std::uint64_t numberOf(const struct stat& status) {
  return std::uint64_t{status.st_ino} * 1000003 + std::uint64_t{status.st_dev};
}

} // namespace

std::unique_ptr<utl_Mapping> utl_Mapping::Of(std::intptr_t file,
                                             const std::filesystem::path& path) {
  const auto handle = static_cast<int>(file);
  struct stat status {};
  if (fstat(handle, &status) != 0 || !S_ISREG(status.st_mode)) return nullptr;
  if (status.st_size == 0) return nullptr; // empty, or made up by the system while it is read
  std::unique_ptr<utl_Mapping> mapping(new utl_Mapping(path));
  const auto length = static_cast<std::size_t>(status.st_size);
  void* const data = mmap(nullptr, length, PROT_READ, MAP_PRIVATE, handle, 0);
  if (data == MAP_FAILED) return nullptr;
  madvise(data, length, MADV_SEQUENTIAL);
  mapping->m_number = numberOf(status);
  mapping->Show(static_cast<const char*>(data), length);
  return mapping;
}

bool utl_Mapping::IsAsItWas() const {
  struct stat status {};
  const bool isThere = stat(m_path.c_str(), &status) == 0 && numberOf(status) == m_number;
  return !isThere || static_cast<std::size_t>(status.st_size) == size;
}

utl_Mapping::~utl_Mapping() {
  if (size == 0) return;
  utl_Mappings::Remove(*this);
  munmap(const_cast<char*>(begin), size);
}

void utl_Mapping::Release(std::size_t offset, std::size_t length) const {
  static const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  const PageRange pages = pagesOf(offset, length, size, page);
  if (pages.size > 0) madvise(const_cast<char*>(begin) + pages.first, pages.size, MADV_DONTNEED);
}

namespace {

bool isShorter(const std::filesystem::path& path, std::size_t size) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && static_cast<std::size_t>(status.st_size) < size;
}

struct sigaction g_before {};

// What is none of ours goes to whoever had it before: that one is put back, and the instruction
// that failed fails once more.
void onBusError(int, siginfo_t* info, void*) {
  utl_Mappings::Tell(static_cast<const char*>(info->si_addr), isShorter);
  sigaction(SIGBUS, &g_before, nullptr);
}

} // namespace

void utl_onMappingFailure(utl_MappingFailure failure) noexcept {
  if (utl_Mappings::s_failure.exchange(failure)) return; // the handler is there
  struct sigaction action {};
  action.sa_sigaction = onBusError;
  action.sa_flags = SA_SIGINFO;
  sigaction(SIGBUS, &action, &g_before);
}

#endif
