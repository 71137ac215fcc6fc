#pragma once

#include <filesystem>

// What the process says and does when it cannot go on and nobody can catch why: memory ran out
// where a destructor needs some, or an exception left where none may.

// One line on standard error, the files under way removed, exit code 3. For the whole process.
void inps_installLastResort() noexcept;

// A file that has no final name yet: removed by the last resort while this lives. For the thread
// that runs the command; one made later ends earlier.
class inps_FileUnderWay {
public:
  explicit inps_FileUnderWay(const std::filesystem::path& name) noexcept; // lives longer than this
  ~inps_FileUnderWay();
  inps_FileUnderWay(const inps_FileUnderWay&) = delete;
  inps_FileUnderWay& operator=(const inps_FileUnderWay&) = delete;

private:
  friend struct inps_FilesUnderWay;
  const std::filesystem::path& m_name;
  const inps_FileUnderWay* m_before;
};
