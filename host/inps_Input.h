#pragma once

#include "base/cow_Value.h"
#include "host/inps_TemporaryFile.h"
#include <filesystem>
#include <memory>

struct inps_Session;

inline constexpr const char* inps_dash = "-"; // standard input or output, where a file may stand

// A file to be read under the name that messages use: a word of the command line, or standard input
// for "-", which is kept in a temporary file while this lives. That can be read once only: a second
// "-" is refused by the arguments.
class inps_Input {
public:
  inps_Input(const cow_String& word, inps_Session& session); // throws utl_FileException

  const std::filesystem::path& File() const { return m_file; }
  const cow_String& Name() const { return m_name; }
  bool IsStandardInput() const { return m_held != nullptr; }

private:
  cow_String m_name;
  std::filesystem::path m_file;
  std::unique_ptr<inps_TemporaryFile> m_held;
};
