#include "host/inps_TemporaryFile.h"

#include "base/utl_File.h"
#include "base/utl_Interruption.h"
#include "base/utl_MappedFile.h"
#include "base/utl_OutputFile.h"
#include "host/inps_Session.h"
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <ostream>
#include <system_error>

namespace {

constexpr std::size_t pieceSize = std::size_t{1} << 20;

std::filesystem::path folderOfAll() {
  std::error_code failure;
  const std::filesystem::path folder = std::filesystem::temp_directory_path(failure);
  if (failure)
    throw utl_FileException("cannot find the folder for temporary files (TMPDIR)", {},
                            failure.message());
  return folder;
}

// Made anew, or not at all: nobody else's folder is taken for ours.
std::filesystem::path ownFolder() {
  const std::filesystem::path all = folderOfAll();
  const std::filesystem::path folder = utl_temporaryBeside(all / "inps");
  std::error_code failure;
  if (!std::filesystem::create_directory(folder, failure))
    throw utl_FileException("cannot make a folder in", all,
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

void inps_TemporaryFile::ShowAsOutput(inps_Session& session) const {
  session.ShowAs(m_path, "\"<stdout>\", kept in \"" + utl_pathText(m_folder.parent_path()) +
                             "\" meanwhile");
}

void inps_TemporaryFile::FillFromStandardInput() const try {
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
} catch (const utl_FileException& failure) {
  if (failure.Path() != m_path) throw;
  throw utl_FileException("cannot keep standard input in", m_folder.parent_path(),
                          failure.Reason());
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
