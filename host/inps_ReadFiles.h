#pragma once

#include "base/cow_Value.h"
#include <filesystem>
#include <initializer_list>

// What a command reads it does not replace, by whatever name, through links too: a deck with its
// includes and data files, a model. Nor does it write under the names that the engine gives to
// the journals beside a file: beside one that is read the file would be taken for its journal, and
// one that is read would go as the journal of what is written.
class inps_ReadFiles {
public:
  inps_ReadFiles() = default;
  inps_ReadFiles(std::initializer_list<std::filesystem::path> files) : m_files(files) {}

  void Add(const std::filesystem::path& file) { m_files.push_back(file); }
  void Add(const cow_List<std::filesystem::path>& files);

  // What a deck names, and nobody reads: its keywords are kept as text.
  void AddNamed(const cow_List<std::filesystem::path>& files);

  // Throws utl_FileException.
  void RequireOther(const std::filesystem::path& written) const;
  // The same for a folder that is replaced with all that lies in it.
  void RequireOutside(const std::filesystem::path& folder) const;

private:
  cow_List<std::filesystem::path> m_files;
  cow_List<std::filesystem::path> m_named;
};
