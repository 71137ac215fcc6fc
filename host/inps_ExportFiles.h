#pragma once

#include "base/cow_Value.h"
#include <filesystem>

// Where an export goes: MESH.vtu and, when it has blocks, MESH.vtm and a folder MESH beside. All of
// it is written under temporary names and takes its own at the end; what was begun and not finished
// is removed.
class inps_ExportFiles {
public:
  // Throws utl_FileException when something is in the way: anything without force; with force what
  // is no file or the one that is read, and a folder that holds more than an earlier export's
  // blocks.
  inps_ExportFiles(const std::filesystem::path& vtu, const std::filesystem::path& read,
                   bool hasBlocks, bool force);
  ~inps_ExportFiles();
  inps_ExportFiles(const inps_ExportFiles&) = delete;
  inps_ExportFiles& operator=(const inps_ExportFiles&) = delete;

  const std::filesystem::path& MeshFile() const { return m_mesh.temporary; }
  const std::filesystem::path& ListFile() const { return m_list.temporary; }
  // A block's file for writing; `reference` becomes its path as MESH.vtm has to name it.
  std::filesystem::path BlockFile(const cow_String& kind, const cow_String& name,
                                  cow_String& reference);
  cow_String MeshReference() const; // likewise
  // The final path of a file that is being written.
  std::filesystem::path FinalOf(const std::filesystem::path& file) const;
  const std::filesystem::path& ListPath() const { return m_list.final; }
  void Finish();

private:
  struct Place {
    std::filesystem::path final;
    std::filesystem::path temporary;
  };
  // A folder that goes again without asking for memory: there may be none left.
  struct Folder {
    std::filesystem::path name;
    cow_List<std::filesystem::path> files;
    void Remove() const noexcept;
  };

  bool m_hasBlocks;
  bool m_force;
  Place m_mesh;
  Place m_list;
  Place m_folder;
  Folder m_blocks; // under its temporary name
  Folder m_old;    // one that is replaced, under the name it has meanwhile
};
