#include "host/inps_TemporaryFile.h"

#include "base/utl_File.h"
#include "base/utl_Interruption.h"
#include "base/utl_MappedFile.h"
#include "base/utl_OutputFile.h"
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <ostream>
#include <system_error>

namespace {

constexpr std::size_t pieceSize = std::size_t{1} << 20;

// Made anew, or not at all: nobody else's folder is taken for ours.
std::filesystem::path ownFolder() {
  const std::filesystem::path folder =
      utl_temporaryBeside(std::filesystem::temp_directory_path() / "inps");
  std::error_code failure;
  if (!std::filesystem::create_directory(folder, failure))
    throw utl_FileException("cannot make folder", folder,
                            failure ? failure.message() : "it exists");
  std::filesystem::permissions(folder, std::filesystem::perms::owner_all, failure);
  return folder;
}

} // namespace

inps_TemporaryFile::inps_TemporaryFile(std::string_view name)
    : m_folder(ownFolder()), m_path(m_folder / utl_pathOf(name)) {}

inps_TemporaryFile::~inps_TemporaryFile() {
  std::error_code ignored;
  std::filesystem::remove(m_path, ignored);
  std::filesystem::remove(m_folder, ignored);
}

void inps_TemporaryFile::FillFromStandardInput() const {
  utl_OutputFile file(m_path, utl_OutputFile::Mode::CreateNew);
  cow_List<char> room(pieceSize);
  for (bool more = true; more;) {
    errno = 0;
    const std::size_t size = std::fread(room.data(), 1, room.size(), stdin);
    utl_stopIfAsked();
    if (size < room.size() && std::ferror(stdin))
      throw utl_FileException("cannot read", "standard input",
                              std::generic_category().message(errno));
    file.Write(room.data(), size);
    more = size == room.size();
  }
  file.Close();
}

void inps_TemporaryFile::SendTo(aio_ostream& out) const {
  const utl_MappedFile file(m_path);
  for (std::size_t at = 0; at < file.Size() && out; at += pieceSize) {
    utl_stopIfAsked();
    const std::size_t size = std::min(pieceSize, file.Size() - at);
    out.write(file.Data() + at, static_cast<std::streamsize>(size));
  }
  out.flush();
}
