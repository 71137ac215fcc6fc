#include "host/inps_Timings.h"

#include "base/utl_File.h"
#include <algorithm>
#include <cstdio>
#include <ostream>

cow_String inps_secondsText(double seconds) {
  char text[40];
  std::snprintf(text, sizeof text, "%.3f s", seconds);
  return text;
}

cow_String inps_bytesText(unsigned long long bytes) {
  if (bytes < 1024) return std::to_string(bytes) + " bytes";
  static constexpr const char* units[] = {"KiB", "MiB", "GiB", "TiB"};
  double size = static_cast<double>(bytes) / 1024;
  std::size_t unit = 0;
  for (; size >= 1024 && unit + 1 < std::size(units); ++unit) size /= 1024;
  char text[40];
  std::snprintf(text, sizeof text, "%.1f %s", size, units[unit]);
  return text;
}

inps_Timings::inps_Timings(std::function<void(const cow_String&)> onStart, bool install)
    : m_onStart(std::move(onStart)), m_isInstalled(install),
      m_previous(install ? bcu_ResourceMonitor::Install(this) : nullptr), m_begin(Clock::now()) {}

inps_Timings::~inps_Timings() {
  if (m_isInstalled) bcu_ResourceMonitor::Install(m_previous);
}

void inps_Timings::Mark(const cow_String& label) {
  constexpr std::string_view start = "-Start";
  constexpr std::string_view end = "-End";
  if (label.ends_with(start)) return Start(label.substr(0, label.size() - start.size()));
  if (label.ends_with(end)) End(label.substr(0, label.size() - end.size()));
}

void inps_Timings::Start(cow_String label) {
  if (m_onStart) m_onStart(label);
  const std::lock_guard lock(m_mutex);
  // What comes up again within one span is one: a deck may have many steps.
  for (auto span = m_spans.rbegin(); span != m_spans.rend() && span->depth >= m_open; ++span) {
    if (span->open || span->depth > m_open || span->label != label) continue;
    span->open = true;
    span->start = Clock::now();
    ++m_open;
    return;
  }
  // The push may fail for want of memory: it leaves everything as it was.
  m_spans.push_back({std::move(label), m_open, Clock::now()});
  ++m_open;
}

void inps_Timings::End(const cow_String& label) {
  const Clock::time_point now = Clock::now();
  const std::lock_guard lock(m_mutex);
  const auto isIt = [&](const Span& span) { return span.open && span.label == label; };
  const auto found = std::find_if(m_spans.rbegin(), m_spans.rend(), isIt);
  if (found == m_spans.rend()) return;
  found->seconds += std::chrono::duration<double>(now - found->start).count();
  found->open = false;
  --m_open;
}

cow_List<inps_Timings::Span> inps_Timings::Spans() const {
  const std::lock_guard lock(m_mutex);
  return m_spans;
}

double inps_Timings::Seconds() const {
  return std::chrono::duration<double>(Clock::now() - m_begin).count();
}

void inps_Timings::Print(aio_ostream& out) const {
  const cow_List<Span> spans = Spans();
  std::size_t widest = 0;
  for (const Span& span : spans)
    widest = std::max(widest, span.label.size() + 2 * static_cast<std::size_t>(span.depth));
  for (const Span& span : spans) {
    const auto indent = 2 * static_cast<std::size_t>(span.depth);
    const cow_String time = span.open ? "unfinished" : inps_secondsText(span.seconds);
    out << "  " << cow_String(indent, ' ') << span.label
        << cow_String(widest - indent - span.label.size() + 2, ' ')
        << cow_String(time.size() < 12 ? 12 - time.size() : 0, ' ') << time << '\n';
  }
  out << "total " << inps_secondsText(Seconds());
  if (const std::size_t peak = utl_peakMemory()) out << ", peak memory " << inps_bytesText(peak);
  out << '\n';
}
