#pragma once

#include "base/aio_ostream.h"
#include "base/cow_Value.h"
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string_view>
#include <thread>

struct inps_Session;

// One line on a terminal that says what is being done and for how long, once the work has lasted
// beyond the session's patience. It gives way to whatever else is printed and goes at the end. Does
// nothing where there is no terminal. One at a time in a session.
class inps_Progress {
public:
  explicit inps_Progress(inps_Session& session);
  ~inps_Progress();
  inps_Progress(const inps_Progress&) = delete;
  inps_Progress& operator=(const inps_Progress&) = delete;

  void Show(const cow_String& text); // from any thread
  void End();                        // for good

private:
  void Tick();
  void Draw();
  void Erase();
  void GiveWay(aio_ostream& out, std::string_view bytes);

  inps_Session& m_session;
  std::chrono::steady_clock::time_point m_start;
  std::mutex m_mutex; // of what follows, and of the terminal
  std::condition_variable m_ended;
  cow_String m_text;
  bool m_isShown = false;
  bool m_isLineOpen = false; // somebody else's, which nothing may go into
  bool m_isEnd = false;
  std::thread m_thread; // without a terminal there is none
};
