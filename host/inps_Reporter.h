#pragma once

#include "base/wip_WIPBase.h"
#include "host/inps_MessageView.h"
#include <unordered_map>
#include <utility>

class inps_Progress;
struct inps_Session;

struct inps_Reported {
  inps_Severity severity;
  wip_Message message;
};

// Where the module's messages of one run end: counted, and shown as they come or kept. Equal ones
// (severity, keyword and text) are shown a few times; what follows is only counted.
class inps_Reporter final : public wip_WIPBase {
public:
  enum class Mode {
    Show,       // errors and warnings
    ErrorsOnly, // on the console
    Keep,       // show nothing, Messages() has them all
  };

  inps_Reporter(inps_Session& session, Mode mode, inps_Progress* progress = nullptr);

  void Error(const wip_Message& message, int level) override;
  void ErrorList(const cow_List<wip_Message>& messages, int level) override;
  void Warning(const wip_Message& message) override;
  void WarningList(const cow_List<wip_Message>& messages) override;
  void LeftOut(const cow_String& what, long long count) override { m_leftOut[what] += count; }
  void Landmark(const cow_String& text) override;
  void Milestone(const cow_String& text) override;
  void Milestone(const cow_String& task, const cow_String& item, int number, int total) override;

  // Warnings that tell only what is kept as text are neither shown nor counted among the others.
  void HideKept() { m_hideKept = true; }
  void Count(long long errors, long long warnings) { // those of others
    m_errors += errors;
    m_warnings += warnings;
  }

  // Tells of the messages that were only counted.
  void ShowFolded();

  long long Errors() const { return m_errors; }
  long long Warnings() const { return m_warnings; }
  long long AllWarnings() const { return m_warnings + m_hidden; }
  cow_Map<cow_String, long long> TakeLeftOut() { return std::exchange(m_leftOut, {}); }
  const cow_List<inps_Reported>& Messages() const { return m_messages; }
  cow_String CountsText() const; // "2 errors, 1 warning"

  static constexpr long long shownOfEqual = 5;

private:
  struct Kind {
    inps_Severity severity;
    std::string_view text; // in the key
    long long count = 0;
  };

  void Take(inps_Severity severity, const wip_Message& message);

  inps_MessageView m_view;
  Mode m_mode;
  inps_Progress* m_progress;
  bool m_hideKept = false;
  long long m_hidden = 0;
  long long m_errors = 0;
  long long m_warnings = 0;
  cow_Map<cow_String, long long> m_leftOut; // since it was last taken
  cow_List<inps_Reported> m_messages;
  std::unordered_map<cow_String, Kind> m_kinds;
  cow_List<const Kind*> m_folded; // in the order of their first unshown message
};

// "1 error", "2 errors"
cow_String inps_counted(long long count, std::string_view singular, std::string_view plural = {});
