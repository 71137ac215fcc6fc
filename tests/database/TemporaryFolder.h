#pragma once

#include <filesystem>
#include <random>
#include <string>

// A folder of its own for one test, gone when it ends.
class TemporaryFolder {
public:
  TemporaryFolder()
      : m_path(std::filesystem::temp_directory_path() /
               ("inps-store-" + std::to_string(std::random_device{}()))) {
    std::filesystem::create_directories(m_path);
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
  }
  std::filesystem::path operator/(const char* name) const { return m_path / name; }
  const std::filesystem::path& Path() const { return m_path; }

private:
  std::filesystem::path m_path;
};
