// Calls for our own files: the system's, but for those that fail. This program's operations stand
// in the place of the library's.

#define utl_fileCalls trueFileCalls
#include "base/utl_FileCalls.cpp"
#undef utl_fileCalls

#include "tests/faults/Faults.h"

namespace {

bool failsWith(Fault fault, int reason) {
  if (!fails(fault)) return false;
  errno = reason;
  return true;
}

} // namespace

namespace utl_fileCalls {

using Path = std::filesystem::path;
using Handle = std::intptr_t;

cow_String lastFailure() {
  return trueFileCalls::lastFailure();
}

Handle openToRead(const Path& path) {
  return failsWith(Fault::FileOpen, EMFILE) ? -1 : trueFileCalls::openToRead(path);
}

Handle openToWrite(const Path& path, bool mustBeNew) {
  return failsWith(Fault::FileCreate, EACCES) ? -1 : trueFileCalls::openToWrite(path, mustBeNew);
}

// The file is closed all the same; some systems tell only now what they could not write.
bool close(Handle handle) {
  return trueFileCalls::close(handle);
}

std::ptrdiff_t readSome(Handle handle, char* data, std::size_t size) {
  return trueFileCalls::readSome(handle, data, size);
}

// A full disk takes the first half.
std::ptrdiff_t writeSome(Handle handle, const char* data, std::size_t size) {
  if (!fails(Fault::FileWrite)) return trueFileCalls::writeSome(handle, data, size);
  trueFileCalls::writeSome(handle, data, size / 2);
  errno = ENOSPC;
  return -1;
}

std::ptrdiff_t writeSomeAt(Handle handle, std::uint64_t offset, const char* data,
                           std::size_t size) {
  return failsWith(Fault::FileWrite, EIO) ? -1
                                          : trueFileCalls::writeSomeAt(handle, offset, data, size);
}

bool sync(Handle handle) {
  return !failsWith(Fault::FileSync, EIO) && trueFileCalls::sync(handle);
}
bool syncFile(const Path& path) {
  return !failsWith(Fault::FileSync, EIO) && trueFileCalls::syncFile(path);
}
bool syncFolder(const Path& path) {
  return !failsWith(Fault::FileSync, EIO) && trueFileCalls::syncFolder(path);
}

bool makeFolder(const Path& path) {
  return !failsWith(Fault::FileCreate, EACCES) && trueFileCalls::makeFolder(path);
}
bool renameOver(const Path& from, const Path& to) {
  return !failsWith(Fault::FileRename, EACCES) && trueFileCalls::renameOver(from, to);
}
bool renameToNew(const Path& from, const Path& to) {
  return !failsWith(Fault::FileRename, EACCES) && trueFileCalls::renameToNew(from, to);
}
bool remove(const Path& path) noexcept {
  return !failsWith(Fault::FileRemove, EACCES) && trueFileCalls::remove(path);
}

} // namespace utl_fileCalls
