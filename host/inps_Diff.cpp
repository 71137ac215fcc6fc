#include "host/inps_Commands.h"

#include "host/inps_Arguments.h"
#include "host/inps_Conversion.h"
#include "host/inps_Json.h"
#include "host/inps_ModelDiff.h"
#include "host/inps_Run.h"
#include "host/inps_Session.h"
#include <algorithm>
#include <nlohmann/json.hpp>
#include <ostream>
#include <sstream>

int inps_diff(inps_Session& session, const inps_Arguments& arguments) {
  inps_Run run(session, arguments);
  return run.Do([&]() -> int {
    const KvoObjDocument a = inps_openModelOrDeck(arguments.Path(0), session);
    const KvoObjDocument b = inps_openModelOrDeck(arguments.Path(1), session);
    if (a.IsNull() || b.IsNull()) return inps_ExitFaults;
    std::ostringstream lines;
    lines.exceptions(std::ios::badbit); // else a want of memory would cut them in silence
    const long long differences = inps_diffModels(a, b, run.IsJson() ? lines : session.out);
    if (run.IsJson()) {
      run.Json()["same"] = differences == 0;
      run.Json()["differences"] = differences;
      inps_Json list = inps_Json::array();
      for (std::string_view rest = lines.view(); !rest.empty();) {
        const std::size_t end = std::min(rest.find('\n'), rest.size());
        list.push_back(std::string(rest.substr(0, end)));
        rest.remove_prefix(std::min(end + 1, rest.size()));
      }
      run.Json()["lines"] = std::move(list);
    } else if (!run.IsQuiet())
      session.out << (differences ? inps_counted(differences, "difference")
                                  : cow_String("the models are the same"))
                  << '\n';
    return differences ? inps_ExitFaults : inps_ExitDone;
  });
}
