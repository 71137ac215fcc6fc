#pragma once

#include <chrono>

// Wall time of one piece of work.
template <class Work> double secondsOf(Work work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}
