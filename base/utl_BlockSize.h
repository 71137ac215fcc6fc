#pragma once

#include <concepts>
#include <cstddef>
#include <utility>

// Bulk work goes by blocks: pieces of text, buffers of labels, runs of elements. What comes of it
// never depends on their sizes. A test makes all of them small, so that a deck of a few lines
// crosses every boundary that one of millions crosses.

std::size_t utl_mostBlockSize();
void utl_limitBlockSize(std::size_t most); // 0: no limit; not during work

// The size to use in place of the usual one: the limit if that is lower. At least 1.
template <std::integral Size> Size utl_blockSize(Size usual) {
  const std::size_t most = utl_mostBlockSize();
  return std::cmp_less(most, usual) ? static_cast<Size>(most) : usual;
}
