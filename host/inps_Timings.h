#pragma once

#include "base/aio_ostream.h"
#include "base/bcu_ResourceMonitor.h"
#include <chrono>
#include <functional>
#include <mutex>

// The resource monitor of one run: times of everything between a "…-Start" and its "…-End" mark.
class inps_Timings final : public bcu_ResourceMonitor {
public:
  using Clock = std::chrono::steady_clock;
  struct Span {
    cow_String label; // without "-Start"
    int depth = 0;    // spans open around it
    Clock::time_point start;
    double seconds = 0;
    bool open = true;
  };

  // onStart is called with the label of every span that opens, on the thread that marks it.
  // There is one monitor in a process: one that is not installed only tells the time.
  explicit inps_Timings(std::function<void(const cow_String&)> onStart = {}, bool install = true);
  ~inps_Timings() override;
  inps_Timings(const inps_Timings&) = delete;
  inps_Timings& operator=(const inps_Timings&) = delete;

  void Mark(const cow_String& label) override;

  cow_List<Span> Spans() const; // in the order of their starts
  double Seconds() const;       // since this was made
  void Print(aio_ostream& out) const;

private:
  void Start(cow_String label);
  void End(const cow_String& label);

  mutable std::mutex m_mutex;
  std::function<void(const cow_String&)> m_onStart;
  bool m_isInstalled;
  bcu_ResourceMonitor* m_previous;
  Clock::time_point m_begin;
  cow_List<Span> m_spans;
  int m_open = 0; // of m_spans
};

cow_String inps_secondsText(double seconds);         // "0.123 s"
cow_String inps_bytesText(unsigned long long bytes); // "1.5 MiB"
