#include "host/inps_Commands.h"

#include "base/utl_File.h"
#include "database/KvoObjDocument.h"
#include "host/inps_Arguments.h"
#include "host/inps_Input.h"
#include "host/inps_ModelCopy.h"
#include "host/inps_Outcome.h"
#include "host/inps_OutputFile.h"
#include "host/inps_ReadFiles.h"
#include "host/inps_Run.h"
#include "host/inps_Session.h"
#include "inpS/driver/inpS_Derive.h"
#include <nlohmann/json.hpp>
#include <ostream>

namespace {

using Path = std::filesystem::path;

class Derive {
public:
  Derive(inps_Session& session, inps_Run& run, const inps_Arguments& arguments)
      : m_session(session), m_run(run), m_model(arguments.Operands()[0], session),
        m_held(arguments.ValueOf(inps_Opt::Output) == inps_dash
                   ? std::make_unique<inps_TemporaryFile>("model.sim")
                   : nullptr),
        m_target(TargetOf(arguments)),
        m_targetName(m_held                            ? "<stdout>"
                     : arguments.Has(inps_Opt::Output) ? utl_pathText(m_target)
                                                       : m_model.Name()),
        m_force(arguments.Has(inps_Opt::Force)) {
    if (m_held) m_held->ShowAsOutput(session);
  }

  int operator()() {
    if (m_run.IsJson()) m_run.Json()["command"] = "derive";
    // To give no other name means the model itself.
    std::error_code ignored;
    const bool isSame = std::filesystem::equivalent(m_model.File(), m_target, ignored);
    m_force = m_force || isSame;
    inps_requireFree(m_target, m_force);
    if (!isSame) inps_ReadFiles{m_model.File()}.RequireOther(m_target);
    inps_ModelCopy copy(m_model, m_target, m_session, '"' + m_targetName + '"');
    Counts counts;
    copy.Change([&](KvoObjDocument& document) {
      counts.twice = inpS_deriveAgain(document);
      document.Finish();
      const auto count = [&](eds_RecordKind kind) {
        return static_cast<long long>(document.Context().GetRecords(kind).size());
      };
      counts.steps = count(eds_RecordKind::HistoryStep);
      counts.excitations = count(eds_RecordKind::Excitation);
      counts.assignments = count(eds_RecordKind::SectionAssignment);
      counts.systems = count(eds_RecordKind::LocalSystem);
    });
    copy.BecomeTarget(m_force);
    if (m_held) m_held->SendTo(m_run.Data());
    Tell(counts);
    return inps_ExitDone;
  }

private:
  // The model itself, not a link to it.
  Path TargetOf(const inps_Arguments& arguments) const {
    if (m_held) return m_held->Path();
    if (arguments.Has(inps_Opt::Output)) return arguments.PathOf(inps_Opt::Output);
    std::error_code ignored;
    const Path real = std::filesystem::canonical(m_model.File(), ignored);
    return real.empty() ? m_model.File() : real;
  }

  struct Counts {
    long long twice = 0; // rows that prescribe a degree twice
    long long steps = 0;
    long long excitations = 0;
    long long assignments = 0;
    long long systems = 0;
  };

  void Tell(const Counts& counts) {
    if (counts.twice > 0) {
      wip_Message message(inps_counted(counts.twice, "row prescribes", "rows prescribe") +
                          " a degree twice with different values; the first one holds");
      message.place.file = m_model.Name();
      m_run.Reporter().Warning(message);
    }
    if (m_run.IsJson()) {
      inps_Json& json = m_run.Json();
      json["model"] = m_targetName;
      json["steps"] = counts.steps;
      json["excitations"] = counts.excitations;
      json["sectionAssignments"] = counts.assignments;
      json["localSystems"] = counts.systems;
    } else if (!m_run.IsQuiet()) {
      (m_held ? m_session.err : m_session.out)
          << inps_oneLine(m_targetName) << ": " << inps_counted(counts.steps, "step") << ", "
          << inps_counted(counts.excitations, "excitation") << ", "
          << inps_counted(counts.assignments, "section assignment") << ", "
          << inps_counted(counts.systems, "local system") << "; "
          << inps_secondsText(m_run.Timings().Seconds()) << '\n';
    }
  }

  inps_Session& m_session;
  inps_Run& m_run;
  inps_Input m_model;
  std::unique_ptr<inps_TemporaryFile> m_held; // of a model for standard output
  Path m_target;
  cow_String m_targetName;
  bool m_force;
};

// A usage fault in words, empty when all is well.
cow_String faultOf(const inps_Session& session, const inps_Arguments& arguments) {
  if (arguments.Has(inps_Opt::Output) && arguments.ValueOf(inps_Opt::Output) == inps_dash)
    return inps_faultOfModelOutput(session, arguments);
  if (arguments.Operands()[0] == inps_dash && !arguments.Has(inps_Opt::Output))
    return "what comes from standard input has no name for its model; \"-o FILE\" gives it one";
  return {};
}

} // namespace

int inps_derive(inps_Session& session, const inps_Arguments& arguments) {
  if (const cow_String fault = faultOf(session, arguments); !fault.empty()) {
    session.err << "inps: " << fault << '\n';
    return inps_ExitUsage;
  }
  inps_Run run(session, arguments);
  return run.Do([&] { return Derive(session, run, arguments)(); });
}
