#pragma once

#include "host/inps_Json.h"
#include "host/inps_Progress.h"
#include "host/inps_Reporter.h"
#include "host/inps_Timings.h"
#include <memory>

struct inps_Session;
class inps_Arguments;

// What every command that converts or writes has around it: reporter, progress line, timings, and
// the JSON object that takes the place of all texts under --json.
class inps_Run {
public:
  // A part is one of several that may run at once: its JSON object is for the sum of them to take,
  // the number of its messages goes into the sum's, and it has timings only where it runs alone.
  enum class Kind { Whole, Part, TimedPart, Sum };
  inps_Run(inps_Session& session, const inps_Arguments& arguments, Kind kind = Kind::Whole);
  ~inps_Run();
  inps_Run(const inps_Run&) = delete;
  inps_Run& operator=(const inps_Run&) = delete;

  bool IsJson() const { return m_json != nullptr; }
  bool IsQuiet() const { return m_quiet; }
  bool IsPart() const { return m_kind == Kind::Part || m_kind == Kind::TimedPart; }
  inps_Progress& Progress() { return m_progress; }
  // For what must arrive byte by byte; nothing else is on a terminal from then on.
  aio_ostream& Data();
  inps_Json& Json() { return *m_json; }
  inps_Reporter& Reporter() { return m_reporter; }
  const inps_Timings& Timings() const { return m_timings; }

  // Runs the work and ends what it began: folded messages, counts, timings, the JSON object with
  // the exit code in it. A failure that leaves the work as an exception goes on its way, in the
  // JSON object too.
  template <class Work> int Do(Work work) {
    try {
      return End(work());
    } catch (const std::exception& failure) {
      Fail(failure);
      throw;
    }
  }

  // The table of what was not modelled, on standard error where data takes standard output; the
  // exit code that follows from it.
  int NotModelled(const cow_List<inpS_NotModelled>& kinds, bool isDataOut = false,
                  bool withTable = true);

private:
  int End(int exitCode);
  void Fail(const std::exception& failure);
  void EndJson(inps_Json failure, int exitCode);
  void ShowCounts();

  inps_Session& m_session;
  Kind m_kind;
  bool m_quiet;
  bool m_strict;
  bool m_showTimings;
  bool m_hideKept;
  bool m_countsShown = false;
  inps_Progress m_progress;
  inps_Reporter m_reporter;
  wip_ReporterScope m_installed;
  inps_Timings m_timings;
  std::unique_ptr<inps_Json> m_json; // null without --json
};
