#pragma once

#include "base/utl_Buffer.h"
#include "parser/inp_FieldBatch.h"
#include <algorithm>

// Finds the separators of text stretch by stretch, in buffers that are used again.
class inp_StretchFinder {
public:
  // Bytes to look at together: their separators and values fit the first-level cache.
  static constexpr std::ptrdiff_t usualSize = 8 * 1024;

  // The whole lines of [begin, end), valid until the next call; no lines when no line ends there.
  inp_Stretch Find(const char* begin, const char* end) {
    const auto room = static_cast<std::size_t>(end - begin) + inp_batchRoom;
    m_places.Resize(1 + room);
    m_feeds.Resize(room);
    m_places[0] = ~std::uint32_t{0};
    std::uint32_t* const places = m_places.Data() + 1;
    auto [count, lines] = inp_findSeparators(begin, end, places, m_feeds.Data());
    if (lines == 0) return {};
    while (places[count - 1] != m_feeds[lines - 1]) --count;
    std::fill_n(places + count, inp_batchFields, places[count - 1]);
    return {begin, places, count, m_feeds.Data(), lines};
  }

private:
  utl_Buffer<std::uint32_t> m_places, m_feeds;
};
