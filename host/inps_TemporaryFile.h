#pragma once

#include "base/aio_ostream.h"
#include "base/cow_Value.h"
#include "base/utl_FileUnderWay.h"
#include <filesystem>

struct inps_Session;

// A name in a folder of its own that only this user may look into, for what comes from standard
// input or goes to standard output and has to be a file meanwhile. File and folder go with it.
// Throws utl_FileException.
class inps_TemporaryFile {
public:
  explicit inps_TemporaryFile(std::string_view name);
  ~inps_TemporaryFile();
  inps_TemporaryFile(const inps_TemporaryFile&) = delete;
  inps_TemporaryFile& operator=(const inps_TemporaryFile&) = delete;

  const std::filesystem::path& Path() const { return m_path; }
  void FillFromStandardInput() const;
  void SendTo(aio_ostream& out) const;
  // Failures call it by what it is for, and tell where it lies.
  void ShowAsOutput(inps_Session& session) const;

private:
  std::filesystem::path m_folder;
  std::filesystem::path m_path;
  utl_FileUnderWay m_folderUnderWay{m_folder};
  utl_FileUnderWay m_underWay{m_path}; // goes before its folder
};
