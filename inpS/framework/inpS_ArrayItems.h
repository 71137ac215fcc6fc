#pragma once

#include "database/eds_Array.h"
#include <algorithm>
#include <array>
#include <optional>
#include <vector>

// Single items of stored arrays, wherever they lie: chunks of the array read last are held, since
// neighbours in a mesh lie in a few of them.
template <class T> class inpS_ArrayItems {
public:
  // The item's values, valid until the next call.
  const T* Item(const eds_ArrayID& id, int64_t item) {
    if (!m_reader || m_array != id.id) {
      m_reader.emplace(id);
      m_array = id.id;
      m_perChunk = m_reader->ItemsPerChunk();
      m_width = m_reader->Width();
      for (Held& chunk : m_held) chunk.number = -1;
    }
    const int64_t wanted = item / m_perChunk;
    Held& chunk = m_held[static_cast<std::size_t>(wanted % kHeld)];
    if (chunk.number != wanted) {
      const int64_t count = std::min(m_perChunk, m_reader->Count() - wanted * m_perChunk);
      chunk.number = -1; // in case it cannot be read
      chunk.items.resize(static_cast<std::size_t>(count * m_width));
      m_reader->ReadPiece(wanted * m_perChunk, std::span<T>(chunk.items));
      chunk.number = wanted;
    }
    return &chunk.items[static_cast<std::size_t>((item - wanted * m_perChunk) * m_width)];
  }

private:
  static constexpr int64_t kHeld = 32;
  struct Held {
    int64_t number = -1;
    std::vector<T> items;
  };
  int64_t m_array = 0;
  int64_t m_perChunk = 1;
  int64_t m_width = 1;
  std::optional<eds_ArrayReader> m_reader;
  std::array<Held, kHeld> m_held;
};
