#pragma once

// What the suite needs of the operating system's files by their names. Paths are std::filesystem
// paths to the end; texts about them are UTF-8.

#include "base/cow_Value.h"
#include <cstddef>
#include <filesystem>
#include <stdexcept>
#include <string_view>

// The disk or the system said no. what() is one line for people:
// cannot write "out.inp": No space left on device
class utl_FileException : public std::runtime_error {
public:
  // action: "cannot write"; reason: the system's text.
  utl_FileException(const cow_String& action, const std::filesystem::path& path,
                    const cow_String& reason);

  const std::filesystem::path& Path() const { return m_path; }
  const cow_String& Reason() const { return m_reason; }

private:
  std::filesystem::path m_path;
  cow_String m_reason;
};

cow_String utl_pathText(const std::filesystem::path& path); // UTF-8
std::filesystem::path utl_pathOf(std::string_view utf8);

bool utl_exists(const std::filesystem::path& path);
bool utl_isDirectory(const std::filesystem::path& path);
bool utl_isTaken(const std::filesystem::path& path); // exists, or is a link that leads nowhere
// Throws utl_FileException when the file cannot be opened. Not for pipes: their writer would see
// a reader come and go.
void utl_requireReadable(const std::filesystem::path& path);

// A path in the same folder that no file has, for a file that will replace this one when finished.
std::filesystem::path utl_temporaryBeside(const std::filesystem::path& path);

enum class utl_IfExists { Replace, Refuse };

// Gives a file its final name in one step: at every instant the name holds the whole old file or
// the whole new one. Both paths lie on one file system. Throws utl_FileException.
void utl_renameFile(const std::filesystem::path& from, const std::filesystem::path& to,
                    utl_IfExists ifExists);
// A file, a link itself or an empty folder; whether none is left. Takes no memory.
bool utl_removeFile(const std::filesystem::path& path) noexcept;
// The system's words for the last call for a file that failed on this thread.
cow_String utl_fileFailure();
void utl_makeFolder(const std::filesystem::path& path);   // one that is not there yet
void utl_syncFile(const std::filesystem::path& path);     // its content reaches the disk
void utl_syncFolderOf(const std::filesystem::path& path); // its name reaches the disk

// The most memory this process ever had resident, in bytes; 0 when the system does not tell.
std::size_t utl_peakMemory();
