#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>

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
