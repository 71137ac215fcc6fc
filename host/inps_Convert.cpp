#include "host/inps_Commands.h"

#include "base/utl_File.h"
#include "base/utl_Interruption.h"
#include "database/KvoObjMesh.h"
#include "database/eds_CheckRecords.h"
#include "database/eds_Exception.h"
#include "host/inps_Arguments.h"
#include "host/inps_Conversion.h"
#include "host/inps_Input.h"
#include "host/inps_ModelCopy.h"
#include "host/inps_OpenModel.h"
#include "host/inps_OutputFile.h"
#include "host/inps_ReadFiles.h"
#include "host/inps_Run.h"
#include "host/inps_Session.h"
#include "parser/inp_Utils.h"
#include <nlohmann/json.hpp>
#include <optional>
#include <ostream>

namespace {

using Path = std::filesystem::path;

// A conversion that was cut off at its start leaves a model without one.
bool hasMesh(const KvoObjDocument& document) {
  const KvoSimPosition mesh = document.GetMesh().Position();
  return !mesh.Follow(eds_Member::NodeCollection).IsNull() &&
         !mesh.Follow(eds_Member::ElementCollection).IsNull();
}

struct Job {
  cow_String deck; // as given, "-" for standard input
  cow_String base; // likewise; empty: no restart
  Path target;     // empty: standard output
  bool force = false;
  bool salvage = false;
};

// A usage fault in words, empty when the job is clear.
cow_String describeJob(const inps_Session& session, const inps_Arguments& arguments, Job& job) {
  job.deck = arguments.Operands()[0];
  job.force = arguments.Has(inps_Opt::Force);
  job.salvage = arguments.Has(inps_Opt::Salvage);
  job.base = arguments.ValueOf(inps_Opt::Restart);
  if (arguments.ValueOf(inps_Opt::Output) == inps_dash)
    return inps_faultOfModelOutput(session, arguments);
  const bool isUnnamed = job.deck == inps_dash && job.base.empty();
  if (arguments.Has(inps_Opt::Output)) {
    job.target = arguments.PathOf(inps_Opt::Output);
  } else if (isUnnamed || job.base == inps_dash) {
    return "what comes from standard input has no name for its model; \"-o FILE\" gives it one";
  } else if (job.base.empty()) {
    job.target = utl_pathOf(job.deck).filename().replace_extension(".sim");
  } else if (job.force) {
    job.target = utl_pathOf(job.base);
  } else {
    return "\"--restart\" needs \"-o FILE\" for the new model, or \"--force\" to replace " +
           job.base;
  }
  std::error_code ignored;
  if (job.deck != inps_dash &&
      std::filesystem::equivalent(utl_pathOf(job.deck), job.target, ignored))
    return "the model would replace its own deck " + job.deck;
  return {};
}

// What is read is not replaced; but a base may be, by who says so.
void requireOther(const Path& target, const std::optional<inps_Input>& base,
                  const inps_Conversion& conversion) {
  inps_ReadFiles read;
  conversion.TellFiles(read);
  std::error_code ignored;
  if (base && !std::filesystem::equivalent(base->File(), target, ignored)) read.Add(base->File());
  read.RequireOther(target);
}

KvoObjDocument makeModel(const Path& target, bool force, KvoSize size) {
  const bool replace = force && utl_isTaken(target);
  return replace ? KvoObjDocument::CreateReplacing(target, size)
                 : KvoObjDocument::Create(target, size);
}

// A restart changes what others have made. A model that could not be opened again is none: it is
// told here and not later.
void checkRestarted(const KvoObjDocument& document) {
  try {
    eds_checkRecords(document);
  } catch (const eds_DamagedFileException& damage) {
    throw eds_DamagedFileException(
        cow_String("the conversion would end with a damaged model, which is not kept: ") +
        damage.what());
  }
}

void finish(KvoObjDocument& document) {
  const bcu_MarkScope mark("inps-", "finish");
  document.Finish();
}

class Convert {
public:
  Convert(inps_Session& session, inps_Run& run, Job job)
      : m_session(session), m_run(run), m_job(std::move(job)),
        m_held(m_job.target.empty() ? std::make_unique<inps_TemporaryFile>("model.sim") : nullptr),
        m_target(m_held ? m_held->Path() : m_job.target),
        m_targetName(m_held ? "<stdout>" : utl_pathText(m_target)) {
    if (m_held) m_held->ShowAsOutput(session);
    if (!m_job.base.empty()) m_base.emplace(m_job.base, session);
  }

  int operator()() {
    Note("command", "convert");
    Note("deck", m_job.deck);
    inps_requireFree(m_target, m_job.force);
    const inps_Input deck(m_job.deck, m_session);
    inps_Conversion conversion(deck, m_run.Reporter());
    const bool canConvert = conversion.Prepare();
    if (m_run.IsJson()) m_run.Json()["converted"] = canConvert;
    if (!canConvert) {
      Say("the deck cannot be converted; " + m_targetName + " was not written");
      return inps_ExitFaults;
    }
    requireOther(m_target, m_base, conversion);
    conversion.SetSalvage(m_job.salvage);
    if (const inp_Keyword* restart = conversion.RestartKeyword(); restart && !m_base)
      m_run.Reporter().Warning(inp_Utils::MessageInKeyword(
          *restart, "this deck goes on from another model; --restart names that model"));
    const bool clean = !m_base ? Fresh(conversion) : Restart(conversion);
    const int notModelled = m_run.NotModelled(conversion.NotModelled(), m_held != nullptr);
    if (m_held) m_held->SendTo(m_run.Data());
    if (clean && m_run.Reporter().Errors() == 0) return notModelled;
    const bool noMesh = conversion.IsMeshLeftOut();
    if (m_run.IsJson()) m_run.Json()["meshLeftOut"] = noMesh;
    if (m_run.IsJson() && m_base) m_run.Json()["baseKept"] = m_isBaseKept; // and nothing written
    if (m_isBaseKept) {
      Say("the deck has errors; " + m_targetName +
          " is as it was; \"-o FILE\" puts what can be converted into another file");
      return inps_ExitFaults;
    }
    Say("the deck has errors; " + m_targetName + " holds what could be converted" +
        (noMesh ? cow_String(m_base ? "; what the restart adds to the mesh is left out"
                                    : "; the mesh is left out") +
                      " because of its errors" +
                      (m_job.salvage ? "" : "; --salvage stores what is sound of it")
                : ""));
    return inps_ExitFaults;
  }

private:
  bool Fresh(inps_Conversion& conversion) {
    KvoObjDocument document = makeModel(m_target, m_job.force, conversion.ExpectedSize());
    bool clean = false;
    try {
      clean = conversion.Convert(document);
      finish(document);
    } catch (const utl_Interruption&) {
      document.GiveUp();
      throw;
    } catch (const utl_FileException&) { // of the deck
      document.GiveUp();
      throw;
    }
    Summarize(document);
    document.Close();
    return clean;
  }

  bool GoOn(inps_Conversion& conversion, KvoObjDocument& document) {
    if (!hasMesh(document))
      throw eds_DamagedFileException("\"" + m_base->Name() + "\" has no mesh from which to go on");
    inps_warnOfOutcome(document, *m_base, m_run);
    const bool clean = conversion.ConvertRestart(document);
    checkRestarted(document);
    finish(document);
    std::error_code ignored;
    m_isBaseKept = (!clean || m_run.Reporter().Errors() > 0) &&
                   std::filesystem::equivalent(m_base->File(), m_target, ignored);
    if (!m_isBaseKept) Summarize(document);
    return clean;
  }

  bool Restart(inps_Conversion& conversion) {
    inps_ModelCopy copy(*m_base, m_target, m_session, '"' + m_targetName + '"');
    bool clean = false;
    copy.Change([&](KvoObjDocument& document) { clean = GoOn(conversion, document); });
    if (!m_isBaseKept) copy.BecomeTarget(m_job.force);
    return clean;
  }

  void Summarize(const KvoObjDocument& document) {
    Note("model", m_targetName);
    if (m_run.IsQuiet() && !m_run.IsJson()) return;
    const inps_ModelSummary summary = inps_summarize(document);
    if (m_run.IsJson())
      m_run.Json()["summary"] = inps_jsonOf(summary);
    else
      (m_held ? m_session.err : m_session.out)
          << inps_oneLine(m_targetName) << ": " << inps_summaryLine(summary) << "; "
          << m_run.Reporter().CountsText() << "; " << inps_secondsText(m_run.Timings().Seconds())
          << '\n';
  }

  void Note(const char* name, const cow_String& value) {
    if (m_run.IsJson()) m_run.Json()[name] = value;
  }
  void Say(const cow_String& text) {
    if (!m_run.IsJson()) m_session.err << "inps: " << inps_oneLine(text) << '\n';
  }

  inps_Session& m_session;
  inps_Run& m_run;
  Job m_job;
  std::unique_ptr<inps_TemporaryFile> m_held; // of a model for standard output
  std::optional<inps_Input> m_base;           // of a restart
  Path m_target;
  cow_String m_targetName;
  bool m_isBaseKept = false; // a failed restart does not take the place of its sound base
};

} // namespace

int inps_convert(inps_Session& session, const inps_Arguments& arguments) {
  Job job;
  if (const cow_String fault = describeJob(session, arguments, job); !fault.empty()) {
    session.err << "inps: " << inps_oneLine(fault) << '\n';
    return inps_ExitUsage;
  }
  inps_Run run(session, arguments);
  return run.Do([&] { return Convert(session, run, std::move(job))(); });
}
