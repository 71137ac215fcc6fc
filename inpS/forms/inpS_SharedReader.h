#pragma once

#include "database/eds_Array.h"
#include <mutex>
#include <span>

// An array read by the piece from several threads: the engine serves one at a time, so the readers
// of one printing share a guard.
template <class T> class inpS_SharedReader {
public:
  inpS_SharedReader(const eds_ArrayID& array, std::mutex& guard)
      : m_guard(guard), m_reader(array) {}
  long long Count() const { return m_reader.Count(); }
  int Width() const { return m_reader.Width(); }
  void Read(long long first, std::span<T> out) {
    const std::lock_guard<std::mutex> lock(m_guard);
    m_reader.ReadPiece(first, out);
  }

private:
  std::mutex& m_guard;
  eds_ArrayReader m_reader;
};
