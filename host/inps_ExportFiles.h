#pragma once

#include "base/cow_Value.h"
#include "base/utl_FileUnderWay.h"
#include <deque>
#include <filesystem>
#include <optional>

class inps_ReadFiles;

// How the list of an export begins, up to the name of the mesh: what tells ours from others'.
inline constexpr const char* inps_exportListHead =
    "<?xml version=\"1.0\"?>\n"
    "<VTKFile type=\"vtkMultiBlockDataSet\" version=\"1.0\" byte_order=\"LittleEndian\""
    " header_type=\"UInt64\">\n"
    "  <vtkMultiBlockDataSet>\n"
    "    <DataSet index=\"0\" name=\"Mesh\" file=\"";

// Where an export goes: MESH.vtu and, when it has blocks, MESH.vtm and a folder MESH beside. All of
// it is written under temporary names and takes its own at the end; what was begun and not finished
// is removed. The user names MESH.vtu alone: beside it only what an earlier export made is
// replaced, a list that begins as ours do and a folder of nothing but files with names of blocks.
// Links among them are refused, for what they lead to is somebody else's.
class inps_ExportFiles {
public:
  // Throws utl_FileException when something is in the way: anything without force; with force what
  // is no file, what is read, and what no export made.
  inps_ExportFiles(const std::filesystem::path& vtu, const inps_ReadFiles& read, bool hasBlocks,
                   bool force);
  ~inps_ExportFiles();
  inps_ExportFiles(const inps_ExportFiles&) = delete;
  inps_ExportFiles& operator=(const inps_ExportFiles&) = delete;

  void RequireOther(const inps_ReadFiles& read) const; // throws utl_FileException

  const std::filesystem::path& MeshFile() const { return m_mesh.temporary; }
  const std::filesystem::path& ListFile() const { return m_list.temporary; }
  // A block's file for writing; `reference` becomes its path as MESH.vtm has to name it.
  std::filesystem::path BlockFile(const cow_String& kind, const cow_String& name,
                                  cow_String& reference);
  cow_String MeshReference() const; // likewise
  // The final path of a file that is being written.
  std::filesystem::path FinalOf(const std::filesystem::path& file) const;
  const std::filesystem::path& ListPath() const { return m_list.final; }
  // Returns what of a replaced export would not go, under the names that it has now.
  cow_List<std::filesystem::path> Finish();

private:
  struct Place {
    std::filesystem::path final;
    std::filesystem::path temporary;
    std::optional<utl_FileUnderWay> underWay;
    void Begin(); // gives it a temporary name
  };

  void GiveNames(bool hasOld);
  cow_List<std::filesystem::path> RemoveOld() const;

  bool m_hasBlocks;
  bool m_force;
  Place m_mesh;
  Place m_list;
  Place m_folder;
  // Under their temporary names. They go again without asking for memory: there may be none left.
  std::deque<std::filesystem::path> m_blocks;
  std::deque<utl_FileUnderWay> m_blocksUnderWay;
  // A folder that is replaced: its name meanwhile and its blocks by that name.
  std::filesystem::path m_old;
  cow_List<std::filesystem::path> m_oldBlocks;
};
