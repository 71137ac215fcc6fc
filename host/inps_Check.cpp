#include "host/inps_Commands.h"

#include "base/utl_File.h"
#include "base/utl_Interruption.h"
#include "base/utl_Threads.h"
#include "database/eds_ModelReader.h"
#include "host/inps_Arguments.h"
#include "host/inps_Conversion.h"
#include "host/inps_ElementSections.h"
#include "host/inps_Input.h"
#include "host/inps_OpenModel.h"
#include "host/inps_Run.h"
#include "host/inps_Session.h"
#include <algorithm>
#include <atomic>
#include <nlohmann/json.hpp>
#include <optional>
#include <ostream>
#include <sstream>

namespace {

// One deck or model.
class Check {
public:
  // isOneOfMany: its whole result is one line.
  Check(inps_Session& session, inps_Run& run, const inps_Input& input, bool isOneOfMany)
      : m_session(session), m_run(run), m_input(input), m_isOneOfMany(isOneOfMany) {}

  int operator()() {
    const bool isModel = inps_isModelFile(m_input.File());
    if (m_run.IsJson()) {
      m_run.Json()["command"] = "check";
      m_run.Json()[isModel ? "model" : "deck"] = m_input.Name();
    }
    return isModel ? Model() : Deck();
  }
  // A sound model, whose deck was not.
  bool IsOfErrors() const { return m_isOfErrors; }

private:
  int Model() {
    const KvoObjDocument document = KvoObjDocument::Open(m_input.File(), KvoAccess::ReadOnly);
    for (const cow_String& fault : eds_checkModel(document)) {
      wip_Message message(m_session.Shown(fault));
      message.place.file = m_input.Name();
      m_run.Reporter().Error(message, 1);
    }
    inps_warnOfOutcome(document, m_input, m_run);
    const bool isSound = m_run.Reporter().Errors() == 0;
    if (isSound) inps_warnOfNamedFiles(document, m_input, m_run);
    if (!isSound) {
      Line("the model has faults");
      return inps_ExitFaults;
    }
    const inps_ModelSummary summary = inps_summarize(document);
    m_isOfErrors = summary.outcome.errors > 0;
    if (m_run.IsJson()) m_run.Json()["summary"] = inps_jsonOf(summary);
    const cow_String bare = BareElements(document);
    Line(inps_summaryLine(summary) + bare + "; the model is sound");
    Say(inps_summaryLine(summary) + bare);
    Say("the model is sound");
    return inps_ExitDone;
  }

  int Deck() {
    inps_Conversion conversion(m_input, m_run.Reporter());
    const bool canConvert = conversion.Prepare();
    if (m_run.IsJson()) m_run.Json()["converted"] = canConvert;
    if (!canConvert) {
      Line("it cannot be converted");
      return inps_ExitFaults;
    }
    const KvoObjDocument document = KvoObjDocument::InMemory();
    const bool clean = conversion.Convert(document);
    const inps_ModelSummary summary = inps_summarize(document);
    if (m_run.IsJson()) m_run.Json()["summary"] = inps_jsonOf(summary);
    const cow_String bare = BareElements(document);
    Line(inps_summaryLine(summary) + bare);
    Say(inps_summaryLine(summary) + bare);
    const int notModelled = m_run.NotModelled(conversion.NotModelled(), false, !m_isOneOfMany);
    if (!clean || m_run.Reporter().Errors() > 0) return inps_ExitFaults;
    Say("the deck has no errors");
    return notModelled;
  }

  // Part of the summary and no fault: a deck may leave its sections to another one.
  cow_String BareElements(const KvoObjDocument& document) {
    const inps_ModelSummary::Counts without = inps_elementsWithoutSection(document);
    if (m_run.IsJson()) m_run.Json()["withoutSection"] = inps_jsonOf(without);
    const cow_String text = inps_withoutSectionText(without);
    return text.empty() ? text : "; " + text;
  }

  void Say(const cow_String& text) {
    if (!m_isOneOfMany && !m_run.IsJson() && !m_run.IsQuiet()) m_session.out << text << '\n';
  }
  void Line(const cow_String& text) {
    if (m_isOneOfMany && !m_run.IsJson() && !m_run.IsQuiet())
      m_session.out << inps_oneLine(m_input.Name()) << ": " << m_run.Reporter().CountsText() << "; "
                    << text << '\n';
  }

  inps_Session& m_session;
  inps_Run& m_run;
  const inps_Input& m_input;
  bool m_isOneOfMany;
  bool m_isOfErrors = false;
};

// Many decks, told of in the order in which they are named.
class CheckAll {
public:
  CheckAll(inps_Session& session, inps_Run& run, const inps_Arguments& arguments)
      : m_session(session), m_run(run), m_arguments(arguments),
        m_results(arguments.Operands().size()) {}

  int operator()() {
    if (m_run.IsJson()) {
      m_run.Json()["command"] = "check";
      m_run.Json()["decks"] = inps_Json::array();
    }
    m_run.Progress().Show("checked 0 of " + std::to_string(m_results.size()));
    for (std::size_t begin = 0; begin < m_results.size();) {
      std::size_t end = begin;
      while (end < m_results.size() && !WantsAllCores(end)) ++end;
      const auto at = [begin](std::size_t i) { return begin + i; };
      utl_orderedBlocks(
          end - begin, [&](std::size_t i, std::size_t) { Work(at(i), inps_Run::Kind::Part); },
          [&](std::size_t i, std::size_t) { Tell(at(i)); });
      if (end < m_results.size()) {
        Work(end,
             m_arguments.Has(inps_Opt::Timings) ? inps_Run::Kind::TimedPart : inps_Run::Kind::Part);
        Tell(end);
      }
      begin = end + 1;
    }
    if (m_stopped) { // each deck that was under way has heard it
      utl_interruption::g_asked = false;
      throw utl_Interruption();
    }
    Sum();
    return m_worst;
  }

private:
  struct Result {
    int exitCode = inps_ExitDone;
    cow_String out;
    cow_String err;
    inps_Json json;
    long long errors = 0;
    long long warnings = 0;
    bool isOfErrors = false;
  };

  // Small decks share the cores, each on one; a large one is faster with all of them. What is timed
  // runs alone, for the marks of phases are the whole process's.
  bool WantsAllCores(std::size_t index) const {
    constexpr std::uintmax_t large = 32 << 20;
    std::error_code ignored;
    const std::uintmax_t size = std::filesystem::file_size(m_arguments.Path(index), ignored);
    return m_arguments.Has(inps_Opt::Timings) || (!ignored && size >= large) ||
           m_arguments.Operands()[index] == inps_dash;
  }

  // Throws nothing but for want of memory: a failure is this deck's and not the others'.
  void Work(std::size_t index, inps_Run::Kind kind) {
    if (m_stopped) return;
    Result& result = m_results[index];
    std::ostringstream out;
    std::ostringstream err;
    {
      inps_Session session{out, err};
      session.colour = m_session.colour;
      session.width = m_session.width;
      std::optional<inps_Run> run;
      result.exitCode = inps_tellFailures(session, [&] {
        run.emplace(session, m_arguments, kind);
        return run->Do([&] {
          const inps_Input input(m_arguments.Operands()[index], session);
          Check check(session, *run, input, true);
          const int exitCode = check();
          result.isOfErrors = check.IsOfErrors();
          return exitCode;
        });
      });
      if (result.exitCode == inps_ExitInterrupted) {
        m_stopped = true;
        utl_askToStop(); // the others, too
        return;
      }
      if (run && run->IsJson()) {
        result.json = std::move(run->Json());
        result.json["exit"] = result.exitCode;
      }
      if (run) result.errors = run->Reporter().Errors();
      if (run) result.warnings = run->Reporter().Warnings();
      session.out.flush();
      session.err.flush();
    }
    result.out = std::move(out).str();
    result.err = std::move(err).str();
  }

  // In order, one at a time.
  void Tell(std::size_t index) {
    if (m_stopped) return;
    Result result = std::move(m_results[index]);
    m_run.Progress().Show("checked " + std::to_string(index + 1) + " of " +
                          std::to_string(m_results.size()));
    inps_writeOwn(m_session.err, result.err); // these went through the doors of their own session
    inps_writeOwn(m_session.out, result.out);
    m_session.out.flush(); // both may go to one place
    if (m_run.IsJson()) m_run.Json()["decks"].push_back(std::move(result.json));
    m_run.Reporter().Count(result.errors, result.warnings);
    const bool isFaulty = result.exitCode == inps_ExitFaults || result.isOfErrors;
    ++(result.exitCode == inps_ExitFailure ? m_failed : isFaulty ? m_faulty : m_good);
    if (Rank(result.exitCode) > Rank(m_worst)) m_worst = result.exitCode;
  }

  static int Rank(int exitCode) {
    constexpr int worse[] = {inps_ExitDone, inps_ExitNotModelled, inps_ExitFaults,
                             inps_ExitFailure};
    return static_cast<int>(std::ranges::find(worse, exitCode) - std::begin(worse));
  }

  void Sum() {
    if (m_run.IsJson() || m_run.IsQuiet()) return;
    m_session.out << m_results.size() << " checked: " << m_good << " without errors, " << m_faulty
                  << " with errors";
    if (m_failed > 0) m_session.out << ", " << m_failed << " not checked to the end";
    m_session.out << '\n';
  }

  inps_Session& m_session;
  inps_Run& m_run;
  const inps_Arguments& m_arguments;
  cow_List<Result> m_results;
  std::atomic<bool> m_stopped{false};
  int m_worst = inps_ExitDone;
  std::size_t m_good = 0;
  std::size_t m_faulty = 0;
  std::size_t m_failed = 0;
};

} // namespace

int inps_check(inps_Session& session, const inps_Arguments& arguments) {
  if (arguments.Operands().size() == 1) {
    inps_Run run(session, arguments);
    return run.Do([&] {
      const inps_Input input(arguments.Operands()[0], session);
      return Check(session, run, input, false)();
    });
  }
  inps_Run run(session, arguments, inps_Run::Kind::Sum);
  return run.Do([&] { return CheckAll(session, run, arguments)(); });
}
