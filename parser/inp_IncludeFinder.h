#pragma once

#include "base/cow_Value.h"
#include <filesystem>

// Finds the files a deck names.
class inp_IncludeFinder {
public:
  inp_IncludeFinder(const cow_String& directory, const cow_List<cow_String>& searchPaths);

  // Looks for a relative name in the folder of the file that names it, then in the directory, then
  // along the search paths. Empty when there is no such file; tried then lists the folders.
  std::filesystem::path Find(const cow_String& name, const std::filesystem::path& including,
                             cow_List<cow_String>& tried) const;

private:
  cow_List<std::filesystem::path> m_folders;
};
