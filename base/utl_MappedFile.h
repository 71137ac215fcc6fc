#pragma once

#include "base/utl_Buffer.h"
#include <cstddef>
#include <filesystem>
#include <memory>
#include <string_view>

struct utl_Mapping;

// A file's bytes, read only. Regular files are mapped; pipes, terminals and devices are read to
// their end into memory. What happens when a mapped file is cut short meanwhile stands in
// utl_Mapping.h.
class utl_MappedFile {
public:
  utl_MappedFile();
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

  // False when the file has another size by now. A file that was given this one's name meanwhile
  // is no change of it.
  bool IsAsItWas() const;

private:
  std::filesystem::path m_path;
  const char* m_data = "";
  std::size_t m_size = 0;
  std::unique_ptr<utl_Mapping> m_mapping;
  utl_Buffer<char> m_copy; // of what cannot be mapped
};
