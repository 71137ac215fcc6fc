#include "host/inps_ReadFiles.h"

#include "base/utl_File.h"

namespace fs = std::filesystem;

namespace {

// One file under whatever name; what is read is there.
bool isSame(const fs::path& a, const fs::path& b) {
  std::error_code ignored;
  return fs::equivalent(a, b, ignored);
}

} // namespace

void inps_ReadFiles::Add(const cow_List<fs::path>& files) {
  m_files.insert(m_files.end(), files.begin(), files.end());
}

void inps_ReadFiles::AddNamed(const cow_List<fs::path>& files) {
  m_named.insert(m_named.end(), files.begin(), files.end());
}

void inps_ReadFiles::RequireOther(const fs::path& written) const {
  const auto refuse = [&](const cow_String& why) {
    throw utl_FileException("cannot write", written, why);
  };
  const auto nameOf = [](const fs::path& file) { return '"' + utl_pathText(file) + '"'; };
  if (utl_exists(written)) {
    for (const fs::path& file : m_files)
      if (isSame(written, file)) refuse("it is the file that is read");
    for (const fs::path& file : m_named)
      if (isSame(written, file)) refuse("the deck names it");
  }
  const cow_String name = utl_pathText(written);
  for (const cow_String ending : {"-journal", "-wal", "-shm"}) {
    const fs::path journal = utl_pathOf(name + ending);
    if (utl_exists(journal))
      for (const fs::path& file : m_files)
        if (isSame(journal, file))
          refuse(nameOf(file) + ", which is read, has the name of its journal");
    if (utl_exists(journal))
      for (const fs::path& file : m_named)
        if (isSame(journal, file))
          refuse(nameOf(file) + ", which the deck names, has the name of its journal");
    if (!name.ends_with(ending)) continue;
    const fs::path owner = utl_pathOf(name.substr(0, name.size() - ending.size()));
    for (const fs::path& file : m_files)
      if (isSame(owner, file))
        refuse("it would be taken for the journal of " + nameOf(file) + ", which is read");
  }
}

void inps_ReadFiles::RequireOutside(const fs::path& folder) const {
  std::error_code ignored;
  const auto require = [&](const cow_List<fs::path>& files, const char* why) {
    for (const fs::path& file : files)
      if (fs::equivalent(folder, fs::absolute(file, ignored).parent_path(), ignored))
        throw utl_FileException("cannot write", folder, "\"" + utl_pathText(file) + why);
  };
  require(m_files, "\", which is read, lies in it");
  require(m_named, "\", which the deck names, lies in it");
}
