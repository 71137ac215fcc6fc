#include "host/inps_OutputFile.h"

#include "base/utl_File.h"
#include "base/utl_FileUnderWay.h"
#include "base/utl_Stream.h"
#include "host/inps_Arguments.h"
#include "host/inps_ReadFiles.h"
#include "host/inps_Session.h"
#include <optional>

void inps_writeFile(const std::filesystem::path& path, bool force, const inps_ReadFiles& read,
                    const std::function<void(utl_Stream& out)>& print) {
  std::error_code ignored;
  const std::filesystem::file_status status = std::filesystem::status(path, ignored);
  const bool exists = std::filesystem::exists(status);
  if (std::filesystem::is_directory(status))
    throw utl_FileException("cannot write", path, "it is a folder");
  read.RequireOther(path);
  const bool inPlace = exists && !std::filesystem::is_regular_file(status);
  if (utl_isTaken(path) && !inPlace && !force)
    throw utl_FileException("cannot write", path, "it exists; --force replaces it");

  const std::filesystem::path file = inPlace ? path : utl_temporaryBeside(path);
  std::optional<utl_FileUnderWay> underWay;
  if (!inPlace) underWay.emplace(file);
  try {
    utl_Stream out(utl_OutputFile(file, inPlace ? utl_OutputFile::Mode::Overwrite
                                                : utl_OutputFile::Mode::CreateNew));
    print(out);
    out.Close();
    if (inPlace) return;
    utl_renameFile(file, path, force ? utl_IfExists::Replace : utl_IfExists::Refuse);
  } catch (const utl_FileException& failure) {
    if (inPlace) throw;
    utl_removeFile(file);
    if (failure.Path() != file) throw;
    throw utl_FileException("cannot write", path, failure.Reason()); // under the user's name
  } catch (...) {
    if (!inPlace) utl_removeFile(file);
    throw;
  }
}

void inps_requireFree(const std::filesystem::path& target, bool force) {
  if (!utl_isTaken(target)) return;
  std::error_code ignored;
  const std::filesystem::file_status status = std::filesystem::status(target, ignored);
  if (std::filesystem::is_directory(status))
    throw utl_FileException("cannot write", target, "it is a folder");
  if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status))
    throw utl_FileException("cannot write", target, "it is a device or a pipe");
  if (!force) throw utl_FileException("cannot write", target, "it exists; --force replaces it");
}

cow_String inps_faultOfModelOutput(const inps_Session& session, const inps_Arguments& arguments) {
  if (arguments.Has(inps_Opt::Json))
    return "the model and \"--json\" cannot both go to standard output";
  if (session.isOutTerminal)
    return "a model is no text, and standard output is a terminal; \"-o FILE\" names a file";
  return {};
}
