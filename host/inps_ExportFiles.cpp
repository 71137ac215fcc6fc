#include "host/inps_ExportFiles.h"

#include "base/utl_File.h"
#include "base/utl_FileCalls.h"
#include "host/inps_ReadFiles.h"
#include <algorithm>
#include <fstream>

namespace fs = std::filesystem;

namespace {

[[noreturn]] void refuse(const fs::path& path, const cow_String& why) {
  throw utl_FileException("cannot write", path, why);
}

void requireFreeFile(const fs::path& path, bool force) {
  if (!utl_isTaken(path)) return;
  std::error_code ignored;
  const fs::file_status status = fs::status(path, ignored);
  if (fs::is_directory(status)) refuse(path, "it is a folder");
  if (fs::exists(status) && !fs::is_regular_file(status)) refuse(path, "it is a device or a pipe");
  if (!force) refuse(path, "it exists; --force replaces it");
}

bool isLink(const fs::path& path) {
  std::error_code ignored;
  return fs::is_symlink(fs::symlink_status(path, ignored));
}

void requireFreeList(const fs::path& path, bool force) {
  if (!utl_isTaken(path)) return;
  requireFreeFile(path, force);
  if (isLink(path)) refuse(path, "it is a link");
  constexpr std::string_view head = inps_exportListHead;
  cow_String begin(head.size(), '\0');
  std::ifstream(path, std::ios::binary)
      .read(begin.data(), static_cast<std::streamsize>(head.size()));
  if (begin != head) refuse(path, "it is not the list of an export");
}

constexpr std::size_t longestInName = 60;

bool isPlain(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
         c == '_' || c == '.';
}

// kind-number-name.vtu, as BlockFile makes it.
bool isBlockName(std::string_view name) {
  constexpr std::string_view ending = ".vtu";
  constexpr std::string_view digits = "0123456789";
  if (!name.ends_with(ending)) return false;
  name.remove_suffix(ending.size());
  for (const std::string_view kind : {"elements-", "nodes-", "surface-"}) {
    if (!name.starts_with(kind)) continue;
    name.remove_prefix(kind.size());
    const std::size_t number = std::min(name.find_first_not_of(digits), name.size());
    if (number == 0 || number == name.size() || name[number] != '-') return false;
    name.remove_prefix(number + 1);
    return name.size() <= longestInName && std::ranges::all_of(name, isPlain);
  }
  return false;
}

// The blocks in a folder that is replaced: nobody's own files go with it. Read before anything is
// made, since the library ends the process when it finds no memory for looking into a folder.
cow_List<fs::path> requireFreeFolder(const fs::path& path, bool force) {
  cow_List<fs::path> blocks;
  if (!utl_isTaken(path)) return blocks;
  if (isLink(path)) refuse(path, "it is a link");
  if (!utl_isDirectory(path)) refuse(path, "it is a file");
  if (!force) refuse(path, "it exists; --force replaces it");
  std::error_code failure;
  fs::directory_iterator entries(path, failure);
  if (failure) throw utl_FileException("cannot read", path, failure.message());
  for (const fs::directory_entry& entry : entries) {
    const cow_String name = utl_pathText(entry.path().filename());
    const bool isFile = fs::is_regular_file(entry.symlink_status(failure));
    if (!isFile || !isBlockName(name))
      refuse(path, "it holds more than the blocks of an export: " + name);
    blocks.push_back(entry.path().filename());
  }
  return blocks;
}

// Letters, digits and a few signs of a name, for every file system.
cow_String fileNameOf(const cow_String& name) {
  cow_String text = name.substr(0, longestInName);
  std::ranges::replace_if(
      text, [](char c) { return !isPlain(c); }, '_');
  return text;
}

} // namespace

void inps_ExportFiles::Place::Begin() {
  temporary = utl_temporaryBeside(final);
  underWay.emplace(temporary);
}

inps_ExportFiles::inps_ExportFiles(const fs::path& vtu, const inps_ReadFiles& read, bool hasBlocks,
                                   bool force)
    : m_hasBlocks(hasBlocks), m_force(force) {
  m_mesh.final = vtu;
  m_list.final = fs::path(vtu).replace_extension(".vtm");
  m_folder.final = fs::path(vtu).replace_extension();
  RequireOther(read);
  requireFreeFile(vtu, force);
  m_mesh.Begin();
  if (!hasBlocks) return;
  requireFreeList(m_list.final, force);
  m_oldBlocks = requireFreeFolder(m_folder.final, force);
  m_old = utl_temporaryBeside(m_folder.final);
  for (fs::path& file : m_oldBlocks) file = m_old / file;
  m_list.Begin();
  m_folder.Begin();
  utl_makeFolder(m_folder.temporary);
}

inps_ExportFiles::~inps_ExportFiles() {
  if (m_mesh.underWay) utl_removeFile(m_mesh.temporary);
  if (m_list.underWay) utl_removeFile(m_list.temporary);
  if (!m_folder.underWay) return;
  for (const fs::path& file : m_blocks) utl_removeFile(file);
  utl_removeFile(m_folder.temporary);
}

void inps_ExportFiles::RequireOther(const inps_ReadFiles& read) const {
  read.RequireOther(m_mesh.final);
  if (!m_hasBlocks) return;
  read.RequireOther(m_list.final);
  read.RequireOutside(m_folder.final);
}

fs::path inps_ExportFiles::BlockFile(const cow_String& kind, const cow_String& name,
                                     cow_String& reference) {
  const fs::path file = utl_pathOf(kind + "-" + std::to_string(m_blocks.size() + 1) + "-" +
                                   fileNameOf(name) + ".vtu");
  reference = utl_pathText(m_folder.final.filename()) + "/" + utl_pathText(file);
  const fs::path& block = m_blocks.emplace_back(m_folder.temporary / file);
  m_blocksUnderWay.emplace_back(block);
  return block;
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

// Folders are not replaced in one step: an old one steps aside, comes back when the new one or its
// list cannot take its place, and goes when all else is done.
void inps_ExportFiles::GiveNames(bool hasOld) {
  const utl_IfExists ifExists = m_force ? utl_IfExists::Replace : utl_IfExists::Refuse;
  utl_renameFile(m_mesh.temporary, m_mesh.final, ifExists);
  m_mesh.underWay.reset();
  if (!m_hasBlocks) return;
  if (hasOld) utl_renameFile(m_folder.final, m_old, utl_IfExists::Refuse);
  bool isThere = false;
  try {
    utl_renameFile(m_folder.temporary, m_folder.final, utl_IfExists::Refuse);
    isThere = true;
    utl_renameFile(m_list.temporary, m_list.final, ifExists);
  } catch (const utl_FileException& failure) {
    const bool isAway = !isThere || utl_fileCalls::renameToNew(m_folder.final, m_folder.temporary);
    if (!hasOld || (isAway && utl_fileCalls::renameToNew(m_old, m_folder.final))) throw;
    throw utl_FileException("cannot create", failure.Path(),
                            failure.Reason() + "; what was there is now \"" + utl_pathText(m_old) +
                                '"');
  }
  m_list.underWay.reset();
  m_folder.underWay.reset();
  m_blocksUnderWay.clear();
}

cow_List<fs::path> inps_ExportFiles::Finish() {
  const bool hasOld = m_hasBlocks && m_force && utl_exists(m_folder.final);
  GiveNames(hasOld);
  return hasOld ? RemoveOld() : cow_List<fs::path>();
}

// What somebody laid into the folder meanwhile stays in it.
cow_List<fs::path> inps_ExportFiles::RemoveOld() const {
  cow_List<fs::path> left;
  for (const fs::path& file : m_oldBlocks)
    if (!utl_removeFile(file)) left.push_back(file);
  if (!utl_removeFile(m_old) && left.empty()) left.push_back(m_old);
  return left;
}
