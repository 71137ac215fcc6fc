#include "base/utl_File.h"
#include "base/utl_Interruption.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <system_error>

#ifdef _WIN32
#define NOMINMAX
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
// after windows.h
#include <psapi.h>
#else
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace fs = std::filesystem;

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

// ---- the system's calls, one set per system ----------------------------------------------------

namespace {

#ifdef _WIN32

[[noreturn]] void fail(const char* action, const fs::path& path) {
  const auto code = static_cast<int>(GetLastError());
  throw utl_FileException(action, path, std::system_category().message(code));
}

HANDLE asHandle(std::intptr_t handle) {
  return reinterpret_cast<HANDLE>(handle);
}

std::intptr_t openToRead(const fs::path& path) {
  constexpr DWORD share = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  return reinterpret_cast<std::intptr_t>(CreateFileW(path.c_str(), GENERIC_READ, share, nullptr,
                                                     OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN,
                                                     nullptr));
}

std::intptr_t openToWrite(const fs::path& path, bool mustBeNew) {
  return reinterpret_cast<std::intptr_t>(
      CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                  mustBeNew ? CREATE_NEW : CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
}

// Both: bytes done, or below 0 on failure; a read of 0 is the end.
std::ptrdiff_t readSome(std::intptr_t handle, char* data, std::size_t size) {
  DWORD done = 0;
  const auto part = static_cast<DWORD>(std::min<std::size_t>(size, 1 << 30));
  if (ReadFile(asHandle(handle), data, part, &done, nullptr)) return done;
  return GetLastError() == ERROR_BROKEN_PIPE ? 0 : -1; // the writer of a pipe has gone
}

std::ptrdiff_t writeSome(std::intptr_t handle, const char* data, std::size_t size) {
  DWORD done = 0;
  const auto part = static_cast<DWORD>(std::min<std::size_t>(size, 1 << 30));
  return WriteFile(asHandle(handle), data, part, &done, nullptr) ? std::ptrdiff_t{done} : -1;
}

std::ptrdiff_t writeSomeAt(std::intptr_t handle, std::uint64_t offset, const char* data,
                           std::size_t size) {
  DWORD done = 0;
  OVERLAPPED place{};
  place.Offset = static_cast<DWORD>(offset);
  place.OffsetHigh = static_cast<DWORD>(offset >> 32);
  const auto part = static_cast<DWORD>(std::min<std::size_t>(size, 1 << 30));
  return WriteFile(asHandle(handle), data, part, &done, &place) ? std::ptrdiff_t{done} : -1;
}

bool closeFile(std::intptr_t handle) {
  return CloseHandle(asHandle(handle)) != 0;
}

bool syncOpenFile(std::intptr_t handle) {
  return GetFileType(asHandle(handle)) != FILE_TYPE_DISK || FlushFileBuffers(asHandle(handle));
}

// Null, with the size left alone, for what cannot be mapped.
void* mapOpenFile(std::intptr_t handle, std::size_t& size) {
  LARGE_INTEGER length{};
  if (GetFileType(asHandle(handle)) != FILE_TYPE_DISK) return nullptr;
  if (!GetFileSizeEx(asHandle(handle), &length) || length.QuadPart == 0) return nullptr;
  const HANDLE section =
      CreateFileMappingW(asHandle(handle), nullptr, PAGE_READONLY, 0, 0, nullptr);
  if (!section) return nullptr;
  void* mapping = MapViewOfFile(section, FILE_MAP_READ, 0, 0, 0);
  CloseHandle(section);
  if (mapping) size = static_cast<std::size_t>(length.QuadPart);
  return mapping;
}

void unmap(void* mapping, std::size_t) {
  UnmapViewOfFile(mapping);
}

// Unlocking pages that are not locked takes them out of the working set.
void dropPages(char* first, std::size_t size) {
  VirtualUnlock(first, size);
}

bool renameOver(const fs::path& from, const fs::path& to) {
  return MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH);
}

bool renameToNew(const fs::path& from, const fs::path& to) {
  return MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_WRITE_THROUGH);
}

unsigned long processNumber() {
  return GetCurrentProcessId();
}

#else

[[noreturn]] void fail(const char* action, const fs::path& path) {
  throw utl_FileException(action, path, std::generic_category().message(errno));
}

int asHandle(std::intptr_t handle) {
  return static_cast<int>(handle);
}

// A pipe keeps us waiting for its other end, and for what comes through it.
std::intptr_t openFile(const fs::path& path, int flags) {
  int handle;
  while ((handle = open(path.c_str(), flags | O_CLOEXEC, 0666)) == -1 && errno == EINTR)
    utl_stopIfAsked();
  return handle;
}

std::intptr_t openToRead(const fs::path& path) {
  return openFile(path, O_RDONLY);
}

std::intptr_t openToWrite(const fs::path& path, bool mustBeNew) {
  return openFile(path, O_WRONLY | O_CREAT | (mustBeNew ? O_EXCL : O_TRUNC));
}

// Both: bytes done, or below 0 on failure; a read of 0 is the end.
std::ptrdiff_t readSome(std::intptr_t handle, char* data, std::size_t size) {
  std::ptrdiff_t done;
  while ((done = read(asHandle(handle), data, size)) < 0 && errno == EINTR) utl_stopIfAsked();
  return done;
}

std::ptrdiff_t writeSome(std::intptr_t handle, const char* data, std::size_t size) {
  std::ptrdiff_t done;
  do done = write(asHandle(handle), data, size);
  while (done < 0 && errno == EINTR);
  return done;
}

std::ptrdiff_t writeSomeAt(std::intptr_t handle, std::uint64_t offset, const char* data,
                           std::size_t size) {
  std::ptrdiff_t done;
  do done = pwrite(asHandle(handle), data, size, static_cast<off_t>(offset));
  while (done < 0 && errno == EINTR);
  return done;
}

bool closeFile(std::intptr_t handle) {
  return close(asHandle(handle)) == 0;
}

// Pipes and some file systems have nothing to sync and say EINVAL.
bool syncOpenFile(std::intptr_t handle) {
  int done;
  while ((done = fsync(asHandle(handle))) != 0 && errno == EINTR) {
  }
  return done == 0 || errno == EINVAL || errno == ENOTSUP;
}

// Null, with the size left alone, for what cannot be mapped.
void* mapOpenFile(std::intptr_t handle, std::size_t& size) {
  struct stat status {};
  if (fstat(asHandle(handle), &status) != 0 || !S_ISREG(status.st_mode)) return nullptr;
  if (status.st_size == 0) return nullptr; // empty, or made up by the system while it is read
  const auto length = static_cast<std::size_t>(status.st_size);
  void* mapping = mmap(nullptr, length, PROT_READ, MAP_PRIVATE, asHandle(handle), 0);
  if (mapping == MAP_FAILED) return nullptr;
  madvise(mapping, length, MADV_SEQUENTIAL);
  size = length;
  return mapping;
}

void unmap(void* mapping, std::size_t size) {
  munmap(mapping, size);
}

void dropPages(char* first, std::size_t size) {
  madvise(first, size, MADV_DONTNEED);
}

bool renameOver(const fs::path& from, const fs::path& to) {
  return std::rename(from.c_str(), to.c_str()) == 0;
}

// A second name, then without the first one: link refuses a name that is taken.
bool renameToNew(const fs::path& from, const fs::path& to) {
#ifdef RENAME_NOREPLACE
  if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return true;
  if (errno != EINVAL && errno != ENOSYS) return false;
#endif
  return link(from.c_str(), to.c_str()) == 0 && unlink(from.c_str()) == 0;
}

unsigned long processNumber() {
  return static_cast<unsigned long>(getpid());
}

#endif

std::size_t pageSize() {
#ifdef _WIN32
  return 4096;
#else
  static const auto size = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  return size;
#endif
}

// Closes a handle at the end of a scope; what fails then does not matter to a reader.
struct HandleScope {
  std::intptr_t handle;
  ~HandleScope() { closeFile(handle); }
};

utl_Buffer<char> readToEnd(std::intptr_t handle, const fs::path& path) {
  constexpr std::size_t step = std::size_t{64} << 10;
  utl_Buffer<char> content;
  while (true) {
    const std::size_t before = content.Size();
    const std::ptrdiff_t done = readSome(handle, content.AppendSpace(step), step);
    if (done < 0) fail("cannot read", path);
    content.Resize(before + static_cast<std::size_t>(done));
    if (done == 0) return content;
  }
}

} // namespace

// ---- utl_MappedFile ----------------------------------------------------------------------------

utl_MappedFile::utl_MappedFile(const fs::path& path) : m_path(path) {
  if (utl_isDirectory(path)) throw utl_FileException("cannot read", path, "it is a folder");
  const std::intptr_t handle = openToRead(path);
  if (handle == -1) fail("cannot read", path);
  const HandleScope scope{handle};
  m_mapping = mapOpenFile(handle, m_size);
  if (m_mapping) {
    m_data = static_cast<const char*>(m_mapping);
    return;
  }
  m_copy = readToEnd(handle, path);
  m_size = m_copy.Size();
  if (m_size > 0) m_data = m_copy.Data();
}

utl_MappedFile::~utl_MappedFile() {
  if (m_mapping) unmap(m_mapping, m_size);
}

utl_MappedFile::utl_MappedFile(utl_MappedFile&& other) noexcept
    : m_path(std::move(other.m_path)), m_data(std::exchange(other.m_data, "")),
      m_size(std::exchange(other.m_size, 0)), m_mapping(std::exchange(other.m_mapping, nullptr)),
      m_copy(std::move(other.m_copy)) {}

utl_MappedFile& utl_MappedFile::operator=(utl_MappedFile&& other) noexcept {
  utl_MappedFile taken(std::move(other));
  std::swap(m_path, taken.m_path);
  std::swap(m_data, taken.m_data);
  std::swap(m_size, taken.m_size);
  std::swap(m_mapping, taken.m_mapping);
  m_copy.Swap(taken.m_copy);
  return *this;
}

// The page the range begins in goes as a whole, the one it ends in stays: whoever reads forward
// has done with the first and not with the last.
void utl_MappedFile::Release(std::size_t offset, std::size_t length) const {
  if (!m_mapping || offset >= m_size) return;
  const bool toTheEnd = length >= m_size - offset;
  const std::size_t first = offset / pageSize() * pageSize();
  const std::size_t end = toTheEnd ? m_size : (offset + length) / pageSize() * pageSize();
  if (end > first) dropPages(static_cast<char*>(m_mapping) + first, end - first);
}

// ---- utl_OutputFile ----------------------------------------------------------------------------

utl_OutputFile::utl_OutputFile(const fs::path& path, Mode mode)
    : m_path(path), m_handle(openToWrite(path, mode == Mode::CreateNew)) {
  if (m_handle == closedHandle) fail("cannot create", path);
}

utl_OutputFile::~utl_OutputFile() {
  if (IsOpen()) closeFile(m_handle);
}

utl_OutputFile::utl_OutputFile(utl_OutputFile&& other) noexcept
    : m_path(std::move(other.m_path)), m_handle(std::exchange(other.m_handle, closedHandle)) {}

utl_OutputFile& utl_OutputFile::operator=(utl_OutputFile&& other) noexcept {
  utl_OutputFile taken(std::move(other));
  std::swap(m_path, taken.m_path);
  std::swap(m_handle, taken.m_handle);
  return *this;
}

void utl_OutputFile::Write(const void* data, std::size_t size) {
  const char* p = static_cast<const char*>(data);
  while (size > 0) {
    const std::ptrdiff_t done = writeSome(m_handle, p, size);
    if (done < 0) fail("cannot write", m_path);
    p += done;
    size -= static_cast<std::size_t>(done);
  }
}

void utl_OutputFile::WriteAt(std::uint64_t offset, const void* data, std::size_t size) {
  const char* p = static_cast<const char*>(data);
  while (size > 0) {
    const std::ptrdiff_t done = writeSomeAt(m_handle, offset, p, size);
    if (done < 0) fail("cannot write", m_path);
    p += done;
    offset += static_cast<std::uint64_t>(done);
    size -= static_cast<std::size_t>(done);
  }
}

void utl_OutputFile::Sync() {
  if (!syncOpenFile(m_handle)) fail("cannot write", m_path);
}

void utl_OutputFile::Close() {
  if (!IsOpen()) return;
  if (!closeFile(std::exchange(m_handle, closedHandle))) fail("cannot write", m_path);
}

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
  const std::intptr_t handle = openToRead(path);
  if (handle == -1) fail("cannot read", path);
  closeFile(handle);
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
    if (!utl_exists(candidate)) return candidate;
  }
}

void utl_renameFile(const fs::path& from, const fs::path& to, utl_IfExists ifExists) {
  const bool done =
      ifExists == utl_IfExists::Replace ? renameOver(from, to) : renameToNew(from, to);
  if (!done) fail("cannot create", to);
}

void utl_removeFile(const fs::path& path) noexcept {
  std::error_code ignored;
  fs::remove(path, ignored);
}

#ifdef _WIN32

void utl_syncFile(const fs::path& path) {
  const HANDLE handle = CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (handle == INVALID_HANDLE_VALUE) fail("cannot write", path);
  const HandleScope scope{reinterpret_cast<std::intptr_t>(handle)};
  if (!syncOpenFile(scope.handle)) fail("cannot write", path);
}

void utl_syncFolderOf(const fs::path&) {} // renames are written through

std::size_t utl_peakMemory() {
  PROCESS_MEMORY_COUNTERS counters{};
  if (!GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters)) return 0;
  return counters.PeakWorkingSetSize;
}

#else

void utl_syncFile(const fs::path& path) {
  const std::intptr_t handle = openToRead(path);
  if (handle == -1) fail("cannot write", path);
  const HandleScope scope{handle};
  if (!syncOpenFile(handle)) fail("cannot write", path);
}

void utl_syncFolderOf(const fs::path& path) {
  const fs::path folder = path.has_parent_path() ? path.parent_path() : fs::path(".");
  utl_syncFile(folder);
}

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
