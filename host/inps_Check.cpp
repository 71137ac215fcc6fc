#include "host/inps_Commands.h"

#include "database/eds_ModelReader.h"
#include "host/inps_Arguments.h"
#include "host/inps_Conversion.h"
#include "host/inps_Run.h"
#include "host/inps_Session.h"
#include <nlohmann/json.hpp>
#include <ostream>

namespace {

void say(inps_Session& session, const inps_Run& run, const cow_String& text) {
  if (!run.IsJson() && !run.IsQuiet()) session.out << text << '\n';
}

int checkModel(inps_Session& session, inps_Run& run, const inps_Arguments& arguments) {
  const KvoObjDocument document = KvoObjDocument::Open(arguments.Path(0), KvoAccess::ReadOnly);
  for (const cow_String& fault : eds_checkModel(document)) {
    wip_Message message(fault);
    message.place.file = arguments.Operands()[0];
    run.Reporter().Error(message, 1);
  }
  if (!document.IsFinished()) {
    wip_Message message("the conversion that made this model did not finish");
    message.place.file = arguments.Operands()[0];
    run.Reporter().Warning(message);
  }
  if (run.Reporter().Errors() > 0) return inps_ExitFaults;
  say(session, run, "the model is sound");
  return inps_ExitDone;
}

int checkDeck(inps_Session& session, inps_Run& run, const inps_Arguments& arguments) {
  inps_Conversion conversion(arguments.Path(0));
  if (!conversion.Prepare()) return inps_ExitFaults;
  const KvoObjDocument document = KvoObjDocument::InMemory();
  const bool clean = conversion.Convert(document);
  const inps_ModelSummary summary = inps_summarize(document);
  if (run.IsJson()) run.Json()["summary"] = inps_jsonOf(summary);
  say(session, run, inps_summaryLine(summary));
  const int notModelled = run.NotModelled(conversion.NotModelled());
  if (!clean || run.Reporter().Errors() > 0) return inps_ExitFaults;
  say(session, run, "the deck has no errors");
  return notModelled;
}

} // namespace

int inps_check(inps_Session& session, const inps_Arguments& arguments) {
  inps_Run run(session, arguments);
  return run.Do([&] {
    const bool model = inps_isModelFile(arguments.Path(0));
    if (run.IsJson()) {
      run.Json()["command"] = "check";
      run.Json()[model ? "model" : "deck"] = arguments.Operands()[0];
    }
    return model ? checkModel(session, run, arguments) : checkDeck(session, run, arguments);
  });
}
