#pragma once

#include "base/utl_File.h"
#include "base/utl_MappedFile.h"
#include "base/utl_OutputFile.h"
#include <filesystem>
#include <string_view>

// An empty folder for one test, removed with what is in it.
class TemporaryFolder {
public:
  TemporaryFolder()
      : m_path(utl_temporaryBeside(std::filesystem::temp_directory_path() / "inps_test")) {
    std::filesystem::create_directories(m_path);
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  std::filesystem::path operator/(std::string_view name) const { return m_path / utl_pathOf(name); }
  const std::filesystem::path& Path() const { return m_path; }

private:
  std::filesystem::path m_path;
};

inline void writeFile(const std::filesystem::path& path, std::string_view content) {
  utl_OutputFile file(path);
  file.Write(content.data(), content.size());
  file.Close();
}

inline cow_String readFile(const std::filesystem::path& path) {
  return cow_String(utl_MappedFile(path).Text());
}
