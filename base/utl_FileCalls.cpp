#include "base/utl_FileCalls.h"
#include "base/utl_Interruption.h"

#include <algorithm>
#include <system_error>

#ifdef _WIN32
#define NOMINMAX
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#else
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace utl_fileCalls {

#ifdef _WIN32

namespace {

HANDLE asHandle(Handle handle) {
  return reinterpret_cast<HANDLE>(handle);
}

} // namespace

cow_String lastFailure() {
  return std::system_category().message(static_cast<int>(GetLastError()));
}

Handle openToRead(const Path& path) {
  constexpr DWORD share = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  return reinterpret_cast<Handle>(CreateFileW(path.c_str(), GENERIC_READ, share, nullptr,
                                              OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
}

Handle openToWrite(const Path& path, bool mustBeNew) {
  return reinterpret_cast<Handle>(CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                                              mustBeNew ? CREATE_NEW : CREATE_ALWAYS,
                                              FILE_ATTRIBUTE_NORMAL, nullptr));
}

bool close(Handle handle) {
  return CloseHandle(asHandle(handle)) != 0;
}

std::ptrdiff_t readSome(Handle handle, char* data, std::size_t size) {
  DWORD done = 0;
  const auto part = static_cast<DWORD>(std::min<std::size_t>(size, 1 << 30));
  if (ReadFile(asHandle(handle), data, part, &done, nullptr)) return done;
  return GetLastError() == ERROR_BROKEN_PIPE ? 0 : -1; // the writer of a pipe has gone
}

std::ptrdiff_t writeSome(Handle handle, const char* data, std::size_t size) {
  DWORD done = 0;
  const auto part = static_cast<DWORD>(std::min<std::size_t>(size, 1 << 30));
  return WriteFile(asHandle(handle), data, part, &done, nullptr) ? std::ptrdiff_t{done} : -1;
}

std::ptrdiff_t writeSomeAt(Handle handle, std::uint64_t offset, const char* data,
                           std::size_t size) {
  DWORD done = 0;
  OVERLAPPED place{};
  place.Offset = static_cast<DWORD>(offset);
  place.OffsetHigh = static_cast<DWORD>(offset >> 32);
  const auto part = static_cast<DWORD>(std::min<std::size_t>(size, 1 << 30));
  return WriteFile(asHandle(handle), data, part, &done, &place) ? std::ptrdiff_t{done} : -1;
}

bool sync(Handle handle) {
  return GetFileType(asHandle(handle)) != FILE_TYPE_DISK || FlushFileBuffers(asHandle(handle));
}

bool syncFile(const Path& path) {
  const HANDLE handle = CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (handle == INVALID_HANDLE_VALUE) return false;
  const bool done = sync(reinterpret_cast<Handle>(handle));
  CloseHandle(handle);
  return done;
}

bool syncFolder(const Path&) { // renames are written through
  return true;
}

bool makeFolder(const Path& path) {
  return CreateDirectoryW(path.c_str(), nullptr) != 0;
}

bool renameOver(const Path& from, const Path& to) {
  return MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH);
}

bool renameToNew(const Path& from, const Path& to) {
  return MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_WRITE_THROUGH);
}

bool remove(const Path& path) noexcept {
  if (DeleteFileW(path.c_str()) || RemoveDirectoryW(path.c_str())) return true;
  return GetFileAttributesW(path.c_str()) == INVALID_FILE_ATTRIBUTES;
}

#else

namespace {

int asHandle(Handle handle) {
  return static_cast<int>(handle);
}

// A pipe keeps us waiting for its other end, and for what comes through it.
Handle openFile(const Path& path, int flags) {
  int handle;
  while ((handle = open(path.c_str(), flags | O_CLOEXEC, 0666)) == -1 && errno == EINTR)
    utl_stopIfAsked();
  return handle;
}

// Pipes and some file systems have nothing to sync and say EINVAL.
bool syncOpen(int handle) {
  int done;
  while ((done = fsync(handle)) != 0 && errno == EINTR) {
  }
  return done == 0 || errno == EINVAL || errno == ENOTSUP;
}

bool syncNamed(const Path& path) {
  const int handle = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (handle == -1) return false;
  const bool done = syncOpen(handle);
  const int why = errno;
  ::close(handle);
  errno = why;
  return done;
}

} // namespace

cow_String lastFailure() {
  return std::generic_category().message(errno);
}

Handle openToRead(const Path& path) {
  return openFile(path, O_RDONLY);
}

Handle openToWrite(const Path& path, bool mustBeNew) {
  return openFile(path, O_WRONLY | O_CREAT | (mustBeNew ? O_EXCL : O_TRUNC));
}

bool close(Handle handle) {
  return ::close(asHandle(handle)) == 0;
}

std::ptrdiff_t readSome(Handle handle, char* data, std::size_t size) {
  std::ptrdiff_t done;
  while ((done = read(asHandle(handle), data, size)) < 0 && errno == EINTR) utl_stopIfAsked();
  return done;
}

std::ptrdiff_t writeSome(Handle handle, const char* data, std::size_t size) {
  std::ptrdiff_t done;
  do done = write(asHandle(handle), data, size);
  while (done < 0 && errno == EINTR);
  return done;
}

std::ptrdiff_t writeSomeAt(Handle handle, std::uint64_t offset, const char* data,
                           std::size_t size) {
  std::ptrdiff_t done;
  do done = pwrite(asHandle(handle), data, size, static_cast<off_t>(offset));
  while (done < 0 && errno == EINTR);
  return done;
}

bool sync(Handle handle) {
  return syncOpen(asHandle(handle));
}

bool syncFile(const Path& path) {
  return syncNamed(path);
}

bool syncFolder(const Path& path) {
  return syncNamed(path);
}

bool makeFolder(const Path& path) {
  return mkdir(path.c_str(), 0777) == 0;
}

bool renameOver(const Path& from, const Path& to) {
  return std::rename(from.c_str(), to.c_str()) == 0;
}

// A second name, then without the first one: link refuses a name that is taken.
bool renameToNew(const Path& from, const Path& to) {
#ifdef RENAME_NOREPLACE
  if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return true;
  if (errno != EINVAL && errno != ENOSYS) return false;
#endif
  return link(from.c_str(), to.c_str()) == 0 && unlink(from.c_str()) == 0;
}

bool remove(const Path& path) noexcept {
  if (unlink(path.c_str()) == 0 || errno == ENOENT) return true;
  const int why = errno;
  if (rmdir(path.c_str()) == 0) return true;
  if (errno == ENOTDIR) errno = why; // it is a file, and what kept it is the first one's word
  return false;
}

#endif

} // namespace utl_fileCalls
