#include "host/inps_Reporter.h"

#include "host/inps_Progress.h"
#include "host/inps_Session.h"
#include <utility>

cow_String inps_counted(long long count, std::string_view singular, std::string_view plural) {
  cow_String text = std::to_string(count) + " ";
  if (count == 1) return text.append(singular);
  return plural.empty() ? text.append(singular) + "s" : text.append(plural);
}

inps_Reporter::inps_Reporter(inps_Session& session, Mode mode, inps_Progress* progress)
    : m_view(session.err, session.colour, session.width), m_mode(mode), m_progress(progress) {}

void inps_Reporter::Take(inps_Severity severity, const wip_Message& message) {
  if (m_hideKept && message.tellsKept) {
    m_hidden += message.count;
    return;
  }
  (severity == inps_Severity::Error ? m_errors : m_warnings) += message.count;
  if (m_mode == Mode::Keep) {
    m_messages.push_back({severity, message});
    return;
  }
  if (m_mode == Mode::ErrorsOnly && severity != inps_Severity::Error) return;

  cow_String key = cow_String(inps_MessageView::Name(severity)) + '\n' + message.keyword + '\n';
  const std::size_t textAt = key.size();
  key += message.text;
  const auto [entry, isNew] = m_kinds.try_emplace(std::move(key), Kind{severity, {}, 0});
  Kind& kind = entry->second;
  if (isNew) kind.text = std::string_view(entry->first).substr(textAt);
  if (++kind.count == shownOfEqual + 1) m_folded.push_back(&kind);
  if (kind.count > shownOfEqual) return;
  m_view.Show(severity, message);
}

void inps_Reporter::ShowFolded() {
  // Whatever fails on the way, none is told twice.
  for (const Kind* kind : std::exchange(m_folded, {})) {
    cow_String text(kind->text);
    text += "\n  … and " + std::to_string(kind->count - shownOfEqual) + " more like this";
    m_view.ShowLine(kind->severity, text);
  }
}

cow_String inps_Reporter::CountsText() const {
  return inps_counted(m_errors, "error") + ", " + inps_counted(m_warnings, "warning");
}

void inps_Reporter::Error(const wip_Message& message, int) {
  Take(inps_Severity::Error, message);
}

void inps_Reporter::ErrorList(const cow_List<wip_Message>& messages, int) {
  for (const wip_Message& message : messages) Take(inps_Severity::Error, message);
}

void inps_Reporter::Warning(const wip_Message& message) {
  Take(inps_Severity::Warning, message);
}

void inps_Reporter::WarningList(const cow_List<wip_Message>& messages) {
  for (const wip_Message& message : messages) Take(inps_Severity::Warning, message);
}

void inps_Reporter::Landmark(const cow_String& text) {
  if (m_progress) m_progress->Show(text);
}

void inps_Reporter::Milestone(const cow_String& text) {
  Landmark(text);
}

void inps_Reporter::Milestone(const cow_String& task, const cow_String& item, int number,
                              int total) {
  Landmark(task + " " + item + " (" + std::to_string(number) + " of " + std::to_string(total) +
           ")");
}
