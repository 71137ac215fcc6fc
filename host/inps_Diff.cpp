#include "host/inps_Commands.h"

#include "host/inps_Arguments.h"
#include "host/inps_Conversion.h"
#include "host/inps_Input.h"
#include "host/inps_Json.h"
#include "host/inps_ModelDiff.h"
#include "host/inps_Outcome.h"
#include "host/inps_Run.h"
#include "host/inps_Session.h"
#include "host/inps_Tolerance.h"
#include <algorithm>
#include <nlohmann/json.hpp>
#include <ostream>
#include <sstream>

namespace {

// How many differences there are, and what that is worth: of decks with errors, what could be
// converted is compared.
cow_String resultText(long long differences, const inps_Tolerance& tolerance, bool hasErrors) {
  if (differences)
    return inps_counted(differences, "difference") +
           (hasErrors ? " in what could be converted; there are errors in the decks" : "");
  if (hasErrors) return "what could be converted is the same, but there are errors in the decks";
  return tolerance.IsGiven() ? "the models are the same within the tolerance"
                             : "the models are the same";
}

inps_Json linesOf(std::string_view text) {
  inps_Json list = inps_Json::array();
  for (std::string_view rest = text; !rest.empty();) {
    const std::size_t end = std::min(rest.find('\n'), rest.size());
    list.push_back(std::string(rest.substr(0, end)));
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  return list;
}

} // namespace

int inps_diff(inps_Session& session, const inps_Arguments& arguments) {
  inps_Tolerance tolerance;
  if (arguments.Has(inps_Opt::Tolerance)) {
    const cow_String fault = inps_readTolerance(arguments.ValueOf(inps_Opt::Tolerance), tolerance);
    if (!fault.empty()) {
      session.err << "inps: " << fault << '\n';
      return inps_ExitUsage;
    }
  }
  inps_Run run(session, arguments);
  return run.Do([&]() -> int {
    if (run.IsJson()) {
      run.Json()["command"] = "diff";
      run.Json()["a"] = arguments.Operands()[0];
      run.Json()["b"] = arguments.Operands()[1];
    }
    const inps_Input inputA(arguments.Operands()[0], session);
    const inps_Input inputB(arguments.Operands()[1], session);
    const KvoObjDocument a = inps_openModelOrDeck(inputA, run);
    const KvoObjDocument b = inps_openModelOrDeck(inputB, run);
    if (a.IsNull() || b.IsNull()) return inps_ExitFaults;
    std::ostringstream lines;
    lines.exceptions(std::ios::badbit); // else a want of memory would cut them in silence
    const long long differences =
        inps_diffModels(a, b, run.IsJson() ? lines : session.out, tolerance);
    // Two decks whose meshes were left out are not known to be the same, nor are their models.
    const bool hasErrors =
        run.Reporter().Errors() > 0 || inps_outcomeOf(a).errors > 0 || inps_outcomeOf(b).errors > 0;
    if (run.IsJson()) {
      run.Json()["same"] = differences == 0 && !hasErrors;
      run.Json()["differences"] = differences;
      run.Json()["lines"] = linesOf(lines.view());
    } else if (!run.IsQuiet())
      session.out << resultText(differences, tolerance, hasErrors) << '\n';
    return differences || hasErrors ? inps_ExitFaults : inps_ExitDone;
  });
}
