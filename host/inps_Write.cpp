#include "host/inps_Commands.h"

#include "base/utl_File.h"
#include "base/utl_Stream.h"
#include "database/KvoObjDocument.h"
#include "host/inps_Arguments.h"
#include "host/inps_Run.h"
#include "host/inps_Session.h"
#include "inpS/writer/inpS_Sim2Inp.h"
#include <ostream>

namespace {

using Path = std::filesystem::path;

// The same for every model and machine: equal models give equal decks.
void print(const KvoObjDocument& document, utl_Stream& deck, aio_ostream& diagnostics) {
  inpS_Sim2Inp writer(document, 0, false, "Written by inps", nullptr, diagnostics);
  writer.Print(deck);
}

// A deck takes its name when it is whole; it is not forced to the disk, for the model can write it
// again. What is no regular file (a pipe, a device) is written as
// it stands.
void writeFile(const KvoObjDocument& document, const Path& path, bool force, aio_ostream& err) {
  std::error_code ignored;
  const std::filesystem::file_status status = std::filesystem::status(path, ignored);
  const bool exists = std::filesystem::exists(status);
  if (std::filesystem::is_directory(status))
    throw utl_FileException("cannot write", path, "it is a folder");
  const bool inPlace = exists && !std::filesystem::is_regular_file(status);
  if (exists && !inPlace && !force)
    throw utl_FileException("cannot write", path, "it exists; --force replaces it");

  const Path file = inPlace ? path : utl_temporaryBeside(path);
  try {
    utl_Stream deck(file);
    print(document, deck, err);
    deck.Close();
    if (inPlace) return;
    utl_renameFile(file, path, force ? utl_IfExists::Replace : utl_IfExists::Refuse);
  } catch (...) {
    if (!inPlace) utl_removeFile(file);
    throw;
  }
}

} // namespace

int inps_write(inps_Session& session, const inps_Arguments& arguments) {
  inps_Run run(session, arguments);
  return run.Do([&] {
    const KvoObjDocument document = KvoObjDocument::Open(arguments.Path(0), KvoAccess::ReadOnly);
    if (!document.IsFinished())
      session.err << "inps: warning: the conversion that made " << arguments.Operands()[0]
                  << " did not finish; the deck holds what the model holds\n";
    if (arguments.Has(inps_Opt::Output) && arguments.ValueOf(inps_Opt::Output) != "-") {
      writeFile(document, arguments.PathOf(inps_Opt::Output), arguments.Has(inps_Opt::Force),
                session.err);
    } else {
      utl_Stream deck(session.out);
      print(document, deck, session.err);
      deck.Close();
    }
    return run.Reporter().Errors() > 0 ? inps_ExitFaults : inps_ExitDone;
  });
}
