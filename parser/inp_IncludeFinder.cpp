#include "parser/inp_IncludeFinder.h"
#include "base/utl_File.h"
#include <algorithm>

namespace fs = std::filesystem;

inp_IncludeFinder::inp_IncludeFinder(const cow_String& directory,
                                     const cow_List<cow_String>& searchPaths) {
  if (!directory.empty()) m_folders.push_back(utl_pathOf(directory));
  for (const cow_String& folder : searchPaths) m_folders.push_back(utl_pathOf(folder));
}

fs::path inp_IncludeFinder::Find(const cow_String& name, const fs::path& including,
                                 cow_List<cow_String>& tried) const {
  // Decks travel between systems: a name with backslashes is tried as written, then with slashes.
  cow_List<fs::path> spellings{utl_pathOf(name)};
  if (name.find('\\') != cow_String::npos) {
    cow_String slashes = name;
    std::replace(slashes.begin(), slashes.end(), '\\', '/');
    spellings.push_back(utl_pathOf(slashes));
  }
  cow_List<fs::path> folders{including};
  folders.insert(folders.end(), m_folders.begin(), m_folders.end());
  for (const fs::path& folder : folders) {
    for (const fs::path& spelling : spellings) {
      fs::path path = (folder / spelling).lexically_normal();
      // A folder is found too: opening it says what is wrong.
      if (utl_exists(path)) return path;
    }
    tried.push_back(folder.empty() ? "." : utl_pathText(folder));
  }
  return {};
}
