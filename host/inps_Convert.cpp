#include "host/inps_Commands.h"

#include "base/utl_File.h"
#include "base/utl_FileUnderWay.h"
#include "base/utl_MappedFile.h"
#include "base/utl_OutputFile.h"
#include "database/KvoObjMesh.h"
#include "database/eds_Exception.h"
#include "database/eds_ModelPlace.h"
#include "host/inps_Arguments.h"
#include "host/inps_Conversion.h"
#include "host/inps_OpenModel.h"
#include "host/inps_ReadFiles.h"
#include "host/inps_Run.h"
#include "host/inps_Session.h"
#include "parser/inp_Utils.h"
#include <nlohmann/json.hpp>
#include <ostream>

namespace {

using Path = std::filesystem::path;

// A conversion that was cut off at its start leaves a model without one.
bool hasMesh(const KvoObjDocument& document) {
  const KvoSimPosition mesh = document.GetMesh().Position();
  return !mesh.Follow(eds_Member::NodeCollection).IsNull() &&
         !mesh.Follow(eds_Member::ElementCollection).IsNull();
}

// The base is never changed: a copy beside the target is, and takes the target's name at the end.
class RestartCopy {
public:
  RestartCopy(const Path& base, const Path& target)
      : m_path(utl_temporaryBeside(target)), m_journal(m_path) {
    m_journal += "-journal";
    // Ours from now on: two restarts from one base would each lose what the other adds.
    if (utl_isTaken(target)) m_place = std::make_unique<eds_ModelPlace>(target);
    // Held open while it is copied, so that nobody writes it meanwhile.
    const KvoObjDocument held = inps_openModel(base);
    if (!held.IsFinished())
      throw eds_DamagedFileException("\"" + utl_pathText(base) +
                                     "\" is not finished: the conversion that made it did not end");
    try {
      Copy(base);
      if (m_place) m_place->HoldAgain(); // the base may be what is replaced
    } catch (const utl_FileException& failure) {
      utl_removeFile(m_path);
      if (failure.Path() != m_path) throw;
      throw utl_FileException("cannot write", target, failure.Reason());
    } catch (...) {
      utl_removeFile(m_path);
      throw;
    }
  }
  ~RestartCopy() { // gone already once it has taken the target's name
    utl_removeFile(m_path);
    utl_removeFile(m_journal);
  }
  RestartCopy(const RestartCopy&) = delete;
  RestartCopy& operator=(const RestartCopy&) = delete;

  const Path& File() const { return m_path; }
  void BecomeTarget(const Path& target, bool force) {
    if (!m_place) m_place = std::make_unique<eds_ModelPlace>(target);
    m_place->GiveTo(m_path, force ? utl_IfExists::Replace : utl_IfExists::Refuse);
    utl_syncFolderOf(target);
  }

private:
  // By ourselves: the library's own copying tells a full disk as a fault of reading.
  void Copy(const Path& base) const {
    const utl_MappedFile from(base);
    utl_OutputFile to(m_path, utl_OutputFile::Mode::CreateNew);
    try {
      to.Write(from.Text().data(), from.Text().size());
    } catch (const utl_FileException&) {
      // The system itself reads the pages here, and blames the writing for what it finds.
      std::error_code ignored;
      if (std::filesystem::file_size(base, ignored) >= from.Size()) throw;
      throw utl_FileException("cannot read", base, "it was cut short while it was read");
    }
    to.Close();
  }

  Path m_path;
  Path m_journal; // left by a store that failed
  std::unique_ptr<eds_ModelPlace> m_place;
  utl_FileUnderWay m_underWay{m_path};
  utl_FileUnderWay m_journalUnderWay{m_journal};
};

struct Closing {
  KvoObjDocument& document;
  ~Closing() {
    try {
      document.Close();
    } catch (const std::exception&) { // told already, by what brought us here
    }
  }
};

struct Job {
  Path deck;
  Path target;
  Path base; // empty: no restart
  bool force = false;
};

// A usage fault in words, empty when the job is clear.
cow_String describeJob(const inps_Arguments& arguments, Job& job) {
  job.deck = arguments.Path(0);
  job.force = arguments.Has(inps_Opt::Force);
  if (arguments.Has(inps_Opt::Restart)) job.base = arguments.PathOf(inps_Opt::Restart);
  if (arguments.Has(inps_Opt::Output)) {
    job.target = arguments.PathOf(inps_Opt::Output);
  } else if (job.base.empty()) {
    job.target = job.deck.filename().replace_extension(".sim");
  } else if (job.force) {
    job.target = job.base;
  } else {
    return "\"--restart\" needs \"-o FILE\" for the new model, or \"--force\" to replace " +
           utl_pathText(job.base);
  }
  std::error_code ignored;
  if (std::filesystem::equivalent(job.deck, job.target, ignored))
    return "the model would replace its own deck " + utl_pathText(job.deck);
  return {};
}

// Devices and pipes are never replaced, not even by force.
void requireFree(const Job& job) {
  if (!utl_isTaken(job.target)) return;
  std::error_code ignored;
  const std::filesystem::file_status status = std::filesystem::status(job.target, ignored);
  if (std::filesystem::is_directory(status))
    throw utl_FileException("cannot write", job.target, "it is a folder");
  if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status))
    throw utl_FileException("cannot write", job.target, "it is a device or a pipe");
  if (!job.force)
    throw utl_FileException("cannot write", job.target, "it exists; --force replaces it");
}

// What is read is not replaced; but a base may be, by who says so.
void requireOther(const Job& job, const inps_Conversion& conversion) {
  inps_ReadFiles read;
  read.Add(conversion.Files());
  std::error_code ignored;
  if (!job.base.empty() && !std::filesystem::equivalent(job.base, job.target, ignored))
    read.Add(job.base);
  read.RequireOther(job.target);
}

KvoObjDocument makeModel(const Job& job) {
  const bool replace = job.force && utl_isTaken(job.target);
  return replace ? KvoObjDocument::CreateReplacing(job.target) : KvoObjDocument::Create(job.target);
}

void finish(KvoObjDocument& document) {
  const bcu_MarkScope mark("inps-", "finish");
  document.Finish();
}

class Convert {
public:
  Convert(inps_Session& session, inps_Run& run, Job job)
      : m_session(session), m_run(run), m_job(std::move(job)) {}

  int operator()() {
    Note("command", "convert");
    Note("deck", utl_pathText(m_job.deck));
    requireFree(m_job);
    inps_Conversion conversion(m_job.deck);
    if (!conversion.Prepare()) {
      Say("the deck cannot be converted; " + utl_pathText(m_job.target) + " was not written");
      return inps_ExitFaults;
    }
    requireOther(m_job, conversion);
    if (const inp_Keyword* restart = conversion.RestartKeyword(); restart && m_job.base.empty())
      m_run.Reporter().Warning(inp_Utils::MessageInKeyword(
          *restart, "this deck goes on from another model; --restart names that model"));
    const bool clean = m_job.base.empty() ? Fresh(conversion) : Restart(conversion);
    const int notModelled = m_run.NotModelled(conversion.NotModelled());
    if (clean && m_run.Reporter().Errors() == 0) return notModelled;
    const bool noMesh = conversion.IsMeshLeftOut();
    if (m_run.IsJson()) m_run.Json()["meshLeftOut"] = noMesh;
    Say("the deck has errors; " + utl_pathText(m_job.target) + " holds what could be converted" +
        (noMesh ? "; the mesh is left out because of its errors" : ""));
    return inps_ExitFaults;
  }

private:
  bool Fresh(inps_Conversion& conversion) {
    KvoObjDocument document = makeModel(m_job);
    const bool clean = conversion.Convert(document);
    finish(document);
    Summarize(document);
    document.Close();
    return clean;
  }

  bool GoOn(inps_Conversion& conversion, const Path& copy) {
    KvoObjDocument document = KvoObjDocument::Open(copy, KvoAccess::ReadWrite);
    const Closing closing{document}; // others hold it too, and an open copy may not be removed
    if (!hasMesh(document))
      throw eds_DamagedFileException("\"" + utl_pathText(m_job.base) +
                                     "\" has no mesh from which to go on");
    const bool clean = conversion.ConvertRestart(document);
    finish(document);
    Summarize(document);
    document.Close();
    return clean;
  }

  bool Restart(inps_Conversion& conversion) {
    RestartCopy copy(m_job.base, m_job.target);
    bool clean = false;
    try {
      clean = GoOn(conversion, copy.File());
    } catch (const eds_DiskException& failure) {
      // The store knows the copy's name, people know the target's.
      cow_String text = failure.what();
      const cow_String name = utl_pathText(copy.File());
      if (const size_t at = text.find(name); at != cow_String::npos)
        text.replace(at, name.size(), utl_pathText(m_job.target));
      throw eds_DiskException(text);
    }
    copy.BecomeTarget(m_job.target, m_job.force);
    return clean;
  }

  void Summarize(const KvoObjDocument& document) {
    Note("model", utl_pathText(m_job.target));
    if (m_run.IsQuiet() && !m_run.IsJson()) return;
    const inps_ModelSummary summary = inps_summarize(document);
    if (m_run.IsJson())
      m_run.Json()["summary"] = inps_jsonOf(summary);
    else
      m_session.out << utl_pathText(m_job.target) << ": " << inps_summaryLine(summary) << "; "
                    << m_run.Reporter().CountsText() << "; "
                    << inps_secondsText(m_run.Timings().Seconds()) << '\n';
  }

  void Note(const char* name, const cow_String& value) {
    if (m_run.IsJson()) m_run.Json()[name] = value;
  }
  void Say(const cow_String& text) {
    if (!m_run.IsJson()) m_session.err << "inps: " << text << '\n';
  }

  inps_Session& m_session;
  inps_Run& m_run;
  Job m_job;
};

} // namespace

int inps_convert(inps_Session& session, const inps_Arguments& arguments) {
  Job job;
  if (const cow_String fault = describeJob(arguments, job); !fault.empty()) {
    session.err << "inps: " << fault << '\n';
    return inps_ExitUsage;
  }
  inps_Run run(session, arguments);
  return run.Do(Convert(session, run, std::move(job)));
}
