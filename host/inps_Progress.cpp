#include "host/inps_Progress.h"

#include "host/inps_Session.h"
#include "parser/inp_Utf8Text.h"
#include <algorithm>
#include <ostream>
#include <system_error>
#include <utility>

inps_Progress::inps_Progress(inps_Session& session)
    : m_session(session), m_start(std::chrono::steady_clock::now()) {
  if (!session.progress) return;
  try {
    m_thread = std::thread([this] { Tick(); });
  } catch (const std::system_error&) {
    return; // no thread to be had: no line
  }
  const auto giveWay = [this](aio_ostream& out, std::string_view bytes) { GiveWay(out, bytes); };
  session.errDoor.WriteBy(giveWay);
  if (session.isOutTerminal) session.outDoor.WriteBy(giveWay);
}

inps_Progress::~inps_Progress() {
  End();
}

void inps_Progress::Show(const cow_String& text) {
  if (!m_thread.joinable()) return;
  const std::lock_guard hold(m_mutex);
  m_text = text;
}

void inps_Progress::End() {
  if (!m_thread.joinable()) return;
  {
    const std::lock_guard hold(m_mutex);
    m_isEnd = true;
  }
  m_ended.notify_all();
  m_thread.join();
  m_session.errDoor.WriteBy(nullptr);
  m_session.outDoor.WriteBy(nullptr);
}

void inps_Progress::Tick() {
  constexpr std::chrono::milliseconds pace{250};
  constexpr std::chrono::milliseconds untilFirst{10}; // there is nothing to say yet
  std::unique_lock hold(m_mutex);
  const auto ended = [this] { return m_isEnd; };
  for (auto next = m_start + m_session.patience; !m_ended.wait_until(hold, next, ended);
       next = std::chrono::steady_clock::now() + (m_isShown ? pace : untilFirst))
    Draw();
  Erase();
}

void inps_Progress::Draw() {
  if (m_isLineOpen || m_text.empty()) return;
  const auto seconds =
      std::chrono::duration_cast<std::chrono::seconds>(std::chrono::steady_clock::now() - m_start);
  const cow_String text = m_text + ", " + std::to_string(seconds.count()) + " s";
  const auto room = static_cast<std::size_t>(std::max(20, m_session.width - 4));
  m_session.errDoor.Target() << "\r\x1b[K" << inp_printable(text, room) << std::flush;
  m_isShown = true;
}

void inps_Progress::Erase() {
  if (!std::exchange(m_isShown, false)) return;
  m_session.errDoor.Target() << "\r\x1b[K" << std::flush;
}

// What others print takes the line's place; at once, for both streams may go to one terminal.
void inps_Progress::GiveWay(aio_ostream& out, std::string_view bytes) {
  const std::lock_guard hold(m_mutex);
  Erase();
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  out.flush();
  m_isLineOpen = !bytes.ends_with('\n');
}
