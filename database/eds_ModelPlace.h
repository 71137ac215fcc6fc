#pragma once

#include "base/utl_File.h"
#include <filesystem>
#include <memory>

class eds_Engine;

// The name that a model takes at its end, with what is there now: nothing, another model, or any
// other file. A model that is there is put back to its last whole transaction and kept from those
// who would write it; reading it stays free. What lies beside the name as a journal must be gone
// before another file has that name: the engine would take it for that file's own.
class eds_ModelPlace {
public:
  // Throws eds_InUseException when another process writes what is there, and
  // eds_FileAccessException when what lies there as its journal is not its own.
  explicit eds_ModelPlace(const std::filesystem::path& file);
  ~eds_ModelPlace();
  eds_ModelPlace(const eds_ModelPlace&) = delete;
  eds_ModelPlace& operator=(const eds_ModelPlace&) = delete;

  // After the file was opened and closed by other means, which drops this process's locks on it.
  // Throws eds_InUseException when it is another file by now.
  void HoldAgain();

  // Gives the name to a finished model. Throws utl_FileException when it is taken and may not be
  // replaced, eds_InUseException when another process has changed it since.
  void GiveTo(const std::filesystem::path& model, utl_IfExists ifExists);

private:
  void Hold();
  void RequireSame() const;

  std::filesystem::path m_file;
  std::unique_ptr<eds_Engine> m_held; // null: nothing there, or no model
};
