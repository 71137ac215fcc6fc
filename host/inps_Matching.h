#pragma once

#include "base/cow_Value.h"
#include <cstddef>
#include <span>
#include <utility>

// Two lists of keys, matched: equal keys belong together, the first of one list with the first of
// the other, the second with the second.
struct inps_Matching {
  cow_List<std::pair<std::size_t, std::size_t>> both; // in the order of a
  cow_List<std::size_t> onlyA;
  cow_List<std::size_t> onlyB;

  inps_Matching(std::span<const cow_String> a, std::span<const cow_String> b);
};
