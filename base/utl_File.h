#pragma once

// What the suite needs of the operating system's files. Paths are std::filesystem paths to the end;
// texts about them are UTF-8.

#include "base/cow_Value.h"
#include "base/utl_Buffer.h"
#include <cstddef>
#include <cstdint>
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

// A file's bytes, read only. Regular files are mapped; pipes, terminals and devices are read to
// their end into memory. A mapped file that another program cuts short meanwhile is beyond help.
class utl_MappedFile {
public:
  utl_MappedFile() = default;
  // Throws utl_FileException when there is no such file, it is a folder or may not be read.
  explicit utl_MappedFile(const std::filesystem::path& path);
  ~utl_MappedFile();
  utl_MappedFile(utl_MappedFile&& other) noexcept;
  utl_MappedFile& operator=(utl_MappedFile&& other) noexcept;

  const char* Data() const { return m_data; } // never null
  std::size_t Size() const { return m_size; }
  std::string_view Text() const { return {m_data, m_size}; }
  const std::filesystem::path& Path() const { return m_path; }
  bool IsMapped() const { return m_mapping != nullptr; }

  // The range will not be read soon: its pages need not stay resident. The bytes stay valid and
  // come back from the file when read again. Does nothing for a file that is not mapped.
  void Release(std::size_t offset, std::size_t length) const;

private:
  std::filesystem::path m_path;
  const char* m_data = "";
  std::size_t m_size = 0;
  void* m_mapping = nullptr;
  utl_Buffer<char> m_copy; // of what cannot be mapped
};

// A file being written, unbuffered.
class utl_OutputFile {
public:
  enum class Mode { CreateNew, Overwrite }; // CreateNew throws when the file exists

  utl_OutputFile() = default;
  explicit utl_OutputFile(const std::filesystem::path& path, Mode mode = Mode::Overwrite);
  ~utl_OutputFile(); // closes; what fails then is not reported
  utl_OutputFile(utl_OutputFile&& other) noexcept;
  utl_OutputFile& operator=(utl_OutputFile&& other) noexcept;

  void Write(const void* data, std::size_t size); // all of it, or throws
  // Replaces bytes written before. Nothing may be written behind the end after this.
  void WriteAt(std::uint64_t offset, const void* data, std::size_t size);
  void Sync(); // to the disk itself
  void Close();
  bool IsOpen() const { return m_handle != closedHandle; }
  const std::filesystem::path& Path() const { return m_path; }

private:
  static constexpr std::intptr_t closedHandle = -1;
  std::filesystem::path m_path;
  std::intptr_t m_handle = closedHandle;
};

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
void utl_removeFile(const std::filesystem::path& path) noexcept; // if it is there
void utl_syncFile(const std::filesystem::path& path);            // its content reaches the disk
void utl_syncFolderOf(const std::filesystem::path& path);        // its name reaches the disk

// The most memory this process ever had resident, in bytes; 0 when the system does not tell.
std::size_t utl_peakMemory();
