#include "host/inps_Progress.h"

#include "host/inps_Session.h"
#include "parser/inp_Utf8Text.h"
#include <algorithm>
#include <ostream>

inps_Progress::inps_Progress(inps_Session& session)
    : m_session(session), m_start(std::chrono::steady_clock::now()) {}

void inps_Progress::Show(const cow_String& text) {
  constexpr std::chrono::milliseconds patience{300};
  if (!m_session.progress || std::chrono::steady_clock::now() - m_start < patience) return;
  const auto room = static_cast<std::size_t>(std::max(20, m_session.width - 4));
  inps_writeOwn(m_session.err, "\r\x1b[K" + inp_printable(text, room));
  m_shown = true;
}

void inps_Progress::Clear() {
  if (!m_shown) return;
  inps_writeOwn(m_session.err, "\r\x1b[K");
  m_shown = false;
}
