#include "host/inps_Commands.h"

#include "base/utl_Stream.h"
#include "database/KvoObjDocument.h"
#include "host/inps_Arguments.h"
#include "host/inps_Input.h"
#include "host/inps_OpenModel.h"
#include "host/inps_OutputFile.h"
#include "host/inps_ReadFiles.h"
#include "host/inps_Run.h"
#include "host/inps_Session.h"
#include "inpS/writer/inpS_OwnExcitations.h"
#include "inpS/writer/inpS_Sim2Inp.h"
#include <ostream>

namespace {

// The same for every model and machine: equal models give equal decks.
void print(const KvoObjDocument& document, utl_Stream& deck, aio_ostream& diagnostics) {
  inpS_Sim2Inp writer(document, 0, false, "Written by inps", nullptr, diagnostics);
  writer.Print(deck);
}

void warnOfExcitations(const KvoObjDocument& document, const inps_Input& input, inps_Run& run) {
  for (const cow_String& name : inpS_excitationsNotPrinted(document)) {
    wip_Message message(name + " has no keyword behind it and cannot be written as one");
    message.place.file = input.Name();
    run.Reporter().Warning(message);
  }
}

} // namespace

int inps_write(inps_Session& session, const inps_Arguments& arguments) {
  inps_Run run(session, arguments);
  return run.Do([&] {
    const inps_Input input(arguments.Operands()[0], session);
    const KvoObjDocument document = inps_openModel(input, run);
    inps_warnOfNamedFiles(document, input, run);
    warnOfExcitations(document, input, run);
    if (arguments.Has(inps_Opt::Output) && arguments.ValueOf(inps_Opt::Output) != inps_dash) {
      inps_writeFile(arguments.PathOf(inps_Opt::Output), arguments.Has(inps_Opt::Force),
                     {input.File()}, [&](utl_Stream& deck) { print(document, deck, session.err); });
    } else {
      utl_Stream deck(run.Data());
      print(document, deck, session.err);
      deck.Close();
    }
    return run.Reporter().Errors() > 0 ? inps_ExitFaults : inps_ExitDone;
  });
}
