#pragma once

#include "base/cow_Value.h"
#include <chrono>

struct inps_Session;

// One line on a terminal that says what is being done and goes when it is done. Does nothing where
// there is no terminal, and nothing for work that is over at once.
class inps_Progress {
public:
  explicit inps_Progress(inps_Session& session);
  ~inps_Progress() { Clear(); }
  inps_Progress(const inps_Progress&) = delete;
  inps_Progress& operator=(const inps_Progress&) = delete;

  void Show(const cow_String& text);
  void Clear();

private:
  inps_Session& m_session;
  std::chrono::steady_clock::time_point m_start;
  bool m_shown = false;
};
