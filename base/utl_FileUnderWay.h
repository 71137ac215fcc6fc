#pragma once

#include <filesystem>

// A file or folder that has no final name yet. Whoever ends the process at once (memory that nobody
// can do without, a deck that was cut short while it was read) removes all there are.
class utl_FileUnderWay {
public:
  explicit utl_FileUnderWay(const std::filesystem::path& name) noexcept; // lives longer than this
  ~utl_FileUnderWay();
  utl_FileUnderWay(const utl_FileUnderWay&) = delete;
  utl_FileUnderWay& operator=(const utl_FileUnderWay&) = delete;

  // Those made last first. For good: from now on none comes or goes until the process ends. Takes
  // no memory and may be called from a signal handler.
  static void RemoveAll() noexcept;

private:
  friend struct utl_FilesUnderWay;
  const std::filesystem::path& m_name;
  utl_FileUnderWay* m_before = nullptr;
  utl_FileUnderWay* m_after = nullptr;
};
