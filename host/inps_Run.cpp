#include "host/inps_Run.h"

#include "base/utl_Interruption.h"
#include "host/inps_Arguments.h"
#include "host/inps_Session.h"
#include "inpS/messages/inpS_Exception.h"
#include <algorithm>
#include <new>
#include <nlohmann/json.hpp>
#include <ostream>
#include <utility>

namespace {

inps_Reporter::Mode modeOf(const inps_Arguments& arguments) {
  if (arguments.Has(inps_Opt::Json)) return inps_Reporter::Mode::Keep;
  return arguments.Has(inps_Opt::Quiet) ? inps_Reporter::Mode::ErrorsOnly
                                        : inps_Reporter::Mode::Show;
}

// "inp2sim-mesh": the mark of a phase, as people read it.
cow_String phaseText(std::string_view label) {
  for (const std::string_view prefix : {"inp2sim-", "Sim2Inp-", "inps-"})
    if (label.starts_with(prefix)) label.remove_prefix(prefix.size());
  return cow_String(label);
}

} // namespace

inps_Run::inps_Run(inps_Session& session, const inps_Arguments& arguments, Kind kind)
    : m_session(session), m_kind(kind), m_quiet(arguments.Has(inps_Opt::Quiet)),
      m_strict(arguments.Has(inps_Opt::Strict)),
      m_showTimings(arguments.Has(inps_Opt::Timings) && kind != Kind::Part && kind != Kind::Sum),
      m_hideKept(arguments.Has(inps_Opt::NoKept)), m_progress(session),
      m_reporter(session, modeOf(arguments), &m_progress), m_installed(m_reporter),
      m_timings([this](const cow_String& label) { m_progress.Show(phaseText(label)); },
                kind == Kind::Whole || kind == Kind::TimedPart),
      // An object from the start: the library that turns nothing into one leaves half of it behind
      // when memory runs out.
      m_json(arguments.Has(inps_Opt::Json) ? std::make_unique<inps_Json>(inps_Json::object())
                                           : nullptr) {
  if (m_hideKept) m_reporter.HideKept();
}

inps_Run::~inps_Run() = default;

void inps_Run::ShowCounts() {
  if (IsJson() || std::exchange(m_countsShown, true)) return; // a failure may follow the end
  m_reporter.ShowFolded();
  if (!m_quiet && !IsPart() && m_reporter.Errors() + m_reporter.Warnings() > 0)
    m_session.err << m_reporter.CountsText() << '\n';
}

// The same members whatever became of the run.
void inps_Run::EndJson(inps_Json failure, int exitCode) {
  inps_addMessages(*m_json, m_reporter);
  if (m_showTimings) (*m_json)["timings"] = inps_jsonOf(m_timings);
  (*m_json)["seconds"] = m_timings.Seconds();
  (*m_json)["failure"] = std::move(failure);
  (*m_json)["exit"] = exitCode;
  if (!IsPart()) inps_printJson(m_session.out, *m_json);
}

int inps_Run::End(int exitCode) {
  ShowCounts();
  if (IsJson()) {
    EndJson(nullptr, exitCode);
  } else if (m_showTimings) {
    m_timings.Print(m_session.err);
  }
  return exitCode;
}

void inps_Run::Fail(const std::exception& failure) {
  ShowCounts();
  if (!IsJson()) return;
  const bool memory = dynamic_cast<const std::bad_alloc*>(&failure) != nullptr ||
                      dynamic_cast<const inpS_MemoryException*>(&failure) != nullptr;
  const bool asked = dynamic_cast<const utl_Interruption*>(&failure) != nullptr;
  EndJson(memory ? "out of memory" : m_session.Shown(failure.what()),
          asked ? inps_ExitInterrupted : inps_ExitFailure);
}

aio_ostream& inps_Run::Data() {
  if (m_session.isOutTerminal) m_progress.End();
  return m_session.data;
}

int inps_Run::NotModelled(const cow_List<inpS_NotModelled>& kinds, bool isDataOut, bool withTable) {
  aio_ostream& out = isDataOut ? m_session.err : m_session.out;
  if (IsJson()) Json()["notModelled"] = inps_jsonOf(kinds);
  if (kinds.empty()) return inps_ExitDone;
  // Unknown words may be misspelt, and parameters are lost: those are never hidden.
  const auto isShown = [this](const inpS_NotModelled& kind) {
    return !m_hideKept || !kind.kept || !kind.known;
  };
  const bool show = withTable && !IsJson() && !m_quiet && std::ranges::any_of(kinds, isShown);
  if (show) out << "not modelled:\n";
  std::size_t widest = 0;
  for (const inpS_NotModelled& kind : kinds)
    if (isShown(kind)) widest = std::max(widest, kind.keyword.size());
  for (const inpS_NotModelled& kind : kinds) {
    if (!show || !isShown(kind)) continue;
    out << "  *" << kind.keyword << cow_String(widest - kind.keyword.size() + 2, ' ')
        << inps_counted(kind.count, "time") << (kind.count == 1 ? ", at " : ", first at ")
        << inps_oneLine(kind.file) << ':' << kind.line
        << (kind.kept ? "; kept as text" : "; parameter left out")
        << (kind.known ? "" : " (no keyword of the language)") << '\n';
  }
  return m_strict ? inps_ExitNotModelled : inps_ExitDone;
}
