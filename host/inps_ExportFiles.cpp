#include "host/inps_ExportFiles.h"

#include "base/utl_File.h"

namespace fs = std::filesystem;

namespace {

void requireFreeFile(const fs::path& path, const fs::path& read, bool force) {
  if (!utl_isTaken(path)) return;
  std::error_code ignored;
  if (fs::equivalent(path, read, ignored))
    throw utl_FileException("cannot write", path, "it is the file that is read");
  const fs::file_status status = fs::status(path, ignored);
  if (fs::is_directory(status)) throw utl_FileException("cannot write", path, "it is a folder");
  if (fs::exists(status) && !fs::is_regular_file(status))
    throw utl_FileException("cannot write", path, "it is a device or a pipe");
  if (!force) throw utl_FileException("cannot write", path, "it exists; --force replaces it");
}

// The blocks in a folder that is replaced: nobody's own files go with it. Read before anything is
// made, since the library ends the process when it finds no memory for looking into a folder.
cow_List<fs::path> requireFreeFolder(const fs::path& path, bool force) {
  cow_List<fs::path> blocks;
  if (!utl_exists(path)) return blocks;
  if (!utl_isDirectory(path)) throw utl_FileException("cannot write", path, "it is a file");
  if (!force) throw utl_FileException("cannot write", path, "it exists; --force replaces it");
  for (const fs::directory_entry& entry : fs::directory_iterator(path)) {
    if (!entry.is_regular_file() || entry.path().extension() != ".vtu")
      throw utl_FileException("cannot write", path,
                              "it holds more than the blocks of an export: " +
                                  utl_pathText(entry.path().filename()));
    blocks.push_back(entry.path().filename());
  }
  return blocks;
}

// Letters, digits and a few signs of a name, for every file system.
cow_String fileNameOf(const cow_String& name) {
  constexpr std::size_t longest = 60;
  cow_String text;
  for (const char c : name.substr(0, longest)) {
    const bool plain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
                       c == '-' || c == '_' || c == '.';
    text += plain ? c : '_';
  }
  return text;
}

} // namespace

inps_ExportFiles::inps_ExportFiles(const fs::path& vtu, const fs::path& read, bool hasBlocks,
                                   bool force)
    : m_hasBlocks(hasBlocks), m_force(force) {
  m_mesh.final = vtu;
  requireFreeFile(vtu, read, force);
  m_mesh.temporary = utl_temporaryBeside(vtu);
  if (!hasBlocks) return;
  m_list.final = fs::path(vtu).replace_extension(".vtm");
  m_folder.final = fs::path(vtu).replace_extension();
  requireFreeFile(m_list.final, read, force);
  m_old.files = requireFreeFolder(m_folder.final, force);
  m_old.name = utl_temporaryBeside(m_folder.final);
  for (fs::path& file : m_old.files) file = m_old.name / file;
  m_list.temporary = utl_temporaryBeside(m_list.final);
  m_folder.temporary = utl_temporaryBeside(m_folder.final);
  std::error_code failure;
  m_blocks.name = m_folder.temporary;
  fs::create_directory(m_folder.temporary, failure);
  if (failure) throw utl_FileException("cannot create", m_folder.temporary, failure.message());
}

inps_ExportFiles::~inps_ExportFiles() {
  utl_removeFile(m_mesh.temporary); // gone already once it has its own name
  if (!m_hasBlocks) return;
  utl_removeFile(m_list.temporary);
  m_blocks.Remove();
}

void inps_ExportFiles::Folder::Remove() const noexcept {
  for (const fs::path& file : files) utl_removeFile(file);
  utl_removeFile(name);
}

fs::path inps_ExportFiles::BlockFile(const cow_String& kind, const cow_String& name,
                                     cow_String& reference) {
  const fs::path file = utl_pathOf(kind + "-" + std::to_string(m_blocks.files.size() + 1) + "-" +
                                   fileNameOf(name) + ".vtu");
  reference = utl_pathText(m_folder.final.filename()) + "/" + utl_pathText(file);
  return m_blocks.files.emplace_back(m_folder.temporary / file);
}

fs::path inps_ExportFiles::FinalOf(const fs::path& file) const {
  if (file == m_mesh.temporary) return m_mesh.final;
  if (file == m_list.temporary) return m_list.final;
  if (file.parent_path() == m_folder.temporary) return m_folder.final / file.filename();
  return file;
}

cow_String inps_ExportFiles::MeshReference() const {
  return utl_pathText(m_mesh.final.filename());
}

// Folders are not replaced in one step: an old one steps aside, comes back when the new one cannot
// take its place, and goes when all else is done.
void inps_ExportFiles::Finish() {
  const utl_IfExists ifExists = m_force ? utl_IfExists::Replace : utl_IfExists::Refuse;
  const bool hasOld = m_hasBlocks && m_force && utl_exists(m_folder.final);
  if (hasOld) utl_renameFile(m_folder.final, m_old.name, utl_IfExists::Refuse);
  if (m_hasBlocks) {
    try {
      utl_renameFile(m_folder.temporary, m_folder.final, utl_IfExists::Refuse);
    } catch (const std::exception&) {
      std::error_code ignored;
      if (hasOld) fs::rename(m_old.name, m_folder.final, ignored);
      throw;
    }
  }
  utl_renameFile(m_mesh.temporary, m_mesh.final, ifExists);
  if (m_hasBlocks) utl_renameFile(m_list.temporary, m_list.final, ifExists);
  if (hasOld) m_old.Remove();
}
