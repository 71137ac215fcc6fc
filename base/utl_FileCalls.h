#pragma once

// The door to our own files: the system's calls, one set for each system. All that makes, writes,
// syncs, renames or removes a file of ours comes through here, so that the tests can let each of
// these calls fail; the engine has a door of its own. They throw nothing but utl_Interruption.

#include "base/cow_Value.h"
#include <cstddef>
#include <cstdint>
#include <filesystem>

namespace utl_fileCalls {

using Path = std::filesystem::path;
using Handle = std::intptr_t;
inline constexpr Handle noHandle = -1;

// The system's words for the last call of this thread that failed.
cow_String lastFailure();

Handle openToRead(const Path& path);
Handle openToWrite(const Path& path, bool mustBeNew);
bool close(Handle handle);

// Bytes done, or below 0 on failure; a read of 0 is the end.
std::ptrdiff_t readSome(Handle handle, char* data, std::size_t size);
std::ptrdiff_t writeSome(Handle handle, const char* data, std::size_t size);
std::ptrdiff_t writeSomeAt(Handle handle, std::uint64_t offset, const char* data, std::size_t size);

bool sync(Handle handle); // what can be synced; true for all else
bool syncFile(const Path& path);
bool syncFolder(const Path& path); // the names in it

bool makeFolder(const Path& path); // that is not there yet
bool renameOver(const Path& from, const Path& to);
bool renameToNew(const Path& from, const Path& to); // fails when the name is taken
// A file, a link itself or an empty folder; true too when there is none. Takes no memory and may
// be called from a signal handler.
bool remove(const Path& path) noexcept;

} // namespace utl_fileCalls
